// The older generators. The linker sends the library's clock readings here (--wrap), so that
// answers are known. CTest runs each test in a process of its own.
#include <gtest/gtest.h>
#include <time.h>

#include <cstring>
#include <deque>

#include "tests/support/nulls.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

std::deque<uint32_t> g_clocks;

/// The word that the clock gives next: what time() and clock() say to it.
struct Readings {
  int64_t seconds, ticks;
};
Readings split(uint32_t word) { return {int64_t{0x100000000} - 5 + word, 5}; }

}  // namespace

// NOLINTBEGIN: the linker's names
extern "C" {
time_t __wrap_time(time_t *) { return g_clocks.empty() ? 0 : split(g_clocks.front()).seconds; }
clock_t __wrap_clock() {
  if (g_clocks.empty()) return 0;
  const clock_t ticks = split(g_clocks.front()).ticks;
  g_clocks.pop_front();
  return ticks;
}
}
// NOLINTEND

namespace {

std::vector<Vector> cases(const std::string &file, const std::string &alg) {
  std::vector<Vector> chosen;
  for (const Vector &v : read_vectors(file)) {
    if (v.word("alg") == alg) chosen.push_back(v);
  }
  EXPECT_FALSE(chosen.empty()) << alg;
  return chosen;
}

uint32_t size_of(const Bytes &bytes) { return static_cast<uint32_t>(bytes.size()); }

TEST(RandAnsi, TakesTheStepsOfTheStandard) {
  for (const Vector &v : cases("x931_rng", "x931_tdes")) {
    RANDANSI_CONTEXT start{};
    TDES_MakeRoundKey(start.round_keys, v.bytes("key").data(), 24);
    std::memcpy(start.V, v.bytes("v").data(), 8);
    uint32_t date[2];
    std::memcpy(date, v.bytes("dt").data(), 8);
    const auto same_clocks = [&date](int steps) {
      g_clocks.clear();
      while (steps-- != 0)
        g_clocks.insert(g_clocks.end(), {date[0], 0U - date[1]});
    };
    // A request of 0 bytes is a step without an output; one inside a block ends with that block.
    for (const uint32_t len : {0U, 3U, 8U}) {
      RANDANSI_CONTEXT context = start;
      Bytes out(9, 0xcc);
      same_clocks(1);
      RANDANSI_GetRandomNum(out.data(), len, &context);
      EXPECT_EQ(to_hex(Bytes(context.V, context.V + 8)), v.word("v_next")) << len;
      EXPECT_EQ(to_hex(out), v.word("r").substr(0, 2 * len) + std::string(18 - 2 * len, 'c'));
      EXPECT_TRUE(g_clocks.empty());
    }
    // Two blocks are the second one of the state behind the first.
    RANDANSI_CONTEXT context = start, again = start;
    uint8_t out[12], one[8];
    same_clocks(2);
    RANDANSI_GetRandomNum(out, 12, &context);
    same_clocks(2);
    RANDANSI_GetRandomNum(one, 8, &again);
    RANDANSI_GetRandomNum(one, 4, &again);
    EXPECT_EQ(std::memcmp(out + 8, one, 4), 0);
    EXPECT_EQ(std::memcmp(&context, &again, sizeof context), 0);

    // Three blocks make the new key; the next one, under it, is the new V itself.
    context = again = start;
    uint8_t key[24];
    same_clocks(4);
    RANDANSI_Initialize(&context);
    same_clocks(4);
    RANDANSI_GetRandomNum(key, 24, &again);
    TDES_MakeRoundKey(again.round_keys, key, 24);
    RANDANSI_GetRandomNum(one, 8, &again);
    EXPECT_EQ(std::memcmp(context.round_keys, again.round_keys, sizeof again.round_keys), 0);
    EXPECT_EQ(std::memcmp(context.V, one, 8), 0);
  }
}

TEST(RandHash, AgreesWithTheModel) {
  for (const Vector &v : cases("legacy_rng_model", "randhash")) {
    SCOPED_TRACE(v.place);
    const Bytes clocks = v.bytes("clocks");
    const auto wind = [&clocks] {
      g_clocks.clear();
      for (std::size_t i = 0; i < clocks.size(); i += 4) {
        g_clocks.push_back(uint32_t{clocks[i]} << 24 | uint32_t{clocks[i + 1]} << 16 |
                           uint32_t{clocks[i + 2]} << 8 | clocks[i + 3]);
      }
    };
    RANDHASH_CONTEXT context;
    std::memcpy(context.X, v.bytes("state").data(), 20);
    RANDHASH_CONTEXT initialized = context;
    Bytes out(v.bytes("out").size());
    wind();
    RANDHASH_GetRandomNum(out.data(), size_of(out), &context);
    EXPECT_EQ(to_hex(out), v.word("out"));
    EXPECT_EQ(to_hex(Bytes(context.X, context.X + 20)), v.word("after"));
    RANDHASH_GetRandomNum(out.data(), 0, &context);
    EXPECT_EQ(to_hex(Bytes(context.X, context.X + 20)), v.word("after"));
    // Initialising leaves the output in the state, not the new state.
    if (out.size() < 20) continue;
    wind();
    RANDHASH_Initialize(&initialized);
    EXPECT_EQ(to_hex(Bytes(initialized.X, initialized.X + 20)), v.word("out").substr(0, 40));
  }
}

TEST(DsaRng, HashesAndGeneratesTheValuesOfTheStandard) {
  for (const Vector &v : cases("fips186_2_rng", "fips186_2_g")) {
    uint8_t out[20];
    EXPECT_EQ(DSARNGSHA1_G(out, v.bytes("t").data(), v.bytes("c").data(), 160), ZEL_OK);
    EXPECT_EQ(to_hex(Bytes(out, out + 20)), v.word("out")) << v.place;
  }
  const Bytes t = from_hex("67452301efcdab8998badcfe10325476c3d2e1f0");
  for (const auto &[file, alg] :
       {std::pair{"fips186_2_rng", "fips186_2_x"}, std::pair{"legacy_rng_model", "dsa"}}) {
    for (const Vector &v : cases(file, alg)) {
      const Bytes xseed = v.bytes("xseed"), xkey = v.bytes("xkey"), q = v.bytes("q");
      std::string values;
      if (v.has("out")) values = v.word("out");
      for (int i = 0; v.has("x" + std::to_string(i)); ++i)
        values += v.word("x" + std::to_string(i));
      const auto m = static_cast<uint32_t>(values.size() / 40);
      Bytes out(20 * m);
      std::vector<uint32_t> lens(m);
      EXPECT_EQ(DSARNGSHA1_GenerateX(out.data(), lens.data(), xseed.data(), size_of(xseed),
                                     xkey.data(), size_of(xkey), t.data(), q.data(), size_of(q), m),
                ZEL_OK);
      EXPECT_EQ(to_hex(out), values) << v.place;
      EXPECT_EQ(lens, std::vector<uint32_t>(m, size_of(xseed)));
    }
  }
}

TEST(KcdsaRng, AgreesWithTheModelAndTheStandard) {
  const auto prng = [](const std::string &hash) {
    return hash == "has160"   ? KCDSARNGHAS160_PRNG
           : hash == "sha224" ? KCDSARNGSHA224_PRNG
                              : KCDSARNGSHA256_PRNG;
  };
  for (const Vector &v : cases("legacy_rng_model", "prng")) {
    const Bytes seed = v.bytes("seed");
    Bytes out(v.bytes("out").size() + 1, 0xcc);
    EXPECT_EQ(prng(v.word("hash"))(out.data(), static_cast<uint32_t>(v.number("bits")), seed.data(),
                                   8 * size_of(seed)),
              ZEL_OK);
    EXPECT_EQ(to_hex(out), v.word("out") + "cc") << v.place;
  }
  for (const Vector &v : cases("legacy_rng_model", "kcdsa")) {
    SCOPED_TRACE(v.place);
    const Bytes seed = v.bytes("seed"), xkey = v.bytes("xkey"), q = v.bytes("q");
    uint8_t out[80];
    uint32_t lens[4];
    EXPECT_EQ(KCDSARNGHAS160_GenerateX(out, lens, seed.data(), size_of(seed), xkey.data(),
                                       size_of(xkey), q.data(), size_of(q), 4),
              ZEL_OK);
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(to_hex(Bytes(out + 20 * i, out + 20 * i + lens[i])),
                v.word("x" + std::to_string(i)));
    }
  }
  // A key of the standard: q is what makes the value a private key.
  for (const Vector &v : cases("kcdsa_keygen", "kcdsa_keygen")) {
    if (v.word("hash") != "has160") continue;
    const Bytes seed = v.bytes("xseed"), xkey = v.bytes("xkey"), q = v.bytes("q");
    uint8_t out[20];
    uint32_t len = 0;
    EXPECT_EQ(KCDSARNGHAS160_GenerateX(out, &len, seed.data(), size_of(seed), xkey.data(),
                                       size_of(xkey), q.data(), size_of(q), 1),
              ZEL_OK);
    EXPECT_EQ(to_hex(Bytes(out, out + len)), v.word("x"));
  }
}

