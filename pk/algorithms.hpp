// The schemes as the library names them, whatever a program does to the exported names
// (base/identity.hpp).
#pragma once

#include "base/identity.hpp"
#include "zel_cc/rsa.h"

extern "C" {
extern __attribute__((visibility("hidden"))) const PKCRYPT_ALGORITHM zel_own_rsa, zel_own_rsa21;
}

namespace zel::pk {

/// The two schemes whose keys serve each other.
inline bool is_rsa_family(const PKCRYPT_ALGORITHM *given) noexcept {
  return is_same(given, zel_own_rsa, rsa) || is_same(given, zel_own_rsa21, rsa21);
}

}  // namespace zel::pk
