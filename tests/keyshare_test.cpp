// Key sharing: what is drawn and made, every way back, and sets that nobody made.
#include <memory>
#include <vector>

#include "support/mint.hpp"
#include "tests/support/nulls.hpp"
#include "tests/support/own_stack.hpp"
#include "zel_cc.h"

// The C library's generator, repeatable: the program's definition wins over the library's. Between
// two draws it may be stuck.
namespace {
struct Generator {
  std::mt19937 random{1};
  std::size_t draws = 0;
  std::size_t stuck_from = ~std::size_t{0};
  std::size_t stuck_to = ~std::size_t{0};
  bool operator==(const Generator &) const = default;
};
Generator g_generator;
unsigned g_seeds = 0;
}  // namespace
extern "C" int rand() noexcept {
  Generator &g = g_generator;
  const std::size_t draw = g.draws++;
  return draw >= g.stuck_from && draw < g.stuck_to ? 3 : static_cast<int>(g.random() >> 1);
}
extern "C" void srand(unsigned) noexcept { ++g_seeds; }

namespace {

using namespace zel::test;
using Bytes = std::vector<std::uint8_t>;
using Set = KEYSHAREFS_SHARE_SET;

struct Scheme {
  std::uint32_t threshold;
  decltype(&KEYSHAREFS_Gen2SharedInfo) split;
  decltype(&KEYSHAREFS_Recover2SharedInfo) recover;
  std::int32_t bad_count, too_few, equal_x, no_inverse;
};
void PrintTo(const Scheme &scheme, std::ostream *out) { *out << scheme.threshold; }

const Scheme kLine{
    2, KEYSHAREFS_Gen2SharedInfo, KEYSHAREFS_Recover2SharedInfo, -22099, -22098, -22097, -22096};
const Scheme kParabola{
    3, KEYSHAREFS_Gen3SharedInfo, KEYSHAREFS_Recover3SharedInfo, -22095, -22094, -22093, -22092};

class Sharing : public ::testing::TestWithParam<Scheme> {
 protected:
  Sharing() { g_generator = {}; }

  static Bytes random_bytes(std::size_t len) {
    Bytes bytes(len);
    for (auto &byte : bytes)
      byte = static_cast<std::uint8_t>(g_generator.random());
    return bytes;
  }

  /// Status, and the secret in a buffer of exactly the bytes that the prime has.
  static std::pair<std::int32_t, Bytes> recover(const Scheme &scheme, const Set &set) {
    Bytes secret(std::max(1U, (MINT_GetBitLength(&set.prime) + 7) / 8));
    std::uint32_t len = 7777;
    const std::int32_t status = scheme.recover(secret.data(), &len, &set);
    if (status == ZEL_OK) {
      EXPECT_LE(len, secret.size());
    } else {
      EXPECT_EQ(len, 7777U) << "touched on failure";
      len = 0;
    }
    secret.resize(len);
    return {status, secret};
  }

  static Set pick(const Set &set, std::initializer_list<std::size_t> chosen) {
    Set picked{};
    picked.prime = set.prime;
    for (const std::size_t i : chosen)
      picked.shares[picked.count++] = set.shares[i];
    return picked;
  }

