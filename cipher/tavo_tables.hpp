// The constants of tavo and tavoold, computed as docs/tavo.md defines them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace zel::tavo_tables {

constexpr bool is_prime(std::uint32_t n) {
  for (std::uint32_t d = 2; d * d <= n; ++d)
    if (n % d == 0) return false;
  return true;
}

/// The first 32 bits of the fractional part of the square root of n < 512.
constexpr std::uint32_t root(std::uint32_t n) {
  __extension__ typedef unsigned __int128 Wide;
  Wide result = 0;
  for (int bit = 36; bit >= 0; --bit) {
    const Wide tried = result | Wide{1} << bit;
    if (tried * tried <= Wide{n} << 64) result = tried;
  }
  return static_cast<std::uint32_t>(result);
}
static_assert(root(2) == 0x6a09e667);  // as in FIPS 180-4, section 5.3.3

/// The roots of `N` successive primes; `skipped` of them lie between 59 and the first.
template <std::size_t N>
constexpr std::array<std::uint32_t, N> roots(std::size_t skipped) {
  std::array<std::uint32_t, N> result{};
  std::size_t found = 0;
  for (std::uint32_t n = 59; found < skipped + N; ++n) {
    if (!is_prime(n)) continue;
    if (found >= skipped) result[found - skipped] = root(n);
    ++found;
  }
  return result;
}

struct Constants {
  std::array<std::uint32_t, 8> q32;
  std::array<std::uint32_t, 8> q16;  ///< two words each, the upper one first
  std::array<std::uint32_t, 10> a;   ///< multipliers; the schedule takes the first six
};

consteval Constants constants(std::size_t skipped) {
  Constants result = {roots<8>(skipped), roots<8>(skipped + 8), roots<10>(skipped + 16)};
  for (std::uint32_t &multiplier : result.a)
    multiplier |= 1;
  return result;
}

inline constexpr std::size_t kBoxConstants = 2;
inline constexpr Constants kTavo = constants(kBoxConstants);
inline constexpr Constants kTavoold = constants(kBoxConstants + 26);

using Box = std::array<std::uint16_t, 65536>;

/// The permutation of words that both ciphers use.
extern __attribute__((visibility("hidden"))) const Box kBox;

}  // namespace zel::tavo_tables
