// Affine maps of bytes as two 16-entry tables, one per nibble, for byte shuffle instructions.
#pragma once

#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

#include "base/isa.hpp"
#include "cipher/gf256.hpp"

namespace zel {

/// map(x) = low[x & 15] ^ high[x >> 4]; the constant is in `low`.
struct NibbleMap {
  alignas(16) std::array<std::uint8_t, 16> low;
  alignas(16) std::array<std::uint8_t, 16> high;

  constexpr std::uint8_t operator()(unsigned x) const {
    return static_cast<std::uint8_t>(low[x & 15] ^ high[x >> 4]);
  }
};

/// The two tables of an affine `map`. The caller asserts `is_map` of the result.
consteval NibbleMap nibble_map(const gf256::Box &map) {
  NibbleMap result{};
  for (unsigned i = 0; i < 16; ++i) {
    result.low[i] = map[i];
    result.high[i] = static_cast<std::uint8_t>(map[i << 4] ^ map[0]);
  }
  return result;
}

consteval bool is_map(const NibbleMap &tables, const gf256::Box &map) {
  for (unsigned x = 0; x < 256; ++x)
    if (tables(x) != map[x]) return false;
  return true;
}

/// outer[inner[x]]
consteval gf256::Box composed(const gf256::Box &outer, const gf256::Box &inner) {
  gf256::Box box{};
  for (unsigned x = 0; x < 256; ++x)
    box[x] = outer[inner[x]];
  return box;
}

ZEL_ISA_AESNI inline __m128i load128(const void *from) noexcept {
  return _mm_loadu_si128(static_cast<const __m128i *>(from));
}

ZEL_ISA_AESNI inline void store128(void *to, __m128i value) noexcept {
  _mm_storeu_si128(static_cast<__m128i *>(to), value);
}

/// The map of each of 16 bytes.
ZEL_ISA_AESNI inline __m128i mapped(const NibbleMap &map, __m128i x) noexcept {
  const __m128i nibbles = _mm_set1_epi8(15);
  const __m128i low = _mm_shuffle_epi8(load128(&map.low), _mm_and_si128(x, nibbles));
  const __m128i high =
      _mm_shuffle_epi8(load128(&map.high), _mm_and_si128(_mm_srli_epi16(x, 4), nibbles));
  return _mm_xor_si128(low, high);
}

}  // namespace zel
