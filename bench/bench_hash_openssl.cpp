// The same messages through OpenSSL: fetched algorithms and reused contexts, and its old low-level
// calls, which have no dispatch at all.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/md5.h>
#include <openssl/params.h>
#include <openssl/provider.h>
#include <openssl/ripemd.h>
#include <openssl/sha.h>

#include "bench/bench.hpp"
#include "bench/bench_hash.hpp"

namespace zel::bench {
namespace {

template <class Context, int (*kInit)(Context *), int (*kUpdate)(Context *, const void *, size_t),
          int (*kFinal)(unsigned char *, Context *)>
void raw(const char *name) {
  for (const std::size_t size : kHashSizes) {
    throughput({kRawGroup, name, std::to_string(size), "openssl"}, size, [data = message(size)] {
      Context context;
      unsigned char out[64];
      kInit(&context);
      kUpdate(&context, data.data(), data.size());
      kFinal(out, &context);
      benchmark::DoNotOptimize(out);
    });
  }
}

void evp(const char *name, const char *implementation, const EVP_MD *md) {
  if (md == nullptr) return;
  for (const std::size_t size : kHashSizes) {
    throughput({kHashGroup, name, std::to_string(size), implementation}, size,
               [md, context = EVP_MD_CTX_new(), data = message(size)] {
                 unsigned char out[EVP_MAX_MD_SIZE];
                 unsigned out_len = 0;
                 EVP_DigestInit_ex(context, md, nullptr);
                 EVP_DigestUpdate(context, data.data(), data.size());
                 EVP_DigestFinal_ex(context, out, &out_len);
                 benchmark::DoNotOptimize(out);
               });
  }
}

/// With the algorithm fetched beforehand, as OpenSSL recommends, and with the constant object that
/// most programs pass, which is looked up in each initialisation.
void recommended(const char *name, const char *fetched) {
  evp(name, "openssl", EVP_MD_fetch(nullptr, fetched, nullptr));
  evp(name, "openssl-unfetched", EVP_get_digestbyname(fetched));
}

void mac(const char *name, const char *digest) {
  EVP_MAC *hmac = EVP_MAC_fetch(nullptr, "HMAC", nullptr);
  if (hmac == nullptr) return;
  std::string digest_name = digest;
  const OSSL_PARAM params[] = {
      OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, digest_name.data(), 0),
      OSSL_PARAM_construct_end()};
  const std::vector<std::uint8_t> key = message(32);
  for (const std::size_t size : kHashSizes) {
    for (const bool rekey : {true, false}) {
      EVP_MAC_CTX *context = EVP_MAC_CTX_new(hmac);
      EVP_MAC_init(context, key.data(), key.size(), params);
      const std::string operation = std::string(name) + (rekey ? "" : "-same-key");
      throughput({kHashGroup, operation, std::to_string(size), "openssl"}, size,
                 [context, rekey, key, data = message(size)] {
                   unsigned char out[EVP_MAX_MD_SIZE];
                   std::size_t out_len = 0;
                   EVP_MAC_init(context, rekey ? key.data() : nullptr, rekey ? key.size() : 0,
                                nullptr);
                   EVP_MAC_update(context, data.data(), data.size());
                   EVP_MAC_final(context, out, &out_len, sizeof out);
                   benchmark::DoNotOptimize(out);
                 });
    }
  }
}

const Registration kHash([] {
  OSSL_PROVIDER_load(nullptr, "default");
  OSSL_PROVIDER_load(nullptr, "legacy");
  recommended("sha1", "SHA1");
  recommended("sha224", "SHA224");
  recommended("sha256", "SHA256");
  recommended("sha384", "SHA384");
  recommended("sha512", "SHA512");
  recommended("md5", "MD5");
  recommended("ripemd160", "RIPEMD160");
  mac("hmac-sha256", "SHA256");
  mac("hmac-sha512", "SHA512");
  raw<SHA_CTX, SHA1_Init, SHA1_Update, SHA1_Final>("sha1");
  raw<SHA256_CTX, SHA224_Init, SHA224_Update, SHA224_Final>("sha224");
  raw<SHA256_CTX, SHA256_Init, SHA256_Update, SHA256_Final>("sha256");
  raw<SHA512_CTX, SHA384_Init, SHA384_Update, SHA384_Final>("sha384");
  raw<SHA512_CTX, SHA512_Init, SHA512_Update, SHA512_Final>("sha512");
  raw<MD5_CTX, MD5_Init, MD5_Update, MD5_Final>("md5");
  raw<RIPEMD160_CTX, RIPEMD160_Init, RIPEMD160_Update, RIPEMD160_Final>("ripemd160");
});

}  // namespace
}  // namespace zel::bench
