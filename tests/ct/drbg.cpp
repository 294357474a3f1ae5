// Hash_DRBG and HMAC_DRBG: no step depends on entropy, V, C or K in its time.
#include <cstdint>
#include <cstring>

#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

template <class Context, class Instantiate, class Reseed, class Generate>
void life(Instantiate instantiate, Reseed reseed, Generate generate) {
  for (std::uint32_t hash = ZEL_DRBG_SHA224; hash <= ZEL_DRBG_SHA512; ++hash) {
    std::uint8_t entropy[48] = {1, 2, 3};
    std::uint8_t out[1000], again[1000];
    secret(entropy, sizeof entropy);
    for (std::uint8_t *to : {out, again}) {
      Context context;
      instantiate(&context, hash, 256, 0, entropy, 48, entropy, 16, nullptr, 0);
      generate(to, &context, 8 * sizeof out, 256, entropy, 30, 0);
      reseed(&context, entropy, 48, nullptr, 0);
      generate(to, &context, 8 * sizeof out, 256, nullptr, 0, 0);
    }
    open(out, sizeof out);
    open(again, sizeof again);
    require(std::memcmp(out, again, sizeof out) == 0, "the same output from the same entropy");
  }
}

const Probe kHash{"Hash_DRBG", [] {
                    life<HASHDRBG_CONTEXT>(HASHDRBG_InstantiateEntIn, HASHDRBG_ReseedEntIn,
                                           HASHDRBG_GenerateRand);
                  }};
const Probe kHmac{"HMAC_DRBG", [] {
                    life<HMACDRBG_CONTEXT>(HMACDRBG_InstantiateEntIn, HMACDRBG_ReseedEntIn,
                                           HMACDRBG_GenerateRand);
                  }};

}  // namespace
}  // namespace zel::test
