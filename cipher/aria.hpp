// The block function of ARIA inside the library: one code path for both directions.
#pragma once

#include <cstdint>

extern "C" {
/// One block in place under a list of 13, 15 or 17 round keys of 16 bytes, at any alignment.
__attribute__((visibility("hidden"))) void ARIA_EncryptDecryptBlock_(void *block, const void *keys);
__attribute__((visibility("hidden"))) void ARIA192_EncryptDecryptBlock_(void *block,
                                                                        const void *keys);
__attribute__((visibility("hidden"))) void ARIA256_EncryptDecryptBlock_(void *block,
                                                                        const void *keys);
}

namespace zel {

/// Which boxes meet bytes 0 to 3 of a word: S1 S2 X1 X2 in odd rounds, X1 X2 S1 S2 in even ones.
enum class AriaRound { kOdd, kEven };

/// Key addition, substitution, diffusion; needs Feature::kAesni.
void aria_round_aesni(std::uint8_t *block, const std::uint8_t *key, AriaRound kind) noexcept;

/// The whole block function; needs Feature::kAesni.
void aria_crypt_aesni(std::uint8_t *block, const std::uint8_t *keys, unsigned rounds) noexcept;

}  // namespace zel
