// SHA-2 on independent messages side by side.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::hash {

// Both alike: the i-th digest is `initial` after it has absorbed the i-th of `count` blocks, all
// eight words of it, most significant byte first. The digests must not overlap the blocks.
void sha256_lanes(std::uint8_t *digests, const std::array<std::uint32_t, 8> &initial,
                  const std::uint8_t *blocks, std::size_t count) noexcept;
void sha512_lanes(std::uint8_t *digests, const std::array<std::uint64_t, 8> &initial,
                  const std::uint8_t *blocks, std::size_t count) noexcept;

}  // namespace zel::hash
