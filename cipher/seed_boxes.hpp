// The S-boxes of SEED as affine maps around the inversion of AES, and where the G function finds
// its bytes. RFC 4269, section 2.2.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "cipher/gf256.hpp"
#include "cipher/nibble_map.hpp"
#include "cipher/seed_tables.hpp"

namespace zel::seed_boxes {

/// A root of SEED's polynomial in the field of AES: x -> root maps one field onto the other.
constexpr unsigned kRoot = 0x19;

consteval gf256::Box into_aes_field() {
  gf256::Columns powers{};
  for (unsigned bit = 0; bit < 8; ++bit)
    powers[bit] = gf256::power(kRoot, bit);
  return gf256::power_box(1, powers, 0);
}

/// The map behind `inner` that makes it `box`: box(x) = after(inner(into_aes_field(x))).
consteval gf256::Box after(const gf256::Box &inner, const gf256::Box &box) {
  return composed(box, composed(gf256::inverse_box(into_aes_field()), gf256::inverse_box(inner)));
}

using Bytes16 = std::array<std::uint8_t, 16>;

/// Where byte `k` of word `c` stands when all have been substituted: the AES instructions rotate
/// the rows.
constexpr std::size_t place(std::size_t c, std::size_t k) { return 4 * ((c + 4 - k) % 4) + k; }

/// Byte `k` of each word, in all places of the word.
constexpr Bytes16 spread(std::size_t k) {
  Bytes16 from{};
  for (std::size_t i = 0; i < 16; ++i)
    from[i] = static_cast<std::uint8_t>(place(i / 4, k));
  return from;
}

/// Bytes 0 and 2 of each word, which go through the first box, before bytes 1 and 3.
constexpr Bytes16 by_box() {
  Bytes16 from{};
  for (std::size_t c = 0; c < 4; ++c)
    for (std::size_t k = 0; k < 4; ++k)
      from[8 * (k % 2) + 2 * c + k / 2] = static_cast<std::uint8_t>(place(c, k));
  return from;
}

/// What byte `k` of a substituted word gives to each byte of the sum, little-endian.
constexpr Bytes16 mask_of(std::size_t k) {
  Bytes16 mask{};
  for (std::size_t i = 0; i < 16; ++i)
    mask[i] = kSeedMasks[(k + i) % 4];
  return mask;
}

struct Places {
  alignas(16) Bytes16 spread[4];
  alignas(16) Bytes16 masks[4];
  alignas(16) Bytes16 by_box;
};
inline constexpr Places kPlaces = {{spread(0), spread(1), spread(2), spread(3)},
                                   {mask_of(0), mask_of(1), mask_of(2), mask_of(3)},
                                   by_box()};

/// Neighbours change places.
alignas(16) inline constexpr Bytes16 kSwapPairs = {1, 0, 3,  2,  5,  4,  7,  6,
                                                   9, 8, 11, 10, 13, 12, 15, 14};
/// Words between big-endian and the processor's order.
alignas(16) inline constexpr Bytes16 kSwapWords = {3,  2,  1, 0, 7,  6,  5,  4,
                                                   11, 10, 9, 8, 15, 14, 13, 12};

}  // namespace zel::seed_boxes
