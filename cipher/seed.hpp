// What the implementations of SEED share.
#pragma once

#include <cstdint>

namespace zel {

/// Whether what goes block after block is to go by tables, which secrets index.
#ifdef ZEL_CC_SEED_TABLES
inline constexpr bool kSeedByTables = true;
#else
inline constexpr bool kSeedByTables = false;
#endif

/// The G function in constant time; needs Feature::kAesni.
std::uint32_t seed_g_aesni(std::uint32_t word) noexcept;

/// One block in place under 32 round-key words; needs Feature::kAesni.
void seed_encrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept;
void seed_decrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept;


}  // namespace zel
