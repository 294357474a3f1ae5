// The hash framework and the nine algorithms behind it.
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <cstring>
#include <random>
#include <utility>

#include "tests/support/features.hpp"
#include "tests/support/hashes.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

class EveryAlgorithm : public ::testing::TestWithParam<HashRow> {
 protected:
  const HASH_ALGORITHM *descriptor() const { return GetParam().descriptor; }
  ~EveryAlgorithm() override { KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED); }
};
INSTANTIATE_TEST_SUITE_P(Catalogue, EveryAlgorithm, ::testing::ValuesIn(kHashes),
                         [](const auto &row) { return std::string(row.param.name); });

// The Monte Carlo test of the SHA validation system: a thousand digests, each of the last three.
Bytes monte_carlo(const HASH_ALGORITHM *descriptor, const Bytes &seed) {
  Bytes a = seed, b = seed, c = seed;
  for (int i = 0; i < 1000; ++i)
    a = std::exchange(b, std::exchange(c, hash(descriptor, joined(joined(a, b), c))));
  return c;
}

// Every code path that a processor may have must give the published digests.
TEST_P(EveryAlgorithm, GivesThePublishedDigests) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    for (const Vector &v : read_vectors(std::string("hash_") + GetParam().name)) {
      const Bytes digest = v.has("test")
                               ? monte_carlo(descriptor(), v.bytes("seed"))
                               : hash(descriptor(), v.bytes("msg"), v.number_or("repeat", 1));
      EXPECT_EQ(to_hex(digest), v.word("digest")) << v.place;
    }
  }
}

// The framework as it is defined, one byte after the other and everything through the buffer. Its
// record must agree with the library's in every byte, also in those that nobody should have
// touched.
template <class Area>
class Model {
 public:
  explicit Model(const HASH_ALGORITHM *algorithm) : algorithm_(algorithm) {
    std::memset(&area, 0xa5, sizeof area);
    algorithm->Initialize(area.state);
    std::memset(area.buffer, 0, 128);
    area.count_low = area.count_high = 0;
  }

  void update(const uint8_t *data, std::size_t len) {
    for (const uint8_t *end = data + len; data != end; ++data) {
      area.buffer[area.count_low % kBlock] = *data;
      if (++area.count_low == 0) ++area.count_high;
      if (area.count_low % kBlock == 0) algorithm_->CompressBlock(area.state, area.buffer);
    }
  }

  Bytes digest() const {
    constexpr std::size_t kLengthAt = kBlock - kBlock / 8;
    Area last = area;
    std::size_t pos = last.count_low % kBlock;
    last.buffer[pos] = 0x80;
    if (pos >= kLengthAt) {
      while (++pos < kBlock)
        last.buffer[pos] = 0;
      algorithm_->CompressBlock(last.state, last.buffer);
      std::memset(last.buffer, 0, kLengthAt);
    } else {
      while (++pos < kLengthAt)
        last.buffer[pos] = 0;
    }
    using Word = decltype(last.count_low);
    const Word bits[4] = {last.count_low << 3, (last.count_high << 3) | (last.count_low >> 29)};
    algorithm_->PadLength(last.buffer, bits);
    algorithm_->CompressBlock(last.state, last.buffer);
    Bytes out(algorithm_->digest_len);
    algorithm_->DumpDigest(out.data(), last.state);
    return out;
  }

  Area area;

 private:
  static constexpr std::size_t kBlock = 16 * sizeof(area.count_low);
  const HASH_ALGORITHM *algorithm_;
};

// Pieces of every size around the block, each at another place in its block: state, buffer and
// counters after each piece, and the digest there, as if nothing more came. Finalising changes
// nothing: the same record goes on.
template <class Area>
void compare_with_model(const HASH_ALGORITHM *algorithm, Area HASH_CONTEXT::*member) {
  HASH_CONTEXT untouched;
  std::memset(&untouched, 0xa5, sizeof untouched);
  HASH_CONTEXT context = untouched;
  Model<Area> model(algorithm);
  ASSERT_EQ(HASH_Initialize(&context, algorithm), ZEL_OK);
  std::mt19937 random(1);
  const Bytes data = noise(700);
  for (int i = 0; i < 600; ++i) {
    const std::size_t len = random() % (i % 10 == 0 ? 700 : 140);
    HASH_Update_KZEL(&context, data.data(), static_cast<uint32_t>(len));
    model.update(data.data(), len);
    ASSERT_EQ(std::memcmp(&(context.*member), &model.area, sizeof model.area), 0) << "piece " << i;
    ASSERT_EQ(to_hex(digest_of(context)), to_hex(model.digest())) << "piece " << i;
  }
  context.*member = untouched.*member;
  context.descriptor = untouched.descriptor;
  EXPECT_EQ(std::memcmp(&context, &untouched, sizeof context), 0) << "the other area was touched";
}

TEST_P(EveryAlgorithm, LeavesTheRecordThatTheBufferingDescribes) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    if (GetParam().block == 128) compare_with_model(descriptor(), &HASH_CONTEXT::area64);
    if (GetParam().block == 64) compare_with_model(descriptor(), &HASH_CONTEXT::area32);
  }
}

