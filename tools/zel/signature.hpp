// Signatures over digests, in the forms in which files hold them.
#pragma once

#include <cstdint>
#include <span>

#include "tools/zel/hex.hpp"
#include "tools/zel/key_record.hpp"
#include "zel_cc/hash.h"

namespace zel::tool {

enum class RsaPadding { kPss, kPkcs1 };

struct SignatureMethod {
  RsaPadding padding = RsaPadding::kPss;  ///< for RSA keys
  const HASH_ALGORITHM *hash = nullptr;
};

/// Whether a PKCS #1 v1.5 signature can name the hash.
bool has_pkcs1_form(const HASH_ALGORITHM &hash);

/// What is hashed before the message: for KCDSA the low-order bytes of the public number, as many
/// as a block of the hash has. Nothing for other keys.
Bytes digest_prefix(const Key &key, const HASH_ALGORITHM &hash);

/// Signs with a private key. RSA: octets of the modulus length. DSA: SEQUENCE { INTEGER r, INTEGER
/// s
/// }. KCDSA: SEQUENCE { OCTET STRING r, INTEGER s }. A `Failure` when the library refuses.
Bytes sign_digest(const Key &key, const SignatureMethod &method,
                  std::span<const std::uint8_t> digest);

/// Whether a signature is good. PSS also wants an exponent of at least 65537 and a padding that is
/// well formed in every bit. `Malformed` when it does not even have the form of a signature.
bool verify_digest(const Key &key, const SignatureMethod &method,
                   std::span<const std::uint8_t> digest, std::span<const std::uint8_t> signature);

}  // namespace zel::tool
