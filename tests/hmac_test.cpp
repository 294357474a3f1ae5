// HMAC over every hash.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/features.hpp"
#include "tests/support/hashes.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

class EveryHash : public ::testing::TestWithParam<HashRow> {
 protected:
  const HASH_ALGORITHM *descriptor() const { return GetParam().descriptor; }
  std::size_t key_block() const { return GetParam().block == 128 ? 128 : 64; }
  ~EveryHash() override { KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED); }
};
INSTANTIATE_TEST_SUITE_P(Catalogue, EveryHash, ::testing::ValuesIn(kHashes),
                         [](const auto &row) { return std::string(row.param.name); });

using Initialiser = decltype(HMAC_Initialize);

HMAC_CONTEXT started(Initialiser *initialise, const Bytes &key, const HASH_ALGORITHM *descriptor) {
  HMAC_CONTEXT context;
  std::memset(&context, 0xa5, sizeof context);
  EXPECT_EQ(initialise(&context, key.data(), static_cast<uint32_t>(key.size()), descriptor),
            ZEL_OK);
  return context;
}

void update(HMAC_CONTEXT &context, const Bytes &data) {
  __HMAC_Update(&context, data.data(), static_cast<uint32_t>(data.size()));
}

Bytes mac_of(const HMAC_CONTEXT &context) {
  Bytes out(ZEL_MAX_DIGEST_LEN);
  uint32_t len = 0;
  HMAC_Finalize(out.data(), &len, &context);
  out.resize(len);
  return out;
}

Bytes mac(const HASH_ALGORITHM *descriptor, const Bytes &key, const Bytes &message) {
  HMAC_CONTEXT context = started(HMAC_InitializeEx, key, descriptor);
  update(context, message);
  return mac_of(context);
}

TEST_P(EveryHash, GivesThePublishedCodes) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    for (const Vector &v : read_vectors(std::string("hmac_") + GetParam().name)) {
      const Bytes expected = v.bytes("mac");
      Bytes code = mac(descriptor(), v.bytes("key"), v.bytes("msg"));
      ASSERT_GE(code.size(), expected.size()) << v.place;
      code.resize(expected.size());
      const bool valid = !v.has("result") || v.word("result") == "valid";
      EXPECT_EQ(code == expected, valid) << v.place;
    }
  }
}

// RFC 2104, section 2, word for word, over the hash alone.
Bytes by_definition(const HASH_ALGORITHM *descriptor, std::size_t block, const Bytes &key,
                    const Bytes &message) {
  Bytes padded = key.size() > block ? hash(descriptor, key) : key;
  padded.resize(block, 0);
  Bytes inner = padded, outer = padded;
  for (uint8_t &byte : inner)
    byte ^= 0x36;
  for (uint8_t &byte : outer)
    byte ^= 0x5c;
  return hash(descriptor, joined(outer, hash(descriptor, joined(inner, message))));
}

// Keys of 0, B and B + 1 bytes and everything around them; messages that end anywhere in a block.
TEST_P(EveryHash, FollowsTheDefinitionForEveryKeyLength) {
  for (std::size_t len = 0; len <= 2 * key_block() + 2; ++len) {
    const Bytes key = noise(len);
    const Bytes message = noise(3 * len / 2 + 1);
    ASSERT_EQ(to_hex(mac(descriptor(), key, message)),
              to_hex(by_definition(descriptor(), key_block(), key, message)))
        << "key of " << len << " bytes";
  }
}

// A finalisation changes neither half, so the same context goes on; refused updates leave no trace.
TEST_P(EveryHash, ContinuesAfterAFinalisation) {
  const Bytes key = noise(20);
  HMAC_CONTEXT context = started(HMAC_Initialize, key, descriptor());
  Bytes message;
  for (std::size_t len = 0; len < 200; len += 13) {
    update(context, noise(len));
    message = joined(message, noise(len));
    const HMAC_CONTEXT before = context;
    EXPECT_EQ(mac_of(context), mac(descriptor(), key, message));
    EXPECT_EQ(mac_of(context), mac(descriptor(), key, message)) << "finalised twice";
    update(context, {});
    KZEL_CC_SetState(0);
    update(context, noise(50));
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
    EXPECT_EQ(std::memcmp(&context, &before, sizeof context), 0);
  }
}

TEST_P(EveryHash, TouchesNothingWhenTheModuleDoesNotServe) {
  HMAC_CONTEXT context = started(HMAC_Initialize, noise(20), descriptor());
  const HMAC_CONTEXT before = context;
  for (const int32_t state : {-1, 0, 5}) {
    KZEL_CC_SetState(state);
    EXPECT_EQ(HMAC_Initialize(&context, noise(9).data(), 9, descriptor()), state);
    EXPECT_EQ(HMAC_InitializeEx(&context, noise(9).data(), 9, descriptor()), ZEL_ERR_STATE);
    Bytes out(ZEL_MAX_DIGEST_LEN, 0xee);
    uint32_t len = 77;
    HMAC_Finalize(out.data(), &len, &context);
    EXPECT_EQ(len, 77U) << "a refusal leaves the length too";
    EXPECT_EQ(out, Bytes(out.size(), 0xee));
  }
  EXPECT_EQ(std::memcmp(&context, &before, sizeof context), 0);
}

// The strict initialiser refuses what is not approved and touches nothing; the other one lets
// SHA-1 and HAS-160 work, on which the integrity test relies, and inert hashes give no code.
TEST_P(EveryHash, InTheVerifiedServiceAsksTheRightDoor) {
  const Bytes key = noise(150);
  const Bytes message = noise(500);
  const Bytes code = mac(descriptor(), key, message);
  ASSERT_EQ(KZEL_CC_SetStateVerifiedService(), ZEL_STATE_VERIFIED);

  HMAC_CONTEXT context;
  std::memset(&context, 0x77, sizeof context);
  const HMAC_CONTEXT before = context;
  const bool approved = GetParam().kind == HashKind::kApproved;
  EXPECT_EQ(HMAC_InitializeEx(&context, key.data(), 150, descriptor()),
            approved ? ZEL_OK : ZEL_ERR_APPROVED);
  EXPECT_EQ(std::memcmp(&context, &before, sizeof context) == 0, !approved);

  context = started(HMAC_Initialize, key, descriptor());
  update(context, message);
  Bytes out(descriptor()->digest_len, 0xee);
  uint32_t len = 0;
  HMAC_Finalize(out.data(), &len, &context);
  EXPECT_EQ(len, descriptor()->digest_len);
  EXPECT_EQ(out, GetParam().kind == HashKind::kInert ? Bytes(len, 0xee) : code);
}

}  // namespace
