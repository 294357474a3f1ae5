// The many-block routines of RC5.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

inline constexpr std::size_t kRc5Rounds = 12;

/// `count` blocks as bulk::BlocksFn wants them; need Feature::kAvx2.
void rc5_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *round_keys) noexcept;
void rc5_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *round_keys) noexcept;

}  // namespace zel
