// Hash_DRBG and HMAC_DRBG: published values, the model's values where this library departs from the
// standard, arguments, reseeding and the one-call services. CTest runs each test in a process of
// its own, so a test may end in the error state.
#include <gtest/gtest.h>

#include <cstring>

#include "rng/drbg.hpp"
#include "tests/support/features.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

// The two generators under one set of names.
struct HashDrbg {
  static constexpr char kName[] = "Hash";
  using Context = HASHDRBG_CONTEXT;
  static constexpr auto instantiate_with = HASHDRBG_InstantiateEntIn;
  static constexpr auto instantiate = HASHDRBG_Instantiate;
  static constexpr auto reseed_with = HASHDRBG_ReseedEntIn;
  static constexpr auto reseed = HASHDRBG_Reseed;
  static constexpr auto generate_with = HASHDRBG_GenerateRandEntIn;
  static constexpr auto generate = HASHDRBG_GenerateRand;
  static constexpr auto one_call_with = HASHDRBG_RNG;
  static constexpr auto one_call = HASHDRBG_GetRandNum;
  static constexpr auto differs = CONDITIONAL_SELFTEST_HASHDRBG;
  static constexpr bool kLastByteIsTheCallers = true;
};
struct HmacDrbg {
  static constexpr char kName[] = "Hmac";
  using Context = HMACDRBG_CONTEXT;
  static constexpr auto instantiate_with = HMACDRBG_InstantiateEntIn;
  static constexpr auto instantiate = HMACDRBG_Instantiate;
  static constexpr auto reseed_with = HMACDRBG_ReseedEntIn;
  static constexpr auto reseed = HMACDRBG_Reseed;
  static constexpr auto generate_with = HMACDRBG_GenerateRandEntIn;
  static constexpr auto generate = HMACDRBG_GenerateRand;
  static constexpr auto one_call_with = HMACDRBG_RNG;
  static constexpr auto one_call = HMACDRBG_GetRandNum;
  static constexpr auto differs = CONDITIONAL_SELFTEST_HMACDRBG;
  static constexpr bool kLastByteIsTheCallers = false;
};

constexpr const HASH_ALGORITHM *kHashes[] = {&sha224, &sha256, &sha384, &sha512};
constexpr uint32_t kDigestBits[] = {224, 256, 384, 512};

uint32_t hash_id(const Vector &v) {
  static const std::string names[] = {"sha224", "sha256", "sha384", "sha512"};
  return static_cast<uint32_t>(std::find(names, names + 4, v.word("hash")) - names);
}

uint32_t size(const Bytes &bytes) { return static_cast<uint32_t>(bytes.size()); }
Bytes bytes_or_none(const Vector &v, const std::string &name) {
  return v.has(name) ? v.bytes(name) : Bytes();
}

template <class Drbg>
void start(typename Drbg::Context *context, const Vector &v, uint32_t strength, uint32_t pr) {
  const Bytes entropy = v.bytes("entropy");
  const Bytes nonce = bytes_or_none(v, "nonce");
  const Bytes pers = bytes_or_none(v, "pers");
  ASSERT_EQ(Drbg::instantiate_with(context, hash_id(v), strength, pr, entropy.data(), size(entropy),
                                   nonce.data(), size(nonce), pers.data(), size(pers)),
            ZEL_OK);
}

