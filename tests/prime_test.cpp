// Random integers and primes: the draws one by one, the verdicts, the properties of what is made.
#include <cstdlib>
#include <ctime>
#include <deque>
#include <utility>
#include <vector>

#include "support/mint.hpp"
#include "support/prime_model.hpp"
#include "support/vectors.hpp"
#include "zel_cc.h"

// The C library's generator, seen and steered: the program's definition wins over the library's.
namespace {
std::deque<int> g_script;  // draws to give first
std::mt19937 g_random(1);
std::vector<unsigned> g_seeds;
std::vector<std::size_t> g_draws_before_seeds;
std::size_t g_draws = 0;
}  // namespace
extern "C" int rand() noexcept {
  ++g_draws;
  if (g_script.empty()) return static_cast<int>(g_random() >> 1);
  const int next = g_script.front();
  g_script.pop_front();
  return next;
}
extern "C" void srand(unsigned start) noexcept {
  g_seeds.push_back(start);
  g_draws_before_seeds.push_back(g_draws);
}

namespace {

using namespace zel::test;

class Draws : public ::testing::Test {
 protected:
  Draws() { forget(); }
  static void forget() {
    g_script.clear();
    g_seeds.clear();
    g_draws_before_seeds.clear();
    g_draws = 0;
  }
  static std::size_t taken() { return std::exchange(g_draws, 0); }
  /// A model that sees the draws to come.
  static PrimeModel model() {
    forget();
    return PrimeModel(g_random);
  }
  static void expect_same_draws(const PrimeModel &model) {
    EXPECT_EQ(g_draws_before_seeds, model.seeds);
    EXPECT_EQ(taken(), model.draws);
  }
};

bool is_prime(const mpz_class &n) { return mpz_probab_prime_p(n.get_mpz_t(), 30) != 0; }

// Three draws fold into a whole word: worked by hand from the folding rule.
TEST_F(Draws, FoldIntoWholeAndPartialWords) {
  MINT r;
  g_script = {0x12345678, 0x2badcafe, 0x7fffffff};
  MINT_Rand(&r, 32);
  EXPECT_EQ(r.length, 1U);
  EXPECT_EQ(r.words[0], ((0x575b95fcU ^ 0x12345678U) << 16) | (0xfffffffeU ^ 0x091a2b3cU));
  EXPECT_EQ(taken(), 3U);

  // The last word folds two draws, or three from 17 bits on.
  g_script = {0x0000ffff, 0x00001234};
  MINT_Rand(&r, 16);
  EXPECT_EQ(r.words[0], 0x2468U ^ 0xffffU);
  g_script = {0x0000ffff, 0x00001234, 0x00000001};
  MINT_Rand(&r, 31);
  EXPECT_EQ(r.words[0], (((0x2468U ^ 0xffffU) << 16) | (0x2U ^ 0x7fffU)) & 0x7fffffffU);
}

// Every integer against the model: its value, its length, and how many draws it took.
TEST_F(Draws, MakeIntegersAsTheModelDoes) {
  Fenced r;
  for (const std::uint32_t bits : {0U, 1U, 16U, 17U, 31U, 32U, 33U, 40U, 64U, 4159U, 4160U, ~0U}) {
    const std::uint32_t width = std::min(bits, 4160U);
    for (int turn = 0; turn < 10; ++turn) {
      PrimeModel plain = model();
      MINT_Rand(r.get(), bits);
      EXPECT_EQ(value_of(*r), plain.integer(width));
      EXPECT_EQ(r->length, (width + 31) / 32);
      expect_same_draws(plain);
      const std::uint32_t ones[] = {0, 1, 2, 31, 33, 64, ~0U};
      const std::uint32_t low = width - std::min(ones[turn % 7], width);
      PrimeModel forced = model();
      MINT_RandOnes(r.get(), bits, ones[turn % 7]);
      EXPECT_EQ(value_of(*r), forced.integer(width) | mpz_class(two_to(width) - two_to(low)));
      expect_same_draws(forced);
    }
    EXPECT_TRUE(r.intact());
  }
}

TEST_F(Draws, KeepWithinARangeOfLengths) {
  // Exact lengths are often too short at first: the top word is drawn again, those below stay.
  const std::pair<std::uint32_t, std::uint32_t> rows[] = {
      {0, 7}, {33, 33}, {64, 64}, {65, 65}, {72, 72}, {1, 96}, {500, 512}, {4160, 4160}};
  Fenced r;
  for (int turn = 0; turn < 200; ++turn) {
    const auto [low, high] = rows[turn % 8];
    PrimeModel want = model();
    const std::uint32_t bits = MINT_RandWithinRange(r.get(), low, turn % 8 == 7 ? ~0U : high);
    EXPECT_EQ(value_of(*r), want.within_range(low, high));
    EXPECT_EQ(bits, MINT_GetBitLength(r.get()));
    EXPECT_EQ(r->length, (bits + 31) / 32) << "trimmed";
    expect_same_draws(want);
  }
  EXPECT_EQ(MINT_RandWithinRange(r.get(), 9, 8), 0U);
  EXPECT_EQ(MINT_RandWithinRange(r.get(), 4161, ~0U), 0U);
  EXPECT_EQ(r->length, 0U);
  EXPECT_EQ(taken(), 0U);
  EXPECT_TRUE(r.intact());
}

TEST_F(Draws, KeepBetweenTwoIntegers) {
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
  EXPECT_EQ(drawing({0x90, 0xff, 0x8f}), 0x8fU) << "at or above hi: again";
  EXPECT_EQ(drawing({0x23}), 0x73U) << "below lo: lo is ORed into it";
  EXPECT_EQ(drawing({0x50, 0x40, 0x51}), 0x51U) << "lo itself: again";

  Shapes shapes(12);
  for (int turn = 0; turn < 200; ++turn) {
    const mpz_class low = value_of(shapes.operand(5));
    const MINT a = record(low);
    r = record(2 * low + value_of(shapes.operand(5)) + 3);
    PrimeModel want = model();
    const mpz_class expected = want.between(low, value_of(r));
    MINT_RandWithinMINT(&r, &a, &r);
    EXPECT_EQ(value_of(r), expected);
    expect_same_draws(want);
  }
  const MINT next = {1, {0x7f}}, after = {1, {0x80}};
  MINT_RandWithinMINT(&r, &next, &after);
  EXPECT_EQ(r.length, 0U) << "nothing between neighbours, but an end";
}

TEST_F(Draws, SeedAddsTheTimeTheProcessorTimeAndADraw) {
  const auto sum = [] {
    return static_cast<unsigned>(std::time(nullptr)) + static_cast<unsigned>(std::clock());
  };
  g_script = {0x7654321};
  const unsigned before = sum();
  MINT_RandInit();
  const unsigned after = sum();
  EXPECT_EQ(taken(), 1U);
  ASSERT_EQ(g_seeds.size(), 1U);
  EXPECT_LE(g_seeds[0] - 0x7654321 - before, after - before);
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
  int primes = 0, passed = 0;
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
      primes += is_prime(n) ? 1 : 0;
      passed += verdict;
    }
  }
  EXPECT_GE(passed, primes * 95 / 100);
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
  mpz_class last = 0;
  for (const Vector &v : read_vectors("primes")) {
    const mpz_class p = two_to(static_cast<std::uint32_t>(v.number("bits"))) - v.number("below");
    MINT n = record(p);
    EXPECT_EQ(PRIME_MRTest(&n, 3), 1) << p;
    if (last != 0 && p * last < capacity()) {
      n = record(p * last);
      EXPECT_EQ(PRIME_MRTest(&n, 3), 0) << "a product of two large primes";
    }
    last = p;
  }
  // d = 3 and a long run of squarings.
  const MINT proth = record(3 * two_to(189) + 1);
  EXPECT_EQ(PRIME_MRTest(&proth, 10), 1);
}

