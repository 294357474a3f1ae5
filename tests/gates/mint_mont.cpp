// Montgomery multiplication, exponentiation, random integers and primes: none of their functions
// asks for the module state.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  MINT a{3, {12, 34, 56}}, b{2, {77, 1}}, n{2, {0x10001, 3}};
  MINT r{};
  MINT_MONT_CTX mont{32, {1, {1}}, {1, {7}}, {}, {0x49249249, 0}};
  std::uint32_t words[4]{};
};

/// Draws are not the same twice: what counts is that the call went through.
const Answers kRandom = gives({1, 1, 1, 1, 1, 1, 1, 1});

const Rows<Arena> kRows{
    {"MINT_mont_set", ungated(), [](Arena &a) { return MINT_mont_set(&a.mont, &a.n); }},
    {"MINT_mont_mul_mod", ungated(), [](Arena &a) { return MINT_mont_mul_mod(&a.r, &a.a, &a.b, &a.mont); }},
    {"MINT_from_mont_word", ungated(), [](Arena &a) { return MINT_from_mont_word(&a.r, &a.a, &a.mont); }},
    {"MINT_from_mont", ungated(), [](Arena &a) { return MINT_from_mont(&a.r, &a.a, &a.mont); }},
    {"MINT_mul_add_words", ungated(), [](Arena &a) { return MINT_mul_add_words(a.words, a.a.words, 3, 5); }},
    {"MINT_sub_words", ungated(), [](Arena &a) { return MINT_sub_words(a.words, a.a.words, a.b.words, 3); }},
    {"MINT_mont_exp_mod", ungated(), [](Arena &a) { return MINT_mont_exp_mod(&a.r, &a.a, &a.b, &a.n); }},
    {"MINT_ExpWin", ungated(), [](Arena &a) { return MINT_ExpWin(&a.r, &a.a, &a.b, &a.n, 4); }},
    {"MINT_RandInit", kRandom, [](Arena &) { MINT_RandInit(); return 1; }},
    {"MINT_Rand", kRandom, [](Arena &a) { MINT_Rand(&a.r, 64); return a.r.length == 2; }},
    {"MINT_RandOnes", kRandom, [](Arena &a) { MINT_RandOnes(&a.r, 64, 64); return a.r.words[1] == ~0U; }},
    {"MINT_RandWithinRange", kRandom, [](Arena &a) { return MINT_RandWithinRange(&a.r, 40, 64) >= 40; }},
    {"MINT_RandWithinMINT", kRandom, [](Arena &a) { MINT_RandWithinMINT(&a.r, &a.b, &a.n); return a.r.length == 2; }},
    {"p_max", ungated(), [](Arena &a) { p_max(&a.r, 70); }},
    {"p_min", ungated(), [](Arena &a) { p_min(&a.r, 70); }},
    {"PRIME_SelectMRIter", ungated(), [](Arena &) { return PRIME_SelectMRIter(512); }},
    {"PRIME_MRTest", ungated(), [](Arena &a) { return PRIME_MRTest(&a.n, 2); }},
    {"PRIME_GeneratePrime", kRandom, [](Arena &a) { PRIME_GeneratePrime(&a.r, 40, 40, nullptr); return a.r.length == 2; }},
    {"PRIME_GeneratePrimeCongruence", kRandom, [](Arena &a) { PRIME_GeneratePrimeCongruence(&a.r, &a.b, &a.b, 60, 64, nullptr); return a.r.length <= 2; }},
    {"PRIME_GenerateStrongPrime", kRandom, [](Arena &a) { PRIME_GenerateStrongPrime(&a.r, 96, 96, nullptr, 30, 30, 20); return a.r.length == 3; }},
};

}  // namespace
}  // namespace zel::test
