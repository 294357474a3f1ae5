// RSAES-OAEP. RFC 8017, section 7.1; departures are marked.
#include <algorithm>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "mint/secret_exp.hpp"
#include "pk/oaep.hpp"
#include "pk/rsa_crypt.hpp"
#include "zel_cc/rsa_oaep.h"

namespace zel::pk {

Bytes label_of(const void *record) noexcept {
  if (record == nullptr) return {nullptr, 0};
  const auto &label = *static_cast<const RSA_OAEP_LABEL *>(record);
  return {label.label, label.label == nullptr ? 0 : label.labelLen};
}

namespace {

std::int32_t raise_public(std::uint8_t *out, const std::uint8_t *em, std::uint32_t k,
                          const RSA_PUBLIC_KEY &key) noexcept {
  // The base is secret, unlike that of a signature; the exponent is not.
  Wiped<MINT> m;
  octets_to_integer(*m, em, k);
  if (mint::power_secret(*m, *m, key.e, key.n, MINT_GetBitLength(&key.e)) != ZEL_OK) {
    return ZEL_ERR_GENERIC;
  }
  secret_to_octets(out, k, *m);
  return ZEL_OK;
}

}  // namespace

std::int32_t encrypt_block(std::uint8_t *out, const std::uint8_t *em, std::uint32_t k,
                           const RSA_PUBLIC_KEY &key) noexcept {
  return with_wiped_stack<kStackDepth>([&] { return raise_public(out, em, k, key); });
}

std::int32_t decrypt_block(std::uint8_t *em, const std::uint8_t *in, std::uint32_t k,
                           const RSA_PRIVATE_KEY &key) noexcept {
  MINT c;
  octets_to_integer(c, in, k);
  Wiped<MINT> m;
  const std::int32_t status = private_operation(*m, c, key);
  if (status == ZEL_OK) secret_to_octets(em, k, *m);
  return status;
}

namespace {

std::int32_t encode(std::uint8_t *em, std::uint32_t k, Bytes message, Bytes label,
                    const HASH_ALGORITHM &hash) noexcept {
  if (k == 0) return ZEL_ERR_RSA_MESSAGE_LEN;
  const std::int32_t status = encode_oaep(em + 1, k - 1, message, label, hash, Seed::kZero);
  if (status == ZEL_OK) em[0] = 0;
  return status;
}

}  // namespace
}  // namespace zel::pk

using namespace zel;
using namespace zel::pk;

extern "C" {

int32_t EME_OAEP_ENCODE21(uint8_t *em, uint32_t k, const uint8_t *message, uint32_t len,
                          const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash) {
  if (any_null(em) || any_null(message) || hash == nullptr) return ZEL_ERR_GENERIC;
  if (label == nullptr) label_len = 0;
  return encode(em, k, {message, len}, {label, label_len}, *hash);
}

int32_t EME_OAEP_DECODE21(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t k,
                          const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash) {
  if (any_null(out) || any_null(em) || out_len == nullptr || hash == nullptr || k == 0) {
    return ZEL_ERR_GENERIC;
  }
  if (label == nullptr) label_len = 0;
  Scratch<std::uint8_t> block(k - 1);
  if (!block) return ZEL_ERR_GENERIC;
  // Deliberate: the first byte is not looked at.
  std::copy(em + 1, em + k, block.data());
  return decode_oaep(out, out_len, block.data(), k - 1, {label, label_len}, *hash);
}

int32_t RSAES_OAEP_ENCRYPT21(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                             const void *key, const void *label, const HASH_ALGORITHM *hash,
                             const void * /*unused*/) {
  if (any_null(out) || any_null(in) || out_len == nullptr || key == nullptr || hash == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  const auto &public_key = *static_cast<const RSA_PUBLIC_KEY *>(key);
  const std::uint32_t k = modulus_len(public_key.n);
  *out_len = k;
  Wiped<Octets> em;
  const std::int32_t status = encode(*em, k, {in, in_len}, label_of(label), *hash);
  return status == ZEL_OK ? encrypt_block(out, *em, k, public_key) : status;
}

int32_t RSAES_OAEP_DECRYPT21(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                             const void *key, const void *label, const HASH_ALGORITHM *hash,
                             const void * /*unused*/) {
  if (in_len == 0 || any_null(out) || any_null(in) || out_len == nullptr || key == nullptr ||
      hash == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  const auto &private_key = *static_cast<const RSA_PRIVATE_KEY *>(key);
  const std::uint32_t k = modulus_len(private_key.n);
  if (in_len != k) return ZEL_ERR_RSA_DECODE;
  if (k < 2 * std::uint64_t{hash->digest_len} + 2) return ZEL_ERR_OAEP_MODULUS;
  Wiped<Octets> em;
  const std::int32_t status = decrypt_block(*em, in, k, private_key);
  if (status != ZEL_OK) return status;
  return decode_oaep(out, out_len, *em + 1, k - 1, label_of(label), *hash);
}

}  // extern "C"
