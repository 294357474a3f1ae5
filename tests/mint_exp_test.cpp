// Montgomery multiplication and exponentiation against GMP, under every set of processor features.
#include "mint/montgomery.hpp"
#include "mint/public_exp.hpp"
#include "mint/secret.hpp"
#include "mint/secret_exp.hpp"
#include "support/features.hpp"
#include "support/mint.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

mpz_class power(const mpz_class &a, const mpz_class &e, const mpz_class &n) {
  mpz_class r;
  mpz_powm(r.get_mpz_t(), a.get_mpz_t(), e.get_mpz_t(), n.get_mpz_t());
  return r;
}

mpz_class inverse(const mpz_class &a, const mpz_class &n) {
  mpz_class r;
  mpz_invert(r.get_mpz_t(), a.get_mpz_t(), n.get_mpz_t());
  return r;
}

mpz_class mod(const mpz_class &a, const mpz_class &n) {
  mpz_class r;
  mpz_mod(r.get_mpz_t(), a.get_mpz_t(), n.get_mpz_t());
  return r;
}

bool trimmed(const MINT &a) { return a.length == 0 || a.words[a.length - 1] != 0; }

class Montgomery : public ::testing::TestWithParam<FeatureSet> {
 protected:
  MINT modulus(std::uint32_t most = 130) {
    MINT n = shapes_.operand(most);
    if (n.length == 0) n.length = 1;
    n.words[0] |= 1;
    return n;
  }

  Shapes shapes_{20260};
  FeatureMask mask_{GetParam().mask};
};

TEST_P(Montgomery, ContextHoldsTheModulusAndItsConstants) {
  for (int i = 0; i < 400; ++i) {
    const MINT N = modulus();
    const mpz_class n = value_of(N);
    const std::uint32_t ri = 32 * words_of(n);
    MINT_MONT_CTX mont;
    std::memset(&mont, 0xa5, sizeof mont);
    ASSERT_EQ(MINT_mont_set(&mont, &N), ZEL_OK);
    ASSERT_EQ(mont.ri, ri);
    ASSERT_EQ(value_of(mont.N), n);
    ASSERT_EQ(value_of(mont.RR), mod(two_to(2 * ri), n)) << ri;
    ASSERT_TRUE(trimmed(mont.RR));
    ASSERT_EQ(mont.Ni.length, 0U);
    ASSERT_EQ(mont.minv[0] * N.words[0], ~0U);
    ASSERT_EQ(mont.minv[1], 0U);
  }
}

TEST_P(Montgomery, ProductsAndReductionsDivideByR) {
  for (int i = 0; i < 3000; ++i) {
    const MINT N = modulus();
    const mpz_class n = value_of(N);
    MINT_MONT_CTX mont;
    MINT_mont_set(&mont, &N);
    const mpz_class r = two_to(mont.ri);
    const mpz_class over_r = inverse(r, n);
    const MINT a = record(mod(value_of(shapes_.operand()), n));
    const MINT b = record(mod(value_of(shapes_.operand()), n));
    Fenced product;
    product.reset(a);
    const MINT *const right = i % 3 == 0 ? product.get() : &b;  // aliased: the square
    const mpz_class wide = value_of(a) * value_of(*right);
    ASSERT_EQ(MINT_mont_mul_mod(product.get(), product.get(), right, &mont), 1);
    ASSERT_EQ(value_of(*product), mod(wide * over_r, n)) << n;
    ASSERT_TRUE(trimmed(*product) && product.intact());

    // The reduction alone, of what fits a record.
    const mpz_class t = mod(wide, capacity() < r * n ? capacity() : mpz_class(r * n));
    Fenced scratch;
    scratch.reset(record(t));
    Fenced reduced;
    MINT *const to = i % 2 == 0 ? reduced.get() : scratch.get();
    ASSERT_EQ(MINT_from_mont_word(to, scratch.get(), &mont), 1);
    ASSERT_EQ(value_of(*to), mod(t * over_r, n));
    ASSERT_EQ(to->length, mont.ri / 32) << "not trimmed";
    if (to == reduced.get()) {
      ASSERT_EQ(value_of(*scratch), 0);
      ASSERT_EQ(scratch->length, std::min(2 * mont.ri / 32, 130U));
    }
    mont.Ni = record(r - inverse(n, r));
    const MINT whole = record(t);
    ASSERT_EQ(MINT_from_mont(reduced.get(), &whole, &mont), 1);
    ASSERT_EQ(value_of(*reduced), mod(t * over_r, n));
    ASSERT_TRUE(reduced.intact() && scratch.intact());
  }
}

