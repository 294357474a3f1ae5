// Hash_DRBG and HMAC_DRBG: requests on one context without prediction resistance or additional
// input, at strength 256, and fresh generators.
#include "bench/bench.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

constexpr std::uint32_t kStrength = 256;

struct Hash {
  const char *name;
  std::uint32_t id;
};
constexpr Hash kHashes[] = {{"sha256", ZEL_DRBG_SHA256}, {"sha512", ZEL_DRBG_SHA512}};

template <class Context, class Instantiate, class Generate>
void requests(const char *drbg, Instantiate instantiate, Generate generate) {
  for (const Hash &hash : kHashes) {
    for (const std::size_t size : {64, 4096}) {
      Context context;
      instantiate(&context, hash.id, kStrength, 0, nullptr, 0, nullptr, 0);
      throughput({"drbg", std::string(drbg) + '-' + hash.name, std::to_string(size), "zel"}, size,
                 [=, out = message(size)]() mutable {
                   generate(out.data(), &context, static_cast<std::uint32_t>(8 * size), kStrength,
                            nullptr, 0, 0);
                 });
    }
  }
}

const Registration kDrbg([] {
  requests<HASHDRBG_CONTEXT>("hash", HASHDRBG_Instantiate, HASHDRBG_GenerateRand);
  requests<HMACDRBG_CONTEXT>("hmac", HMACDRBG_Instantiate, HMACDRBG_GenerateRand);
  for (const std::size_t size : {32, 4096}) {
    operations({"drbg", "HASHDRBG_GetRandNum", std::to_string(size), "zel"},
               [out = message(size)]() mutable {
                 HASHDRBG_GetRandNum(out.data(), static_cast<std::uint32_t>(8 * out.size()));
               });
    operations({"drbg", "HMACDRBG_GetRandNum", std::to_string(size), "zel"},
               [out = message(size)]() mutable {
                 HMACDRBG_GetRandNum(out.data(), static_cast<std::uint32_t>(8 * out.size()));
               });
  }
});

}  // namespace
}  // namespace zel::bench
