// The front of the public-key schemes: objects, which of them go together, and calls through the
// slots of a descriptor. It never looks inside a key, a parameter set or a signature.
#include "zel_cc/pkcrypt.h"

#include <algorithm>
#include <cstdlib>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "pk/algorithms.hpp"

namespace zel {
namespace {

bool go_together(const PKCRYPT_KEY &first, const PKCRYPT_KEY &second) noexcept {
  if (pk::is_rsa_family(first.desc)) return pk::is_rsa_family(second.desc);
  return first.desc == second.desc;
}

bool is_whole(const PKCRYPT_KEY *object) noexcept {
  return object != nullptr && !any_null(object->desc, static_cast<const void *>(object->buf));
}

const void *buf_of(const PKCRYPT_KEY *object) noexcept {
  return object == nullptr ? nullptr : object->buf;
}

bool has_parameters(const PKCRYPT_ALGORITHM &scheme) noexcept { return scheme.ParamSize != 0; }

PKCRYPT_KEY *new_object(const PKCRYPT_ALGORITHM &scheme, void *buf) noexcept {
  auto *const object = static_cast<PKCRYPT_KEY *>(std::malloc(sizeof(PKCRYPT_KEY)));
  if (any_null(object, static_cast<const void *>(buf))) {
    std::free(object);
    std::free(buf);
    return nullptr;
  }
  object->desc = &scheme;
  object->buf = buf;
  return object;
}

/// An object whose buffer is not initialised.
PKCRYPT_KEY *new_key(const PKCRYPT_ALGORITHM &scheme, std::int32_t size) noexcept {
  return size < 0 ? nullptr : new_object(scheme, std::malloc(static_cast<std::size_t>(size)));
}

void release(PKCRYPT_KEY *object) noexcept {
  if (object == nullptr) return;
  std::free(object->buf);
  std::free(object);
}

/// Whether a key pair, and parameters if there are any, go together.
bool is_pair(const PKCRYPT_KEY *private_key, const PKCRYPT_KEY *public_key,
             const PKCRYPT_KEY *param) noexcept {
  if (!is_whole(private_key) || !is_whole(public_key)) return false;
  if (!go_together(*private_key, *public_key)) return false;
  return param == nullptr || (is_whole(param) && go_together(*private_key, *param));
}

/// What the six signature operations have in common.
struct Call {
  std::uint32_t len;
  const PKCRYPT_KEY *key;
  const PKCRYPT_KEY *param;
  const HASH_ALGORITHM *hash;
  const void *extra;

  bool usable() const noexcept {
    return !any_null(key, hash) && (param == nullptr || go_together(*key, *param));
  }

