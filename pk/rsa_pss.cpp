// RSASSA-PSS with MGF1 over the hash of the message. RFC 8017, sections 8.1 and 9.1; departures are
// marked.
#include <algorithm>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "pk/message.hpp"
#include "pk/rsa_primitive.hpp"

namespace zel::pk {
namespace {

constexpr std::uint8_t kTrailer = 0xbc;
constexpr std::uint8_t kSeparator = 0x01;

/// The parts of an encoded message: DB, hash, trailer.
struct Layout {
  std::uint32_t len;
  std::uint32_t hash_len;
  std::uint32_t salt_len;
  std::uint8_t top_mask;  ///< the bits of the first byte that count
  bool fits;

  std::uint32_t db_len() const noexcept { return len - hash_len - 1; }
};

Layout layout_of(const MINT &n, const HASH_ALGORITHM &hash) noexcept {
  const std::uint32_t mod_bits = MINT_GetBitLength(&n);
  const std::uint32_t em_bits = mod_bits == 0 ? 0 : mod_bits - 1;
  Layout layout;
  layout.len = (em_bits + 7) / 8;
  layout.hash_len = hash.digest_len;
  // Deliberate: SHA-512 and 1024 bits have no room for a salt of 64 bytes, but must work.
  layout.salt_len = mod_bits == 1024 && hash.digest_len == 64 ? 62 : hash.digest_len;
  layout.top_mask = static_cast<std::uint8_t>(0xff >> (8 * layout.len - em_bits));
  layout.fits =
      hash.digest_len <= ZEL_MAX_DIGEST_LEN && layout.hash_len + layout.salt_len + 2 <= layout.len;
  return layout;
}

/// Hash(eight zero bytes || message hash || salt).
std::int32_t hash_salted(std::uint8_t *out, const Message &message, const std::uint8_t *salt,
                         std::uint32_t salt_len, const HASH_ALGORITHM &hash) noexcept {
  HashValue value;
  if (const std::int32_t status = hash_value(value, message, hash); status != ZEL_OK) {
    return status;
  }
  constexpr std::uint8_t kZeros[8] = {};
  Wiped<HASH_CONTEXT> context;
  if (HASH_Initialize(&*context, &hash) != ZEL_OK) return ZEL_ERR_GENERIC;
  HASH_Update_KZEL(&*context, kZeros, sizeof kZeros);
  HASH_Update_KZEL(&*context, value.bytes, value.len);
  HASH_Update_KZEL(&*context, salt, salt_len);
  std::uint32_t len = 0;
  HASH_Finalize(out, &len, &*context);
  return len == hash.digest_len ? ZEL_OK : ZEL_ERR_GENERIC;
}

/// Encodes with a fresh salt. RFC 8017, section 9.1.1.
std::int32_t encode(std::uint8_t *em, const Layout &layout, const Message &message,
                    const HASH_ALGORITHM &hash) noexcept {
  const std::uint32_t db_len = layout.db_len();
  std::uint8_t *const salt = em + db_len - layout.salt_len;
  std::uint8_t *const salted = em + db_len;
  draw_octets(salt, layout.salt_len);
  std::fill(em, salt - 1, std::uint8_t{0});
  salt[-1] = kSeparator;
  std::fill(salted, salted + layout.hash_len, std::uint8_t{0});
  const std::int32_t status = hash_salted(salted, message, salt, layout.salt_len, hash);
  if (status != ZEL_OK) return status;
  if (!apply_mask(em, db_len, salted, layout.hash_len, hash)) return ZEL_ERR_GENERIC;
  em[0] &= layout.top_mask;
  em[layout.len - 1] = kTrailer;
  return ZEL_OK;
}

/// Whether an encoded message is one of this message; em is used up. RFC 8017, section 9.1.2.
std::int32_t check(std::uint8_t *em, const Layout &layout, const Message &message,
                   const HASH_ALGORITHM &hash) noexcept {
  const std::uint32_t db_len = layout.db_len();
  const std::uint8_t *const salt = em + db_len - layout.salt_len;
  const std::uint8_t *const salted = em + db_len;
  if (!apply_mask(em, db_len, salted, layout.hash_len, hash)) return ZEL_ERR_GENERIC;
  // Deliberate: neither the bits above em_bits, nor the zero bytes, nor the separator in front of
  // the salt are looked at. Signatures of programs that fill them otherwise must verify.
  em[0] &= layout.top_mask;
  std::uint8_t again[ZEL_MAX_DIGEST_LEN] = {};
  const std::int32_t status = hash_salted(again, message, salt, layout.salt_len, hash);
  if (status != ZEL_OK) return status;
  return ct::equal(again, salted, layout.hash_len) ? ZEL_OK : ZEL_ERR_PSS_VERIFY;
}

std::int32_t sign(void *signature, const Message &message, const void *key,
                  const HASH_ALGORITHM *hash) noexcept {
  if (any_null(static_cast<const void *>(signature), key) || hash == nullptr || message.is_null()) {
    return ZEL_ERR_GENERIC;
  }
  const auto &private_key = *static_cast<const RSA_PRIVATE_KEY *>(key);
  const Layout layout = layout_of(private_key.n, *hash);
  if (!layout.fits) return ZEL_ERR_PSS_ENCODE;
  Wiped<Octets> em;
  const std::int32_t status = encode(*em, layout, message, *hash);
  if (status != ZEL_OK) return status;
  MINT m;
  octets_to_integer(m, *em, layout.len);
  return private_operation(*static_cast<MINT *>(signature), m, private_key);
}

std::int32_t verify(const void *signature, const Message &message, const void *key,
                    const HASH_ALGORITHM *hash) noexcept {
  if (any_null(signature, key) || hash == nullptr || message.is_null()) return ZEL_ERR_GENERIC;
  const auto &public_key = *static_cast<const RSA_PUBLIC_KEY *>(key);
  const Layout layout = layout_of(public_key.n, *hash);
  MINT m;
  const std::int32_t status =
      public_operation(m, *static_cast<const MINT *>(signature), public_key);
  if (status != ZEL_OK) return status;
  if (!layout.fits || MINT_GetBitLength(&m) > 8 * layout.len) return ZEL_ERR_PSS_VERIFY;
  Octets em;
  MINT_WriteLSNByteInByteArray(em, layout.len, &m);
  if (em[layout.len - 1] != kTrailer) return ZEL_ERR_PSS_VERIFY;
  return check(em, layout, message, *hash);
}

}  // namespace
}  // namespace zel::pk

using namespace zel;
using zel::pk::Message;

extern "C" {

int32_t RSA_SSA_PSS_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                      const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA_SSA_PSS_S_Hash(void *signature, const uint8_t *digest, uint32_t len, const void *key,
                           const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA_SSA_PSS_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                           const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::sign(signature, Message::in_stream(stream, len), key, hash);
}

int32_t RSA_SSA_PSS_V(const void *signature, const uint8_t *message, uint32_t len, const void *key,
                      const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::in_memory(message, len), key, hash);
}

int32_t RSA_SSA_PSS_V_Hash(const void *signature, const uint8_t *digest, uint32_t len,
                           const void *key, const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::hashed(digest, len), key, hash);
}

int32_t RSA_SSA_PSS_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                           const void * /*param*/, const HASH_ALGORITHM *hash) {
  return pk::verify(signature, Message::in_stream(stream, len), key, hash);
}

}  // extern "C"
