// The block ciphers below key objects and modes: many-block routines against the block function,
// keys of odd lengths, arrangements of round keys.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <random>

#include "base/bytes.hpp"
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

// Every routine has its own unit, its own rest and, for some, its own arithmetic; the widest units
// have 128 blocks, and 256 in DES, where a rest that is long enough fills a unit up. The reference
// is the block function of a processor that can do nothing.
TEST_P(EveryCipher, ManyBlocksAreBlocks) {
  const std::size_t len = cipher_.block_len;
  for (const bool special : {false, true}) {
    const auto bytes = special ? special_bytes : random_bytes;
    const Bytes key = bytes(GetParam().key_len);
    const Bytes plain = bytes(612 * len);
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
      std::vector<std::size_t> counts = {79, 97, 115, 133, 256 + 72, 256 + 255, 512 + 100};
      for (std::size_t count = 0; count < 70; ++count)
        counts.push_back(count);
      for (const std::size_t count : counts) {
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

// The first round keys of RFC 5794, appendix A.1, as bytes; RFC 4269, appendix B.1 (7c8f8c7e and
// c737a22c), as words of the machine; the sub-keys of IDEA, which begin with the key's own words.
TEST(RoundKeys, BeginAsPublished) {
  const Bytes key = from_hex("000102030405060708090a0b0c0d0e0f");
  EXPECT_EQ(to_hex(slice(schedule(aria, key), 0, 16)), "d415a75c794b85c5e0d2a0b3cb793bf6");
  EXPECT_EQ(to_hex(slice(schedule(seed, Bytes(16)), 0, 8)), "7e8c8f7c2ca237c7");
  const Bytes words = from_hex("00010002000300040005000600070008");
  EXPECT_EQ(to_hex(slice(schedule(idea, words), 0, 16)), "01000200030004000500060007000800");
}

// In ARIA and IDEA decryption is encryption with the second half. That of ARIA has the keys in
// reverse order, the inner ones diffused (RFC 5794, section 2.2).
TEST(RoundKeys, OfTheSecondHalfUndoTheFirst) {
  for (const auto *const cipher : {&aria, &aria192, &aria256, &idea}) {
    const Bytes keys = schedule(*cipher, random_bytes(32)), plain = random_bytes(cipher->block_len);
    const std::size_t half = keys.size() / 2;
    Bytes block = plain;
    cipher->EncryptBlock(block.data(), keys.data());
    cipher->EncryptBlock(block.data(), keys.data() + half);
    EXPECT_EQ(block, plain);
    if (cipher == &idea) continue;
    EXPECT_EQ(slice(keys, 0, 16), slice(keys, keys.size() - 16, 16));
    EXPECT_EQ(slice(keys, half - 16, 16), slice(keys, half, 16));
    EXPECT_NE(slice(keys, 16, 16), slice(keys, keys.size() - 32, 16));
  }
}

TEST(RoundKeys, OfTripleDesAreThreeSchedulesOfDes) {
  const Bytes key = random_bytes(24);
  Bytes expected;
  for (std::size_t at = 0; at < 24; at += 8) {
    const Bytes one = schedule(des, slice(key, at, 8));
    expected.insert(expected.end(), one.begin(), one.end());
  }
  EXPECT_EQ(schedule(tdes, key), expected);
}

// Schneier, 1993: 18 words of P, then four boxes of 256, read by the shortest form of the cipher.
TEST(RoundKeys, OfBlowfishAreThePArrayAndFourBoxes) {
  const Bytes keys = schedule(blowfish, random_bytes(16));
  Bytes block = random_bytes(8);
  const auto word = [&keys](std::size_t i) { return load_le32(&keys[4 * i]); };
  std::uint32_t left = load_be32(&block[0]), right = load_be32(&block[4]);
  for (std::size_t round = 0; round < 16; ++round) {
    left ^= word(round);
    right ^= ((word(18 + (left >> 24)) + word(274 + (left >> 16 & 255))) ^
              word(530 + (left >> 8 & 255))) +
             word(786 + (left & 255));
    std::swap(left, right);
  }
  blowfish.EncryptBlock(block.data(), keys.data());
  EXPECT_EQ(load_be32(&block[0]), right ^ word(17));
  EXPECT_EQ(load_be32(&block[4]), left ^ word(16));
}

// RFC 2040, section 6.2: 26 words; the first two whiten, two more go into each round.
TEST(RoundKeys, OfRc5AreTwoWordsARound) {
  const Bytes keys = schedule(rc5, random_bytes(16));
  Bytes block = random_bytes(8);
  const auto word = [&keys](std::size_t i) { return load_le32(&keys[4 * i]); };
  std::uint32_t a = load_le32(&block[0]) + word(0), b = load_le32(&block[4]) + word(1);
  for (std::size_t round = 1; round <= 12; ++round) {
    a = std::rotl(a ^ b, static_cast<int>(b & 31)) + word(2 * round);
    b = std::rotl(b ^ a, static_cast<int>(a & 31)) + word(2 * round + 1);
  }
  rc5.EncryptBlock(block.data(), keys.data());
  EXPECT_EQ(load_le32(&block[0]), a);
  EXPECT_EQ(load_le32(&block[4]), b);
}

// RFC 2268, section 2: of a key of 128 bytes the expansion changes the first one alone, through the
// table whose first entry is d9; 64 little-endian words are the bytes in their order.
TEST(RoundKeys, OfRc2AreTheExpandedBytes) {
  Bytes key = random_bytes(128);
  key[0] = 0;
  const Bytes keys = schedule(rc2, key);
  key[0] = 0xd9;
  EXPECT_EQ(keys, key);
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
