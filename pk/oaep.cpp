// EME-OAEP, and the search for messages in decrypted blocks. RFC 8017, sections 7.1 and 7.2.
#include "pk/oaep.hpp"

#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "pk/message.hpp"
#include "pk/rsa_primitive.hpp"

namespace zel::pk {
namespace {

using Mask = std::uint32_t;

Mask mask_if_equal(std::uint32_t a, std::uint32_t b) noexcept { return ct::mask_if_zero(a ^ b); }

std::int32_t hash_label(HashValue &value, Bytes label, const HASH_ALGORITHM &hash) noexcept {
  return hash_value(value, Message::in_memory(label.data, label.len), hash);
}

struct Part {
  std::uint8_t *data;
  std::uint32_t len;
};

/// Puts the masks on both parts of a block, or takes them off: that of `first` comes first.
bool mask_parts(Part first, Part second, const HASH_ALGORITHM &hash) noexcept {
  return apply_mask(first.data, first.len, second.data, second.len, hash) &&
         apply_mask(second.data, second.len, first.data, first.len, hash);
}

}  // namespace

std::int32_t encode_oaep(std::uint8_t *block, std::uint32_t len, Bytes message, Bytes label,
                         const HASH_ALGORITHM &hash, Seed seed) noexcept {
  const std::uint32_t hash_len = hash.digest_len;
  if (hash_len > ZEL_MAX_DIGEST_LEN) return ZEL_ERR_GENERIC;
  if (std::uint64_t{message.len} + 2 * hash_len + 1 > len) return ZEL_ERR_RSA_MESSAGE_LEN;
  HashValue label_hash;
  if (const std::int32_t status = hash_label(label_hash, label, hash); status != ZEL_OK) {
    return status;
  }
  std::uint8_t *const db = block + hash_len;
  const std::uint32_t db_len = len - hash_len;
  std::uint8_t *const start = block + len - message.len;
  std::memmove(start, message.data, message.len);
  std::memcpy(db, label_hash.bytes, hash_len);
  std::memset(db + hash_len, 0, db_len - hash_len - message.len);
  start[-1] = 1;
  // Deliberate: version 2.1 has a seed of zero bytes here, so that the same message, key and label
  // always give the same ciphertext.
  std::memset(block, 0, hash_len);
  if (seed == Seed::kRandom) draw_octets(block, hash_len);
  return mask_parts({db, db_len}, {block, hash_len}, hash) ? ZEL_OK : ZEL_ERR_GENERIC;
}

std::int32_t decode_oaep(std::uint8_t *out, std::uint32_t *out_len, std::uint8_t *block,
                         std::uint32_t len, Bytes label, const HASH_ALGORITHM &hash) noexcept {
  const std::uint32_t hash_len = hash.digest_len;
  if (hash_len > ZEL_MAX_DIGEST_LEN || len < 2 * hash_len + 1) return ZEL_ERR_GENERIC;
  HashValue label_hash;
  if (const std::int32_t status = hash_label(label_hash, label, hash); status != ZEL_OK) {
    return status;
  }
  std::uint8_t *const db = block + hash_len;
  const std::uint32_t db_len = len - hash_len;
  if (!mask_parts({block, hash_len}, {db, db_len}, hash)) return ZEL_ERR_GENERIC;
  const Found found = find_in_data_block(db, db_len, label_hash.bytes, hash_len);
  if (found.mask == 0) return ZEL_ERR_GENERIC;  // the result tells as much
  *out_len = db_len - found.at;
  std::memcpy(out, db + found.at, *out_len);
  return ZEL_OK;
}

Found find_in_data_block(const std::uint8_t *db, std::uint32_t len, const std::uint8_t *label_hash,
                         std::uint32_t hash_len) noexcept {
  std::uint32_t difference = 0;
  for (std::uint32_t i = 0; i < hash_len; ++i)
    difference |= static_cast<std::uint32_t>(db[i] ^ label_hash[i]);
  Found found{0, 0};
  Mask in_zeros = ~Mask{0};
  for (std::uint32_t i = hash_len; i < len; ++i) {
    const Mask here = in_zeros & ~mask_if_equal(db[i], 0);
    found.at |= here & (i + 1);
    found.mask |= here & mask_if_equal(db[i], 1);
    in_zeros &= ~here;
  }
  found.mask &= ct::mask_if_zero(difference);
  return found;
}

Found find_behind_padding(const std::uint8_t *block, std::uint32_t len) noexcept {
  constexpr std::uint32_t kLeastAt = 9;
  Found found{0, 0};
  for (std::uint32_t i = 1; i < len; ++i) {
    const Mask here = ~found.mask & mask_if_equal(block[i], 0);
    found.at |= here & (i + 1);
    found.mask |= here;
  }
  // A difference below zero has its top bit set.
  const Mask too_short = ct::mask_of_bit((found.at - (kLeastAt + 1)) >> 31);
  found.mask &= ~too_short & mask_if_equal(block[0], 2);
  return found;
}

}  // namespace zel::pk
