// Big integers for tests: GMP values of records, operands of awkward shape, records with a fence.
#pragma once

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>

#include "zel_cc/mint.h"
#include "zel_cc/mint_arith.h"

namespace zel::test {

inline std::uint32_t used(const MINT &a) { return std::min<std::uint32_t>(a.length, 130); }

inline mpz_class value_of_words(const std::uint32_t *words, std::size_t len) {
  mpz_class value;
  mpz_import(value.get_mpz_t(), len, -1, sizeof *words, 0, 0, words);
  return value;
}
inline mpz_class value_of(const MINT &a) { return value_of_words(a.words, used(a)); }

inline std::uint32_t words_of(const mpz_class &value) {
  return value == 0 ? 0
                    : static_cast<std::uint32_t>((mpz_sizeinbase(value.get_mpz_t(), 2) + 31) / 32);
}

inline MINT record(const mpz_class &value) {
  MINT a = {};
  a.length = words_of(value);
  mpz_export(a.words, nullptr, -1, sizeof a.words[0], 0, 0, value.get_mpz_t());
  return a;
}

inline MINT from_words(std::initializer_list<std::uint32_t> low_first) {
  MINT a = {};
  for (const std::uint32_t w : low_first)
    a.words[a.length++] = w;
  return a;
}

inline mpz_class two_to(std::uint32_t n) { return mpz_class(1) << n; }
inline const mpz_class &capacity() {
  static const mpz_class value = two_to(4160);
  return value;
}

/// Operands: every length, and contents that carry, borrow and estimate badly.
class Shapes {
 public:
  explicit Shapes(std::uint64_t seed) : random_(seed) {}

  std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }
  std::uint32_t word() { return static_cast<std::uint32_t>(random_()); }

  /// Words of one of the shapes.
  void fill(std::uint32_t *words, std::uint32_t len) {
    const std::uint32_t shape = below(6);
    for (std::uint32_t i = 0; i < len; ++i) {
      const std::uint32_t extreme = below(2) == 0 ? 0U : ~0U;
      words[i] = shape < 2 ? word() : shape == 2 ? ~0U : shape == 3 ? extreme : 0U;
    }
    if (len == 0) return;
    if (shape == 4) words[len - 1] = 1U << below(32);  // a power of two
    if (shape == 5) words[below(len)] = word();        // zero words on top
    if (shape < 4 && below(4) == 0) words[len - 1] = 1U << below(32);
    if (below(8) == 0) words[len - 1] = 0;
  }

  /// A record of at most `most` words; the words above its length are noise.
  MINT operand(std::uint32_t most = 130) {
    static const std::uint32_t kEdges[] = {0, 1, 2, 3, 4, 5, 63, 64, 65, 66, 128, 129, 130};
    const std::uint32_t edge = kEdges[below(std::size(kEdges))];
    MINT a;
    for (std::uint32_t &w : a.words)
      w = word();
    a.length = below(2) == 0 && edge <= most ? edge : below(most + 1);
    fill(a.words, a.length);
    return a;
  }

 private:
  std::mt19937_64 random_;
};

/// A record between two fences that a stray write would break.
class Fenced {
 public:
  Fenced() { reset({}); }
  MINT *get() { return &inner_.record; }
  MINT &operator*() { return inner_.record; }
  MINT *operator->() { return &inner_.record; }
  void reset(const MINT &a) {
    std::memset(&inner_, 0xa5, sizeof inner_);
    inner_.record = a;
  }
  bool intact() const {
    const auto holds = [](std::uint32_t w) { return w == 0xa5a5a5a5; };
    return std::all_of(inner_.before, inner_.before + 8, holds) &&
           std::all_of(inner_.after, inner_.after + 8, holds);
  }

 private:
  struct {
    std::uint32_t before[8];
    MINT record;
    std::uint32_t after[8];
  } inner_;
};

}  // namespace zel::test