  static Set made_of(std::uint32_t prime,
                     std::initializer_list<std::pair<std::uint32_t, std::uint32_t>> points) {
    Set set{};
    MINT_SetByInteger(&set.prime, prime);
    for (const auto &[x, y] : points) {
      MINT_SetByInteger(&set.shares[set.count].x, x);
      MINT_SetByInteger(&set.shares[set.count++].y, y);
    }
    return set;
  }
};

class SharedLine : public Sharing {};

Bytes without_leading_zeros(Bytes bytes) {
  bytes.erase(bytes.begin(), std::find_if(bytes.begin(), bytes.end() - 1,
                                          [](std::uint8_t byte) { return byte != 0; }));
  return bytes;
}

// The prime, then the coefficients from the highest down, then every x, again when two are equal:
// the same draws from the same state of rand(), and y by GMP.
TEST_P(Sharing, DrawsInOrderAndEvaluates) {
  const Scheme &scheme = GetParam();
  for (std::uint32_t len = 2; len <= 128; len = len < 9 ? len + 1 : 2 * len - 2) {
    for (int times = len == 2 ? 50 : 3; times > 0; --times) {
      const std::uint64_t n = scheme.threshold + g_generator.random() % (6 - scheme.threshold);
      const Bytes secret = random_bytes(len);
      const auto state = g_generator;
      Set set, untouched;
      std::memset(&set, 0x5a, sizeof set);
      untouched = set;
      ASSERT_EQ(scheme.split(&set, secret.data(), len, n), ZEL_OK);
      const auto after = g_generator;

      g_generator = state;
      MINT_RandInit();
      Set want = untouched;
      want.count = n;
      want.prime = {};
      PRIME_GeneratePrime(&want.prime, 8 * len + 1, 8 * len + 1, nullptr);
      std::vector<mpz_class> coefficients(scheme.threshold);
      for (std::size_t i = scheme.threshold; --i != 0;) {
        MINT a{};
        MINT_Rand(&a, 8 * len);
        coefficients[i] = value_of(a);
      }
      MINT s{};
      MINT_SetByByteArray(&s, secret.data(), static_cast<std::int32_t>(len));
      coefficients[0] = value_of(s);
      for (std::uint64_t i = 0; i < n; ++i) {
        want.shares[i].x = {};
        MINT_Rand(&want.shares[i].x, 8 * len);
      }
      for (std::uint64_t i = 0; i < n; ++i) {
        mpz_class y = 0;
        for (std::size_t k = scheme.threshold; k-- != 0;)
          y = (y * value_of(want.shares[i].x) + coefficients[k]) % value_of(want.prime);
        want.shares[i].y = record(y);
      }
      // Byte for byte: lengths, no leftovers above them, shares from n on untouched.
      ASSERT_EQ(std::memcmp(&set, &want, offsetof(Set, prime) + sizeof set.prime), 0) << len;
      ASSERT_TRUE(g_generator == after);
    }
  }
}

// Two of three x are equal: all three are drawn again.
TEST_P(Sharing, EqualXAreDrawnAgain) {
  const std::uint8_t secret[] = {7, 7, 7};
  constexpr std::size_t kDraws = 3;  // of 24 bits
  const Generator before = g_generator;
  Set plain{}, set{};
  ASSERT_EQ(GetParam().split(&plain, secret, 3, 3), ZEL_OK);
  const std::size_t end = g_generator.draws;
  g_generator = before;
  g_generator.stuck_from = end - 3 * kDraws;
  g_generator.stuck_to = end - kDraws;
  ASSERT_EQ(GetParam().split(&set, secret, 3, 3), ZEL_OK);
  EXPECT_NE(std::memcmp(&plain.shares, &set.shares, sizeof set.shares), 0);
  EXPECT_EQ(g_generator.draws, end + 3 * kDraws);
  EXPECT_EQ(recover(GetParam(), set), std::pair(0, Bytes{7, 7, 7}));
  g_generator = before;
  g_generator.stuck_from = end - 3 * kDraws;
  set = {};
  EXPECT_EQ(GetParam().split(&set, secret, 3, 3), -1) << "a generator that is stuck for good";
  EXPECT_EQ(set.count, 0U);
}

TEST_P(Sharing, EveryChoiceOfSharesGivesTheSecretBack) {
  const Scheme &scheme = GetParam();
  for (const std::uint32_t len : {2, 3, 4, 5, 8, 16, 31, 32, 33, 64, 128, 256, 511}) {
    if (len == 511 && scheme.threshold == 3) break;  // a prime of 4089 bits is enough
    Bytes secret = random_bytes(len);
    if (len % 2 != 0) secret[0] = 0;
    secret.back() |= 1;
    Set set{};
    ASSERT_EQ(scheme.split(&set, secret.data(), len, 5), ZEL_OK);
    for (std::size_t i = 0; i < 5; ++i) {
      for (std::size_t j = 0; j < 5; ++j) {
        if (i == j) continue;
        if (scheme.threshold == 2) {
          EXPECT_EQ(recover(scheme, pick(set, {i, j})),
                    std::pair(0, without_leading_zeros(secret)));
          continue;
        }
        // Two of three leave the secret open.
        EXPECT_NE(recover(kLine, pick(set, {i, j})).second, without_leading_zeros(secret));
        for (std::size_t k = 0; k < 5; ++k) {
          if (k == i || k == j) continue;
          EXPECT_EQ(recover(scheme, pick(set, {i, j, k})),
                    std::pair(0, without_leading_zeros(secret)));
        }
      }
    }
  }
}

TEST_F(SharedLine, AReissuedShareWorksWithEveryOther) {
  for (const std::uint32_t len : {2, 3, 4, 7, 32, 66}) {
    const Bytes secret = random_bytes(len);
    Set set{};
    ASSERT_EQ(KEYSHAREFS_Gen2SharedInfo(&set, secret.data(), len, 4), ZEL_OK);
    g_seeds = 0;
    const auto state = g_generator;
    ASSERT_EQ(KEYSHAREFS_Repro2SharedInfo(&set.shares[4], &set), ZEL_OK);
    EXPECT_EQ(g_seeds, 1U);
    set.count = 5;
    const auto after = g_generator;
    g_generator = state;
    MINT_RandInit();
    MINT x{};
    MINT_Rand(&x, 32 * set.shares[0].x.length);
    EXPECT_EQ(std::memcmp(&x, &set.shares[4].x, sizeof x), 0) << "one draw, all of its words";
    EXPECT_TRUE(g_generator == after);
    EXPECT_LT(value_of(set.shares[4].y), value_of(set.prime));
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(recover(kLine, pick(set, {i, 4})), std::pair(0, without_leading_zeros(secret)));
      EXPECT_EQ(recover(kLine, pick(set, {4, i})), std::pair(0, without_leading_zeros(secret)));
    }
    // And it may replace a share of the set that it comes from.
    ASSERT_EQ(KEYSHAREFS_Repro2SharedInfo(&set.shares[0], &set), ZEL_OK);
    EXPECT_EQ(recover(kLine, set), std::pair(0, without_leading_zeros(secret)));
  }
}

