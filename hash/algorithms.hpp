// The nine algorithms as the rest of the library names them, whatever a program does to the
// exported names (base/identity.hpp).
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/identity.hpp"
#include "zel_cc/hash.h"

extern "C" {
extern __attribute__((visibility("hidden"))) const HASH_ALGORITHM zel_own_popsha1, zel_own_sha224,
    zel_own_sha256, zel_own_sha384, zel_own_sha512, zel_own_pophas160, zel_own_popmd5,
    zel_own_ripemd160, zel_own_md2;
}

namespace zel::hash {

inline bool is_sha384_or_sha512(const HASH_ALGORITHM *given) noexcept {
  return is_same(given, zel_own_sha384, sha384) || is_same(given, zel_own_sha512, sha512);
}

inline bool is_approved(const HASH_ALGORITHM *given) noexcept {
  return is_same(given, zel_own_sha256, sha256) || is_same(given, zel_own_sha224, sha224) ||
         is_sha384_or_sha512(given);
}

/// Bytes of one block, and of an HMAC key block.
// Deliberate: 64 for MD2 too, whose own blocks have 16; existing codes are made that way.
inline std::size_t block_len(const HASH_ALGORITHM *given) noexcept {
  return is_sha384_or_sha512(given) ? 128 : 64;
}

}  // namespace zel::hash
