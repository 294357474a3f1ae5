// One row of a product with MULX, ADCX and ADOX. Callers ask for Feature::kBmi2 and kAdx.
#pragma once

#include "mint/limbs.hpp"

extern "C" {

/// r[n] += a[n] * b; the limb that leaves the top. Constant time: the length alone decides.
zel::limbs::Limb zel_adx_add_row(zel::limbs::Limb *r, const zel::limbs::Limb *a, std::size_t n,
                                 zel::limbs::Limb b) noexcept;
}
