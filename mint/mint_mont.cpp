// Montgomery multiplication on records, word by word as callers see it: R is 2^(32 words of N).
// P. L. Montgomery, "Modular multiplication without trial division", Math. Comp. 44 (1985).
#include <algorithm>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "mint/montgomery.hpp"
#include "mint/record.hpp"

namespace zel::mint {
namespace {

using limbs::DoubleLimb;
using limbs::kLimbBits;
using limbs::kMaxLimbs;

constexpr std::uint32_t kWordBits = 32;

/// Twice a full record, and a limb for what leaves the top.
using Wide = Limbs<2 * kMaxLimbs + 1>;
using Narrow = Limbs<kMaxLimbs>;

/// The modulus of a context in its significant words, which are the words of R.
struct Reducer {
  std::uint32_t words;
  Narrow N;
  explicit Reducer(const MINT_MONT_CTX &mont) noexcept
      : words(significant(mont.N)), N(mont.N.words, words) {}
};

/// Adds q * N to t, of 2n limbs, so that the low words vanish; the sum has a limb more. The last
/// of an odd number of words is a step of half a limb.
void clear_low_words(Wide &t, const Reducer &reducer) noexcept {
  const std::size_t n = reducer.N.size();
  const Limb *const N = reducer.N.data();
  const Limb inverse = n == 0 ? 0 : limbs::negated_inverse(N[0]);
  Limb top = 0;
  for (std::size_t i = 0; i < n; ++i) {
    Limb q = t[i] * inverse;
    if (2 * i + 1 == reducer.words) q = static_cast<std::uint32_t>(q);
    const Limb carry = limbs::addmul_1(t.data() + i, N, n, q);
    const DoubleLimb sum = DoubleLimb{t[i + n]} + carry + top;
    t[i + n] = static_cast<Limb>(sum);
    top = static_cast<Limb>(sum >> kLimbBits);
  }
  t[2 * n] = top;
}

/// The words of t from `from` on, as `n` limbs; zeros above the words that t has.
void words_from(Limb *r, std::size_t n, const Wide &t, std::uint32_t from) noexcept {
  const Limb *const start = t.data() + from / 2;
  const std::size_t have = std::min(n + 1, t.size() - from / 2);
  Limbs<kMaxLimbs + 2> shifted(n + 1);
  limbs::zero(shifted.data(), n + 1);
  limbs::rshift(shifted.data(), start, have, from % 2 == 0 ? 0 : kWordBits);
  limbs::copy(r, shifted.data(), n);
}

/// r = t / R mod N in as many words as N has. The choice between the sum and the sum less N is a
/// mask: the sum is secret.
void reduce(MINT &r, Wide &t, const Reducer &reducer) noexcept {
  const std::size_t n = reducer.N.size();
  limbs::zero(t.data() + reducer.words, t.size() - reducer.words);  // 2 * words / 2 limbs stay
  clear_low_words(t, reducer);
  Limbs<kMaxLimbs + 1> sum(n + 1);
  Narrow less(n);
  words_from(sum.data(), n + 1, t, reducer.words);
  Limb overflow = sum[n];
  if (reducer.words % 2 != 0) {
    overflow = sum[n - 1] >> kWordBits;
    sum[n - 1] = static_cast<std::uint32_t>(sum[n - 1]);
  }
  const Limb borrow = limbs::sub_n(less.data(), sum.data(), reducer.N.data(), n);
  const Limb keep = ct::mask_of_bit(borrow & (overflow ^ 1));
  limbs::select(sum.data(), keep, sum.data(), less.data(), n);
  limbs::to_words(r.words, reducer.words, sum.data(), n);
  std::fill(r.words + reducer.words, r.words + kWords, 0U);
  r.length = reducer.words;
}

/// 2^exponent mod N, for any N that is not zero, bit by bit; N may be even.
void power_of_two_mod(MINT &r, const MINT &N, std::size_t exponent) noexcept {
  const Narrow modulus(N.words, significant(N));
  const std::size_t n = modulus.size();
  const std::size_t bits = limbs::bit_length(modulus.data(), n);
  Narrow x(n);
  Narrow less(n);
  limbs::zero(x.data(), n);
  if (bits > 1) x[(bits - 1) / kLimbBits] = Limb{1} << ((bits - 1) % kLimbBits);
  for (std::size_t bit = bits - 1; bit < exponent; ++bit) {
    const Limb carry = limbs::lshift(x.data(), x.data(), n, 1);
    const Limb borrow = limbs::sub_n(less.data(), x.data(), modulus.data(), n);
    limbs::select(x.data(), ct::mask_of_bit(carry | (borrow ^ 1)), less.data(), x.data(), n);
  }
  limbs::to_words(r.words, kWords, x.data(), n);
  r.length = kWords;
  trim(r);
}

/// 2^(2 ri) mod N for odd N, with R of the limb layer wherever that lies.
void square_of_r(MINT &r, const MINT &N, std::size_t ri) noexcept {
  Wiped<Modulus> modulus;
  const Narrow limbs_of_N(N.words, significant(N));
  prepare(*modulus, limbs_of_N.data(), limbs_of_N.size());
  const std::size_t limb_ri = modulus->n * kLimbBits;
  if (limb_ri > 2 * ri) return power_of_two_mod(r, N, 2 * ri);
  Wiped<Limb[kMontgomeryLimbs]> x;
  power_of_two(*modulus, *x, 2 * ri - limb_ri);
  limbs::to_words(r.words, kWords, *x, modulus->n);
  r.length = kWords;
  trim(r);
}

}  // namespace
}  // namespace zel::mint

