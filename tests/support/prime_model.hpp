// Random integers and primes written a second time, over GMP and from their rules alone: what they
// draw, in which order, and what they make of it.
#pragma once

#include <vector>

#include "tests/support/mint.hpp"
#include "zel_cc/prime.h"

namespace zel::test {

class PrimeModel {
 public:
  explicit PrimeModel(const std::mt19937 &source) : random_(source) {}

  std::size_t draws = 0;
  std::vector<std::size_t> seeds;  ///< how many draws came before each seeding
  mpz_class r, s, t;               ///< the factors of the last strong prime

  mpz_class integer(std::uint32_t bits) {
    mpz_class x = 0;
    for (std::uint32_t i = 0; i < bits / 32; ++i)
      put(x, i, word());
    if (bits % 32 != 0) put(x, bits / 32, top(bits % 32));
    return x;
  }

  mpz_class within_range(std::uint32_t min_bits, std::uint32_t max_bits) {
    mpz_class x = 0;
    do {
      const std::uint32_t from = x == 0 ? 0 : words_of(x) - 1;
      x %= two_to(32 * from);
      for (std::uint32_t i = from; i < max_bits / 32; ++i) {
        put(x, i, word());
        draw();
      }
      if (max_bits % 32 != 0) put(x, max_bits / 32, top(max_bits % 32));
    } while (bits_of(x) < min_bits);
    return x;
  }

  mpz_class between(const mpz_class &lo, const mpz_class &hi) {
    for (;;) {
      mpz_class x = integer(bits_of(hi));
      if (x >= hi) continue;
      if (x < lo) x |= lo;
      if (x != lo) return x;
    }
  }

  bool passes(const mpz_class &n, std::uint32_t iterations) {
    if (mpz_even_p(n.get_mpz_t()) != 0) return false;
    for (std::uint32_t p = 3; p < 2000; p += 2)
      if (n % p == 0) return false;
    const mpz_class less = n - 1;
    const auto twos = static_cast<std::uint32_t>(mpz_scan1(less.get_mpz_t(), 0));
    for (; iterations != 0; --iterations) {
      mpz_class a = n;
      while (a >= n)
        a = integer(bits_of(n));
      mpz_class y;
      mpz_powm(y.get_mpz_t(), a.get_mpz_t(), mpz_class(less >> twos).get_mpz_t(), n.get_mpz_t());
      for (std::uint32_t i = 1; i < twos && y != 1 && y != less; ++i) {
        y = y * y % n;
        if (y == 1) return false;
      }
      if (y != 1 && y != less) return false;
    }
    return true;
  }

  mpz_class prime(std::uint32_t min_bits, std::uint32_t max_bits, const mpz_class &e = 1) {
    return search(min_bits, e, [&] { return mpz_class(within_range(min_bits, max_bits) | 1); });
  }

  mpz_class congruent(mpz_class a, const mpz_class &m, std::uint32_t min_bits,
                      std::uint32_t max_bits, const mpz_class &e = 1) {
    if (mpz_even_p(a.get_mpz_t()) != 0) a += m;
    const mpz_class lo = abs(two_to(min_bits - 1) - a) / m;
    const mpz_class hi = abs(two_to(max_bits) - 1 - a) / m;
    return search(min_bits, e, [&] { return mpz_class(between(lo, hi) / 2 * 2 * m + a); });
  }

  mpz_class strong(std::uint32_t bits, const mpz_class &e, std::uint32_t r_bits,
                   std::uint32_t s_bits, std::uint32_t t_bits) {
    t = prime(t_bits, t_bits);
    s = prime(s_bits, s_bits);
    r = congruent(1, t, r_bits, r_bits);
    const mpz_class apart = abs(unit(s, r) - unit(r, s)) % (r * s);
    return congruent(apart, r * s, bits, bits, e);
  }

 private:
  static std::uint32_t bits_of(const mpz_class &x) {
    return x == 0 ? 0 : static_cast<std::uint32_t>(mpz_sizeinbase(x.get_mpz_t(), 2));
  }
  static void put(mpz_class &x, std::uint32_t place, std::uint32_t value) {
    x += mpz_class(value) << (32 * place);
  }
  static mpz_class unit(const mpz_class &a, const mpz_class &n) {
    mpz_class inverse;
    mpz_invert(inverse.get_mpz_t(), a.get_mpz_t(), n.get_mpz_t());
    return a * inverse;
  }

  std::uint32_t draw() {
    ++draws;
    return static_cast<std::uint32_t>(random_() >> 1);
  }
  std::uint32_t word() {
    const std::uint32_t first = draw();
    const std::uint32_t high = (draw() * 2) ^ first;
    return (high << 16) | ((draw() * 2) ^ (first >> 1));
  }
  std::uint32_t top(std::uint32_t bits) {
    const std::uint32_t first = draw();
    std::uint32_t x = (draw() * 2) ^ first;
    for (std::uint32_t covered = 16; covered < bits; covered += 16)
      x = (x << 16) | ((draw() * 2) ^ (first >> 1));
    return x & ((1U << bits) - 1);
  }

  template <class Candidate>
  mpz_class search(std::uint32_t min_bits, const mpz_class &e, Candidate candidate) {
    draw();
    seeds.push_back(draws);
    for (;;) {
      mpz_class p = candidate();
      if ((e == 1 || gcd(e, p - 1) == 1) && passes(p, PRIME_SelectMRIter(min_bits))) return p;
    }
  }

  std::mt19937 random_;
};

}  // namespace zel::test
