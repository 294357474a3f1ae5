// EME-OAEP, for both versions of PKCS #1, and EME-PKCS1-v1_5: what is encrypted, without the
// leading zero byte that makes it fit the modulus. RFC 8017, section 7; RFC 2437, section 9.1.
#pragma once

#include <cstdint>

#include "zel_cc/hash.h"

namespace zel::pk {

struct Bytes {
  const std::uint8_t *data;
  std::uint32_t len;
};

enum class Seed { kZero, kRandom };

/// Encodes into block[len]: masked seed, masked data block. `label` may be null when its length is
/// 0. ZEL_ERR_RSA_MESSAGE_LEN, with nothing written: the message is too long. ZEL_ERR_GENERIC:
/// hashing is refused.
[[nodiscard]] std::int32_t encode_oaep(std::uint8_t *block, std::uint32_t len, Bytes message,
                                       Bytes label, const HASH_ALGORITHM &hash, Seed seed) noexcept;

/// Decodes block[len], which it uses up, without a branch on what the block holds before it is
/// known to be right or wrong. ZEL_ERR_GENERIC, with nothing written: it is wrong, or hashing is
/// refused.
[[nodiscard]] std::int32_t decode_oaep(std::uint8_t *out, std::uint32_t *out_len,
                                       std::uint8_t *block, std::uint32_t len, Bytes label,
                                       const HASH_ALGORITHM &hash) noexcept;

/// Where a message begins in a secret block, and all ones when there is one, else zero.
struct Found {
  std::uint32_t at;
  std::uint32_t mask;
};

/// In a data block of OAEP: the digest of the label, zero bytes, 01, message.
Found find_in_data_block(const std::uint8_t *db, std::uint32_t len, const std::uint8_t *label_hash,
                         std::uint32_t hash_len) noexcept;

/// In a block of EME-PKCS1-v1_5: 02, eight or more bytes that are not zero, 00, message.
Found find_behind_padding(const std::uint8_t *block, std::uint32_t len) noexcept;

}  // namespace zel::pk
