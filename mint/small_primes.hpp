// The odd primes of trial division, and what finds their multiples without a division.
#pragma once

#include <array>

#include "mint/limbs.hpp"

namespace zel::mint {

/// The odd primes from 3 to 1999, by Eratosthenes' sieve.
inline constexpr std::size_t kSmallPrimes = 302;
inline constexpr std::uint32_t kSmallPrimeLimit = 2000;

consteval std::array<std::uint32_t, kSmallPrimes> make_small_primes() {
  std::array<bool, kSmallPrimeLimit> composite{};
  std::array<std::uint32_t, kSmallPrimes> primes{};
  std::size_t found = 0;
  for (std::uint32_t p = 3; p < kSmallPrimeLimit; p += 2) {
    if (composite[p]) continue;
    primes[found++] = p;
    for (std::uint32_t multiple = p * p; multiple < kSmallPrimeLimit; multiple += 2 * p)
      composite[multiple] = true;
  }
  return primes;
}
inline constexpr auto kSmallPrimeTable = make_small_primes();
static_assert(kSmallPrimeTable[0] == 3 && kSmallPrimeTable[kSmallPrimes - 1] == 1999);

/// An odd d divides x exactly when x * 1/d modulo 2^64 is at most (2^64 - 1) / d. T. Granlund and
/// P. L. Montgomery, "Division by invariant integers using multiplication", 1994, section 9.
struct Divisor {
  limbs::Limb inverse;
  limbs::Limb most;
};

consteval std::array<Divisor, kSmallPrimes> make_divisors() {
  std::array<Divisor, kSmallPrimes> divisors{};
  for (std::size_t i = 0; i < kSmallPrimes; ++i) {
    const limbs::Limb p = kSmallPrimeTable[i];
    divisors[i] = {limbs::Limb{0} - limbs::negated_inverse(p), ~limbs::Limb{0} / p};
  }
  return divisors;
}
inline constexpr auto kDivisors = make_divisors();

/// Neighbouring primes whose product fits a limb.
struct PrimeGroup {
  limbs::Limb product;
  limbs::Limb inverse;  ///< 1/product modulo 2^64
  std::size_t first;    ///< index of the first prime
  std::size_t end;      ///< index after the last prime
};

inline constexpr std::size_t kPrimeGroups = 48;

consteval std::array<PrimeGroup, kPrimeGroups> make_prime_groups() {
  std::array<PrimeGroup, kPrimeGroups> groups{};
  std::size_t next = 0;
  for (PrimeGroup &group : groups) {
    group = {1, 0, next, next};
    while (next < kSmallPrimes && group.product <= ~limbs::Limb{0} / kSmallPrimeTable[next])
      group.product *= kSmallPrimeTable[next++];
    group.end = next;
    group.inverse = limbs::Limb{0} - limbs::negated_inverse(group.product);
  }
  return groups;
}
inline constexpr auto kPrimeGroupTable = make_prime_groups();
static_assert(kPrimeGroupTable[0].end == 15 &&
              kPrimeGroupTable[kPrimeGroups - 1].end == kSmallPrimes);
static_assert(kPrimeGroupTable[kPrimeGroups - 1].first < kSmallPrimes);

}  // namespace zel::mint
