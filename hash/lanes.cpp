// Picks the lanes for this processor.
#include "hash/lanes.hpp"

#include "hash/blocks.hpp"

namespace zel::hash {

void sha256_lanes(std::array<std::uint32_t, 8> *states, const std::uint8_t *blocks,
                  std::size_t count) noexcept {
  for (; count != 0; --count, ++states, blocks += 64)
    sha256_blocks(states, blocks, 1);
}

void sha512_lanes(std::array<std::uint64_t, 8> *states, const std::uint8_t *blocks,
                  std::size_t count) noexcept {
  for (; count != 0; --count, ++states, blocks += 128)
    sha512_blocks(states, blocks, 1);
}

}  // namespace zel::hash
