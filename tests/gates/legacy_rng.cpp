// The older generators and their repeated-output tests.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  RANDANSI_CONTEXT ansi{};
  RANDHASH_CONTEXT hash{};
  std::uint8_t seed[20]{1};
  std::uint8_t key[20]{2};
  std::uint8_t q[20]{3};
  std::uint8_t out[40]{};
  std::uint32_t lens[2]{};

  Arena() {
    for (std::uint8_t &byte : ansi.round_keys)
      byte = 5;
  }
};

const Rows<Arena> kRows{
    {"RANDANSI_Initialize", inert(), [](Arena &a) { RANDANSI_Initialize(&a.ansi); }},
    {"RANDANSI_GetRandomNum", inert(), [](Arena &a) { RANDANSI_GetRandomNum(a.out, 12, &a.ansi); }},
    {"RANDHASH_Initialize", inert(), [](Arena &a) { RANDHASH_Initialize(&a.hash); }},
    {"RANDHASH_GetRandomNum", inert(), [](Arena &a) { RANDHASH_GetRandomNum(a.out, 12, &a.hash); }},
    {"DSARNGSHA1_G", ungated(), [](Arena &a) { return DSARNGSHA1_G(a.out, a.seed, a.key, 160); }},
    {"DSARNGSHA1_GenerateX", code(),
     [](Arena &a) {
       return DSARNGSHA1_GenerateX(a.out, a.lens, a.seed, 20, a.key, 20, a.seed, a.q, 20, 2);
     }},
    {"DSARNGSHA1_GetRandomNum", code(), [](Arena &a) { return DSARNGSHA1_GetRandomNum(a.out, 40); }},
    {"KCDSARNGHAS160_PRNG", code(), [](Arena &a) { return KCDSARNGHAS160_PRNG(a.out, 161, a.seed, 160); }},
    {"KCDSARNGSHA224_PRNG", code(), [](Arena &a) { return KCDSARNGSHA224_PRNG(a.out, 161, a.seed, 160); }},
    {"KCDSARNGSHA256_PRNG", code(), [](Arena &a) { return KCDSARNGSHA256_PRNG(a.out, 161, a.seed, 160); }},
    {"KCDSARNGHAS160_GenerateX", code(),
     [](Arena &a) {
       return KCDSARNGHAS160_GenerateX(a.out, a.lens, a.seed, 20, a.key, 20, a.q, 20, 2);
     }},
    {"CONDITIONAL_SELFTEST_DSA_RNG_SHA1", code(),
     [](Arena &a) { return CONDITIONAL_SELFTEST_DSA_RNG_SHA1(a.out, a.key, 8); }},
    {"CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160", code(),
     [](Arena &a) { return CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160(a.out, a.key, 8); }},
};

}  // namespace
}  // namespace zel::test
