// Big integers: what a refusal leaves behind, by one rule for every function with a status.
#include <cstdlib>

#include "mint/public_exp.hpp"
#include "mint/secret.hpp"
#include "mint/secret_exp.hpp"
#include "support/mint.hpp"
#include "zel_cc.h"

// Tables of powers come from calloc, which the linker leads through here.
namespace {
bool g_out_of_memory = false;
}
extern "C" void *__real_calloc(std::size_t count, std::size_t size);
extern "C" void *__wrap_calloc(std::size_t count, std::size_t size) {
  return g_out_of_memory ? nullptr : __real_calloc(count, size);
}

namespace {

using namespace zel::test;
using zel::mint::inverse_secret;
using zel::mint::multiply_add_secret;
using zel::mint::power_product;
using zel::mint::power_secret;
using zel::mint::power_secret_two;

const MINT kZero = {3, {0, 0, 0}}, kThree = {1, {3}}, kFive = {1, {5}}, kEven = {1, {10}};
const std::uint8_t kBytes[] = {0, 0, 0, 2, 9, 9, 9, 9}, kTooMany[8] = {0, 0, 0, 131};

struct Refusal {
  const char *name;
  std::int32_t status;
  enum { kResultsZero, kUntouched, kOutOfMemory } leaves;
  std::int32_t (*call)(MINT &r, MINT &q);  ///< q is set to zero where there is no second result
};

std::int32_t only(MINT &q, std::int32_t status) {
  q.length = 0;
  return status;
}

const Refusal kRefusals[] = {
    {"digit", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_SetByHexString(&r, "123456789x")); }},
    {"bytes", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ReadFromBuffer(&r, kBytes, sizeof kBytes)); }},
    {"count", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ReadFromBuffer(&r, kTooMany, sizeof kTooMany)); }},
    {"Div", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return MINT_Div(&q, &r, &kFive, &kZero); }},
    {"Div, q is rem", -1, Refusal::kUntouched,
     [](MINT &r, MINT &) { return MINT_Div(&r, &r, &kFive, &kThree); }},
    {"Div, q is b", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_Div(&q, &r, &kFive, &q); }},
    {"Div, rem is b", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_Div(&q, &r, &kFive, &r); }},
    {"DivInteger", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return MINT_DivInteger(&q, &r.length, &kFive, 0); }},
    {"ModInteger", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ModInteger(&r.length, &kFive, 0)); }},
    {"ModClassic", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ModClassic(&r, &kZero)); }},
    {"ModClassic, a is m", -1, Refusal::kUntouched,
     [](MINT &r, MINT &) { return MINT_ModClassic(&r, &r); }},
    {"Div_Core", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) {
       return MINT_Div_Core(&q.length, q.words, &r.length, r.words, 3, kZero.words);
     }},
    {"ModClassic_Core, 263 words", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) {
       const std::uint32_t modulus[263] = {7};
       return only(q, MINT_ModClassic_Core(&r.length, r.words, 263, modulus));
     }},
    {"Div_Core, 263 words", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) {
       r.length = 263;
       return MINT_Div_Core(&q.length, q.words, &r.length, r.words, 1, kFive.words);
     }},
    {"Inverse, n is zero", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_Inverse(&r, &kFive, &kZero)); }},
    {"Inverse, none", -1011, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_Inverse(&r, &kFive, &kEven)); }},
    {"Inverse, r is n", -1, Refusal::kUntouched,
     [](MINT &r, MINT &) { return MINT_Inverse(&r, &kFive, &r); }},
    {"Inverse, a is n", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_Inverse(&r, &q, &q); }},
    {"inverse_secret, n is even", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, inverse_secret(r, kThree, kEven)); }},
    {"inverse_secret, r is n", -1, Refusal::kUntouched,
     [](MINT &r, MINT &) { return inverse_secret(r, kThree, r); }},
    {"inverse_secret, a is n", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return inverse_secret(r, q, q); }},
    {"multiply_add_secret, n is even", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, multiply_add_secret(r, kThree, kFive, kFive, kEven)); }},
    {"multiply_add_secret, r is n", -1, Refusal::kUntouched,
     [](MINT &r, MINT &) { return multiply_add_secret(r, kThree, kFive, kFive, r); }},
    {"power_product, memory", -1, Refusal::kOutOfMemory,
     [](MINT &r, MINT &q) { return only(q, power_product(r, kThree, kFive, kThree, kFive, r)); }},
    {"power_product, N is even", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) {
       return only(q, power_product(r, kThree, kFive, kThree, kFive, kEven));
     }},
    {"mont_exp_mod, N is even", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_mont_exp_mod(&r, &kThree, &kFive, &kEven)); }},
    {"mont_exp_mod, N is zero", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_mont_exp_mod(&r, &kThree, &kFive, &kZero)); }},
    {"mont_exp_mod, memory", -1, Refusal::kOutOfMemory,
     [](MINT &r, MINT &q) { return only(q, MINT_mont_exp_mod(&r, &kThree, &kFive, &r)); }},
    {"power_secret, N is even", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, power_secret(r, kThree, kFive, kEven, 3)); }},
    {"power_secret_two, memory", -1, Refusal::kOutOfMemory,
     [](MINT &r, MINT &q) {
       return power_secret_two({&r, &kThree, &kFive, &r, 3}, {&q, &kThree, &kFive, &q, 3});
     }},
    {"ExpWin, N is zero", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ExpWin(&r, &kThree, &kFive, &kZero, 4)); }},
    {"ExpWin, window 0", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ExpWin(&r, &kThree, &kFive, &kEven, 0)); }},
    {"ExpWin, window 24", -1, Refusal::kResultsZero,
     [](MINT &r, MINT &q) { return only(q, MINT_ExpWin(&r, &kThree, &kFive, &kEven, 24)); }},
    {"ExpWin, memory", -1, Refusal::kOutOfMemory,
     [](MINT &r, MINT &q) { return only(q, MINT_ExpWin(&r, &kThree, &kFive, &r, 4)); }},
    {"ExpWin, e is N", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_ExpWin(&r, &kThree, &q, &q, 4); }},
    {"ExpWin, a is e", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_ExpWin(&r, &q, &q, &kThree, 4); }},
    {"ExpWin, a is N", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_ExpWin(&r, &q, &kThree, &q, 4); }},
    {"BinExtGCD, x is y", 0, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_BinExtGCD(&r, &r, &q, &kThree, &kFive); }},
    {"BinExtGCD, x is g", 0, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_BinExtGCD(&r, &q, &r, &kThree, &kFive); }},
    {"BinExtGCD, y is g", 0, Refusal::kUntouched,
     [](MINT &r, MINT &q) { return MINT_BinExtGCD(&r, &q, &q, &kThree, &kFive); }},
    {"null", -1, Refusal::kUntouched,
     [](MINT &r, MINT &q) {
       const std::int32_t statuses[] = {MINT_SetByHexString(&r, nullptr),
                                        MINT_SetByHexString(nullptr, "1"),
                                        MINT_ReadFromBuffer(&r, nullptr, 8),
                                        MINT_ReadFromBuffer(nullptr, kBytes, 8),
                                        MINT_Compare(nullptr, &q),
                                        MINT_Sub(&r, nullptr, &q),
                                        MINT_SubInteger(&r, nullptr, 1),
                                        MINT_Div(&q, nullptr, &r, &kThree),
                                        MINT_DivInteger(&q, nullptr, &r, 0),
                                        MINT_ModInteger(&q.length, nullptr, 0),
                                        MINT_ModClassic(&r, nullptr),
                                        MINT_Inverse(&r, nullptr, &q),
                                        MINT_mont_exp_mod(&r, &q, &q, nullptr),
                                        MINT_ExpWin(&r, nullptr, &kThree, &q, 0),
                                        MINT_BinExtGCD(&r, nullptr, &q, &q, &q) - 1};
       return *std::max_element(std::begin(statuses), std::end(statuses));
     }},
};

