// Division of big integers against GMP, with the rare steps of the algorithm counted.
#include <vector>

#include "mint/division.hpp"
#include "support/features.hpp"
#include "support/mint.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;
using zel::limbs::Limb;

struct Counts {
  int equal = 0, lowered = 0, raised = 0, added_back = 0, two_too_large = 0;
  bool just_lowered = false;
  void equal_top() noexcept { ++equal; }
  void estimate_lowered(bool yes) noexcept {
    just_lowered = yes;
    lowered += yes ? 1 : 0;
  }
  void estimate_raised() noexcept {
    ++raised;
    just_lowered = false;
  }
  void add_back() noexcept {
    ++added_back;
    two_too_large += just_lowered ? 1 : 0;
  }
};

mpz_class value_of_limbs(const std::vector<Limb> &limbs) {
  mpz_class value;
  mpz_import(value.get_mpz_t(), limbs.size(), -1, sizeof(Limb), 0, 0, limbs.data());
  return value;
}

/// Divides by the algorithm of the library and compares with GMP; adds to the counts.
void divide(const std::vector<Limb> &a, const std::vector<Limb> &b, Counts &counts) {
  std::vector<Limb> u = a, d = b, q(a.size() - b.size() + 1);
  u.push_back(0x1234);  // scratch on entry
  zel::mint::divide(q.data(), u.data(), a.size(), d.data(), d.size(), counts);
  const mpz_class va = value_of_limbs(a), vb = value_of_limbs(b);
  EXPECT_EQ(value_of_limbs(q), va / vb);
  EXPECT_EQ(value_of_limbs(u), va % vb);
  EXPECT_EQ(d, b) << "the divisor is left as it was";
}

constexpr Limb kTop = Limb{1} << 63;
constexpr Limb kOnes = ~Limb{0};

TEST(MintDivision, TheRareStepsAreTakenAndRight) {
  Counts counts;
  // The leading limbs of the dividend are the divisor's: the quotient limb is the largest one.
  divide({0, 5, 7, kTop}, {6, 7, kTop}, counts);
  EXPECT_EQ(counts.equal, 1);

  // The two leading limbs divide evenly, and the divisor's third limb takes more than is left.
  counts = {};
  divide({0, 0, 0, kTop >> 1}, {kOnes, 0, kTop}, counts);
  EXPECT_EQ(counts.added_back, 1);
  counts = {};
  divide({0, 0, 0, 0, 0, 3}, {1, 0, 0, 1}, counts);
  EXPECT_EQ(counts.added_back, 1);

  // Two too large: one is seen in the leading limbs, the other one only below them.
  counts = {};
  divide({0, 0, 0, kTop}, {kTop + 1, kTop, kTop}, counts);
  EXPECT_EQ(counts.two_too_large, 1);

  // The product with the reciprocal ends just above a limb: taken back once too often, then raised.
  counts = {};
  divide({1, kOnes - 5, kTop - 1}, {kOnes - 2, kTop + 1}, counts);
  EXPECT_EQ(counts.raised, 1);
}

