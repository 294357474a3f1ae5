// Random integers and primes: the draws one by one, the verdicts, the properties of what is made.
#include <cstdlib>
#include <deque>
#include <set>
#include <vector>

#include "support/mint.hpp"
#include "zel_cc.h"

// The C library's generator, seen and steered: the program's definition wins over the library's.
namespace {
std::deque<int> g_script;  // draws to give first
std::mt19937 g_random(1);
std::vector<unsigned> g_seeds;
std::size_t g_draws = 0;
}  // namespace
extern "C" int rand() noexcept {
  ++g_draws;
  if (g_script.empty()) return static_cast<int>(g_random() >> 1);
  const int next = g_script.front();
  g_script.pop_front();
  return next;
}
extern "C" void srand(unsigned start) noexcept { g_seeds.push_back(start); }

namespace {

using namespace zel::test;

class Draws : public ::testing::Test {
 protected:
  Draws() {
    g_script.clear();
    g_seeds.clear();
    g_draws = 0;
  }
  static std::size_t taken() { return std::exchange(g_draws, 0); }
};

bool is_prime(const mpz_class &n) { return mpz_probab_prime_p(n.get_mpz_t(), 30) != 0; }

mpz_class gcd_of(const mpz_class &a, const mpz_class &b) {
  mpz_class g;
  mpz_gcd(g.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
  return g;
}

// Three draws fold into a whole word: worked by hand from the folding rule.
TEST_F(Draws, WholeAndPartialWords) {
  MINT r;
  g_script = {0x12345678, 0x2badcafe, 0x7fffffff};
  MINT_Rand(&r, 32);
  EXPECT_EQ(r.length, 1U);
  EXPECT_EQ(r.words[0], ((0x575b95fcU ^ 0x12345678U) << 16) | (0xfffffffeU ^ 0x091a2b3cU));
  EXPECT_EQ(taken(), 3U);

  const struct {
    std::uint32_t bits, draws, words;
  } rows[] = {{0, 0, 0},        {1, 2, 1},        {16, 2, 1},     {17, 3, 1},
              {31, 3, 1},       {33, 5, 2},       {40, 5, 2},     {64, 6, 2},
              {4159, 390, 130}, {4160, 390, 130}, {~0U, 390, 130}};
  for (const auto &row : rows) {
    Fenced fenced;
    for (int i = 0; i < 20; ++i) {
      MINT_Rand(fenced.get(), row.bits);
      EXPECT_EQ(taken(), row.draws) << row.bits;
      EXPECT_EQ(fenced->length, row.words);
      EXPECT_LT(value_of(*fenced), two_to(std::min(row.bits, 4160U)));
    }
    EXPECT_TRUE(fenced.intact());
  }

  // The last word folds two draws, or three from 17 bits on.
  g_script = {0x0000ffff, 0x00001234};
  MINT_Rand(&r, 16);
  EXPECT_EQ(r.words[0], 0x2468U ^ 0xffffU);
  g_script = {0x0000ffff, 0x00001234, 0x00000001};
  MINT_Rand(&r, 31);
  EXPECT_EQ(r.words[0], (((0x2468U ^ 0xffffU) << 16) | (0x2U ^ 0x7fffU)) & 0x7fffffffU);
}

TEST_F(Draws, WithinRangeThrowsOneDrawAWordAway) {
  MINT r;
  g_script = {1, 2, 3, 99, 4, 5, 6, 99, 7, 8};
  EXPECT_EQ(MINT_RandWithinRange(&r, 1, 72), 69U);
  EXPECT_EQ(taken(), 10U);
  MINT plain;
  g_script = {1, 2, 3, 4, 5, 6, 7, 8};
  MINT_Rand(&plain, 72);
  EXPECT_EQ(value_of(r), value_of(plain));
  taken();

  // Too short: the top word is drawn again, the words below stay.
  g_script = {1, 2, 3, 99, 4, 5, 6, 99, 0, 0, 8, 8, 8, 99, 7, 0x40};
  EXPECT_EQ(MINT_RandWithinRange(&r, 72, 72), 72U);
  EXPECT_EQ(taken(), 16U);
  EXPECT_EQ(r.words[0], plain.words[0]);
  EXPECT_NE(r.words[1], plain.words[1]) << "the highest word that is not zero is drawn again";

  for (const auto &[low, high] : {std::pair{500U, 512U}, {0U, 7U}, {33U, 33U}, {4160U, ~0U}}) {
    const std::uint32_t bits = MINT_RandWithinRange(&r, low, high);
    EXPECT_EQ(bits, MINT_GetBitLength(&r));
    EXPECT_TRUE(low <= bits && bits <= high && r.length <= 130);
  }
  taken();
  EXPECT_EQ(MINT_RandWithinRange(&r, 9, 8), 0U);
  EXPECT_EQ(MINT_RandWithinRange(&r, 4161, ~0U), 0U);
  EXPECT_EQ(r.length, 0U);
  EXPECT_EQ(taken(), 0U);
}

TEST_F(Draws, BetweenTwoIntegers) {
  MINT r;
  const MINT lo = {1, {0x50}}, hi = {1, {0x90}};
  const auto drawing = [&r, &lo, &hi](std::initializer_list<int> firsts) {
    g_script.clear();
    for (const int first : firsts)
      g_script.insert(g_script.end(), {first, 0});
    MINT_RandWithinMINT(&r, &lo, &hi);
    EXPECT_EQ(taken(), 2 * firsts.size());
    return r.words[0];
  };
  EXPECT_EQ(drawing({0x71}), 0x71U);
  EXPECT_EQ(drawing({0x90, 0xff, 0x8f}), 0x8fU) << "at or above hi: again";
  EXPECT_EQ(drawing({0x23}), 0x73U) << "below lo: lo is ORed into it";
  EXPECT_EQ(drawing({0x50, 0x40, 0x51}), 0x51U) << "lo itself: again";

  const MINT next = {1, {0x7f}}, after = {1, {0x80}};
  MINT_RandWithinMINT(&r, &next, &after);
  EXPECT_EQ(r.length, 0U) << "nothing between neighbours, but an end";
  MINT same = hi;
  MINT_RandWithinMINT(&same, &lo, &same);
  EXPECT_TRUE(same.words[0] > 0x50 && same.words[0] < 0x90);
}

TEST_F(Draws, OnesAtTheTop) {
  for (const std::uint32_t bits : {1U, 31U, 32U, 33U, 64U, 100U, 4160U}) {
    for (const std::uint32_t ones : {0U, 1U, 2U, 31U, 33U, 64U, ~0U}) {
      MINT r, plain;
      const auto state = g_random;
      MINT_Rand(&plain, bits);
      g_random = state;
      MINT_RandOnes(&r, bits, ones);
      const std::uint32_t low = bits - std::min(ones, bits);
      mpz_class want;
      mpz_class top = two_to(bits) - two_to(low);
      mpz_ior(want.get_mpz_t(), value_of(plain).get_mpz_t(), top.get_mpz_t());
      EXPECT_EQ(value_of(r), want) << bits << " " << ones;
    }
  }
}

TEST_F(Draws, SeedingDrawsOnceAndSeedsOnce) {
  MINT_RandInit();
  EXPECT_EQ(taken(), 1U);
  EXPECT_EQ(g_seeds.size(), 1U);
}

TEST(Primes, LargestAndLeastOfALength) {
  for (const std::uint32_t bits : {0U, 1U, 31U, 32U, 33U, 64U, 4159U, 4160U}) {
    Fenced r;
    p_max(r.get(), bits);
    EXPECT_EQ(value_of(*r), two_to(bits) - 1);
    EXPECT_EQ(r->length, (bits + 31) / 32);
    p_min(r.get(), bits);
    EXPECT_EQ(value_of(*r), bits == 0 ? mpz_class(0) : two_to(bits - 1));
    p_max(r.get(), ~0U);
    EXPECT_EQ(value_of(*r), capacity() - 1);
    p_min(r.get(), 4161);
    EXPECT_EQ(r->length, 0U);
    EXPECT_TRUE(r.intact());
  }
}

TEST(Primes, IterationsByLength) {
  const struct {
    std::uint32_t bits, iterations;
  } rows[] = {{0, 50},   {159, 50}, {160, 34}, {161, 34}, {190, 34}, {191, 25}, {252, 25},
              {253, 17}, {479, 17}, {480, 8},  {512, 8},  {542, 8},  {543, 7},  {626, 7},
              {627, 6},  {746, 6},  {747, 5},  {926, 5},  {927, 4},  {1024, 4}, {1232, 4},
              {1233, 3}, {1853, 3}, {1854, 2}, {2048, 2}, {~0U, 2}};
  for (const auto &row : rows)
    EXPECT_EQ(PRIME_SelectMRIter(row.bits), row.iterations) << row.bits;
}

TEST_F(Draws, VerdictsOnSmallNumbers) {
  // Every number up to 2^16: primes of the table and even numbers are told composite, without a
  // draw; so is what trial division finds. Above, the draws are those of the bases.
  for (std::uint32_t n = 0; n < 65536; ++n) {
    const MINT value = {2, {n, 0}};
    taken();
    const std::int32_t verdict = PRIME_MRTest(&value, 20);
    const bool divides = [n] {
      for (std::uint32_t p = 3; p < 2000; p += 2)
        if (n % p == 0) return true;
      return n % 2 == 0 || n < 2;
    }();
    if (divides) {
      ASSERT_EQ(verdict, 0) << n;
      ASSERT_EQ(taken(), 0U) << n;
    } else {
      // Twenty random bases: 0 among them fails a prime, at most 20 in 2003 times.
      ASSERT_TRUE(is_prime(n) || verdict == 0) << n;
    }
  }
}

TEST_F(Draws, BasesAreDrawnInOrder) {
  const MINT n = {1, {65537}};
  const auto verdict = [&n](std::initializer_list<int> bases, std::uint32_t iterations) {
    g_script.clear();
    // 17 bits: low half from the third draw.
    for (const int base : bases)
      g_script.insert(g_script.end(), {base >> 16, 0, (base & 0xffff) / 2});
    const std::int32_t result = PRIME_MRTest(&n, iterations);
    EXPECT_TRUE(g_script.empty());
    return result;
  };
  EXPECT_EQ(verdict({2, 4, 65534}, 3), 1);
  EXPECT_EQ(verdict({2, 0}, 9), 0) << "the base 0 fails, on purpose";
  EXPECT_EQ(verdict({0x1fffe, 0x10002, 2}, 1), 1) << "a base not below n is drawn again";
  taken();
  EXPECT_EQ(PRIME_MRTest(&n, 0), 1);
  EXPECT_EQ(taken(), 0U);
  EXPECT_EQ(PRIME_MRTest(nullptr, 1), ZEL_ERR_GENERIC);

  // 2047 * ... strong pseudoprimes: psi(4) = 3215031751 passes the bases 2, 3, 5, 7 but not 11. It
  // is 151 * 751 * 28351, so trial division has it; 2152302898747 = 6763 * 10627 * 29947 passes the
  // bases 2 to 11 and not 13.
  const MINT psi = record(mpz_class("2152302898747"));
  const auto with_base = [&psi](int base) {
    // 41 bits: a whole word, then 9 bits.
    g_script = {0, 0, base / 2, 0, 0};
    if (base % 2 != 0) g_script = {1, 0, base / 2, 0, 0};  // bit 16 of the word as well
    return PRIME_MRTest(&psi, 1);
  };
  EXPECT_EQ(with_base(2), 1);
  EXPECT_EQ(with_base(4), 1);
  EXPECT_EQ(with_base(26), 0);
}

TEST(Primes, LargeNumbers) {
  gmp_randclass random(gmp_randinit_default);
  for (const unsigned bits : {64U, 65U, 128U, 160U, 512U, 1000U, 1024U, 2048U, 4160U}) {
    mpz_class p = random.get_z_bits(bits - 1) + two_to(bits - 1);
    if (bits == 4160)
      p = capacity() - 1337;  // no prime: only the capacity counts
    else
      mpz_nextprime(p.get_mpz_t(), p.get_mpz_t());
    MINT n = record(p);
    EXPECT_EQ(PRIME_MRTest(&n, 3), is_prime(p) ? 1 : 0) << p;
    if (bits > 2000) continue;
    mpz_class q;
    mpz_nextprime(q.get_mpz_t(), p.get_mpz_t());
    n = record(p * q);
    EXPECT_EQ(PRIME_MRTest(&n, 8), 0) << "a product of two large primes";
  }
  // d = 1 and a long run of squarings: 3 * 2^189 + 1 and 2^64-like shapes.
  const MINT proth = record(3 * two_to(189) + 1);
  EXPECT_EQ(PRIME_MRTest(&proth, 10), 1);
}

TEST(Generators, PrimesOfTheAskedSize) {
  const MINT e = {1, {65537}}, odd_long = record(mpz_class("3") * two_to(70) + 1),
             one = {2, {1, 0}};
  for (const auto &[low, high] :
       {std::pair{11U, 11U}, {12U, 40U}, {160U, 160U}, {250U, 256U}, {512U, 512U}}) {
    for (const MINT *exponent : {static_cast<const MINT *>(nullptr), &e, &odd_long, &one}) {
      MINT p;
      PRIME_GeneratePrime(&p, low, high, exponent);
      const mpz_class value = value_of(p);
      EXPECT_TRUE(is_prime(value)) << value;
      EXPECT_TRUE(low <= MINT_GetBitLength(&p) && MINT_GetBitLength(&p) <= high);
      EXPECT_NE(p.words[p.length - 1], 0U);
      if (exponent != nullptr) {
        EXPECT_EQ(gcd_of(value_of(*exponent), value - 1), 1);
      }
    }
  }
}

TEST(Generators, PrimesInAResidueClass) {
  Shapes shapes(11);
  const MINT three = {1, {3}};
  for (int i = 0; i < 20; ++i) {
    mpz_class a = value_of(shapes.operand(3)), m = value_of(shapes.operand(3)) + 1;
    if (i % 2 == 0) m |= 1;
    if (i % 2 != 0) a |= 1;
    if (gcd_of(a, m) != 1 || m % 3 == 0) continue;  // nothing to find
    const MINT A = record(a), M = record(m);
    const std::uint32_t bits = 200 + shapes.below(100);
    MINT p;
    PRIME_GeneratePrimeCongruence(&p, &A, &M, bits, bits, &three);
    const mpz_class value = value_of(p);
    EXPECT_TRUE(is_prime(value)) << value;
    EXPECT_EQ(MINT_GetBitLength(&p), bits);
    const mpz_class residue = mpz_odd_p(a.get_mpz_t()) ? a : mpz_class(a + m);
    EXPECT_EQ((value - residue) % (2 * m), 0);
    EXPECT_NE(value % 3, 1);
  }
}

// The factors are the generator's own: they come back when the same draws make them again.
TEST(Generators, StrongPrimesHaveTheirFactors) {
  const MINT e = {1, {65537}};
  bool seen[2] = {false, false};
  for (int i = 0; i < 40 && !(seen[0] && seen[1]); ++i) {
    const auto state = g_random;
    g_seeds.clear();
    MINT p, r, s, t;
    PRIME_GenerateStrongPrime(&p, 256, 256, &e, 80, 90, 60);
    EXPECT_EQ(g_seeds.size(), 4U);
    const auto after = g_random;
    g_random = state;
    const MINT one = {1, {1}};
    PRIME_GeneratePrime(&t, 60, 60, nullptr);
    PRIME_GeneratePrime(&s, 90, 90, nullptr);
    PRIME_GeneratePrimeCongruence(&r, &one, &t, 80, 80, nullptr);
    g_random = after;
    const mpz_class value = value_of(p);
    EXPECT_TRUE(is_prime(value));
    EXPECT_EQ(MINT_GetBitLength(&p), 256U);
    EXPECT_EQ((value_of(r) - 1) % value_of(t), 0);
    EXPECT_EQ(gcd_of(65537, value - 1), 1);
    const bool turned = (value + 1) % value_of(r) == 0;
    seen[turned] = true;
    if (turned) {
      EXPECT_EQ((value - 1) % value_of(s), 0);
    } else {
      EXPECT_EQ((value - 1) % value_of(r), 0);
      EXPECT_EQ((value + 1) % value_of(s), 0);
    }
  }
  EXPECT_TRUE(seen[0] && seen[1]) << "the difference of the units has both signs";
}

TEST_F(Draws, BoundsWithoutAPrimeEndInZero) {
  const MINT two = {1, {2}}, four = {1, {4}}, zero = {1, {0}}, three = {1, {3}};
  const auto generated = [](std::uint32_t low, std::uint32_t high, const MINT *e) {
    MINT p = {1, {99}};
    PRIME_GeneratePrime(&p, low, high, e);
    return p.length;
  };
  for (const auto length :
       {generated(12, 11, nullptr), generated(2, 10, nullptr), generated(4161, 4161, nullptr),
        generated(64, 64, &two), generated(64, 64, &zero), generated(0, ~0U, nullptr)})
    EXPECT_EQ(length, 0U);
  EXPECT_TRUE(g_seeds.empty()) << "refused before anything was drawn";

  MINT p = {1, {99}};
  PRIME_GeneratePrimeCongruence(&p, &two, &four, 64, 64, nullptr);
  EXPECT_EQ(p.length, 0U) << "even members";
  PRIME_GeneratePrimeCongruence(&p, &two, &zero, 64, 64, nullptr);
  EXPECT_EQ(p.length, 0U) << "no modulus";
  const MINT beyond = {3, {0, 0, 1}};
  PRIME_GeneratePrimeCongruence(&p, &three, &beyond, 64, 64, nullptr);
  EXPECT_EQ(p.length, 0U) << "nothing between the bounds";
  PRIME_GeneratePrimeCongruence(&p, &three, &three, 24, 24, nullptr);
  EXPECT_EQ(p.length, 0U) << "multiples of 3, found out by trying";
  PRIME_GenerateStrongPrime(&p, 64, 64, nullptr, 4000, 4000, 30);
  EXPECT_EQ(p.length, 0U);
  PRIME_GenerateStrongPrime(&p, 64, 64, nullptr, 20, 20, 5);
  EXPECT_EQ(p.length, 0U) << "no prime of 5 bits above the table";
}

}  // namespace
