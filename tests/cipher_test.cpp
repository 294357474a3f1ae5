// Every block cipher against published vectors, and the catalogue of descriptors. Each file of
// vectors runs again with every processor feature masked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "base/cpu.hpp"
#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"

namespace zel::test {
namespace {

TEST(Catalogue, SizesAreThoseOfTheTable) {
  for (const CipherRow &row : kCiphers) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.descriptor->block_len, row.block_len);
    EXPECT_EQ(row.descriptor->round_keys_len, row.round_keys_len);
    const bool own_padding = row.descriptor == &tavoold;
    EXPECT_EQ(row.descriptor->AddPadding, own_padding ? &TAVOOLD_AddPadding : nullptr);
    EXPECT_EQ(row.descriptor->RemovePadding, own_padding ? &TAVOOLD_RemovePadding : nullptr);
  }
}

// A schedule must fill its buffer and nothing beyond it, wherever the buffer lies; and a block
// under a misaligned schedule must come out as under an aligned one.
TEST(Catalogue, SchedulesFillTheirLengthAtAnyAddress) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const CipherRow &row : kCiphers) {
      SCOPED_TRACE(set.name + ' ' + row.name);
      if (!row.computes()) continue;
      Bytes key(row.key_len);
      for (std::size_t i = 0; i < key.size(); ++i)
        key[i] = static_cast<std::uint8_t>(17 * i + 3);
      Bytes first_keys, first_block;
      for (std::size_t offset = 0; offset < 4; ++offset) {
        const auto filler = static_cast<std::uint8_t>(0xa5 + offset);
        Bytes room(offset + row.round_keys_len + 16, filler);
        EXPECT_EQ(row.descriptor->MakeRoundKey(room.data() + offset, key.data(), row.key_len), 0);
        const auto keys = room.begin() + static_cast<std::ptrdiff_t>(offset);
        EXPECT_EQ(Bytes(room.begin(), keys), Bytes(offset, filler));
        EXPECT_EQ(Bytes(keys + row.round_keys_len, room.end()), Bytes(16, filler));
        Bytes block(offset + row.block_len, 0x5a);
        row.descriptor->EncryptBlock(&block[offset], &*keys);
        block.erase(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(offset));
        if (offset == 0) {
          first_keys.assign(keys, keys + row.round_keys_len);
          first_block = block;
        }
        EXPECT_EQ(Bytes(keys, keys + row.round_keys_len), first_keys) << "some of it is not filled";
        EXPECT_EQ(block, first_block);
      }
    }
  }
}

/// The product in the field of FIPS 197, section 4.2.
std::uint8_t product(unsigned x, unsigned y) {
  unsigned sum = 0;
  for (; y != 0; y >>= 1, x = x << 1 ^ (x >> 7) * 0x11b)
    if ((y & 1) != 0) sum ^= x;
  return static_cast<std::uint8_t>(sum);
}

// FIPS 197, section 5.3.5: the second half holds the first half with InvMixColumns applied to all
// but the first and the last round key. The first half begins with the key; the word behind it is
// that of appendices A.1 and A.3.
TEST(Catalogue, AesSchedulesHoldWordsAsBytes) {
  const struct {
    const BCIPHER_ALGORITHM *cipher;
    std::string key, next;
  } rows[] = {{&rijndael, "2b7e151628aed2a6abf7158809cf4f3c", "a0fafe17"},
              {&rijndael256, "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4",
               "9ba35411"}};
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const auto &[cipher, key, next] : rows) {
      Bytes schedule(cipher->round_keys_len);
      cipher->MakeRoundKey(schedule.data(), from_hex(key).data(), 0);
      EXPECT_EQ(to_hex(schedule).substr(0, key.size() + 8), key + next);
      const std::size_t half = schedule.size() / 2;
      Bytes expected = schedule;
      std::copy_n(expected.begin(), half, expected.begin() + static_cast<std::ptrdiff_t>(half));
      for (std::size_t i = 16; i < half - 16; ++i) {
        const std::uint8_t *const column = &schedule[i / 4 * 4];
        expected[half + i] = static_cast<std::uint8_t>(
            product(column[i % 4], 14) ^ product(column[(i + 1) % 4], 11) ^
            product(column[(i + 2) % 4], 13) ^ product(column[(i + 3) % 4], 9));
      }
      EXPECT_EQ(to_hex(schedule), to_hex(expected));
    }
  }
}

const BCIPHER_ALGORITHM &descriptor_of(const Vector &vector) {
  const std::size_t key_len = vector.bytes("key").size();
  const std::string &alg = vector.word("alg");
  if (alg == "aria") return key_len == 16 ? aria : key_len == 24 ? aria192 : aria256;
  if (alg == "aes") return key_len == 16 ? rijndael : rijndael256;
  const std::map<std::string, const BCIPHER_ALGORITHM *> others = {
      {"seed", &seed},       {"des", &des},   {"tdes", &tdes}, {"blowfish", &blowfish},
      {"cast128", &cast128}, {"idea", &idea}, {"rc2", &rc2},   {"rc5", &rc5}};
  return *others.at(alg);
}

