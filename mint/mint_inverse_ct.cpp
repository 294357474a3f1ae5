// Modular inverse of a secret: division steps in batches of 62.
// D. J. Bernstein and B.-Y. Yang, "Fast constant-time gcd computation and modular inversion", IACR
// Transactions on Cryptographic Hardware and Embedded Systems, 2019, issue 3.
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "mint/record.hpp"
#include "mint/secret.hpp"

namespace zel::mint {
namespace {

using limbs::Limb;
__extension__ typedef __int128 SignedDouble;

/// A number is the sum of digit[i] * 2^(62 i). All digits but the signed top one are in [0, 2^62).
using Digit = std::int64_t;
constexpr std::size_t kDigitBits = 62;
constexpr Limb kDigitMask = (Limb{1} << kDigitBits) - 1;
constexpr std::size_t digits_of(std::size_t bits) noexcept {
  return (bits + kDigitBits - 1) / kDigitBits;
}
/// Room for numbers between -2n and n, with n as long as a record.
constexpr std::size_t kDigits = digits_of(32 * kWords + 2);

Digit low_digit(SignedDouble x) noexcept {
  return static_cast<Digit>(static_cast<Limb>(x) & kDigitMask);
}

/// All ones when x is negative, else zero.
Limb sign_mask(Digit x) noexcept { return ct::mask_of_bit(static_cast<Limb>(x) >> 63); }

void to_digits(Digit *to, std::size_t size, const MINT &a, std::size_t len) noexcept {
  Limbs<limbs::kMaxLimbs> from(a.words, len);
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t at = i * kDigitBits / limbs::kLimbBits;
    const std::size_t shift = i * kDigitBits % limbs::kLimbBits;
    Limb digit = at < from.size() ? from[at] >> shift : 0;
    if (shift != 0 && at + 1 < from.size()) digit |= from[at + 1] << (limbs::kLimbBits - shift);
    to[i] = static_cast<Digit>(digit & kDigitMask);
  }
}

void from_digits(MINT &a, std::size_t len, const Digit *from, std::size_t size) noexcept {
  Limbs<kDigits> to(size);
  limbs::zero(to.data(), size);
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t at = i * kDigitBits / limbs::kLimbBits;
    const std::size_t shift = i * kDigitBits % limbs::kLimbBits;
    const Limb digit = static_cast<Limb>(from[i]);
    to[at] |= digit << shift;
    if (shift > limbs::kLimbBits - kDigitBits) to[at + 1] |= digit >> (limbs::kLimbBits - shift);
  }
  limbs::to_words(a.words, len, to.data(), size);
  a.length = static_cast<std::uint32_t>(len);
}

/// What 62 division steps do: 2^62 (f', g') = (u f + v g, q f + r g).
struct Matrix {
  Digit u, v, q, r;
};

/// 62 division steps on the low bits of f and g; f is odd. Returns the new delta.
Digit division_steps(Digit delta, Limb f, Limb g, Matrix &m) noexcept {
  Limb u = 1;
  Limb v = 0;
  Limb q = 0;
  Limb r = 1;
  for (std::size_t i = 0; i < kDigitBits; ++i) {
    const Limb odd = ct::mask_of_bit(g & 1);
    const Limb swap = odd & ~sign_mask(delta - 1);
    // Where the masks say so: (f, g) becomes (g, -f), and so do the rows of the matrix.
    const auto turn = [swap](Limb &a, Limb &b) {
      const Limb difference = (a ^ b) & swap;
      a ^= difference;
      b = ((b ^ difference) ^ swap) - swap;
    };
    turn(f, g);
    turn(u, q);
    turn(v, r);
    delta = static_cast<Digit>((static_cast<Limb>(delta) ^ swap) - swap) + 1;
    g = (g + (f & odd)) >> 1;
    q += u & odd;
    r += v & odd;
    u <<= 1;
    v <<= 1;
  }
  m = {static_cast<Digit>(u), static_cast<Digit>(v), static_cast<Digit>(q), static_cast<Digit>(r)};
  return delta;
}

