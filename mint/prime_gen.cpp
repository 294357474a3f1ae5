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
  void run(MINT *p, Draw draw) const noexcept {
    const std::uint32_t iterations = PRIME_SelectMRIter(min_bits_);
    MINT_RandInit();
    for (std::uint32_t tries = 1000 * (max_bits_ + 100); tries != 0; --tries) {
      if (!draw(p)) break;
      if (has_e_ && !coprime(*p)) continue;
      if (PRIME_MRTest(p, iterations) == 1) return trim(*p);
    }
    p->length = 0;
  }

 private:
  /// Whether gcd(e, p - 1) = 1.
  bool coprime(const MINT &p) const noexcept {
    Wiped<MINT> less;
    MINT_SubInteger(&*less, &p, 1);
    const std::uint32_t words = significant(e_);
    if (words == 1) {
      std::uint32_t rest = 0;
      MINT_ModInteger(&rest, &*less, e_.words[0]);
      return std::gcd(rest, e_.words[0]) == 1;
    }
    Wiped<MINT> gcd;
    MINT_BinGCD(&*gcd, &e_, &*less);
    return is_one(*gcd);
  }

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
    if (used(a) == 0 || a.words[0] % 2 == 0) MINT_Add(&*a_, &*a_, &*m_);
    Wiped<MINT> bound;
    Wiped<MINT> rest;
    p_min(&*bound, min_bits);
    MINT_Sub(&*bound, &*bound, &*a_);
    MINT_Div(&*low_, &*rest, &*bound, &*m_);
    p_max(&*bound, max_bits);
    MINT_Sub(&*bound, &*bound, &*a_);
    MINT_Div(&*high_, &*rest, &*bound, &*m_);
  }

  /// False where every member is even.
  bool may_be_prime() const noexcept { return used(*a_) != 0 && a_->words[0] % 2 != 0; }

  /// False where nothing lies between the bounds.
  bool draw(MINT *p) const noexcept {
    MINT_RandWithinMINT(p, &*low_, &*high_);
    if (p->length == 0) return false;
    p->words[0] &= ~1U;
    MINT_Mult(p, p, &*m_);
    MINT_Add(p, p, &*a_);
    return true;
  }

 private:
  Wiped<MINT> a_;
  Wiped<MINT> m_;
  Wiped<MINT> low_;
  Wiped<MINT> high_;
};

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
  search.run(p, [minBits, maxBits](MINT *candidate) {
    if (MINT_RandWithinRange(candidate, minBits, maxBits) == 0) MINT_SetByInteger(candidate, 1);
    candidate->words[0] |= 1;
    return true;
  });
}

void PRIME_GeneratePrimeCongruence(MINT *p, const MINT *a, const MINT *m, uint32_t minBits,
                                   uint32_t maxBits, const MINT *e) {
  const Search search(minBits, maxBits, e);
  const bool plain_zero = significant(*m) == 0;
  const ResidueClass members(*a, *m, minBits, maxBits);
  p->length = 0;
  if (plain_zero || !search.may_succeed() || !members.may_be_prime()) return;
  search.run(p, [&members](MINT *candidate) { return members.draw(candidate); });
}

void PRIME_GenerateStrongPrime(MINT *p, uint32_t minBits, uint32_t maxBits, const MINT *e,
                               uint32_t rBits, uint32_t sBits, uint32_t tBits) {
  const Search search(minBits, maxBits, e);
  MINT exponent;
  const MINT *const wanted = e == nullptr ? nullptr : &exponent;
  if (e != nullptr) mint::copy(exponent, *e);
  p->length = 0;
  if (!search.may_succeed() || rBits > ZEL_MINT_BITS || sBits > ZEL_MINT_BITS - rBits) return;

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
