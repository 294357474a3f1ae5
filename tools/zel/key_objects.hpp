// A key as the library's public-key front-end takes it.
#pragma once

#include "tools/zel/key_record.hpp"
#include "zel_cc/pkcrypt.h"

namespace zel::tool {

/// The scheme whose objects hold such keys.
const PKCRYPT_ALGORITHM &scheme_of(KeyType type);

/// Objects of the library for one scheme, filled from a key or empty, wiped and released with their
/// scope.
class KeyObjects {
 public:
  explicit KeyObjects(const PKCRYPT_ALGORITHM &scheme);
  /// With `scheme` one that takes keys of that type.
  KeyObjects(const Key &key, const PKCRYPT_ALGORITHM &scheme);
  ~KeyObjects();
  KeyObjects(const KeyObjects &) = delete;
  KeyObjects &operator=(const KeyObjects &) = delete;

  PKCRYPT_KEY *private_key() const noexcept { return private_; }
  PKCRYPT_KEY *public_key() const noexcept { return public_; }
  /// Null for RSA.
  PKCRYPT_KEY *parameters() const noexcept { return parameters_; }

  /// Numbers from the objects into a key, after generation.
  void store(Key &key) const;

 private:
  void release() noexcept;

  PKCRYPT_KEY *private_ = nullptr;
  PKCRYPT_KEY *public_ = nullptr;
  PKCRYPT_KEY *parameters_ = nullptr;
};

}  // namespace zel::tool
