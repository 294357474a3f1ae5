// The block ciphers one by one, below key objects and modes: key schedules with odd arguments,
// arrangements of round keys, instruction sets, the verified service.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/features.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc/bcipher.h"
#include "zel_cc/ciphers.h"
#include "zel_cc/state.h"

namespace {

using zel::test::Bytes;
using zel::test::from_hex;
using zel::test::to_hex;

struct Named {
  const char *name;
  const BCIPHER_ALGORITHM *descriptor;
  std::uint32_t key_len;
};

const Named kCiphers[] = {
    {"aria", &aria, 16},
    {"aria192", &aria192, 24},
    {"aria256", &aria256, 32},
    {"seed", &seed, 16},
};

std::mt19937 &numbers() {
  static std::mt19937 source(20260101);
  return source;
}

Bytes random_bytes(std::size_t len) {
  Bytes bytes(len);
  for (std::uint8_t &byte : bytes)
    byte = static_cast<std::uint8_t>(numbers()());
  return bytes;
}

/// Expanded round keys at an odd address.
class Schedule {
 public:
  Schedule(const BCIPHER_ALGORITHM &cipher, const Bytes &key)
      : Schedule(cipher, key, static_cast<std::uint32_t>(key.size())) {}
  Schedule(const BCIPHER_ALGORITHM &cipher, const Bytes &key, std::uint32_t len)
      : cipher_(cipher), bytes_(cipher.round_keys_len + 1) {
    cipher.MakeRoundKey(bytes_.data() + 1, key.data(), len);
  }

  Bytes encrypted(Bytes block) const {
    cipher_.EncryptBlock(block.data(), bytes_.data() + 1);
    return block;
  }
  Bytes decrypted(Bytes block) const {
    cipher_.DecryptBlock(block.data(), bytes_.data() + 1);
    return block;
  }
  Bytes bytes() const { return {bytes_.begin() + 1, bytes_.end()}; }

 private:
  const BCIPHER_ALGORITHM &cipher_;
  Bytes bytes_;
};

class EveryCipher : public ::testing::TestWithParam<Named> {
 protected:
  const BCIPHER_ALGORITHM &cipher_ = *GetParam().descriptor;
};

// Table and instruction paths are different code and must be one cipher; a schedule made by one of
// them serves the other.
TEST_P(EveryCipher, IsTheSameOnEveryProcessor) {
  for (int repeat = 0; repeat < 50; ++repeat) {
    const Bytes key = random_bytes(GetParam().key_len);
    const Bytes block = random_bytes(cipher_.block_len);
    const Schedule reference(cipher_, key);
    const Bytes expected = reference.encrypted(block);
    for (const auto &[name, mask] : zel::test::feature_sets()) {
      const zel::test::FeatureMask masked(mask);
      const Schedule schedule(cipher_, key);
      ASSERT_EQ(to_hex(schedule.bytes()), to_hex(reference.bytes())) << name;
      ASSERT_EQ(to_hex(schedule.encrypted(block)), to_hex(expected)) << name;
      ASSERT_EQ(to_hex(schedule.decrypted(expected)), to_hex(block)) << name;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryCipher, ::testing::ValuesIn(kCiphers),
                         [](const auto &chosen) { return std::string(chosen.param.name); });

// RFC 5794, section 2.2: decryption runs through the encryption function with the keys in reverse
// order, the inner ones diffused; both lists lie in the buffer as bytes.
TEST(Aria, RoundKeysAreTwoListsOfBytes) {
  const Schedule schedule(aria, from_hex("000102030405060708090a0b0c0d0e0f"));
  const Bytes keys = schedule.bytes();
  const auto part = [&](std::size_t i) {
    return to_hex(Bytes(keys.begin() + 16 * static_cast<long>(i),
                        keys.begin() + 16 * static_cast<long>(i) + 16));
  };
  EXPECT_EQ(part(0), "d415a75c794b85c5e0d2a0b3cb793bf6");
  EXPECT_EQ(part(12), part(13));
  EXPECT_EQ(part(0), part(25));
}

}  // namespace
