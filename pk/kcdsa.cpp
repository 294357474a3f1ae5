// KCDSA signatures. TTAK.KO-12.0001; departures are marked.
#include "pk/kcdsa.hpp"

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "hash/algorithms.hpp"
#include "mint/public_exp.hpp"
#include "mint/secret.hpp"
#include "zel_cc/mint_arith.h"

namespace zel {
namespace pk::kcdsa {

bool respond(MINT &s, const MINT &k, const MINT &x, const MINT &e, const MINT &q) noexcept {
  Wiped<MINT> difference;
  MINT one;
  MINT zero;
  MINT negative;
  MINT_SetByInteger(&one, 1);
  MINT_SetByInteger(&zero, 0);
  MINT_Sub(&negative, &q, &e);
  static_cast<void>(mint::multiply_add_secret(*difference, k, one, negative, q));
  static_cast<void>(mint::multiply_add_secret(s, x, *difference, zero, q));
  std::uint32_t any = 0;
  for (std::uint32_t i = 0; i < difference->length; ++i)
    any |= difference->words[i];
  return ct::opaque(any) == 0;
}

}  // namespace pk::kcdsa

namespace {

using pk::Digest;
using pk::Group;
using pk::Message;
using pk::kcdsa::group_of;

using Bytes = std::array<std::uint8_t, ZEL_MINT_BYTES>;
using Prefix = std::span<const std::uint8_t>;

/// r = Hash(W) for W in all the bytes of p.
bool hash_power(Digest &r, const MINT &w, const Group &group, const HASH_ALGORITHM &hash) noexcept {
  Wiped<Bytes> bytes;
  const std::uint32_t len = pk::byte_len(group.p_bits());
  MINT_WriteLSNByteInByteArray(bytes->data(), len, &w);
  return pk::take_digest(r, Message::in_memory(bytes->data(), len), hash) == ZEL_OK;
}

/// The same without the zero bytes in front. False when there are none, or the hash fails.
bool hash_short_power(Digest &r, const MINT &w, const Group &group,
                      const HASH_ALGORITHM &hash) noexcept {
  Bytes bytes;
  std::uint32_t len = 0;
  MINT_WriteInByteArray(bytes.data(), &len, &w);
  return len < pk::byte_len(group.p_bits()) &&
         pk::take_digest(r, Message::in_memory(bytes.data(), len), hash) == ZEL_OK;
}

/// e = (r xor hash value) mod q, and the exclusive or itself.
// Deliberate: all of the hash, where the standard cuts it to the length of q.
void set_challenge(MINT &e, std::uint8_t *mixed, const std::uint8_t *r,
                   const std::uint8_t *hash_value, const MINT &q,
                   const HASH_ALGORITHM &hash) noexcept {
  xor_bytes(mixed, r, hash_value, hash.digest_len);
  MINT_SetByByteArray(&e, mixed, static_cast<std::int32_t>(hash.digest_len));
  MINT_ModClassic(&e, &q);
}

/// Nonces below q: random bytes, into which each draw is mixed.
class Nonces {
 public:
  explicit Nonces(const MINT &q) noexcept : q_(q), len_(pk::byte_len(MINT_GetBitLength(&q))) {}

  /// False where the module is not serving.
  bool start() noexcept {
    return random_ && pk::fill_from_drbg(bytes_->data(), MINT_GetBitLength(&q_));
  }

  /// False when none of very many draws is below q.
  bool draw(MINT &k) noexcept {
    Wiped<Bytes> fresh;
    for (std::uint32_t draws = pk::kDraws; draws != 0; --draws) {
      random_.fill(fresh->data(), len_);
      xor_bytes(bytes_->data(), bytes_->data(), fresh->data(), len_);
      MINT_SetByByteArray(&k, bytes_->data(), static_cast<std::int32_t>(len_));
      if (mint::below_secret(k, q_)) return true;
    }
    return false;
  }

 private:
  const MINT &q_;
  std::uint32_t len_;
  pk::RandHash random_;
  Wiped<Bytes> bytes_;
};

/// z of `p_kcdsa1`: the low bytes of y, one block of the hash.
class LowBytes {
 public:
  LowBytes(const MINT &y, const HASH_ALGORITHM &hash) noexcept
      : len_(hash::is_sha384_or_sha512(&hash) ? kWide : kNarrow) {
    MINT_WriteLSNByteInByteArray(bytes_.data(), static_cast<std::uint32_t>(len_), &y);
  }
  Prefix bytes() const noexcept { return {bytes_.data(), len_}; }

