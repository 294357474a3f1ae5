// Big integers: forms in and out, order, shifts, bitwise operations, sums and products, against
// GMP.
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "support/mint.hpp"
#include "zel_cc.h"

// The C library's generator, seen and counted: the program's definition wins over the library's.
namespace {
unsigned g_seed = 0;
int g_seeds = 0;
int g_draws = 0;
}  // namespace
extern "C" int rand() noexcept {
  ++g_draws;
  return 0x12345678;
}
extern "C" void srand(unsigned start) noexcept {
  g_seed = start;
  ++g_seeds;
}

namespace {

using namespace zel::test;

MINT from_hex(const char *hex) {
  MINT a;
  EXPECT_EQ(MINT_SetByHexString(&a, hex), ZEL_OK) << hex;
  return a;
}

std::string hex_of(const MINT &a) {
  std::vector<char> text(ZEL_MINT_HEX_LEN, '!');
  MINT_WriteInHexString(text.data(), &a);
  return text.data();
}

std::string upper_hex(const mpz_class &value) {
  std::string text = value.get_str(16);
  for (char &c : text)
    c = static_cast<char>(std::toupper(c));
  return text;
}

TEST(MintForms, HexDigitsGoIntoWordsFromTheRight) {
  const struct {
    const char *hex;
    MINT want;
  } rows[] = {
      {"", from_words({})},
      {"0", from_words({})},
      {"00", from_words({0})},
      {"00000000fF", from_words({0xff, 0})},
      {"123456789", from_words({0x23456789, 1})},
      {"abcdefABCDEF0123", from_words({0xcdef0123, 0xabcdefab})},
  };
  for (const auto &row : rows) {
    const MINT a = from_hex(row.hex);
    ASSERT_EQ(a.length, row.want.length) << row.hex;
    EXPECT_TRUE(std::equal(a.words, a.words + a.length, row.want.words)) << row.hex;
  }
  for (const char *bad : {"0x10", "g", "12345678 ", "-1", "1234567:"}) {
    MINT a = from_words({1, 2});
    EXPECT_EQ(MINT_SetByHexString(&a, bad), ZEL_ERR_GENERIC) << bad;
    EXPECT_EQ(a.length, 0U) << bad;
  }
}

TEST(MintForms, PrintedFormsToTheCharacter) {
  const struct {
    MINT a;
    const char *hex, *bwt, *structure;
  } rows[] = {
      {from_words({}), "0", "00000000", "{{0}}"},
      {from_words({0, 0}), "", "00000000 00000000 ", "{{0x00000002}, {0x00000000, 0x00000000}}"},
      {from_words({0, 1}), "100000000", "00000001 00000000 ",
       "{{0x00000002}, {0x00000000, 0x00000001}}"},
      {from_words({0x89abcdef, 1, 0}), "189ABCDEF", "00000000 00000001 89ABCDEF ",
       "{{0x00000003}, {0x89ABCDEF, 0x00000001, 0x00000000}}"},
  };
  for (const auto &row : rows) {
    testing::internal::CaptureStdout();
    MINT_PrintInHexString("hex: ", &row.a);
    MINT_PrintInHexStringBWT("%s", &row.a);
    MINT_PrintInStructForm("", &row.a);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("hex: ") + row.hex + "\n%s" + row.bwt + "\n" + row.structure + "\n");
  }
}

// The widest record fills each documented buffer to the last character and not beyond.
TEST(MintForms, WritersKeepToTheirBuffers) {
  MINT a;
  std::fill_n(a.words, 130, ~0U);
  for (const std::uint32_t length : {130U, 131U, ~0U}) {
    a.length = length;
    const struct {
      void (*write)(char *, const MINT *);
      std::size_t size;
    } rows[] = {{MINT_WriteInHexString, ZEL_MINT_HEX_LEN},
                {MINT_WriteInHexStringBWT, ZEL_MINT_BWT_LEN},
                {MINT_WriteInStructForm, ZEL_MINT_STRUCT_LEN}};
    for (const auto &row : rows) {
      std::vector<char> text(row.size, '!');  // the sanitizers watch its end
      row.write(text.data(), &a);
      EXPECT_EQ(std::strlen(text.data()), row.size - 1);
    }
    std::vector<std::uint8_t> bytes(ZEL_MINT_BUFFER_LEN);
    std::uint32_t len = 0;
    MINT_WriteInByteArray(bytes.data(), &len, &a);
    EXPECT_EQ(len, static_cast<std::uint32_t>(ZEL_MINT_BYTES));
    MINT_WriteToBuffer(bytes.data(), &len, &a);
    EXPECT_EQ(len, static_cast<std::uint32_t>(ZEL_MINT_BUFFER_LEN));
    testing::internal::CaptureStdout();
    MINT_PrintInStructForm("", &a);
    EXPECT_EQ(testing::internal::GetCapturedStdout().size(),
              static_cast<std::size_t>(ZEL_MINT_STRUCT_LEN));
  }
}

