// Montgomery multiplication, squaring and reduction; windowed powers with masked table reads.
#include "mint/montgomery.hpp"

#include <algorithm>
#include <bit>
#include <utility>

#include "base/cpu.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "mint/division.hpp"
#include "mint/limbs_adx.hpp"
#include "mint/limbs_avx2.hpp"

namespace zel::mint {
namespace {

using limbs::kLimbBits;

constexpr std::size_t kBlock = 8;
static_assert(kMontgomeryLimbs % kBlock == 0 && kMontgomeryLimbs >= limbs::kMaxLimbs);

/// A product of two values, with room for the carry.
using Product = Limb[2 * kMontgomeryLimbs + 1];

/// Limbs of a cache line.
constexpr std::size_t kLineLimbs = 8;

Limb *line_aligned(Limb *p) noexcept {
  const auto past = reinterpret_cast<std::uintptr_t>(p) / sizeof(Limb) % kLineLimbs;
  return p + (kLineLimbs - past) % kLineLimbs;
}

/// Limbs to work on: whole blocks where padding costs less than the block kernels gain.
std::size_t working_limbs(std::size_t n) noexcept {
  const std::size_t padded = (n + kBlock - 1) / kBlock * kBlock;
  const bool worth_it = 4 * padded <= 5 * n;
  return worth_it && cpu::has(cpu::Feature::kBmi2, cpu::Feature::kAdx) ? padded : n;
}

/// r = t / R, less N where a carry leaves the top; t[2n] is used up.
void reduce(const Modulus &m, Limb *r, Limb *t) noexcept {
  if (m.blocks != 0) return zel_adx_redc(r, t, m.value, m.inverse, m.blocks);
  const std::size_t n = m.n;
  Limb top = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Limb carry = limbs::addmul_1(t + i, m.value, n, t[i] * m.inverse[0]);
    const limbs::DoubleLimb sum = limbs::DoubleLimb{t[i + n]} + carry + top;
    t[i + n] = static_cast<Limb>(sum);
    top = static_cast<Limb>(sum >> kLimbBits);
  }
  limbs::copy(r, t + n, n);
  limbs::sub_if(r, ct::mask_of_bit(top), m.value, n);
}

/// x = x mod N, for carry:x below 2 N.
void below_modulus(const Modulus &m, Limb *x, Limb carry = 0) noexcept {
  Wiped<Limb[kMontgomeryLimbs]> less;
  const Limb borrow = limbs::sub_n(*less, x, m.value, m.n);
  limbs::select(x, ct::mask_of_bit(carry | (borrow ^ 1)), *less, x, m.n);
}

/// x = 2 * x mod N, for x below N.
void twice(const Modulus &m, Limb *x) noexcept {
  const Limb carry = limbs::lshift(x, x, m.n, 1);
  below_modulus(m, x, carry);
}

void multiply(const Modulus &m, Limb *r, const Limb *a, const Limb *b, Product &t) noexcept {
  if (m.blocks != 0)
    zel_adx_mul(t, a, b, m.blocks);
  else
    limbs::mul(t, a, m.n, b, m.n);
  reduce(m, r, t);
}

void square(const Modulus &m, Limb *r, const Limb *a, Product &t) noexcept {
  if (m.blocks != 0)
    zel_adx_sqr(t, a, m.blocks);
  else
    limbs::sqr(t, a, m.n);
  reduce(m, r, t);
}

/// `count` bits of e from bit `at` on.
std::size_t digit(const Limb *e, std::size_t at, std::size_t count) noexcept {
  const std::size_t limb = at / kLimbBits;
  const std::size_t shift = at % kLimbBits;
  Limb bits = e[limb] >> shift;
  if (shift + count > kLimbBits) bits |= e[limb + 1] << (kLimbBits - shift);
  return static_cast<std::size_t>(bits & ((Limb{1} << count) - 1));
}

/// r[n] = row `index` of the table, every row of which is read.
void look_up(Limb *r, const Limb *table, std::size_t rows, std::size_t n,
             std::size_t index) noexcept {
  if (n % 4 == 0 && cpu::has(cpu::Feature::kAvx2))
    return limbs::look_up_avx2(r, table, rows, n, index);
  limbs::zero(r, n);
  for (std::size_t row = 0; row < rows; ++row, table += n) {
    const Limb mask = ct::mask_if_zero(static_cast<Limb>(row ^ index));
    for (std::size_t i = 0; i < n; ++i)
      r[i] |= table[i] & mask;
  }
}

/// The powers of a base that a public exponent asks for: sliding windows, which begin and end with
/// a one, so that the table holds odd powers alone.
class SlidingWindows {
 public:
  explicit SlidingWindows(const Power &power) noexcept
      : power_(&power), width_(std::min(window_of(power.bits), 5U)) {}

