// RSASSA-PKCS1-v1_5. RFC 8017, sections 8.2 and 9.2.
#include <algorithm>
#include <iterator>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "hash/algorithms.hpp"
#include "pk/rsa_encoding.hpp"
#include "zel_cc/rsa.h"

namespace zel::pk {
namespace {

/// A hash algorithm and the contents of its AlgorithmIdentifier: OBJECT IDENTIFIER and NULL.
struct Prefix {
  const HASH_ALGORITHM *own;
  const HASH_ALGORITHM *exported;
  std::uint32_t len;
  std::uint8_t bytes[13];
};
constinit const Prefix kPrefixes[] = {
    {&zel_own_md2,
     &md2,
     12,
     {0x06, 0x08, 0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 0x02, 0x02, 0x05, 0x00}},
    {&zel_own_popmd5,
     &popmd5,
     12,
     {0x06, 0x08, 0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 0x02, 0x05, 0x05, 0x00}},
    {&zel_own_popsha1, &popsha1, 9, {0x06, 0x05, 0x2b, 0x0e, 0x03, 0x02, 0x1a, 0x05, 0x00}},
    {&zel_own_sha256,
     &sha256,
     13,
     {0x06, 0x09, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x01, 0x05, 0x00}},
    {&zel_own_sha384,
     &sha384,
     13,
     {0x06, 0x09, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x02, 0x05, 0x00}},
    {&zel_own_sha512,
     &sha512,
     13,
     {0x06, 0x09, 0x60, 0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02, 0x03, 0x05, 0x00}},
};

const Prefix *prefix_of(const HASH_ALGORITHM *hash) noexcept {
  const auto *const found = std::find_if(
      std::begin(kPrefixes), std::end(kPrefixes),
      [hash](const Prefix &prefix) { return is_same(hash, *prefix.own, *prefix.exported); });
  return found == std::end(kPrefixes) ? nullptr : found;
}

constexpr std::uint8_t kSequence = 0x30;
constexpr std::uint8_t kOctetString = 0x04;

/// Tag and length of an element, in one byte each.
std::uint8_t *put_header(std::uint8_t *to, std::uint8_t tag, std::uint32_t len) noexcept {
  *to++ = tag;
  *to++ = static_cast<std::uint8_t>(len);
  return to;
}

/// DigestInfo.
void put_digest_info(std::uint8_t *to, const Prefix &prefix, const HashValue &value) noexcept {
  to = put_header(to, kSequence, prefix.len + 4 + value.len);
  to = put_header(to, kSequence, prefix.len);
  std::memcpy(to, prefix.bytes, prefix.len);
  to = put_header(to + prefix.len, kOctetString, value.len);
  if (value.len != 0) std::memcpy(to, value.bytes, value.len);
}

/// Whether a hash value that the caller has computed can be one.
bool has_fitting_length(const Message &message) noexcept {
  return !message.is_hashed() || (message.len() >= 1 && message.len() <= ZEL_MAX_DIGEST_LEN);
}

/// Encodes for a modulus and reads the result as an integer.
std::int32_t encode_for(MINT &m, const MINT &n, const Message &message, const HASH_ALGORITHM *hash,
                        const EmsaVersion &version) noexcept {
  Wiped<Octets> em;
  const std::uint32_t k = modulus_len(n);
  const std::uint32_t em_len = k == 0 ? 0 : k - 1 + version.leading_zeros;
  const std::int32_t status = encode_emsa(*em, em_len, message, hash, version);
  if (status == ZEL_OK) octets_to_integer(m, *em, em_len);
  return status;
}

}  // namespace

std::int32_t encode_emsa(std::uint8_t *em, std::uint32_t em_len, const Message &message,
                         const HASH_ALGORITHM *hash, const EmsaVersion &version) noexcept {
  if (hash == nullptr) return ZEL_ERR_GENERIC;
  HashValue value;
  if (const std::int32_t status = hash_value(value, message, *hash); status != ZEL_OK) {
    return status;
  }
  const Prefix *const prefix = prefix_of(hash);
  if (prefix == nullptr) return ZEL_ERR_GENERIC;
  constexpr std::uint64_t kLeastPadding = 10;  // 01, eight FF, 00
  const std::uint64_t info_len = std::uint64_t{prefix->len} + 6 + value.len;
  if (em_len < info_len + kLeastPadding + version.leading_zeros) return version.too_short;
  std::uint8_t *const info = em + em_len - info_len;
  std::fill(em, em + version.leading_zeros, std::uint8_t{0});
  em += version.leading_zeros;
  *em++ = 1;
  std::fill(em, info - 1, std::uint8_t{0xff});
  info[-1] = 0;
  put_digest_info(info, *prefix, value);
  return ZEL_OK;
}

std::int32_t sign_emsa(MINT *signature, const Message &message, const RSA_PRIVATE_KEY *key,
                       const HASH_ALGORITHM *hash, const EmsaVersion &version) noexcept {
  if (signature == nullptr || key == nullptr || hash == nullptr) return ZEL_ERR_GENERIC;
  if (message.is_null() || !has_fitting_length(message)) return ZEL_ERR_GENERIC;
  MINT m;
  const std::int32_t status = encode_for(m, key->n, message, hash, version);
  return status == ZEL_OK ? private_operation(*signature, m, *key) : status;
}

std::int32_t verify_emsa(const MINT *signature, const Message &message, const RSA_PUBLIC_KEY *key,
                         const HASH_ALGORITHM *hash, const EmsaVersion &version) noexcept {
  if (signature == nullptr || key == nullptr || message.is_null()) return ZEL_ERR_GENERIC;
  // Deliberate: for a hash value the algorithm is looked at only after the signature.
  if (hash == nullptr && !message.is_hashed()) return ZEL_ERR_GENERIC;
  if (!has_fitting_length(message)) return ZEL_ERR_GENERIC;
  MINT m;
  if (const std::int32_t status = public_operation(m, *signature, *key); status != ZEL_OK) {
    return status;
  }
  MINT expected;
  const std::int32_t status = encode_for(expected, key->n, message, hash, version);
  if (status != ZEL_OK) return status;
  return MINT_Compare(&m, &expected) == 0 ? ZEL_OK : ZEL_ERR_GENERIC;
}

namespace {

std::int32_t sign(void *signature, const Message &message, const void *key,
                  const HASH_ALGORITHM *hash) noexcept {
  return sign_emsa(static_cast<MINT *>(signature), message,
                   static_cast<const RSA_PRIVATE_KEY *>(key), hash, kVersion21);
}

std::int32_t verify(const void *signature, const Message &message, const void *key,
                    const HASH_ALGORITHM *hash) noexcept {
  return verify_emsa(static_cast<const MINT *>(signature), message,
                     static_cast<const RSA_PUBLIC_KEY *>(key), hash, kVersion21);
}

std::int32_t encode(std::uint8_t *em, std::uint32_t em_len, const Message &message,
                    const HASH_ALGORITHM *hash) noexcept {
  if (em == nullptr || message.is_null()) return ZEL_ERR_GENERIC;
  return encode_emsa(em, em_len, message, hash, kVersion21);
}

}  // namespace
}  // namespace zel::pk

using namespace zel;
using zel::pk::Message;

extern "C" {

int32_t EMSA_PKCS1_v1_5_ENCODE(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len,
                               const HASH_ALGORITHM *hash) {
  return pk::encode(em, em_len, Message::in_memory(message, len), hash);
}

int32_t EMSA_PKCS1_v1_5_ENCODE_Hash(uint8_t *em, uint32_t em_len, const uint8_t *digest,
                                    uint32_t len, const HASH_ALGORITHM *hash) {
  return pk::encode(em, em_len, Message::hashed(digest, len), hash);
}

int32_t EMSA_PKCS1_v1_5_ENCODE_File(uint8_t *em, uint32_t em_len, FILE *stream, uint32_t len,
                                    const HASH_ALGORITHM *hash) {
  return pk::encode(em, em_len, Message::in_stream(stream, len), hash);
}

int32_t RSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                  const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA_SSA_S_Hash(void *signature, const uint8_t *digest, uint32_t len, const void *key,
                       const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                       const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::in_stream(stream, len), key, hash);
}

int32_t RSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                  const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA_SSA_V_Hash(const void *signature, const uint8_t *digest, uint32_t len, const void *key,
                       const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                       const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::in_stream(stream, len), key, hash);
}

}  // extern "C"
