// Hashes and HMAC of this library: whole messages, from initialisation to digest.
#include "bench/bench_hash.hpp"
#include "bench/bench.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

void digest(const HASH_ALGORITHM *descriptor, const std::vector<std::uint8_t> &data) {
  HASH_CONTEXT context;
  std::uint8_t out[ZEL_MAX_DIGEST_LEN];
  std::uint32_t out_len = 0;
  HASH_InitializeEx(&context, descriptor);
  HASH_Update(&context, data.data(), static_cast<std::uint32_t>(data.size()));
  HASH_Finalize(out, &out_len, &context);
  benchmark::DoNotOptimize(out);
}

void finish_mac(HMAC_CONTEXT &context, const std::vector<std::uint8_t> &data) {
  std::uint8_t out[ZEL_MAX_DIGEST_LEN];
  std::uint32_t out_len = 0;
  __HMAC_Update(&context, data.data(), static_cast<std::uint32_t>(data.size()));
  HMAC_Finalize(out, &out_len, &context);
  benchmark::DoNotOptimize(out);
}

const Registration kHash([] {
  const std::pair<const char *, const HASH_ALGORITHM *> algorithms[] = {
      {"sha1", &popsha1},     {"sha224", &sha224},       {"sha256", &sha256},
      {"sha384", &sha384},    {"sha512", &sha512},       {"md5", &popmd5},
      {"has160", &pophas160}, {"ripemd160", &ripemd160}, {"md2", &md2},
  };
  for (const std::size_t size : kHashSizes) {
    for (const auto &[name, descriptor] : algorithms) {
      for (const char *group : {kHashGroup, kRawGroup}) {
        throughput({group, name, std::to_string(size), "zel"}, size,
                   [descriptor = descriptor, data = message(size)] { digest(descriptor, data); });
      }
    }
    for (const auto &[name, descriptor] :
         {std::pair{"hmac-sha256", &sha256}, {"hmac-sha512", &sha512}}) {
      // With a fresh key each time, and with the work on the key done once.
      throughput({kHashGroup, name, std::to_string(size), "zel"}, size,
                 [descriptor = descriptor, key = message(32), data = message(size)] {
                   HMAC_CONTEXT context;
                   HMAC_InitializeEx(&context, key.data(), 32, descriptor);
                   finish_mac(context, data);
                 });
      HMAC_CONTEXT keyed;
      HMAC_InitializeEx(&keyed, message(32).data(), 32, descriptor);
      throughput({kHashGroup, std::string(name) + "-same-key", std::to_string(size), "zel"}, size,
                 [keyed, data = message(size)] {
                   HMAC_CONTEXT context = keyed;
                   finish_mac(context, data);
                 });
    }
  }
});

}  // namespace
}  // namespace zel::bench
