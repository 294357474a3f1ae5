// Products of limbs with what the processor has: MULX, ADCX and ADOX, or the plain bodies.
#pragma once

#include <utility>

#include "base/cpu.hpp"
#include "mint/limbs.hpp"
#include "mint/limbs_adx.hpp"
#include "mint/rows_adx.hpp"

namespace zel::limbs {

inline bool has_adx() noexcept { return cpu::has(cpu::Feature::kBmi2, cpu::Feature::kAdx); }

/// r += a * b for one limb b; the limb that leaves the top.
inline Limb add_row(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  return has_adx() ? zel_adx_add_row(r, a, n, b) : addmul_1(r, a, n, b);
}

/// r[na + nb] = a[na] * b[nb] where has_adx(). The runs may lie at any address: nothing but
/// assembly looks at them. The result must not overlap an operand.
inline void multiply_adx(Limb *r, const Limb *a, std::size_t na, const Limb *b,
                         std::size_t nb) noexcept {
  if (na == nb && na % 8 == 0 && na != 0) {
    zel_adx_mul(r, a, b, na / 8);
    return;
  }
  std::memset(static_cast<void *>(r), 0, (na + nb) * sizeof(Limb));
  if (na < nb) {
    std::swap(na, nb);
    std::swap(a, b);
  }
  for (std::size_t i = 0; i < nb; ++i) {
    Limb factor = 0;
    std::memcpy(&factor, static_cast<const void *>(b + i), sizeof factor);
    const Limb carry = zel_adx_add_row(r + i, a, na, factor);
    std::memcpy(static_cast<void *>(r + na + i), &carry, sizeof carry);
  }
}

}  // namespace zel::limbs
