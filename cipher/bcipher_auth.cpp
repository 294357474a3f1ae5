// The calls that encipher and authenticate through a key object and a context: gates, checks, tags.
#include "zel_cc/bcipher_auth.h"

#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "cipher/auth.hpp"

namespace zel {
namespace {

using modes::Piece;
using modes::Run;
using modes::Way;

/// What both calls are given.
struct Call {
  Piece piece;
  Run aad, nonce;
  std::uint32_t tag_len;
};

/// What both calls ask before they touch anything, but that an unknown mode gets its copy.
std::int32_t check_call(const BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, const Call &call,
                        const std::uint32_t *out_len) noexcept {
  const std::int32_t refusal = modes::check_operation(context, key);
  if (refusal != ZEL_OK) return refusal;
  const Run message{call.piece.in, call.piece.len};
  if (any_null(call.piece.out, out_len) || modes::any_missing(message, call.aad, call.nonce))
    return ZEL_ERR_GENERIC;
  if (context->mode != ZEL_MODE_GCM && context->mode != ZEL_MODE_CCM) {
    modes::copy(call.piece.out, call.piece.in, call.piece.len);
    return ZEL_ERR_MODE;
  }
  if (context->descriptor->block_len != modes::kAuthBlockLen) return ZEL_ERR_GENERIC;
  if (context->mode == ZEL_MODE_GCM && !modes::is_gcm_tag_len(call.tag_len)) return ZEL_ERR_GENERIC;
  return ZEL_OK;
}

/// Deciphers `piece`, and compares the tag with the one behind it, which is copied along.
std::int32_t gcm_decrypt(const bulk::Cipher &cipher, Piece piece, Run nonce, Run aad,
                         std::uint32_t tag_len) noexcept {
  Wiped<std::uint8_t[modes::kMaxTagLen]> own;
  std::uint8_t received[modes::kMaxTagLen];
  std::memcpy(received, piece.in + piece.len, tag_len);
  piece = modes::separate(piece);
  modes::gcm(Way::kDecrypt, cipher, piece, nonce, aad, *own);
  modes::copy(piece.out + piece.len, received, tag_len);
  // Deliberate: what was deciphered stays, for the caller to throw away.
  return ct::equal(*own, received, tag_len) ? ZEL_OK : ZEL_ERR_TAG;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t BCIPHER_EncryptAuth(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                            const uint8_t *aad, uint32_t aad_len, const uint8_t *nonce,
                            uint32_t nonce_len, const BCIPHER_CONTEXT *context,
                            const BCIPHER_KEY *key, uint32_t tag_len) {
  const Run data{aad, aad_len}, iv{nonce, nonce_len};
  const int32_t refusal = check_call(context, key, {{out, in, in_len}, data, iv, tag_len}, out_len);
  if (refusal != ZEL_OK) return refusal;
  if (tag_len > UINT32_MAX - in_len) return ZEL_ERR_GENERIC;
  const Piece piece = modes::separate({out, in, in_len});

  const bulk::Cipher cipher(*key);
  int32_t result = ZEL_OK;
  if (context->mode == ZEL_MODE_GCM) {
    Wiped<uint8_t[modes::kMaxTagLen]> tag;
    modes::gcm(Way::kEncrypt, cipher, piece, iv, data, *tag);
    std::memcpy(out + in_len, *tag, tag_len);
  } else {
    result = modes::ccm_encrypt(cipher, piece, iv, data, out + in_len, tag_len);
    if (result != ZEL_OK) modes::copy(out, piece.in, in_len);
  }
  // Deliberate: CCM sets it even where it refuses a length of nonce or tag.
  *out_len = in_len + tag_len;
  return result == ZEL_OK ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t BCIPHER_DecryptAuth(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                            const uint8_t *aad, uint32_t aad_len, const uint8_t *nonce,
                            uint32_t nonce_len, const BCIPHER_CONTEXT *context,
                            const BCIPHER_KEY *key, uint32_t tag_len) {
  const Run data{aad, aad_len}, iv{nonce, nonce_len};
  const int32_t refusal = check_call(context, key, {{out, in, in_len}, data, iv, tag_len}, out_len);
  if (refusal != ZEL_OK) return refusal;
  if (in_len < tag_len) {
    modes::copy(out, in, in_len);
    return ZEL_ERR_TAG;
  }

  const bulk::Cipher cipher(*key);
  const uint32_t len = in_len - tag_len;
  int32_t result = ZEL_OK;
  if (context->mode == ZEL_MODE_GCM) {
    result = gcm_decrypt(cipher, {out, in, len}, iv, data, tag_len);
  } else {
    modes::copy(out, in, in_len);
    result = modes::ccm_decrypt(cipher, out, len, iv, data, out + len, tag_len);
  }
  if (result == ZEL_ERR_TAG) return result;
  *out_len = len;
  return result;
}
