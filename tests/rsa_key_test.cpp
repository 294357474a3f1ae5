// RSA key pairs: what is generated and with which draws, every way of being wrong, pairwise tests.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/rsa.hpp"

// The C library's generator, seen and steered: the program's definition wins over the library's.
namespace {
std::mt19937 g_random(1);
std::size_t g_draws = 0;
}  // namespace
extern "C" int rand() noexcept {
  ++g_draws;
  return static_cast<int>(g_random() >> 1);
}
extern "C" void srand(unsigned) noexcept {}

namespace zel::test {
namespace {

void begin_draws() {
  g_random.seed(7);
  g_draws = 0;
}

bool is_clean(const MINT &a) {
  return (a.length == 0 || a.words[a.length - 1] != 0) &&
         std::all_of(a.words + a.length, a.words + 130, [](std::uint32_t w) { return w == 0; });
}

// A key that follows from its primes; nothing of the draws in the words that do not count.
TEST(RsaKeys, FollowFromTheirPrimes) {
  for (const std::uint32_t bits : {176U, 512U, 1023U, 1024U}) {
    for (const std::uint32_t e : {3U, 17U, 65537U, 0xFFFFFFFFU}) {
      RsaKey key;
      ASSERT_EQ(ZEL_OK, RSA_GenKeyE(&key.pri, &key.pub, bits, e));
      EXPECT_TRUE(key.bits() == bits / 2 * 2 || key.bits() == bits / 2 * 2 - 1) << bits;
      const mpz_class p = value_of(key.pri.p), q = value_of(key.pri.q);
      const RsaKey expected = key_of(p, q, e);
      EXPECT_EQ(0, std::memcmp(&expected.pri, &key.pri, sizeof key.pri));
      EXPECT_EQ(0, std::memcmp(&expected.pub, &key.pub, sizeof key.pub));
      EXPECT_TRUE(mpz_probab_prime_p(p.get_mpz_t(), 20) != 0 &&
                  mpz_probab_prime_p(q.get_mpz_t(), 20) != 0);
      for (std::size_t i = 0; i < 8; ++i)
        EXPECT_TRUE(is_clean(reinterpret_cast<const MINT *>(&key.pri)[i]));
      EXPECT_EQ(ZEL_OK, RSA_CheckKey(&key.pri, &key.pub));
    }
  }
}

// The draws one after the other: seed, discarded exponent, p, q.
TEST(RsaKeys, DrawInOneOrder) {
  constexpr std::uint32_t kBits = 768;
  RsaKey key;
  begin_draws();
  PKCRYPT_KEY pri = key.pri_of(rsa), pub = key.pub_of(rsa21);
  ASSERT_EQ(ZEL_OK, PKCRYPT_GenKey(&pri, &pub, nullptr, kBits));
  const std::size_t draws = g_draws;

  begin_draws();
  MINT e, p, q;
  MINT_RandInit();
  MINT_Rand(&e, 192);
  MINT_SetByInteger(&e, 65537);
  PRIME_GenerateStrongPrime(&p, 384, 384, &e, 168, 168, 120);
  PRIME_GenerateStrongPrime(&q, 384, 384, &e, 168, 168, 120);
  EXPECT_EQ(draws, g_draws);
  EXPECT_TRUE(MINT_Compare(&p, &key.pri.p) == 0 && MINT_Compare(&q, &key.pri.q) == 0);

  begin_draws();
  MINT_RandInit();
  MINT_Rand(&e, 192);
  const std::size_t discarded = g_draws;
  begin_draws();
  for (std::size_t i = 0; i < discarded; ++i)
    static_cast<void>(rand());
  ASSERT_EQ(ZEL_OK, RSA_GenKeyE(&key.pri, &key.pub, kBits, 65537));
  EXPECT_EQ(draws, g_draws) << "no exponent is drawn where one is given";
  begin_draws();
  ASSERT_EQ(ZEL_OK, RSA_GenKeyE(&key.pri, &key.pub, kBits, 65537));
  const std::size_t without_tests = g_draws;
  begin_draws();
  ASSERT_EQ(ZEL_OK, RSA_GenKeyEx(&key.pri, &key.pub, kBits, 65537));
  EXPECT_EQ(without_tests + 1 + 28 / 4 * 3, g_draws) << "and the salt of the pairwise test";
}

TEST(RsaKeys, OfExactSizes) {
  RsaKey key;
  for (int i = 0; i < 8; ++i) {
    ASSERT_EQ(ZEL_OK, RSA_GenKey_Exact(&key.pri, &key.pub, 640, 65537));
    EXPECT_EQ(640U, key.bits());
  }
  testing::internal::CaptureStdout();
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKey_Exact(&key.pri, &key.pub, 641, 65537));
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
  testing::internal::CaptureStdout();
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKey_Exact(&key.pri, &key.pub, 640, 2));
  std::fflush(stdout);
  EXPECT_EQ("RSA_GenKeyEx failed!!  Error code = -1\n", testing::internal::GetCapturedStdout());
}

