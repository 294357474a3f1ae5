// SHA-512 with AVX2 and BMI2: the message schedule in vectors, for two blocks at once, between
// scalar rounds. FIPS 180-4, section 6.4.
#include <immintrin.h>

#include "base/isa.hpp"
#include "base/wipe.hpp"
#include "hash/isa_blocks.hpp"
#include "hash/sha2_constants.hpp"

namespace zel {
namespace {

using Word = std::uint64_t;

struct Letters {
  Word a, b, c, d, e, f, g, h;
};

/// One round on letters that the caller has renamed. `kw` is message word and constant added;
/// `bc` is b ^ c on the way in and a ^ b on the way out, for the majority of the next round.
__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline void round(Word a, Word b, Word &d, Word e,
                                                                   Word f, Word g, Word &h,
                                                                   Word &bc,
                                                                   const Word &kw) noexcept {
  Word t0, t1, ab;
  __asm__ volatile(
      "addq %[kw], %[h]\n\t"
      "movq %[e], %[t0]\n\t"
      "andnq %[g], %[e], %[ab]\n\t"
      "andq %[f], %[t0]\n\t"
      "rorxq $41, %[e], %[t1]\n\t"
      "addq %[ab], %[h]\n\t"
      "rorxq $18, %[e], %[ab]\n\t"
      "addq %[t0], %[h]\n\t"
      "xorq %[ab], %[t1]\n\t"
      "rorxq $14, %[e], %[t0]\n\t"
      "movq %[a], %[ab]\n\t"
      "xorq %[t0], %[t1]\n\t"
      "rorxq $39, %[a], %[t0]\n\t"
      "addq %[t1], %[h]\n\t"
      "xorq %[b], %[ab]\n\t"
      "rorxq $34, %[a], %[t1]\n\t"
      "addq %[h], %[d]\n\t"
      "andq %[ab], %[bc]\n\t"
      "xorq %[t1], %[t0]\n\t"
      "rorxq $28, %[a], %[t1]\n\t"
      "xorq %[b], %[bc]\n\t"
      "xorq %[t1], %[t0]\n\t"
      "addq %[bc], %[h]\n\t"
      "addq %[t0], %[h]"
      : [d] "+r"(d), [h] "+r"(h), [bc] "+r"(bc), [t0] "=&r"(t0), [t1] "=&r"(t1), [ab] "=&r"(ab)
      : [a] "r"(a), [b] "r"(b), [e] "r"(e), [f] "r"(f), [g] "r"(g), [kw] "m"(kw)
      : "cc");
  bc = ab;
}

/// Words 2j and 2j + 1 of two blocks, one block a lane.
using Pair = __m256i;

/// Where the sums of words and constants wait for their rounds: [round / 2][block][round % 2].
constexpr std::size_t kSlot = 4;

__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline Pair load_pair(
    const std::uint8_t *first, const std::uint8_t *second) noexcept {
  const __m256i swap =
      _mm256_broadcastsi128_si256(_mm_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607));
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i *>(first));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i *>(second));
  return _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), swap);
}

__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline void store_sum(
    Word *slot, Pair words, const Word *constants) noexcept {
  const __m256i k =
      _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i *>(constants)));
  _mm256_store_si256(reinterpret_cast<__m256i *>(slot), _mm256_add_epi64(words, k));
}

/// x0 becomes the words 16 places after it; x1, x4, x5, x7 lie 2, 8, 10, 14 places after it.
__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline Pair extend(Pair x0, Pair x1, Pair x4,
                                                                    Pair x5, Pair x7) noexcept {
  const __m256i rotate8 =
      _mm256_broadcastsi128_si256(_mm_set_epi64x(0x080f0e0d0c0b0a09, 0x0007060504030201));
  const __m256i w1 = _mm256_alignr_epi8(x1, x0, 8);
  const __m256i w9 = _mm256_alignr_epi8(x5, x4, 8);
  __m256i s0 = _mm256_xor_si256(_mm256_srli_epi64(w1, 1), _mm256_slli_epi64(w1, 63));
  s0 = _mm256_xor_si256(s0, _mm256_srli_epi64(w1, 7));
  s0 = _mm256_xor_si256(s0, _mm256_shuffle_epi8(w1, rotate8));
  __m256i s1 = _mm256_xor_si256(_mm256_srli_epi64(x7, 19), _mm256_slli_epi64(x7, 45));
  s1 = _mm256_xor_si256(s1, _mm256_xor_si256(_mm256_srli_epi64(x7, 61), _mm256_slli_epi64(x7, 3)));
  s1 = _mm256_xor_si256(s1, _mm256_srli_epi64(x7, 6));
  return _mm256_add_epi64(_mm256_add_epi64(x0, w9), _mm256_add_epi64(s0, s1));
}

/// Sixteen rounds.
__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline void rounds(Letters &v, Word &bc,
                                                                    const Word *kw) noexcept {
  for (int half = 0; half < 2; ++half, kw += 4 * kSlot) {
    auto &[a, b, c, d, e, f, g, h] = v;
    round(a, b, d, e, f, g, h, bc, kw[0]);
    round(h, a, c, d, e, f, g, bc, kw[1]);
    round(g, h, b, c, d, e, f, bc, kw[kSlot]);
    round(f, g, a, b, c, d, e, bc, kw[kSlot + 1]);
    round(e, f, h, a, b, c, d, bc, kw[2 * kSlot]);
    round(d, e, g, h, a, b, c, bc, kw[2 * kSlot + 1]);
    round(c, d, f, g, h, a, b, bc, kw[3 * kSlot]);
    round(b, c, e, f, g, h, a, bc, kw[3 * kSlot + 1]);
  }
}

