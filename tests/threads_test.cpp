// Many threads at once, each with contexts, keys and generators of its own. The build for the
// thread sanitizer (preset thread) sees whether they share anything; here they must give what one
// thread gives. Also what a self-test does to threads that run beside it.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/self_tests.hpp"
#include "tests/support/vectors.hpp"

namespace {

using namespace zel::test;

/// Runs `work` on several threads at once, `rounds` times each.
void on_threads(int rounds, const std::function<void(unsigned thread, int round)> &work) {
  constexpr unsigned kThreads = 4;
  std::atomic<unsigned> ready{0};
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ++ready;
      while (ready != kThreads)
        std::this_thread::yield();
      for (int round = 0; round < rounds; ++round)
        work(t, round);
    });
  }
  for (std::thread &thread : threads)
    thread.join();
}

// Ciphers, modes, hashes, codes, DRBGs and public keys, each through its own known answers. Every
// test enters and leaves the self-test state, so the state changes under all of them.
TEST(Threads, EverySelfTestPassesBesideAllOthers) {
  constexpr std::size_t kCount = std::size(kSelfTests);
  std::atomic<int> failures{0};
  on_threads(2, [&](unsigned thread, int) {
    for (std::size_t i = 0; i < kCount; ++i) {
      const SelfTest &test = kSelfTests[(i + thread * kCount / 4) % kCount];
      if (test.run() != ZEL_OK) ++failures;
    }
  });
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
}

// Services that the known answers do not reach, on objects of each thread.
TEST(Threads, GeneratorsPrimesAndSharesOfTheirOwn) {
  std::atomic<int> failures{0};
  const auto expect = [&failures](bool good) { failures += good ? 0 : 1; };
  on_threads(3, [&](unsigned thread, int) {
    Bytes out(64);
    expect(HASHDRBG_GetRandNum(out.data(), 512) == ZEL_OK);
    expect(HMACDRBG_GetRandNum(out.data(), 512) == ZEL_OK);
    HASHDRBG_CONTEXT drbg;
    expect(HASHDRBG_Instantiate(&drbg, ZEL_DRBG_SHA256, 256, 1, nullptr, 0, nullptr, 0) == ZEL_OK);
    expect(HASHDRBG_GenerateRand(out.data(), &drbg, 512, 256, nullptr, 0, 1) == ZEL_OK);
    KEYSHAREFS_SHARE_SET shares;
    uint8_t secret[3] = {1, 2, 3}, recovered[8] = {};
    uint32_t len = 0;
    expect(KEYSHAREFS_Gen2SharedInfo(&shares, secret, 3, 2) == ZEL_OK &&
           KEYSHAREFS_Recover2SharedInfo(recovered, &len, &shares) == ZEL_OK &&
           Bytes(recovered, recovered + len) == Bytes(secret, secret + 3));
    expect(DSARNGSHA1_GetRandomNum(out.data(), 40) == ZEL_OK);
    const BCIPHER_ALGORITHM *const ciphers[] = {&aria, &seed, &rijndael, &des};
    BCIPHER_KEY *key = BCIPHER_NewKey(ciphers[thread]);
    expect(key != nullptr && BCIPHER_GenKey(out.data(), 16) == ZEL_OK &&
           BCIPHER_MakeKey(key, out.data(), 16, ciphers[thread]) == ZEL_OK);
    BCIPHER_DelKey(key);
  });
  EXPECT_EQ(failures, 0);
}

// The state is one for the process: while a self-test runs, every thread is in the self-test state,
// in which what the verified service shuts out is served.
TEST(Threads, ASelfTestOpensTheVerifiedServiceToOtherThreads) {
  const auto elsewhere = [](auto body) {
    int32_t result = 0;
    std::thread([&] { result = body(); }).join();
    return result;
  };
  const auto start_sha1 = [] {
    HASH_CONTEXT context;
    return HASH_InitializeEx(&context, &popsha1);
  };
  ASSERT_EQ(KZEL_CC_SetStateVerifiedService(), ZEL_STATE_VERIFIED);
  EXPECT_EQ(elsewhere(start_sha1), ZEL_ERR_APPROVED);
  ASSERT_EQ(KZEL_CC_SetStateConditionalSelfTest(), ZEL_STATE_SELF_TEST);
  EXPECT_EQ(elsewhere(start_sha1), ZEL_OK) << "beside a self-test";
  EXPECT_EQ(elsewhere(SELFTEST_SHA256), ZEL_OK);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_VERIFIED)
      << "the test of the other thread ended this one";
  EXPECT_EQ(elsewhere(start_sha1), ZEL_ERR_APPROVED);
  elsewhere([] { return KZEL_CC_SetState(ZEL_STATE_ERROR); });
  EXPECT_EQ(SELFTEST_SHA256(), ZEL_ERR_STATE) << "a failure elsewhere ends all threads";
}

}  // namespace