  template <class Slot, class Body, class Input>
  std::int32_t plain(Slot slot, Body *body, Input *input) const noexcept {
    return slot(body, input, len, key->buf, buf_of(param), hash);
  }
  template <class Slot, class Body, class Input>
  std::int32_t with(const void *seventh, Slot slot, Body *body, Input *input) const noexcept {
    return slot(body, input, len, key->buf, buf_of(param), hash, seventh);
  }
};

/// Signs through one slot, known by both of its shapes.
template <class Plain, class Extra, class Input>
std::int32_t sign(PKCRYPT_SIGNATURE *signature, Input *input, const Call &call,
                  Plain PKCRYPT_ALGORITHM::*plain, Extra PKCRYPT_ALGORITHM::*extra) noexcept {
  if (any_null(signature, input) || !call.usable()) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM *const scheme = call.key->desc;
  // Deliberate: a record names its scheme even when the scheme then refuses.
  signature->desc = scheme;
  if (scheme == nullptr || scheme->*plain == nullptr) return ZEL_ERR_GENERIC;
  void *const body = signature + 1;
  if (scheme->Type == PKCRYPT_TYPE_SIGNER_KEY) {
    const auto *const signer = static_cast<const PKCRYPT_KEY *>(call.extra);
    return call.with(buf_of(signer), scheme->*extra, body, input);
  }
  if (scheme->Type == PKCRYPT_TYPE_EXTRA) {
    return call.with(call.extra, scheme->*extra, body, input);
  }
  return call.plain(scheme->*plain, body, input);
}

/// Verifies through one slot; `asked` is the slot that tells whether the scheme offers it.
template <class Asked, class Plain, class Extra, class Input>
std::int32_t verify(const PKCRYPT_SIGNATURE *signature, Input *input, const Call &call,
                    Asked PKCRYPT_ALGORITHM::*asked, Plain PKCRYPT_ALGORITHM::*plain,
                    Extra PKCRYPT_ALGORITHM::*extra) noexcept {
  if (any_null(signature, input) || !call.usable()) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM *const scheme = call.key->desc;
  if (scheme == nullptr || scheme->*asked == nullptr) return ZEL_ERR_GENERIC;
  const void *const body = signature + 1;
  if (scheme->Type == PKCRYPT_TYPE_EXTRA) {
    return call.with(call.extra, scheme->*extra, body, input);
  }
  return call.plain(scheme->*plain, body, input);
}

std::int32_t crypt(PKCRYPT_CRYPT_FN PKCRYPT_ALGORITHM::*slot, std::uint8_t *out,
                   std::uint32_t *out_len, const std::uint8_t *in, std::uint32_t in_len,
                   const Call &call) noexcept {
  if (any_null(out, in) || call.key == nullptr) return ZEL_ERR_GENERIC;
  if (call.param != nullptr && !go_together(*call.key, *call.param)) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM *const scheme = call.key->desc;
  if (scheme == nullptr || scheme->*slot == nullptr) return ZEL_ERR_GENERIC;
  return (scheme->*slot)(out, out_len, in, in_len, call.key->buf, buf_of(call.param), call.hash,
                         call.extra);
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

PKCRYPT_KEY *PKCRYPT_NewParam(const PKCRYPT_ALGORITHM *descriptor) {
  if (!gate::serving()) return nullptr;
  if (descriptor == nullptr || descriptor->ParamSize < 0) return nullptr;
  // Where a scheme has no parameters, encryption looks for a label record in their place.
  const auto size =
      std::max(static_cast<std::size_t>(descriptor->ParamSize), sizeof(RSA_OAEP_LABEL));
  return new_object(*descriptor, std::calloc(1, size));
}

PKCRYPT_KEY *PKCRYPT_NewPriKey(const PKCRYPT_ALGORITHM *descriptor) {
  if (!gate::serving()) return nullptr;
  return descriptor == nullptr ? nullptr : new_key(*descriptor, descriptor->PriKeySize);
}

PKCRYPT_KEY *PKCRYPT_NewPubKey(const PKCRYPT_ALGORITHM *descriptor) {
  if (!gate::serving()) return nullptr;
  return descriptor == nullptr ? nullptr : new_key(*descriptor, descriptor->PubKeySize);
}

void PKCRYPT_DelParam(PKCRYPT_KEY *param) {
  if (gate::serving()) release(param);
}

void PKCRYPT_DelPriKey(PKCRYPT_KEY *key) {
  if (gate::serving()) release(key);
}

void PKCRYPT_DelPubKey(PKCRYPT_KEY *key) {
  if (gate::serving()) release(key);
}

void PKCRYPT_WipePriKey(PKCRYPT_KEY *key) {
  if (!gate::serving()) return;
  if (!is_whole(key) || key->desc->PriKeySize < 0) return;
  wipe(key->buf, static_cast<std::size_t>(key->desc->PriKeySize));
}

int32_t PKCRYPT_GenParam(PKCRYPT_KEY *param, uint32_t a_bits, uint32_t b_bits) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (!is_whole(param) || param->desc->GenParam == nullptr) return ZEL_ERR_GENERIC;
  return param->desc->GenParam(param->buf, a_bits, b_bits);
}

int32_t PKCRYPT_CheckParam(const PKCRYPT_KEY *param) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (!is_whole(param) || param->desc->CheckParam == nullptr) return ZEL_ERR_GENERIC;
  return param->desc->CheckParam(param->buf);
}

int32_t PKCRYPT_GenKey(PKCRYPT_KEY *private_key, PKCRYPT_KEY *public_key, const PKCRYPT_KEY *param,
                       uint32_t bits) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (!is_pair(private_key, public_key, nullptr)) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM &scheme = *private_key->desc;
  if (param != nullptr) {
    // Deliberate: the very same scheme, not only one of the RSA family.
    if (!is_whole(param) || param->desc != &scheme) return ZEL_ERR_GENERIC;
    if (!has_parameters(scheme) || scheme.GenKey == nullptr) return ZEL_ERR_GENERIC;
    return scheme.GenKey(private_key->buf, public_key->buf, param->buf);
  }
  if (bits == 0) {
    // Deliberate: a request without a size is reported to the module state.
    KZEL_CC_SetState(ZEL_STATE_ERROR);
    return ZEL_ERR_GENERIC;
  }
  if (has_parameters(scheme) || scheme.GenKeyOfBits == nullptr) return ZEL_ERR_GENERIC;
  return scheme.GenKeyOfBits(private_key->buf, public_key->buf, bits);
}