/// The numbers of one inversion: d a = f and e a = g modulo n, but for powers of two that cancel.
struct Numbers {
  Digit f[kDigits], g[kDigits], d[kDigits], e[kDigits], n[kDigits];
};

/// (f, g) = m (f, g) / 2^62; the low digits vanish.
void update_fg(Digit *f, Digit *g, std::size_t size, const Matrix &m) noexcept {
  SignedDouble next_f = SignedDouble{m.u} * f[0] + SignedDouble{m.v} * g[0];
  SignedDouble next_g = SignedDouble{m.q} * f[0] + SignedDouble{m.r} * g[0];
  next_f >>= kDigitBits;
  next_g >>= kDigitBits;
  for (std::size_t i = 1; i < size; ++i) {
    next_f += SignedDouble{m.u} * f[i] + SignedDouble{m.v} * g[i];
    next_g += SignedDouble{m.q} * f[i] + SignedDouble{m.r} * g[i];
    f[i - 1] = low_digit(next_f);
    g[i - 1] = low_digit(next_g);
    next_f >>= kDigitBits;
    next_g >>= kDigitBits;
  }
  f[size - 1] = static_cast<Digit>(next_f);
  g[size - 1] = static_cast<Digit>(next_g);
}

/// x = (a d + b e + k n) / 2^62, where k makes the division exact. For d and e between -2n and n
/// so is x: n is added to what is negative, and then k is taken between -2^62 and 0.
class ModularRow {
 public:
  ModularRow(Digit a, Digit b, Digit d0, Digit e0, Limb d_negative, Limb e_negative, Digit n0,
             Limb n_inverse) noexcept
      : a_(a), b_(b) {
    const Limb added = (static_cast<Limb>(a) & d_negative) + (static_cast<Limb>(b) & e_negative);
    const Limb low =
        static_cast<Limb>(a) * static_cast<Limb>(d0) + static_cast<Limb>(b) * static_cast<Limb>(e0);
    const Limb excess = (n_inverse * low + added) & kDigitMask;
    k_ = static_cast<Digit>(added) - static_cast<Digit>(excess);
    next(d0, e0, n0);
  }
  /// The next digit of the result, one place down.
  Digit next(Digit d, Digit e, Digit n) noexcept {
    sum_ += SignedDouble{a_} * d + SignedDouble{b_} * e;
    sum_ += SignedDouble{k_} * n;
    const Digit digit = low_digit(sum_);
    sum_ >>= kDigitBits;
    return digit;
  }
  Digit top() const noexcept { return static_cast<Digit>(sum_); }

 private:
  Digit a_, b_;
  Digit k_ = 0;
  SignedDouble sum_ = 0;
};

/// (d, e) = m (d, e) / 2^62 modulo n. `n_inverse` is 1/n modulo 2^62.
void update_de(Digit *d, Digit *e, const Digit *n, std::size_t size, Limb n_inverse,
               const Matrix &m) noexcept {
  const Limb d_negative = sign_mask(d[size - 1]);
  const Limb e_negative = sign_mask(e[size - 1]);
  ModularRow next_d(m.u, m.v, d[0], e[0], d_negative, e_negative, n[0], n_inverse);
  ModularRow next_e(m.q, m.r, d[0], e[0], d_negative, e_negative, n[0], n_inverse);
  for (std::size_t i = 1; i < size; ++i) {
    const Digit new_d = next_d.next(d[i], e[i], n[i]);
    const Digit new_e = next_e.next(d[i], e[i], n[i]);
    d[i - 1] = new_d;
    e[i - 1] = new_e;
  }
  d[size - 1] = next_d.top();
  e[size - 1] = next_e.top();
}

