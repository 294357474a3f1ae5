// SEED in constant time: both S-boxes are the inversion of AES between affine maps. RFC 4269.
//
// Every 32-bit word fills a whole register, one copy beside the other, so that the row rotation of
// the AES instruction exchanges equal bytes only.
#include <wmmintrin.h>

#include "base/bytes.hpp"
#include "cipher/nibble_map.hpp"
#include "cipher/seed.hpp"
#include "cipher/seed_tables.hpp"

namespace zel {
namespace {

constexpr gf256::Box kAesBox = gf256::aes_box();
constexpr gf256::Box kAesInverse = gf256::inverse_box(kAesBox);

/// A root of SEED's polynomial in the field of AES: x -> root maps one field onto the other.
constexpr unsigned kRoot = 0x19;

consteval gf256::Box into_aes_field() {
  gf256::Columns powers{};
  for (unsigned bit = 0; bit < 8; ++bit)
    powers[bit] = gf256::power(kRoot, bit);
  return gf256::power_box(1, powers, 0);
}

/// The map after the AES box that makes it `box`: box(x) = after(AES(into_aes_field(x))).
consteval gf256::Box after_aes(const gf256::Box &box) {
  return composed(box, composed(gf256::inverse_box(into_aes_field()), kAesInverse));
}

constexpr NibbleMap kBefore = nibble_map(into_aes_field());
constexpr NibbleMap kAfter1 = nibble_map(after_aes(kSeedS1));
constexpr NibbleMap kAfter2 = nibble_map(after_aes(kSeedS2));
static_assert(is_map(kBefore, into_aes_field()));
static_assert(is_map(kAfter1, after_aes(kSeedS1)) && is_map(kAfter2, after_aes(kSeedS2)));

/// What byte `from` of a substituted word gives to each byte of the sum.
constexpr std::int32_t mask_of(std::size_t from) {
  std::uint32_t word = 0;
  for (std::size_t to = 0; to < 4; ++to)
    word |= std::uint32_t{kSeedMasks[(from + to) % 4]} << (8 * to);
  return static_cast<std::int32_t>(word);
}

/// Byte kFrom of each word, spread over the word and masked.
template <std::size_t kFrom>
ZEL_ISA_AESNI inline __m128i share(__m128i x) noexcept {
  constexpr auto kFirst = static_cast<std::int32_t>(0x01010101 * kFrom);
  constexpr std::int32_t kStep = 0x04040404;
  constexpr std::int32_t kMask = mask_of(kFrom);
  const __m128i spread =
      _mm_setr_epi32(kFirst, kFirst + kStep, kFirst + 2 * kStep, kFirst + 3 * kStep);
  return _mm_and_si128(_mm_shuffle_epi8(x, spread), _mm_set1_epi32(kMask));
}

ZEL_ISA_AESNI inline __m128i g(__m128i x) noexcept {
  const __m128i s = _mm_aesenclast_si128(mapped(kBefore, x), _mm_setzero_si128());
  const __m128i s1 = mapped(kAfter1, s);
  const __m128i s2 = mapped(kAfter2, s);
  return _mm_xor_si128(_mm_xor_si128(share<0>(s1), share<2>(s1)),
                       _mm_xor_si128(share<1>(s2), share<3>(s2)));
}

/// A half block.
struct Half {
  __m128i high, low;
};

/// to ^= F(from, key)
ZEL_ISA_AESNI inline void round(Half &to, const Half &from, __m128i high_key,
                                __m128i low_key) noexcept {
  __m128i high = _mm_xor_si128(from.high, high_key);
  __m128i low = g(_mm_xor_si128(high, _mm_xor_si128(from.low, low_key)));
  high = g(_mm_add_epi32(high, low));
  low = g(_mm_add_epi32(low, high));
  to.high = _mm_xor_si128(to.high, _mm_add_epi32(high, low));
  to.low = _mm_xor_si128(to.low, low);
}

template <int kWord>
ZEL_ISA_AESNI inline __m128i word(__m128i x) noexcept {
  return _mm_shuffle_epi32(x, kWord * 0x55);
}

enum class Direction { kForward, kBackward };

template <Direction kDirection>
ZEL_ISA_AESNI void crypt(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  const __m128i swap = _mm_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
  const __m128i x = _mm_shuffle_epi8(load128(block), swap);
  Half left = {word<0>(x), word<1>(x)};
  Half right = {word<2>(x), word<3>(x)};
  for (std::size_t pair = 0; pair < 8; ++pair) {
    if constexpr (kDirection == Direction::kForward) {
      const __m128i key = load128(keys + 16 * pair);
      round(left, right, word<0>(key), word<1>(key));
      round(right, left, word<2>(key), word<3>(key));
    } else {
      const __m128i key = load128(keys + 16 * (7 - pair));
      round(left, right, word<2>(key), word<3>(key));
      round(right, left, word<0>(key), word<1>(key));
    }
  }
  const __m128i high = _mm_unpacklo_epi32(right.high, right.low);
  const __m128i low = _mm_unpacklo_epi32(left.high, left.low);
  store128(block, _mm_shuffle_epi8(_mm_unpacklo_epi64(high, low), swap));
}

}  // namespace

ZEL_ISA_AESNI std::uint32_t seed_g_aesni(std::uint32_t word) noexcept {
  return static_cast<std::uint32_t>(
      _mm_cvtsi128_si32(g(_mm_set1_epi32(static_cast<std::int32_t>(word)))));
}

ZEL_ISA_AESNI void seed_encrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  crypt<Direction::kForward>(block, keys);
}

ZEL_ISA_AESNI void seed_decrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  crypt<Direction::kBackward>(block, keys);
}

}  // namespace zel
