// Products, sums and comparison of secret residues. Watched by tests/ct.
#include "mint/montgomery.hpp"
#include "mint/record.hpp"
#include "mint/secret.hpp"

namespace zel::mint {

std::int32_t multiply_add_secret(MINT &r, const MINT &a, const MINT &b, const MINT &c,
                                 const MINT &n) noexcept {
  using Narrow = Limbs<limbs::kMaxLimbs>;
  if (&r == &n) return ZEL_ERR_GENERIC;
  if (!is_odd(n)) return refuse(r);
  const std::uint32_t words = significant(n);
  Modulus m;
  const Narrow modulus(n.words, words);
  prepare(m, modulus.data(), modulus.size());
  Wiped<Limb[kMontgomeryLimbs]> product;
  Wiped<Limb[kMontgomeryLimbs]> other;
  const auto enter_record = [&m](Limb *x, const MINT &value) {
    const Narrow limbs_of_value(value);
    enter(m, x, limbs_of_value.data(), limbs_of_value.size());
  };
  enter_record(*product, a);
  enter_record(*other, b);
  multiply(m, *product, *product, *other);
  leave(m, *product, *product);
  enter_record(*other, c);
  leave(m, *other, *other);
  Limb above = limbs::add_n(*product, *product, *other, m.n);
  above |= limbs::sub_n(*other, *product, m.value, m.n) ^ 1;
  limbs::select(*product, ct::mask_of_bit(above), *other, *product, m.n);
  limbs::to_words(r.words, kWords, *product, m.n);
  r.length = words;
  return ZEL_OK;
}

bool below_secret(const MINT &a, const MINT &n) noexcept {
  using Narrow = Limbs<limbs::kMaxLimbs>;
  Narrow x(limbs::kMaxLimbs);
  Narrow y(limbs::kMaxLimbs);
  limbs::from_words(x.data(), x.size(), a.words, used(a));
  limbs::from_words(y.data(), y.size(), n.words, used(n));
  return limbs::mask_if_less(x.data(), y.data(), limbs::kMaxLimbs) != 0;
}

}  // namespace zel::mint
