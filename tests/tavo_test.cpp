// tavo and tavoold against the model that is written from docs/tavo.md, and what any block cipher
// has to show: inversion, and that every bit of key and block reaches every bit of the result.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "cipher/tavo_tables.hpp"
#include "tests/support/ciphers.hpp"

namespace zel::test {
namespace {

const BCIPHER_ALGORITHM &cipher_of(const Vector &vector) {
  return vector.word("alg") == "tavo" ? tavo : tavoold;
}

Bytes encrypted(const BCIPHER_ALGORITHM &cipher, const Bytes &key, Bytes block, int times = 1) {
  Bytes round_keys(cipher.round_keys_len);
  EXPECT_EQ(cipher.MakeRoundKey(round_keys.data(), key.data(), 16), ZEL_OK);
  const Bytes before = block;
  for (int i = 0; i < times; ++i)
    cipher.EncryptBlock(block.data(), round_keys.data());
  Bytes back = block;
  for (int i = 0; i < times; ++i)
    cipher.DecryptBlock(back.data(), round_keys.data());
  EXPECT_EQ(back, before);
  return block;
}

TEST(Tavo, AgreesWithTheModel) {
  for (const Vector &vector : read_vectors("tavo")) {
    SCOPED_TRACE(vector.place);
    if (vector.has("padding")) {
      const Bytes plain = vector.bytes("pt"), expected = vector.bytes("padded");
      Bytes padded(plain.size() + 16, 0xcc);
      const auto len = static_cast<std::uint32_t>(plain.size());
      padded.resize(TAVOOLD_AddPadding(padded.data(), plain.data(), len));
      EXPECT_EQ(padded, expected);
      const auto padded_len = static_cast<std::uint32_t>(padded.size());
      EXPECT_EQ(TAVOOLD_RemovePadding(padded.data(), padded.data(), padded_len), len);
      continue;
    }
    if (vector.has("round_keys")) {
      Bytes round_keys(256);
      cipher_of(vector).MakeRoundKey(round_keys.data(), vector.bytes("key").data(), 16);
      EXPECT_EQ(to_hex(round_keys), vector.word("round_keys"));
      continue;
    }
    const bool once = vector.has("ct");
    const Bytes out =
        encrypted(cipher_of(vector), vector.bytes("key"), vector.bytes("pt"), once ? 1 : 1000);
    EXPECT_EQ(to_hex(out), vector.word(once ? "ct" : "iterated"));
  }
}

// The last byte is not to be trusted: whatever it holds, no more comes back than was given.
TEST(Tavoold, RemovePaddingStaysInsideTheMessage) {
  for (const std::uint32_t len : {0U, 1U, 15U, 16U, 17U, 32U})
    for (unsigned last = 0; last < 256; ++last) {
      Bytes message(len, static_cast<std::uint8_t>(last));
      EXPECT_LE(TAVOOLD_RemovePadding(message.data(), message.data(), len), len);
    }
}

// A table that is not a permutation would still encipher and decipher.
TEST(Tavo, SBoxIsAPermutationWithSmallDifferences) {
  const auto &box = tavo_tables::kBox;
  std::vector<bool> seen(65536);
  for (const std::uint16_t value : box)
    seen[value] = true;
  EXPECT_EQ(std::count(seen.begin(), seen.end(), true), 65536);
  for (const unsigned difference : {1U, 0x8000U, 0x1234U}) {
    std::vector<int> counts(65536);
    for (unsigned x = 0; x < 65536; ++x)
      ++counts[box[x] ^ box[x ^ difference]];
    EXPECT_EQ(*std::max_element(counts.begin(), counts.end()), 4);
  }
}

/// Flips each bit of key or block in turn and counts which bits of the result change.
void expect_avalanche(const BCIPHER_ALGORITHM &cipher, bool of_key) {
  constexpr int kTrials = 400;
  std::mt19937 numbers(7);
  const auto random = [&numbers] {
    Bytes bytes(16);
    for (std::uint8_t &byte : bytes)
      byte = static_cast<std::uint8_t>(numbers());
    return bytes;
  };
  for (std::size_t flipped = 0; flipped < 128; ++flipped) {
    std::array<int, 128> changes{};
    int total = 0;
    for (int trial = 0; trial < kTrials; ++trial) {
      Bytes key = random(), block = random();
      const Bytes before = encrypted(cipher, key, block);
      (of_key ? key : block)[flipped / 8] ^= static_cast<std::uint8_t>(1 << flipped % 8);
      const Bytes after = encrypted(cipher, key, block);
      for (std::size_t bit = 0; bit < 128; ++bit)
        changes[bit] += (before[bit / 8] ^ after[bit / 8]) >> bit % 8 & 1;
    }
    for (const int count : changes) {
      total += count;
      EXPECT_NEAR(count, kTrials / 2, 60) << "six standard deviations; flipped bit " << flipped;
    }
    EXPECT_NEAR(total, 64 * kTrials, 700) << "flipped bit " << flipped;
  }
}

TEST(Tavo, EveryBitOfTheBlockReachesEveryBit) { expect_avalanche(tavo, false); }
TEST(Tavo, EveryBitOfTheKeyReachesEveryBit) { expect_avalanche(tavo, true); }
TEST(Tavoold, EveryBitOfTheBlockReachesEveryBit) { expect_avalanche(tavoold, false); }
TEST(Tavoold, EveryBitOfTheKeyReachesEveryBit) { expect_avalanche(tavoold, true); }

// The two are different ciphers, and schedules of neighbouring keys have no word in common.
TEST(Tavo, SchedulesShareNothing) {
  const Bytes key(16, 0x5a);
  Bytes neighbour = key;
  neighbour[15] ^= 1;
  std::array<Bytes, 3> schedules;
  schedules.fill(Bytes(256));
  TAVO_MakeRoundKey(schedules[0].data(), key.data(), 16);
  TAVO_MakeRoundKey(schedules[1].data(), neighbour.data(), 0);
  TAVOOLD_MakeRoundKey(schedules[2].data(), key.data(), 16);
  for (std::size_t i = 0; i < 256; i += 4)
    for (const auto &[a, b] : {std::pair{0, 1}, std::pair{0, 2}}) {
      const auto word = [&schedules, i](int which) {
        const Bytes &bytes = schedules[static_cast<std::size_t>(which)];
        return to_hex({bytes.begin() + static_cast<std::ptrdiff_t>(i),
                       bytes.begin() + static_cast<std::ptrdiff_t>(i + 4)});
      };
      EXPECT_NE(word(a), word(b)) << i;
    }
}

}  // namespace
}  // namespace zel::test