TEST(MintRefusals, LeaveZeroOrTouchNothing) {
  for (const Refusal &row : kRefusals) {
    MINT r = {2, {7, 9}}, q = {2, {11, 13}};
    const MINT r_before = r, q_before = q;
    g_out_of_memory = row.leaves == Refusal::kOutOfMemory;
    const std::int32_t status = row.call(r, q);
    g_out_of_memory = false;
    EXPECT_EQ(status, row.status) << row.name;
    if (row.leaves == Refusal::kUntouched) {
      EXPECT_EQ(std::memcmp(&r, &r_before, sizeof r), 0) << row.name;
      EXPECT_EQ(std::memcmp(&q, &q_before, sizeof q), 0) << row.name;
    } else {
      EXPECT_EQ(value_of(r), 0) << row.name;
      EXPECT_EQ(value_of(q), 0) << row.name;
    }
  }
}

TEST(MintRefusals, ContextsAndVerdicts) {
  MINT_MONT_CTX mont;
  std::memset(&mont, 0xa5, sizeof mont);
  EXPECT_EQ(MINT_mont_set(nullptr, &kFive), ZEL_ERR_GENERIC);
  EXPECT_EQ(MINT_mont_set(&mont, &kZero), ZEL_ERR_GENERIC);
  const MINT_MONT_CTX zero = {};
  EXPECT_EQ(std::memcmp(&mont, &zero, sizeof mont), 0);
  MINT r = {1, {99}};
  EXPECT_EQ(MINT_mont_mul_mod(&r, &kThree, nullptr, &mont), ZEL_ERR_GENERIC);
  EXPECT_EQ(MINT_from_mont_word(&r, nullptr, &mont), ZEL_ERR_GENERIC);
  EXPECT_EQ(MINT_from_mont(&r, &kThree, nullptr), ZEL_ERR_GENERIC);
  EXPECT_EQ(value_of(r), 99);
  const MINT prime = {1, {65537}};
  g_out_of_memory = true;
  EXPECT_EQ(PRIME_MRTest(&prime, 1), 0);
  g_out_of_memory = false;
  EXPECT_EQ(PRIME_MRTest(nullptr, 1), ZEL_ERR_GENERIC);
}

}  // namespace
