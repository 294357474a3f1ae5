#include "tools/zel/base64.hpp"

#include <algorithm>
#include <array>

namespace zel::tool {
namespace {

/// The six bits of a character, or -1.
int value_of(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  return c == '/' ? 63 : -1;
}

/// One group of four: the bytes go to `out`. Bits that no byte has must be zero.
bool decode_group(const std::array<char, 4> &group, Secret &out) {
  const std::size_t padding = group[3] != '=' ? 0 : group[2] != '=' ? 1 : 2;
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const int value = i < 4 - padding ? value_of(group[i]) : 0;
    if (value < 0) return false;
    bits = bits << 6 | static_cast<std::uint32_t>(value);
  }
  const std::size_t len = 3 - padding;
  if ((bits & ((1U << (8 * padding)) - 1)) != 0 || out.room().size() < len) return false;
  for (std::size_t i = 0; i < len; ++i)
    out.room()[i] = static_cast<std::uint8_t>(bits >> (16 - 8 * i));
  out.grow(len);
  return true;
}

}  // namespace

std::string to_base64_lines(std::span<const std::uint8_t> bytes) {
  constexpr const char *kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(bytes.size() / 48 * 65 + 70);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t have = std::min<std::size_t>(3, bytes.size() - at);
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i)
      group = group << 8 | (i < have ? bytes[at + i] : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= have ? kAlphabet[group >> (18 - 6 * i) & 63] : '=';
    if (at % 48 == 45 || at + 3 >= bytes.size()) text += '\n';
  }
  return text;
}

bool from_base64(std::string_view text, Secret &out) {
  std::array<char, 4> group{};
  std::size_t count = 0;
  bool ended = false;
  for (const char c : text) {
    if (c == '\n' || c == '\r') continue;
    if (ended) return false;
    group[count++] = c;
    if (count < group.size()) continue;
    if (!decode_group(group, out)) return false;
    ended = group[3] == '=';
    count = 0;
  }
  return count == 0;
}

}  // namespace zel::tool
