// The same through OpenSSL's fetched ciphers, keyed and started once; a call continues a message,
// as ours does.
#include <openssl/evp.h>
#include <openssl/provider.h>

#include "bench/bench.hpp"
#include "bench/bench_cipher.hpp"

namespace zel::bench {
namespace {

void add(const std::string &operation, const std::string &fetched, bool decrypt, std::size_t size) {
  EVP_CIPHER *const cipher = EVP_CIPHER_fetch(nullptr, fetched.c_str(), nullptr);
  if (cipher == nullptr) return;
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  EVP_CipherInit_ex2(context, cipher, message(32).data(), message(16).data(), decrypt ? 0 : 1,
                     nullptr);
  EVP_CIPHER_CTX_set_padding(context, 0);
  throughput({kCipherGroup, operation, std::to_string(size), "openssl"}, size,
             [context, size, in = message(size), out = message(size)]() mutable {
               int len = 0;
               EVP_CipherUpdate(context, out.data(), &len, in.data(), static_cast<int>(size));
             });
}

const Registration kCipher([] {
  OSSL_PROVIDER_load(nullptr, "default");
  OSSL_PROVIDER_load(nullptr, "legacy");
  for (const CipherNames &cipher : kCiphers) {
    if (cipher.openssl == nullptr) continue;
    for (const ModeNames &mode : kModes) {
      add(std::string(cipher.name) + '-' + mode.name,
          std::string(cipher.openssl) + '-' + mode.openssl, mode.decrypt, mode.size);
    }
  }
  add("rc4", "RC4", false, kCipherSize);
});

}  // namespace
}  // namespace zel::bench
