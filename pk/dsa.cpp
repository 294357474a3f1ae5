// DSA signatures. FIPS 186-2, sections 5 and 6; departures are marked.
#include "pk/dsa.hpp"

#include "base/bytes.hpp"
#include "core/gate.hpp"
#include "mint/public_exp.hpp"
#include "mint/secret.hpp"
#include "zel_cc/mint_arith.h"

namespace zel {
namespace pk::dsa {

bool commit(MINT &r, const MINT &k, const Group &group) noexcept {
  Wiped<MINT> w;
  MINT one;
  MINT zero;
  MINT_SetByInteger(&one, 1);
  MINT_SetByInteger(&zero, 0);
  return group.power(*w, k) && mint::multiply_add_secret(r, *w, one, zero, group.q) == ZEL_OK;
}

void respond(MINT &s, const MINT &k, const MINT &x, const MINT &r, const MINT &h,
             const MINT &q) noexcept {
  Wiped<MINT> inverse;
  Wiped<MINT> sum;
  MINT zero;
  MINT_SetByInteger(&zero, 0);
  // An inverse that is missing is zero, and so is s.
  static_cast<void>(mint::inverse_secret(*inverse, k, q));
  static_cast<void>(mint::multiply_add_secret(*sum, x, r, h, q));
  static_cast<void>(mint::multiply_add_secret(s, *inverse, *sum, zero, q));
}

}  // namespace pk::dsa

namespace {

using pk::Digest;
using pk::Group;
using pk::Message;
using pk::dsa::group_of;

/// The hash value as an integer.
// Deliberate: all of the digest, where FIPS 186-3 and later cut it to the length of q.
void set_hash(MINT &h, const std::uint8_t *value, const HASH_ALGORITHM &hash) noexcept {
  MINT_SetByByteArray(&h, value, static_cast<std::int32_t>(hash.digest_len));
}

bool is_zero(const MINT &a) noexcept { return MINT_GetBitLength(&a) == 0; }

/// k below q, drawn again until it is. False when none of very many is.
bool draw_nonce(MINT &k, pk::RandHash &random, const MINT &q) noexcept {
  Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> bytes;
  // Deliberate: whole bytes, rounded down: the top bits of k are zero where q does not end in one.
  const std::uint32_t len = MINT_GetBitLength(&q) / 8;
  for (std::uint32_t draws = pk::kDraws; draws != 0; --draws) {
    random.fill(bytes->data(), len);
    MINT_SetByByteArray(&k, bytes->data(), static_cast<std::int32_t>(len));
    if (mint::below_secret(k, q)) return true;
  }
  return false;
}

std::int32_t sign_message(void *signature, const Message &message, const void *key,
                          const void *param, const HASH_ALGORITHM *hash) noexcept {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null<const void *>(signature, key, param, hash) || message.is_null())
    return ZEL_ERR_GENERIC;
  Wiped<Digest> digest;
  const std::int32_t status = pk::take_digest(*digest, message, *hash);
  if (status != ZEL_OK) return status;
  return DSA_SP(static_cast<DSA_SIGNATURE_BODY *>(signature), digest->data(),
                static_cast<const MINT *>(key), static_cast<const DSA_PARAM *>(param), hash);
}

std::int32_t verify_message(const void *signature, const Message &message, const void *key,
                            const void *param, const HASH_ALGORITHM *hash) noexcept {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null<const void *>(signature, key, param, hash) || message.is_null())
    return ZEL_ERR_GENERIC;
  Digest digest;
  const std::int32_t status = pk::take_digest(digest, message, *hash);
  if (status != ZEL_OK) return status;
  return DSA_VP(static_cast<const DSA_SIGNATURE_BODY *>(signature), digest.data(),
                static_cast<const MINT *>(key), static_cast<const DSA_PARAM *>(param), hash);
}

std::int32_t hash_message(std::uint8_t *out, std::uint32_t *out_len, const Message &message,
                          const HASH_ALGORITHM *hash) noexcept {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null<const void *>(out, out_len, hash) || message.is_null()) return ZEL_ERR_GENERIC;
  return pk::write_digest(out, out_len, message, *hash);
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t DSA_EMSA1(uint8_t *out, uint32_t *out_len, const uint8_t *message, uint32_t len,
                  const HASH_ALGORITHM *hash) {
  return hash_message(out, out_len, Message::in_memory(message, len), hash);
}

int32_t DSA_EMSA1_File(uint8_t *out, uint32_t *out_len, FILE *stream, uint32_t len,
                       const HASH_ALGORITHM *hash) {
  return hash_message(out, out_len, Message::in_stream(stream, len), hash);
}

