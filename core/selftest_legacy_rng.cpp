// Known-answer tests of the older generators of private values. FIPS 186-2, appendix 3 and change
// notice 1 (NIST's example, two values); TTAK.KO-12.0001 (its example key).
#include "core/known_answer.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/legacy_rng.h"

namespace zel {
namespace {

constexpr std::uint32_t kLen = 20;

constexpr auto kSha1Xseed = hex("0000000000000000000000000000000000000000");
constexpr auto kSha1Xkey = hex("bd029bbe7f51960bcf9edb2b61f06f0feb5a38b6");
constexpr auto kSha1Q = hex("c773218c737ec8ee993b4f2ded30f48edace915f");
// The initial words of SHA-1.
constexpr auto kSha1T = hex("67452301efcdab8998badcfe10325476c3d2e1f0");
constexpr auto kSha1Values =
    hex("2070b3223dba372fde1c0ffc7b2e3b498b2606143c6c18bacb0f6c55babb13788e20d737a3275116");

constexpr auto kHas160Xseed =
    hex("73616c646a6661777033393975333734723039387539385e255e25686b72676e3b6c776b727034377439336325"
        "2438393433393835396b6a646d6e76636d2063766b206f347530397220346a206f6a326f757432303978667177"
        "3b6c2a26215e234055232a2324292823207a20786f39353774632d393520352076356f69757639383736203620"
        "766a206f356975762d3035332c6d63766c726b66776f726574");
constexpr auto kHas160Xkey = hex("f2072ce30a0176568324564bfdbd7077173b7e3f");
constexpr auto kHas160Q = hex("c3ddd3717bf05b8f8dd725c162f0b9432c6f77fb");
constexpr auto kHas160Value = hex("068c4ef355d8b6f53eff1df6f243f98563896c58");

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_DSA_RNG_SHA1(void) {
  return known_answer(__func__, ZEL_ERR_KAT_DSA_RNG, [](const Check &check) {
    constexpr std::uint32_t kCount = 2;
    std::array<std::uint8_t, kCount * kLen> out;
    std::uint32_t lens[kCount] = {};
    return DSARNGSHA1_GenerateX(out.data(), lens, kSha1Xseed.data(), kLen, kSha1Xkey.data(), kLen,
                                kSha1T.data(), kSha1Q.data(), kLen, kCount) == ZEL_OK &&
           check.equal(out.data(), lens[0] + lens[1], kSha1Values);
  });
}

int32_t SELFTEST_KCDSA_RNG_HAS160(void) {
  return known_answer(__func__, ZEL_ERR_KAT_KCDSA_RNG, [](const Check &check) {
    std::array<std::uint8_t, kLen> out;
    std::uint32_t len = 0;
    return KCDSARNGHAS160_GenerateX(out.data(), &len, kHas160Xseed.data(), kHas160Xseed.size(),
                                    kHas160Xkey.data(), kLen, kHas160Q.data(), kLen, 1) == ZEL_OK &&
           check.equal(out.data(), len, kHas160Value);
  });
}