TEST(MintForms, BytesAndBuffersAreBigEndian) {
  std::uint8_t out[8] = {9, 9, 9, 9, 9, 9, 9, 9};
  std::uint32_t len = 0;
  const MINT a = from_words({0x0102});
  MINT_WriteLSNByteInByteArray(out, 4, &a);
  EXPECT_EQ(std::vector<std::uint8_t>(out, out + 5), (std::vector<std::uint8_t>{0, 0, 1, 2, 9}));
  MINT_WriteLSNByteInByteArray(out, 1, &a);
  EXPECT_EQ(out[0], 2);
  const MINT zeros = from_words({0, 0, 0});
  MINT_WriteInByteArray(out, &len, &zeros);
  EXPECT_EQ(len, 0U);
  const MINT zero = from_words({});
  out[0] = 9;
  MINT_WriteInByteArray(out, &len, &zero);
  EXPECT_EQ(len, 1U);
  EXPECT_EQ(out[0], 0);
}

TEST(MintForms, RandomRoundTrips) {
  Shapes shapes(1);
  for (int turn = 0; turn < 5000; ++turn) {
    const MINT a = shapes.operand();
    const mpz_class v = value_of(a);
    EXPECT_EQ(hex_of(a), a.length == 0 ? "0" : v == 0 ? "" : upper_hex(v));
    EXPECT_EQ(MINT_GetBitLength(&a), v == 0 ? 0 : mpz_sizeinbase(v.get_mpz_t(), 2));

    std::vector<std::uint8_t> bytes(ZEL_MINT_BYTES + 20);
    std::uint32_t len = 0;
    MINT_WriteInByteArray(bytes.data(), &len, &a);
    EXPECT_EQ(len, a.length == 0 ? 1 : (MINT_GetBitLength(&a) + 7) / 8);
    MINT b;
    MINT_SetByByteArray(&b, bytes.data(), static_cast<std::int32_t>(len));
    EXPECT_EQ(b.length, (len + 3) / 4);
    EXPECT_EQ(value_of(b), v);

    const std::uint32_t n = shapes.below(ZEL_MINT_BYTES + 20);
    std::vector<std::uint8_t> fixed(n);
    MINT_WriteLSNByteInByteArray(fixed.data(), n, &a);
    mpz_class back;
    mpz_import(back.get_mpz_t(), n, 1, 1, 0, 0, fixed.data());
    EXPECT_EQ(back, v % two_to(8 * n));

    MINT_WriteToBuffer(bytes.data(), &len, &a);
    ASSERT_EQ(len, 4 + 4 * a.length);
    ASSERT_EQ(MINT_ReadFromBuffer(&b, bytes.data(), len), ZEL_OK);
    EXPECT_EQ(b.length, a.length);
    EXPECT_EQ(value_of(b), v);
    if (a.length > 0) {
      ASSERT_EQ(MINT_ReadFromBuffer(&b, bytes.data(), len - 1), ZEL_ERR_GENERIC);
      EXPECT_EQ(b.length, a.length);
    }
  }
}

TEST(MintForms, WhatDoesNotFitIsRefusedOrCut) {
  Fenced a;
  const std::string digits(1040, 'f');
  EXPECT_EQ(MINT_SetByHexString(a.get(), digits.c_str()), ZEL_OK);
  EXPECT_EQ(value_of(*a), capacity() - 1);
  EXPECT_EQ(MINT_SetByHexString(a.get(), ("0" + digits).c_str()), ZEL_ERR_GENERIC);
  EXPECT_EQ(a->length, 0U);

  std::vector<std::uint8_t> bytes(4 + 4 * 131, 0xff);
  const auto announce = [&](std::uint32_t count) {
    for (std::size_t i = 0; i < 4; ++i)
      bytes[i] = static_cast<std::uint8_t>(count >> (24 - 8 * i));
  };
  for (const std::uint32_t count : {131U, 0x3fffffffU, 0x40000000U, 0xffffffffU}) {
    announce(count);
    for (const std::uint32_t len : {0U, 3U, 4U, 8U, static_cast<std::uint32_t>(bytes.size())}) {
      EXPECT_EQ(MINT_ReadFromBuffer(a.get(), bytes.data(), len), ZEL_ERR_GENERIC) << count;
      EXPECT_EQ(a->length, 0U) << count;
    }
  }
  announce(2);
  EXPECT_EQ(MINT_ReadFromBuffer(a.get(), bytes.data(), 8), ZEL_ERR_GENERIC);
  EXPECT_EQ(a->length, 2U);
  announce(0);
  EXPECT_EQ(MINT_ReadFromBuffer(a.get(), bytes.data(), 4), ZEL_OK);
  EXPECT_EQ(a->length, 0U);

  bytes[0] = 1;
  for (const std::int32_t n : {520, 521, 524}) {
    MINT_SetByByteArray(a.get(), bytes.data(), n);
    EXPECT_EQ(a->length, 130U);
    EXPECT_EQ(a->words[0], ~0U);
  }
  for (const std::int32_t n : {0, -1, INT32_MIN}) {
    MINT_SetByByteArray(a.get(), bytes.data(), n);
    EXPECT_EQ(a->length, 0U);
  }
  EXPECT_TRUE(a.intact());
}

