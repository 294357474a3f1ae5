// Greatest common divisor and modular inverse: Euclid's algorithm in Lehmer's form, which takes
// most quotients from the leading limbs alone (Knuth, The Art of Computer Programming, volume
// 2, 4.5.2). The names of the functions remember the binary method; their results do not depend on
// it.
#include <bit>
#include <utility>

#include "base/bytes.hpp"
#include "mint/division.hpp"
#include "mint/record.hpp"

namespace zel {
namespace {

using limbs::DoubleLimb;
using limbs::Limb;

/// What a run of division steps does to a pair. With an even number of steps the new pair is
/// (x0 a - y0 b, y1 b - x1 a); with an odd number both signs change.
struct Steps {
  Limb x0 = 1, y0 = 0;
  Limb x1 = 0, y1 = 1;
  bool odd = false;

  void step(Limb quotient) noexcept {
    x0 = std::exchange(x1, x0 + quotient * x1);
    y0 = std::exchange(y1, y0 + quotient * y1);
    odd = !odd;
  }
  bool none() const noexcept { return x1 == 0 && !odd; }
};

/// Divides the leading bits of a pair, a >= b, as long as the quotients are those of the whole
/// numbers. Multipliers stay at 2^31 and below, so the unseen bits move a remainder by less than
/// 2^32, also where the leading bits themselves are off by a quarter.
void divide_leading(Limb a, Limb b, Steps &steps) noexcept {
  constexpr Limb kLeast = Limb{1} << 33;
  if (b < kLeast) return;
  for (;;) {
    const Limb quotient = a / b;
    const Limb rest = a - quotient * b;
    if (rest < kLeast || b - rest < kLeast) return;
    steps.step(quotient);
    a = b;
    b = rest;
  }
}

unsigned leading_zeros(DoubleLimb x) noexcept {
  const int high = std::countl_zero(mint::high_half(x));
  return static_cast<unsigned>(high < 64 ? high : 64 + std::countl_zero(mint::low_half(x)));
}

/// The steps that the leading 128 bits of a pair allow: two runs of about 31 bits each.
Steps leading_steps(DoubleLimb a, DoubleLimb b) noexcept {
  Steps steps;
  divide_leading(mint::high_half(a), mint::high_half(b), steps);
  if (steps.none()) return steps;
  DoubleLimb next_a = a * steps.x0 - b * steps.y0;
  DoubleLimb next_b = b * steps.y1 - a * steps.x1;
  if (steps.odd) {
    next_a = 0 - next_a;
    next_b = 0 - next_b;
  }
  const unsigned drop = limbs::kLimbBits - leading_zeros(next_a);
  divide_leading(static_cast<Limb>(next_a >> drop), static_cast<Limb>(next_b >> drop), steps);
  return steps;
}

/// Euclid's algorithm on two numbers, with the coefficient of the second one if it is wanted.
class Euclid {
 public:
  Euclid(const std::uint32_t *a, std::uint32_t a_len, const std::uint32_t *b, std::uint32_t b_len,
         bool cofactor) noexcept
      : cofactor_(cofactor) {
    size_ = limbs::limbs_of_words(std::max(a_len, b_len));
    limbs::from_words(u_, size_, a, a_len);
    limbs::from_words(v_, size_, b, b_len);
    t1_[0] = 1;
    if (limbs::compare(u_, v_, size_) < 0) rotate();
    size_ = limbs::significant(u_, size_);
    while (size_ > 1 && limbs::significant(v_, size_) != 0) {
      if (!leading_round()) division_round();
    }
    if (size_ == 1 && v_[0] != 0) last_limb();
  }
  Euclid(const Euclid &) = delete;
  Euclid &operator=(const Euclid &) = delete;
  ~Euclid() { wipe(area_, sizeof area_); }

  /// The greatest common divisor is divisor()[size()].
  const Limb *divisor() const noexcept { return u_; }
  std::size_t size() const noexcept { return size_; }
  bool is_one() const noexcept { return size_ == 1 && u_[0] == 1; }
  /// The magnitude of the second number's coefficient is cofactor()[cofactor_size()].
  const Limb *cofactor() const noexcept { return t0_; }
  std::size_t cofactor_size() const noexcept { return limbs::significant(t0_, t_size_); }
  /// Its sign: minus, and plus for the first number, unless this holds.
  bool odd() const noexcept { return odd_; }

 private:
  static constexpr std::size_t kRoom = limbs::kMaxLimbs + 2;

  void rotate() noexcept {
    std::swap(u_, v_);
    std::swap(t0_, t1_);
    odd_ = !odd_;
  }

  /// The numbers made of bits 128 from the top bit of u down.
  DoubleLimb leading(const Limb *from, unsigned shift) const noexcept {
    const DoubleLimb top = mint::join(from[size_ - 1], from[size_ - 2]);
    const Limb below = size_ > 2 ? from[size_ - 3] : 0;
    return shift == 0 ? top : (top << shift) | (below >> (limbs::kLimbBits - shift));
  }

