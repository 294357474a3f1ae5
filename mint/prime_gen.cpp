// Prime generators: random, in a residue class, and strong (Gordon's algorithm). Handbook of
// Applied Cryptography, 4.44 and 4.53.
#include <algorithm>
#include <numeric>

#include "base/wipe.hpp"
#include "mint/division.hpp"
#include "mint/record.hpp"
#include "zel_cc/prime.h"

namespace zel::mint {
namespace {

constexpr std::uint32_t kWordBits = 32;
/// No prime of fewer bits is above the primes of trial division.
constexpr std::uint32_t kFewestBits = 11;

/// Draws for each member of a small residue class before it is given up.
constexpr std::uint32_t kTriesEach = 64;

/// What the caller asks of a prime, checked once.
class Search {
 public:
  Search(std::uint32_t min_bits, std::uint32_t max_bits, const MINT *e) noexcept
      : min_bits_(min_bits), max_bits_(max_bits), has_e_(e != nullptr && !is_one(*e)) {
    if (has_e_) mint::copy(e_, *e);
  }

  /// False where it is plain that no candidate can pass.
  bool may_succeed() const noexcept {
    const bool e_fits = !has_e_ || (significant(e_) != 0 && e_.words[0] % 2 != 0);
    return min_bits_ <= max_bits_ && max_bits_ >= kFewestBits && max_bits_ <= ZEL_MINT_BITS &&
           e_fits;
  }

  /// Draws candidates until one passes; zero when none of very many does, or there is none to draw.
  template <class Draw>
  void run(MINT *p, std::uint32_t most_tries, Draw draw) const noexcept {
    const std::uint32_t iterations = PRIME_SelectMRIter(min_bits_);
    MINT_RandInit();
    for (std::uint32_t tries = std::min(most_tries, this->tries()); tries != 0; --tries) {
      if (!draw(p)) break;
      if (!accepts(*p)) continue;
      if (PRIME_MRTest(p, iterations) == 1) return trim(*p);
    }
    p->length = 0;
  }

  std::uint32_t tries() const noexcept { return 1000 * (max_bits_ + 100); }

  /// Whether gcd(e, p - 1) = 1.
  bool accepts(const MINT &p) const noexcept {
    if (!has_e_) return true;
    Wiped<MINT> less;
    MINT_SubInteger(&*less, &p, 1);
    return coprime(*less);
  }

  /// Whether gcd(e, x) = 1.
  bool coprime(const MINT &x) const noexcept {
    if (!has_e_) return true;
    if (significant(e_) == 1) {
      std::uint32_t rest = 0;
      MINT_ModInteger(&rest, &x, e_.words[0]);
      return std::gcd(rest, e_.words[0]) == 1;
    }
    Wiped<MINT> gcd;
    MINT_BinGCD(&*gcd, &e_, &x);
    return is_one(*gcd);
  }

 private:
  std::uint32_t min_bits_;
  std::uint32_t max_bits_;
  bool has_e_;
  MINT e_;
};

/// k * m + a for an odd a and even k between bounds.
class ResidueClass {
 public:
  ResidueClass(const MINT &a, const MINT &m, std::uint32_t min_bits,
               std::uint32_t max_bits) noexcept {
    mint::copy(*m_, m);
    mint::copy(*a_, a);
    if (!is_odd(a)) {
      MINT_Add(&*a_, &*a_, &*m_);
      if (MINT_Compare(&*a_, &*m_) < 0) a_->length = 0;  // too long for a record
    }
    Wiped<MINT> bound;
    p_min(&*bound, min_bits);
    set_bound(*low_, *bound);
    p_max(&*bound, max_bits);
    set_bound(*high_, *bound);
    p_max(&*bound, ZEL_MINT_BITS);
    set_bound(*most_, *bound);
  }

  /// False where it is plain that no member passes the search.
  bool may_succeed(const Search &search) const noexcept {
    if (significant(*m_) == 0 || !is_odd(*a_) || MINT_Compare(&*low_, &*most_) > 0) return false;
    Wiped<MINT> common;
    MINT_SubInteger(&*common, &*a_, 1);
    MINT_BinGCD(&*common, &*common, &*m_);
    if (!search.coprime(*common)) return false;  // it divides every p - 1
    MINT_BinGCD(&*common, &*a_, &*m_);
    return is_one(*common) || (MINT_Compare(&*common, &*a_) == 0 && a_may_come(search));
  }

  /// Draws that find a prime almost surely where there is one, if the class is small.
  std::uint32_t tries() const noexcept {
    if (high_->length == 0) return kTriesEach;
    const bool small = high_->length == 1 && high_->words[0] < ~0U / kTriesEach;
    return small ? kTriesEach * (high_->words[0] + 1) : ~0U;
  }

  /// False where nothing lies between the bounds; zero where the member does not fit a record.
  bool draw(MINT *p) const noexcept {
    MINT_RandWithinMINT(p, &*low_, &*high_);
    if (p->length == 0) return false;
    p->words[0] &= ~1U;
    if (MINT_Compare(p, &*most_) > 0) {
      p->length = 0;
      return true;
    }
    MINT_Mult(p, p, &*m_);
    MINT_Add(p, p, &*a_);
    return true;
  }

 private:
  /// Deliberate: the distance counts without its sign. When a itself is above the upper bound, so
  /// are the members.
  void set_bound(MINT &k, const MINT &bound) noexcept {
    Wiped<MINT> distance;
    Wiped<MINT> rest;
    MINT_Sub(&*distance, &bound, &*a_);
    MINT_Div(&k, &*rest, &*distance, &*m_);
  }

