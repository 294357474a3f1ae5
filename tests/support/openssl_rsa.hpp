// OpenSSL's view of an RSA key.
#pragma once

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/rsa.h>

#include <memory>

#include "tests/support/rsa.hpp"

namespace zel::test {

using PeerKey = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)>;

inline PeerKey peer_key(const RsaKey &key) {
  OSSL_PARAM_BLD *const build = OSSL_PARAM_BLD_new();
  const MINT *const values[] = {&key.pri.n, &key.pri.e,  &key.pri.d,  &key.pri.p,
                                &key.pri.q, &key.pri.dP, &key.pri.dQ, &key.pri.qInv};
  const char *const names[] = {OSSL_PKEY_PARAM_RSA_N,         OSSL_PKEY_PARAM_RSA_E,
                               OSSL_PKEY_PARAM_RSA_D,         OSSL_PKEY_PARAM_RSA_FACTOR1,
                               OSSL_PKEY_PARAM_RSA_FACTOR2,   OSSL_PKEY_PARAM_RSA_EXPONENT1,
                               OSSL_PKEY_PARAM_RSA_EXPONENT2, OSSL_PKEY_PARAM_RSA_COEFFICIENT1};
  BIGNUM *numbers[8];
  for (int i = 0; i < 8; ++i) {
    const Bytes bytes = octets(*values[i], 520);
    numbers[i] = BN_bin2bn(bytes.data(), 520, nullptr);
    OSSL_PARAM_BLD_push_BN(build, names[i], numbers[i]);
  }
  OSSL_PARAM *const params = OSSL_PARAM_BLD_to_param(build);
  EVP_PKEY_CTX *const context = EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr);
  EVP_PKEY *made = nullptr;
  EVP_PKEY_fromdata_init(context);
  EVP_PKEY_fromdata(context, &made, EVP_PKEY_KEYPAIR, params);
  EVP_PKEY_CTX_free(context);
  OSSL_PARAM_free(params);
  OSSL_PARAM_BLD_free(build);
  for (BIGNUM *const number : numbers)
    BN_free(number);
  return {made, EVP_PKEY_free};
}

}  // namespace zel::test