 private:
  static constexpr std::size_t kNarrow = 64;
  static constexpr std::size_t kWide = 128;
  std::array<std::uint8_t, kWide> bytes_;
  std::size_t len_;
};

/// z of `popkcdsa`: the caller's bytes, as many as the hash has, or 20.
Prefix callers_bytes(const void *z, const HASH_ALGORITHM &hash) noexcept {
  constexpr std::size_t kOthers = 20;
  const bool is_long = is_same(&hash, zel_own_sha256, sha256) || hash::is_sha384_or_sha512(&hash);
  return {static_cast<const std::uint8_t *>(z), is_long ? hash.digest_len : kOthers};
}

/// What a scheme is called with. The prefix is asked for once the pointers are known to be there.
struct Call {
  const Message &message;
  const void *key;
  const void *param;
  const HASH_ALGORITHM *hash;

  bool misses(const void *signature, const void *last) const noexcept {
    return any_null<const void *>(signature, key, param, hash, last) || message.is_null();
  }
};

std::int32_t sign_message(void *signature, const Call &call, Prefix z) noexcept {
  Wiped<Digest> digest;
  const std::int32_t status = pk::take_digest(*digest, call.message, *call.hash, z);
  if (status != ZEL_OK) return status;
  return KCDSA_SP(static_cast<KCDSA_SIGNATURE_BODY *>(signature), digest->data(),
                  static_cast<const MINT *>(call.key), static_cast<const KCDSA_PARAM *>(call.param),
                  call.hash);
}

std::int32_t verify_message(const void *signature, const Call &call, Prefix z) noexcept {
  Digest digest;
  const std::int32_t status = pk::take_digest(digest, call.message, *call.hash, z);
  if (status != ZEL_OK) return status;
  return KCDSA_VP(static_cast<const KCDSA_SIGNATURE_BODY *>(signature), digest.data(),
                  static_cast<const MINT *>(call.key), static_cast<const KCDSA_PARAM *>(call.param),
                  call.hash);
}

std::int32_t sign_with_key(void *signature, const Call &call, const void *public_key) noexcept {
  if (call.misses(signature, public_key)) return ZEL_ERR_GENERIC;
  const LowBytes z(*static_cast<const MINT *>(public_key), *call.hash);
  return sign_message(signature, call, z.bytes());
}

std::int32_t verify_with_key(const void *signature, const Call &call) noexcept {
  if (call.misses(signature, call.key)) return ZEL_ERR_GENERIC;
  const LowBytes z(*static_cast<const MINT *>(call.key), *call.hash);
  return verify_message(signature, call, z.bytes());
}

std::int32_t sign_with_bytes(void *signature, const Call &call, const void *z) noexcept {
  if (call.misses(signature, z)) return ZEL_ERR_GENERIC;
  return sign_message(signature, call, callers_bytes(z, *call.hash));
}

std::int32_t verify_with_bytes(const void *signature, const Call &call, const void *z) noexcept {
  if (call.misses(signature, z)) return ZEL_ERR_GENERIC;
  return verify_message(signature, call, callers_bytes(z, *call.hash));
}

std::int32_t hash_message(std::uint8_t *out, std::uint32_t *out_len, const Message &message,
                          const std::uint8_t *z, std::uint32_t z_len,
                          const HASH_ALGORITHM *hash) noexcept {
  if (any_null<const void *>(out, out_len, hash) || message.is_null() ||
      (z == nullptr && z_len != 0)) {
    return ZEL_ERR_GENERIC;
  }
  return pk::write_digest(out, out_len, message, *hash, {z, z_len});
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t KCDSA_EMSA1(uint8_t *out, uint32_t *out_len, const uint8_t *message, uint32_t len,
                    const uint8_t *z, uint32_t z_len, const HASH_ALGORITHM *hash) {
  return hash_message(out, out_len, Message::in_memory(message, len), z, z_len, hash);
}

int32_t KCDSA_EMSA1_File(uint8_t *out, uint32_t *out_len, FILE *stream, uint32_t len,
                         const uint8_t *z, uint32_t z_len, const HASH_ALGORITHM *hash) {
  return hash_message(out, out_len, Message::in_stream(stream, len), z, z_len, hash);
}

int32_t KCDSA_SP(KCDSA_SIGNATURE_BODY *signature, uint8_t *hash_value, const MINT *x,
                 const KCDSA_PARAM *param, const HASH_ALGORITHM *hash) {
  if (any_null<const void *>(signature, hash_value, x, param, hash)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*param);
  if (!group.is_usable() || !pk::fits(*x) || !pk::is_usable(*hash)) return ZEL_ERR_GENERIC;
  Nonces nonces(group.q);
  if (!nonces.start()) return ZEL_ERR_GENERIC;
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    Wiped<MINT> k;
    Wiped<MINT> w;
    Digest r;
    Digest mixed;
    MINT e;
    MINT s = {};
    if (!nonces.draw(*k) || !group.power(*w, *k) || !hash_power(r, *w, group, *hash)) break;
    set_challenge(e, mixed.data(), r.data(), hash_value, group.q, *hash);
    if (pk::kcdsa::respond(s, *k, *x, e, group.q)) continue;
    pk::trim(s);
    std::memcpy(signature->r, r.data(), hash->digest_len);
    signature->s = s;
    // Deliberate: the caller's hash value is used up.
    std::memcpy(hash_value, mixed.data(), hash->digest_len);
    return ZEL_OK;
  }
  return ZEL_ERR_GENERIC;
}

int32_t KCDSA_VP(const KCDSA_SIGNATURE_BODY *signature, const uint8_t *hash_value, const MINT *y,
                 const KCDSA_PARAM *param, const HASH_ALGORITHM *hash) {
  if (any_null<const void *>(signature, hash_value, y, param, hash)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*param);
  // Deliberate: s may be q or zero here. What that brings fails below.
  if (MINT_Compare(&signature->s, &group.q) > 0) return ZEL_ERR_KCDSA_VERIFY;
  if (!group.is_usable() || !pk::fits(*y) || !pk::fits(signature->s) || !pk::is_usable(*hash))
    return ZEL_ERR_GENERIC;
  Digest r;
  MINT e;
  MINT w;
  set_challenge(e, r.data(), signature->r, hash_value, group.q, *hash);
  if (mint::power_product(w, *y, signature->s, group.g, e, group.p) != ZEL_OK ||
      !hash_power(r, w, group, *hash)) {
    return ZEL_ERR_GENERIC;
  }
  if (ct::equal(r.data(), signature->r, hash->digest_len)) return ZEL_OK;
  // Deliberate: signers exist that hash the power without its leading zero bytes.
  const bool matches =
      hash_short_power(r, w, group, *hash) && ct::equal(r.data(), signature->r, hash->digest_len);
  return matches ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t KCDSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                    const void *param, const HASH_ALGORITHM *hash, const void *public_key) {
  return sign_with_key(signature, {Message::in_memory(message, len), key, param, hash}, public_key);
}

int32_t KCDSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                         const void *param, const HASH_ALGORITHM *hash, const void *public_key) {
  return sign_with_key(signature, {Message::in_stream(stream, len), key, param, hash}, public_key);
}

int32_t KCDSA_SSA_S_Hash(void *signature, const uint8_t *hash_value, uint32_t len, const void *key,
                         const void *param, const HASH_ALGORITHM *hash, const void *public_key) {
  const Message message = Message::hashed(hash_value, len);
  const Call call{message, key, param, hash};
  return call.misses(signature, public_key) ? ZEL_ERR_GENERIC : sign_message(signature, call, {});
}

int32_t KCDSA_SSA_S0(void *signature, const uint8_t *message, uint32_t len, const void *key,
                     const void *param, const HASH_ALGORITHM *hash, const void *z) {
  return sign_with_bytes(signature, {Message::in_memory(message, len), key, param, hash}, z);
}

int32_t KCDSA_SSA_S0_File(void *signature, FILE *stream, uint32_t len, const void *key,
                          const void *param, const HASH_ALGORITHM *hash, const void *z) {
  return sign_with_bytes(signature, {Message::in_stream(stream, len), key, param, hash}, z);
}

int32_t KCDSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                    const void *param, const HASH_ALGORITHM *hash) {
  return verify_with_key(signature, {Message::in_memory(message, len), key, param, hash});
}

int32_t KCDSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                         const void *param, const HASH_ALGORITHM *hash) {
  return verify_with_key(signature, {Message::in_stream(stream, len), key, param, hash});
}

int32_t KCDSA_SSA_V_Hash(const void *signature, const uint8_t *hash_value, uint32_t len,
                         const void *key, const void *param, const HASH_ALGORITHM *hash) {
  const Message message = Message::hashed(hash_value, len);
  const Call call{message, key, param, hash};
  return call.misses(signature, key) ? ZEL_ERR_GENERIC : verify_message(signature, call, {});
}

int32_t KCDSA_SSA_V0(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                     const void *param, const HASH_ALGORITHM *hash, const void *z) {
  return verify_with_bytes(signature, {Message::in_memory(message, len), key, param, hash}, z);
}

int32_t KCDSA_SSA_V0_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                          const void *param, const HASH_ALGORITHM *hash, const void *z) {
  return verify_with_bytes(signature, {Message::in_stream(stream, len), key, param, hash}, z);
}
