// The block ciphers below key objects and modes: many-block routines against the block function,
// keys of odd lengths, arrangements of round keys.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "cipher/bulk.hpp"
#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"

namespace zel::test {
namespace {

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

/// Words that multiplication modulo 65537, carries and rotations treat in special ways.
Bytes special_bytes(std::size_t len) {
  static const std::uint8_t words[6][2] = {{0, 0}, {0, 1},       {0x80, 0},
                                           {1, 0}, {0xff, 0xff}, {0x7f, 0xff}};
  Bytes bytes(len);
  for (std::size_t i = 0; i + 1 < len; i += 2)
    std::copy_n(words[numbers()() % 6], 2, &bytes[i]);
  return bytes;
}

Bytes schedule(const BCIPHER_ALGORITHM &cipher, const Bytes &key, std::uint32_t len) {
  Bytes round_keys(cipher.round_keys_len);
  EXPECT_EQ(cipher.MakeRoundKey(round_keys.data(), key.data(), len), ZEL_OK);
  return round_keys;
}

Bytes schedule(const BCIPHER_ALGORITHM &cipher, const Bytes &key) {
  return schedule(cipher, key, static_cast<std::uint32_t>(key.size()));
}

Bytes slice(const Bytes &bytes, std::size_t from, std::size_t len) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
  return {begin, begin + static_cast<std::ptrdiff_t>(len)};
}

class EveryCipher : public ::testing::TestWithParam<CipherRow> {
 protected:
  const BCIPHER_ALGORITHM &cipher_ = *GetParam().descriptor;

  void SetUp() override {
    if (!GetParam().computes()) GTEST_SKIP() << "an empty descriptor in this build";
  }

