// OpenSSL's HASH-DRBG and HMAC-DRBG through EVP_RAND, instantiated once with the same strength.
#include <openssl/core_names.h>
#include <openssl/evp.h>

#include "bench/bench.hpp"

namespace zel::bench {
namespace {

constexpr unsigned int kStrength = 256;

/// A generator that never reseeds while it is measured. It lives as long as the program.
EVP_RAND_CTX *generator(const char *drbg, const char *hash) {
  EVP_RAND *const algorithm = EVP_RAND_fetch(nullptr, drbg, nullptr);
  EVP_RAND_CTX *const context = EVP_RAND_CTX_new(algorithm, nullptr);
  EVP_RAND_free(algorithm);
  unsigned int never = 0;
  time_t no_time = 0;
  OSSL_PARAM parameters[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_DRBG_PARAM_DIGEST, const_cast<char *>(hash), 0),
      OSSL_PARAM_construct_utf8_string(OSSL_DRBG_PARAM_MAC, const_cast<char *>("HMAC"), 0),
      OSSL_PARAM_construct_uint(OSSL_DRBG_PARAM_RESEED_REQUESTS, &never),
      OSSL_PARAM_construct_time_t(OSSL_DRBG_PARAM_RESEED_TIME_INTERVAL, &no_time),
      OSSL_PARAM_construct_end()};
  const bool ready = EVP_RAND_instantiate(context, kStrength, 0, nullptr, 0, parameters) == 1;
  return ready ? context : nullptr;
}

const Registration kDrbg([] {
  for (const auto &[drbg, name] :
       {std::pair{"HASH-DRBG", "hash"}, std::pair{"HMAC-DRBG", "hmac"}}) {
    for (const auto &[hash, label] :
         {std::pair{"SHA2-256", "sha256"}, std::pair{"SHA2-512", "sha512"}}) {
      EVP_RAND_CTX *const context = generator(drbg, hash);
      if (context == nullptr) continue;
      for (const std::size_t size : {64, 4096}) {
        throughput({"drbg", std::string(name) + '-' + label, std::to_string(size), "openssl"}, size,
                   [context, out = message(size)]() mutable {
                     EVP_RAND_generate(context, out.data(), out.size(), kStrength, 0, nullptr, 0);
                   });
      }
    }
  }
});

}  // namespace
}  // namespace zel::bench