/// The prime is the model's, out of the same draws, and a prime to GMP as well.
class Generators : public Draws {
 protected:
  void expect_prime(const mpz_class &want, const PrimeModel &model, const mpz_class &e) {
    EXPECT_EQ(value_of(p_), want);
    EXPECT_EQ(p_.length, words_of(want)) << "trimmed";
    expect_same_draws(model);
    EXPECT_TRUE(is_prime(want)) << want;
    EXPECT_EQ(gcd(e, mpz_class(want - 1)), 1);
  }
  std::uint32_t bits() const { return MINT_GetBitLength(&p_); }
  MINT p_;
};

TEST_F(Generators, PrimesOfTheAskedSize) {
  const mpz_class exponents[] = {1, 65537, 3 * two_to(70) + 1};
  for (const auto &[low, high] :
       {std::pair{11U, 11U}, {12U, 40U}, {160U, 160U}, {250U, 256U}, {512U, 512U}}) {
    for (const mpz_class &e : exponents) {
      MINT exponent = record(e);
      exponent.words[exponent.length++] = 0;
      PrimeModel want = model();
      PRIME_GeneratePrime(&p_, low, high, e == 1 && low % 2 == 0 ? nullptr : &exponent);
      expect_prime(want.prime(low, high, e), want, e);
      EXPECT_TRUE(low <= bits() && bits() <= high);
    }
  }
}

