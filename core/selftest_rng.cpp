// Health tests of the random sources that an application may run at any time: the entropy collector
// and, one after the other, the DRBGs.
#include <algorithm>

#include "base/wipe.hpp"
#include "core/known_answer.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/rng.h"

using namespace zel;

int32_t SELFTEST_SequentialRNGTest(void) {
  return known_answer(__func__, ZEL_ERR_DRBG_TEST, [](const Check &check) {
    using SelfTest = int32_t();
    static constexpr SelfTest *kTests[] = {
        SELFTEST_HASH_DRBG224, SELFTEST_HASH_DRBG256, SELFTEST_HASH_DRBG384, SELFTEST_HASH_DRBG512,
        SELFTEST_HMAC_DRBG224, SELFTEST_HMAC_DRBG256, SELFTEST_HMAC_DRBG384, SELFTEST_HMAC_DRBG512};
    // Each of them ends the self-test state; the next one enters it again.
    return check.holds(std::all_of(std::begin(kTests), std::end(kTests),
                                   [](SelfTest *test) { return test() >= ZEL_OK; }));
  });
}

int32_t SELFTEST_EntropyHeathTest(void) {
  return known_answer(__func__, ZEL_ERR_ENTROPY_HEALTH, [](const Check &check) {
    constexpr std::uint32_t kSeedBits = 512;
    struct Seed {
      std::uint8_t bytes[kSeedBits / 8 + 1];
    };
    Wiped<Seed> one(Seed{});
    Wiped<Seed> two(Seed{});
    std::uint32_t len = 0;
    if (RNGSEED_GetSeed(one->bytes, &len, kSeedBits) != ZEL_OK) return false;
    if (RNGSEED_GetSeed(two->bytes, &len, kSeedBits) != ZEL_OK) return false;
    return check.holds(std::memcmp(one->bytes, two->bytes, sizeof one->bytes) != 0);
  });
}
