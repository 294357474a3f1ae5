// Base64. RFC 4648, section 4.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/zel/secret.hpp"

namespace zel::tool {

/// Lines of 64 characters, each with a line end.
std::string to_base64_lines(std::span<const std::uint8_t> bytes);

/// Reads whole groups of four, padded at the end alone, with line ends between lines; `out` must
/// have room for three bytes a group. False when the text is anything else.
bool from_base64(std::string_view text, Secret &out);

}  // namespace zel::tool
