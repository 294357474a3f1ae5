// SHA-256 with the SHA instructions. FIPS 180-4, section 6.2; Intel 64 and IA-32 Architectures
// Software Developer's Manual, volume 2B, SHA256RNDS2.
#include <immintrin.h>

#include "base/isa.hpp"
#include "hash/isa_blocks.hpp"
#include "hash/sha2_constants.hpp"

namespace zel {
namespace {

/// The letters as the instructions want them: A, B, E, F and C, D, G, H, high lane first.
struct Letters {
  __m128i abef, cdgh;
};

ZEL_ISA_SHA inline Letters load(const std::uint32_t *h) noexcept {
  const __m128i dcba = _mm_loadu_si128(reinterpret_cast<const __m128i *>(h));
  const __m128i hgfe = _mm_loadu_si128(reinterpret_cast<const __m128i *>(h + 4));
  const __m128i cdab = _mm_shuffle_epi32(dcba, 0xb1);
  const __m128i efgh = _mm_shuffle_epi32(hgfe, 0x1b);
  return {_mm_alignr_epi8(cdab, efgh, 8), _mm_blend_epi16(efgh, cdab, 0xf0)};
}

ZEL_ISA_SHA inline void store(std::uint32_t *h, const Letters &s) noexcept {
  const __m128i feba = _mm_shuffle_epi32(s.abef, 0x1b);
  const __m128i dchg = _mm_shuffle_epi32(s.cdgh, 0xb1);
  _mm_storeu_si128(reinterpret_cast<__m128i *>(h), _mm_blend_epi16(feba, dchg, 0xf0));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(h + 4), _mm_alignr_epi8(dchg, feba, 8));
}

/// Four words of the message, most significant byte first.
ZEL_ISA_SHA inline __m128i load_words(const std::uint8_t *data) noexcept {
  const __m128i swap = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(data)), swap);
}

/// Rounds 4 * group to 4 * group + 3.
ZEL_ISA_SHA inline void rounds(Letters &s, __m128i words, std::size_t group) noexcept {
  const auto *const constants =
      reinterpret_cast<const __m128i *>(hash::kSha2Rounds<std::uint32_t>.data());
  const __m128i sum = _mm_add_epi32(words, _mm_load_si128(constants + group));
  s.cdgh = _mm_sha256rnds2_epu32(s.cdgh, s.abef, sum);
  s.abef = _mm_sha256rnds2_epu32(s.abef, s.cdgh, _mm_shuffle_epi32(sum, 0x0e));
}

/// The four words after w0 to w3, in place of w0.
ZEL_ISA_SHA inline void extend(__m128i &w0, __m128i w1, __m128i w2, __m128i w3) noexcept {
  const __m128i sum = _mm_add_epi32(_mm_sha256msg1_epu32(w0, w1), _mm_alignr_epi8(w3, w2, 4));
  w0 = _mm_sha256msg2_epu32(sum, w3);
}

}  // namespace

ZEL_ISA_SHA void hash::sha256_blocks_shani(void *state, const std::uint8_t *data,
                                           std::size_t count) noexcept {
  auto *const h = static_cast<std::uint32_t *>(state);
  Letters s = load(h);
  for (; count != 0; --count, data += 64) {
    const Letters before = s;
    __m128i w0 = load_words(data);
    __m128i w1 = load_words(data + 16);
    __m128i w2 = load_words(data + 32);
    __m128i w3 = load_words(data + 48);
#pragma GCC unroll 3
    for (std::size_t group = 0; group < 12; group += 4) {
      rounds(s, w0, group);
      extend(w0, w1, w2, w3);
      rounds(s, w1, group + 1);
      extend(w1, w2, w3, w0);
      rounds(s, w2, group + 2);
      extend(w2, w3, w0, w1);
      rounds(s, w3, group + 3);
      extend(w3, w0, w1, w2);
    }
    rounds(s, w0, 12);
    rounds(s, w1, 13);
    rounds(s, w2, 14);
    rounds(s, w3, 15);
    s.abef = _mm_add_epi32(s.abef, before.abef);
    s.cdgh = _mm_add_epi32(s.cdgh, before.cdgh);
  }
  store(h, s);
}

}  // namespace zel
