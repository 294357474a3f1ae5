// The self-tests as shipped: they pass on every processor, and leave the state as they should.
// CTest runs each test in a process of its own.
#include <gtest/gtest.h>

#include "tests/support/features.hpp"
#include "tests/support/self_tests.hpp"

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