/// x = (x, or -x where `negate` says so) + (n where `add` says so), with its carries in order.
void adjust(Digit *x, const Digit *n, std::size_t size, Limb negate, Limb add) noexcept {
  Digit carry = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const Limb kept = (static_cast<Limb>(x[i]) ^ negate) - negate;
    carry += static_cast<Digit>(kept) + static_cast<Digit>(static_cast<Limb>(n[i]) & add);
    if (i + 1 == size) {
      x[i] = carry;
    } else {
      x[i] = static_cast<Digit>(static_cast<Limb>(carry) & kDigitMask);
      carry >>= kDigitBits;
    }
  }
}

/// Enough division steps for numbers below 2^bits to end with g = 0. Theorem 11.2 of the paper.
constexpr std::size_t steps_for(std::size_t bits) noexcept {
  return bits < 46 ? (49 * bits + 80) / 17 : (49 * bits + 57) / 17;
}

/// Bytes of the stack below an inversion, rounded up: its numbers and what the compiler adds.
constexpr std::size_t kStackDepth = 6144;

/// r = 1/a mod n for an odd n of `n_len` words that is neither a nor r.
std::int32_t invert(MINT &r, const MINT &a, const MINT &n, std::uint32_t n_len) noexcept {
  const std::size_t bits = 32 * std::max<std::size_t>(n_len, used(a));
  const std::size_t size = std::max<std::size_t>(digits_of(bits + 2), 2);
  Wiped<Numbers> x;
  std::memset(&*x, 0, sizeof *x);
  to_digits(x->n, size, n, n_len);
  to_digits(x->f, size, n, n_len);
  to_digits(x->g, size, a, used(a));
  x->e[0] = is_one(n) ? 0 : 1;
  const Limb n_inverse = Limb{0} - limbs::negated_inverse(static_cast<Limb>(x->n[0]));

  Digit delta = 1;
  Matrix m;
  for (std::size_t done = 0; done < steps_for(bits); done += kDigitBits) {
    const Limb f = static_cast<Limb>(x->f[0]) | static_cast<Limb>(x->f[1]) << kDigitBits;
    const Limb g = static_cast<Limb>(x->g[0]) | static_cast<Limb>(x->g[1]) << kDigitBits;
    delta = division_steps(delta, f, g, m);
    update_fg(x->f, x->g, size, m);
    update_de(x->d, x->e, x->n, size, n_inverse, m);
  }
  wipe(&m, sizeof m);

  // f is the greatest common divisor or its negative, and d the inverse times the same sign.
  const Limb f_negative = sign_mask(x->f[size - 1]);
  adjust(x->f, x->n, size, f_negative, 0);
  adjust(x->d, x->n, size, 0, sign_mask(x->d[size - 1]));
  adjust(x->d, x->n, size, f_negative, 0);
  adjust(x->d, x->n, size, 0, sign_mask(x->d[size - 1]));
  Limb difference = static_cast<Limb>(x->f[0]) ^ 1;
  for (std::size_t i = 1; i < size; ++i)
    difference |= static_cast<Limb>(x->f[i]);
  const Limb exists = ct::mask_if_zero(difference);
  for (std::size_t i = 0; i < size; ++i)
    x->d[i] = static_cast<Digit>(static_cast<Limb>(x->d[i]) & exists);
  from_digits(r, n_len, x->d, size);
  return static_cast<std::int32_t>(ct::select(static_cast<std::uint32_t>(exists),
                                              static_cast<std::uint32_t>(ZEL_OK),
                                              static_cast<std::uint32_t>(ZEL_ERR_NO_INVERSE)));
}

}  // namespace

std::int32_t inverse_secret(MINT &r, const MINT &a, const MINT &n) noexcept {
  const std::uint32_t n_len = significant(n);
  if (&r == &n || &a == &n) return ZEL_ERR_GENERIC;
  if (!is_odd(n)) return refuse(r);
  return with_wiped_stack<kStackDepth>([&] { return invert(r, a, n, n_len); });
}

}  // namespace zel::mint
