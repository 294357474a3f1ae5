// The many-block routines, one an algorithm: each picks the best code for this processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::hash {

// All alike: absorb `count` blocks of `data` into a chaining state, count >= 1.
void sha1_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha256_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha512_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void has160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
// These two compute nothing in the verified service.
void md5_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void ripemd160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;

}  // namespace zel::hash
