// Big integers: sums, products and bitwise operations, against GMP.
#include <optional>
#include <string>
#include <vector>

#include "support/features.hpp"
#include "support/mint.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

// One row an operation: its value before it is cut to the capacity, and the length of its result.
struct Operation {
  const char *name;
  void (*run)(MINT *, const MINT *, const MINT *);
  mpz_class (*value)(const mpz_class &, const mpz_class &);
  std::uint32_t (*length)(const MINT &, const MINT &, const mpz_class &);
};

std::uint32_t longer(const MINT &a, const MINT &b, const mpz_class &) {
  return std::max(used(a), used(b));
}
std::uint32_t sum_of_lengths(const MINT &a, const MINT &b, const mpz_class &) {
  return used(a) == 0 || used(b) == 0 ? 0 : std::min(used(a) + used(b), 130U);
}
mpz_class product(const mpz_class &a, const mpz_class &b) { return a * b; }

const Operation kOperations[] = {
    {"Add", MINT_Add, [](const mpz_class &a, const mpz_class &b) { return mpz_class(a + b); },
     [](const MINT &a, const MINT &b, const mpz_class &v) {
       const std::uint32_t len = longer(a, b, v);
       return v >= two_to(32 * len) && len < 130 ? len + 1 : len;
     }},
    {"Sub",
     [](MINT *r, const MINT *a, const MINT *b) {
       const std::int32_t order = MINT_Compare(a, b);
       EXPECT_EQ(MINT_Sub(r, a, b), order);
     },
     [](const mpz_class &a, const mpz_class &b) { return mpz_class(abs(a - b)); },
     [](const MINT &a, const MINT &b, const mpz_class &v) {
       return v == 0 ? 0 : value_of(a) > value_of(b) ? used(a) : used(b);
     }},
    {"Mult", MINT_Mult, product, sum_of_lengths},
    {"KMult 1", [](MINT *r, const MINT *a, const MINT *b) { MINT_KMult(r, a, b, 1); }, product,
     sum_of_lengths},
    {"KMult deep", [](MINT *r, const MINT *a, const MINT *b) { MINT_KMult(r, a, b, ~0U); }, product,
     sum_of_lengths},
    {"XOR", MINT_XOR, [](const mpz_class &a, const mpz_class &b) { return mpz_class(a ^ b); },
     longer},
    {"OR", MINT_OR, [](const mpz_class &a, const mpz_class &b) { return mpz_class(a | b); },
     longer},
    {"AND", MINT_AND, [](const mpz_class &a, const mpz_class &b) { return mpz_class(a & b); },
     [](const MINT &a, const MINT &b, const mpz_class &v) {
       return used(a) == 0 || used(b) == 0 ? 0 : longer(a, b, v);
     }},
};

class EveryOperation : public testing::TestWithParam<Operation> {
 protected:
  // Runs r = a op b where r is a record of its own, or one of the operands.
  void check(const MINT &a, const MINT &b) {
    const mpz_class v = GetParam().value(value_of(a), value_of(b));
    const std::uint32_t len = GetParam().length(a, b, v);
    const mpz_class want = v % capacity();
    const auto expect = [&](const char *where) {
      ASSERT_EQ(r_->length, len) << where << " " << used(a) << " " << used(b);
      ASSERT_EQ(value_of(*r_), want) << where << " " << used(a) << " " << used(b);
      ASSERT_TRUE(r_.intact()) << where;
    };
    r_->length = ~0U;
    GetParam().run(r_.get(), &a, &b);
    expect("apart");
    r_.reset(a);
    GetParam().run(r_.get(), r_.get(), &b);
    expect("r is a");
    r_.reset(b);
    GetParam().run(r_.get(), &a, r_.get());
    expect("r is b");
  }
  Fenced r_;
  std::optional<FeatureMask> features_;
};

