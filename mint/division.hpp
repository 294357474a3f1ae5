// Long division on limbs: Algorithm D (Knuth, The Art of Computer Programming, volume 2, 4.3.1)
// with quotient limbs from three limbs by two (Moeller and Granlund, Improved division by invariant
// integers, IEEE Transactions on Computers 60, 2011).
#pragma once

#include <bit>

#include "base/wipe.hpp"
#include "mint/rows.hpp"

namespace zel::mint {

using limbs::DoubleLimb;
using limbs::Limb;

/// The longest number that division takes: a product of two records and a limb above it.
inline constexpr std::size_t kDivisionLimbs = 2 * limbs::kMaxLimbs + 1;

inline DoubleLimb join(Limb high, Limb low) noexcept {
  return (DoubleLimb{high} << limbs::kLimbBits) | low;
}
inline Limb high_half(DoubleLimb x) noexcept { return static_cast<Limb>(x >> limbs::kLimbBits); }
inline Limb low_half(DoubleLimb x) noexcept { return static_cast<Limb>(x); }

/// Divides high:low by d, for high < d, and leaves the remainder in `high`.
inline Limb divide_2by1(Limb &high, Limb low, Limb d) noexcept {
  Limb quotient = low;
  __asm__("divq %2" : "+a"(quotient), "+d"(high) : "rm"(d) : "cc");
  return quotient;
}

/// Which of the corrections a division took. The library counts nothing; a test may.
struct NoEvents {
  void equal_top() noexcept {}  ///< leading limbs are the divisor's: largest quotient limb
  void estimate_lowered(bool /*too_large*/) noexcept {
  }                                   ///< three by two: whether the estimate was one too large
  void estimate_raised() noexcept {}  ///< three by two: one more fitted after all
  void add_back() noexcept {}         ///< still one too large for the divisor's lower limbs
};

/// r = 2^(64 n) - a; whether that does not fit because a is zero.
inline bool negate(Limb *r, const Limb *a, std::size_t n) noexcept {
  limbs::zero(r, n);
  return limbs::sub_n(r, r, a, n) == 0;
}

/// A normalised pair of limbs to divide by: the top bit of `d` is set.
class Divisor3by2 {
 public:
  explicit Divisor3by2(Limb d1, Limb d0) noexcept : d_(join(d1, d0)) {
    Limb remainder = ~d1;  // (2^128 - 1) / d1 - 2^64
    v_ = divide_2by1(remainder, ~Limb{0}, d1);
    Limb p = d1 * v_ + d0;
    if (p < d0) {
      --v_;
      if (p >= d1) {
        --v_;
        p -= d1;
      }
      p -= d1;
    }
    const DoubleLimb t = DoubleLimb{v_} * d0;
    p += high_half(t);
    if (p < high_half(t)) {
      --v_;
      if (join(p, low_half(t)) >= d_) --v_;
    }
  }

  DoubleLimb value() const noexcept { return d_; }

  /// Divides u2:u1:u0, with u2:u1 below the divisor; the remainder comes back in `rest`.
  template <class Events>
  Limb divide(Limb u2, Limb u1, Limb u0, DoubleLimb &rest, Events &events) const noexcept {
    const DoubleLimb q = DoubleLimb{v_} * u2 + join(u2, u1);
    Limb quotient = high_half(q);
    const Limb r1 = u1 - quotient * high_half(d_);
    rest = join(r1, u0) - DoubleLimb{low_half(d_)} * quotient - d_;
    ++quotient;
    const Limb too_large = Limb{0} - static_cast<Limb>(high_half(rest) >= low_half(q));
    quotient += too_large;
    rest += d_ & join(too_large, too_large);
    events.estimate_lowered(too_large != 0);
    if (__builtin_expect(rest >= d_, 0)) {
      events.estimate_raised();
      ++quotient;
      rest -= d_;
    }
    return quotient;
  }

 private:
  DoubleLimb d_;
  Limb v_;
};

/// u[nu + 1] becomes the remainder in its low nd limbs, zero above. d[nd] is normalised, nu >= nd
/// >= 2, and the top nd limbs of u, the extra one included, are below d. q[nu - nd + 1] may be
/// null.
template <class Events>
void divide_normalised(Limb *q, Limb *u, std::size_t nu, const Limb *d, std::size_t nd,
                       Events &events) noexcept {
  const Divisor3by2 top(d[nd - 1], d[nd - 2]);
  // The limbs below the two are added as their complement: sums are faster than differences.
  const std::size_t low = nd - 2;
  Limb complement[kDivisionLimbs];
  const bool low_is_zero = negate(complement, d, low);
  for (std::size_t j = nu - nd + 1; j-- > 0;) {
    Limb *part = u + j;
    const DoubleLimb lead = join(part[nd], part[nd - 1]);
    Limb quotient = ~Limb{0};
    if (__builtin_expect(lead == top.value(), 0)) {
      events.equal_top();
      part[nd] -= limbs::submul_1(part, d, nd, quotient);
    } else {
      DoubleLimb rest = 0;
      quotient = top.divide(part[nd], part[nd - 1], part[nd - 2], rest, events);
      const Limb carry = limbs::add_row(part, complement, low, quotient);
      const Limb borrow = low_is_zero ? 0 : quotient - carry;
      const bool too_large = rest < borrow;
      rest -= borrow;
      if (__builtin_expect(too_large, 0)) {
        events.add_back();
        --quotient;
        rest += top.value() + limbs::add_n(part, part, d, low);
      }
      part[nd - 2] = low_half(rest);
      part[nd - 1] = high_half(rest);
      part[nd] = 0;
    }
    if (q != nullptr) q[j] = quotient;
  }
  wipe(complement, low * sizeof complement[0]);
}

/// u[nu + 1], whose top limb is scratch, becomes the remainder in its low nd limbs, zero above;
/// q[nu - nd + 1], which may be null, the quotient. d[nd] has a top limb that is not zero and is
/// shifted meanwhile. Needs nu >= nd >= 1.
template <class Events>
void divide(Limb *q, Limb *u, std::size_t nu, Limb *d, std::size_t nd, Events &events) noexcept {
  if (nd == 1) {
    Limb rest = 0;
    for (std::size_t i = nu; i-- > 0;) {
      const Limb quotient = divide_2by1(rest, u[i], d[0]);
      if (q != nullptr) q[i] = quotient;
    }
    limbs::zero(u, nu + 1);
    u[0] = rest;
    return;
  }
  const auto shift = static_cast<unsigned>(std::countl_zero(d[nd - 1]));
  limbs::lshift(d, d, nd, shift);
  u[nu] = limbs::lshift(u, u, nu, shift);
  divide_normalised(q, u, nu, d, nd, events);
  limbs::rshift(u, u, nd, shift);
  limbs::rshift(d, d, nd, shift);
}

}  // namespace zel::mint
