#include "keyshare/field.hpp"

#include <algorithm>

#include "mint/secret.hpp"

namespace zel::keyshare {

Field::Field(const MINT &modulus) noexcept : one_{1, {1}} {
  MINT_mont_set(&mont_, &modulus);
  words_ = mont_.ri / 32;
  mont_.N.length = words_;
}

void Field::reduce_once(MINT &r, const MINT &a, Mask carry) const noexcept {
  Wiped<MINT> less;
  const std::uint32_t borrow =
      MINT_sub_words(less->words, a.words, mont_.N.words, static_cast<std::int32_t>(words_));
  const Mask subtract = carry | ct::mask_of_bit(borrow ^ 1);
  for (std::uint32_t i = 0; i < words_; ++i)
    r.words[i] = ct::select(subtract, less->words[i], a.words[i]);
}

void Field::add(MINT &r, const MINT &a, const MINT &b) const noexcept {
  Wiped<MINT> sum(MINT{});
  sum->length = words_;
  std::uint64_t carry = 0;
  for (std::uint32_t i = 0; i < words_; ++i) {
    carry += std::uint64_t{a.words[i]} + b.words[i];
    sum->words[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  r = *sum;
  reduce_once(r, *sum, ct::mask_of_bit(static_cast<std::uint32_t>(carry)));
}

void Field::sub(MINT &r, const MINT &a, const MINT &b) const noexcept {
  Wiped<MINT> negated(MINT{});
  MINT_sub_words(negated->words, mont_.N.words, b.words, static_cast<std::int32_t>(words_));
  negated->length = words_;
  // p - 0 is p, and the sum is below 2 p all the same.
  add(r, a, *negated);
}

void Field::mul(MINT &r, const MINT &a, const MINT &b) const noexcept {
  Wiped<MINT> scaled;
  MINT_mont_mul_mod(&*scaled, &a, &mont_.RR, &mont_);
  scaled->length = words_;
  MINT_mont_mul_mod(&r, &*scaled, &b, &mont_);
  r.length = words_;
}

Mask Field::invert(MINT &r, const MINT &a) const noexcept {
  const auto status = static_cast<std::uint32_t>(mint::inverse_secret(r, a, mont_.N));
  std::fill(r.words + words_, r.words + ZEL_MINT_WORDS, 0U);
  return ct::mask_if_zero(status);
}

Mask Field::is_zero(const MINT &a) const noexcept {
  std::uint32_t bits = 0;
  for (std::uint32_t i = 0; i < words_; ++i)
    bits |= a.words[i];
  return ct::mask_if_zero(bits);
}

Mask Field::fits(const MINT &a) const noexcept {
  std::uint32_t above = 0;
  for (std::uint32_t i = words_; i < a.length; ++i)
    above |= a.words[i];
  return ct::mask_if_zero(above);
}

Mask Field::contains(const MINT &a) const noexcept {
  Wiped<MINT> value;
  load(*value, a);
  const std::uint32_t borrow =
      MINT_sub_words(value->words, value->words, mont_.N.words, static_cast<std::int32_t>(words_));
  return fits(a) & ct::mask_of_bit(borrow);
}

void Field::load(MINT &r, const MINT &a) const noexcept {
  const std::uint32_t used = std::min(a.length, words_);
  std::copy_n(a.words, used, r.words);
  std::fill(r.words + used, r.words + ZEL_MINT_WORDS, 0U);
  r.length = words_;
}

void Field::store(MINT &r, const MINT &a) const noexcept {
  std::uint32_t len = 0;
  for (std::uint32_t i = 0; i < words_; ++i)
    len = ct::select(ct::mask_if_zero(a.words[i]), len, i + 1);
  r = a;
  r.length = len;
}

}  // namespace zel::keyshare
