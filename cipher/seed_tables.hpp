// Tables of SEED: S-boxes and the masks of the G function. RFC 4269, section 2.2.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "cipher/gf256.hpp"

namespace zel {

/// x^8 + x^6 + x^5 + x + 1
inline constexpr unsigned kSeedPolynomial = 0x163;

inline constexpr gf256::Box kSeedS1 =
    gf256::power_box(247, {0x2c, 0xd0, 0x69, 0xc2, 0x41, 0x44, 0x58, 0xe2}, 0xa9, kSeedPolynomial);
inline constexpr gf256::Box kSeedS2 =
    gf256::power_box(251, {0xd0, 0x2a, 0xe1, 0x2c, 0x21, 0x30, 0xa2, 0x6c}, 0x38, kSeedPolynomial);
static_assert(kSeedS1[0] == 0xa9 && kSeedS1[1] == 0x85 && kSeedS1[2] == 0xd6 &&
              kSeedS1[255] == 0x9a);
static_assert(kSeedS2[0] == 0x38 && kSeedS2[1] == 0xe8 && kSeedS2[2] == 0x2d &&
              kSeedS2[255] == 0xb7);

/// m0 to m3: which bits of a substituted byte reach which byte of the sum.
inline constexpr std::array<std::uint8_t, 4> kSeedMasks = {0xfc, 0xf3, 0xcf, 0x3f};

}  // namespace zel
