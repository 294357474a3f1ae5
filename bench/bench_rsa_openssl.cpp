// OpenSSL's RSA through EVP_PKEY, with contexts that are made once.
//
// For 2048 bits OpenSSL has an AVX-512 IFMA kernel, and this library has no AVX-512 code at all.
// OPENSSL_ia32cap=:~0x200000 takes that away from OpenSSL, for a comparison on the same
// instructions.
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include "bench/bench_rsa.hpp"

namespace zel::bench {
namespace {

/// A context for one operation, and the signature that it works on.
struct Task {
  EVP_PKEY_CTX *context;
  std::vector<std::uint8_t> signature = std::vector<std::uint8_t>(512);
  std::vector<std::uint8_t> digest = message(32);

  Task(EVP_PKEY *key, int (*init)(EVP_PKEY_CTX *)) : context(EVP_PKEY_CTX_new(key, nullptr)) {
    init(context);
    EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING);
    EVP_PKEY_CTX_set_signature_md(context, EVP_sha256());
    EVP_PKEY_CTX_set_rsa_pss_saltlen(context, RSA_PSS_SALTLEN_DIGEST);
  }
  void sign() {
    std::size_t len = 512;
    EVP_PKEY_sign(context, signature.data(), &len, digest.data(), digest.size());
    signature.resize(len);
  }
};

struct Key {
  EVP_PKEY *key;
  Task signing, verifying;
  explicit Key(std::uint32_t bits)
      : key(EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", std::size_t{bits})),
        signing(key, EVP_PKEY_sign_init),
        verifying(key, EVP_PKEY_verify_init) {
    signing.sign();
  }
  void verify() {
    EVP_PKEY_verify(verifying.context, signing.signature.data(), signing.signature.size(),
                    signing.digest.data(), signing.digest.size());
  }
};

template <std::uint32_t kBits>
Key &key() {
  static Key *const made = new Key(kBits);
  return *made;
}

template <std::uint32_t kBits>
void add() {
  operations(rsa_name("pss-sign", kBits, "openssl"), [] { key<kBits>().signing.sign(); });
  operations(rsa_name("pss-verify", kBits, "openssl"), [] { key<kBits>().verify(); });
  if (kBits > 3072) return;
  mean(rsa_name("keygen", kBits, "openssl"), kRsaKeys,
       [] { EVP_PKEY_free(EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", std::size_t{kBits})); });
}

const Registration kRsa([] {
  add<2048>();
  add<3072>();
  add<4096>();
});

}  // namespace
}  // namespace zel::bench
