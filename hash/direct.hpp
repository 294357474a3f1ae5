// The hash framework below its gates, for services of the library that have asked the gate
// themselves, or that work in every module state. Same bytes as HASH_*.
#pragma once

#include "hash/algorithms.hpp"

namespace zel::hash {

void start(HASH_CONTEXT &context, const HASH_ALGORITHM &algorithm) noexcept;
void absorb(HASH_CONTEXT &context, const std::uint8_t *data, std::uint32_t len) noexcept;

/// Writes the digest and returns its length; the context is not changed.
std::uint32_t finish(std::uint8_t *out, const HASH_CONTEXT &context) noexcept;

/// The same as if `len` more bytes had been absorbed.
std::uint32_t finish_with(std::uint8_t *out, const HASH_CONTEXT &context, const std::uint8_t *data,
                          std::uint32_t len) noexcept;

}  // namespace zel::hash
