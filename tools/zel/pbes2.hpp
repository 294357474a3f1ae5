// Private keys under a passphrase. PKCS #5 (RFC 8018), section 6.2: PBES2 with PBKDF2.
#pragma once

#include <span>

#include "tools/zel/der.hpp"
#include "zel_cc/hash.h"

namespace zel::tool {

struct Pbes2Cipher;

/// What an EncryptedPrivateKeyInfo says, as views of it.
struct Pbes2 {
  der::View salt;
  std::uint32_t rounds = 0;
  const HASH_ALGORITHM *prf = nullptr;  ///< the hash under HMAC
  const Pbes2Cipher *cipher = nullptr;
  der::View iv;
  der::View sealed;
};

/// Reads an EncryptedPrivateKeyInfo: PBKDF2 with HMAC over SHA-1 or any SHA-2; ARIA, AES or SEED in
/// CBC mode, or Triple DES. `Malformed` when it is anything else.
Pbes2 pbes2_read(der::View content);

/// Opens it: the PrivateKeyInfo. A `Failure` with the exit code of a failed verification when the
/// passphrase does not fit, and with that of the module's state when the algorithms want --legacy.
Secret pbes2_open(const Pbes2 &encrypted, std::span<const std::uint8_t> passphrase);

/// Writes an EncryptedPrivateKeyInfo of `plain`: PBKDF2-HMAC-SHA-256 and ARIA-256-CBC, with salt
/// and IV from the approved generator.
void pbes2_seal(der::Writer &writer, der::View plain, std::span<const std::uint8_t> passphrase);

}  // namespace zel::tool
