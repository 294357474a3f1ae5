// Montgomery arithmetic on limbs, and exponentiation on top of it. P. L. Montgomery, "Modular
// multiplication without trial division", Math. Comp. 44 (1985).
//
// R is 2^(64 n). A value is any number below R that stands for its residue times R: nothing but a
// carry out of the top is ever subtracted (S. Gueron, "Efficient software implementations of
// modular exponentiation", 2011), so only `leave` brings a result below N.
//
// Constant time in the values, the modulus included: the lengths alone decide, but for the
// functions named public.
#pragma once

#include "mint/limbs.hpp"

namespace zel::mint {

using limbs::Limb;

/// Limbs of the longest value: a full record, rounded up to whole blocks.
inline constexpr std::size_t kMontgomeryLimbs = 72;

/// An odd modulus and what multiplication needs to know of it. A secret when the modulus is one.
struct Modulus {
  std::size_t n;                             ///< limbs of every value
  std::size_t blocks;                        ///< n / 8 where the block kernels serve, else 0
  Limb inverse[2];                           ///< -1/N modulo 2^128
  alignas(64) Limb value[kMontgomeryLimbs];  ///< N
  Limb square[kMontgomeryLimbs];             ///< R * R mod N
};

/// Prepares for the odd number N[n], whose top limb is not zero; 1 <= n <= kMaxLimbs.
void prepare(Modulus &m, const Limb *N, std::size_t n) noexcept;

/// Prepares for a public modulus and `enter_public`: all but `square`.
void prepare_public(Modulus &m, const Limb *N, std::size_t n) noexcept;

/// r = a * b / R; r may be an operand.
void multiply(const Modulus &m, Limb *r, const Limb *a, const Limb *b) noexcept;
/// r = a * a / R; r may be a.
void square(const Modulus &m, Limb *r, const Limb *a) noexcept;
/// r = a * R for a number a[na] of any length; r may be a.
void enter(const Modulus &m, Limb *r, const Limb *a, std::size_t na) noexcept;
/// r = a * R for a public number a[na], na <= kMaxLimbs, by division; r may be a.
void enter_public(const Modulus &m, Limb *r, const Limb *a, std::size_t na) noexcept;
/// r = a / R, below N; r may be a.
void leave(const Modulus &m, Limb *r, const Limb *a) noexcept;
/// r = 2^exponent * R.
void power_of_two(const Modulus &m, Limb *r, std::size_t exponent) noexcept;

/// Bits that an exponent of `bits` bits is taken by at a time.
constexpr unsigned window_of(std::size_t bits) noexcept {
  return bits >= 672 ? 6 : bits >= 240 ? 5 : bits >= 80 ? 4 : bits >= 24 ? 3 : 1;
}

/// One exponentiation: r = a^e, values all but the exponent.
struct Power {
  const Modulus *m;
  Limb *r;  ///< may be a
  const Limb *a;
  const Limb *e;     ///< [bits] bits, read up to the limb that holds the last one
  std::size_t bits;  ///< all of them are processed, leading zeros too; 0 gives one
};

/// Raises to a power. False, with r untouched, when there is no memory for the table.
[[nodiscard]] bool raise(const Power &power) noexcept;

/// The same for a public exponent; the time shows it.
[[nodiscard]] bool raise_public(const Power &power) noexcept;

/// The product of two public powers for the same modulus, which goes to first.r. The squarings are
/// done once (E. Straus, "Addition chains of vectors", 1964).
[[nodiscard]] bool raise_product_public(const Power &first, const Power &second) noexcept;

/// Two independent powers, such as the halves of an RSA private operation.
[[nodiscard]] bool raise_two(const Power &first, const Power &second) noexcept;

}  // namespace zel::mint
