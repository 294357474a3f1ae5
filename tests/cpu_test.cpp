// Processor features: asked on first use, masked for tests alone.
#include "base/cpu.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/features.hpp"
#include "tests/support/instructions.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

// CTest runs each test in a process of its own, so this one sees the state after loading.
TEST(Cpu, IsAskedOnFirstUseAndOnce) {
  EXPECT_EQ(cpu::g_features.load(), 0U) << "asked while the program was loaded";
  cpu::has(cpu::Feature::kAvx2);
  const std::uint32_t answer = cpu::g_features.load();
  EXPECT_NE(answer & cpu::kAsked, 0U);
  cpu::g_features.store(cpu::kAsked);
  EXPECT_FALSE(cpu::has(cpu::Feature::kAvx2)) << "the remembered answer was not used";
  cpu::ask();
}

TEST(Cpu, AgreesWithTheCompilersOwnQuestion) {
  __builtin_cpu_init();
  EXPECT_EQ(cpu::has(cpu::Feature::kAvx2), __builtin_cpu_supports("avx2") != 0);
  EXPECT_EQ(cpu::has(cpu::Feature::kBmi2),
            __builtin_cpu_supports("bmi") != 0 && __builtin_cpu_supports("bmi2") != 0);
  EXPECT_EQ(cpu::has(cpu::Feature::kAesni),
            __builtin_cpu_supports("aes") != 0 && __builtin_cpu_supports("pclmul") != 0);
}

TEST(Cpu, MasksTakeSingleFeaturesAwayAndGiveThemBack) {
  const std::uint32_t real = cpu::ask();
  for (const FeatureSet &set : feature_sets()) {
    SCOPED_TRACE(set.name);
    const FeatureMask mask(set.mask);
    for (std::uint32_t bit = 1; bit <= static_cast<std::uint32_t>(cpu::Feature::kVaes); bit <<= 1)
      EXPECT_EQ(cpu::has(static_cast<cpu::Feature>(bit)), (real & set.mask & bit) != 0);
  }
  EXPECT_EQ(cpu::g_features.load(), real);
  const FeatureMask everything(~0U);
  EXPECT_EQ(cpu::g_features.load(), real) << "a mask cannot add a feature";
}

/// Features whose instructions hash a message of a few blocks; each instruction takes microseconds.
std::uint32_t used_by(const HASH_ALGORITHM &algorithm) {
  static const std::uint8_t message[256] = {};
  std::uint8_t digest[ZEL_MAX_DIGEST_LEN];
  std::uint32_t len = 0;
  HASH_CONTEXT context;
  const InstructionWatch watch;
  HASH_Initialize(&context, &algorithm);
  HASH_Update(&context, message, algorithm.digest_len == 64 ? sizeof message : 64);
  HASH_Finalize(digest, &len, &context);
  return watch.seen();
}

/// The same for GCM over AES, which has fast paths in the cipher and in the hash.
std::uint32_t used_by_gcm() {
  const std::uint8_t bytes[352] = {};
  std::uint8_t data[352] = {};
  std::uint8_t tag[16];
  const InstructionWatch watch;
  GMAC_Encrypt(data, sizeof data, tag, nullptr, 0, bytes, bytes, 12, 16, RIJNDAEL_EncryptBlock);
  return watch.seen();
}

// A mask that the code does not heed would make every test of a plain path a test of a fast one.
TEST(Cpu, MaskedInstructionsAreNotExecuted) {
  const std::uint32_t real = cpu::ask();
  constexpr auto kAvx2 = static_cast<std::uint32_t>(cpu::Feature::kAvx2);
  std::uint32_t ever = 0;
  for (const FeatureSet &set : feature_sets()) {
    SCOPED_TRACE(set.name);
    const FeatureMask mask(set.mask);
    for (const HASH_ALGORITHM *algorithm : {&popsha1, &sha256, &sha512}) {
      const std::uint32_t used = used_by(*algorithm);
      EXPECT_EQ(used & ~set.mask, 0U) << "digest of " << algorithm->digest_len << " bytes";
      ever |= used;
    }
    const std::uint32_t used = used_by_gcm();
    const bool wide = cpu::has(cpu::Feature::kVaes);  // which means 256-bit registers, too
    EXPECT_EQ(used & ~set.mask & ~(wide ? kAvx2 : 0U), 0U) << "GCM";
    ever |= used;
  }
  for (const cpu::Feature feature :
       {cpu::Feature::kSha, cpu::Feature::kBmi2, cpu::Feature::kAesni, cpu::Feature::kVaes})
    EXPECT_EQ(ever & static_cast<std::uint32_t>(feature),
              real & static_cast<std::uint32_t>(feature));
}

}  // namespace
}  // namespace zel::test