// 1234 + 166 x + 94 x^2 modulo 1613, the example of the English Wikipedia's article on the scheme;
// the points at 1, 4, 5 and 6 are 1494, 176, 1188 and 775. By hand, for 2, 4 and 5:
// 1942 * 4/(4-2) * 5/(5-2) - 3402 * 2/(4-2) * 5/(5-4) + 4414 * 2/(5-2) * 4/(5-4) = 1234.
// The line through (1, 1400) and (3, 119) modulo 1613 has the slope 166 and meets zero at 1234.
TEST_F(SharedLine, WorkedExamples) {
  const Bytes secret{0x04, 0xd2};
  const Set parabola = made_of(1613, {{1, 1494}, {2, 329}, {4, 176}, {5, 1188}, {6, 775}});
  for (const Set &set : {pick(parabola, {1, 2, 3}), pick(parabola, {0, 1, 4}), parabola})
    EXPECT_EQ(recover(kParabola, set), std::pair(0, secret));
  EXPECT_EQ(recover(kLine, made_of(1613, {{1, 1400}, {3, 119}})), std::pair(0, secret));
  // The same points with an x that is 1613 more.
  EXPECT_EQ(recover(kLine, made_of(1613, {{1614, 1400}, {3, 119}})), std::pair(0, secret));
}

TEST_P(Sharing, LeadingZerosAndZeroSecrets) {
  const Scheme &scheme = GetParam();
  Set set{};
  const Bytes secret{0, 1, 2};
  ASSERT_EQ(scheme.split(&set, secret.data(), 3, 5), ZEL_OK);
  EXPECT_EQ(recover(scheme, set), std::pair(0, Bytes{1, 2}));
  const Bytes zero(16);
  ASSERT_EQ(scheme.split(&set, zero.data(), 16, 5), ZEL_OK);
  const auto expected = scheme.threshold == 2 ? std::pair(-22097, Bytes{}) : std::pair(0, Bytes{0});
  EXPECT_EQ(recover(scheme, set), expected);
}

