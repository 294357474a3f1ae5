// Big integers: none of their functions asks for the module state.
#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

struct Arena {
  MINT a{3, {12, 34, 56}}, b{2, {77, 1}};
  MINT r{}, q{}, g{};
  std::uint32_t words[20]{};
  std::uint32_t len = 99;
  std::uint8_t bytes[20]{};
  char text[100]{};
};

/// What a function without an outcome in memory gives.
const Answers kDone = gives({0, 0, 0, 0, 0, 0, 0, 0});

const Rows<Arena> kRows{
    {"MINT_SetByInteger", ungated(), [](Arena &a) { MINT_SetByInteger(&a.r, 7); }},
    {"MINT_SetByHexString", ungated(), [](Arena &a) { return MINT_SetByHexString(&a.r, "12ab"); }},
    {"MINT_SetByByteArray", ungated(), [](Arena &a) { MINT_SetByByteArray(&a.r, a.bytes, 20); }},
    {"MINT_SetBy2ExpN", ungated(), [](Arena &a) { MINT_SetBy2ExpN(&a.r, 100); }},
    {"MINT_ReadFromBuffer", ungated(), [](Arena &a) { return MINT_ReadFromBuffer(&a.r, a.bytes, 4); }},
    {"MINT_WriteInHexString", ungated(), [](Arena &a) { MINT_WriteInHexString(a.text, &a.a); }},
    {"MINT_WriteInHexStringBWT", ungated(), [](Arena &a) { MINT_WriteInHexStringBWT(a.text, &a.a); }},
    {"MINT_WriteInStructForm", ungated(), [](Arena &a) { MINT_WriteInStructForm(a.text, &a.a); }},
    {"MINT_WriteInByteArray", ungated(), [](Arena &a) { MINT_WriteInByteArray(a.bytes, &a.len, &a.a); }},
    {"MINT_WriteLSNByteInByteArray", ungated(), [](Arena &a) { MINT_WriteLSNByteInByteArray(a.bytes, 20, &a.a); }},
    {"MINT_WriteToBuffer", ungated(), [](Arena &a) { MINT_WriteToBuffer(a.bytes, &a.len, &a.a); }},
    {"MINT_PrintInHexString", kDone, [](Arena &a) { MINT_PrintInHexString("", &a.a); return 0; }},
    {"MINT_PrintInHexStringBWT", kDone, [](Arena &a) { MINT_PrintInHexStringBWT("", &a.a); return 0; }},
    {"MINT_PrintInStructForm", kDone, [](Arena &a) { MINT_PrintInStructForm("", &a.a); return 0; }},
    {"MINT_GetBitLength", ungated(), [](Arena &a) { return MINT_GetBitLength(&a.a); }},
    {"MINT_Compare", ungated(), [](Arena &a) { return MINT_Compare(&a.a, &a.b); }},
    {"MINT_ClearSecurely", ungated(), [](Arena &a) { MINT_ClearSecurely(&a.a); }},
    {"MINT_LeftShift", ungated(), [](Arena &a) { MINT_LeftShift(&a.a, 5); }},
    {"MINT_RightShift", ungated(), [](Arena &a) { MINT_RightShift(&a.a, 5); }},
    {"MINT_LeftShift2", ungated(), [](Arena &a) { MINT_LeftShift2(&a.r, &a.a, 5); }},
    {"MINT_RightShift2", ungated(), [](Arena &a) { MINT_RightShift2(&a.r, &a.a, 5); }},
    {"MINT_XOR", ungated(), [](Arena &a) { MINT_XOR(&a.r, &a.a, &a.b); }},
    {"MINT_AND", ungated(), [](Arena &a) { MINT_AND(&a.r, &a.a, &a.b); }},
    {"MINT_OR", ungated(), [](Arena &a) { MINT_OR(&a.r, &a.a, &a.b); }},
    {"MINT_Add", ungated(), [](Arena &a) { MINT_Add(&a.r, &a.a, &a.b); }},
    {"MINT_AddInteger", ungated(), [](Arena &a) { MINT_AddInteger(&a.r, &a.a, 5); }},
    {"MINT_Sub", ungated(), [](Arena &a) { return MINT_Sub(&a.r, &a.a, &a.b); }},
    {"MINT_SubInteger", ungated(), [](Arena &a) { return MINT_SubInteger(&a.r, &a.a, 5); }},
    {"MINT_Add_Core", ungated(), [](Arena &a) { MINT_Add_Core(&a.len, a.words, 3, a.a.words, 2, a.b.words); }},
    {"MINT_Sub_Core", ungated(), [](Arena &a) { return MINT_Sub_Core(&a.len, a.words, 3, a.a.words, 2, a.b.words); }},
    {"MINT_Mult", ungated(), [](Arena &a) { MINT_Mult(&a.r, &a.a, &a.b); }},
    {"MINT_MultInteger", ungated(), [](Arena &a) { MINT_MultInteger(&a.r, &a.a, 5); }},
    {"MINT_Square", ungated(), [](Arena &a) { MINT_Square(&a.r, &a.a); }},
    {"MINT_KMult", ungated(), [](Arena &a) { MINT_KMult(&a.r, &a.a, &a.b, 1); }},
    {"MINT_KSquare", ungated(), [](Arena &a) { MINT_KSquare(&a.r, &a.a, 1); }},
    {"MINT_Mult_Core", ungated(), [](Arena &a) { MINT_Mult_Core(&a.len, a.words, 3, a.a.words, 2, a.b.words); }},
    {"MINT_Square_Core", ungated(), [](Arena &a) { MINT_Square_Core(&a.len, a.words, 3, a.a.words); }},
    {"MINT_KMult_Core", ungated(), [](Arena &a) { MINT_KMult_Core(&a.len, a.words, 3, a.a.words, 2, a.b.words, 1, MINT_Mult_Core); }},
    {"MINT_KSquare_Core", ungated(), [](Arena &a) { MINT_KSquare_Core(&a.len, a.words, 3, a.a.words, 1, MINT_Square_Core); }},
    {"MINT_Div", ungated(), [](Arena &a) { return MINT_Div(&a.q, &a.r, &a.a, &a.b); }},
    {"MINT_DivInteger", ungated(), [](Arena &a) { return MINT_DivInteger(&a.q, &a.len, &a.a, 5); }},
    {"MINT_ModInteger", ungated(), [](Arena &a) { return MINT_ModInteger(&a.len, &a.a, 5); }},
    {"MINT_ModClassic", ungated(), [](Arena &a) { return MINT_ModClassic(&a.a, &a.b); }},
    {"MINT_Mod2ExpN", ungated(), [](Arena &a) { MINT_Mod2ExpN(&a.a, 33); }},
    {"MINT_Div_Core", ungated(), [](Arena &a) { return MINT_Div_Core(&a.len, a.words, &a.a.length, a.a.words, 2, a.b.words); }},
    {"MINT_ModClassic_Core", ungated(), [](Arena &a) { return MINT_ModClassic_Core(&a.a.length, a.a.words, 2, a.b.words); }},
    {"MINT_BinGCD", ungated(), [](Arena &a) { MINT_BinGCD(&a.r, &a.a, &a.b); }},
    {"MINT_BinExtGCD", ungated(), [](Arena &a) { return MINT_BinExtGCD(&a.q, &a.r, &a.g, &a.a, &a.b); }},
    {"MINT_Inverse", ungated(), [](Arena &a) { return MINT_Inverse(&a.r, &a.a, &a.b); }},
    {"MINT_BinGCD_Core", ungated(), [](Arena &a) { MINT_BinGCD_Core(&a.len, a.words, 3, a.a.words, 2, a.b.words); }},
    {"MINT_BinExtGCD_Core", ungated(), [](Arena &a) { return MINT_BinExtGCD_Core(&a.q.length, a.q.words, &a.r.length, a.r.words, &a.g.length, a.g.words, 3, a.a.words, 2, a.b.words); }},
};

}  // namespace
}  // namespace zel::test
