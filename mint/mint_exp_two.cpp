// The product of two public powers on records.
#include "mint/montgomery.hpp"
#include "mint/public_exp.hpp"
#include "mint/record.hpp"

namespace zel::mint {

std::int32_t power_product(MINT &r, const MINT &a, const MINT &e, const MINT &b, const MINT &f,
                           const MINT &N) noexcept {
  using Narrow = Limbs<limbs::kMaxLimbs>;
  if (!is_odd(N)) return refuse(r);
  const Narrow modulus(N.words, significant(N));
  Modulus m;
  Limb x[kMontgomeryLimbs];
  Limb y[kMontgomeryLimbs];
  prepare_public(m, modulus.data(), modulus.size());
  const Narrow first(a);
  const Narrow second(b);
  enter_public(m, x, first.data(), first.size());
  enter_public(m, y, second.data(), second.size());
  const Narrow first_exponent(e);
  const Narrow second_exponent(f);
  if (!raise_product_public({&m, x, x, first_exponent.data(), MINT_GetBitLength(&e)},
                            {&m, y, y, second_exponent.data(), MINT_GetBitLength(&f)}))
    return refuse(r);
  leave(m, x, x);
  limbs::to_words(r.words, kWords, x, m.n);
  r.length = kWords;
  trim(r);
  return ZEL_OK;
}

}  // namespace zel::mint