TEST_P(Montgomery, PowersAgreeWithGmp) {
  for (int i = 0; i < 600; ++i) {
    // Short numbers mostly: they reach every path for padding, windows and odd word counts.
    const std::uint32_t most = i % 20 == 0 ? 130 : i % 4 == 0 ? 40 : 12;
    const MINT N = modulus(most);
    const MINT a = shapes_.operand();
    const MINT e = shapes_.operand(i % 20 == 0 ? 6 : most);
    const mpz_class want =
        value_of(e) == 0 ? mpz_class(1) : power(value_of(a), value_of(e), value_of(N));
    Fenced r;
    ASSERT_EQ(MINT_mont_exp_mod(r.get(), &a, &e, &N), ZEL_OK);
    ASSERT_EQ(value_of(*r), want) << value_of(a) << "^" << value_of(e) << " mod " << value_of(N);
    ASSERT_TRUE(trimmed(*r) && r.intact());

    const bool vanishes = value_of(a) == 0 || value_of(N) == 1;
    ASSERT_EQ(MINT_ExpWin(r.get(), &a, &e, &N, 1 + shapes_.below(8)), ZEL_OK);
    ASSERT_EQ(value_of(*r), vanishes ? mpz_class(0) : want);
    const MINT public_result = *r;
    ASSERT_EQ(zel::mint::power_secret(*r, a, e, N, 32 * used(e) + shapes_.below(9)), ZEL_OK);
    ASSERT_EQ(value_of(*r), value_of(public_result));
    ASSERT_TRUE(trimmed(*r) && r.intact());
  }
}

// One full-size power for every size that has its own path: whole blocks, padded ones, capacity.
TEST_P(Montgomery, LongExponents) {
  for (const std::uint32_t bits : {512U, 1024U, 1536U, 2048U, 2080U, 3072U, 4096U, 4160U}) {
    MINT N, a, e;
    p_max(&N, bits);  // all ones: reductions carry out of the top
    p_max(&a, bits - 1);
    p_max(&e, bits);
    MINT r;
    ASSERT_EQ(MINT_mont_exp_mod(&r, &a, &e, &N), ZEL_OK);
    EXPECT_EQ(value_of(r), power(value_of(a), value_of(e), value_of(N))) << bits;
    N.words[0] -= 2;
    N.words[N.length - 1] >>= 20;
    e.words[0] = 0x5a5a5a5a;
    ASSERT_EQ(MINT_mont_exp_mod(&r, &a, &e, &N), ZEL_OK);
    EXPECT_EQ(value_of(r), power(value_of(a), value_of(e), value_of(N))) << bits;
  }
}

TEST_P(Montgomery, TwoPowersAtOnceAreTheTwoPowers) {
  for (int i = 0; i < 60; ++i) {
    zel::mint::SecretPower powers[2];
    std::int32_t status = ZEL_OK;
    MINT a[2], e[2], N[2], r[2];
    mpz_class want[2];
    for (int k = 0; k < 2; ++k) {
      N[k] = modulus(i % 2 == 0 ? 32 : 64);
      a[k] = shapes_.operand(64);
      e[k] = shapes_.operand(33);
      if (value_of(a[k]) == 0) a[k] = record(2);
      want[k] = power(value_of(a[k]), value_of(e[k]), value_of(N[k]));
      if (i % 5 == k) {
        a[k].length = 0;
        want[k] = 0;
      }
      if (i % 7 == k) {
        N[k].words[0] -= 1;
        want[k] = 0;
        status = ZEL_ERR_GENERIC;
      }
      powers[k] = {&r[k], &a[k], &e[k], &N[k], 32 * used(e[k])};
    }
    // The first result may be any operand of the second power.
    MINT *const operands[] = {&r[0], &a[1], &e[1], &N[1]};
    powers[0].r = operands[i % 4];
    ASSERT_EQ(zel::mint::power_secret_two(powers[0], powers[1]), status);
    ASSERT_EQ(value_of(*powers[0].r), want[0]);
    ASSERT_EQ(value_of(r[1]), want[1]);
  }
}