// Every place of the end in its block, on every code path, against someone else's program; for
// MD2 and HAS-160, which OpenSSL lacks, against the digest of single bytes.
TEST_P(EveryAlgorithm, PadsEveryLengthAsOthersDo) {
  const EVP_MD *const md = EVP_get_digestbyname(GetParam().openssl);
  ASSERT_EQ(md == nullptr, GetParam().openssl[0] == '\0');
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    for (std::size_t len = 0; len <= 260; ++len) {
      const Bytes message = noise(len);
      Bytes expected(GetParam().descriptor->digest_len);
      if (md != nullptr) {
        ASSERT_EQ(EVP_Digest(message.data(), len, expected.data(), nullptr, md, nullptr), 1);
      } else {
        HASH_CONTEXT context;
        HASH_Initialize(&context, descriptor());
        for (const uint8_t &byte : message)
          HASH_Update(&context, &byte, 1);
        expected = digest_of(context);
      }
      ASSERT_EQ(to_hex(hash(descriptor(), message)), to_hex(expected)) << len << " bytes";
    }
  }
}

// Where the caller cuts a message cannot matter, nor under which name it is given, nor at which
// alignment, nor what was asked in between.
TEST_P(EveryAlgorithm, DoesNotSeeTheCuts) {
  const Bytes message = noise(5000);
  const std::string whole = to_hex(hash(descriptor(), message));
  std::mt19937 random(2);
  for (int round = 0; round < 40; ++round) {
    HASH_CONTEXT context;
    ASSERT_EQ(HASH_InitializeEx(&context, descriptor()), ZEL_OK);
    std::size_t at = 0;
    const std::size_t longest = std::size_t{1} << (1 + random() % 12);
    while (at < message.size()) {
      const std::size_t len = std::min<std::size_t>(random() % longest, message.size() - at);
      const auto update =
          std::array{HASH_Update_KZEL, HASH_Update, HASH_Update_clone}[random() % 3];
      update(&context, message.data() + at, static_cast<uint32_t>(len));
      at += len;
      if (random() % 8 == 0) digest_of(context);
    }
    EXPECT_EQ(to_hex(digest_of(context)), whole);
    EXPECT_EQ(to_hex(digest_of(context)), whole) << "finalised twice";
  }
}

// The digest routine stops after the digest, and a finalisation says how much it wrote.
TEST_P(EveryAlgorithm, WritesTheDigestAndNoMore) {
  HASH_CONTEXT context;
  HASH_Initialize(&context, descriptor());
  Bytes out(ZEL_MAX_DIGEST_LEN + 1, 0xee);
  uint32_t len = 0;
  HASH_Finalize(out.data(), &len, &context);
  EXPECT_EQ(len, descriptor()->digest_len);
  EXPECT_EQ(Bytes(out.begin() + len, out.end()), Bytes(out.size() - len, 0xee));
}

TEST_P(EveryAlgorithm, DoesNothingWhenTheModuleDoesNotServe) {
  for (const int32_t state : {-1, 0, 5}) {
    HASH_CONTEXT context;
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
    ASSERT_EQ(HASH_Initialize(&context, descriptor()), ZEL_OK);
    HASH_CONTEXT before = context;
    KZEL_CC_SetState(state);
    EXPECT_EQ(HASH_Initialize(&context, descriptor()), state);
    EXPECT_EQ(HASH_InitializeEx(&context, descriptor()), ZEL_ERR_STATE);
    HASH_Update(&context, noise(300).data(), 300);
    EXPECT_EQ(std::memcmp(&context, &before, sizeof before), 0);
    Bytes out(ZEL_MAX_DIGEST_LEN, 0xee);
    uint32_t len = 7;
    HASH_Finalize(out.data(), &len, &context);
    EXPECT_EQ(len, 0U);
    EXPECT_EQ(out, Bytes(out.size(), 0xee));
  }
}

// In the verified service the front door is closed to all but SHA-2; behind the other door SHA-1
// and HAS-160 work as ever, and the three oldest compute nothing but are still said to have.
TEST_P(EveryAlgorithm, InTheVerifiedServiceWorksOnlyIfItMay) {
  const Bytes message = noise(1000);
  const Bytes digest = hash(descriptor(), message);
  ASSERT_EQ(KZEL_CC_SetStateVerifiedService(), ZEL_STATE_VERIFIED);
  HASH_CONTEXT context;
  std::memset(&context, 0x5a, sizeof context);
  const bool approved = GetParam().kind == HashKind::kApproved;
  EXPECT_EQ(HASH_InitializeEx(&context, descriptor()), approved ? ZEL_OK : ZEL_ERR_APPROVED);
  EXPECT_EQ(HASH_Initialize(&context, descriptor()), ZEL_OK);
  HASH_Update(&context, message.data(), 1000);

  Bytes out(descriptor()->digest_len, 0xee);
  uint32_t len = 0;
  HASH_Finalize(out.data(), &len, &context);
  EXPECT_EQ(len, descriptor()->digest_len);
  EXPECT_EQ(out, GetParam().kind == HashKind::kInert ? Bytes(len, 0xee) : digest);
  if (GetParam().kind == HashKind::kInert) {
    for (const uint32_t word : context.area32.state)
      EXPECT_EQ(word, 0x5a5a5a5aU) << "the chaining state was computed";
  }
}

