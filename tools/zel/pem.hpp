// Textual encoding of keys. RFC 7468.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/zel/secret.hpp"

namespace zel::tool::pem {

/// Whether a line of the text begins a block.
bool has_block(std::string_view text);

struct Block {
  std::string label;
  Secret content;
};

/// The first block, with whatever text around it. `Malformed` when there is none or it is broken.
Block read(std::string_view text);

std::string write(std::string_view label, std::span<const std::uint8_t> content);

}  // namespace zel::tool::pem
