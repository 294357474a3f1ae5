// Key objects, contexts, and the two calls that drive the modes: gates, checks, padding, dispatch.
#include "zel_cc/bcipher.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/bytes.hpp"
#include "base/identity.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/modes.hpp"
#include "core/gate.hpp"
#include "zel_cc/hashdrbg.h"

namespace zel {
namespace {

using modes::Piece;
using modes::Way;

constexpr std::uint8_t kFinal = 1;
/// The deepest that a key schedule goes on the stack, and some more.
constexpr std::size_t kScheduleStackDepth = 2048;

/// How many bytes a key length means: RC2 packs the effective bits into the upper half.
std::uint32_t bytes_of_key(std::uint32_t key_len, const BCIPHER_ALGORITHM *descriptor) noexcept {
  if (!is_same(descriptor, zel_own_rc2, rc2)) return key_len;
  constexpr std::uint32_t kLowHalf = 0xffff;
  constexpr std::uint32_t kMostRc2KeyBytes = 128;
  const std::uint32_t bytes = key_len & kLowHalf;
  return bytes == 0 ? kMostRc2KeyBytes : bytes;
}

/// How many of the key bytes a record's key length covers.
std::uint32_t loaded_bytes(const BCIPHER_KEY &key) noexcept {
  return std::min<std::uint32_t>(key.key_len, ZEL_MAX_KEY_LEN);
}

/// Whether a call pads or unpads.
bool ends_padded(const BCIPHER_CONTEXT &context, std::uint8_t final) noexcept {
  return final == kFinal && (context.mode == ZEL_MODE_ECB || context.mode == ZEL_MODE_CBC);
}

/// Pads `in` into `out` by the rule of the cipher or by the generic one.
std::uint32_t pad(std::uint8_t *out, const std::uint8_t *in, std::uint32_t len,
                  const BCIPHER_ALGORITHM &cipher) noexcept {
  if (cipher.AddPadding != nullptr) return cipher.AddPadding(out, in, len);
  return AddPadding(out, in, len, cipher.block_len);
}

/// Unpads a deciphered message in place.
std::int32_t unpad(std::uint8_t *data, std::uint32_t *len,
                   const BCIPHER_ALGORITHM &cipher) noexcept {
  if (*len == 0) return ZEL_ERR_PADDING;
  // Deliberate: the last byte is judged before a cipher's own rule sees it. `tavoold` pads a whole
  // number of blocks with zero bytes, and its final decryption of such a message is refused.
  const std::uint8_t last = data[*len - 1];
  if (last == 0 || last > cipher.block_len) return ZEL_ERR_PADDING;
  *len = cipher.RemovePadding != nullptr ? cipher.RemovePadding(data, data, *len)
                                         : RemovePadding(data, data, *len);
  return ZEL_OK;
}

/// Runs the mode of the context. Trailing bytes of a block mode, and a message that is too short
/// for ciphertext stealing, give the generic error.
std::int32_t run(Way way, Piece piece, BCIPHER_CONTEXT &context, const BCIPHER_KEY &key) noexcept {
  const bulk::Cipher cipher(key);
  std::uint8_t *const chain = context.chain;
  switch (context.mode) {
    case ZEL_MODE_ECB:
      return modes::ecb(way, cipher, piece) == 0 ? ZEL_OK : ZEL_ERR_GENERIC;
    case ZEL_MODE_CBC:
      return modes::cbc(way, cipher, piece, chain) == 0 ? ZEL_OK : ZEL_ERR_GENERIC;
    case ZEL_MODE_CBC_CTS:
      return modes::cbc_stealing(way, cipher, piece, chain) ? ZEL_OK : ZEL_ERR_GENERIC;
    case ZEL_MODE_CFB:
      if (way == Way::kEncrypt) {
        modes::cfb_encrypt(cipher, piece, chain);
      } else {
        modes::cfb_decrypt(cipher, piece, chain);
      }
      return ZEL_OK;
    case ZEL_MODE_CFB8:
      modes::cfb_segments(way, 8, cipher, piece, chain);
      return ZEL_OK;
    case ZEL_MODE_CFB1:
      modes::cfb_segments(way, 1, cipher, piece, chain);
      return ZEL_OK;
    case ZEL_MODE_CFB_STREAM:
      modes::cfb_stream(way, cipher, piece, chain, context.stream_pos);
      return ZEL_OK;
    case ZEL_MODE_OFB:
      modes::ofb(cipher, piece, chain);
      return ZEL_OK;
    case ZEL_MODE_OFB_BYTE:
      modes::ofb_byte(cipher, piece, chain);
      return ZEL_OK;
    case ZEL_MODE_CTR:
      modes::ctr(cipher, piece, chain);
      return ZEL_OK;
    default:
      // Deliberate: the copy comes before the mode is judged. (The authenticated modes have calls
      // of their own.)
      modes::copy(piece.out, piece.in, piece.len);
      return ZEL_ERR_MODE;
  }
}

}  // namespace

bool modes::is_sound(const BCIPHER_ALGORITHM &cipher) noexcept {
  return !any_null(cipher.MakeRoundKey, cipher.DecryptBlock) &&
         bulk::fits(cipher.block_len, cipher.EncryptBlock, cipher.DecryptBlock);
}

std::int32_t modes::check_operation(const BCIPHER_CONTEXT *context,
                                    const BCIPHER_KEY *key) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null(key, context)) return ZEL_ERR_GENERIC;
  if (key->descriptor != context->descriptor || key->descriptor == nullptr) return ZEL_ERR_GENERIC;
  if (gate::approved_only() && !is_approved(context->descriptor)) return ZEL_ERR_APPROVED;
  if (key->round_keys == nullptr || !is_sound(*key->descriptor)) return ZEL_ERR_GENERIC;
  return ZEL_OK;
}