  /// to = a * x + b * y + least, without what leaves the top.
  static Limb sum_of_products(Limb *to, const Limb *a, Limb x, const Limb *b, Limb y, Limb least,
                              std::size_t n) noexcept {
    limbs::zero(to, n);
    to[0] = least;
    const Limb top = limbs::add_row(to, a, n, x);
    return top + limbs::add_row(to, b, n, y);
  }

  /// to = a * x - b * y, which is not negative and not longer than the pair. -b is the complement
  /// of b and one more.
  void combine(Limb *to, const Limb *a, Limb x, const Limb *not_b, Limb y) const noexcept {
    sum_of_products(to, a, x, not_b, y, y, size_);
  }

  void complement(Limb *to, const Limb *from) const noexcept {
    for (std::size_t i = 0; i < size_; ++i)
      to[i] = ~from[i];
  }

  bool leading_round() noexcept {
    const auto shift = static_cast<unsigned>(std::countl_zero(u_[size_ - 1]));
    const Steps steps = leading_steps(leading(u_, shift), leading(v_, shift));
    if (steps.none()) return false;
    complement(not_u_, u_);
    complement(not_v_, v_);
    if (steps.odd) {
      combine(next_u_, v_, steps.y0, not_u_, steps.x0);
      combine(next_v_, u_, steps.x1, not_v_, steps.y1);
    } else {
      combine(next_u_, u_, steps.x0, not_v_, steps.y0);
      combine(next_v_, v_, steps.y1, not_u_, steps.x1);
    }
    std::swap(u_, next_u_);
    std::swap(v_, next_v_);
    size_ = limbs::significant(u_, size_);
    follow(steps);
    return true;
  }

  /// The coefficients take the steps that the numbers took.
  void follow(const Steps &steps) noexcept {
    odd_ = odd_ != steps.odd;
    if (!cofactor_) return;
    const std::size_t n = t_size_;
    next_t0_[n] = sum_of_products(next_t0_, t0_, steps.x0, t1_, steps.y0, 0, n);
    next_t1_[n] = sum_of_products(next_t1_, t0_, steps.x1, t1_, steps.y1, 0, n);
    std::swap(t0_, next_t0_);
    std::swap(t1_, next_t1_);
    fit_cofactors(n + 1);
  }

  void fit_cofactors(std::size_t n) noexcept {
    t_size_ = std::max(limbs::significant(t0_, n), limbs::significant(t1_, n));
  }

  /// One whole division, for a quotient that the leading bits do not settle.
  void division_round() noexcept {
    const std::size_t v_size = limbs::significant(v_, size_);
    const std::size_t q_size = size_ - v_size + 1;
    mint::NoEvents events;
    mint::divide(quotient_, u_, size_, v_, v_size, events);
    if (cofactor_) {
      const std::size_t q_used = limbs::significant(quotient_, q_size);
      const std::size_t n = q_used + t_size_;
      limbs::mul(product_, quotient_, q_used, t1_, t_size_);
      limbs::zero(t0_ + t_size_, kRoom - t_size_);
      limbs::zero(t1_ + t_size_, kRoom - t_size_);
      // The sum has no more limbs than the larger number; the product may have a zero limb above.
      const std::size_t room = std::min(n + 1, kRoom);
      limbs::add(t0_, t0_, room, product_, std::min(n, room));
      fit_cofactors(room);
    }
    rotate();
    size_ = v_size;
  }

  /// Both numbers have one limb: plain Euclid to the end.
  void last_limb() noexcept {
    Steps steps;
    Limb a = u_[0];
    Limb b = v_[0];
    while (b != 0) {
      const Limb quotient = a / b;
      a = std::exchange(b, a - quotient * b);
      steps.step(quotient);
    }
    u_[0] = a;
    v_[0] = 0;
    follow(steps);
  }

