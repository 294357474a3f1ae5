// Keys from passphrases. PKCS #5 (RFC 8018), section 5.2; NIST SP 800-132.
#pragma once

#include <cstdint>
#include <span>

#include "zel_cc/hash.h"

namespace zel::tool {

/// Rounds for everything that this program encrypts under a passphrase.
inline constexpr std::uint32_t kPbkdf2Rounds = 600'000;

/// PBKDF2 with HMAC over `hash` as its pseudorandom function: fills `out`. `rounds` is at least 1.
/// A hash that the module refuses ends as a `Failure`.
void pbkdf2(std::span<const std::uint8_t> passphrase, std::span<const std::uint8_t> salt,
            std::uint32_t rounds, const HASH_ALGORITHM &hash, std::span<std::uint8_t> out);

}  // namespace zel::tool
