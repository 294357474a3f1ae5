// The many-block routines of the ciphers with blocks of 16 bytes against their block function:
// counters that wrap at every width, chains cut anywhere, buffers that are not aligned.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "cipher/bulk.hpp"
#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"

namespace zel::test {
namespace {

constexpr std::size_t kLen = 16;
/// Three times the widest step, and some more.
constexpr std::size_t kMost = 3 * 64 + 3;

class WideCipher : public ::testing::TestWithParam<CipherRow> {
 protected:
  const BCIPHER_ALGORITHM &descriptor_ = *GetParam().descriptor;
  std::mt19937 numbers_{20261121};
  Bytes text_ = random_bytes(kMost * kLen);
  Key key_ = load_key(descriptor_, random_bytes(GetParam().key_len));

  Bytes random_bytes(std::size_t len) {
    Bytes bytes(len);
    for (std::uint8_t &byte : bytes)
      byte = static_cast<std::uint8_t>(numbers_());
    return bytes;
  }

  /// Calls work(out, in) with buffers that have no alignment, and with one for both.
  template <class Work>
  std::pair<Bytes, Bytes> apart_and_in_place(std::size_t count, Work work) {
    const std::size_t len = count * kLen, at = 1 + count % 31;
    Bytes out(len + 64, 0x5a), both = out;
    std::copy_n(text_.data(), len, both.data() + at);
    work(out.data() + at, static_cast<const std::uint8_t *>(text_.data()));
    work(both.data() + at, static_cast<const std::uint8_t *>(both.data() + at));
    EXPECT_EQ(out[at - 1] & out[at + len], 0x5a) << "written outside";
    EXPECT_EQ(both[at - 1] & both[at + len], 0x5a) << "written outside";
    const auto part = [&](Bytes &from) {
      return Bytes(from.begin() + static_cast<std::ptrdiff_t>(at),
                   from.begin() + static_cast<std::ptrdiff_t>(at + len));
    };
    return {part(out), part(both)};
  }
};

// Every number of blocks, from counters whose last 1, 2, 4, 8 and 16 bytes wrap at every place of
// a step. The counters behind the message must be right too.
TEST_P(WideCipher, CountersOfEveryLengthWrapAtEveryWidth) {
  for (const std::size_t wrapping : {0, 1, 2, 4, 8, 16}) {
    std::array<std::uint8_t, kLen> begin;
    begin.fill(0x37);
    std::fill(begin.end() - static_cast<std::ptrdiff_t>(wrapping), begin.end(), 0xff);
    for (std::size_t count = 0; count <= kMost; ++count) {
      if (wrapping != 0) begin[15] = static_cast<std::uint8_t>(0x100 - (count * 7 % 100 + 1));
      Bytes expected(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(count * kLen));
      auto end = begin;
      for (std::size_t i = 0; i < count; ++i) {
        auto block = end;
        descriptor_.EncryptBlock(block.data(), key_->round_keys);
        for (std::size_t j = 0; j < kLen; ++j)
          expected[i * kLen + j] ^= block[j];
        bulk::increment(end.data(), kLen);
      }
      for (const FeatureSet &set : feature_sets()) {
        SCOPED_TRACE(set.name + ", " + std::to_string(count) + " blocks, " +
                     std::to_string(wrapping) + " bytes wrap");
        const FeatureMask mask(set.mask);
        const bulk::Cipher cipher(*key_);
        const auto [out, both] = apart_and_in_place(count, [&](auto *to, const auto *from) {
          auto counter = begin;
          cipher.ctr(to, from, count, counter.data());
          EXPECT_EQ(counter, end);
        });
        ASSERT_EQ(out, expected);
        ASSERT_EQ(both, expected);
      }
    }
  }
}

// Decryption that chains, cut in two anywhere: the register carries over.
TEST_P(WideCipher, ChainsAreDecipheredFromEveryLength) {
  const Bytes iv = random_bytes(kLen);
  Bytes cbc(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(kMost * kLen)), cfb = cbc;
  for (std::size_t i = 0; i < kMost; ++i) {
    const std::uint8_t *const before = i == 0 ? iv.data() : text_.data() + (i - 1) * kLen;
    std::array<std::uint8_t, kLen> stream;
    std::copy_n(before, kLen, stream.data());
    descriptor_.EncryptBlock(stream.data(), key_->round_keys);
    descriptor_.DecryptBlock(&cbc[i * kLen], key_->round_keys);
    for (std::size_t j = 0; j < kLen; ++j) {
      cbc[i * kLen + j] ^= before[j];
      cfb[i * kLen + j] ^= stream[j];
    }
  }
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    const bulk::Cipher cipher(*key_);
    for (std::size_t cut = 0; cut <= kMost; ++cut) {
      SCOPED_TRACE(set.name + ", cut at " + std::to_string(cut));
      const auto compare = [&](auto decrypt, const Bytes &expected) {
        const auto [out, both] = apart_and_in_place(kMost, [&](auto *to, const auto *from) {
          Bytes chain = iv;
          if (cut > 0) (cipher.*decrypt)(to, from, cut, chain.data());
          if (cut == kMost) return;
          (cipher.*decrypt)(to + cut * kLen, from + cut * kLen, kMost - cut, chain.data());
        });
        ASSERT_EQ(out, expected);
        ASSERT_EQ(both, expected);
      };
      ASSERT_NO_FATAL_FAILURE(compare(&bulk::Cipher::cbc_decrypt, cbc));
      ASSERT_NO_FATAL_FAILURE(compare(&bulk::Cipher::cfb_decrypt, cfb));
    }
  }
}

// Counter mode and the MAC of either side in one pass.
TEST_P(WideCipher, CounterModeBesideAMacIsBoth) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    const bulk::Cipher cipher(*key_);
    for (const auto what : {bulk::MacOf::kInput, bulk::MacOf::kOutput}) {
      for (std::size_t count = 0; count < 10; ++count) {
        SCOPED_TRACE(set.name + ", " + std::to_string(count) + " blocks");
        Bytes counter(kLen, 0xff), mac(kLen, 0x44), counter_after = counter, mac_after = mac;
        counter.back() = counter_after.back() = 0xfa;
        Bytes expected(count * kLen);
        cipher.ctr(expected.data(), text_.data(), count, counter_after.data());
        cipher.serial(bulk::Chain::kCbcMac, nullptr,
                      what == bulk::MacOf::kInput ? text_.data() : expected.data(), count,
                      mac_after.data());
        const auto [out, both] = apart_and_in_place(count, [&](auto *to, const auto *from) {
          Bytes at = counter, sum = mac;
          cipher.counter_mac(what, to, from, count, at.data(), sum.data());
          EXPECT_EQ(at, counter_after);
          EXPECT_EQ(sum, mac_after);
        });
        ASSERT_EQ(out, expected);
        ASSERT_EQ(both, expected);
      }
    }
  }
}

std::vector<CipherRow> wide_ciphers() {
  std::vector<CipherRow> rows;
  for (const CipherRow &row : kCiphers)
    if (row.block_len == kLen && row.computes() && row.descriptor != &tavo &&
        row.descriptor != &tavoold)
      rows.push_back(row);
  return rows;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, WideCipher, ::testing::ValuesIn(wide_ciphers()),
                         [](const auto &one) { return std::string(one.param.name); });

}  // namespace
}  // namespace zel::test
