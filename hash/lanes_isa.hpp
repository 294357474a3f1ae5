// The lanes for one instruction set each; hash/lanes.hpp says what they do.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::hash {

void sha256_lanes_shani(std::uint8_t *digests, const std::array<std::uint32_t, 8> &initial,
                        const std::uint8_t *blocks, std::size_t count) noexcept;

/// 1 to 4 blocks.
void sha512_lanes_avx2(std::uint8_t *digests, const std::array<std::uint64_t, 8> &initial,
                       const std::uint8_t *blocks, std::size_t count) noexcept;

}  // namespace zel::hash