// What signatures are made of: a product of two powers, and sums of products.
TEST_P(Montgomery, ProductsOfPowersAndSumsOfProductsAgreeWithGmp) {
  using namespace zel::mint;
  for (int i = 0; i < 200; ++i) {
    const std::uint32_t most = i % 20 == 0 ? 130 : 12;
    const MINT N = modulus(most);
    const MINT a = shapes_.operand(most), b = shapes_.operand(most), c = shapes_.operand(most);
    const MINT e = shapes_.operand(6), f = shapes_.operand(4);
    Fenced r;
    ASSERT_EQ(power_product(*r, a, e, b, f, N), ZEL_OK);
    const mpz_class want = power(value_of(a), value_of(e), value_of(N)) *
                           power(value_of(b), value_of(f), value_of(N)) % value_of(N);
    ASSERT_EQ(value_of(*r), want) << value_of(N) << " " << value_of(e) << " " << value_of(f);
    ASSERT_TRUE(trimmed(*r) && r.intact());
    ASSERT_EQ(multiply_add_secret(*r, a, b, c, N), ZEL_OK);
    ASSERT_EQ(value_of(*r), (value_of(a) * value_of(b) + value_of(c)) % value_of(N));
    ASSERT_TRUE(r.intact());
    ASSERT_EQ(below_secret(a, b), value_of(a) < value_of(b));
    ASSERT_FALSE(below_secret(a, a));
  }
}

/// The sets that make a difference here.
std::vector<FeatureSet> reduced_sets() {
  std::vector<FeatureSet> sets = feature_sets();
  std::erase_if(sets, [](const FeatureSet &set) {
    return set.name != "everything" && set.name != "without_avx2" && set.name != "nothing";
  });
  return sets;
}

INSTANTIATE_TEST_SUITE_P(Features, Montgomery, ::testing::ValuesIn(reduced_sets()),
                         [](const auto &row) { return row.param.name; });

TEST(Powers, EvenModuli) {
  Shapes shapes(7);
  for (int i = 0; i < 300; ++i) {
    MINT N = shapes.operand(i % 10 == 0 ? 130 : 10);
    const MINT a = shapes.operand();
    const MINT e = shapes.operand(3);
    if (N.length != 0) N.words[0] &= ~1U;
    if (value_of(N) == 0 || value_of(e) == 0) continue;
    MINT r;
    ASSERT_EQ(MINT_ExpWin(&r, &a, &e, &N, 4), ZEL_OK);
    ASSERT_EQ(value_of(r), power(value_of(a), value_of(e), value_of(N)));
    MINT_MONT_CTX mont;
    ASSERT_EQ(MINT_mont_set(&mont, &N), ZEL_OK);
    ASSERT_EQ(mont.minv[0], 0U);
    if (value_of(a) != 0) {
      ASSERT_EQ(MINT_mont_exp_mod(&r, &a, &e, &N), ZEL_ERR_GENERIC);
      ASSERT_EQ(r.length, 0U);
    }
  }
}