  /// Whether a, which alone is not a multiple of itself, is a prime that draws of k = 1 soon find.
  bool a_may_come(const Search &search) const noexcept {
    const bool drawn = low_->length == 0 && tries() <= search.tries();
    if (!drawn || !search.accepts(*a_) || PRIME_MRTest(&*a_, 0) != 1) return false;
    Wiped<MINT> power;  // Fermat's test to the base 2, which draws nothing
    Wiped<MINT> exponent;
    MINT_SubInteger(&*exponent, &*a_, 1);
    MINT_SetByInteger(&*power, 2);
    return MINT_mont_exp_mod(&*power, &*power, &*exponent, &*a_) == ZEL_OK && is_one(*power);
  }

  Wiped<MINT> a_;
  Wiped<MINT> m_;
  Wiped<MINT> low_;
  Wiped<MINT> high_;
  Wiped<MINT> most_;  ///< the last k of which the member fits a record
};

/// Whether Gordon's primes can have these lengths: a prime of n bits is above 2^(n - 1), and a
/// class modulo 2 m has members to draw only where 2 m is below its upper bound.
bool lengths_fit(std::uint32_t max_bits, std::uint32_t r, std::uint32_t s,
                 std::uint32_t t) noexcept {
  return t >= kFewestBits && s >= kFewestBits && t < r && r <= max_bits && s <= max_bits - r;
}

/// x = a * (1/a mod n). False when there is no inverse.
bool unit_of(MINT *x, const MINT &a, const MINT &n) noexcept {
  if (MINT_Inverse(x, &a, &n) != ZEL_OK) return false;
  MINT_Mult(x, x, &a);
  return true;
}

}  // namespace
}  // namespace zel::mint

using namespace zel;
using namespace zel::mint;

extern "C" {

void p_max(MINT *r, uint32_t bits) {
  bits = std::min<std::uint32_t>(bits, ZEL_MINT_BITS);
  std::fill(r->words, r->words + bits / kWordBits, ~0U);
  r->length = bits / kWordBits;
  if (bits % kWordBits != 0) r->words[r->length++] = (1U << (bits % kWordBits)) - 1;
}

void p_min(MINT *r, uint32_t bits) {
  r->length = 0;
  if (bits == 0 || bits > ZEL_MINT_BITS) return;
  const std::uint32_t top = (bits - 1) / kWordBits;
  std::fill(r->words, r->words + top, 0U);
  r->words[top] = 1U << ((bits - 1) % kWordBits);
  r->length = top + 1;
}

void PRIME_GeneratePrime(MINT *p, uint32_t minBits, uint32_t maxBits, const MINT *e) {
  const Search search(minBits, maxBits, e);
  p->length = 0;
  if (!search.may_succeed()) return;
  search.run(p, ~0U, [minBits, maxBits](MINT *candidate) {
    if (MINT_RandWithinRange(candidate, minBits, maxBits) == 0) MINT_SetByInteger(candidate, 1);
    candidate->words[0] |= 1;
    return true;
  });
}

void PRIME_GeneratePrimeCongruence(MINT *p, const MINT *a, const MINT *m, uint32_t minBits,
                                   uint32_t maxBits, const MINT *e) {
  const Search search(minBits, maxBits, e);
  const ResidueClass members(*a, *m, minBits, maxBits);
  p->length = 0;
  if (!search.may_succeed() || !members.may_succeed(search)) return;
  search.run(p, members.tries(), [&members](MINT *candidate) { return members.draw(candidate); });
}

void PRIME_GenerateStrongPrime(MINT *p, uint32_t minBits, uint32_t maxBits, const MINT *e,
                               uint32_t rBits, uint32_t sBits, uint32_t tBits) {
  const Search search(minBits, maxBits, e);
  MINT exponent;
  const MINT *const wanted = e == nullptr ? nullptr : &exponent;
  if (e != nullptr) mint::copy(exponent, *e);
  p->length = 0;
  if (!search.may_succeed() || !lengths_fit(maxBits, rBits, sBits, tBits)) return;

  Wiped<MINT> r;
  Wiped<MINT> s;
  Wiped<MINT> t;
  PRIME_GeneratePrime(&*t, tBits, tBits, nullptr);
  PRIME_GeneratePrime(&*s, sBits, sBits, nullptr);
  if (t->length == 0 || s->length == 0) return;
  Wiped<MINT> one;
  MINT_SetByInteger(&*one, 1);
  PRIME_GeneratePrimeCongruence(&*r, &*one, &*t, rBits, rBits, nullptr);
  if (r->length == 0) return;

  // u1 is 1 modulo r and 0 modulo s, u2 the other way round.
  // Deliberate: the difference is taken without its sign. Where u2 is larger, it is r that divides
  // p + 1 and s that divides p - 1.
  Wiped<MINT> u1;
  Wiped<MINT> u2;
  Wiped<MINT> rs;
  if (!unit_of(&*u1, *s, *r) || !unit_of(&*u2, *r, *s)) return;
  MINT_Sub(&*u1, &*u1, &*u2);
  MINT_Mult(&*rs, &*r, &*s);
  MINT_ModClassic(&*u1, &*rs);
  PRIME_GeneratePrimeCongruence(p, &*u1, &*rs, minBits, maxBits, wanted);
}

}  // extern "C"