  /// The message through the many-block routine, all at once.
  Bytes many(bool decrypt, const Bytes &message, const Bytes &round_keys, bool in_place) const {
    const bulk::Cipher cipher(cipher_.block_len, cipher_.EncryptBlock, cipher_.DecryptBlock,
                              round_keys.data());
    Bytes out = in_place ? message : Bytes(message.size());
    const std::uint8_t *const in = in_place ? out.data() : message.data();
    const std::size_t count = message.size() / cipher_.block_len;
    if (decrypt)
      cipher.decrypt(out.data(), in, count);
    else
      cipher.encrypt(out.data(), in, count);
    return out;
  }
};

// Every routine has its own unit, its own rest and, for some, its own arithmetic; two units of the
// widest are 128 blocks. The reference is the block function of a processor that can do nothing.
TEST_P(EveryCipher, ManyBlocksAreBlocks) {
  const std::size_t len = cipher_.block_len;
  for (const bool special : {false, true}) {
    const auto bytes = special ? special_bytes : random_bytes;
    const Bytes key = bytes(GetParam().key_len);
    const Bytes plain = bytes(133 * len);
    Bytes round_keys, expected = plain;
    {
      // An instruction-only descriptor computes nothing there; its block function is the reference.
      const bool instructions = cipher_.EncryptBlock == aesni.EncryptBlock ||
                                cipher_.EncryptBlock == aesni256.EncryptBlock;
      const FeatureMask least(instructions ? ~0U : 0U);
      round_keys = schedule(cipher_, key);
      for (std::size_t i = 0; i < expected.size(); i += len)
        cipher_.EncryptBlock(&expected[i], round_keys.data());
    }
    for (const FeatureSet &set : feature_sets()) {
      const FeatureMask mask(set.mask);
      if (!GetParam().computes()) continue;
      SCOPED_TRACE(set.name);
      ASSERT_EQ(to_hex(schedule(cipher_, key)), to_hex(round_keys));
      for (std::size_t count = 0; count <= 133; count += count < 70 ? 1 : 9) {
        const bool in_place = count % 2 == 1;
        const Bytes in = slice(plain, 0, count * len), out = slice(expected, 0, count * len);
        ASSERT_EQ(many(false, in, round_keys, in_place), out) << count;
        ASSERT_EQ(many(true, out, round_keys, in_place), in) << count;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryCipher, ::testing::ValuesIn(kCiphers),
                         [](const auto &row) { return std::string(row.param.name); });

// RFC 5794, section 2.2: decryption runs through the encryption function with the keys in reverse
// order, the inner ones diffused; both lists lie in the buffer as bytes. Key: appendix A.1.
TEST(RoundKeys, OfAriaAreTwoListsOfBytes) {
  const Bytes keys = schedule(aria, from_hex("000102030405060708090a0b0c0d0e0f"));
  EXPECT_EQ(to_hex(slice(keys, 0, 16)), "d415a75c794b85c5e0d2a0b3cb793bf6");
  EXPECT_EQ(slice(keys, 12 * 16, 16), slice(keys, 13 * 16, 16));
  EXPECT_EQ(slice(keys, 0, 16), slice(keys, 25 * 16, 16));
}

// RFC 4269, appendix B.1: the first round keys of the zero key are 7c8f8c7e and c737a22c.
TEST(RoundKeys, OfSeedAreWordsOfTheMachine) {
  EXPECT_EQ(to_hex(slice(schedule(seed, Bytes(16)), 0, 8)), "7e8c8f7c2ca237c7");
}

// The sub-keys of IDEA begin with the key's own words; the second half deciphers.
TEST(RoundKeys, OfIdeaAreTwoDirections) {
  const Bytes keys = schedule(idea, from_hex("00010002000300040005000600070008"));
  EXPECT_EQ(to_hex(slice(keys, 0, 16)), "01000200030004000500060007000800");
  Bytes block = random_bytes(8);
  const Bytes plain = block;
  idea.EncryptBlock(block.data(), keys.data());
  idea.EncryptBlock(block.data(), keys.data() + 112);
  EXPECT_EQ(block, plain);
}

// Rotation keys stand behind the masking keys and are reduced to what they rotate by.
TEST(RoundKeys, OfCast128EndInRotations) {
  const Bytes keys = schedule(cast128, random_bytes(16));
  for (std::size_t i = 64; i < 128; ++i)
    EXPECT_LE(keys[i], i % 4 == 0 ? 31 : 0);
}

// The key is taken in whole words; what is left over does not count, and less than a word is no
// key at all, which leaves the digits of pi as a zero key does.
TEST(KeyLength, OfBlowfishIsWholeWords) {
  const Bytes key = random_bytes(80);
  const Bytes zero = schedule(blowfish, Bytes(4));
  for (const std::uint32_t len : {0U, 1U, 2U, 3U})
    EXPECT_EQ(schedule(blowfish, key, len), zero) << len;
  for (const std::uint32_t len : {5U, 6U, 7U, 18U, 57U})
    EXPECT_EQ(schedule(blowfish, key, len), schedule(blowfish, key, len / 4 * 4)) << len;
  EXPECT_EQ(schedule(blowfish, key, 80), schedule(blowfish, key, 72)) << "18 words are used";
  EXPECT_NE(schedule(blowfish, key, 72), schedule(blowfish, key, 68));
}

// An empty key is one zero word; bytes that do not fill a word are followed by zeros. Keys beyond
// the standard's 255 bytes go another way through memory.
TEST(KeyLength, OfRc5IsAnything) {
  EXPECT_EQ(schedule(rc5, {}, 0), schedule(rc5, Bytes(4)));
  for (const std::size_t len : {5U, 253U, 257U, 1001U}) {
    Bytes key = random_bytes(len);
    const Bytes expected = schedule(rc5, key);
    key.resize((len + 3) / 4 * 4);
    EXPECT_EQ(schedule(rc5, key), expected) << len;
    key[0] ^= 1;
    EXPECT_NE(schedule(rc5, key), expected) << len;
  }
}

// Both halves of RC2's length argument are taken from the caller and index tables.
TEST(KeyLength, OfRc2IsTwoNumbers) {
  const Bytes key = random_bytes(128);
  const auto packed = [](std::uint32_t bits, std::uint32_t len) { return bits << 16 | len; };
  const Bytes full = schedule(rc2, key, 128);
  EXPECT_EQ(schedule(rc2, key, 0), full) << "0 stands for 128";
  EXPECT_EQ(schedule(rc2, key, packed(1024, 0)), full);
  for (const std::uint32_t bits : {1025U, 0x8000U, 0xffffU})
    EXPECT_EQ(schedule(rc2, key, packed(bits, 128)), full) << bits;
  for (const std::uint32_t len : {129U, 0x8000U, 0xffffU})
    EXPECT_EQ(schedule(rc2, key, len), full) << len;
  EXPECT_EQ(schedule(rc2, key, packed(64, 8)), schedule(rc2, key, 8));
  for (std::uint32_t bits = 1; bits <= 1024; ++bits)
    schedule(rc2, key, packed(bits, 1 + bits % 128));
}

}  // namespace
}  // namespace zel::test