/// Runs one case of the published files.
template <class Drbg>
void run_published(const Vector &v) {
  typename Drbg::Context context;
  const auto pr = static_cast<uint32_t>(v.number("pr"));
  start<Drbg>(&context, v, 256, pr);
  if (v.has("interval")) context.reseed_interval = static_cast<uint32_t>(v.number("interval"));
  if (v.has("reseed_entropy")) {
    const Bytes entropy = v.bytes("reseed_entropy");
    const Bytes additional = bytes_or_none(v, "reseed_add");
    ASSERT_EQ(Drbg::reseed_with(&context, entropy.data(), size(entropy), additional.data(),
                                size(additional)),
              ZEL_OK);
  }
  for (const std::string call : {"1", "2"}) {
    const auto bits = static_cast<uint32_t>(v.number("bits" + call));
    const Bytes entropy = bytes_or_none(v, "entropy" + call);
    const Bytes additional = bytes_or_none(v, "add" + call);
    Bytes out(bits / 8);
    ASSERT_EQ(Drbg::generate_with(out.data(), &context, bits, 112, entropy.data(), size(entropy),
                                  additional.data(), size(additional), pr),
              ZEL_OK);
    if (v.has("product_out" + call)) {
      EXPECT_EQ(to_hex(out), v.word("product_out" + call));
      EXPECT_NE(to_hex(out), v.word("out" + call)) << "the departure has been repaired";
    } else if (v.has("out" + call)) {
      EXPECT_EQ(to_hex(out), v.word("out" + call));
    }
  }
}

TEST(Drbg, GiveThePublishedOutputsOnEveryProcessor) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const char *file : {"hash_drbg", "hash_drbg_standard", "hmac_drbg", "drbg_product"}) {
      for (const Vector &v : read_vectors(file)) {
        SCOPED_TRACE(set.name + ", " + v.place);
        v.word("alg") == "hash_drbg" ? run_published<HashDrbg>(v) : run_published<HmacDrbg>(v);
      }
    }
  }
}

TEST(HashDrbg, DerivationGivesThePublishedValues) {
  for (const Vector &v : read_vectors("hash_df")) {
    const Bytes in = v.bytes("input");
    const auto bits = static_cast<uint32_t>(v.number("out_bits"));
    Bytes out(bits / 8 + 1, 0xee);
    ASSERT_EQ(HASHDRBG_DerivateFunction(out.data(), in.data(), size(in), bits, kHashes[hash_id(v)]),
              ZEL_OK);
    EXPECT_EQ(to_hex(out), v.word("out") + "ee") << v.place;
  }
  uint8_t byte = 0;
  EXPECT_EQ(HASHDRBG_DerivateFunction(&byte, &byte, 1, 8, &popsha1), ZEL_ERR_DRBG_HASH);
  EXPECT_EQ(HASHDRBG_DerivateFunction(&byte, &byte, 1, 8, nullptr), ZEL_ERR_DRBG_HASH);
  EXPECT_EQ(HASHDRBG_DerivateFunction(nullptr, &byte, 1, 8, &sha256), ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(HASHDRBG_DerivateFunction(&byte, nullptr, 1, 8, &sha256), ZEL_ERR_DRBG_ARGUMENT);
}

/// A context of Hash_DRBG in the state that a case of the model gives.
HASHDRBG_CONTEXT context_of(const Vector &v) {
  HASHDRBG_CONTEXT context;
  const uint8_t entropy = 1;
  HASHDRBG_InstantiateEntIn(&context, hash_id(v), 256, 0, &entropy, 1, nullptr, 0, nullptr, 0);
  const Bytes value = v.bytes("v");
  std::copy(value.begin(), value.end(), context.V);
  const Bytes constant = bytes_or_none(v, "c");
  std::copy(constant.begin(), constant.end(), context.C);
  context.reseed_counter = static_cast<uint32_t>(v.number_or("counter", 1));
  context.reseed_interval = 0xffffffff;
  return context;
}

void run_hashgen(const Vector &v) {
  const HASHDRBG_CONTEXT context = context_of(v);
  const auto bits = static_cast<uint32_t>(v.number("bits"));
  Bytes out = v.has("before") ? v.bytes("before") : Bytes(bits / 8);
  ASSERT_EQ(HASHDRBG_GenerateRandBit(out.data(), bits, &context), ZEL_OK);
  EXPECT_EQ(to_hex(out), v.word("out"));
}

void run_generate(const Vector &v) {
  HASHDRBG_CONTEXT context = context_of(v);
  const auto bits = static_cast<uint32_t>(v.number("bits"));
  const Bytes additional = v.bytes("add");
  Bytes out(bits / 8);
  ASSERT_EQ(
      HASHDRBG_GenerateRand(out.data(), &context, bits, 0, additional.data(), size(additional), 0),
      ZEL_OK);
  EXPECT_EQ(to_hex(out), v.word("out"));
  EXPECT_EQ(to_hex(Bytes(context.V, context.V + context.seedlen / 8)), v.word("v_after"));
  EXPECT_EQ(context.reseed_counter, v.number("counter") + 1);
}

/// Long outputs are given as their SHA-256.
std::string shown(const Bytes &out) {
  if (out.size() < 300) return to_hex(out);
  HASH_CONTEXT context;
  Bytes digest(32);
  uint32_t len = 0;
  HASH_Initialize(&context, &sha256);
  HASH_Update(&context, out.data(), size(out));
  HASH_Finalize(digest.data(), &len, &context);
  return to_hex(digest);
}

template <class Drbg>
void run_life(const Vector &v) {
  typename Drbg::Context context;
  start<Drbg>(&context, v, 128, 0);
  const auto bits = static_cast<uint32_t>(v.number("bits"));
  const Bytes additional = v.bytes("add");
  const Bytes fresh = v.bytes("reseed_entropy");
  const auto request = [&](const Bytes &add) {
    Bytes out(bits / 8 + 3, 0xff);
    EXPECT_EQ(Drbg::generate(out.data(), &context, bits, 128, add.data(), size(add), 0), ZEL_OK);
    return shown(out);
  };
  EXPECT_EQ(request({}), v.word("out1"));
  EXPECT_EQ(request(additional), v.word("out2"));
  EXPECT_EQ(context.reseed_counter, 3U);
  ASSERT_EQ(
      Drbg::reseed_with(&context, fresh.data(), size(fresh), additional.data(), size(additional)),
      ZEL_OK);
  EXPECT_EQ(context.reseed_counter, 1U);
  EXPECT_EQ(request(additional), v.word("out3"));
}

// Carries at every width, the step past 2^seedlen, requests that end inside a byte or just past a
// digest: every number of blocks side by side must give what the model gives one by one.
TEST(Drbg, GiveTheModelsOutputsOnEveryProcessor) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const Vector &v : read_vectors("drbg_model")) {
      SCOPED_TRACE(set.name + ", " + v.place);
      if (v.word("alg") == "hashgen") run_hashgen(v);
      if (v.word("alg") == "generate") run_generate(v);
      if (v.word("alg") == "hash_drbg") run_life<HashDrbg>(v);
      if (v.word("alg") == "hmac_drbg") run_life<HmacDrbg>(v);
    }
  }
}

