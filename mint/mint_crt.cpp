// Chinese remaindering of secret residues: Garner's step in Montgomery form.
#include "mint/montgomery.hpp"
#include "mint/record.hpp"
#include "mint/secret_crt.hpp"

namespace zel::mint {
namespace {

using limbs::kMaxLimbs;
using Narrow = Limbs<kMaxLimbs>;

/// h = (a - b) * inverse mod p, below p.
void difference_times(Limb *h, const Narrow &p, const Narrow &a, const Narrow &b,
                      const Narrow &inverse) noexcept {
  Wiped<Modulus> m;
  Wiped<Limb[kMontgomeryLimbs]> x;
  Wiped<Limb[kMontgomeryLimbs]> y;
  prepare(*m, p.data(), p.size());
  enter(*m, *x, a.data(), a.size());
  enter(*m, *y, b.data(), b.size());
  const Limb borrow = limbs::sub_n(*x, *x, *y, m->n);
  limbs::add_if(*x, ct::mask_of_bit(borrow), m->value, m->n);
  enter(*m, *y, inverse.data(), inverse.size());
  multiply(*m, *x, *x, *y);
  leave(*m, *x, *x);
  limbs::copy(h, *x, p.size());
}

}  // namespace

bool product_fits(const MINT &a, const MINT &b) noexcept {
  const std::uint32_t bits = MINT_GetBitLength(&a) + MINT_GetBitLength(&b);
  if (bits != ZEL_MINT_BITS + 1) return bits <= ZEL_MINT_BITS;
  const Narrow x(a.words, significant(a));
  const Narrow y(b.words, significant(b));
  Limbs<2 * kMaxLimbs> product(x.size() + y.size());
  limbs::mul(product.data(), x.data(), x.size(), y.data(), y.size());
  Limb above = 0;
  for (std::size_t i = kMaxLimbs; i < product.size(); ++i)
    above |= product[i];
  return above == 0;
}

std::int32_t combine_secret(MINT &r, const Residues &residues) noexcept {
  const std::uint32_t p_words = significant(*residues.p);
  const std::uint32_t q_words = significant(*residues.q);
  if (p_words == 0 || residues.p->words[0] % 2 == 0 || !product_fits(*residues.p, *residues.q)) {
    set_word(r, 0);
    return ZEL_ERR_GENERIC;
  }
  const Narrow p(residues.p->words, p_words);
  const Narrow q(residues.q->words, q_words);
  const Narrow b(residues.b->words, q_words);
  Narrow h(p.size());
  difference_times(h.data(), p, Narrow(residues.a->words, p_words), b, Narrow(*residues.q_inverse));
  Limbs<2 * kMaxLimbs> sum(p.size() + q.size());
  limbs::mul(sum.data(), h.data(), h.size(), q.data(), q.size());
  limbs::add(sum.data(), sum.data(), sum.size(), b.data(), b.size());
  limbs::to_words(r.words, kWords, sum.data(), sum.size());
  trim_secret(r);
  return ZEL_OK;
}

}  // namespace zel::mint
