// RSA of PKCS #1 v2.0 (RFC 2437), which is not approved: signatures and OAEP without the leading
// zero byte of version 2.1, encryption with the padding of version 1.5. Keys and primitives are
// those of version 2.1.
#include "zel_cc/rsa20.h"

#include <algorithm>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "pk/rsa_crypt.hpp"
#include "pk/rsa_encoding.hpp"
#include "pk/rsa_key.hpp"
#include "zel_cc/legacy_rng.h"

namespace zel::pk {
namespace {

/// Bytes of an encoded message: those of the modulus less one.
std::uint32_t em_len_of_bits(std::uint32_t mod_bits) noexcept {
  return mod_bits == 0 ? 0 : (mod_bits - 1) / 8;
}

std::int32_t encode_emsa20(std::uint8_t *em, std::uint32_t em_len, const Message &message,
                           const HASH_ALGORITHM *hash) noexcept {
  if (em == nullptr || message.is_null()) return ZEL_ERR_GENERIC;
  return encode_emsa(em, em_len, message, hash, kVersion20);
}

std::int32_t sign(void *signature, const Message &message, const void *key,
                  const HASH_ALGORITHM *hash) noexcept {
  return sign_emsa(static_cast<MINT *>(signature), message,
                   static_cast<const RSA_PRIVATE_KEY *>(key), hash, kVersion20);
}

std::int32_t verify(const void *signature, const Message &message, const void *key,
                    const HASH_ALGORITHM *hash) noexcept {
  return verify_emsa(static_cast<const MINT *>(signature), message,
                     static_cast<const RSA_PUBLIC_KEY *>(key), hash, kVersion20);
}

/// EME-PKCS1-v1_5 into em[em_len]. RFC 2437, section 9.1.2.1.
std::int32_t encode_padded(std::uint8_t *em, std::uint32_t em_len, Bytes message) noexcept {
  constexpr std::uint32_t kLeastPadding = 8;
  if (std::uint64_t{message.len} + 2 + kLeastPadding > em_len) return ZEL_ERR_RSA_MESSAGE_LEN;
  const std::uint32_t padding_len = em_len - message.len - 2;
  std::uint8_t *const padding = em + 1;
  if (const std::int32_t status = DSARNGSHA1_GetRandomNum(padding, padding_len); status != ZEL_OK) {
    return status;
  }
  // Deliberate: zero bytes become ones rather than being drawn again.
  for (std::uint32_t i = 0; i < padding_len; ++i)
    padding[i] |= static_cast<std::uint8_t>(1 & ct::mask_if_zero(padding[i]));
  em[0] = 2;
  padding[padding_len] = 0;
  std::memcpy(padding + padding_len + 1, message.data, message.len);
  return ZEL_OK;
}

std::int32_t decode_padded(std::uint8_t *out, std::uint32_t *out_len, const std::uint8_t *em,
                           std::uint32_t em_len) noexcept {
  if (em_len == 0) return ZEL_ERR_GENERIC;
  const Found found = find_behind_padding(em, em_len);
  if (found.mask == 0) return ZEL_ERR_GENERIC;  // the result tells as much
  *out_len = em_len - found.at;
  std::memmove(out, em + found.at, *out_len);
  return ZEL_OK;
}

/// With a hash OAEP, without one the padding of version 1.5, which is refused in the verified
/// service.
std::int32_t encode(std::uint8_t *em, std::uint32_t em_len, Bytes message, Bytes label,
                    const HASH_ALGORITHM *hash) noexcept {
  if (hash != nullptr) return encode_oaep(em, em_len, message, label, *hash, Seed::kRandom);
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return encode_padded(em, em_len, message);
}

/// The reverse; em is used up.
std::int32_t decode(std::uint8_t *out, std::uint32_t *out_len, std::uint8_t *em,
                    std::uint32_t em_len, Bytes label, const HASH_ALGORITHM *hash) noexcept {
  if (hash != nullptr) return decode_oaep(out, out_len, em, em_len, label, *hash);
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return decode_padded(out, out_len, em, em_len);
}

Bytes label_of(const std::uint8_t *label, std::uint32_t len) noexcept {
  return {label, label == nullptr ? 0 : len};
}

}  // namespace
}  // namespace zel::pk

