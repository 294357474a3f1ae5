// Many-block routines for one instruction set each. Same bytes as the portable form; the caller has
// asked the processor. The processor features are those of the macro in base/isa.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::hash {

// ZEL_ISA_SHA
void sha1_blocks_shani(void *state, const std::uint8_t *data, std::size_t count) noexcept;
void sha256_blocks_shani(void *state, const std::uint8_t *data, std::size_t count) noexcept;
// ZEL_ISA_AVX2_BMI2
void sha512_blocks_avx2(void *state, const std::uint8_t *data, std::size_t count) noexcept;

}  // namespace zel::hash