modes::Piece modes::separate(Piece piece) noexcept {
  const auto out = reinterpret_cast<std::uintptr_t>(piece.out);
  const auto in = reinterpret_cast<std::uintptr_t>(piece.in);
  if (out == in || (out - in >= piece.len && in - out >= piece.len)) return piece;
  copy(piece.out, piece.in, piece.len);
  return {piece.out, piece.out, piece.len};
}

}  // namespace zel

using namespace zel;

BCIPHER_KEY *BCIPHER_NewKey(const BCIPHER_ALGORITHM *descriptor) {
  if (!gate::serving() || descriptor == nullptr) return nullptr;
  auto *const key = static_cast<BCIPHER_KEY *>(std::calloc(1, sizeof(BCIPHER_KEY)));
  if (key == nullptr) return nullptr;
  key->descriptor = descriptor;
  key->round_keys = std::calloc(1, descriptor->round_keys_len);
  if (key->round_keys == nullptr) {
    std::free(key);
    return nullptr;
  }
  return key;
}

BCIPHER_KEY *BCIPHER_DupKey(const BCIPHER_KEY *key) {
  if (!gate::serving() || key == nullptr || key->round_keys == nullptr) return nullptr;
  BCIPHER_KEY *const copy = BCIPHER_NewKey(key->descriptor);
  if (copy == nullptr) return nullptr;
  std::memcpy(copy->round_keys, key->round_keys, key->descriptor->round_keys_len);
  std::memcpy(copy->key_bytes, key->key_bytes, loaded_bytes(*key));
  copy->key_len = key->key_len;
  return copy;
}

void BCIPHER_DelKey(BCIPHER_KEY *key) {
  if (!gate::serving() || key == nullptr) return;
  std::free(key->round_keys);
  std::free(key);
}

void BCIPHER_WipeKey(BCIPHER_KEY *key) {
  if (!gate::serving() || key == nullptr || any_null(key->descriptor, key->round_keys)) return;
  wipe(key->round_keys, key->descriptor->round_keys_len);
  wipe(key->key_bytes, loaded_bytes(*key));
}