  std::size_t rows() const noexcept { return std::size_t{1} << (width_ - 1); }

  void fill(Limb *table, Product &t) noexcept {
    const Modulus &m = *power_->m;
    Limb step[kMontgomeryLimbs];
    table_ = table;
    limbs::copy(table, power_->a, m.n);
    if (rows() > 1) square(m, step, table, t);
    for (std::size_t row = 1; row < rows(); ++row)
      multiply(m, table + row * m.n, table + (row - 1) * m.n, step, t);
  }

  /// The factor at a bit of the exponent, if any. The bits are asked for from the top.
  const Limb *factor_at(std::size_t bit) noexcept {
    const Limb *const e = power_->e;
    if (pending_ == nullptr) {
      if (bit >= power_->bits || digit(e, bit, 1) == 0) return nullptr;
      std::size_t count = std::min(width_, bit + 1);
      while (digit(e, bit + 1 - count, 1) == 0)
        --count;
      low_ = bit + 1 - count;
      pending_ = table_ + (digit(e, low_, count) >> 1) * power_->m->n;
    }
    return bit == low_ ? std::exchange(pending_, nullptr) : nullptr;
  }

 private:
  const Power *power_;
  std::size_t width_;
  const Limb *table_ = nullptr;
  const Limb *pending_ = nullptr;  ///< of the window that ends at low_
  std::size_t low_ = 0;
};

constexpr std::size_t kMaxFactors = 2;

/// The product of one or two public powers for the same modulus, with the squarings shared.
bool raise_product(const Power *powers, std::size_t count) noexcept {
  const Modulus &m = *powers->m;
  SlidingWindows windows[kMaxFactors] = {SlidingWindows(powers[0]),
                                         SlidingWindows(powers[count - 1])};
  const std::size_t rows = windows[0].rows() + (count == 1 ? 0 : windows[1].rows());
  Scratch<Limb> table(rows * m.n + kLineLimbs);
  if (!table) return false;
  Product t;
  Limb sum[kMontgomeryLimbs];
  Limb *place = line_aligned(table.data());
  std::size_t bits = 0;
  for (std::size_t i = 0; i < count; ++i) {
    windows[i].fill(place, t);
    place += windows[i].rows() * m.n;
    bits = std::max(bits, powers[i].bits);
  }

  bool started = false;
  for (std::size_t bit = bits; bit-- != 0;) {
    if (started) square(m, sum, sum, t);
    for (std::size_t i = 0; i < count; ++i) {
      const Limb *const factor = windows[i].factor_at(bit);
      if (factor == nullptr) continue;
      if (started)
        multiply(m, sum, sum, factor, t);
      else
        limbs::copy(sum, factor, m.n);
      started = true;
    }
  }
  if (!started) power_of_two(m, sum, 0);
  limbs::copy(powers->r, sum, m.n);
  return true;
}

}  // namespace

void multiply(const Modulus &m, Limb *r, const Limb *a, const Limb *b) noexcept {
  Wiped<Product> t;
  multiply(m, r, a, b, *t);
}

void square(const Modulus &m, Limb *r, const Limb *a) noexcept {
  Wiped<Product> t;
  square(m, r, a, *t);
}

void enter(const Modulus &m, Limb *r, const Limb *a, std::size_t na) noexcept {
  // Pieces of n limbs from the top: sum = sum * R + piece.
  Wiped<Limb[kMontgomeryLimbs]> piece;
  Wiped<Limb[kMontgomeryLimbs]> sum;
  limbs::zero(*sum, m.n);
  for (std::size_t at = (na + m.n - 1) / m.n * m.n; at != 0; at -= m.n) {
    const std::size_t from = at - m.n;
    const std::size_t count = std::min(m.n, na - from);
    limbs::copy(*piece, a + from, count);
    limbs::zero(*piece + count, m.n - count);
    multiply(m, *piece, *piece, m.square);
    below_modulus(m, *piece);
    if (at < na) {
      multiply(m, *sum, *sum, m.square);
      below_modulus(m, *sum);
    }
    const Limb carry = limbs::add_n(*sum, *sum, *piece, m.n);
    below_modulus(m, *sum, carry);
  }
  limbs::copy(r, *sum, m.n);
}