// Equal seed and key are refused before anything else, and end the module.
TEST(DsaRng, RefusesASeedThatIsItsKey) {
  const Bytes same(20, 7), q(20, 0xff);
  uint8_t out[40];
  uint32_t lens[2];
  EXPECT_EQ(DSARNGSHA1_GenerateX(out, lens, same.data(), 20, same.data(), 19, same.data(), q.data(),
                                 20, 2),
            ZEL_OK);
  for (const uint32_t too_long : {65U, 0xffffffffU}) {
    EXPECT_EQ(DSARNGSHA1_GenerateX(out, lens, same.data(), too_long, same.data(), 20, same.data(),
                                   q.data(), 20, 2),
              ZEL_ERR_GENERIC);
  }
  const Bytes zero(20);
  EXPECT_EQ(DSARNGSHA1_GenerateX(out, lens, same.data(), 20, q.data(), 20, same.data(), zero.data(),
                                 20, 2),
            ZEL_ERR_GENERIC);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  EXPECT_EQ(DSARNGSHA1_GenerateX(out, lens, same.data(), 20, same.data(), 20, same.data(), q.data(),
                                 20, 2),
            ZEL_ERR_DSA_RNG_REPEAT);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
  EXPECT_EQ(DSARNGSHA1_GetRandomNum(out, 40), ZEL_ERR_STATE);
}

