// RC5-32/12 for 32 blocks at once: four registers of each word, whose lanes turn by counts of their
// own.
#include <immintrin.h>

#include "base/bytes.hpp"
#include "base/isa.hpp"
#include "cipher/groups.hpp"
#include "cipher/rc5.hpp"

namespace zel {
namespace {

constexpr std::size_t kGroups = 4;
constexpr std::size_t kUnitLen = kGroups * 8 * 8;

ZEL_ISA_AVX2 inline __m256i rotl(__m256i x, __m256i count) noexcept {
  const __m256i by = _mm256_and_si256(count, _mm256_set1_epi32(31));
  const __m256i rest = _mm256_sub_epi32(_mm256_set1_epi32(32), by);
  return _mm256_or_si256(_mm256_sllv_epi32(x, by), _mm256_srlv_epi32(x, rest));
}

ZEL_ISA_AVX2 inline __m256i rotr(__m256i x, __m256i count) noexcept {
  const __m256i by = _mm256_and_si256(count, _mm256_set1_epi32(31));
  const __m256i rest = _mm256_sub_epi32(_mm256_set1_epi32(32), by);
  return _mm256_or_si256(_mm256_srlv_epi32(x, by), _mm256_sllv_epi32(x, rest));
}

ZEL_ISA_AVX2 inline __m256i key_word(const std::uint8_t *keys, std::size_t i) noexcept {
  return _mm256_set1_epi32(load_le<std::int32_t>(keys + 4 * i));
}

/// The even and the odd words of eight blocks, in an order of their own, which `store` undoes.
ZEL_ISA_AVX2 inline void load(__m256i &a, __m256i &b, const std::uint8_t *in) noexcept {
  const auto *const pairs = reinterpret_cast<const __m256i *>(in);
  const __m256 low = _mm256_castsi256_ps(_mm256_loadu_si256(pairs));
  const __m256 high = _mm256_castsi256_ps(_mm256_loadu_si256(pairs + 1));
  a = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88));
  b = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0xdd));
}

ZEL_ISA_AVX2 inline void store(std::uint8_t *out, __m256i a, __m256i b) noexcept {
  auto *const pairs = reinterpret_cast<__m256i *>(out);
  _mm256_storeu_si256(pairs, _mm256_unpacklo_epi32(a, b));
  _mm256_storeu_si256(pairs + 1, _mm256_unpackhi_epi32(a, b));
}

ZEL_ISA_AVX2 void encrypt(std::uint8_t *out, const std::uint8_t *in,
                          const std::uint8_t *keys) noexcept {
  __m256i a[kGroups], b[kGroups];
  const __m256i first_a = key_word(keys, 0), first_b = key_word(keys, 1);
#pragma GCC unroll 4
  for (std::size_t g = 0; g < kGroups; ++g) {
    load(a[g], b[g], in + 64 * g);
    a[g] = _mm256_add_epi32(a[g], first_a);
    b[g] = _mm256_add_epi32(b[g], first_b);
  }
  for (std::size_t round = 1; round <= kRc5Rounds; ++round) {
    const __m256i key_a = key_word(keys, 2 * round), key_b = key_word(keys, 2 * round + 1);
#pragma GCC unroll 4
    for (std::size_t g = 0; g < kGroups; ++g)
      a[g] = _mm256_add_epi32(rotl(_mm256_xor_si256(a[g], b[g]), b[g]), key_a);
#pragma GCC unroll 4
    for (std::size_t g = 0; g < kGroups; ++g)
      b[g] = _mm256_add_epi32(rotl(_mm256_xor_si256(b[g], a[g]), a[g]), key_b);
  }
#pragma GCC unroll 4
  for (std::size_t g = 0; g < kGroups; ++g)
    store(out + 64 * g, a[g], b[g]);
}

ZEL_ISA_AVX2 void decrypt(std::uint8_t *out, const std::uint8_t *in,
                          const std::uint8_t *keys) noexcept {
  __m256i a[kGroups], b[kGroups];
#pragma GCC unroll 4
  for (std::size_t g = 0; g < kGroups; ++g)
    load(a[g], b[g], in + 64 * g);
  for (std::size_t round = kRc5Rounds; round >= 1; --round) {
    const __m256i key_a = key_word(keys, 2 * round), key_b = key_word(keys, 2 * round + 1);
#pragma GCC unroll 4
    for (std::size_t g = 0; g < kGroups; ++g)
      b[g] = _mm256_xor_si256(rotr(_mm256_sub_epi32(b[g], key_b), a[g]), a[g]);
#pragma GCC unroll 4
    for (std::size_t g = 0; g < kGroups; ++g)
      a[g] = _mm256_xor_si256(rotr(_mm256_sub_epi32(a[g], key_a), b[g]), b[g]);
  }
  const __m256i first_a = key_word(keys, 0), first_b = key_word(keys, 1);
#pragma GCC unroll 4
  for (std::size_t g = 0; g < kGroups; ++g)
    store(out + 64 * g, _mm256_sub_epi32(a[g], first_a), _mm256_sub_epi32(b[g], first_b));
}

}  // namespace

ZEL_ISA_AVX2 void rc5_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                   const void *round_keys) noexcept {
  in_groups<kUnitLen>(encrypt, out, in, 8 * count, round_keys);
  _mm256_zeroall();
}

ZEL_ISA_AVX2 void rc5_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                   const void *round_keys) noexcept {
  in_groups<kUnitLen>(decrypt, out, in, 8 * count, round_keys);
  _mm256_zeroall();
}

}  // namespace zel