TEST_F(Generators, PrimesInAResidueClass) {
  Shapes shapes(11);
  const MINT three = {1, {3}};
  int within = 0, above = 0;
  for (int turn = 0; turn < 400 && within + above < 30; ++turn) {
    mpz_class a = value_of(shapes.operand(3));
    const mpz_class m = value_of(shapes.operand(3)) + 1 + turn % 2;
    const mpz_class residue = mpz_odd_p(a.get_mpz_t()) != 0 ? a : mpz_class(a + m);
    if (mpz_even_p(residue.get_mpz_t()) != 0 || gcd(residue, m) != 1) continue;
    if (gcd(mpz_class(residue - 1), m) % 3 == 0) continue;  // 3 divides every p - 1
    // A residue above the upper bound has its members above it as well, as many as the quotient has
    // zero bits to draw.
    const mpz_class least = residue / m;
    const bool passing = least > two_to(mpz_popcount(least.get_mpz_t()) + 12);
    const std::uint32_t size = passing ? 30 : 200 + shapes.below(99);
    ++(passing ? above : within);
    p_ = record(a);
    const MINT M = record(m);
    PrimeModel want = model();
    PRIME_GeneratePrimeCongruence(&p_, &p_, &M, size, size, &three);
    expect_prime(want.congruent(a, m, size, size, 3), want, 3);
    EXPECT_EQ((value_of(p_) - residue) % (2 * m), 0);
    EXPECT_TRUE(passing ? bits() > size : bits() == size);
  }
  EXPECT_GE(within, 5);
  EXPECT_GE(above, 5);

  // The residue divides the modulus, and is the one prime of its class.
  const mpz_class lone = 65537;
  const MINT A = record(lone);
  PrimeModel want = model();
  PRIME_GeneratePrimeCongruence(&p_, &A, &A, 16, 20, nullptr);
  expect_prime(want.congruent(lone, lone, 16, 20), want, 1);
}

TEST_F(Generators, StrongPrimesHaveTheirFactors) {
  const MINT e = {1, {65537}};
  bool seen[2] = {false, false};
  for (int i = 0; i < 40 && !(seen[0] && seen[1]); ++i) {
    PrimeModel want = model();
    PRIME_GenerateStrongPrime(&p_, 256, 256, &e, 80, 90, 60);
    expect_prime(want.strong(256, 65537, 80, 90, 60), want, 65537);
    EXPECT_EQ(g_seeds.size(), 4U);
    EXPECT_EQ(bits(), 256U);
    EXPECT_EQ((want.r - 1) % want.t, 0);
    const mpz_class p = value_of(p_);
    const bool turned = (p + 1) % want.r == 0;
    seen[turned] = true;
    const int side = turned ? 1 : -1;
    EXPECT_EQ((p - side) % want.s, 0);
    EXPECT_EQ((p + side) % want.r, 0);
  }
  EXPECT_TRUE(seen[0] && seen[1]) << "the difference of the units has both signs";
}

