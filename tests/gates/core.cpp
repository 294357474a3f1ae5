// The self-tests. State 2 is set by hand here, with nothing saved: the first test that passes ends
// in state 0, and those that run others inside meet it.
#include <cstdlib>

#include "tests/gates/gates.hpp"
#include "tests/support/self_tests.hpp"

namespace zel::test {
namespace {

struct Arena {};

constexpr std::int64_t kNo = ZEL_ERR_STATE;
constexpr std::int64_t kDrbg = ZEL_ERR_DRBG_TEST;
constexpr std::int64_t kKcdsa = ZEL_ERR_KCDSA_TEST;
constexpr std::int64_t kNone = ZEL_ERR_INTEGRITY;

/// The module's own file, which is good.
int32_t search_for_the_module() {
  setenv("ZEL_CC_HMAC_PATH", ZEL_LIBRARY_DIR, 1);
  return SELFTEST_DoModuleIntegrityTest();
}

//                                                   -98  -1   0    1  2    3  4  5
const Rows<Arena> kRows{
    {"SELFTEST_VerifiedAlgorithm", gives({kNo, kNo, kNo, 0, kNo, 0, 0, kNo}), [](Arena &) { return SELFTEST_VerifiedAlgorithm(); }},
    {"SELFTEST_DoPowerUpSelfTest", gives({0, 0, 0, 0, 0, 0, 0, 0}), [](Arena &) { return SELFTEST_DoPowerUpSelfTest(); }},
    {"SELFTEST_VerifyModuleHMAC", gives({-1, -1, -1, 0, 0, 0, 0, -1}), [](Arena &) { return SELFTEST_VerifyModuleHMAC(ZEL_LIBRARY_DIR "/libzel_cc-3.2.so"); }},
    {"SELFTEST_DoModuleIntegrityTest", gives({kNone, kNone, kNone, 0, 0, 0, 0, kNone}), [](Arena &) { return search_for_the_module(); }},
    {"SELFTEST_KCDSA", gives({kNo, kNo, kNo, 0, kKcdsa, 0, 0, kNo}), [](Arena &) { return SELFTEST_KCDSA(); }},
    {"SELFTEST_SequentialRNGTest", gives({kNo, kNo, kNo, 0, kDrbg, 0, 0, kNo}), [](Arena &) { return SELFTEST_SequentialRNGTest(); }},
};

const bool kOthers = [] {
  for (const SelfTest &test : kSelfTests) {
    if (test.run == SELFTEST_SequentialRNGTest || test.run == SELFTEST_KCDSA) continue;
    Rows<Arena>{{test.name, code(), [&test](Arena &) { return test.run(); }}};
  }
  return true;
}();

}  // namespace
}  // namespace zel::test
