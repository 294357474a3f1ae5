// ARIA in one register, in constant time: all four S-boxes are inversions of AES between affine
// maps, and every byte of the register goes through each of them. RFC 5794, section 2.4.
#include <wmmintrin.h>

#include "cipher/aria.hpp"
#include "cipher/aria_tables.hpp"
#include "cipher/nibble_map.hpp"

namespace zel {
namespace {

/// S2(x) = after(S1(x)) and X2(x) = X1(before(x)).
constexpr NibbleMap kAfter = nibble_map(composed(kAriaS2, kAriaX1));
constexpr NibbleMap kBefore = nibble_map(composed(kAriaS1, kAriaX2));
static_assert(is_map(kAfter, composed(kAriaS2, kAriaX1)) &&
              is_map(kBefore, composed(kAriaS1, kAriaX2)));

/// The register after each box, in the order of the boxes of an odd round's word.
enum Box : std::size_t { kBoxS1, kBoxS2, kBoxX1, kBoxX2, kBoxes };

/// The box that byte `position` meets.
consteval std::size_t box_of(std::size_t position, AriaRound kind) {
  return (position + (kind == AriaRound::kOdd ? 0 : 2)) % 4;
}

/// Where a box leaves the byte: AESENCLAST rotates row r of the 4 x 4 square by r to the left,
/// AESDECLAST to the right.
consteval std::uint8_t place_of(std::size_t position, std::size_t box) {
  const std::size_t row = position % 4;
  const std::size_t column = position / 4;
  const bool forward = box == kBoxS1 || box == kBoxS2;
  return static_cast<std::uint8_t>(4 * ((forward ? column - row : column + row) % 4) + row);
}

using Shuffle = std::array<std::uint8_t, 16>;
constexpr std::uint8_t kNothing = 0x80;

/// Shuffles that gather, from each box, the bytes that the diffusion layer adds: every sum has two
/// bytes of each box at most, so two shuffles a box do.
struct Gather {
  alignas(16) std::array<std::array<Shuffle, 2>, kBoxes> shuffles;
};

consteval Gather gather(AriaRound kind) {
  Gather result{};
  for (std::size_t to = 0; to < 16; ++to) {
    std::array<std::size_t, kBoxes> used{};
    for (const std::size_t from : kAriaDiffusion[to]) {
      const std::size_t box = box_of(from, kind);
      result.shuffles[box][used[box]++][to] = place_of(from, box);
    }
    for (std::size_t box = 0; box < kBoxes; ++box)
      for (std::size_t rest = used[box]; rest < 2; ++rest)
        result.shuffles[box][rest][to] = kNothing;
  }
  return result;
}

/// The same without diffusion: the last round.
consteval std::array<Shuffle, kBoxes> gather_last() {
  std::array<Shuffle, kBoxes> result{};
  for (std::size_t to = 0; to < 16; ++to)
    for (std::size_t box = 0; box < kBoxes; ++box)
      result[box][to] = box == box_of(to, AriaRound::kEven) ? place_of(to, box) : kNothing;
  return result;
}

constexpr Gather kOddGather = gather(AriaRound::kOdd);
constexpr Gather kEvenGather = gather(AriaRound::kEven);
alignas(16) constexpr std::array<Shuffle, kBoxes> kLastGather = gather_last();

ZEL_ISA_AESNI inline __m128i shuffled(__m128i x, const Shuffle &shuffle) noexcept {
  return _mm_shuffle_epi8(x, _mm_load_si128(reinterpret_cast<const __m128i *>(&shuffle)));
}

ZEL_ISA_AESNI inline __m128i both(__m128i x, const std::array<Shuffle, 2> &pair) noexcept {
  return _mm_xor_si128(shuffled(x, pair[0]), shuffled(x, pair[1]));
}

/// Substitution and diffusion of x, which has its key already, and addition of the next key.
ZEL_ISA_AESNI inline __m128i round(__m128i x, const Gather &gather, __m128i next_key) noexcept {
  const __m128i zero = _mm_setzero_si128();
  const __m128i s1 = _mm_aesenclast_si128(x, zero);
  const __m128i x1 = _mm_aesdeclast_si128(x, zero);
  const __m128i x2 = _mm_aesdeclast_si128(mapped(kBefore, x), zero);
  const __m128i early =
      _mm_xor_si128(both(s1, gather.shuffles[kBoxS1]), both(x1, gather.shuffles[kBoxX1]));
  const __m128i s2 = mapped(kAfter, s1);
  const __m128i late =
      _mm_xor_si128(both(s2, gather.shuffles[kBoxS2]), both(x2, gather.shuffles[kBoxX2]));
  return _mm_xor_si128(late, _mm_xor_si128(early, next_key));
}

ZEL_ISA_AESNI inline __m128i last_round(__m128i x, __m128i last_key) noexcept {
  const __m128i zero = _mm_setzero_si128();
  const __m128i s1 = _mm_aesenclast_si128(x, zero);
  const __m128i x1 = _mm_aesdeclast_si128(x, zero);
  const __m128i x2 = _mm_aesdeclast_si128(mapped(kBefore, x), zero);
  const __m128i s2 = mapped(kAfter, s1);
  const __m128i s =
      _mm_xor_si128(shuffled(s1, kLastGather[kBoxS1]), shuffled(s2, kLastGather[kBoxS2]));
  const __m128i t =
      _mm_xor_si128(shuffled(x1, kLastGather[kBoxX1]), shuffled(x2, kLastGather[kBoxX2]));
  return _mm_xor_si128(_mm_xor_si128(s, t), last_key);
}

}  // namespace

ZEL_ISA_AESNI void aria_round_aesni(std::uint8_t *block, const std::uint8_t *key,
                                    AriaRound kind) noexcept {
  const __m128i x = _mm_xor_si128(load128(block), load128(key));
  const Gather &gather = kind == AriaRound::kOdd ? kOddGather : kEvenGather;
  store128(block, round(x, gather, _mm_setzero_si128()));
}

ZEL_ISA_AESNI void aria_crypt_aesni(std::uint8_t *block, const std::uint8_t *keys,
                                    unsigned rounds) noexcept {
  const std::uint8_t *const last = keys + std::size_t{16} * rounds;
  __m128i x = _mm_xor_si128(load128(block), load128(keys));
  x = round(x, kOddGather, load128(keys + 16));
  for (keys += 32; keys != last; keys += 32) {
    x = round(x, kEvenGather, load128(keys));
    x = round(x, kOddGather, load128(keys + 16));
  }
  store128(block, last_round(x, load128(last)));
}

}  // namespace zel
