// Whole blocks of eight limbs with MULX, ADCX and ADOX. Callers ask for Feature::kBmi2 and kAdx.
// Constant time: the number of blocks alone decides. No result overlaps an operand.
#pragma once

#include "mint/limbs.hpp"

extern "C" {

/// t[16 blocks] = a[8 blocks] * b[8 blocks]; blocks >= 1.
void zel_adx_mul(zel::limbs::Limb *t, const zel::limbs::Limb *a, const zel::limbs::Limb *b,
                 std::size_t blocks) noexcept;

/// t[16 blocks] = a[8 blocks] squared; blocks >= 1.
void zel_adx_sqr(zel::limbs::Limb *t, const zel::limbs::Limb *a, std::size_t blocks) noexcept;

/// r[8 blocks] = t[16 blocks] / 2^(512 blocks) modulo N, below 2^(512 blocks) though not always
/// below N, when t is the product of two such values. Overwrites t.
/// `inverse` is -1/N modulo 2^128; blocks >= 1.
void zel_adx_redc(zel::limbs::Limb *r, zel::limbs::Limb *t, const zel::limbs::Limb *modulus,
                  const zel::limbs::Limb *inverse, std::size_t blocks) noexcept;
}
