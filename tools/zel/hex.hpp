// Bytes as hexadecimal digits.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::tool {

using Bytes = std::vector<std::uint8_t>;

/// Two lower-case digits a byte.
std::string to_hex(std::span<const std::uint8_t> bytes);

/// Digits of either case, an even number of them and nothing else.
std::optional<Bytes> from_hex(std::string_view digits);

}  // namespace zel::tool
