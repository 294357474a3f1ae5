// SHA-1 with the SHA instructions. FIPS 180-4, section 6.1; Intel 64 and IA-32 Architectures
// Software Developer's Manual, volume 2B, SHA1RNDS4.
#include <immintrin.h>

#include "base/isa.hpp"
#include "hash/isa_blocks.hpp"

namespace zel {
namespace {

/// Four words, the first in the highest lane, most significant byte first.
ZEL_ISA_SHA inline __m128i load_words(const std::uint8_t *data) noexcept {
  const __m128i reverse = _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(data)), reverse);
}

/// A to D, and the A of four rounds ago, from which the instruction derives E.
struct Letters {
  __m128i abcd, last;
};

/// Four rounds with the function and constant of phase 0 to 3. Spelled out because compilers copy
/// both halves of the state where one copy does, which costs a tenth of a cycle for every byte.
template <int kPhase>
ZEL_ISA_SHA inline void rounds(Letters &s, __m128i words) noexcept {
  __m128i before;
  __asm__(
      "sha1nexte %[words], %[last]\n\t"
      "movdqa %[abcd], %[before]\n\t"
      "sha1rnds4 %[phase], %[last], %[abcd]"
      : [last] "+x"(s.last), [abcd] "+x"(s.abcd), [before] "=&x"(before)
      : [words] "x"(words), [phase] "i"(kPhase));
  s.last = before;
}

/// The four words after w0 to w3, in place of w0.
ZEL_ISA_SHA inline void extend(__m128i &w0, __m128i w1, __m128i w2, __m128i w3) noexcept {
  w0 = _mm_sha1msg2_epu32(_mm_xor_si128(_mm_sha1msg1_epu32(w0, w1), w2), w3);
}

/// The twenty rounds of a phase in the middle: words are extended as they are used.
template <int kPhase>
ZEL_ISA_SHA inline void phase(Letters &s, __m128i &w0, __m128i &w1, __m128i &w2,
                              __m128i &w3) noexcept {
  rounds<kPhase>(s, w0);
  extend(w0, w1, w2, w3);
  rounds<kPhase>(s, w1);
  extend(w1, w2, w3, w0);
  rounds<kPhase>(s, w2);
  extend(w2, w3, w0, w1);
  rounds<kPhase>(s, w3);
  extend(w3, w0, w1, w2);
  rounds<kPhase>(s, w0);
}

}  // namespace

ZEL_ISA_SHA void hash::sha1_blocks_shani(void *state, const std::uint8_t *data,
                                         std::size_t count) noexcept {
  auto *const h = static_cast<std::uint32_t *>(state);
  __m128i abcd = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(h)), 0x1b);
  __m128i e = _mm_set_epi32(static_cast<int>(h[4]), 0, 0, 0);
  for (; count != 0; --count, data += 64) {
    __m128i w0 = load_words(data);
    __m128i w1 = load_words(data + 16);
    __m128i w2 = load_words(data + 32);
    __m128i w3 = load_words(data + 48);

    // The first four rounds are given E itself.
    Letters s{_mm_sha1rnds4_epu32(abcd, _mm_add_epi32(e, w0), 0), abcd};
    extend(w0, w1, w2, w3);
    rounds<0>(s, w1);
    extend(w1, w2, w3, w0);
    rounds<0>(s, w2);
    extend(w2, w3, w0, w1);
    rounds<0>(s, w3);
    extend(w3, w0, w1, w2);
    rounds<0>(s, w0);
    extend(w0, w1, w2, w3);
    phase<1>(s, w1, w2, w3, w0);
    extend(w1, w2, w3, w0);
    phase<2>(s, w2, w3, w0, w1);
    extend(w2, w3, w0, w1);

    rounds<3>(s, w3);
    extend(w3, w0, w1, w2);
    rounds<3>(s, w0);
    rounds<3>(s, w1);
    rounds<3>(s, w2);
    rounds<3>(s, w3);
    abcd = _mm_add_epi32(s.abcd, abcd);
    e = _mm_sha1nexte_epu32(s.last, e);
  }
  _mm_storeu_si128(reinterpret_cast<__m128i *>(h), _mm_shuffle_epi32(abcd, 0x1b));
  h[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
}

}  // namespace zel
