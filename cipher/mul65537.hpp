// Multiplication modulo the prime 65537, where the word 0 stands for 65536.
#pragma once

#include <cstdint>

namespace zel {

/// 2^16 = -1 makes the product of two words low - high, and 0 * b = -b.
constexpr std::uint16_t mul65537(std::uint16_t a, std::uint16_t b) noexcept {
  using Word = std::uint16_t;
  const std::uint32_t product = std::uint32_t{a} * b;
  const auto low = static_cast<Word>(product);
  const auto high = static_cast<Word>(product >> 16);
  const auto difference = static_cast<Word>(low - high + (low < high));
  return product != 0 ? difference : static_cast<Word>(1U - a - b);
}
static_assert(mul65537(0, 0) == 1 && mul65537(2, 32768) == 0 && mul65537(0, 3) == 65534);

}  // namespace zel