TEST_P(Sharing, CodesInTheirOrder) {
  const Scheme &scheme = GetParam();
  const Bytes secret(600, 7);
  Set set{};
  std::uint8_t out[8];
  std::uint32_t len = 0;
  for (const std::uint64_t n : {std::uint64_t{0}, std::uint64_t{scheme.threshold - 1},
                                std::uint64_t{6}, std::uint64_t{1} << 32, ~std::uint64_t{0}})
    EXPECT_EQ(scheme.split(nullptr, nullptr, 0, n), scheme.bad_count);
  EXPECT_EQ(scheme.split(nullptr, secret.data(), 9, 3), -1);
  EXPECT_EQ(scheme.split(&set, nullptr, 9, 3), -1);
  for (const std::uint32_t bad : {0U, 1U, 512U, 0x20000002U, ~0U})
    EXPECT_EQ(scheme.split(&set, secret.data(), bad, 3), -1) << bad;
  EXPECT_EQ(set.count, 0U);

  EXPECT_EQ(scheme.recover(nullptr, &len, &set), -1);
  EXPECT_EQ(scheme.recover(out, nullptr, &set), -1);
  EXPECT_EQ(scheme.recover(out, &len, nullptr), -1);
  const Set good = made_of(1613, {{1, 1400}, {3, 119}, {5, 451}});
  ASSERT_EQ(recover(scheme, good).first, 0);
  const auto answers = [&](auto change) {
    Set changed = good;
    change(changed);
    return recover(scheme, changed).first;
  };
  EXPECT_EQ(answers([&](Set &s) { s.count = scheme.threshold - 1, s.prime = {}; }), scheme.too_few);
  EXPECT_EQ(answers([](Set &s) { s.prime = {}, s.count = 9; }), scheme.no_inverse);
  EXPECT_EQ(answers([](Set &s) { s.prime = {2, {0, 0}}; }), scheme.no_inverse);
  EXPECT_EQ(answers([](Set &s) { s.prime = {1, {1614}}; }), scheme.no_inverse);
  EXPECT_EQ(answers([](Set &s) { s.prime.words[0] = 1614, s.shares[1].x = s.shares[0].x; }),
            scheme.no_inverse);
  EXPECT_EQ(answers([](Set &s) { s.prime.length = 131; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.count = 6, s.shares[0].x.words[0] = 3; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.count = ~std::uint64_t{0}; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.shares[1].x.length = ~0U; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.shares[2].y.length = 131; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.shares[1].y.words[0] = 1613; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.shares[0].x = {3, {1, 0, 1}}; }), -1);
  EXPECT_EQ(answers([](Set &s) { s.shares[0].x = {3, {1, 0, 0}}; }), 0);
  EXPECT_EQ(answers([](Set &s) { s.shares[0].x.words[0] = 3 + 2 * 1613; }), scheme.equal_x);
  EXPECT_EQ(answers([](Set &s) { s.prime.words[0] = 1; }), -1) << "no y is below it";
  // 3 * 1613: the difference 3 - 0 has no inverse.
  EXPECT_EQ(answers([](Set &s) { s.prime.words[0] = 4839, s.shares[0].x = {}; }),
            scheme.no_inverse);
}

TEST_F(SharedLine, CodesOfReissue) {
  KEYSHAREFS_SHARE share{};
  const auto reissue = [&share](const Set &set) {
    return KEYSHAREFS_Repro2SharedInfo(&share, &set);
  };
  Set set = made_of(1613, {{1, 1400}, {3, 119}});
  EXPECT_EQ(KEYSHAREFS_Repro2SharedInfo(nullptr, &set), -1);
  EXPECT_EQ(KEYSHAREFS_Repro2SharedInfo(&share, nullptr), -1);
  EXPECT_EQ(reissue(pick(set, {0})), -22098);
  EXPECT_EQ(reissue(pick(set, {1, 1})), -22097);
  EXPECT_EQ(reissue(made_of(1613, {{1, 5}, {3, 5}})), -22097) << "equal y";
  EXPECT_EQ(reissue(made_of(1613, {{1, 5}, {2, 10}})), -22097) << "zero secret";
  EXPECT_EQ(reissue(made_of(1612, {{1, 5}, {2, 11}})), -22096);
  EXPECT_EQ(reissue(made_of(1613, {{1, 1613}, {2, 11}})), -1);
  EXPECT_EQ(reissue(made_of(1613, {{0, 5}, {2, 11}})), -1) << "an x of no words has no other";
  set.count = 3;
  set.shares[2].x.length = 5000;
  EXPECT_EQ(reissue(set), -1);
  EXPECT_TRUE(share.x.length == 0 && share.y.length == 0) << "touched on failure";
  set.count = 2;
  EXPECT_EQ(reissue(set), 0);
  g_generator.stuck_from = 0;
  set.shares[0] = share;
  set.shares[0].x.words[0] = ((6 ^ 3) << 16) | (6 ^ 1);  // what MINT_Rand makes of these draws
  EXPECT_EQ(reissue(set), -1);
}

