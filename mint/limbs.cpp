// The plain bodies of the limb layer, with 128-bit products.
#include "mint/limbs.hpp"

#include <bit>

#include "base/ct.hpp"

namespace zel::limbs {

void from_words(Limb *r, std::size_t n, const std::uint32_t *words, std::size_t count) noexcept {
  zero(r, n);
  if (count != 0) std::memcpy(r, words, count * sizeof *words);
}

void to_words(std::uint32_t *words, std::size_t count, const Limb *a, std::size_t n) noexcept {
  const std::size_t known = count < 2 * n ? count : 2 * n;
  if (known != 0) std::memcpy(words, a, known * sizeof *words);
  if (known != count) std::memset(words + known, 0, (count - known) * sizeof *words);
}

std::size_t significant(const Limb *a, std::size_t n) noexcept {
  while (n != 0 && a[n - 1] == 0)
    --n;
  return n;
}

std::size_t bit_length(const Limb *a, std::size_t n) noexcept {
  n = significant(a, n);
  return n == 0 ? 0 : n * kLimbBits - static_cast<std::size_t>(std::countl_zero(a[n - 1]));
}

int compare(const Limb *a, const Limb *b, std::size_t n) noexcept {
  while (n-- != 0) {
    if (a[n] != b[n]) return a[n] < b[n] ? -1 : 1;
  }
  return 0;
}

Limb mask_if_zero(const Limb *a, std::size_t n) noexcept {
  Limb any = 0;
  for (std::size_t i = 0; i < n; ++i)
    any |= a[i];
  return ct::mask_if_zero(any);
}

Limb mask_if_less(const Limb *a, const Limb *b, std::size_t n) noexcept {
  Limb borrow = 0;
  for (std::size_t i = 0; i < n; ++i)
    borrow = static_cast<Limb>((DoubleLimb{a[i]} - b[i] - borrow) >> kLimbBits) & 1;
  return ct::mask_of_bit(borrow);
}

Limb add_n(Limb *r, const Limb *a, const Limb *b, std::size_t n) noexcept {
  DoubleLimb sum = 0;
  for (std::size_t i = 0; i < n; ++i) {
    sum += DoubleLimb{a[i]} + b[i];
    r[i] = static_cast<Limb>(sum);
    sum >>= kLimbBits;
  }
  return static_cast<Limb>(sum);
}

Limb sub_n(Limb *r, const Limb *a, const Limb *b, std::size_t n) noexcept {
  Limb borrow = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb difference = DoubleLimb{a[i]} - b[i] - borrow;
    r[i] = static_cast<Limb>(difference);
    borrow = static_cast<Limb>(difference >> kLimbBits) & 1;
  }
  return borrow;
}

Limb add_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb sum = DoubleLimb{a[i]} + b;
    r[i] = static_cast<Limb>(sum);
    b = static_cast<Limb>(sum >> kLimbBits);
  }
  return b;
}

Limb sub_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb difference = DoubleLimb{a[i]} - b;
    r[i] = static_cast<Limb>(difference);
    b = static_cast<Limb>(difference >> kLimbBits) & 1;
  }
  return b;
}

Limb add(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept {
  const Limb carry = add_n(r, a, b, nb);
  return add_1(r + nb, a + nb, na - nb, carry);
}

Limb sub(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept {
  const Limb borrow = sub_n(r, a, b, nb);
  return sub_1(r + nb, a + nb, na - nb, borrow);
}

Limb mul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  Limb carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb product = DoubleLimb{a[i]} * b + carry;
    r[i] = static_cast<Limb>(product);
    carry = static_cast<Limb>(product >> kLimbBits);
  }
  return carry;
}

Limb addmul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  Limb carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb product = DoubleLimb{a[i]} * b + r[i] + carry;
    r[i] = static_cast<Limb>(product);
    carry = static_cast<Limb>(product >> kLimbBits);
  }
  return carry;
}