TEST(RsaKeys, ThatCannotBe) {
  RsaKey key;
  const RsaKey before = key;
  for (const std::uint32_t bits : {0U, 1U, 64U, 4161U, 0xFFFFFFFFU})
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKey(&key.pri, &key.pub, bits)) << bits;
  for (const std::uint32_t e : {0U, 2U, 65536U})
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKeyE(&key.pri, &key.pub, 512, e)) << e;
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKey(nullptr, &key.pub, 512));
  EXPECT_EQ(0, std::memcmp(&before, &key, sizeof key));
}

TEST(RsaKeyChecks, KnowEveryWayOfBeingWrong) {
  const RsaKey &good = key_of_bits(1025);
  EXPECT_EQ(ZEL_OK, RSA_CheckKey(&good.pri, &good.pub));
  const MINT two{1, {2}};
  for (std::size_t i = 0; i < 10; ++i) {
    RsaKey key = good;
    MINT &field = reinterpret_cast<MINT *>(&key)[i];
    MINT_Add(&field, &field, &two);
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub)) << "field " << i;
    const bool in_pair = i == 0 || i == 1 || i >= 8;
    EXPECT_EQ(in_pair ? ZEL_ERR_GENERIC : ZEL_OK, RSA_CheckKeyPair(&key.pri, &key.pub)) << i;
    for (const MINT &value : {MINT{}, MINT{0xFFFFFFFF, {1}}}) {
      field = value;
      EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
    }
  }
  // d + lambda and even a wrong d pass when the halves agree; an exponent that is not coprime does
  // not.
  RsaKey key = good;
  const mpz_class p1 = value_of(good.pri.p) - 1, q1 = value_of(good.pri.q) - 1;
  key.pri.d = record(value_of(good.pri.d) + 2);
  key.pri.dP = record(value_of(key.pri.d) % p1);
  key.pri.dQ = record(value_of(key.pri.d) % q1);
  EXPECT_EQ(ZEL_OK, RSA_CheckKey(&key.pri, &key.pub));
  key.pri.e = key.pub.e = record(mpz_class(2));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
  key = good;
  key.pri.n = key.pub.n = record(value_of(good.pri.n) + 2);
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
  key = good;
  std::swap(key.pri.p, key.pri.q);
  std::swap(key.pri.dP, key.pri.dQ);
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub)) << "1/q is of the other prime";
  for (const Vector &v : read_vectors("rsa_keys")) {
    const RsaKey published = key_of(v);
    EXPECT_EQ(v.word("result") == "valid" ? ZEL_OK : ZEL_ERR_GENERIC,
              RSA_CheckKey(&published.pri, &published.pub))
        << v.place << " " << v.word("note");
  }
}

// Keys that follow from their factors in all but one thing: a factor is composite, or a record does
// not hold the product.
TEST(RsaKeyChecks, WantPrimesThatFit) {
  const RsaKey &good = key_of_bits(1025);
  const mpz_class p = value_of(good.pri.p), q = value_of(good.pri.q), composite = p * q;
  for (const RsaKey &key : {key_of(composite, two_to(521) - 1), key_of(two_to(521) - 1, composite)})
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
  mpz_class last = two_to(942) * 3;
  mpz_nextprime(last.get_mpz_t(), last.get_mpz_t());
  const mpz_class long_p = two_to(3217) - 1;
  ASSERT_EQ(4161U, mpz_sizeinbase(mpz_class(long_p * last).get_mpz_t(), 2));
  const RsaKey key = key_of(long_p, last);
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
}

// A failure is final, so each of these is a test, and a process, of its own.
using PairTest = int32_t (*)(const RSA_PRIVATE_KEY *, const RSA_PUBLIC_KEY *);
struct Row {
  const char *name;
  PairTest test;
  int32_t code;
};
class RsaPairTests : public testing::TestWithParam<Row> {};
TEST_P(RsaPairTests, TellForeignHalves) {
  const RsaKey &key = key_of_bits(1024), &other = key_of_bits(1023);
  EXPECT_EQ(ZEL_OK, GetParam().test(&key.pri, &key.pub));
  EXPECT_EQ(ZEL_STATE_NOT_VERIFIED, KZEL_CC_GetState());
  EXPECT_EQ(GetParam().code, GetParam().test(&key.pri, &other.pub));
  EXPECT_EQ(ZEL_STATE_ERROR, KZEL_CC_GetState());
  EXPECT_EQ(ZEL_ERR_STATE, GetParam().test(&key.pri, &key.pub));
}
INSTANTIATE_TEST_SUITE_P(
    Table, RsaPairTests,
    testing::Values(Row{"Oaep", CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP, ZEL_ERR_RSAES_OAEP_TEST},
                    Row{"Pss", CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS, ZEL_ERR_RSASSA_PSS_TEST},
                    Row{"Pkcs1", CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PKCS1_V15,
                        ZEL_ERR_RSASSA_PKCS1_TEST}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(RsaKeys, TooShortForTheirPairwiseTest) {
  RsaKey key;
  testing::internal::CaptureStdout();
  EXPECT_EQ(ZEL_ERR_RSAES_OAEP_TEST, RSA_GenKey_Exact(&key.pri, &key.pub, 512, 65537));
  std::fflush(stdout);
  EXPECT_EQ("RSA_GenKeyEx failed!!  Error code = -9182\n", testing::internal::GetCapturedStdout());
  EXPECT_EQ(ZEL_STATE_ERROR, KZEL_CC_GetState());
}

}  // namespace
}  // namespace zel::test
