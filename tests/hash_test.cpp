// The hash framework and the nine algorithms behind it.
#include <gtest/gtest.h>

#include <utility>

#include "tests/support/features.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

struct Algorithm {
  const char *name;
  const HASH_ALGORITHM *descriptor;
  std::size_t block;
};

constexpr Algorithm kAlgorithms[] = {
    {"sha1", &popsha1, 64},   {"sha224", &sha224, 64},       {"sha256", &sha256, 64},
    {"sha384", &sha384, 128}, {"sha512", &sha512, 128},      {"has160", &pophas160, 64},
    {"md5", &popmd5, 64},     {"ripemd160", &ripemd160, 64}, {"md2", &md2, 16},
};

Bytes digest_of(const HASH_CONTEXT &context) {
  Bytes out(ZEL_MAX_DIGEST_LEN);
  uint32_t len = 99;
  HASH_Finalize(out.data(), &len, &context);
  EXPECT_EQ(len, context.descriptor->digest_len);
  out.resize(len);
  return out;
}

Bytes hash(const HASH_ALGORITHM *descriptor, const Bytes &message, long repeat = 1) {
  HASH_CONTEXT context;
  EXPECT_EQ(HASH_Initialize(&context, descriptor), ZEL_OK);
  for (long i = 0; i < repeat; ++i)
    HASH_Update_KZEL(&context, message.data(), static_cast<uint32_t>(message.size()));
  return digest_of(context);
}

class EveryAlgorithm : public ::testing::TestWithParam<Algorithm> {};
INSTANTIATE_TEST_SUITE_P(Catalogue, EveryAlgorithm, ::testing::ValuesIn(kAlgorithms),
                         [](const auto &row) { return std::string(row.param.name); });

// The Monte Carlo test of the SHA validation system: a thousand digests, each of the last three.
Bytes monte_carlo(const HASH_ALGORITHM *descriptor, const Bytes &seed) {
  Bytes a = seed, b = seed, c = seed;
  for (int i = 0; i < 1000; ++i) {
    Bytes message = a;
    message.insert(message.end(), b.begin(), b.end());
    message.insert(message.end(), c.begin(), c.end());
    a = std::exchange(b, std::exchange(c, hash(descriptor, message)));
  }
  return c;
}

// Every code path that a processor may have must give the published digests.
TEST_P(EveryAlgorithm, GivesThePublishedDigests) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    SCOPED_TRACE(set.name);
    for (const Vector &v : read_vectors(std::string("hash_") + GetParam().name)) {
      const bool chained = v.has("test");
      const Bytes digest =
          chained ? monte_carlo(GetParam().descriptor, v.bytes("seed"))
                  : hash(GetParam().descriptor, v.bytes("msg"), v.number_or("repeat", 1));
      EXPECT_EQ(to_hex(digest), v.word("digest")) << v.place;
    }
  }
}

}  // namespace