__attribute__((always_inline)) ZEL_ISA_AVX2_BMI2 inline void add(Word *h,
                                                                 const Letters &v) noexcept {
  h[0] += v.a;
  h[1] += v.b;
  h[2] += v.c;
  h[3] += v.d;
  h[4] += v.e;
  h[5] += v.f;
  h[6] += v.g;
  h[7] += v.h;
}

template <std::size_t kAdvance>
ZEL_ISA_AVX2_BMI2 void first(Word *state, const std::uint8_t *one, const std::uint8_t *two,
                             Word *kw) noexcept {
  constexpr const auto &kConstants = hash::kSha2Rounds<Word>;
  Pair x0 = load_pair(one, two), x1 = load_pair(one + 16, two + 16),
       x2 = load_pair(one + 32, two + 32), x3 = load_pair(one + 48, two + 48),
       x4 = load_pair(one + 64, two + 64), x5 = load_pair(one + 80, two + 80),
       x6 = load_pair(one + 96, two + 96), x7 = load_pair(one + 112, two + 112);
  store_sum(kw, x0, &kConstants[0]);
  store_sum(kw + 4, x1, &kConstants[2]);
  store_sum(kw + 8, x2, &kConstants[4]);
  store_sum(kw + 12, x3, &kConstants[6]);
  store_sum(kw + 16, x4, &kConstants[8]);
  store_sum(kw + 20, x5, &kConstants[10]);
  store_sum(kw + 24, x6, &kConstants[12]);
  store_sum(kw + 28, x7, &kConstants[14]);
  auto [a, b, c, d, e, f, g, h] =
      Letters{state[0], state[1], state[2], state[3], state[4], state[5], state[6], state[7]};
  Word bc = b ^ c;
  const Word *k = &kConstants[16];
  for (int i = 0; i < 4; ++i, k += 16, kw += kAdvance) {
    x0 = extend(x0, x1, x4, x5, x7);
    round(a, b, d, e, f, g, h, bc, kw[0]);
    round(h, a, c, d, e, f, g, bc, kw[1]);
    store_sum(kw + kAdvance, x0, k);
    x1 = extend(x1, x2, x5, x6, x0);
    round(g, h, b, c, d, e, f, bc, kw[4]);
    round(f, g, a, b, c, d, e, bc, kw[5]);
    store_sum(kw + kAdvance + 4, x1, k + 2);
    x2 = extend(x2, x3, x6, x7, x1);
    round(e, f, h, a, b, c, d, bc, kw[8]);
    round(d, e, g, h, a, b, c, bc, kw[9]);
    store_sum(kw + kAdvance + 8, x2, k + 4);
    x3 = extend(x3, x4, x7, x0, x2);
    round(c, d, f, g, h, a, b, bc, kw[12]);
    round(b, c, e, f, g, h, a, bc, kw[13]);
    store_sum(kw + kAdvance + 12, x3, k + 6);
    x4 = extend(x4, x5, x0, x1, x3);
    round(a, b, d, e, f, g, h, bc, kw[16]);
    round(h, a, c, d, e, f, g, bc, kw[17]);
    store_sum(kw + kAdvance + 16, x4, k + 8);
    x5 = extend(x5, x6, x1, x2, x4);
    round(g, h, b, c, d, e, f, bc, kw[20]);
    round(f, g, a, b, c, d, e, bc, kw[21]);
    store_sum(kw + kAdvance + 20, x5, k + 10);
    x6 = extend(x6, x7, x2, x3, x5);
    round(e, f, h, a, b, c, d, bc, kw[24]);
    round(d, e, g, h, a, b, c, bc, kw[25]);
    store_sum(kw + kAdvance + 24, x6, k + 12);
    x7 = extend(x7, x0, x3, x4, x6);
    round(c, d, f, g, h, a, b, bc, kw[28]);
    round(b, c, e, f, g, h, a, bc, kw[29]);
    store_sum(kw + kAdvance + 28, x7, k + 14);
  }
  Letters v{a, b, c, d, e, f, g, h};
  rounds(v, bc, kw);
  add(state, v);
}

}  // namespace

ZEL_ISA_AVX2_BMI2 void hash::sha512_blocks_avx2(void *state, const std::uint8_t *data,
                                                std::size_t count) noexcept {
  auto *const h = static_cast<Word *>(state);
  alignas(32) Word kw[160];
  for (; count >= 2; count -= 2, data += 256) {
    first<32>(h, data, data + 128, kw);
    Letters v{h[0], h[1], h[2], h[3], h[4], h[5], h[6], h[7]};
    Word bc = v.b ^ v.c;
    for (int i = 0; i < 5; ++i)
      rounds(v, bc, kw + 2 + 32 * i);
    add(h, v);
  }
  if (count != 0) first<0>(h, data, data, kw);
  _mm256_zeroupper();
}

}  // namespace zel
