// Modular exponentiation on records. A. Menezes, P. van Oorschot, S. Vanstone, Handbook of Applied
// Cryptography, 14.6.
#include <algorithm>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "mint/division.hpp"
#include "mint/montgomery.hpp"
#include "mint/record.hpp"
#include "mint/secret_exp.hpp"
#include "zel_cc/mint_mont.h"

namespace zel::mint {
namespace {

using limbs::kMaxLimbs;
using Narrow = Limbs<kMaxLimbs>;

constexpr std::uint32_t kWordBits = 32;

/// Windows whose table of records would pass 4 GiB count as a failed allocation.
constexpr std::uint32_t kWidestWindow = 23;

void set_limbs(MINT &r, const Limb *x, std::size_t n) noexcept {
  limbs::to_words(r.words, kWords, x, n);
  trim_secret(r);
}

/// A power for an odd N as the limb layer takes it, the base entered already.
class OddPower {
 public:
  OddPower(const MINT &a, const MINT &e, const MINT &N, std::size_t bits) noexcept
      : e_(kMaxLimbs), bits_(bits) {
    limbs::from_words(e_.data(), e_.size(), e.words, used(e));
    const Narrow value(N.words, significant(N));
    prepare(*modulus_, value.data(), value.size());
    const Narrow base(a);
    enter(*modulus_, *x_, base.data(), base.size());
  }

  Power power() noexcept { return {&*modulus_, *x_, *x_, e_.data(), bits_}; }

  std::int32_t finish(MINT &r, bool raised) noexcept {
    if (!raised) return refuse(r);
    leave(*modulus_, *x_, *x_);
    set_limbs(r, *x_, modulus_->n);
    return ZEL_OK;
  }

 private:
  Wiped<Modulus> modulus_;
  Wiped<Limb[kMontgomeryLimbs]> x_;
  Narrow e_;
  std::size_t bits_;
};

std::int32_t power_odd(MINT &r, const MINT &a, const MINT &e, const MINT &N,
                       std::size_t bits) noexcept {
  OddPower power(a, e, N, bits);
  return power.finish(r, raise(power.power()));
}

/// The same for public values, whose top exponent bit is set.
std::int32_t power_odd_public(MINT &r, const MINT &a, const MINT &e, const MINT &N,
                              std::size_t bits) noexcept {
  Modulus modulus;
  Limb x[kMontgomeryLimbs];
  const Narrow value(N.words, significant(N));
  prepare_public(modulus, value.data(), value.size());
  const Narrow base(a);
  enter_public(modulus, x, base.data(), base.size());
  const Narrow exponent(e);
  if (!raise_public({&modulus, x, x, exponent.data(), bits})) return refuse(r);
  leave(modulus, x, x);
  set_limbs(r, x, modulus.n);
  return ZEL_OK;
}

/// x[n] = t[nt] mod N[n]; t has a limb above.
void remainder(Limb *x, Limb *t, std::size_t nt, Narrow &N) noexcept {
  NoEvents events;
  if (nt < N.size()) limbs::zero(t + nt, N.size() - nt);
  divide(nullptr, t, std::max(nt, N.size()), N.data(), N.size(), events);
  limbs::copy(x, t, N.size());
}

/// r = a^e mod N for public values and any N that is not zero, bit by bit with long division.
void power_classic(MINT &r, const MINT &a, const MINT &e, const MINT &N,
                   std::size_t bits) noexcept {
  Narrow modulus(N.words, significant(N));
  const std::size_t n = modulus.size();
  Narrow base(n);
  Narrow x(n);
  Limbs<kDivisionLimbs + 1> t(kDivisionLimbs + 1);
  limbs::from_words(t.data(), t.size(), a.words, used(a));
  remainder(base.data(), t.data(), kMaxLimbs, modulus);
  limbs::zero(x.data(), n);
  x[0] = 1;
  for (std::size_t bit = bits; bit-- != 0;) {
    limbs::sqr(t.data(), x.data(), n);
    remainder(x.data(), t.data(), 2 * n, modulus);
    if ((e.words[bit / kWordBits] >> (bit % kWordBits) & 1) == 0) continue;
    limbs::mul(t.data(), x.data(), n, base.data(), n);
    remainder(x.data(), t.data(), 2 * n, modulus);
  }
  set_limbs(r, x.data(), n);
}

/// All ones where a secret is zero.
std::uint32_t zero_mask(const MINT &a) noexcept {
  std::uint32_t bits = 0;
  for (std::uint32_t i = 0; i < used(a); ++i)
    bits |= a.words[i];
  return ct::mask_if_zero(bits);
}

std::size_t bits_of(const SecretPower &power) noexcept {
  return std::min<std::uint32_t>(power.bits, ZEL_MINT_BITS);
}

}  // namespace

std::int32_t power_secret(const SecretPower &power) noexcept {
  if (!is_odd(*power.N)) return refuse(*power.r);
  const std::uint32_t is_zero = zero_mask(*power.a);
  MINT &r = *power.r;
  if (power_odd(r, *power.a, *power.e, *power.N, bits_of(power)) != ZEL_OK) return ZEL_ERR_GENERIC;
  // Zero to the power of zero counts as zero.
  for (std::uint32_t &word : r.words)
    word &= ~is_zero;
  r.length &= ~is_zero;
  return ZEL_OK;
}

std::int32_t power_secret_two(const SecretPower &first, const SecretPower &second) noexcept {
  const bool both_work = is_odd(*first.N) && is_odd(*second.N) && significant(*first.a) != 0 &&
                         significant(*second.a) != 0;
  if (!both_work) {
    Wiped<MINT> kept{MINT{}};  // the first result may be an operand of the second power
    const std::int32_t first_status = power_secret({&*kept, first.a, first.e, first.N, first.bits});
    const std::int32_t second_status = power_secret(second);
    mint::copy(*first.r, *kept);
    return first_status == ZEL_OK ? second_status : first_status;
  }
  OddPower one(*first.a, *first.e, *first.N, bits_of(first));
  OddPower two(*second.a, *second.e, *second.N, bits_of(second));
  const bool raised = raise_two(one.power(), two.power());
  const std::int32_t status = one.finish(*first.r, raised);
  two.finish(*second.r, raised);
  return status;
}

}  // namespace zel::mint

using namespace zel;
using namespace zel::mint;

extern "C" {

int32_t MINT_mont_exp_mod(MINT *r, const MINT *a, const MINT *e, const MINT *N) {
  if (any_null(r, a, e, N)) return ZEL_ERR_GENERIC;
  const std::uint32_t bits = MINT_GetBitLength(e);
  if (bits == 0) {
    set_word(*r, 1);
    return ZEL_OK;
  }
  if (!is_odd(*N)) return refuse(*r);
  return power_odd(*r, *a, *e, *N, bits);
}

int32_t MINT_ExpWin(MINT *r, const MINT *a, const MINT *e, const MINT *N, uint32_t window) {
  if (any_null(r, a, e, N) || e == N || a == e || a == N) return ZEL_ERR_GENERIC;
  if (significant(*N) == 0) return refuse(*r);
  if (significant(*a) == 0 || is_one(*N)) {
    set_word(*r, 0);
    return ZEL_OK;
  }
  const std::uint32_t bits = MINT_GetBitLength(e);
  if (bits == 0) {
    set_word(*r, 1);
    return ZEL_OK;
  }
  if (window == 0 || window > kWidestWindow) return refuse(*r);
  if (is_odd(*N)) return power_odd_public(*r, *a, *e, *N, bits);
  power_classic(*r, *a, *e, *N, bits);
  return ZEL_OK;
}

}  // extern "C"
