// Constants of SHA-2, computed from their definitions. FIPS 180-4, sections 4.2 and 5.3.
#pragma once

#include <utility>

#include "hash/roots.hpp"

namespace zel::hash {

/// The first 80 primes.
consteval std::array<std::uint16_t, 80> make_primes() {
  std::array<std::uint16_t, 80> primes{};
  std::size_t found = 0;
  for (std::uint16_t n = 2; found < primes.size(); ++n) {
    bool prime = true;
    for (std::size_t i = 0; i < found && prime; ++i)
      prime = n % primes[i] != 0;
    if (prime) primes[found++] = n;
  }
  return primes;
}
inline constexpr auto kPrimes = make_primes();

/// The fractional part of a root of the n-th prime, counted from 0. One constant each, because a
/// compiler limits the steps of one evaluation.
template <std::size_t kDegree, std::size_t kPrime>
inline constexpr std::uint64_t kFraction = root(kPrimes[kPrime], kDegree).fraction;

/// The first bits of the fractions for a run of primes.
template <class Word, std::size_t kDegree, std::size_t kFirst, std::size_t... kIndex>
constexpr std::array<Word, sizeof...(kIndex)> fractions(std::index_sequence<kIndex...>) {
  return {static_cast<Word>(kFraction<kDegree, kFirst + kIndex> >> (64 - 8 * sizeof(Word)))...};
}

/// Round constants: cube roots of the first 64 (32-bit words) or 80 (64-bit words) primes.
template <class Word>
alignas(64) inline constexpr auto kSha2Rounds =
    fractions<Word, 3, 0>(std::make_index_sequence<48 + 4 * sizeof(Word)>{});

/// Initial values: square roots of eight primes.
inline constexpr auto kSha256Initial =
    fractions<std::uint32_t, 2, 0>(std::make_index_sequence<8>{});
inline constexpr auto kSha384Initial =
    fractions<std::uint64_t, 2, 8>(std::make_index_sequence<8>{});
inline constexpr auto kSha512Initial =
    fractions<std::uint64_t, 2, 0>(std::make_index_sequence<8>{});

/// SHA-224 starts from the second 32 bits of the fractions that SHA-384 starts from.
consteval std::array<std::uint32_t, 8> make_sha224_initial() {
  std::array<std::uint32_t, 8> words{};
  for (std::size_t i = 0; i < words.size(); ++i)
    words[i] = static_cast<std::uint32_t>(kSha384Initial[i]);
  return words;
}
inline constexpr auto kSha224Initial = make_sha224_initial();

static_assert(kPrimes[79] == 409);
static_assert(kSha2Rounds<std::uint32_t>.size() == 64 && kSha2Rounds<std::uint64_t>.size() == 80);
static_assert(kSha2Rounds<std::uint64_t>[79] == 0x6c44198c4a475817);
static_assert(kSha256Initial[0] == 0x6a09e667 && kSha224Initial[0] == 0xc1059ed8);

}  // namespace zel::hash