TEST(Powers, SpecialCasesInTheirOrder) {
  const MINT zero = {3, {0, 0, 0}}, one = {2, {1, 0}}, two = {1, {2}}, seven = {1, {7}};
  MINT r = {1, {99}};
  const auto win = [&r](const MINT &a, const MINT &e, const MINT &n, std::uint32_t w) {
    r = {1, {99}};
    return MINT_ExpWin(&r, &a, &e, &n, w);
  };
  const auto expect = [&r](std::int32_t status, std::uint32_t value, std::int32_t got) {
    EXPECT_EQ(got, status);
    EXPECT_EQ(value_of(r), value);
  };
  // The records come first, then N, a, N = 1, e, and the window last.
  expect(ZEL_ERR_GENERIC, 99, win(zero, seven, seven, 4));
  expect(ZEL_ERR_GENERIC, 99, win(zero, zero, seven, 4));
  expect(ZEL_ERR_GENERIC, 99, win(seven, zero, seven, 4));
  MINT zero2 = zero;
  expect(ZEL_ERR_GENERIC, 0, win(two, seven, zero, 4));
  expect(ZEL_OK, 0, win(zero, zero2, seven, 0));
  expect(ZEL_OK, 0, win(two, zero, one, 0));
  expect(ZEL_OK, 1, win(two, zero, seven, 0));
  for (const std::uint32_t w : {0U, 24U, 32U, 33U, ~0U})
    expect(ZEL_ERR_GENERIC, 0, win(two, one, seven, w));
  MINT seven2 = seven;
  expect(ZEL_OK, 0, win(seven2, two, seven, 23));

  // The result may be any operand, the modulus too.
  for (int k = 0; k < 3; ++k) {
    MINT v[3] = {{1, {5}}, {1, {3}}, {1, {77}}};
    EXPECT_EQ(MINT_ExpWin(&v[k], &v[0], &v[1], &v[2], 4), ZEL_OK);
    EXPECT_EQ(value_of(v[k]), 125 % 77);
    MINT u[3] = {{1, {5}}, {1, {3}}, {1, {77}}};
    EXPECT_EQ(MINT_mont_exp_mod(&u[k], &u[0], &u[1], &u[2]), ZEL_OK);
    EXPECT_EQ(value_of(u[k]), 125 % 77);
  }

  EXPECT_EQ(MINT_mont_exp_mod(&r, &zero, &zero, &zero), ZEL_OK);
  EXPECT_EQ(value_of(r), 1) << "an exponent of zero comes first";
  EXPECT_EQ(MINT_mont_exp_mod(&r, &zero, &two, &seven), ZEL_OK);
  EXPECT_EQ(r.length, 0U);
  EXPECT_EQ(MINT_mont_exp_mod(&r, &seven, &two, &seven), ZEL_OK);
  EXPECT_EQ(r.length, 0U);
}

TEST(Powers, HostileLengthsStayInside) {
  Fenced r, a, e, n;
  MINT all;
  p_max(&all, 4160);
  all.length = ~0U;
  for (Fenced *f : {&r, &a, &e, &n})
    f->reset(all);
  MINT_MONT_CTX mont;
  EXPECT_EQ(MINT_mont_set(&mont, n.get()), ZEL_OK);
  EXPECT_EQ(mont.ri, 4160U);
  EXPECT_EQ(MINT_mont_mul_mod(r.get(), a.get(), e.get(), &mont), 1);
  EXPECT_EQ(value_of(*r), 0);
  mont.ri = ~0U;
  mont.N.length = mont.Ni.length = mont.RR.length = ~0U;
  EXPECT_EQ(MINT_from_mont(r.get(), a.get(), &mont), 1);
  EXPECT_EQ(MINT_from_mont_word(r.get(), a.get(), &mont), 1);
  a.reset(all);
  EXPECT_EQ(MINT_mont_exp_mod(r.get(), a.get(), e.get(), n.get()), ZEL_OK);
  EXPECT_EQ(value_of(*r), 0);
  for (Fenced *f : {&r, &a, &e, &n})
    EXPECT_TRUE(f->intact());
}

TEST(WordRuns, MultiplyAddAndSubtract) {
  Shapes shapes(3);
  for (int i = 0; i < 500; ++i) {
    const std::uint32_t len = shapes.below(12);
    std::uint32_t a[12], b[12], r[12];
    shapes.fill(a, len);
    shapes.fill(b, len);
    std::copy(b, b + len, r);
    const std::uint32_t w = shapes.below(4) == 0 ? ~0U : shapes.word();
    const auto num = static_cast<std::int32_t>(len);
    const mpz_class top = two_to(32 * len);
    const std::uint32_t carry = MINT_mul_add_words(r, a, num, w);
    EXPECT_EQ(value_of_words(r, len) + top * carry,
              value_of_words(b, len) + value_of_words(a, len) * w);
    const std::uint32_t borrow = MINT_sub_words(r, a, b, num);
    EXPECT_EQ(value_of_words(r, len) - top * borrow,
              value_of_words(a, len) - value_of_words(b, len));
  }
  std::uint32_t untouched = 5;
  EXPECT_EQ(MINT_mul_add_words(&untouched, &untouched, -1, 7), 0U);
  EXPECT_EQ(MINT_sub_words(&untouched, &untouched, &untouched, -1), 0U);
  EXPECT_EQ(untouched, 5U);
}

}  // namespace
