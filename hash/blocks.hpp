// The many-block routines, one an algorithm: each picks the best code for this processor.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hash/algorithms.hpp"

namespace zel::hash {

// All alike: absorb `count` blocks of `data` into a chaining state, count >= 1.
void sha1_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha256_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha512_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void has160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
// Deliberate: these two compute nothing in the verified service, like all slots of MD5, RIPEMD-160
// and MD2. Nobody is told: a finalisation reports a length and leaves its output as it was.
void md5_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void ripemd160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept;

/// How an algorithm writes the message length.
enum class ByteOrder : std::uint8_t { kBig, kLittle };

/// What stands behind a pair of our slots and does the same work in larger pieces.
struct Engine {
  /// The same state as `count` calls of the block slot, straight from `data`.
  void (*blocks)(void *state, const std::uint8_t *data, std::size_t count);
  std::size_t block_len;
  std::size_t state_words;
  ByteOrder length_order;
};

/// The engine of an algorithm that is driven with blocks of `block_len` bytes; null when a slot is
/// a caller's own, or when its blocks are not of that length.
const Engine *engine_for(const HASH_ALGORITHM &algorithm, std::size_t block_len) noexcept;

}  // namespace zel::hash
