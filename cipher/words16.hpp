// Eight blocks of four 16-bit words, turned so that register i holds word i of every block.
#pragma once

#include <emmintrin.h>

#include <cstdint>

namespace zel {

struct Words16 {
  __m128i w[4];
};

/// From 64 bytes at any alignment.
inline Words16 load_words16(const std::uint8_t *from) noexcept {
  const auto pair = [from](int i) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from + 16 * i));
  };
  const __m128i even_low = _mm_unpacklo_epi16(pair(0), pair(1));
  const __m128i odd_low = _mm_unpackhi_epi16(pair(0), pair(1));
  const __m128i even_high = _mm_unpacklo_epi16(pair(2), pair(3));
  const __m128i odd_high = _mm_unpackhi_epi16(pair(2), pair(3));
  const __m128i low01 = _mm_unpacklo_epi16(even_low, odd_low);
  const __m128i low23 = _mm_unpackhi_epi16(even_low, odd_low);
  const __m128i high01 = _mm_unpacklo_epi16(even_high, odd_high);
  const __m128i high23 = _mm_unpackhi_epi16(even_high, odd_high);
  return {{_mm_unpacklo_epi64(low01, high01), _mm_unpackhi_epi64(low01, high01),
           _mm_unpacklo_epi64(low23, high23), _mm_unpackhi_epi64(low23, high23)}};
}

inline void store_words16(std::uint8_t *to, const Words16 &words) noexcept {
  const auto store = [to](int i, __m128i low, __m128i high) {
    const __m128i even = _mm_unpacklo_epi16(low, high);
    const __m128i odd = _mm_unpackhi_epi16(low, high);
    auto *const pairs = reinterpret_cast<__m128i *>(to + 32 * i);
    _mm_storeu_si128(pairs, _mm_unpacklo_epi16(even, odd));
    _mm_storeu_si128(pairs + 1, _mm_unpackhi_epi16(even, odd));
  };
  const __m128i *const w = words.w;
  store(0, _mm_unpacklo_epi64(w[0], w[1]), _mm_unpacklo_epi64(w[2], w[3]));
  store(1, _mm_unpackhi_epi64(w[0], w[1]), _mm_unpackhi_epi64(w[2], w[3]));
}

}  // namespace zel