/// A key object, filled by the cipher's own key schedule where BCIPHER_MakeKey does not take it.
Key key_of(const Vector &vector, const BCIPHER_ALGORITHM &descriptor) {
  const Bytes bytes = vector.bytes("key");
  auto len = static_cast<std::uint32_t>(bytes.size());
  const long effective = vector.number_or("effective_bits", 0);
  if (effective != 0) len |= static_cast<std::uint32_t>(effective) << 16;
  Key key = new_key(descriptor);
  if (bytes.size() > ZEL_MAX_KEY_LEN) {
    EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), len, &descriptor), ZEL_ERR_GENERIC);
    EXPECT_EQ(key->key_len, 0U) << "a refused key must leave the object as it was";
    descriptor.MakeRoundKey(key->round_keys, bytes.data(), len);
  } else {
    EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), len, &descriptor), ZEL_OK);
  }
  return key;
}

std::uint8_t mode_of(const std::string &word) {
  const std::map<std::string, int> modes = {
      {"ecb", ZEL_MODE_ECB}, {"cbc", ZEL_MODE_CBC},   {"cbc_pkcs", ZEL_MODE_CBC},
      {"cfb", ZEL_MODE_CFB}, {"cfb8", ZEL_MODE_CFB8}, {"cfb1", ZEL_MODE_CFB1},
      {"ofb", ZEL_MODE_OFB}, {"ctr", ZEL_MODE_CTR},   {"cts", ZEL_MODE_CBC_CTS}};
  return static_cast<std::uint8_t>(modes.at(word));
}

/// Keeps the first `bits` bits.
Bytes cut_to_bits(Bytes bytes, std::size_t bits) {
  bytes.resize((bits + 7) / 8);
  if (bits % 8 != 0) bytes.back() &= static_cast<std::uint8_t>(0xff00 >> bits % 8);
  return bytes;
}

class Vectors : public ::testing::TestWithParam<const char *> {
 protected:
  /// Runs `check` over the file for every set of processor features.
  template <class Check>
  void run(Check check) {
    for (const FeatureSet &set : feature_sets()) {
      const FeatureMask mask(set.mask);
      for (const Vector &vector : read_vectors(GetParam())) {
        SCOPED_TRACE(vector.place + " on " + set.name);
        const BCIPHER_ALGORITHM &descriptor = descriptor_of(vector);
        const Key key = key_of(vector, descriptor);
        const Bytes iv = vector.has("iv") ? vector.bytes("iv") : Bytes{};
        check(vector, key.get(), start(mode_of(vector.word("mode")), descriptor, iv));
      }
    }
  }
};

class Modes : public Vectors {};

