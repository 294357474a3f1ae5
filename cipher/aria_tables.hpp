// Tables of ARIA: S-boxes, diffusion layer, constants of the key schedule. RFC 5794, section 2.4.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "cipher/gf256.hpp"

namespace zel {

/// S1 is the S-box of AES; S2 is x^247 under another affine map. X1 and X2 are their inverses.
inline constexpr gf256::Box kAriaS1 = gf256::aes_box();
inline constexpr gf256::Box kAriaS2 =
    gf256::power_box(247, {0xac, 0xc5, 0x12, 0xcf, 0x5b, 0x5f, 0x85, 0xee}, 0xe2);
inline constexpr gf256::Box kAriaX1 = gf256::inverse_box(kAriaS1);
inline constexpr gf256::Box kAriaX2 = gf256::inverse_box(kAriaS2);
static_assert(kAriaS1[0x00] == 0x63 && kAriaS2[0x00] == 0xe2 && kAriaS2[0x1f] == 0xc1);
static_assert(kAriaX1[0x00] == 0x52 && kAriaX2[0x00] == 0x30 && kAriaX2[0x0f] == 0x3c);

/// Output byte i of the diffusion layer is the sum of the seven input bytes in row i.
inline constexpr std::array<std::array<std::uint8_t, 7>, 16> kAriaDiffusion = {{
    {3, 4, 6, 8, 9, 13, 14},
    {2, 5, 7, 8, 9, 12, 15},
    {1, 4, 6, 10, 11, 12, 15},
    {0, 5, 7, 10, 11, 13, 14},
    {0, 2, 5, 8, 11, 14, 15},
    {1, 3, 4, 9, 10, 14, 15},
    {0, 2, 7, 9, 10, 12, 13},
    {1, 3, 6, 8, 11, 12, 13},
    {0, 1, 4, 7, 10, 13, 15},
    {0, 1, 5, 6, 11, 12, 14},
    {2, 3, 5, 6, 8, 13, 15},
    {2, 3, 4, 7, 9, 12, 14},
    {1, 2, 6, 7, 9, 11, 12},
    {0, 3, 6, 7, 8, 10, 13},
    {0, 3, 4, 5, 9, 11, 14},
    {1, 2, 4, 5, 8, 10, 15},
}};

/// C1, C2, C3: the first 384 bits of the fractional part of 1/pi, as big-endian halves.
inline constexpr std::array<std::array<std::uint64_t, 2>, 3> kAriaConstants = {{
    {0x517cc1b727220a94, 0xfe13abe8fa9a6ee0},
    {0x6db14acc9e21c820, 0xff28b1d5ef5de2b0},
    {0xdb92371d2126e970, 0x0324977504e8c90e},
}};

}  // namespace zel
