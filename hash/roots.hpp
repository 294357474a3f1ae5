// Square and cube roots in binary, at compile time: where the constants of the SHA family and of
// RIPEMD-160 come from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::hash {

__extension__ typedef unsigned __int128 uint128;

/// A number below 2^256, least significant limb first.
using Limbs = std::array<std::uint64_t, 4>;

/// a * b, of which only the last four limbs are kept.
constexpr Limbs multiply(const Limbs &a, const Limbs &b) {
  Limbs product{};
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] == 0) continue;
    std::uint64_t carry = 0;
    for (std::size_t j = 0; i + j < product.size(); ++j) {
      const uint128 sum = uint128{a[i]} * b[j] + product[i + j] + carry;
      product[i + j] = static_cast<std::uint64_t>(sum);
      carry = static_cast<std::uint64_t>(sum >> 64);
    }
  }
  return product;
}

/// A root as a binary fraction: `integer` + `fraction` / 2^64, rounded down.
struct Root {
  std::uint64_t integer;
  std::uint64_t fraction;
};

/// The root of n, n < 512: degree 2 for the square root, 3 for the cube root. Bit by bit: x is the
/// largest number of 64 fraction bits with x^degree < n.
constexpr Root root(std::uint64_t n, std::size_t degree) {
  Limbs x{};
  for (unsigned bit = 64 + 5; bit-- > 0;) {
    const std::uint64_t mask = std::uint64_t{1} << (bit % 64);
    x[bit / 64] |= mask;
    Limbs power = multiply(x, x);
    if (degree == 3) power = multiply(power, x);
    if (power[degree] >= n) x[bit / 64] ^= mask;
  }
  return {x[1], x[0]};
}

/// floor(2^30 * root): the form in which SHA-1 and RIPEMD-160 use roots.
constexpr std::uint32_t scaled_root(std::uint64_t n, std::size_t degree) {
  const Root r = root(n, degree);
  return static_cast<std::uint32_t>((r.integer << 30) | (r.fraction >> 34));
}

}  // namespace zel::hash
