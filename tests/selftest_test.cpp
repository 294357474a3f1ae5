// The self-tests as shipped: they pass on every processor, and leave the state as they should.
// CTest runs each test in a process of its own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/features.hpp"
#include "tests/support/self_tests.hpp"
#include "tests/support/short_memory.hpp"

namespace {

using namespace zel::test;

TEST(SelfTests, PassOnEveryProcessor) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const SelfTest &test : kSelfTests)
      EXPECT_EQ(test.run(), ZEL_OK) << test.name << " with " << set.name;
  }
}

// A test returns to where it came from; inside a test that is running, it ends that one.
TEST(SelfTests, ReturnToTheStateTheyCameFrom) {
  for (const SelfTest &test : kSelfTests) {
    SCOPED_TRACE(test.name);
    for (const int32_t state : {1, 3, 4}) {
      KZEL_CC_SetState(state);
      EXPECT_EQ(test.run(), ZEL_OK);
      EXPECT_EQ(KZEL_CC_GetState(), state);
    }
    EXPECT_EQ(KZEL_CC_SetStateConditionalSelfTest(), ZEL_STATE_SELF_TEST);
    EXPECT_EQ(test.run(), ZEL_OK);
    EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_VERIFIED);
    for (const int32_t state : {-1, 0, 5}) {
      KZEL_CC_SetState(state);
      EXPECT_EQ(test.run(), ZEL_ERR_STATE);
      EXPECT_EQ(KZEL_CC_GetState(), state);
    }
  }
}

// A service that reports an error fails its test as a wrong answer does, and nothing is held then.
// Each time in a process of its own, with one more block of memory until there is enough.
TEST(SelfTests, FailWhereMemoryIsShort) {
  enum Outcome { kFailsAsItShould, kPasses, kWrong };
  int failures = 0;
  for (const SelfTest &test : kSelfTests) {
    for (int blocks = 0, outcome = kFailsAsItShould; outcome == kFailsAsItShould; ++blocks) {
      const pid_t child = fork();
      if (child == 0) {
        g_held = 0;
        g_allocations_left = blocks;
        const int32_t code = test.run();
        if (code == ZEL_OK) _exit(kPasses);
        // The entropy collector frees what did not come from calloc.
        const bool right =
            code == test.code && KZEL_CC_GetState() == ZEL_STATE_ERROR && g_held <= 0;
        _exit(right ? kFailsAsItShould : kWrong);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFEXITED(status));
      outcome = WEXITSTATUS(status);
      ASSERT_NE(outcome, kWrong) << test.name << " with " << blocks << " blocks";
      failures += outcome == kFailsAsItShould ? 1 : 0;
    }
  }
  EXPECT_GE(failures, 12) << "every cipher of every mode has a key on the heap";
}

TEST(SelfTests, TheOrderedRunOpensTheVerifiedServiceFromStateOneAlone) {
  const struct {
    int32_t from, code, after;
  } rows[] = {{-1, ZEL_ERR_STATE, -1}, {0, ZEL_ERR_STATE, 0}, {1, ZEL_OK, 4},
              {3, ZEL_OK, 3},          {4, ZEL_OK, 4},        {5, ZEL_ERR_STATE, 5}};
  for (const auto &row : rows) {
    KZEL_CC_SetState(row.from);
    EXPECT_EQ(SELFTEST_VerifiedAlgorithm(), row.code) << row.from;
    EXPECT_EQ(KZEL_CC_GetState(), row.after) << row.from;
    EXPECT_EQ(SELFTEST_DoPowerUpSelfTest(), ZEL_OK);
  }
}

}  // namespace
