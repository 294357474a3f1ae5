// SHA-2 on independent messages side by side: one block into each of many chaining states.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zel::hash {

// Both alike: states[i] takes the i-th block of `blocks`; the same as `count` calls of the block
// slot. Wipe the states where they are secret.
void sha256_lanes(std::array<std::uint32_t, 8> *states, const std::uint8_t *blocks,
                  std::size_t count) noexcept;
void sha512_lanes(std::array<std::uint64_t, 8> *states, const std::uint8_t *blocks,
                  std::size_t count) noexcept;

}  // namespace zel::hash
