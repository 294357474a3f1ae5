// Many-block routines for one instruction set each. Same bytes as the portable form; the caller has
// asked the processor. The processor features are those of the macro in base/isa.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::hash {

// ZEL_ISA_SHA
void sha1_blocks_shani(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha256_blocks_shani(void *state, const std::uint8_t *data, std::size_t count) noexcept;

}  // namespace zel::hash

/// In assembly, for processors with AVX2 and BMI2; count >= 1. `constants` are the 80 of SHA-512,
/// on a 32-byte boundary.
extern "C" __attribute__((visibility("hidden"))) void zel_sha512_blocks_avx2(
    void *state, const std::uint8_t *data, std::size_t count, const std::uint64_t *constants);