int32_t BCIPHER_GenKey(uint8_t *out, uint32_t len) {
  constexpr uint32_t kBitsPerByte = 8;
  if (len > UINT32_MAX / kBitsPerByte) return ZEL_ERR_GENERIC;
  if (HASHDRBG_GetRandNum(out, len * kBitsPerByte) != ZEL_OK) {
    KZEL_CC_SetState(ZEL_STATE_ERROR);
    return ZEL_ERR_GENERIC;
  }
  return ZEL_OK;
}

int32_t BCIPHER_MakeKey(BCIPHER_KEY *key, const uint8_t *key_bytes, uint32_t key_len,
                        const BCIPHER_ALGORITHM *descriptor) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null(key, key_bytes, descriptor)) return ZEL_ERR_GENERIC;
  if (key->descriptor != descriptor) return ZEL_ERR_GENERIC;
  if (any_null(key->round_keys, descriptor->MakeRoundKey)) return ZEL_ERR_GENERIC;
  const std::uint32_t bytes = bytes_of_key(key_len, descriptor);
  if (bytes > ZEL_MAX_KEY_LEN) return ZEL_ERR_GENERIC;
  return with_wiped_stack<kScheduleStackDepth>([&] {
    std::memcpy(key->key_bytes, key_bytes, bytes);
    key->key_len = key_len;
    // Deliberate: what the schedule answers is not looked at. A cipher that computes nothing, as in
    // the verified service, is loaded like any other and refused when it is to be used.
    descriptor->MakeRoundKey(key->round_keys, key_bytes, key_len);
    return ZEL_OK;
  });
}

int32_t BCIPHER_Initialize(BCIPHER_CONTEXT *context, uint8_t mode, const uint8_t *iv,
                           const BCIPHER_ALGORITHM *descriptor) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (mode < ZEL_MODE_ECB || mode > ZEL_MODE_CCM) return ZEL_ERR_MODE;
  if (any_null(context, descriptor)) return ZEL_ERR_GENERIC;
  if (!modes::is_sound(*descriptor)) return ZEL_ERR_GENERIC;
  context->mode = mode;
  context->descriptor = descriptor;
  if (iv != nullptr) {
    std::memcpy(context->chain, iv, descriptor->block_len);
  } else {
    std::memset(context->chain, 0, descriptor->block_len);
  }
  context->stream_pos = 0;
  return ZEL_OK;
}

int32_t BCIPHER_Encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final) {
  const int32_t refusal = modes::check_operation(context, key);
  if (refusal != ZEL_OK) return refusal;
  const bool padded = ends_padded(*context, final);
  if (any_null(out_len) || (in_len > 0 && any_null(out, in)) || (padded && any_null(out)))
    return ZEL_ERR_GENERIC;
  if (padded && in_len > UINT32_MAX - ZEL_MAX_BLOCK_LEN) return ZEL_ERR_GENERIC;
  const Piece piece = padded ? Piece{out, out, pad(out, in, in_len, *context->descriptor)}
                             : modes::separate({out, in, in_len});
  const int32_t result = run(Way::kEncrypt, piece, *context, *key);
  if (result != ZEL_ERR_MODE) *out_len = static_cast<uint32_t>(piece.len);
  return result;
}

int32_t BCIPHER_Decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final) {
  const int32_t refusal = modes::check_operation(context, key);
  if (refusal != ZEL_OK) return refusal;
  if (any_null(out_len) || (in_len > 0 && any_null(out, in))) return ZEL_ERR_GENERIC;
  const int32_t result = run(Way::kDecrypt, modes::separate({out, in, in_len}), *context, *key);
  if (result != ZEL_ERR_MODE) *out_len = in_len;
  if (result != ZEL_OK || !ends_padded(*context, final)) return result;
  return unpad(out, out_len, *context->descriptor);
}