// Sums of one byte soon come again: the second value is the first one, and ends the module.
TEST(DsaRng, RefusesARepeatedValue) {
  const Bytes t = from_hex("67452301efcdab8998badcfe10325476c3d2e1f0"), q(20, 0xff);
  const uint8_t xseed = 0x21, xkey = 0x01;
  uint8_t out[40];
  uint32_t lens[2];
  EXPECT_EQ(DSARNGSHA1_GenerateX(out, lens, &xseed, 1, &xkey, 1, t.data(), q.data(), 20, 2),
            ZEL_ERR_GENERIC);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

TEST(LegacyGenerators, RefuseNullArguments) {
  RANDANSI_CONTEXT ansi{};
  RANDHASH_CONTEXT hash{};
  const Bytes seed(20, 1), xkey(20, 2), q(20, 3);
  uint8_t out[40];
  uint32_t lens[2];
  // There is nothing to give, but no crash.
  with_each_null(RANDANSI_Initialize, &ansi);
  with_each_null(RANDANSI_GetRandomNum, out, 12, &ansi);
  with_each_null(RANDHASH_Initialize, &hash);
  with_each_null(RANDHASH_GetRandomNum, out, 12, &hash);
  const auto refuses = [](auto function, auto... given) {
    for (const int32_t status : with_each_null(function, given...))
      EXPECT_EQ(status, ZEL_ERR_GENERIC);
  };
  refuses(DSARNGSHA1_G, out, seed.data(), xkey.data(), 160);
  refuses(DSARNGSHA1_GenerateX, out, lens, seed.data(), 20, xkey.data(), 20, seed.data(), q.data(),
          20, 2);
  refuses(DSARNGSHA1_GetRandomNum, out, 20);
  for (const auto prng : {KCDSARNGHAS160_PRNG, KCDSARNGSHA224_PRNG, KCDSARNGSHA256_PRNG})
    refuses(prng, out, 161, seed.data(), 160);
  refuses(KCDSARNGHAS160_GenerateX, out, lens, seed.data(), 20, xkey.data(), 20, q.data(), 20, 2);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
}

TEST(KcdsaRng, RefusesASeedThatIsItsKey) {
  const Bytes some(20, 7);
  uint8_t out[40];
  uint32_t lens[2];
  EXPECT_EQ(KCDSARNGHAS160_GenerateX(out, lens, some.data(), 0, some.data(), 0, some.data(), 20, 2),
            ZEL_ERR_KCDSA_RNG_REPEAT);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

// Modulo 1 every value is zero, as is what the first one is compared with.
TEST(KcdsaRng, RefusesARepeatedValueUnlessInState1) {
  const Bytes seed(20, 7), xkey(20, 9);
  const uint8_t one = 1;
  uint8_t out[60];
  uint32_t lens[3];
  KZEL_CC_SetState(ZEL_STATE_INITIALISED);
  const auto generate = [&] {
    return KCDSARNGHAS160_GenerateX(out, lens, seed.data(), 20, xkey.data(), 20, &one, 1, 3);
  };
  EXPECT_EQ(generate(), ZEL_OK);
  KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
  EXPECT_EQ(generate(), ZEL_ERR_GENERIC);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

TEST(DsaRng, GivesRandomBytesOfAnyLength) {
  for (const uint32_t len : {0U, 1U, 20U, 47U}) {
    Bytes first(len + 1, 0xcc), second(len + 1, 0xcc);
    ASSERT_EQ(DSARNGSHA1_GetRandomNum(first.data(), len), ZEL_OK);
    ASSERT_EQ(DSARNGSHA1_GetRandomNum(second.data(), len), ZEL_OK);
    EXPECT_EQ(first[len], 0xcc);
    EXPECT_TRUE(len < 20 || first != second);
  }
}

TEST(RepeatTests, TakeTheNewValueOver) {
  for (const auto test :
       {CONDITIONAL_SELFTEST_DSA_RNG_SHA1, CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160}) {
    uint8_t previous[4] = {}, next[4] = {0, 0, 0, 1};
    EXPECT_EQ(test(previous, next, 3), ZEL_ERR_GENERIC);
    EXPECT_EQ(test(previous, next, 0), ZEL_OK);
    EXPECT_EQ(test(previous, next, 4), ZEL_OK);
    EXPECT_EQ(previous[3], 1);
    EXPECT_EQ(test(previous, next, 4), ZEL_ERR_GENERIC);
    EXPECT_EQ(test(previous, next, -1), ZEL_ERR_GENERIC);
    EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  }
}

}  // namespace