TEST(SharingStates, TheVerifiedServiceRefusesBeforeAnythingElse) {
  KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  EXPECT_EQ(with_nothing(KEYSHAREFS_Gen2SharedInfo), ZEL_ERR_APPROVED);
  EXPECT_EQ(with_nothing(KEYSHAREFS_Gen3SharedInfo), ZEL_ERR_APPROVED);
  EXPECT_EQ(with_nothing(KEYSHAREFS_Recover2SharedInfo), ZEL_ERR_APPROVED);
  EXPECT_EQ(with_nothing(KEYSHAREFS_Recover3SharedInfo), ZEL_ERR_APPROVED);
  EXPECT_EQ(with_nothing(KEYSHAREFS_Repro2SharedInfo), ZEL_ERR_APPROVED);
}

TEST_F(SharedLine, LeavesNothingOnTheStack) {
  if (!OnOwnStack::kCounts) GTEST_SKIP() << "true of GCC's release";
  static Set set;
  static std::uint8_t out[ZEL_MINT_BYTES];
  static std::uint32_t len;
  for (const std::uint32_t secret_len : {20, 32, 64}) {
    const Bytes secret = random_bytes(secret_len);
    ASSERT_EQ(KEYSHAREFS_Gen2SharedInfo(&set, secret.data(), secret_len, 2), ZEL_OK);
    const OnOwnStack own([] { KEYSHAREFS_Recover2SharedInfo(out, &len, &set); });
    EXPECT_EQ(Bytes(out, out + len), without_leading_zeros(secret));
    EXPECT_FALSE(own.holds_number(secret));
    // What the secret is a product of: the numerator, and the inverse of the difference.
    const mpz_class p = value_of(set.prime), x0 = value_of(set.shares[0].x),
                    x1 = value_of(set.shares[1].x);
    const mpz_class numerator =
        (value_of(set.shares[1].y) * x0 + (p - value_of(set.shares[0].y)) * x1) % p;
    mpz_class inverse = (p + x0 - x1) % p;
    mpz_invert(inverse.get_mpz_t(), inverse.get_mpz_t(), p.get_mpz_t());
    for (const mpz_class &value : {numerator, inverse, mpz_class(p - inverse)}) {
      const MINT number = record(value);
      std::uint8_t bytes[ZEL_MINT_BYTES];
      std::uint32_t bytes_len = 0;
      MINT_WriteInByteArray(bytes, &bytes_len, &number);
      EXPECT_FALSE(own.holds_number(Bytes(bytes, bytes + bytes_len)));
    }
  }
}

// Whatever a set holds, the call ends, stays in bounds and agrees with Lagrange's formula in GMP.
TEST_P(Sharing, HostileSets) {
  const Scheme &scheme = GetParam();
  Shapes shapes(5);
  const auto set = std::make_unique<Set>();
  int good = 0;
  for (int round = 0; round < 1500; ++round) {
    const std::uint32_t words = 1 + shapes.below(round % 10 == 0 ? 130 : 4);
    set->count = shapes.below(20) == 0 ? shapes.word() : scheme.threshold;
    set->prime = shapes.operand(words);
    for (auto &share : set->shares) {
      share.x = shapes.operand(words);
      share.y = shapes.operand(words);
      if (shapes.below(50) == 0) share.y.length = shapes.word();
    }
    set->prime.words[0] |= shapes.below(10) != 0;
    const auto [status, secret] = recover(scheme, *set);
    KEYSHAREFS_SHARE share;
    KEYSHAREFS_Repro2SharedInfo(&share, set.get());
    if (status != ZEL_OK) continue;
    ++good;
    const mpz_class p = value_of(set->prime);
    mpz_class sum = 0;
    for (std::uint32_t i = 0; i < scheme.threshold; ++i) {
      mpz_class term = value_of(set->shares[i].y), below = 1;
      for (std::uint32_t j = 0; j < scheme.threshold; ++j) {
        if (j == i) continue;
        term *= value_of(set->shares[j].x);
        below *= value_of(set->shares[j].x) - value_of(set->shares[i].x);
      }
      ASSERT_NE(mpz_invert(below.get_mpz_t(), below.get_mpz_t(), p.get_mpz_t()), 0);
      sum += term * below;
    }
    mpz_mod(sum.get_mpz_t(), sum.get_mpz_t(), p.get_mpz_t());
    MINT value;
    MINT_SetByByteArray(&value, secret.data(), static_cast<std::int32_t>(secret.size()));
    ASSERT_EQ(value_of(value), sum);
  }
  EXPECT_GT(good, 50);
}

INSTANTIATE_TEST_SUITE_P(Thresholds, Sharing, ::testing::Values(kLine, kParabola),
                         [](const auto &scheme) {
                           return scheme.param.threshold == 2 ? "Line" : "Parabola";
                         });

}  // namespace