int32_t PKCRYPT_CheckKey(const PKCRYPT_KEY *private_key, const PKCRYPT_KEY *public_key,
                         const PKCRYPT_KEY *param) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (!is_pair(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM &scheme = *private_key->desc;
  if (scheme.CheckKey == nullptr) return ZEL_ERR_GENERIC;
  if (!has_parameters(scheme)) return scheme.CheckPlainKey(private_key->buf, public_key->buf);
  return scheme.CheckKey(private_key->buf, public_key->buf, buf_of(param));
}

int32_t PKCRYPT_CheckKeyPair(const PKCRYPT_KEY *private_key, const PKCRYPT_KEY *public_key,
                             const PKCRYPT_KEY *param) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (!is_pair(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  const PKCRYPT_ALGORITHM &scheme = *private_key->desc;
  if (scheme.CheckKeyPair == nullptr) return ZEL_ERR_GENERIC;
  if (!has_parameters(scheme)) return scheme.CheckPlainKeyPair(private_key->buf, public_key->buf);
  return scheme.CheckKeyPair(private_key->buf, public_key->buf, buf_of(param));
}

int32_t PKCRYPT_Sign(PKCRYPT_SIGNATURE *signature, const uint8_t *message, uint32_t len,
                     const PKCRYPT_KEY *key, const PKCRYPT_KEY *param, const HASH_ALGORITHM *hash,
                     const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return sign(signature, message, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::Sign,
              &PKCRYPT_ALGORITHM::SignExtra);
}

int32_t PKCRYPT_SignHash(PKCRYPT_SIGNATURE *signature, const uint8_t *digest, uint32_t len,
                         const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                         const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return sign(signature, digest, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::SignHash,
              &PKCRYPT_ALGORITHM::SignHashExtra);
}

int32_t PKCRYPT_SignFile(PKCRYPT_SIGNATURE *signature, FILE *stream, uint32_t len,
                         const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                         const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return sign(signature, stream, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::SignFile,
              &PKCRYPT_ALGORITHM::SignFileExtra);
}

int32_t PKCRYPT_Verify(const PKCRYPT_SIGNATURE *signature, const uint8_t *message, uint32_t len,
                       const PKCRYPT_KEY *key, const PKCRYPT_KEY *param, const HASH_ALGORITHM *hash,
                       const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return verify(signature, message, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::Verify,
                &PKCRYPT_ALGORITHM::Verify, &PKCRYPT_ALGORITHM::VerifyExtra);
}

int32_t PKCRYPT_VerifyHash(const PKCRYPT_SIGNATURE *signature, const uint8_t *digest, uint32_t len,
                           const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                           const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  // Deliberate: it is the slot for signing that is asked. A scheme fills both or neither.
  return verify(signature, digest, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::SignHash,
                &PKCRYPT_ALGORITHM::VerifyHash, &PKCRYPT_ALGORITHM::VerifyHashExtra);
}

int32_t PKCRYPT_VerifyFile(const PKCRYPT_SIGNATURE *signature, FILE *stream, uint32_t len,
                           const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                           const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return verify(signature, stream, {len, key, param, hash, extra}, &PKCRYPT_ALGORITHM::VerifyFile,
                &PKCRYPT_ALGORITHM::VerifyFile, &PKCRYPT_ALGORITHM::VerifyFileExtra);
}

int32_t PKCRYPT_Encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                        const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return crypt(&PKCRYPT_ALGORITHM::Encrypt, out, out_len, in, in_len, {0, key, param, hash, extra});
}

int32_t PKCRYPT_Decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                        const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                        const HASH_ALGORITHM *hash, const void *extra) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  return crypt(&PKCRYPT_ALGORITHM::Decrypt, out, out_len, in, in_len, {0, key, param, hash, extra});
}

}  // extern "C"