  Limb area_[13 * kRoom] = {};
  Limb *u_ = area_;
  Limb *v_ = u_ + kRoom;
  Limb *next_u_ = v_ + kRoom;
  Limb *next_v_ = next_u_ + kRoom;
  Limb *t0_ = next_v_ + kRoom;
  Limb *t1_ = t0_ + kRoom;
  Limb *next_t0_ = t1_ + kRoom;
  Limb *next_t1_ = next_t0_ + kRoom;
  Limb *quotient_ = next_t1_ + kRoom;
  Limb *product_ = quotient_ + kRoom;  // 2 * kRoom
  Limb *not_u_ = product_ + 2 * kRoom;
  Limb *not_v_ = not_u_ + kRoom;
  std::size_t size_ = 0;
  std::size_t t_size_ = 1;
  bool cofactor_;
  bool odd_ = false;
};

/// Writes a number that is known to fit without its top zero words.
void put(std::uint32_t *len, std::uint32_t *words, const Limb *from, std::size_t size) noexcept {
  size = limbs::significant(from, size);
  const auto count = static_cast<std::uint32_t>((limbs::bit_length(from, size) + 31) / 32);
  limbs::to_words(words, count, from, size);
  *len = count;
}

/// The coefficient of `a` that goes with the result: (y b +- g) / a.
void put_first_cofactor(std::uint32_t *x_len, std::uint32_t *x, const Euclid &euclid,
                        std::uint32_t a_len, const std::uint32_t *a, std::uint32_t b_len,
                        const std::uint32_t *b) noexcept {
  using Work = mint::Limbs<mint::kDivisionLimbs + 1>;
  Work divisor(a, mint::significant(a, a_len));
  const Work factor(b, mint::significant(b, b_len));
  const std::size_t y_size = euclid.cofactor_size();
  const std::size_t size = std::max({y_size + factor.size(), euclid.size(), divisor.size()});
  Work product(size + 2);
  limbs::zero(product.data(), product.size());
  limbs::mul(product.data(), euclid.cofactor(), y_size, factor.data(), factor.size());
  if (euclid.odd())
    limbs::sub(product.data(), product.data(), size + 1, euclid.divisor(), euclid.size());
  else
    limbs::add(product.data(), product.data(), size + 1, euclid.divisor(), euclid.size());
  Work quotient(size + 2 - divisor.size());
  mint::NoEvents events;
  mint::divide(quotient.data(), product.data(), size + 1, divisor.data(), divisor.size(), events);
  put(x_len, x, quotient.data(), quotient.size());
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

void MINT_BinGCD(MINT *g, const MINT *a, const MINT *b) {
  if (MINT_Compare(a, b) == 0)
    mint::copy(*g, *a);
  else
    MINT_BinGCD_Core(&g->length, g->words, mint::used(*a), a->words, mint::used(*b), b->words);
}

int32_t MINT_BinExtGCD(MINT *x, MINT *y, MINT *g, const MINT *a, const MINT *b) {
  if (any_null(x, y, g, a, b) || x == y || x == g || y == g) return 0;
  if (a == b) {
    mint::copy(*g, *b);
    x->length = 0;
    mint::set_word(*y, 1);
    return 1;
  }
  return MINT_BinExtGCD_Core(&x->length, x->words, &y->length, y->words, &g->length, g->words,
                             mint::used(*a), a->words, mint::used(*b), b->words);
}

int32_t MINT_Inverse(MINT *r, const MINT *a, const MINT *n) {
  if (any_null(r, a, n) || r == n || a == n) return ZEL_ERR_GENERIC;
  const std::uint32_t n_len = mint::significant(*n);
  if (n_len == 0) return mint::refuse(*r);
  const Euclid euclid(n->words, n_len, a->words, mint::used(*a), true);
  if (!euclid.is_one() || mint::is_one(*n)) {
    r->length = 0;
    return euclid.is_one() ? ZEL_OK : ZEL_ERR_NO_INVERSE;
  }
  put(&r->length, r->words, euclid.cofactor(), euclid.cofactor_size());
  if (!euclid.odd()) {
    MINT_Sub(r, n, r);
    mint::trim(*r);
  }
  return ZEL_OK;
}

void MINT_BinGCD_Core(uint32_t *g_len, uint32_t *g, uint32_t a_len, const uint32_t *a,
                      uint32_t b_len, const uint32_t *b) {
  const Euclid euclid(a, std::min(a_len, mint::kWords), b, std::min(b_len, mint::kWords), false);
  put(g_len, g, euclid.divisor(), euclid.size());
}

int32_t MINT_BinExtGCD_Core(uint32_t *x_len, uint32_t *x, uint32_t *y_len, uint32_t *y,
                            uint32_t *g_len, uint32_t *g, uint32_t a_len, const uint32_t *a,
                            uint32_t b_len, const uint32_t *b) {
  if (any_null(x_len, x, y_len, y, g_len, g, a, b)) return 0;
  a_len = mint::significant(a, std::min(a_len, mint::kWords));
  b_len = mint::significant(b, std::min(b_len, mint::kWords));
  const bool same = a_len == b_len && std::equal(a, a + a_len, b);
  const Euclid euclid(a, a_len, b, b_len, true);
  if (a_len == 0 || same) {
    *x_len = 0;
    *y_len = 1;
    y[0] = 1;
  } else {
    put_first_cofactor(x_len, x, euclid, a_len, a, b_len, b);
    put(y_len, y, euclid.cofactor(), euclid.cofactor_size());
  }
  put(g_len, g, euclid.divisor(), euclid.size());
  return *x_len == 0 || !euclid.odd() ? 1 : -1;
}

}  // extern "C"