Limb submul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept {
  Limb carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb product = DoubleLimb{a[i]} * b + carry;
    const DoubleLimb difference = DoubleLimb{r[i]} - static_cast<Limb>(product);
    r[i] = static_cast<Limb>(difference);
    carry =
        static_cast<Limb>(product >> kLimbBits) + (static_cast<Limb>(difference >> kLimbBits) & 1);
  }
  return carry;
}

void mul(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept {
  zero(r, na);
  for (std::size_t i = 0; i < nb; ++i)
    r[na + i] = addmul_1(r + i, a, na, b[i]);
}

void sqr(Limb *r, const Limb *a, std::size_t n) noexcept {
  if (n == 0) return;
  // The products of two different limbs once, then everything twice, then the squares.
  zero(r, n);
  for (std::size_t i = 0; i + 1 < n; ++i)
    r[n + i] = addmul_1(r + 2 * i + 1, a + i + 1, n - 1 - i, a[i]);
  r[2 * n - 1] = 0;
  lshift(r, r, 2 * n, 1);
  Limb carry = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb square = DoubleLimb{a[i]} * a[i];
    DoubleLimb sum = DoubleLimb{r[2 * i]} + static_cast<Limb>(square) + carry;
    r[2 * i] = static_cast<Limb>(sum);
    sum = (sum >> kLimbBits) + r[2 * i + 1] + static_cast<Limb>(square >> kLimbBits);
    r[2 * i + 1] = static_cast<Limb>(sum);
    carry = static_cast<Limb>(sum >> kLimbBits);
  }
}

Limb lshift(Limb *r, const Limb *a, std::size_t n, unsigned bits) noexcept {
  Limb above = 0;
  if (bits == 0) {
    copy(r, a, n);
    return above;
  }
  if (n != 0) above = a[n - 1] >> (kLimbBits - bits);
  for (std::size_t i = n; i-- != 0;)
    r[i] = (a[i] << bits) | (i == 0 ? 0 : a[i - 1] >> (kLimbBits - bits));
  return above;
}

Limb rshift(Limb *r, const Limb *a, std::size_t n, unsigned bits) noexcept {
  Limb below = 0;
  if (bits == 0) {
    copy(r, a, n);
    return below;
  }
  if (n != 0) below = a[0] << (kLimbBits - bits);
  for (std::size_t i = 0; i < n; ++i)
    r[i] = (a[i] >> bits) | (i + 1 == n ? 0 : a[i + 1] << (kLimbBits - bits));
  return below;
}

void select(Limb *r, Limb mask, const Limb *yes, const Limb *no, std::size_t n) noexcept {
  mask = ct::opaque(mask);
  for (std::size_t i = 0; i < n; ++i)
    r[i] = ct::select(mask, yes[i], no[i]);
}

void swap_if(Limb mask, Limb *a, Limb *b, std::size_t n) noexcept {
  mask = ct::opaque(mask);
  for (std::size_t i = 0; i < n; ++i) {
    const Limb difference = (a[i] ^ b[i]) & mask;
    a[i] ^= difference;
    b[i] ^= difference;
  }
}

Limb add_if(Limb *r, Limb mask, const Limb *b, std::size_t n) noexcept {
  mask = ct::opaque(mask);
  DoubleLimb sum = 0;
  for (std::size_t i = 0; i < n; ++i) {
    sum += DoubleLimb{r[i]} + (b[i] & mask);
    r[i] = static_cast<Limb>(sum);
    sum >>= kLimbBits;
  }
  return static_cast<Limb>(sum);
}

Limb sub_if(Limb *r, Limb mask, const Limb *b, std::size_t n) noexcept {
  mask = ct::opaque(mask);
  Limb borrow = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const DoubleLimb difference = DoubleLimb{r[i]} - (b[i] & mask) - borrow;
    r[i] = static_cast<Limb>(difference);
    borrow = static_cast<Limb>(difference >> kLimbBits) & 1;
  }
  return borrow;
}

}  // namespace zel::limbs
