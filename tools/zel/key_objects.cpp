#include "tools/zel/key_objects.hpp"

#include <cstring>

#include "tools/zel/failure.hpp"
#include "zel_cc/dsa.h"
#include "zel_cc/kcdsa.h"
#include "zel_cc/rsa.h"

namespace zel::tool {
namespace {

/// `count` numbers from `first` on, which stand at the front of the object's buffer.
void load(const PKCRYPT_KEY *object, const Key &key, std::size_t first, std::size_t count) {
  std::memcpy(object->buf, &key[first], count * sizeof(MINT));
}

void unload(const PKCRYPT_KEY *object, Key &key, std::size_t first, std::size_t count) {
  std::memcpy(&key[first], object->buf, count * sizeof(MINT));
}

}  // namespace

const PKCRYPT_ALGORITHM &scheme_of(KeyType type) {
  if (type == KeyType::kDsa) return dsa;
  return type == KeyType::kKcdsa ? p_kcdsa1 : rsa;
}

KeyObjects::KeyObjects(const PKCRYPT_ALGORITHM &scheme)
    : private_(PKCRYPT_NewPriKey(&scheme)), public_(PKCRYPT_NewPubKey(&scheme)) {
  if (scheme.ParamSize != 0) parameters_ = PKCRYPT_NewParam(&scheme);
  if (private_ != nullptr && public_ != nullptr &&
      (scheme.ParamSize == 0 || parameters_ != nullptr)) {
    std::memset(private_->buf, 0, static_cast<std::size_t>(scheme.PriKeySize));
    std::memset(public_->buf, 0, static_cast<std::size_t>(scheme.PubKeySize));
    return;
  }
  release();
  throw library_failure("key", ZEL_ERR_STATE);
}

KeyObjects::KeyObjects(const Key &key, const PKCRYPT_ALGORITHM &scheme) : KeyObjects(scheme) {
  if (key.type == KeyType::kRsa) {
    if (key.is_private()) load(private_, key, kN, kRsaNumbers);
    load(public_, key, kN, kE + 1);
    return;
  }
  load(parameters_, key, kP, kG + 1);
  load(public_, key, kY, 1);
  load(private_, key, kX, 1);
}

KeyObjects::~KeyObjects() { release(); }

void KeyObjects::release() noexcept {
  PKCRYPT_WipePriKey(private_);
  PKCRYPT_DelPriKey(private_);
  PKCRYPT_DelPubKey(public_);
  PKCRYPT_DelParam(parameters_);
}

void KeyObjects::store(Key &key) const {
  if (key.type == KeyType::kRsa) {
    unload(private_, key, kN, kRsaNumbers);
    return;
  }
  unload(parameters_, key, kP, kG + 1);
  unload(public_, key, kY, 1);
  unload(private_, key, kX, 1);
}

}  // namespace zel::tool