TEST(MintForms, PowersOfTwoButNotTheFirst) {
  Fenced a;
  for (const std::int32_t n : {0, -1, INT32_MIN, 4160, 4161, INT32_MAX}) {
    a->length = 7;
    MINT_SetBy2ExpN(a.get(), n);
    EXPECT_EQ(a->length, 0U) << n;
  }
  for (std::int32_t n = 1; n < 4160; ++n) {
    MINT_SetBy2ExpN(a.get(), n);
    ASSERT_EQ(a->length, static_cast<std::uint32_t>(n) / 32 + 1);
    ASSERT_EQ(value_of(*a), two_to(static_cast<std::uint32_t>(n)));
  }
  EXPECT_TRUE(a.intact());
}

TEST(MintBits, ClearSecurelyDrawsAndThenZeroes) {
  Fenced a;
  a.reset(Shapes(2).operand());
  const auto before = static_cast<unsigned>(std::time(nullptr));
  g_draws = g_seeds = 0;
  MINT_ClearSecurely(a.get());
  EXPECT_EQ(g_seeds, 1);
  EXPECT_EQ(g_draws, 130);
  EXPECT_LE(g_seed - before, 2U);
  const MINT zero = {};
  EXPECT_EQ(std::memcmp(a.get(), &zero, sizeof zero), 0);
  EXPECT_TRUE(a.intact());

  // The arithmetic's own temporaries leave the process-wide generator alone.
  MINT b = from_words({5, 6}), c = from_words({7}), d;
  g_draws = g_seeds = 0;
  MINT_Mult(&d, &b, &c);
  MINT_Div(&d, &b, &c, a.get());
  MINT_Inverse(&d, &b, &c);
  EXPECT_EQ(g_draws + g_seeds, 0);
}

TEST(MintBits, ShiftsTrim) {
  Shapes shapes(3);
  Fenced r;
  for (int turn = 0; turn < 6000; ++turn) {
    const MINT a = shapes.operand();
    std::uint32_t n = shapes.below(turn % 2 == 0 ? 70 : 4300);
    if (turn % 3 == 0) n -= n % 32;
    if (turn % 100 == 0) n = ~0U - shapes.below(40);
    const mpz_class left = n >= 4160 ? mpz_class(0) : mpz_class((value_of(a) << n) % capacity());
    const mpz_class right = n >= 4160 ? mpz_class(0) : mpz_class(value_of(a) >> n);
    const auto expect = [&](const mpz_class &want, const char *what) {
      ASSERT_EQ(value_of(*r), want) << what << n;
      ASSERT_EQ(r->length, words_of(want)) << what << n;
      ASSERT_TRUE(r.intact()) << what << n;
    };
    MINT_LeftShift2(r.get(), &a, n);
    expect(left, "left2 ");
    MINT_RightShift2(r.get(), &a, n);
    expect(right, "right2 ");
    r.reset(a);
    MINT_LeftShift(r.get(), n);
    expect(left, "left ");
    r.reset(a);
    MINT_RightShift(r.get(), n);
    expect(right, "right ");
  }
}

TEST(MintBits, Mod2ExpNTakesARemainderOfTheTopWord) {
  MINT a = from_words({1, 2, 3});
  MINT_Mod2ExpN(&a, 64);
  EXPECT_EQ(a.length, 2U);
  a = from_words({1, 7, 3});
  MINT_Mod2ExpN(&a, 36);
  EXPECT_EQ(a.length, 2U);
  EXPECT_EQ(value_of(a), value_of(from_words({1, 3})));

  Shapes shapes(4);
  Fenced r;
  for (int turn = 0; turn < 3000; ++turn) {
    const MINT b = shapes.operand();
    const std::uint32_t n = turn % 50 == 0 ? ~0U - shapes.below(40) : shapes.below(4300);
    MINT want = b;
    if (n / 32 < want.length && n % 32 != 0) want.words[n / 32] %= n % 32;
    const std::uint32_t len = std::min(n / 32 + (n % 32 != 0 ? 1 : 0), 130U);
    for (std::uint32_t i = want.length; i < len; ++i)
      want.words[i] = 0;
    want.length = len;
    r.reset(b);
    MINT_Mod2ExpN(r.get(), n);
    ASSERT_EQ(r->length, len) << n;
    ASSERT_EQ(value_of(*r), value_of(want)) << n;
    ASSERT_TRUE(r.intact()) << n;
  }
}

}  // namespace
