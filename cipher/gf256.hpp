// Arithmetic in GF(2^8), for S-boxes that their standard gives by a rule. Compile time only.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace zel::gf256 {

/// x^8 + x^4 + x^3 + x + 1: AES (FIPS 197, section 4.2) and ARIA.
inline constexpr unsigned kAesPolynomial = 0x11b;

consteval std::uint8_t multiply(unsigned a, unsigned b, unsigned polynomial = kAesPolynomial) {
  unsigned product = 0;
  for (; b != 0; b >>= 1) {
    if ((b & 1) != 0) product ^= a;
    a <<= 1;
    if ((a & 0x100) != 0) a ^= polynomial;
  }
  return static_cast<std::uint8_t>(product);
}

consteval std::uint8_t power(unsigned base, unsigned exponent,
                             unsigned polynomial = kAesPolynomial) {
  unsigned result = 1;
  for (; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = multiply(result, base, polynomial);
    base = multiply(base, base, polynomial);
  }
  return static_cast<std::uint8_t>(result);
}

/// The inverse, and 0 for 0.
consteval std::uint8_t inverse(unsigned value, unsigned polynomial = kAesPolynomial) {
  return power(value, 254, polynomial);
}

/// A linear map of bytes: the images of bit 0 to bit 7.
using Columns = std::array<std::uint8_t, 8>;

consteval std::uint8_t apply(const Columns &map, unsigned value) {
  unsigned image = 0;
  for (unsigned bit = 0; bit < 8; ++bit)
    if ((value >> bit & 1) != 0) image ^= map[bit];
  return static_cast<std::uint8_t>(image);
}

using Box = std::array<std::uint8_t, 256>;

/// The S-box x -> map(x^exponent) ^ constant.
consteval Box power_box(unsigned exponent, const Columns &map, unsigned constant,
                        unsigned polynomial = kAesPolynomial) {
  Box box{};
  for (unsigned x = 0; x < 256; ++x)
    box[x] = static_cast<std::uint8_t>(apply(map, power(x, exponent, polynomial)) ^ constant);
  return box;
}

consteval Box inverse_box(const Box &box) {
  Box inverse{};
  for (unsigned x = 0; x < 256; ++x)
    inverse[box[x]] = static_cast<std::uint8_t>(x);
  return inverse;
}

/// The S-box of AES: inversion, then an affine map. FIPS 197, section 5.1.1.
consteval Box aes_box() {
  return power_box(254, {0x1f, 0x3e, 0x7c, 0xf8, 0xf1, 0xe3, 0xc7, 0x8f}, 0x63);
}

}  // namespace zel::gf256
