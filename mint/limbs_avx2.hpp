// Masked table reads on 256-bit registers. Callers ask for Feature::kAvx2.
#pragma once

#include "mint/limbs.hpp"

namespace zel::limbs {

/// r[n] = row `index` of table[rows][n]; reads every row. n is a multiple of 4.
void look_up_avx2(Limb *r, const Limb *table, std::size_t rows, std::size_t n,
                  std::size_t index) noexcept;

}  // namespace zel::limbs