TEST_F(Generators, LengthsThatJustFit) {
  // Few draws have a prime here; these do. With a bit less for p, or more for t, none has.
  const struct {
    std::uint32_t start, max_bits, r, s, t, worse_max_bits, worse_t;
  } rows[] = {{56, 30, 16, 14, 12, 29, 12}, {13, 64, 16, 14, 15, 64, 16}};
  for (const auto &row : rows) {
    g_random.seed(row.start);
    PRIME_GenerateStrongPrime(&p_, row.max_bits, row.max_bits, nullptr, row.r, row.s, row.t);
    EXPECT_TRUE(is_prime(value_of(p_))) << row.max_bits;
    forget();
    PRIME_GenerateStrongPrime(&p_, 20, row.worse_max_bits, nullptr, row.r, row.s, row.worse_t);
    EXPECT_EQ(p_.length + g_draws, 0U);
  }
}

// Refused before anything is drawn.
TEST_F(Generators, ConditionsThatNoPrimeMeets) {
  const mpz_class large = two_to(128) - 159, e = 65537;
  const struct {
    std::uint32_t low, high;
    mpz_class e;
  } plain[] = {{12, 11, 1}, {2, 10, 1}, {4161, 4161, 1}, {0, ~0U, 1}, {64, 64, 2}, {64, 64, 0}};
  for (const auto &row : plain) {
    const MINT exponent = record(row.e);
    p_.length = 9;
    PRIME_GeneratePrime(&p_, row.low, row.high, &exponent);
    EXPECT_EQ(p_.length + g_draws, 0U) << row.low << " " << row.high << " " << row.e;
  }
  const struct {
    const char *why;
    mpz_class a, m;
    std::uint32_t bits;
  } classes[] = {{"even members", 2, 4, 64},
                 {"no modulus", 2, 0, 64},
                 {"multiples of 3", 3, 3, 24},
                 {"multiples of a large prime", 3 * large, 5 * large, 512},
                 {"a divides m and is no prime", 9 * large, 9 * large, 140},
                 {"a prime that would take ages", large, large, 512},
                 {"e divides every p - 1", 1 + e * 6, e * 5, 256},
                 {"beyond a record", capacity() - 1, 7, 64},
                 {"a + m beyond a record", capacity() - 2, 3, 64}};
  for (const auto &row : classes) {
    const MINT a = record(row.a), m = record(row.m), exponent = record(e);
    p_.length = 9;
    PRIME_GeneratePrimeCongruence(&p_, &a, &m, 20, row.bits, &exponent);
    EXPECT_EQ(p_.length + g_draws, 0U) << row.why;
  }
  const std::uint32_t lengths[][3] = {{33, 32, 20}, {~0U, 2, 20}, {20, ~0U, 12},   {20, 20, 5},
                                      {20, 10, 12}, {20, 20, 20}, {4000, 300, 20}, {12, 20, 4000}};
  for (const auto &[r, s, t] : lengths) {
    p_.length = 9;
    PRIME_GenerateStrongPrime(&p_, 64, 64, nullptr, r, s, t);
    EXPECT_EQ(p_.length + g_draws, 0U) << r << " " << s << " " << t;
  }
}

// Found out by trying, but not for ever.
TEST_F(Generators, ClassesWithoutAPrimeEnd) {
  const MINT three = {1, {3}}, beyond = {3, {0, 0, 1}}, one = {1, {1}};
  PRIME_GeneratePrimeCongruence(&p_, &three, &beyond, 64, 64, nullptr);
  EXPECT_EQ(p_.length, 0U) << "nothing between the bounds";

  mpz_class m = two_to(1021) + 1;  // six members of 1024 bits, all composite
  const auto prime_in = [](const mpz_class &class_modulus) {
    for (int k = 0; k < 9; k += 2)
      if (is_prime(k * class_modulus + 1)) return true;
    return false;
  };
  while (prime_in(m))
    ++m;
  const MINT M = record(m);
  forget();
  PRIME_GeneratePrimeCongruence(&p_, &one, &M, 1024, 1024, nullptr);
  EXPECT_EQ(p_.length, 0U);
  EXPECT_LT(g_draws, 1000000U);
}

}  // namespace
