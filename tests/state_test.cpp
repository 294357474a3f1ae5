// The module state: which calls lead where, and that the error state is final. CTest runs each test
// in a process of its own.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "zel_cc.h"

namespace {

TEST(State, StartsInTheNotVerifiedServiceWithNothingSaved) {
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  EXPECT_EQ(KZEL_CC_GetPreState(), 0);
}

// One row a state: what each setter answers there, and the state it leaves.
struct Row {
  int32_t from;
  int32_t verified, after_verified;
  int32_t not_verified, after_not_verified;
  int32_t self_test;
};

TEST(State, SettersFollowTheTable) {
  const Row rows[] = {
      {-1, ZEL_ERR_STATE, -1, ZEL_ERR_STATE, -1, -1},
      {0, ZEL_ERR_STATE, 0, ZEL_ERR_STATE, 0, 0},
      {1, ZEL_ERR_STATE, 1, ZEL_ERR_STATE, 1, 1},
      {2, ZEL_ERR_STATE, 2, ZEL_ERR_STATE, 2, 2},
      {3, 4, 4, ZEL_ERR_STATE, 3, 2},
      {4, ZEL_ERR_STATE, 4, 3, 3, 2},
      {5, ZEL_ERR_STATE, 5, ZEL_ERR_STATE, 5, 5},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.from);
    EXPECT_EQ(KZEL_CC_SetState(row.from), row.from);
    EXPECT_EQ(KZEL_CC_Initialize(), 0);
    EXPECT_EQ(KZEL_CC_Finalize(), row.from);
    EXPECT_EQ(KZEL_CC_SetStateVerifiedService(), row.verified);
    EXPECT_EQ(KZEL_CC_GetState(), row.after_verified);

    KZEL_CC_SetState(row.from);
    EXPECT_EQ(KZEL_CC_SetStateNotVerifiedService(), row.not_verified);
    EXPECT_EQ(KZEL_CC_GetState(), row.after_not_verified);

    KZEL_CC_SetState(row.from);
    EXPECT_EQ(KZEL_CC_SetStateConditionalSelfTest(), row.self_test);
    EXPECT_EQ(KZEL_CC_GetState(), row.self_test);
  }
}

TEST(State, SelfTestReturnsToTheServiceItCameFrom) {
  for (const int32_t service : {ZEL_STATE_NOT_VERIFIED, ZEL_STATE_VERIFIED}) {
    KZEL_CC_SetState(service);
    EXPECT_EQ(KZEL_CC_SetStateConditionalSelfTest(), ZEL_STATE_SELF_TEST);
    EXPECT_EQ(KZEL_CC_GetPreState(), service);
    EXPECT_EQ(KZEL_CC_SetStateConditionalSelfTest(), ZEL_STATE_SELF_TEST) << "nested";
    EXPECT_EQ(KZEL_CC_GetPreState(), service) << "a nested test must not save state 2";
    EXPECT_EQ(KZEL_CC_SetPreStateConditionalSelfTest(), service);
    EXPECT_EQ(KZEL_CC_SetPreStateConditionalSelfTest(), service) << "outside a test";
  }
}

TEST(State, NothingLeadsOutOfTheErrorState) {
  KZEL_CC_SetStateConditionalSelfTest();
  EXPECT_EQ(KZEL_CC_SetState(ZEL_STATE_ERROR), ZEL_STATE_ERROR);
  for (const int32_t state : {-1, 0, 1, 2, 3, 4, 5}) {
    EXPECT_EQ(KZEL_CC_SetState(state), ZEL_STATE_ERROR);
  }
  EXPECT_EQ(KZEL_CC_Initialize(), 0);
  EXPECT_EQ(KZEL_CC_Finalize(), ZEL_STATE_ERROR);
  EXPECT_EQ(KZEL_CC_SetStateVerifiedService(), ZEL_ERR_STATE);
  EXPECT_EQ(KZEL_CC_SetStateNotVerifiedService(), ZEL_ERR_STATE);
  EXPECT_EQ(KZEL_CC_SetStateConditionalSelfTest(), ZEL_STATE_ERROR);
  EXPECT_EQ(KZEL_CC_SetPreStateConditionalSelfTest(), ZEL_STATE_ERROR);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

// Two threads that enter and leave self-tests at once must never save the self-test state itself,
// which would strand the process in it.
TEST(State, ConcurrentSelfTestsNeverSaveTheSelfTestState) {
  std::atomic<bool> stranded{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&stranded] {
      for (int i = 0; i < 100000; ++i) {
        KZEL_CC_SetStateConditionalSelfTest();
        if (KZEL_CC_GetPreState() != ZEL_STATE_NOT_VERIFIED) stranded = true;
        KZEL_CC_SetPreStateConditionalSelfTest();
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_FALSE(stranded);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
}

TEST(Errors, EveryCodeHasAText) {
  EXPECT_STREQ(zel_error_text(ZEL_OK), "done");
  EXPECT_STREQ(zel_error_text(7), "a length or a truth value");
  EXPECT_STREQ(zel_error_text(-2), "unknown code");
  int known = 0;
  for (int32_t code = -23000; code < 0; ++code) {
    if (std::string(zel_error_text(code)) != "unknown code") ++known;
  }
  EXPECT_EQ(known, 71);
}

}  // namespace
