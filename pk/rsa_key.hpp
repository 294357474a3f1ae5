// RSA key pairs: generation and checks, for both versions.
#pragma once

#include <cstdint>

#include "zel_cc/rsa.h"

namespace zel::pk {

/// A key pair with e = 65537, as of RSA_GenKey; pointers may be null.
[[nodiscard]] std::int32_t generate_default(void *private_key, void *public_key,
                                            std::uint32_t bits) noexcept;

/// As of RSA_CheckKey.
[[nodiscard]] std::int32_t check_key(const void *private_key, const void *public_key) noexcept;

/// As of RSA_CheckKeyPair.
[[nodiscard]] std::int32_t check_pair(const void *private_key, const void *public_key) noexcept;

}  // namespace zel::pk
