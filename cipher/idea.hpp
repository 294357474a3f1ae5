// The arrangement of IDEA's round keys, and its many-block routines.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

inline constexpr std::size_t kIdeaRounds = 8;
/// Six sub-keys a round, and four at the end.
inline constexpr std::size_t kIdeaSubkeys = 6 * kIdeaRounds + 4;
/// Each direction has room for whole multiples of eight 16-bit words; the last four are zero.
inline constexpr std::size_t kIdeaHalfWords = 56;
inline constexpr std::size_t kIdeaHalfLen = kIdeaHalfWords * sizeof(std::uint16_t);

/// `count` blocks as bulk::BlocksFn wants them; need Feature::kAvx2.
void idea_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *round_keys) noexcept;
void idea_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *round_keys) noexcept;

}  // namespace zel