int32_t DSA_SP(DSA_SIGNATURE_BODY *signature, const uint8_t *hash_value, const MINT *x,
               const DSA_PARAM *param, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null<const void *>(signature, hash_value, x, param, hash)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*param);
  if (!group.is_usable() || !pk::fits(*x) || !pk::is_usable(*hash)) return ZEL_ERR_GENERIC;
  MINT h;
  set_hash(h, hash_value, *hash);
  pk::RandHash random;
  if (!random) return ZEL_ERR_GENERIC;
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    Wiped<MINT> k;
    MINT r = {};
    MINT s = {};
    if (!draw_nonce(*k, random, group.q) || !pk::dsa::commit(r, *k, group)) break;
    if (is_zero(r)) continue;
    pk::dsa::respond(s, *k, *x, r, h, group.q);
    if (is_zero(s)) continue;
    pk::trim(r);
    pk::trim(s);
    signature->r = r;
    signature->s = s;
    return ZEL_OK;
  }
  return ZEL_ERR_GENERIC;
}

int32_t DSA_VP(const DSA_SIGNATURE_BODY *signature, const uint8_t *hash_value, const MINT *y,
               const DSA_PARAM *param, const HASH_ALGORITHM *hash) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (any_null<const void *>(signature, hash_value, y, param, hash)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*param);
  const MINT &r = signature->r;
  const MINT &s = signature->s;
  // Deliberate: r and s may be q or zero here. What that brings fails below.
  if (MINT_Compare(&r, &group.q) > 0 || MINT_Compare(&s, &group.q) > 0) return ZEL_ERR_DSA_VERIFY;
  if (!group.is_usable() || !pk::fits(*y) || !pk::fits(r) || !pk::fits(s) ||
      !pk::is_usable(*hash)) {
    return ZEL_ERR_GENERIC;
  }
  MINT w;
  MINT u1;
  MINT u2;
  MINT v;
  if (MINT_Inverse(&w, &s, &group.q) != ZEL_OK) return ZEL_ERR_GENERIC;
  set_hash(u1, hash_value, *hash);
  MINT_ModClassic(&u1, &group.q);
  MINT_Mult(&u1, &u1, &w);
  MINT_ModClassic(&u1, &group.q);
  MINT_Mult(&u2, &r, &w);
  MINT_ModClassic(&u2, &group.q);
  if (mint::power_product(v, group.g, u1, *y, u2, group.p) != ZEL_OK) return ZEL_ERR_GENERIC;
  MINT_ModClassic(&v, &group.q);
  return MINT_Compare(&v, &r) == 0 ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t DSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                  const void *param, const HASH_ALGORITHM *hash) {
  return sign_message(signature, Message::in_memory(message, len), key, param, hash);
}

int32_t DSA_SSA_S_Hash(void *signature, const uint8_t *hash_value, uint32_t len, const void *key,
                       const void *param, const HASH_ALGORITHM *hash) {
  return sign_message(signature, Message::hashed(hash_value, len), key, param, hash);
}

int32_t DSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                       const void *param, const HASH_ALGORITHM *hash) {
  return sign_message(signature, Message::in_stream(stream, len), key, param, hash);
}

int32_t DSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                  const void *param, const HASH_ALGORITHM *hash) {
  return verify_message(signature, Message::in_memory(message, len), key, param, hash);
}

int32_t DSA_SSA_V_Hash(const void *signature, const uint8_t *hash_value, uint32_t len,
                       const void *key, const void *param, const HASH_ALGORITHM *hash) {
  return verify_message(signature, Message::hashed(hash_value, len), key, param, hash);
}

int32_t DSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                       const void *param, const HASH_ALGORITHM *hash) {
  return verify_message(signature, Message::in_stream(stream, len), key, param, hash);
}

constinit const PKCRYPT_ALGORITHM dsa = {
    .Sign = DSA_SSA_S,
    .Verify = DSA_SSA_V,
    .SignFile = DSA_SSA_S_File,
    .VerifyFile = DSA_SSA_V_File,
    .Encrypt = nullptr,
    .Decrypt = nullptr,
    .GenParam = DSA_GenParam,
    .GenKey = DSA_GenKey,
    .CheckParam = DSA_CheckParam,
    .CheckKey = DSA_CheckKey,
    .CheckKeyPair = DSA_CheckKeyPair,
    .PriKeySize = sizeof(MINT),
    .PubKeySize = sizeof(MINT),
    .ParamSize = sizeof(DSA_PARAM),
    .SignatureSize = sizeof(DSA_SIGNATURE_BODY),
    .Type = PKCRYPT_TYPE_PLAIN,
    .zero = 0,
    .SignHash = DSA_SSA_S_Hash,
    .VerifyHash = DSA_SSA_V_Hash,
};