template <class Drbg>
class BothDrbgs : public ::testing::Test {
 public:
  using Context = typename Drbg::Context;
  const Bytes material = Bytes(48, 0x5a);

  Context fresh(uint32_t id = ZEL_DRBG_SHA256, uint32_t strength = 128, uint32_t pr = 0) const {
    Context context;
    std::memset(&context, 0xee, sizeof context);
    EXPECT_EQ(Drbg::instantiate_with(&context, id, strength, pr, material.data(), size(material),
                                     nullptr, 0, nullptr, 0),
              ZEL_OK);
    return context;
  }
  static Bytes request(Context &context, uint32_t bytes, const Bytes &given = {}, bool pr = false) {
    Bytes out(bytes);
    EXPECT_EQ(Drbg::generate_with(out.data(), &context, 8 * bytes, 0, given.data(), size(given),
                                  nullptr, 0, pr),
              ZEL_OK);
    return out;
  }
};
using Generators = ::testing::Types<HashDrbg, HmacDrbg>;
struct Names {
  template <class Drbg>
  static std::string GetName(int) {
    return Drbg::kName;
  }
};
TYPED_TEST_SUITE(BothDrbgs, Generators, Names);

TYPED_TEST(BothDrbgs, RecordTheirSetup) {
  const uint32_t strengths[][2] = {{0, 80},    {80, 80},   {81, 112},  {112, 112}, {128, 128},
                                   {129, 192}, {192, 192}, {193, 256}, {999, 256}};
  for (const auto &[wanted, given] : strengths) {
    const auto context = this->fresh(ZEL_DRBG_SHA384, wanted, 1);
    EXPECT_EQ(context.security_strength, given);
    EXPECT_EQ(context.prediction_resistance, 1U);
    EXPECT_EQ(context.reseed_counter, 1U);
    EXPECT_EQ(context.reseed_interval, uint32_t{ZEL_DRBG_RESEED_INTERVAL});
  }
  for (uint32_t id = 0; id < 4; ++id) {
    const auto context = this->fresh(id);
    EXPECT_EQ(context.hash, kHashes[id]);
    std::size_t used;
    if constexpr (TypeParam::kLastByteIsTheCallers) {
      EXPECT_EQ(context.seedlen, id < 2 ? 440U : 888U);
      used = context.seedlen / 8;
    } else {
      EXPECT_EQ(context.outlen, kDigestBits[id]);
      used = context.outlen / 8;
    }
    for (std::size_t i = used; i < sizeof context.V; ++i)
      EXPECT_EQ(context.V[i], 0xee) << "beyond the value in use";
  }
}

