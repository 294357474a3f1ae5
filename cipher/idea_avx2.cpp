// IDEA for 32 blocks at once: every register holds one word of 16 blocks. In constant time.
#include <immintrin.h>

#include "base/bytes.hpp"
#include "base/isa.hpp"
#include "cipher/groups.hpp"
#include "cipher/idea.hpp"

namespace zel {
namespace {

constexpr std::size_t kGroupLen = 16 * 8;
constexpr std::size_t kGroups = 2;

ZEL_ISA_AVX2 inline __m256i load256(const std::uint8_t *from) noexcept {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
}

ZEL_ISA_AVX2 inline void store256(std::uint8_t *to, __m256i value) noexcept {
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), value);
}

/// A multiplicative sub-key in every lane, with what a zero factor needs.
struct Factor {
  __m256i value;
  __m256i one_minus;  ///< 1 - value: the product with 0, that is, with -1
  __m256i is_zero;
};

ZEL_ISA_AVX2 inline __m256i subkey(const std::uint8_t *keys, std::size_t i) noexcept {
  return _mm256_set1_epi16(load_le<std::int16_t>(keys + 2 * i));
}

ZEL_ISA_AVX2 inline Factor factor(const std::uint8_t *keys, std::size_t i) noexcept {
  const __m256i value = subkey(keys, i);
  return {value, _mm256_sub_epi16(_mm256_set1_epi16(1), value),
          _mm256_cmpeq_epi16(value, _mm256_setzero_si256())};
}

/// Product modulo 65537, where 0 stands for 65536: low - high, plus 1 when that borrows. A product
/// is zero just when a factor is; then the difference is zero as well and gives way to 1 - other.
ZEL_ISA_AVX2 inline __m256i mul(__m256i x, const Factor &k) noexcept {
  const __m256i one = _mm256_set1_epi16(1);
  const __m256i low = _mm256_mullo_epi16(x, k.value);
  const __m256i high = _mm256_mulhi_epu16(x, k.value);
  const __m256i no_borrow = _mm256_cmpeq_epi16(_mm256_max_epu16(low, high), low);
  const __m256i product =
      _mm256_add_epi16(_mm256_sub_epi16(low, high), _mm256_add_epi16(no_borrow, one));
  const __m256i x_is_zero = _mm256_cmpeq_epi16(x, _mm256_setzero_si256());
  const __m256i instead = _mm256_or_si256(_mm256_and_si256(x_is_zero, k.one_minus),
                                          _mm256_and_si256(k.is_zero, _mm256_sub_epi16(one, x)));
  return _mm256_or_si256(product, instead);
}

struct Group {
  __m256i w[4];
};

ZEL_ISA_AVX2 inline __m256i swapped(__m256i x) noexcept {
  return _mm256_or_si256(_mm256_slli_epi16(x, 8), _mm256_srli_epi16(x, 8));
}

/// Sixteen blocks, turned so that register i holds word i of each, in an order of its own.
ZEL_ISA_AVX2 inline void load(Group &x, const std::uint8_t *in) noexcept {
  const __m256i a = load256(in), b = load256(in + 32), c = load256(in + 64), d = load256(in + 96);
  const __m256i even_low = _mm256_unpacklo_epi16(a, b), odd_low = _mm256_unpackhi_epi16(a, b);
  const __m256i even_high = _mm256_unpacklo_epi16(c, d), odd_high = _mm256_unpackhi_epi16(c, d);
  const __m256i low01 = _mm256_unpacklo_epi16(even_low, odd_low);
  const __m256i low23 = _mm256_unpackhi_epi16(even_low, odd_low);
  const __m256i high01 = _mm256_unpacklo_epi16(even_high, odd_high);
  const __m256i high23 = _mm256_unpackhi_epi16(even_high, odd_high);
  x.w[0] = swapped(_mm256_unpacklo_epi64(low01, high01));
  x.w[1] = swapped(_mm256_unpackhi_epi64(low01, high01));
  x.w[2] = swapped(_mm256_unpacklo_epi64(low23, high23));
  x.w[3] = swapped(_mm256_unpackhi_epi64(low23, high23));
}

ZEL_ISA_AVX2 inline void store(std::uint8_t *out, __m256i low, __m256i high) noexcept {
  const __m256i even = _mm256_unpacklo_epi16(low, high);
  const __m256i odd = _mm256_unpackhi_epi16(low, high);
  store256(out, _mm256_unpacklo_epi16(even, odd));
  store256(out + 32, _mm256_unpackhi_epi16(even, odd));
}

ZEL_ISA_AVX2 inline void store(std::uint8_t *out, const Group &x) noexcept {
  const __m256i w0 = swapped(x.w[0]), w1 = swapped(x.w[1]), w2 = swapped(x.w[2]),
                w3 = swapped(x.w[3]);
  store(out, _mm256_unpacklo_epi64(w0, w1), _mm256_unpacklo_epi64(w2, w3));
  store(out + 64, _mm256_unpackhi_epi64(w0, w1), _mm256_unpackhi_epi64(w2, w3));
}

ZEL_ISA_AVX2 inline void round(Group &x, const std::uint8_t *keys) noexcept {
  const __m256i a = mul(x.w[0], factor(keys, 0));
  const __m256i b = _mm256_add_epi16(x.w[1], subkey(keys, 1));
  const __m256i c = _mm256_add_epi16(x.w[2], subkey(keys, 2));
  const __m256i d = mul(x.w[3], factor(keys, 3));
  const __m256i s = mul(_mm256_xor_si256(a, c), factor(keys, 4));
  const __m256i t = mul(_mm256_add_epi16(s, _mm256_xor_si256(b, d)), factor(keys, 5));
  const __m256i u = _mm256_add_epi16(s, t);
  x.w[0] = _mm256_xor_si256(a, t);
  x.w[1] = _mm256_xor_si256(c, t);
  x.w[2] = _mm256_xor_si256(b, u);
  x.w[3] = _mm256_xor_si256(d, u);
}

ZEL_ISA_AVX2 inline void last(Group &x, const std::uint8_t *keys) noexcept {
  const __m256i b = _mm256_add_epi16(x.w[2], subkey(keys, 1));
  const __m256i c = _mm256_add_epi16(x.w[1], subkey(keys, 2));
  x.w[0] = mul(x.w[0], factor(keys, 0));
  x.w[1] = b;
  x.w[2] = c;
  x.w[3] = mul(x.w[3], factor(keys, 3));
}

ZEL_ISA_AVX2 void crypt(std::uint8_t *out, const std::uint8_t *in,
                        const std::uint8_t *keys) noexcept {
  Group first, second;
  load(first, in);
  load(second, in + kGroupLen);
  for (std::size_t i = 0; i < kIdeaRounds; ++i, keys += 12) {
    round(first, keys);
    round(second, keys);
  }
  last(first, keys);
  last(second, keys);
  store(out, first);
  store(out + kGroupLen, second);
}

}  // namespace

ZEL_ISA_AVX2 void idea_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                    const void *round_keys) noexcept {
  in_groups<kGroups * kGroupLen>(crypt, out, in, 8 * count, round_keys);
  _mm256_zeroall();
}

ZEL_ISA_AVX2 void idea_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                    const void *round_keys) noexcept {
  idea_encrypt_avx2(out, in, count, static_cast<const std::uint8_t *>(round_keys) + kIdeaHalfLen);
}

}  // namespace zel