using namespace zel;
using namespace zel::mint;

extern "C" {

int32_t MINT_mont_set(MINT_MONT_CTX *mont, const MINT *N) {
  if (any_null(mont, N)) return ZEL_ERR_GENERIC;
  MINT modulus;
  mint::copy(modulus, *N);
  std::memset(mont, 0, sizeof *mont);
  const std::uint32_t words = significant(modulus);
  if (words == 0) return ZEL_ERR_GENERIC;
  mont->N = modulus;
  mont->ri = words * kWordBits;
  if (modulus.words[0] % 2 == 0) {
    power_of_two_mod(mont->RR, modulus, 2 * std::size_t{mont->ri});
    return ZEL_OK;
  }
  mont->minv[0] = static_cast<std::uint32_t>(limbs::negated_inverse(modulus.words[0]));
  square_of_r(mont->RR, modulus, mont->ri);
  return ZEL_OK;
}

int32_t MINT_mont_mul_mod(MINT *r, const MINT *a, const MINT *b, const MINT_MONT_CTX *mont) {
  if (any_null(r, a, b, mont)) return ZEL_ERR_GENERIC;
  const Reducer reducer(*mont);
  const Narrow x(*a);
  Wide t(2 * kMaxLimbs + 1);
  limbs::zero(t.data(), t.size());
  if (a == b) {
    limbs::sqr(t.data(), x.data(), x.size());
  } else {
    const Narrow y(*b);
    limbs::mul(t.data(), x.data(), x.size(), y.data(), y.size());
  }
  reduce(*r, t, reducer);
  trim_secret(*r);
  return 1;
}

int32_t MINT_from_mont_word(MINT *r, MINT *t, const MINT_MONT_CTX *mont) {
  if (any_null(r, t, mont)) return ZEL_ERR_GENERIC;
  const Reducer reducer(*mont);
  const std::uint32_t length = used(*t);
  Wide wide(2 * kMaxLimbs + 1);
  limbs::from_words(wide.data(), wide.size(), t->words, length);
  // What the reduction leaves of t: zero words, as many as it went over.
  t->length = std::min(std::max(length, 2 * reducer.words), kWords);
  std::fill(t->words, t->words + std::min(2 * reducer.words, kWords), 0U);
  reduce(*r, wide, reducer);
  return 1;
}

int32_t MINT_from_mont(MINT *r, const MINT *t, const MINT_MONT_CTX *mont) {
  if (any_null(r, t, mont)) return ZEL_ERR_GENERIC;
  const std::uint32_t words = std::min(mont->ri / kWordBits, kWords);
  const Narrow low(t->words, std::min(used(*t), words));
  const Narrow Ni(mont->Ni);
  const Narrow N(mont->N);
  // q = t * Ni mod R
  Wide product(low.size() + Ni.size());
  limbs::mul(product.data(), low.data(), low.size(), Ni.data(), Ni.size());
  Wiped<std::uint32_t[kWords]> q_words;
  limbs::to_words(*q_words, words, product.data(), product.size());
  const Narrow q(*q_words, words);
  // (t + q * N) / R, once less N
  Wide sum(2 * kMaxLimbs + 1);
  limbs::zero(sum.data(), sum.size());
  limbs::mul(sum.data(), q.data(), q.size(), N.data(), N.size());
  const Narrow whole(*t);
  limbs::add(sum.data(), sum.data(), sum.size(), whole.data(), whole.size());
  Limbs<kMaxLimbs + 1> result(kMaxLimbs + 1);
  Limbs<kMaxLimbs + 1> less(kMaxLimbs + 1);
  words_from(result.data(), result.size(), sum, words);
  const Limb borrow = limbs::sub(less.data(), result.data(), result.size(), N.data(), N.size());
  limbs::select(result.data(), ct::mask_of_bit(borrow), result.data(), less.data(), result.size());
  limbs::to_words(r->words, kWords, result.data(), result.size());
  trim_secret(*r);
  return 1;
}

uint32_t MINT_mul_add_words(uint32_t *rp, const uint32_t *ap, int32_t num, uint32_t w) {
  std::uint64_t sum = 0;
  for (std::int32_t i = 0; i < num; ++i) {
    sum += std::uint64_t{ap[i]} * w + rp[i];
    rp[i] = static_cast<std::uint32_t>(sum);
    sum >>= kWordBits;
  }
  return static_cast<std::uint32_t>(sum);
}

uint32_t MINT_sub_words(uint32_t *rp, const uint32_t *ap, const uint32_t *bp, int32_t num) {
  std::uint32_t borrow = 0;
  for (std::int32_t i = 0; i < num; ++i) {
    const std::uint64_t difference = std::uint64_t{ap[i]} - bp[i] - borrow;
    rp[i] = static_cast<std::uint32_t>(difference);
    borrow = static_cast<std::uint32_t>(difference >> kWordBits) & 1;
  }
  return borrow;
}

}  // extern "C"
