// Greatest common divisors, their coefficients and modular inverses, against GMP.
#include "mint/secret.hpp"
#include "support/mint.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

class Gcd : public testing::Test {
 protected:
  /// Pairs with a common factor, long quotients, neighbours, and everything that Shapes has.
  void draw(int turn) {
    const std::uint32_t most = turn % 2 == 0 ? 130 : 9;
    a_ = shapes_.operand(most);
    b_ = shapes_.operand(most);
    if (turn % 5 == 0) {
      const mpz_class factor = value_of(shapes_.operand(60));
      a_ = record(value_of(shapes_.operand(70)) * factor);
      b_ = record(value_of(shapes_.operand(70)) * factor);
    }
    if (turn % 7 == 0 && value_of(a_) + 1 < capacity()) b_ = record(value_of(a_) + 1);
    if (turn % 11 == 0) {  // neighbours in a continued fraction of ones: the most steps
      mpz_class low, high;
      mpz_fib2_ui(high.get_mpz_t(), low.get_mpz_t(), 2 + shapes_.below(5900));
      a_ = record(high);
      b_ = record(low);
    }
    if (turn % 13 == 0) b_ = a_;
    va_ = value_of(a_);
    vb_ = value_of(b_);
  }
  Shapes shapes_{30};
  MINT a_, b_;
  mpz_class va_, vb_;
};

TEST_F(Gcd, AgreesWithGmpWhereverTheResultGoes) {
  Fenced g;
  for (int turn = 0; turn < 6000; ++turn) {
    draw(turn);
    const mpz_class want = gcd(va_, vb_);
    for (int alias = 0; alias < 3; ++alias) {
      g.reset(alias == 1 ? a_ : b_);
      MINT_BinGCD(g.get(), alias == 1 ? g.get() : &a_, alias == 2 ? g.get() : &b_);
      ASSERT_EQ(value_of(*g), want) << turn;
      ASSERT_EQ(g->length, va_ == vb_ ? used(a_) : words_of(want)) << turn;
      ASSERT_TRUE(g.intact());
    }
  }
  a_ = b_ = record(capacity() - 1);
  a_.length = ~0U;
  MINT_BinGCD(g.get(), &a_, &b_);
  EXPECT_EQ(value_of(*g), capacity() - 1);
}

TEST_F(Gcd, CoefficientsAreTheLeastAndTheSignIsTheFirsts) {
  Fenced x, y, g;
  for (int turn = 0; turn < 6000; ++turn) {
    draw(turn);
    mpz_class want, s, t;
    mpz_gcdext(want.get_mpz_t(), s.get_mpz_t(), t.get_mpz_t(), va_.get_mpz_t(), vb_.get_mpz_t());
    if (va_ == vb_) s = 0, t = 1;
    const int alias = turn % 4;
    x.reset(alias == 1 ? a_ : b_);
    g.reset(alias == 2 ? a_ : b_);
    const std::int32_t sign = MINT_BinExtGCD(x.get(), y.get(), g.get(),
                                             alias == 1   ? x.get()
                                             : alias == 2 ? g.get()
                                                          : &a_,
                                             alias == 3 ? g.get() : &b_);
    ASSERT_EQ(value_of(*g), want) << turn;
    ASSERT_EQ(value_of(*x), abs(s)) << turn;
    ASSERT_EQ(value_of(*y), abs(t)) << turn;
    ASSERT_EQ(sign, s < 0 ? -1 : 1) << turn;
    ASSERT_EQ(x->length, words_of(s));
    ASSERT_EQ(y->length, words_of(t));
    ASSERT_TRUE(x.intact() && y.intact() && g.intact());
  }
  EXPECT_EQ(MINT_BinExtGCD(x.get(), y.get(), g.get(), &a_, &a_), 1);
  EXPECT_EQ(value_of(*g), value_of(a_));
  EXPECT_EQ(value_of(*x), 0);
  EXPECT_EQ(value_of(*y), 1);
}

TEST_F(Gcd, InverseAgreesWithGmp) {
  Fenced r;
  int found = 0, missing = 0;
  for (int turn = 0; turn < 8000; ++turn) {
    draw(turn);
    mpz_class want;
    if (vb_ == 0) {
      EXPECT_EQ(MINT_Inverse(r.get(), &a_, &b_), ZEL_ERR_GENERIC);
      continue;
    }
    const bool exists = vb_ == 1 || mpz_invert(want.get_mpz_t(), va_.get_mpz_t(), vb_.get_mpz_t());
    r.reset(a_);
    const std::int32_t status = MINT_Inverse(r.get(), turn % 2 == 0 ? r.get() : &a_, &b_);
    ASSERT_EQ(status, exists ? ZEL_OK : ZEL_ERR_NO_INVERSE) << turn;
    ASSERT_EQ(value_of(*r), exists ? want : mpz_class(0)) << turn;
    ASSERT_EQ(r->length, exists ? words_of(want) : 0);
    ASSERT_TRUE(r.intact());
    ++(exists ? found : missing);
  }
  EXPECT_GT(found, 1000);
  EXPECT_GT(missing, 1000);
}

TEST_F(Gcd, InverseOfASecretIsTheSame) {
  Fenced r;
  int found = 0, missing = 0;
  for (int turn = 0; turn < 3000; ++turn) {
    draw(turn);
    if (turn % 4 != 0) {  // mostly the sizes of group orders
      a_.length %= 9;
      b_.length = 1 + b_.length % 9;
    }
    b_.words[0] |= 1;
    if (b_.length == 0) b_.length = 1;
    va_ = value_of(a_);
    vb_ = value_of(b_);
    mpz_class want = 0;
    const bool exists = vb_ == 1 || mpz_invert(want.get_mpz_t(), va_.get_mpz_t(), vb_.get_mpz_t());
    if (!exists) want = 0;
    r.reset(a_);
    const std::int32_t status = zel::mint::inverse_secret(*r, turn % 2 == 0 ? *r : a_, b_);
    ASSERT_EQ(status, exists ? ZEL_OK : ZEL_ERR_NO_INVERSE) << turn;
    ASSERT_EQ(value_of(*r), want) << turn;
    ASSERT_EQ(r->length, words_of(vb_));
    ASSERT_TRUE(r.intact());
    ++(exists ? found : missing);
  }
  EXPECT_GT(found, 500);
  EXPECT_GT(missing, 500);
}

}  // namespace