TEST_P(Modes, BothWays) {
  run([](const Vector &vector, const BCIPHER_KEY *key, const BCIPHER_CONTEXT &fresh) {
    const Bytes plain = vector.bytes("pt");
    const Bytes cipher = vector.bytes("ct");
    const auto bits =
        static_cast<std::size_t>(vector.number_or("nbits", static_cast<long>(8 * plain.size())));
    for (const bool in_place : {false, true}) {
      BCIPHER_CONTEXT context = fresh;
      const Result there = operate(false, context, key, plain, false, in_place);
      EXPECT_EQ(there.code, ZEL_OK);
      EXPECT_EQ(to_hex(cut_to_bits(there.data, bits)), to_hex(cut_to_bits(cipher, bits)));
      context = fresh;
      const Result back = operate(true, context, key, cipher, false, in_place);
      EXPECT_EQ(back.code, ZEL_OK);
      EXPECT_EQ(to_hex(cut_to_bits(back.data, bits)), to_hex(cut_to_bits(plain, bits)));
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Published, Modes,
                         ::testing::Values("cipher_aes", "cipher_aria", "cipher_blowfish",
                                           "cipher_cast128", "cipher_des", "cipher_idea",
                                           "cipher_rc2", "cipher_rc5", "cipher_seed",
                                           "cipher_tdes"),
                         [](const auto &row) { return std::string(row.param); });

class Padded : public Vectors {};

// The last byte alone decides, so some messages that the standard refuses are taken here.
TEST_P(Padded, FinalCbcCalls) {
  run([](const Vector &vector, const BCIPHER_KEY *key, const BCIPHER_CONTEXT &fresh) {
    const Bytes cipher = vector.bytes("ct");
    const bool standard = vector.word("result") == "valid";
    BCIPHER_CONTEXT context = fresh;
    const Result back = operate(true, context, key, cipher, true);
    if (!standard && !vector.has("product")) {
      EXPECT_EQ(back.code, cipher.size() % 16 == 0 ? ZEL_ERR_PADDING : ZEL_ERR_GENERIC);
      EXPECT_EQ(back.data.size(), cipher.size());
      return;
    }
    EXPECT_EQ(back.code, ZEL_OK);
    EXPECT_EQ(to_hex(back.data), vector.word(standard ? "pt" : "product_pt"));
    if (!standard) return;
    context = fresh;
    const Result there = operate(false, context, key, vector.bytes("pt"), true);
    EXPECT_EQ(there.code, ZEL_OK);
    EXPECT_EQ(to_hex(there.data), to_hex(cipher));
  });
}

INSTANTIATE_TEST_SUITE_P(Published, Padded,
                         ::testing::Values("cipher_aes_pkcs", "cipher_aes_pkcs_standard",
                                           "cipher_aria_pkcs", "cipher_aria_pkcs_standard"),
                         [](const auto &row) { return std::string(row.param); });

class MonteCarlo : public Vectors {};

// AESAVS and SP 800-20: the next plaintext of CBC is the ciphertext before the last one.
TEST_P(MonteCarlo, LastCiphertext) {
  run([](const Vector &vector, const BCIPHER_KEY *key, BCIPHER_CONTEXT context) {
    const int steps = vector.word("alg") == "aes" ? 1000 : 10000;
    const bool ecb = vector.word("mode") == "ecb";
    Bytes next = vector.bytes("pt");
    Bytes before = ecb ? Bytes{} : vector.bytes("iv");
    for (int i = 0; i < steps; ++i) {
      const Bytes cipher = operate(false, context, key, next).data;
      next = ecb ? cipher : before;
      before = cipher;
    }
    EXPECT_EQ(to_hex(before), vector.word("ct"));
  });
}

INSTANTIATE_TEST_SUITE_P(Published, MonteCarlo, ::testing::Values("mct_aes", "mct_tdes"),
                         [](const auto &row) { return std::string(row.param); });

// RFC 2144, appendix B.2: a million rounds of encryption under each other's result.
TEST(Cast128, FullMaintenanceTest) {
  Bytes a = from_hex("0123456712345678234567893456789a");
  Bytes b = a;
  Bytes schedule(cast128.round_keys_len);
  const auto encipher = [&schedule](Bytes &data, const Bytes &key) {
    CAST128_MakeRoundKey(schedule.data(), key.data(), 16);
    CAST128_EncryptBlock(data.data(), schedule.data());
    CAST128_EncryptBlock(data.data() + 8, schedule.data());
  };
  for (int i = 0; i < 1000000; ++i) {
    encipher(a, b);
    encipher(b, a);
  }
  EXPECT_EQ(to_hex(a), "eea9d0a249fd3ba6b3436fb89d6dca92");
  EXPECT_EQ(to_hex(b), "b2c95eb00c31ad7180ac05b8e83d696e");
}

// Deliberate: a key of neither 16 nor 24 bytes is the key of 24 zero bytes.
TEST(Tdes, OtherKeyLengthsMeanZeroBytes) {
  const Bytes key(32, 0x77);
  Bytes zero(384), two(384), other(384);
  TDES_MakeRoundKey(zero.data(), Bytes(24).data(), 24);
  for (const std::uint32_t len : {0U, 8U, 15U, 17U, 23U, 25U, 32U}) {
    TDES_MakeRoundKey(other.data(), key.data(), len);
    EXPECT_EQ(other, zero) << len;
  }
  Bytes three = from_hex("0123456789abcdef23456789abcdef01");
  TDES_MakeRoundKey(two.data(), three.data(), 16);
  three.insert(three.end(), three.begin(), three.begin() + 8);
  TDES_MakeRoundKey(other.data(), three.data(), 24);
  EXPECT_EQ(other, two) << "two keys are K1, K2, K1";
}

// The instruction descriptors are either empty, with a processor test that says no, or AES.
TEST(Aesni, ComputesOnlyWhenTheProcessorTestSaysSo) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    const bool there = ZEL_WITH_AESNI && cpu::has(cpu::Feature::kAesni);
    EXPECT_EQ(Check_CPU_support_AES(), there ? 1 : 0);
    const Bytes key(32, 0x42);
    Bytes schedule(480, 0xa5), same(480), block(16, 0x11), expected(16, 0x11);
    EXPECT_EQ(RIJNDAEL256_MakeRoundKey_AESNI(schedule.data(), key.data(), 32),
              there ? ZEL_OK : ZEL_ERR_GENERIC);
    RIJNDAEL256_EncryptBlock_AESNI(block.data(), schedule.data());
    if (there) {
      RIJNDAEL256_MakeRoundKey(same.data(), key.data(), 32);
      RIJNDAEL256_EncryptBlock(expected.data(), same.data());
    } else {
      same.assign(480, 0xa5);
    }
    EXPECT_EQ(schedule, same);
    EXPECT_EQ(block, expected);
    RIJNDAEL256_DecryptBlock_AESNI(block.data(), schedule.data());
    EXPECT_EQ(block, Bytes(16, 0x11));
  }
}

}  // namespace
}  // namespace zel::test
