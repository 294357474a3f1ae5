// Known-answer tests of the DRBGs: a generator with fixed entropy, two requests. NIST SP 800-90A.
#include "core/selftest_drbg_tables.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/rng.h"

namespace zel {
namespace {

/// The functions with given entropy, on which those with fresh entropy stand.
struct HashDrbg {
  using Context = HASHDRBG_CONTEXT;
  static constexpr auto &kInstantiate = HASHDRBG_InstantiateEntIn;
  static constexpr auto &kGenerate = HASHDRBG_GenerateRandEntIn;
  static constexpr const auto &kAnswers = kHashDrbg;
};

struct HmacDrbg {
  using Context = HMACDRBG_CONTEXT;
  static constexpr auto &kInstantiate = HMACDRBG_InstantiateEntIn;
  static constexpr auto &kGenerate = HMACDRBG_GenerateRandEntIn;
  static constexpr const auto &kAnswers = kHmacDrbg;
};

template <class Drbg>
std::int32_t drbg_test(const char *self_test, ZEL_DRBG_HASH hash) noexcept {
  return known_answer(self_test, ZEL_ERR_DRBG_TEST, [hash](const Check &check) {
    constexpr std::uint32_t kStrength = 112;
    const DrbgAnswers &data = Drbg::kAnswers[hash];
    typename Drbg::Context context;
    if (Drbg::kInstantiate(&context, hash, kStrength, 0, data.entropy.data(), kDrbgEntropyLen,
                           data.nonce.data(), kDrbgNonceLen, nullptr, 0) != ZEL_OK) {
      return false;
    }
    for (const auto &expected : data.outputs) {
      std::array<std::uint8_t, kDrbgOutLen> out;
      if (Drbg::kGenerate(out.data(), &context, 8 * kDrbgOutLen, kStrength, nullptr, 0, nullptr, 0,
                          0) != ZEL_OK) {
        return false;
      }
      if (!check.equal(out.data(), out.size(), expected)) return false;
    }
    return true;
  });
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_HASH_DRBG224(void) { return drbg_test<HashDrbg>(__func__, ZEL_DRBG_SHA224); }

int32_t SELFTEST_HASH_DRBG256(void) { return drbg_test<HashDrbg>(__func__, ZEL_DRBG_SHA256); }

int32_t SELFTEST_HASH_DRBG384(void) { return drbg_test<HashDrbg>(__func__, ZEL_DRBG_SHA384); }

int32_t SELFTEST_HASH_DRBG512(void) { return drbg_test<HashDrbg>(__func__, ZEL_DRBG_SHA512); }

int32_t SELFTEST_HMAC_DRBG224(void) { return drbg_test<HmacDrbg>(__func__, ZEL_DRBG_SHA224); }

int32_t SELFTEST_HMAC_DRBG256(void) { return drbg_test<HmacDrbg>(__func__, ZEL_DRBG_SHA256); }

int32_t SELFTEST_HMAC_DRBG384(void) { return drbg_test<HmacDrbg>(__func__, ZEL_DRBG_SHA384); }

int32_t SELFTEST_HMAC_DRBG512(void) { return drbg_test<HmacDrbg>(__func__, ZEL_DRBG_SHA512); }
