// The same through OpenSSL's fetched ciphers and MAC, keyed once; a call sets the nonce.
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

#include "bench/bench_auth.hpp"

namespace zel::bench {
namespace {

void seal(const CipherNames &cipher, const char *mode, const char *name, std::size_t len) {
  const std::string fetched = std::string(cipher.openssl) + '-' + mode;
  EVP_CIPHER *const algorithm = EVP_CIPHER_fetch(nullptr, fetched.c_str(), nullptr);
  if (algorithm == nullptr) return;
  const bool ccm = std::string(mode) == "CCM";
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex2(context, algorithm, nullptr, nullptr, nullptr);
  EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_IVLEN, kNonceLen, nullptr);
  if (ccm) EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, kTagLen, nullptr);
  EVP_EncryptInit_ex2(context, nullptr, message(32).data(), message(kNonceLen).data(), nullptr);
  throughput(auth_name(cipher, name, len, "openssl"), len,
             [context, ccm, nonce = message(kNonceLen), in = message(len),
              out = message(len + kTagLen)]() mutable {
               int done = 0;
               const int all = static_cast<int>(in.size());
               EVP_EncryptInit_ex2(context, nullptr, nullptr, nonce.data(), nullptr);
               if (ccm) EVP_EncryptUpdate(context, nullptr, &done, nullptr, all);
               EVP_EncryptUpdate(context, out.data(), &done, in.data(), all);
               EVP_EncryptFinal_ex(context, out.data() + all, &done);
               EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, kTagLen, out.data() + all);
             });
}

void authenticate(const CipherNames &cipher, std::size_t len) {
  EVP_MAC_CTX *const context = EVP_MAC_CTX_new(EVP_MAC_fetch(nullptr, "CMAC", nullptr));
  std::string name = std::string(cipher.openssl) + "-CBC";
  const OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_CIPHER, name.data(), 0),
      OSSL_PARAM_construct_end()};
  if (EVP_MAC_init(context, message(32).data(), cipher.key_len, parameters) != 1) return;
  throughput(auth_name(cipher, "cmac", len, "openssl"), len,
             [context, in = message(len), out = message(kTagLen)]() mutable {
               std::size_t done = 0;
               EVP_MAC_init(context, nullptr, 0, nullptr);
               EVP_MAC_update(context, in.data(), in.size());
               EVP_MAC_final(context, out.data(), &done, out.size());
             });
}

const Registration kAuth([] {
  each_auth_row([](const CipherNames &cipher, std::size_t len) {
    if (cipher.openssl == nullptr) return;
    seal(cipher, "GCM", "gcm", len);
    seal(cipher, "CCM", "ccm", len);
    authenticate(cipher, len);
  });
});

}  // namespace
}  // namespace zel::bench