void leave(const Modulus &m, Limb *r, const Limb *a) noexcept {
  Wiped<Product> t;
  limbs::copy(*t, a, m.n);
  limbs::zero(*t + m.n, m.n);
  reduce(m, r, *t);
  below_modulus(m, r);
}

void power_of_two(const Modulus &m, Limb *r, std::size_t exponent) noexcept {
  const std::size_t n = m.n;
  const std::size_t bits = limbs::bit_length(m.value, n);
  limbs::zero(r, n);
  if (bits > 1) r[(bits - 1) / kLimbBits] = Limb{1} << ((bits - 1) % kLimbBits);
  for (std::size_t bit = bits - 1; bit < n * kLimbBits; ++bit)
    twice(m, r);
  for (std::size_t mask = std::bit_floor(exponent); mask != 0; mask >>= 1) {
    square(m, r, r);
    below_modulus(m, r);
    if ((exponent & mask) != 0) twice(m, r);
  }
}

void prepare_public(Modulus &m, const Limb *N, std::size_t n) noexcept {
  m.n = working_limbs(n);
  m.blocks =
      m.n % kBlock == 0 && cpu::has(cpu::Feature::kBmi2, cpu::Feature::kAdx) ? m.n / kBlock : 0;
  limbs::copy(m.value, N, n);
  limbs::zero(m.value + n, m.n - n);
  // One Newton step takes the inverse from 64 to 128 bits.
  const auto low = limbs::DoubleLimb{Limb{0} - limbs::negated_inverse(N[0])};
  const limbs::DoubleLimb modulus = (limbs::DoubleLimb{n > 1 ? N[1] : 0} << kLimbBits) | N[0];
  const limbs::DoubleLimb inverse = limbs::DoubleLimb{0} - low * (2 - modulus * low);
  m.inverse[0] = static_cast<Limb>(inverse);
  m.inverse[1] = static_cast<Limb>(inverse >> kLimbBits);
}

void prepare(Modulus &m, const Limb *N, std::size_t n) noexcept {
  prepare_public(m, N, n);
  power_of_two(m, m.square, m.n * kLimbBits);
}

void enter_public(const Modulus &m, Limb *r, const Limb *a, std::size_t na) noexcept {
  Limb divisor[kMontgomeryLimbs];
  Limb t[limbs::kMaxLimbs + kMontgomeryLimbs + 1];
  const std::size_t n = limbs::significant(m.value, m.n);
  limbs::copy(divisor, m.value, n);
  limbs::zero(t, m.n);
  limbs::copy(t + m.n, a, na);
  NoEvents events;
  divide(nullptr, t, m.n + na, divisor, n, events);
  limbs::copy(r, t, n);
  limbs::zero(r + n, m.n - n);
}

bool raise(const Power &power) noexcept {
  const Modulus &m = *power.m;
  const std::size_t n = m.n;
  const std::size_t window = window_of(power.bits);
  const std::size_t rows = std::size_t{1} << window;
  Scratch<Limb> table(rows * n + kLineLimbs);
  if (!table) return false;
  Limb *const powers = line_aligned(table.data());
  Wiped<Product> t;
  power_of_two(m, powers, 0);
  limbs::copy(powers + n, power.a, n);
  for (std::size_t row = 2; row < rows; ++row) {
    if (row % 2 == 0)
      square(m, powers + row * n, powers + row / 2 * n, *t);
    else
      multiply(m, powers + row * n, powers + (row - 1) * n, powers + n, *t);
  }

  Wiped<Limb[kMontgomeryLimbs]> sum;
  Wiped<Limb[kMontgomeryLimbs]> factor;
  limbs::copy(*sum, powers, n);
  std::size_t at = power.bits;
  if (at != 0) {
    const std::size_t first = (at - 1) % window + 1;
    at -= first;
    look_up(*sum, powers, rows, n, digit(power.e, at, first));
  }
  while (at != 0) {
    at -= window;
    for (std::size_t i = 0; i < window; ++i)
      square(m, *sum, *sum, *t);
    look_up(*factor, powers, rows, n, digit(power.e, at, window));
    multiply(m, *sum, *sum, *factor, *t);
  }
  limbs::copy(power.r, *sum, n);
  return true;
}

bool raise_public(const Power &power) noexcept { return raise_product(&power, 1); }

bool raise_product_public(const Power &first, const Power &second) noexcept {
  const Power both[] = {first, second};
  return raise_product(both, 2);
}

bool raise_two(const Power &first, const Power &second) noexcept {
  return raise(first) && raise(second);
}

}  // namespace zel::mint
