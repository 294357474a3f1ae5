// The RSA schemes of PKCS #1 v2.1 (RFC 8017): their descriptors.
#include "zel_cc/rsa.h"

#include "pk/algorithms.hpp"

namespace {

constexpr PKCRYPT_ALGORITHM sizes_only() noexcept {
  PKCRYPT_ALGORITHM scheme{};
  scheme.PriKeySize = sizeof(RSA_PRIVATE_KEY);
  scheme.PubKeySize = sizeof(RSA_PUBLIC_KEY);
  scheme.SignatureSize = sizeof(MINT);
  return scheme;
}

}  // namespace

extern "C" {

constinit const PKCRYPT_ALGORITHM rsa = sizes_only();
constinit const PKCRYPT_ALGORITHM rsa21 = sizes_only();

extern const PKCRYPT_ALGORITHM zel_own_rsa ZEL_HIDDEN_ALIAS("rsa");
extern const PKCRYPT_ALGORITHM zel_own_rsa21 ZEL_HIDDEN_ALIAS("rsa21");

}  // extern "C"