// A record that a program makes for itself: the same entry points under another address. The block
// length goes with the address, so a copy of sha512 is another algorithm, with 64-byte blocks.
TEST(CallersOwnAlgorithm, CopyOfARecord) {
  const HASH_ALGORITHM copy256 = sha256;
  EXPECT_EQ(hash(&copy256, noise(1000)), hash(&sha256, noise(1000)));

  const HASH_ALGORITHM copy512 = sha512;
  HASH_CONTEXT context{};
  Model<HASH_AREA32> model(&copy512);
  HASH_Initialize(&context, &copy512);
  for (const std::size_t len : {0U, 1U, 55U, 63U, 64U, 200U, 64U}) {
    HASH_Update(&context, noise(len).data(), static_cast<uint32_t>(len));
    model.update(noise(len).data(), len);
    EXPECT_EQ(std::memcmp(&context.area32, &model.area, sizeof model.area), 0) << len;
    EXPECT_EQ(to_hex(digest_of(context)), to_hex(model.digest())) << len;
  }
  EXPECT_NE(digest_of(context), hash(&sha512, noise(447)));
  EXPECT_EQ(HASH_InitializeEx(&context, &copy512), ZEL_OK);
  KZEL_CC_SetStateVerifiedService();
  EXPECT_EQ(HASH_InitializeEx(&context, &copy512), ZEL_ERR_APPROVED);
  KZEL_CC_SetStateNotVerifiedService();
}

// An algorithm of the program's own: XOR of all blocks with a count of them, and a length field
// that it fills by half, so that the other half must be what the buffer held.
constexpr HASH_ALGORITHM kOwn = {
    .digest_len = 60,
    .Initialize = [](void *state) { std::memset(state, 0x11, 64); },
    .CompressBlock =
        [](void *state, const uint8_t *block) {
          auto *words = static_cast<uint32_t *>(state);
          for (int i = 0; i < 16; ++i) {
            uint32_t word;
            std::memcpy(&word, block + 4 * i, 4);
            words[i] = words[i] * 3 + word;
          }
        },
    .PadLength = [](uint8_t *block, const void *bits) { std::memcpy(block + 60, bits, 4); },
    .DumpDigest = [](uint8_t *out, const void *state) { std::memcpy(out, state, 60); },
};

TEST(CallersOwnAlgorithm, IsDrivenBlockByBlock) {
  compare_with_model(&kOwn, &HASH_CONTEXT::area32);
}

// Whole-message algorithms get the context and say nothing of their digest's length.
TEST(CallersOwnAlgorithm, WholeMessagesReportSixteenBytes) {
  const HASH_ALGORITHM own = {
      .digest_len = 3,
      .Initialize =
          [](void *context) { static_cast<HASH_CONTEXT *>(context)->area32.state[0] = 0; },
      .Update =
          [](void *context, const uint8_t *data, uint32_t len) {
            auto &sum = static_cast<HASH_CONTEXT *>(context)->area32.state[0];
            while (len-- != 0)
              sum += *data++;
          },
      .PadLength = nullptr,
      .DumpDigest =
          [](uint8_t *out, const void *context) {
            std::memcpy(out, static_cast<const HASH_CONTEXT *>(context)->area32.state, 4);
          },
  };
  HASH_CONTEXT context;
  HASH_Initialize(&context, &own);
  HASH_Update(&context, from_text("ab").data(), 2);
  HASH_Update(&context, from_text("c").data(), 1);
  uint32_t sum[4] = {};
  uint32_t len = 0;
  HASH_Finalize(reinterpret_cast<uint8_t *>(sum), &len, &context);
  EXPECT_EQ(sum[0], uint32_t{'a' + 'b' + 'c'});
  EXPECT_EQ(len, 16U);
}

// A context that was initialised in name only holds what the memory held; whoever uses it after the
// state has changed gets a meaningless digest, and nothing outside of the record is touched.
TEST(Md2, AnUnfilledRecordStaysInItsBounds) {
  KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  HASH_CONTEXT context;
  std::memset(&context, 0xff, sizeof context);
  ASSERT_EQ(HASH_Initialize(&context, &md2), ZEL_OK);
  KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
  const Bytes data(40, 0xa5);
  for (uint32_t len = 1; len <= data.size(); ++len)
    HASH_Update(&context, data.data(), len);
  uint8_t digest[32];
  std::memset(digest, 0xee, sizeof digest);
  uint32_t len = 0;
  HASH_Finalize(digest, &len, &context);
  EXPECT_EQ(len, 16U);
  EXPECT_LT(context.area_md2.pending_len, 16U);
  EXPECT_EQ(digest[16], 0xee);
  const auto *bytes = reinterpret_cast<const uint8_t *>(&context);
  const auto behind = sizeof context.descriptor + sizeof context.area_md2;
  for (std::size_t i = behind; i < sizeof context; ++i)
    EXPECT_EQ(bytes[i], 0xff) << i;
}

}  // namespace
