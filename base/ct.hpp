// Comparison and selection without a branch or an index on a secret.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zel::ct {

/// Hides a value from the optimiser, which might otherwise turn mask arithmetic into a branch.
template <class Word>
inline Word opaque(Word value) noexcept {
  __asm__("" : "+r"(value));
  return value;
}

/// All ones when `bit` is 1, zero when it is 0.
template <class Word>
inline Word mask_of_bit(Word bit) noexcept {
  static_assert(std::is_unsigned_v<Word>);
  return static_cast<Word>(Word{0} - opaque(bit));
}

/// All ones when `value` is zero, else zero.
template <class Word>
inline Word mask_if_zero(Word value) noexcept {
  static_assert(std::is_unsigned_v<Word>);
  const Word top = static_cast<Word>(~value & (value - 1));
  return mask_of_bit(static_cast<Word>(top >> (sizeof(Word) * 8 - 1)));
}

/// `yes` where the mask is all ones, `no` where it is zero.
template <class Word>
inline Word select(Word mask, Word yes, Word no) noexcept {
  return static_cast<Word>(no ^ (mask & (yes ^ no)));
}

/// Whether two byte strings are equal; the time depends on the length alone.
inline bool equal(const std::uint8_t *a, const std::uint8_t *b, std::size_t len) noexcept {
  std::uint32_t difference = 0;
  for (std::size_t i = 0; i < len; ++i)
    difference |= static_cast<std::uint32_t>(a[i] ^ b[i]);
  return opaque(difference) == 0;
}

}  // namespace zel::ct
