// Division and reduction of big integers.
#include "base/bytes.hpp"
#include "mint/division.hpp"
#include "mint/record.hpp"

namespace zel {
namespace {

constexpr std::uint32_t kDivisionWords = 2 * mint::kDivisionLimbs;
using Work = mint::Limbs<mint::kDivisionLimbs + 1>;

/// a[a_len] becomes its remainder by b[b_len], zero above; q, which may be null, the low q_len
/// words of the quotient. Both lengths are significant ones, at most kDivisionWords, and b_len > 0.
void divide_words(std::uint32_t *q, std::uint32_t q_len, std::uint32_t *a, std::uint32_t a_len,
                  const std::uint32_t *b, std::uint32_t b_len) noexcept {
  Work divisor(b, b_len);
  Work dividend(limbs::limbs_of_words(a_len) + 1);
  const std::size_t nu = dividend.size() - 1;
  limbs::from_words(dividend.data(), nu, a, a_len);
  mint::NoEvents events;
  if (q == nullptr) {
    mint::divide(nullptr, dividend.data(), nu, divisor.data(), divisor.size(), events);
  } else {
    Work quotient(nu - divisor.size() + 1);
    mint::divide(quotient.data(), dividend.data(), nu, divisor.data(), divisor.size(), events);
    limbs::to_words(q, q_len, quotient.data(), quotient.size());
  }
  limbs::to_words(a, a_len, dividend.data(), nu);
}

/// Divides by one word in place of the dividend; the remainder.
std::uint32_t divide_by_word(std::uint32_t *q, const std::uint32_t *a, std::uint32_t len,
                             std::uint32_t d) noexcept {
  std::uint64_t rest = 0;
  for (std::uint32_t i = len; i-- > 0;) {
    rest = (rest << 32) | a[i];
    if (q != nullptr) q[i] = static_cast<std::uint32_t>(rest / d);
    rest %= d;
  }
  return static_cast<std::uint32_t>(rest);
}

/// The body of both core functions; q is null for the remainder alone.
std::int32_t divide_core(std::uint32_t *q_len, std::uint32_t *q, std::uint32_t *a_len,
                         std::uint32_t *a, std::uint32_t b_len, const std::uint32_t *b) noexcept {
  if (any_null(a_len, a, b)) return ZEL_ERR_GENERIC;
  const bool too_long = *a_len > kDivisionWords || b_len > kDivisionWords;
  b_len = too_long ? 0 : mint::significant(b, b_len);
  if (b_len == 0) {
    *a_len = 0;
    if (q_len != nullptr) *q_len = 0;
    return ZEL_ERR_GENERIC;
  }
  const bool shorter = *a_len < b_len;
  std::uint32_t count = shorter ? 0 : *a_len - b_len + 1;
  const std::uint32_t dividend_len = mint::significant(a, *a_len);
  if (q != nullptr) std::fill_n(q, count, 0U);
  if (dividend_len >= b_len) divide_words(q, dividend_len - b_len + 1, a, dividend_len, b, b_len);
  if (q_len != nullptr) *q_len = q == nullptr ? 0 : mint::significant(q, count);
  if (!shorter) *a_len = b_len;
  return ZEL_OK;
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

int32_t MINT_Div(MINT *q, MINT *rem, const MINT *a, const MINT *b) {
  if (any_null(q, rem, a, b) || q == rem || q == b || rem == b) return ZEL_ERR_GENERIC;
  const std::uint32_t b_len = mint::significant(*b);
  if (b_len == 0) {
    rem->length = 0;
    return mint::refuse(*q);
  }
  const std::int32_t order = MINT_Compare(a, b);
  if (order < 0) {
    const bool zero = mint::significant(*a) == 0;
    if (rem != a) mint::copy(*rem, *a);
    if (zero) rem->length = 0;
    rem->length = mint::used(*rem);
    q->length = 0;
    return ZEL_OK;
  }
  if (order == 0) {
    mint::set_word(*q, 1);
    rem->length = 0;
    return ZEL_OK;
  }
  const std::uint32_t a_len = mint::significant(*a);
  if (rem != a) std::copy_n(a->words, a_len, rem->words);
  const std::uint32_t count = a_len - b_len + 1;
  divide_words(q->words, count, rem->words, a_len, b->words, b_len);
  q->length = mint::significant(q->words, count);
  rem->length = b_len;
  return ZEL_OK;
}

int32_t MINT_DivInteger(MINT *q, uint32_t *rem, const MINT *a, uint32_t d) {
  if (any_null(q, rem, a)) return ZEL_ERR_GENERIC;
  if (d == 0) {
    *rem = 0;
    return mint::refuse(*q);
  }
  const std::uint32_t len = mint::used(*a);
  *rem = divide_by_word(q->words, a->words, len, d);
  q->length = len;
  return ZEL_OK;
}

int32_t MINT_ModInteger(uint32_t *rem, const MINT *a, uint32_t d) {
  if (any_null(rem, a)) return ZEL_ERR_GENERIC;
  if (d == 0) {
    *rem = 0;
    return ZEL_ERR_GENERIC;
  }
  *rem = divide_by_word(nullptr, a->words, mint::used(*a), d);
  return ZEL_OK;
}

int32_t MINT_ModClassic(MINT *a, const MINT *m) {
  if (any_null(a, m) || a == m) return ZEL_ERR_GENERIC;
  const std::uint32_t m_len = mint::significant(*m);
  if (m_len == 0) return mint::refuse(*a);
  const std::int32_t order = MINT_Compare(a, m);
  if (order > 0) divide_words(nullptr, 0, a->words, mint::significant(*a), m->words, m_len);
  if (order >= 0) a->length = order == 0 ? 0 : m_len;
  mint::trim(*a);
  return ZEL_OK;
}

int32_t MINT_Div_Core(uint32_t *q_len, uint32_t *q, uint32_t *a_len, uint32_t *a, uint32_t b_len,
                      const uint32_t *b) {
  if (any_null(q_len, q)) return ZEL_ERR_GENERIC;
  return divide_core(q_len, q, a_len, a, b_len, b);
}

int32_t MINT_ModClassic_Core(uint32_t *a_len, uint32_t *a, uint32_t b_len, const uint32_t *b) {
  return divide_core(nullptr, nullptr, a_len, a, b_len, b);
}

}  // extern "C"
