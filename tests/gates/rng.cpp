// The entropy collector, the DRBGs and the repeated-output tests.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  HASHDRBG_CONTEXT hash{};
  HMACDRBG_CONTEXT hmac{};
  std::uint8_t entropy[48]{};
  std::uint8_t out[ZEL_ENTROPY_LEN]{};
  std::uint32_t len = 0;
  std::int32_t count = 0;

  Arena() {
    out[0] = 1;
    HASHDRBG_InstantiateEntIn(&hash, 1, 128, 1, entropy, 48, nullptr, 0, nullptr, 0);
    HMACDRBG_InstantiateEntIn(&hmac, 1, 128, 1, entropy, 48, nullptr, 0, nullptr, 0);
  }
};

constexpr std::uint32_t kBits = 256;

/// The one-call services have one code for every failure, and zero their output.
Answers one_call() {
  constexpr std::int64_t kFailed = ZEL_ERR_DRBG_TEST;
  return gives({kFailed, kFailed, kFailed, 0, 0, 0, 0, kFailed});
}

const Rows<Arena> kRows{
    {"RNGSEED_GetEntropyData", ungated(),
     [](Arena &a) { return RNGSEED_GetEntropyData(a.out, &a.len, &a.count); }},
    // Hashes in every state: what counts is that there is a seed. Changing nothing would not pass.
    {"RNGSEED_GetSeed", ungated(), [](Arena &a) { RNGSEED_GetSeed(a.out, &a.len, kBits); a.len = 0; }},
    {"RNGSEED_GetSeedKey", ungated(),
     [](Arena &a) { RNGSEED_GetSeedKey(a.out, &a.len, kBits); a.len = 0; }},
    {"RNGSEED_GetRandomMemoryAddr", ungated(),
     [](Arena &) { return RNGSEED_GetRandomMemoryAddr(3); }},

    {"HASHDRBG_DerivateFunction", code(),
     [](Arena &a) { return HASHDRBG_DerivateFunction(a.out, a.entropy, 48, kBits, &sha256); }},
    {"HASHDRBG_InstantiateEntIn", code(),
     [](Arena &a) {
       return HASHDRBG_InstantiateEntIn(&a.hash, 2, 128, 0, a.entropy, 48, nullptr, 0, nullptr, 0);
     }},
    {"HASHDRBG_Instantiate", code(),
     [](Arena &a) {
       return HASHDRBG_Instantiate(&a.hash, 2, 128, 0, a.entropy, 16, nullptr, 0);
     }},
    {"HASHDRBG_ReseedEntIn", code(),
     [](Arena &a) { return HASHDRBG_ReseedEntIn(&a.hash, a.entropy, 48, nullptr, 0); }},
    {"HASHDRBG_Reseed", code(), [](Arena &a) { return HASHDRBG_Reseed(&a.hash, nullptr, 0); }},
    {"HASHDRBG_GenerateRandBit", code(),
     [](Arena &a) { return HASHDRBG_GenerateRandBit(a.out, kBits, &a.hash); }},
    {"HASHDRBG_GenerateRandEntIn", code(),
     [](Arena &a) {
       return HASHDRBG_GenerateRandEntIn(a.out, &a.hash, kBits, 128, a.entropy, 48, nullptr, 0, 1);
     }},
    {"HASHDRBG_GenerateRand", code(),
     [](Arena &a) { return HASHDRBG_GenerateRand(a.out, &a.hash, kBits, 128, nullptr, 0, 1); }},
    {"HASHDRBG_RNG", one_call(), [](Arena &a) { return HASHDRBG_RNG(a.out, kBits, a.entropy, 48); }},
    {"HASHDRBG_GetRandNum", one_call(), [](Arena &a) { return HASHDRBG_GetRandNum(a.out, kBits); }},

    {"HMACDRBG_Update", code(), [](Arena &a) { return HMACDRBG_Update(&a.hmac, a.entropy, 48); }},
    {"HMACDRBG_InstantiateEntIn", code(),
     [](Arena &a) {
       return HMACDRBG_InstantiateEntIn(&a.hmac, 2, 128, 0, a.entropy, 48, nullptr, 0, nullptr, 0);
     }},
    {"HMACDRBG_Instantiate", code(),
     [](Arena &a) {
       return HMACDRBG_Instantiate(&a.hmac, 2, 128, 0, a.entropy, 16, nullptr, 0);
     }},
    {"HMACDRBG_ReseedEntIn", code(),
     [](Arena &a) { return HMACDRBG_ReseedEntIn(&a.hmac, a.entropy, 48, nullptr, 0); }},
    {"HMACDRBG_Reseed", code(), [](Arena &a) { return HMACDRBG_Reseed(&a.hmac, nullptr, 0); }},
    {"HMACDRBG_GenerateRandEntIn", code(),
     [](Arena &a) {
       return HMACDRBG_GenerateRandEntIn(a.out, &a.hmac, kBits, 128, a.entropy, 48, nullptr, 0, 1);
     }},
    {"HMACDRBG_GenerateRand", code(),
     [](Arena &a) { return HMACDRBG_GenerateRand(a.out, &a.hmac, kBits, 128, nullptr, 0, 1); }},
    {"HMACDRBG_RNG", one_call(), [](Arena &a) { return HMACDRBG_RNG(a.out, kBits, a.entropy, 48); }},
    {"HMACDRBG_GetRandNum", one_call(), [](Arena &a) { return HMACDRBG_GetRandNum(a.out, kBits); }},

    {"CONDITIONAL_SELFTEST_HASHDRBG", code(),
     [](Arena &a) { return CONDITIONAL_SELFTEST_HASHDRBG(a.out, a.entropy, 8); }},
    {"CONDITIONAL_SELFTEST_HMACDRBG", code(),
     [](Arena &a) { return CONDITIONAL_SELFTEST_HMACDRBG(a.out, a.entropy, 8); }},
};

}  // namespace
}  // namespace zel::test