TYPED_TEST(BothDrbgs, RefuseBadArgumentsInOrder) {
  typename TypeParam::Context context, untouched;
  std::memset(&context, 0xee, sizeof context);
  std::memset(&untouched, 0xee, sizeof untouched);
  const uint8_t data[4] = {1, 2, 3, 4};
  const auto instantiate = [&](auto *to, uint32_t id, const uint8_t *entropy, uint32_t len) {
    return TypeParam::instantiate_with(to, id, 128, 0, entropy, len, data, 4, nullptr, 9);
  };
  EXPECT_EQ(instantiate(static_cast<decltype(&context)>(nullptr), 4, nullptr, 0),
            ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(instantiate(&context, 4, nullptr, 0), ZEL_ERR_DRBG_HASH);
  EXPECT_EQ(TypeParam::instantiate(&context, 4, 128, 0, data, 4, nullptr, 0), ZEL_ERR_DRBG_HASH);
  uint8_t out[4] = {9, 9, 9, 9};
  const auto request = [&](uint8_t *to, auto *from, uint32_t strength, const uint8_t *entropy,
                           uint32_t len, bool pr) {
    return TypeParam::generate_with(to, from, 32, strength, entropy, len, nullptr, 0, pr);
  };
  EXPECT_EQ(request(out, &context, 0, nullptr, 0, false), ZEL_ERR_DRBG_HASH) << "never set up";
  EXPECT_EQ(TypeParam::reseed_with(&context, data, 4, nullptr, 0), ZEL_ERR_DRBG_HASH);
  EXPECT_EQ(TypeParam::reseed_with(&context, nullptr, 4, nullptr, 0), ZEL_ERR_DRBG_ENTROPY);
  EXPECT_EQ(TypeParam::reseed_with(&context, data, 0, nullptr, 0), ZEL_ERR_DRBG_ENTROPY);
  EXPECT_EQ(TypeParam::reseed_with(nullptr, data, 4, nullptr, 0), ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(TypeParam::reseed(nullptr, data, 4), ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(std::memcmp(&context, &untouched, sizeof context), 0);
  EXPECT_EQ(instantiate(&context, 1, nullptr, 4), ZEL_ERR_DRBG_ENTROPY);
  EXPECT_EQ(instantiate(&context, 1, data, 0), ZEL_ERR_DRBG_ENTROPY);
  EXPECT_EQ(context.hash, &sha256) << "recorded before the entropy is asked for";

  context = this->fresh();
  untouched = context;
  EXPECT_EQ(request(out, static_cast<decltype(&context)>(nullptr), 256, data, 4, true),
            ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(request(nullptr, &context, 256, data, 4, true), ZEL_ERR_DRBG_ARGUMENT);
  EXPECT_EQ(request(out, &context, 129, data, 4, false), ZEL_ERR_DRBG_STRENGTH);
  EXPECT_EQ(request(out, &context, 128, data, 4, true), ZEL_ERR_DRBG_STRENGTH);
  EXPECT_EQ(std::memcmp(&context, &untouched, sizeof context), 0) << "before any reseed";
  context.reseed_counter = context.reseed_interval;
  EXPECT_EQ(request(out, &context, 128, nullptr, 4, false), ZEL_ERR_DRBG_ENTROPY);
  EXPECT_EQ(to_hex(Bytes(out, out + 4)), "09090909");
}

TYPED_TEST(BothDrbgs, ZeroBitsStepTheGenerator) {
  auto context = this->fresh();
  const auto before = context;
  uint8_t out = 0x77;
  EXPECT_EQ(TypeParam::generate(&out, &context, 0, 128, nullptr, 0, 0), ZEL_OK);
  EXPECT_EQ(out, 0x77);
  EXPECT_EQ(context.reseed_counter, 2U);
  EXPECT_NE(std::memcmp(context.V, before.V, 32), 0);
}

// At the interval and not before, a request reseeds: like a reseed by hand with the same entropy,
// and with fresh entropy when none is given, so that copies of a context part.
TYPED_TEST(BothDrbgs, ReseedByThemselvesAtTheInterval) {
  const Bytes given(32, 0x11);
  auto context = this->fresh();
  context.reseed_counter = context.reseed_interval - 1;
  auto copy = context;
  EXPECT_EQ(this->request(context, 32, given), this->request(copy, 32)) << "not due yet";
  ASSERT_EQ(context.reseed_counter, context.reseed_interval);

  copy = context;
  ASSERT_EQ(TypeParam::reseed_with(&copy, given.data(), size(given), nullptr, 0), ZEL_OK);
  auto third = context;
  EXPECT_EQ(this->request(context, 32, given), this->request(copy, 32));
  EXPECT_EQ(context.reseed_counter, 2U);
  copy = third;
  EXPECT_NE(this->request(copy, 32), this->request(third, 32)) << "fresh entropy each";
  EXPECT_EQ(third.reseed_counter, 2U);
}

TYPED_TEST(BothDrbgs, FreshEntropyMakesEveryGeneratorDifferent) {
  typename TypeParam::Context one, two;
  ASSERT_EQ(TypeParam::instantiate(&one, 1, 256, 1, nullptr, 0, nullptr, 0), ZEL_OK);
  ASSERT_EQ(TypeParam::instantiate(&two, 1, 256, 1, nullptr, 0, nullptr, 0), ZEL_OK);
  EXPECT_NE(this->request(one, 32), this->request(two, 32));
  auto copy = one;
  EXPECT_EQ(this->request(one, 32), this->request(copy, 32)) << "a copy, as after fork, repeats";
  EXPECT_NE(this->request(one, 32, {}, true), this->request(copy, 32, {}, true));
  copy = one;
  ASSERT_EQ(TypeParam::reseed(&copy, nullptr, 0), ZEL_OK);
  EXPECT_NE(this->request(one, 32), this->request(copy, 32));
}

// Bits of a whole number of bytes come from the generator; one call equals two calls by hand.
TYPED_TEST(BothDrbgs, OneCallIsAGeneratorOfSha224) {
  for (const uint32_t bits : {0U, 5U, 130U, 224U, 1000U, 8U * 70000U}) {
    auto context = this->fresh(ZEL_DRBG_SHA224);
    Bytes by_hand(bits / 8 + 3, 0xff), out = by_hand;
    ASSERT_EQ(TypeParam::generate(by_hand.data(), &context, bits, 128, nullptr, 0, 0), ZEL_OK);
    EXPECT_EQ(
        TypeParam::one_call_with(out.data(), bits, this->material.data(), size(this->material)),
        ZEL_OK);
    EXPECT_EQ(out, by_hand) << bits;
  }
  Bytes one(32), two(32);
  EXPECT_EQ(TypeParam::one_call(one.data(), 256), ZEL_OK);
  EXPECT_EQ(TypeParam::one_call(two.data(), 256), ZEL_OK);
  EXPECT_NE(one, two);
}

TYPED_TEST(BothDrbgs, OneCallFailuresZeroTheOutput) {
  const auto fails = [&](auto call) {
    Bytes out(4, 0xff);
    EXPECT_EQ(call(out.data()), ZEL_ERR_DRBG_TEST);
    return to_hex(out);
  };
  const std::string zeroed = TypeParam::kLastByteIsTheCallers ? "0000ffff" : "000000ff";
  const uint8_t *const entropy = this->material.data();
  EXPECT_EQ(fails([](uint8_t *out) { return TypeParam::one_call_with(out, 20, nullptr, 8); }),
            zeroed);
  EXPECT_EQ(fails([&](uint8_t *out) { return TypeParam::one_call_with(out, 20, entropy, 0); }),
            zeroed);
  EXPECT_EQ(TypeParam::one_call(nullptr, 20), ZEL_ERR_DRBG_TEST);
  KZEL_CC_SetState(5);
  EXPECT_EQ(fails([](uint8_t *out) { return TypeParam::one_call(out, 20); }), zeroed);
  EXPECT_EQ(fails([&](uint8_t *out) { return TypeParam::one_call_with(out, 20, entropy, 8); }),
            zeroed);
}

// Two outputs of one byte are equal once in 256 entropies: one of them is found by hand.
TYPED_TEST(BothDrbgs, EqualOutputsEndInTheErrorState) {
  for (Bytes seed(2); seed[0] < 100; ++seed[1] == 0 ? ++seed[0] : 0) {
    typename TypeParam::Context context;
    ASSERT_EQ(TypeParam::instantiate_with(&context, ZEL_DRBG_SHA224, 128, 0, seed.data(), 2,
                                          nullptr, 0, nullptr, 0),
              ZEL_OK);
    const Bytes first = this->request(context, 1);
    const bool repeated = first == this->request(context, 1);
    uint8_t out[2] = {1, 1};
    EXPECT_EQ(TypeParam::one_call_with(out, 8, seed.data(), 2), repeated ? ZEL_ERR_DRBG_TEST : 0);
    EXPECT_EQ(out[0], repeated ? 0 : first[0]);
    EXPECT_EQ(out[1], 1);
    if (!repeated) continue;
    EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
    return;
  }
  FAIL() << "no repetition found";
}

TYPED_TEST(BothDrbgs, RefuseOutsideTheServingStates) {
  auto context = this->fresh();
  const auto before = context;
  const uint8_t *const entropy = this->material.data();
  uint8_t out = 7;
  for (const int32_t state : {0, 5, -1, -98}) {
    KZEL_CC_SetState(state);
    EXPECT_EQ(TypeParam::instantiate_with(&context, 9, 1, 0, entropy, 1, nullptr, 0, nullptr, 0),
              ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::instantiate(nullptr, 1, 1, 0, nullptr, 0, nullptr, 0), ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::reseed_with(&context, entropy, 1, nullptr, 0), ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::reseed(&context, nullptr, 0), ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::generate(&out, &context, 8, 0, nullptr, 0, 0), ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::generate_with(&out, nullptr, 8, 0, entropy, 1, nullptr, 0, 0),
              ZEL_ERR_STATE);
    EXPECT_EQ(TypeParam::differs(&out, &out, 1), ZEL_ERR_STATE);
    EXPECT_EQ(HASHDRBG_GenerateRandBit(&out, 8, nullptr), ZEL_ERR_STATE);
    EXPECT_EQ(HASHDRBG_DerivateFunction(&out, entropy, 1, 8, nullptr), ZEL_ERR_STATE);
    EXPECT_EQ(HMACDRBG_Update(nullptr, entropy, 1), ZEL_ERR_STATE);
    EXPECT_EQ(KZEL_CC_GetState(), state);
  }
  EXPECT_EQ(std::memcmp(&context, &before, sizeof context), 0);
  EXPECT_EQ(out, 7);
}

TYPED_TEST(BothDrbgs, RepeatedOutputTestPassesThroughTheSelfTestState) {
  const uint8_t one[] = {1, 2, 3}, two[] = {1, 2, 4};
  for (const int32_t state : {1, 3, 4}) {
    KZEL_CC_SetState(state);
    EXPECT_EQ(TypeParam::differs(one, two, 3), ZEL_OK);
    EXPECT_EQ(TypeParam::differs(nullptr, nullptr, 0), ZEL_OK);
    EXPECT_EQ(TypeParam::differs(one, nullptr, 3), ZEL_ERR_GENERIC);
    EXPECT_EQ(TypeParam::differs(nullptr, two, 3), ZEL_ERR_GENERIC);
    EXPECT_EQ(TypeParam::differs(one, two, -1), ZEL_ERR_GENERIC);
    EXPECT_EQ(KZEL_CC_GetState(), state);
    EXPECT_EQ(KZEL_CC_GetPreState(), state == 1 ? 0 : state);
  }
  KZEL_CC_SetStateConditionalSelfTest();
  EXPECT_EQ(TypeParam::differs(one, two, 3), ZEL_OK);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_VERIFIED) << "ends the self-test that was running";
  EXPECT_EQ(TypeParam::differs(one, two, 2), ZEL_ERR_GENERIC);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

// A generator whose next output is all ones: what a real one does once in 2^224 times.
struct Stuck {
  using Context = int;
  struct Stream {
    Stream(const int &, const zel::drbg::Variant &) {}
    void next(uint8_t *digest) { std::fill_n(digest, 28, uint8_t{1}); }
  };
  static int32_t differs(const uint8_t *previous, const uint8_t *next, int32_t len) {
    return CONDITIONAL_SELFTEST_HASHDRBG(previous, next, len);
  }
};

// Outputs that begin alike still differ: every digest counts, and the last one in its length.
TEST(Drbg, RepeatedOutputTestSeesTheWholeOutput) {
  const auto passes = [](const Bytes &out) {
    return zel::drbg::second_output_differs<Stuck>(0, *zel::drbg::variant_of(ZEL_DRBG_SHA224),
                                                   out.data(), size(out));
  };
  for (const std::size_t len : {1U, 28U, 29U, 56U, 75U}) {
    Bytes out(len, 1);
    out.back() = 2;
    EXPECT_TRUE(passes(out)) << len;
    out.back() = 1;
    out.front() = 2;
    EXPECT_TRUE(passes(out)) << len;
  }
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  EXPECT_FALSE(passes(Bytes(75, 1)));
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

TEST(HmacDrbg, UpdateIsTheFirstHalfOfARequestWithAdditionalInput) {
  const uint8_t data[200] = {1, 2, 3};
  for (uint32_t id = 0; id < 4; ++id) {
    HMACDRBG_CONTEXT one;
    ASSERT_EQ(HMACDRBG_InstantiateEntIn(&one, id, 128, 0, data, 48, nullptr, 0, nullptr, 0), 0);
    HMACDRBG_CONTEXT two = one;
    uint8_t out = 0;
    ASSERT_EQ(HMACDRBG_GenerateRand(&out, &one, 0, 0, data, sizeof data, 0), ZEL_OK);
    ASSERT_EQ(HMACDRBG_Update(&two, data, sizeof data), ZEL_OK);
    ASSERT_EQ(HMACDRBG_Update(&two, data, sizeof data), ZEL_OK);
    EXPECT_EQ(std::memcmp(one.V, two.V, kDigestBits[id] / 8), 0);
    EXPECT_EQ(std::memcmp(one.Key, two.Key, kDigestBits[id] / 8), 0);
    EXPECT_EQ(HMACDRBG_Update(&two, nullptr, 0), ZEL_OK);
    EXPECT_EQ(HMACDRBG_Update(&two, nullptr, 1), ZEL_ERR_DRBG_ARGUMENT);
    EXPECT_EQ(HMACDRBG_Update(&two, data, -1), ZEL_ERR_DRBG_ARGUMENT);
    EXPECT_EQ(HMACDRBG_Update(nullptr, data, 1), ZEL_ERR_DRBG_ARGUMENT);
  }
}

}  // namespace