using namespace zel;
using namespace zel::pk;

extern "C" {

int32_t RSA20_SP1(MINT *out, const MINT *in, const RSA_PRIVATE_KEY *key) {
  return RSA_SP1(out, in, key);
}

int32_t RSA20_VP1(MINT *out, const MINT *in, const RSA_PUBLIC_KEY *key) {
  return RSA_VP1(out, in, key);
}

int32_t RSA20_I2OSP(uint8_t *out, uint32_t *out_len, const MINT *a) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return RSA_I2OSP(out, out_len, a);
}

int32_t RSA20_MGF1(uint8_t *mask, uint32_t mask_len, const uint8_t *seed, uint32_t seed_len,
                   const HASH_ALGORITHM *hash) {
  return RSA_MGF1(mask, mask_len, seed, seed_len, hash);
}

int32_t RSA20_EMSA2(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len,
                    const HASH_ALGORITHM *hash) {
  return encode_emsa20(em, em_len, Message::in_memory(message, len), hash);
}

int32_t RSA20_EMSA2_Hash(uint8_t *em, uint32_t em_len, const uint8_t *digest, uint32_t len,
                         const HASH_ALGORITHM *hash) {
  return encode_emsa20(em, em_len, Message::hashed(digest, len), hash);
}

int32_t RSA20_EMSA2_File(uint8_t *em, uint32_t em_len, FILE *stream, uint32_t len,
                         const HASH_ALGORITHM *hash) {
  return encode_emsa20(em, em_len, Message::in_stream(stream, len), hash);
}

