// Addition and subtraction of big integers.
#include "base/bytes.hpp"
#include "mint/record.hpp"

namespace zel {
namespace {

using limbs::DoubleLimb;
using limbs::Limb;

/// One step of an addition: the sum, and the carry in its place above.
struct Add {
  template <class Wide>
  static Wide step(Wide a, Wide b, Wide carry) noexcept {
    return a + b + carry;
  }
};

/// One step of a subtraction: the difference, and the borrow above as ones.
struct Subtract {
  template <class Wide>
  static Wide step(Wide a, Wide b, Wide borrow) noexcept {
    return a - b - borrow;
  }
};

/// r = a op b over the words of a, which is not the shorter; the carry or borrow out. r may be a or
/// b. Two words at a time while there are two.
template <class Op>
std::uint32_t ripple(std::uint32_t *r, std::uint32_t a_len, const std::uint32_t *a,
                     std::uint32_t b_len, const std::uint32_t *b) noexcept {
  std::uint32_t carry = 0;
  std::uint32_t i = 0;
  for (; b_len - i >= 2; i += 2) {
    Limb x = 0;
    Limb y = 0;
    std::memcpy(&x, a + i, sizeof x);
    std::memcpy(&y, b + i, sizeof y);
    const auto result = Op::template step<DoubleLimb>(x, y, carry);
    x = static_cast<Limb>(result);
    carry = static_cast<std::uint32_t>(result >> limbs::kLimbBits) & 1;
    std::memcpy(r + i, &x, sizeof x);
  }
  for (; i < b_len || (i < a_len && carry != 0); ++i) {
    const auto result = Op::template step<std::uint64_t>(a[i], i < b_len ? b[i] : 0, carry);
    r[i] = static_cast<std::uint32_t>(result);
    carry = static_cast<std::uint32_t>(result >> 32) & 1;
  }
  if (i < a_len && r != a) std::memmove(r + i, a + i, (a_len - i) * sizeof *r);
  return carry;
}

/// 1, 0 or -1 as a is above, equal to or below b, both of `len` words.
int compare(const std::uint32_t *a, const std::uint32_t *b, std::uint32_t len) noexcept {
  for (std::uint32_t i = len; i > 0; --i) {
    if (a[i - 1] != b[i - 1]) return a[i - 1] > b[i - 1] ? 1 : -1;
  }
  return 0;
}

/// Adds into a record and keeps the carry while there is room for it.
void add_into(MINT &r, std::uint32_t a_len, const std::uint32_t *a, std::uint32_t b_len,
              const std::uint32_t *b) noexcept {
  if (a_len < b_len) {
    std::swap(a_len, b_len);
    std::swap(a, b);
  }
  const std::uint32_t carry = ripple<Add>(r.words, a_len, a, b_len, b);
  r.length = a_len;
  if (carry != 0 && a_len < mint::kWords) r.words[r.length++] = 1;
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

void MINT_Add(MINT *r, const MINT *a, const MINT *b) {
  add_into(*r, mint::used(*a), a->words, mint::used(*b), b->words);
}

void MINT_AddInteger(MINT *r, const MINT *a, uint32_t w) {
  add_into(*r, mint::used(*a), a->words, w == 0 ? 0 : 1, &w);
}

int32_t MINT_Sub(MINT *r, const MINT *a, const MINT *b) {
  if (any_null(r, a, b)) return ZEL_ERR_GENERIC;
  const std::int32_t sign = MINT_Compare(a, b);
  if (sign == 0) {
    r->length = 0;
    return 0;
  }
  const MINT &greater = sign > 0 ? *a : *b;
  const MINT &lesser = sign > 0 ? *b : *a;
  const std::uint32_t len = mint::used(greater);
  ripple<Subtract>(r->words, len, greater.words, mint::significant(lesser), lesser.words);
  r->length = len;
  return sign;
}

int32_t MINT_SubInteger(MINT *r, const MINT *a, uint32_t w) {
  if (any_null(r, a)) return ZEL_ERR_GENERIC;
  const std::uint32_t len = mint::used(*a);
  const bool zero = mint::significant(*a) == 0;
  if (w != 0 && zero) {
    mint::set_word(*r, w);
    return -1;
  }
  ripple<Subtract>(r->words, len, a->words, w == 0 ? 0 : 1, &w);
  r->length = len;
  return zero ? 0 : 1;
}

void MINT_Add_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a, uint32_t b_len,
                   const uint32_t *b) {
  if (a_len < b_len) {
    std::swap(a_len, b_len);
    std::swap(a, b);
  }
  const std::uint32_t carry = ripple<Add>(r, a_len, a, b_len, b);
  if (carry != 0) r[a_len++] = 1;
  *r_len = a_len;
}

int32_t MINT_Sub_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                      uint32_t b_len, const uint32_t *b) {
  if (any_null(r_len, r, a, b)) return ZEL_ERR_GENERIC;
  std::int32_t sign = 0;
  if (a_len != b_len)
    sign = a_len > b_len ? 1 : -1;
  else
    sign = compare(a, b, a_len);
  if (sign < 0) {
    std::swap(a_len, b_len);
    std::swap(a, b);
  }
  *r_len = sign == 0 ? 0 : a_len;
  if (sign != 0) ripple<Subtract>(r, a_len, a, b_len, b);
  return sign;
}

}  // extern "C"