void divide_shapes(std::uint32_t features) {
  const FeatureMask mask(features);
  Shapes shapes(20);
  Counts counts;
  for (int turn = 0; turn < 20000; ++turn) {
    const std::size_t nb = 1 + shapes.below(turn % 20 == 0 ? 65 : 6);
    const std::size_t na = nb + shapes.below(turn % 20 == 0 ? 65 : 6);
    std::vector<std::uint32_t> words(2 * (na + nb));
    shapes.fill(words.data(), static_cast<std::uint32_t>(2 * na));
    shapes.fill(words.data() + 2 * na, static_cast<std::uint32_t>(2 * nb));
    std::vector<Limb> a(na), b(nb);
    std::memcpy(a.data(), words.data(), na * sizeof(Limb));
    std::memcpy(b.data(), words.data() + 2 * na, nb * sizeof(Limb));
    if (b.back() == 0) b.back() = 1 + shapes.below(3);
    if (turn % 2 == 0) {  // the dividend starts like the divisor, and just below it
      std::copy(b.begin(), b.end(), a.end() - static_cast<long>(nb));
      if (a[na - nb] != 0) --a[na - nb];
    }
    divide(a, b, counts);
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(counts.equal, 100);
  EXPECT_GT(counts.added_back, 100);
  EXPECT_GT(counts.lowered, 100);
}

TEST(MintDivision, LimbsOfEveryShape) {
  divide_shapes(~0U);
  divide_shapes(0U);
}

TEST(MintDivision, RecordsAgreeWithGmp) {
  Shapes shapes(21);
  Fenced q, rem;
  for (int turn = 0; turn < 10000; ++turn) {
    MINT a = shapes.operand();
    MINT b = shapes.operand(turn % 2 == 0 ? 130 : 64);
    if (turn % 50 == 0) a.length = ~0U;
    if (turn % 9 == 0) {  // equal in value, perhaps not in length
      b = a;
      b.length = used(a);
      if (b.length < 130) b.words[b.length++] = 0;
    }
    const mpz_class va = value_of(a), vb = value_of(b);
    const MINT b_before = b;
    for (int alias = 0; alias < 3; ++alias) {
      q.reset(alias == 1 ? a : b);
      rem.reset(alias == 2 ? a : b);
      const MINT *dividend = alias == 1 ? q.get() : alias == 2 ? rem.get() : &a;
      const std::int32_t status = MINT_Div(q.get(), rem.get(), dividend, &b);
      ASSERT_EQ(status, vb == 0 ? -1 : 0);
      if (vb == 0) break;
      ASSERT_EQ(value_of(*q), va / vb) << alias;
      ASSERT_EQ(value_of(*rem), va % vb) << alias;
      ASSERT_EQ(q->length, words_of(va / vb));
      ASSERT_EQ(rem->length, va == 0 || va == vb ? 0 : va < vb ? used(a) : words_of(vb));
      ASSERT_TRUE(q.intact() && rem.intact());
      ASSERT_EQ(std::memcmp(&b, &b_before, sizeof b), 0) << "the divisor changed";
    }
    q.reset(a);
    ASSERT_EQ(MINT_ModClassic(q.get(), &b), vb == 0 ? -1 : 0);
    const mpz_class rest = vb == 0 ? mpz_class(0) : mpz_class(va % vb);
    ASSERT_EQ(value_of(*q), rest);
    ASSERT_EQ(q->length, words_of(rest)) << "trimmed, below the modulus too";
    ASSERT_TRUE(q.intact());
  }
}

TEST(MintDivision, ByOneWord) {
  Shapes shapes(22);
  Fenced q;
  for (int turn = 0; turn < 5000; ++turn) {
    const MINT a = shapes.operand();
    const std::uint32_t d = turn % 5 == 0 ? ~0U - shapes.below(2) : 1 + shapes.below(~0U);
    std::uint32_t rem = 0, again = 0;
    q.reset(a);
    ASSERT_EQ(MINT_DivInteger(q.get(), &rem, q.get(), d), ZEL_OK);
    ASSERT_EQ(value_of(*q), value_of(a) / d);
    ASSERT_EQ(rem, mpz_class(value_of(a) % d).get_ui());
    ASSERT_EQ(q->length, a.length);
    ASSERT_EQ(MINT_ModInteger(&again, &a, d), ZEL_OK);
    ASSERT_EQ(again, rem);
  }
}

TEST(MintDivision, CoreOnArrays) {
  Shapes shapes(23);
  for (int turn = 0; turn < 5000; ++turn) {
    const std::uint32_t la = shapes.below(turn % 10 == 0 ? 263 : 40);
    const std::uint32_t lb = shapes.below(turn % 10 == 0 ? 263 : 20);
    std::vector<std::uint32_t> a(la + 1), b(lb + 1);
    shapes.fill(a.data(), la);
    shapes.fill(b.data(), lb);
    const mpz_class va = value_of_words(a.data(), la), vb = value_of_words(b.data(), lb);
    std::vector<std::uint32_t> divisor = b, rest(a.begin(), a.begin() + la);
    const std::uint32_t significant = words_of(vb);
    const std::uint32_t count = la >= significant ? la - significant + 1 : 0;
    std::vector<std::uint32_t> q(count + 1, 0xa5a5a5a5);
    std::uint32_t q_len = 99, a_len = la;
    std::vector<std::uint32_t> again = a;
    const std::int32_t status = MINT_Div_Core(&q_len, q.data(), &a_len, a.data(), lb, b.data());
    ASSERT_EQ(status, vb == 0 ? -1 : 0);
    ASSERT_EQ(b, divisor);
    ASSERT_EQ(q.back(), 0xa5a5a5a5U);
    if (status != 0) continue;
    ASSERT_EQ(a_len, std::min(la, significant));
    ASSERT_EQ(q_len, words_of(va / vb));
    ASSERT_EQ(value_of_words(q.data(), q_len), va / vb);
    ASSERT_EQ(value_of_words(a.data(), la), va % vb);
    std::uint32_t again_len = la;
    ASSERT_EQ(MINT_ModClassic_Core(&again_len, again.data(), lb, b.data()), 0);
    ASSERT_EQ(again, a);
    ASSERT_EQ(again_len, a_len);
  }
}

}  // namespace
