// Self-tests that fail: each one, with one bit of its expected answer flipped, must give its code,
// put the module into the error state, and leave no service that still serves.
#include <gtest/gtest.h>

#include "tests/gates/gates.hpp"
#include "tests/support/self_tests.hpp"

extern "C" const char *zel_faulty_self_test;

namespace zel::test {
namespace {

/// A call of every service that the error state must refuse, on data made while the module served.
struct Service {
  const Gate *gate;
  std::function<Outcome()> call;
};

std::vector<Service> refusing_services() {
  std::vector<Service> services;
  for (const Gate &gate : all_gates()) {
    const bool serves = gate.answers[0].kind == Expected::Kind::kServes;
    if (!serves && !gate.name.starts_with("KZEL_CC_")) services.push_back({&gate, gate.prepare()});
  }
  return services;
}

std::string failure_of(const SelfTest &test, const std::vector<Service> &services) {
  zel_faulty_self_test = test.name;
  if (const int32_t code = test.run(); code != test.code) return "gave " + std::to_string(code);
  if (KZEL_CC_GetState() != ZEL_STATE_ERROR) return "did not end in the error state";
  for (const Service &service : services) {
    const std::string text = complaint(service.gate->answers[0], service.call());
    if (!text.empty()) return service.gate->name + ": " + text;
  }
  return "";
}

TEST(Faults, EverySelfTestCanFailAndEndsAllServices) {
  ASSERT_EQ(kStates[0], ZEL_STATE_ERROR);
  const std::vector<Service> services = refusing_services();
  ASSERT_GT(services.size(), 50U);
  for (const int32_t state : {1, 3, 4}) {
    for (const SelfTest &test : kSelfTests) {
      const auto failing = [&] {
        KZEL_CC_SetState(state);
        return failure_of(test, services);
      };
      EXPECT_EQ(in_own_process(failing), "") << test.name << " from state " << state;
    }
  }
}

// The ordered run ends with the first failure and its code; a nested test fails its outer one.
TEST(Faults, ARunEndsWithItsFirstFailure) {
  const struct {
    const char *faulty;
    int32_t code;
  } rows[] = {{"SELFTEST_SHA384", ZEL_ERR_KAT_SHA384},
              {"SELFTEST_SHA1", ZEL_OK},
              {"SELFTEST_HMAC_DRBG512", ZEL_ERR_DRBG_TEST}};
  for (const auto &row : rows) {
    for (const int32_t state : {1, 3, 4}) {
      const auto failing = [&]() -> std::string {
        KZEL_CC_SetState(state);
        zel_faulty_self_test = row.faulty;
        const int32_t code = SELFTEST_VerifiedAlgorithm();
        if (code != row.code) return "gave " + std::to_string(code);
        const int32_t after = row.code != ZEL_OK ? ZEL_STATE_ERROR : state == 1 ? 4 : state;
        return KZEL_CC_GetState() == after ? "" : "state " + std::to_string(KZEL_CC_GetState());
      };
      EXPECT_EQ(in_own_process(failing), "") << row.faulty << " from state " << state;
    }
  }
}

TEST(Faults, TheTableHasEverySelfTest) {
  std::set<std::string> listed{"SELFTEST_VerifiedAlgorithm", "SELFTEST_DoPowerUpSelfTest",
                               "SELFTEST_VerifyModuleHMAC", "SELFTEST_DoModuleIntegrityTest"};
  for (const SelfTest &test : kSelfTests)
    listed.insert(test.name);
  for (const std::string &name : exported_functions())
    EXPECT_TRUE(!name.starts_with("SELFTEST_") || listed.contains(name)) << name;
}

}  // namespace
}  // namespace zel::test
