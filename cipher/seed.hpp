// What the implementations of SEED share.
#pragma once

#include <cstdint>

namespace zel {

/// The G function in constant time; needs Feature::kAesni.
std::uint32_t seed_g_aesni(std::uint32_t word) noexcept;

/// One block in place under 32 round-key words; needs Feature::kAesni.
void seed_encrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept;
void seed_decrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept;

}  // namespace zel