TEST_P(EveryOperation, AgreesWithGmpWhereverTheResultGoes) {
  Shapes shapes(5);
  for (int turn = 0; turn < 6000; ++turn) {
    if (turn % 3000 == 0) features_.emplace(turn == 0 ? ~0U : 0U);
    const MINT a = shapes.operand(turn % 2 == 0 ? 130 : 66);
    const MINT b = shapes.operand(turn % 2 == 0 ? 130 : 66);
    check(a, b);
    if (turn % 8 == 0) check(a, a);
    if (HasFatalFailure()) return;
  }
}

TEST_P(EveryOperation, OneRecordInAllThreePlaces) {
  Shapes shapes(6);
  for (int turn = 0; turn < 300; ++turn) {
    const MINT a = shapes.operand();
    const mpz_class v = GetParam().value(value_of(a), value_of(a));
    r_.reset(a);
    GetParam().run(r_.get(), r_.get(), r_.get());
    ASSERT_EQ(r_->length, GetParam().length(a, a, v));
    ASSERT_EQ(value_of(*r_), v % capacity());
  }
}

TEST_P(EveryOperation, ALengthAboveTheCapacityCountsAsTheCapacity) {
  Shapes shapes(7);
  for (const std::uint32_t length : {131U, 0x40000000U, ~0U}) {
    MINT a = shapes.operand();
    MINT b = shapes.operand();
    a.length = length;
    check(a, b);
    check(b, a);
    b.length = ~length;
    check(a, b);
  }
}

INSTANTIATE_TEST_SUITE_P(Mint, EveryOperation, testing::ValuesIn(kOperations), [](const auto &row) {
  std::string name = row.param.name;
  std::erase(name, ' ');
  return name;
});

TEST(MintWords, OperationsWithOneWord) {
  Shapes shapes(8);
  Fenced r;
  std::optional<FeatureMask> features;
  for (int turn = 0; turn < 4000; ++turn) {
    MINT a = shapes.operand();
    const std::uint32_t w = turn % 7 == 0 ? 0 : turn % 3 == 0 ? ~0U : shapes.word();
    const mpz_class v = value_of(a);
    const std::uint32_t len = a.length;
    const auto grown = [&](const mpz_class &value, std::uint32_t from) {
      return value >= two_to(32 * from) && from < 130 ? from + 1 : from;
    };
    const auto expect = [&](const mpz_class &value, std::uint32_t length, const char *what) {
      ASSERT_EQ(value_of(*r), value % capacity()) << what;
      ASSERT_EQ(r->length, length) << what;
      ASSERT_TRUE(r.intact()) << what;
    };
    r.reset(a);
    MINT_AddInteger(r.get(), r.get(), w);
    expect(v + w, grown(v + w, len), "add");
    MINT_MultInteger(r.get(), &a, w);
    expect(v * w, w == 0 ? 0 : grown(v * w, len), "multiply");
    const std::int32_t sign = MINT_SubInteger(r.get(), &a, w);
    if (w != 0 && v == 0) {
      expect(w, 1, "subtract from zero");
      EXPECT_EQ(sign, -1);
    } else {
      expect(v >= w ? mpz_class(v - w) : mpz_class(two_to(32 * len) + v - w), len, "subtract");
      EXPECT_EQ(sign, v == 0 ? 0 : 1);
    }
    MINT_SetByInteger(r.get(), w);
    expect(w, w == 0 ? 0 : 1, "set");
    if (turn % 2000 == 0) features.emplace(turn == 0 ? 0U : ~0U);
    MINT_Square(r.get(), &a);
    expect(v * v, std::min(2 * len, 130U), "square");
    r.reset(a);
    MINT_KSquare(r.get(), r.get(), shapes.below(10));
    expect(v * v, std::min(2 * len, 130U), "Karatsuba square");
  }
}

