// A key object of a self-test, which is wiped and deleted with its scope.
#pragma once

#include "cipher/algorithms.hpp"

namespace zel {

class CipherKey {
 public:
  CipherKey(const BCIPHER_ALGORITHM &cipher, const std::uint8_t *key, std::uint32_t len) noexcept
      : key_(BCIPHER_NewKey(&cipher)),
        loaded_(key_ != nullptr && BCIPHER_MakeKey(key_, key, len, &cipher) == ZEL_OK) {}
  ~CipherKey() {
    BCIPHER_WipeKey(key_);
    BCIPHER_DelKey(key_);
  }
  CipherKey(const CipherKey &) = delete;
  CipherKey &operator=(const CipherKey &) = delete;

  bool loaded() const noexcept { return loaded_; }
  const BCIPHER_KEY *get() const noexcept { return key_; }

 private:
  BCIPHER_KEY *key_;
  bool loaded_;
};

}  // namespace zel