int32_t RSA20_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                    const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return sign(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA20_SSA_S_Hash(void *signature, const uint8_t *digest, uint32_t len, const void *key,
                         const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return sign(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA20_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                         const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return sign(signature, Message::in_stream(stream, len), key, hash);
}

int32_t RSA20_SSA_V(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                    const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return verify(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA20_SSA_V_Hash(const void *signature, const uint8_t *digest, uint32_t len,
                         const void *key, const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return verify(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA20_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                         const void * /*param*/, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return verify(signature, Message::in_stream(stream, len), key, hash);
}

int32_t RSA20_EME1_E(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len,
                     const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash) {
  if (any_null(em) || any_null(message) || hash == nullptr) return ZEL_ERR_GENERIC;
  return encode_oaep(em, em_len, {message, len}, label_of(label, label_len), *hash, Seed::kRandom);
}

int32_t RSA20_EME1_D(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t em_len,
                     const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash) {
  if (any_null(out) || any_null(em) || out_len == nullptr || hash == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  Scratch<std::uint8_t> block(em_len);
  if (!block) return ZEL_ERR_GENERIC;
  std::copy(em, em + em_len, block.data());
  return decode_oaep(out, out_len, block.data(), em_len, label_of(label, label_len), *hash);
}

int32_t RSA20_EME2_E(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null(em) || any_null(message)) return ZEL_ERR_GENERIC;
  return encode_padded(em, em_len, {message, len});
}

int32_t RSA20_EME2_D(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t em_len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null(out) || any_null(em) || out_len == nullptr) return ZEL_ERR_GENERIC;
  return decode_padded(out, out_len, em, em_len);
}

int32_t RSA20_ES_E(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                   const void *key, const void *label, const HASH_ALGORITHM *hash,
                   const void * /*unused*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null(out) || any_null(in) || out_len == nullptr || key == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  const auto &public_key = *static_cast<const RSA_PUBLIC_KEY *>(key);
  const std::uint32_t em_len = em_len_of_bits(MINT_GetBitLength(&public_key.n));
  *out_len = em_len + 1;
  Wiped<Octets> em;
  (*em)[0] = 0;
  const std::int32_t status = encode(*em + 1, em_len, {in, in_len}, pk::label_of(label), hash);
  return status == ZEL_OK ? encrypt_block(out, *em, em_len + 1, public_key) : status;
}

int32_t RSA20_ES_D(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                   const void *key, const void *label, const HASH_ALGORITHM *hash,
                   const void * /*unused*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (in_len == 0 || any_null(out) || any_null(in) || out_len == nullptr || key == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  const auto &private_key = *static_cast<const RSA_PRIVATE_KEY *>(key);
  const std::uint32_t em_len = em_len_of_bits(MINT_GetBitLength(&private_key.n));
  if (in_len != em_len + 1) return ZEL_ERR_RSA_DECODE;
  Wiped<Octets> em;
  const std::int32_t status = decrypt_block(*em, in, em_len + 1, private_key);
  if (status != ZEL_OK) return status;
  return decode(out, out_len, *em + 1, em_len, pk::label_of(label), hash);
}

int32_t EME_OAEP_ENCODE(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        uint32_t mod_bits, const RSA_OAEP_LABEL *label, const HASH_ALGORITHM *hash,
                        const void * /*unused*/) {
  if (any_null(out) || any_null(in) || out_len == nullptr) return ZEL_ERR_GENERIC;
  const std::uint32_t em_len = em_len_of_bits(mod_bits);
  *out_len = em_len + 1;
  const std::int32_t status = encode(out + 1, em_len, {in, in_len}, pk::label_of(label), hash);
  if (status == ZEL_OK) out[0] = 0;
  return status;
}

int32_t EME_OAEP_DECODE(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        uint32_t mod_bits, const RSA_OAEP_LABEL *label, const HASH_ALGORITHM *hash,
                        const void * /*unused*/) {
  if (any_null(out) || any_null(in) || out_len == nullptr) return ZEL_ERR_GENERIC;
  const std::uint32_t em_len = em_len_of_bits(mod_bits);
  if (in_len != em_len + 1) return ZEL_ERR_RSA_DECODE;
  Scratch<std::uint8_t> em(em_len);
  if (!em) return ZEL_ERR_GENERIC;
  // Deliberate: the first bytes of the block, not the last: callers strip the leading zero byte and
  // add one at the end.
  std::copy(in, in + em_len, em.data());
  return decode(out, out_len, em.data(), em_len, pk::label_of(label), hash);
}

int32_t RSA20_GenKey(void *private_key, void *public_key, uint32_t bits) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return generate_default(private_key, public_key, bits);
}

int32_t RSA20_CheckKey(const void *private_key, const void *public_key) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return check_key(private_key, public_key);
}

int32_t RSA20_CheckKeyPair(const void *private_key, const void *public_key) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return check_pair(private_key, public_key);
}

constinit const PKCRYPT_ALGORITHM rsa20 = {
    .Sign = RSA20_SSA_S,
    .Verify = RSA20_SSA_V,
    .SignFile = RSA20_SSA_S_File,
    .VerifyFile = RSA20_SSA_V_File,
    .Encrypt = RSA20_ES_E,
    .Decrypt = RSA20_ES_D,
    .GenParam = nullptr,
    .GenKeyOfBits = RSA20_GenKey,
    .CheckParam = nullptr,
    .CheckPlainKey = RSA20_CheckKey,
    .CheckPlainKeyPair = RSA20_CheckKeyPair,
    .PriKeySize = sizeof(RSA_PRIVATE_KEY),
    .PubKeySize = sizeof(RSA_PUBLIC_KEY),
    .ParamSize = 0,
    .SignatureSize = sizeof(MINT),
    .Type = PKCRYPT_TYPE_PLAIN,
    .zero = 0,
    .SignHash = RSA20_SSA_S_Hash,
    .VerifyHash = RSA20_SSA_V_Hash,
};

}  // extern "C"