TEST(MintCore, ArraysOfAnyLength) {
  Shapes shapes(9);
  for (int turn = 0; turn < 2000; ++turn) {
    const std::uint32_t la = shapes.below(turn % 10 == 0 ? 300 : 40);
    const std::uint32_t lb = shapes.below(turn % 10 == 0 ? 300 : 40);
    std::vector<std::uint32_t> a(la + 1), b(lb + 1);
    shapes.fill(a.data(), la);
    shapes.fill(b.data(), lb);
    const mpz_class va = value_of_words(a.data(), la), vb = value_of_words(b.data(), lb);
    std::uint32_t len = 0;

    std::vector<std::uint32_t> r(std::max(la, lb) + 1);
    MINT_Add_Core(&len, r.data(), la, a.data(), lb, b.data());
    EXPECT_EQ(value_of_words(r.data(), len), va + vb);
    EXPECT_EQ(len, std::max(la, lb) + (va + vb >= two_to(32 * std::max(la, lb)) ? 1 : 0));

    const std::int32_t order = la != lb ? (la > lb ? 1 : -1) : sgn(va - vb);
    r.assign(std::max<std::size_t>(std::max(la, lb), 1), 0);
    ASSERT_EQ(MINT_Sub_Core(&len, r.data(), la, a.data(), lb, b.data()), order);
    mpz_class difference = (va - vb) * order;
    if (difference < 0) difference += two_to(32 * std::max(la, lb));
    if (order != 0) {
      EXPECT_EQ(value_of_words(r.data(), len), difference);
      EXPECT_EQ(len, std::max(la, lb));
    }

    r.assign(la + lb, 0xdeadbeef);
    MINT_Mult_Core(&len, r.data(), la, a.data(), lb, b.data());
    EXPECT_EQ(len, la + lb);
    EXPECT_EQ(value_of_words(r.data(), len), va * vb);
    r.assign(la + lb, 0xdeadbeef);
    MINT_KMult_Core(&len, r.data(), la, a.data(), lb, b.data(), shapes.below(9), MINT_Mult_Core);
    EXPECT_EQ(len, la + lb);
    EXPECT_EQ(value_of_words(r.data(), len), va * vb);
    r.assign(2 * la, 0xdeadbeef);
    MINT_KSquare_Core(&len, r.data(), la, a.data(), ~0U, MINT_Square_Core);
    EXPECT_EQ(len, 2 * la);
    EXPECT_EQ(value_of_words(r.data(), len), va * va);
  }
}

// The caller's own routine gets what is not split, and only that.
int g_calls = 0;
std::uint32_t g_longest = 0;
void counting_mult(std::uint32_t *r_len, std::uint32_t *r, std::uint32_t a_len,
                   const std::uint32_t *a, std::uint32_t b_len, const std::uint32_t *b) {
  ++g_calls;
  g_longest = std::max(g_longest, a_len);
  MINT_Mult_Core(r_len, r, a_len, a, b_len, b);
}
void counting_square(std::uint32_t *r_len, std::uint32_t *r, std::uint32_t a_len,
                     const std::uint32_t *a) {
  counting_mult(r_len, r, a_len, a, a_len, a);
}

TEST(MintCore, KaratsubaFallsThroughToTheRoutineGiven) {
  const struct {
    std::uint32_t len, depth;
    int calls;
    std::uint32_t longest;
  } rows[] = {{64, 0, 1, 64}, {64, 1, 3, 32}, {64, 2, 9, 16}, {1, 5, 1, 1}, {64, ~0U, 729, 1}};
  const MINT a = record(capacity() - 1);
  std::uint32_t r[260];
  std::uint32_t len = 0;
  for (const auto &row : rows) {
    g_calls = 0, g_longest = 0;
    MINT_KMult_Core(&len, r, row.len, a.words, row.len, a.words, row.depth, counting_mult);
    EXPECT_EQ(g_calls, row.calls) << row.len << " " << row.depth;
    EXPECT_EQ(g_longest, row.longest);
    g_calls = 0, g_longest = 0;
    MINT_KSquare_Core(&len, r, row.len, a.words, row.depth, counting_square);
    EXPECT_EQ(g_calls, row.calls) << row.len << " " << row.depth;
    EXPECT_EQ(g_longest, row.longest);
  }
}

}  // namespace
