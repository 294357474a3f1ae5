// KCDSA against published signatures, keys and parameters, a model for every hash, and callers who
// mean harm.
#include <random>
#include <set>

#include "tests/support/discrete_log.hpp"

// The C library's generator, repeatable: the program's definition wins over the library's. Behind a
// seeding its first draws may be chosen.
namespace {
std::mt19937 g_random{1};
std::vector<int> g_after_seeding;
std::size_t g_at = 0;
std::set<uint32_t> g_rounds;
void choose_after_seeding(std::vector<int> draws) {
  g_after_seeding = std::move(draws);
  g_at = g_after_seeding.size();
}
}  // namespace
extern "C" {
int rand() noexcept {
  if (g_at < g_after_seeding.size()) return g_after_seeding[g_at++];
  return static_cast<int>(g_random() >> 1);
}
void srand(unsigned) noexcept { g_at = 0; }
// NOLINTBEGIN: the linker's names
int32_t __real_PRIME_MRTest(const MINT *n, uint32_t iterations);
int32_t __wrap_PRIME_MRTest(const MINT *n, uint32_t iterations) {
  g_rounds.insert(iterations);
  return __real_PRIME_MRTest(n, iterations);
}
// NOLINTEND
}

namespace {

using namespace zel::test;

struct Case {
  explicit Case(const Vector &v)
      : hash(v.has("hash") ? hash_of(v.word("hash")) : nullptr),
        param{number_of(v, "p"), number_of(v, "q"), number_of(v, "g"), {}, 0, 0} {
    if (v.has("x")) x = number_of(v, "x");
    if (v.has("y")) y = number_of(v, "y");
    if (v.has("msg")) msg = v.bytes("msg");
    if (v.has("r")) body = signature(v, "r", "s");
  }
  static KCDSA_SIGNATURE_BODY signature(const Vector &v, const char *r, const char *s) {
    KCDSA_SIGNATURE_BODY body{};
    const Bytes bytes = v.bytes(r);
    std::copy(bytes.begin(), bytes.end(), body.r);
    body.s = number_of(v, s);
    return body;
  }
  int32_t verify() const { return KCDSA_SSA_V(&body, msg.data(), size_of(msg), &y, &param, hash); }
  std::string text(const KCDSA_SIGNATURE_BODY &of) const {
    return to_hex(Bytes(of.r, of.r + hash->digest_len)) + " " + hex_of(of.s);
  }

  const HASH_ALGORITHM *hash;
  KCDSA_PARAM param;
  MINT x{}, y{};
  Bytes msg = Bytes();
  KCDSA_SIGNATURE_BODY body{};
};

Case some_case() { return Case(read_vectors("kcdsa_model").front()); }

/// Draws that make the nonce k: first one above q, which stays mixed in.
void choose_nonce(const Bytes &k) {
  Bytes above(k.size(), 0xff ^ kDrbgByte), rest;
  for (const uint8_t byte : k)
    rest.push_back(byte ^ 0xff);
  g_draws = {above, rest};
}

TEST(Kcdsa, VerifiesWhatIsPublished) {
  for (const char *const file : {"kcdsa", "kcdsa_model"}) {
    for (const Vector &v : read_vectors(file)) {
      const bool valid = !v.has("result") || v.word("result") == "valid";
      EXPECT_EQ(Case(v).verify(), valid ? ZEL_OK : ZEL_ERR_GENERIC) << v.place;
    }
  }
  // A hash value that is longer than q is not cut.
  for (const Vector &v : read_vectors("kcdsa_standard"))
    EXPECT_EQ(Case(v).verify(), v.number("product_rc")) << v.place;
}

TEST(Kcdsa, SignsWithTheGivenNonces) {
  int signatures = 0;
  for (const char *const file : {"kcdsa", "kcdsa_model"}) {
    for (const Vector &v : read_vectors(file)) {
      if (!v.has("k") || v.has("note")) continue;
      SCOPED_TRACE(v.place);
      Case c(v);
      Bytes prefix(c.hash->digest_len > 32 ? 128 : 64), digest(64);
      uint32_t len = 0;
      MINT_WriteLSNByteInByteArray(prefix.data(), size_of(prefix), &c.y);
      EXPECT_EQ(KCDSA_EMSA1(digest.data(), &len, c.msg.data(), size_of(c.msg), prefix.data(),
                            size_of(prefix), c.hash),
                ZEL_OK);
      for (int form = 0; form < 3; ++form) {
        KCDSA_SIGNATURE_BODY made{};
        Stream stream(c.msg);
        choose_nonce(v.bytes("k"));
        EXPECT_EQ(
            form == 0
                ? KCDSA_SSA_S(&made, c.msg.data(), size_of(c.msg), &c.x, &c.param, c.hash, &c.y)
            : form == 1 ? KCDSA_SSA_S_File(&made, stream.file, ZEL_WHOLE_STREAM, &c.x, &c.param,
                                           c.hash, &c.y)
                        : KCDSA_SSA_S_Hash(&made, digest.data(), len, &c.x, &c.param, c.hash, &c.y),
            ZEL_OK);
        EXPECT_EQ(c.text(made), c.text(c.body));
        ++signatures;
      }
      Stream stream(c.msg);
      EXPECT_EQ(KCDSA_SSA_V_File(&c.body, stream.file, size_of(c.msg), &c.y, &c.param, c.hash),
                ZEL_OK);
      EXPECT_EQ(KCDSA_SSA_V_Hash(&c.body, digest.data(), len, &c.y, &c.param, c.hash), ZEL_OK);
      // The primitive mixes r into the hash value.
      Bytes mixed(len);
      for (uint32_t i = 0; i < len; ++i)
        mixed[i] = digest[i] ^ c.body.r[i];
      KCDSA_SIGNATURE_BODY made{};
      choose_nonce(v.bytes("k"));
      EXPECT_EQ(KCDSA_SP(&made, digest.data(), &c.x, &c.param, c.hash), ZEL_OK);
      EXPECT_EQ(Bytes(digest.begin(), digest.begin() + len), mixed);
    }
  }
  EXPECT_GE(signatures, 80);
}

// The prefix is read for the length that the hash asks for, and no byte further.
TEST(Kcdsa, TakesThePrefixFromTheCaller) {
  for (const Vector &v : read_vectors("kcdsa_model")) {
    if (!v.has("z")) continue;
    SCOPED_TRACE(v.place);
    Case c(v);
    c.body = Case::signature(v, "r0", "s0");
    Bytes z = v.bytes("z");
    KCDSA_SIGNATURE_BODY made{};
    Stream stream(c.msg), again(c.msg);
    choose_nonce(v.bytes("k"));
    EXPECT_EQ(KCDSA_SSA_S0(&made, c.msg.data(), size_of(c.msg), &c.x, &c.param, c.hash, z.data()),
              ZEL_OK);
    EXPECT_EQ(c.text(made), c.text(c.body));
    choose_nonce(v.bytes("k"));
    EXPECT_EQ(
        KCDSA_SSA_S0_File(&made, stream.file, ZEL_WHOLE_STREAM, &c.x, &c.param, c.hash, z.data()),
        ZEL_OK);
    EXPECT_EQ(c.text(made), c.text(c.body));
    EXPECT_EQ(
        KCDSA_SSA_V0_File(&made, again.file, size_of(c.msg), &c.y, &c.param, c.hash, z.data()),
        ZEL_OK);
    EXPECT_EQ(KCDSA_SSA_V0(&made, c.msg.data(), size_of(c.msg), &c.y, &c.param, c.hash, z.data()),
              ZEL_OK);
    z.back() ^= 1;
    EXPECT_EQ(KCDSA_SSA_V0(&made, c.msg.data(), size_of(c.msg), &c.y, &c.param, c.hash, z.data()),
              ZEL_ERR_GENERIC);
  }
}

TEST(Kcdsa, NoAlteredFieldVerifies) {
  const Case good = some_case();
  ASSERT_EQ(good.verify(), ZEL_OK);
  const auto altered = [&good](auto alter) {
    Case bad = good;
    alter(bad);
    EXPECT_NE(bad.verify(), ZEL_OK);
  };
  for (const uint32_t bit : {0U, 9U, 100U, 159U}) {
    altered([bit](Case &c) { c.body.r[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8); });
    altered([bit](Case &c) { c.body.s.words[bit / 32] ^= 1U << bit % 32; });
    altered([bit](Case &c) { c.y.words[bit / 32] ^= 1U << bit % 32; });
    altered([bit](Case &c) { c.param.g.words[bit / 32] ^= 1U << bit % 32; });
  }
  altered([](Case &c) { c.msg[0] ^= 1; });
  altered([](Case &c) { c.msg.pop_back(); });
  altered([](Case &c) { c.hash = &pophas160; });
  Case edge = good;
  edge.body.s = good.param.q;
  EXPECT_EQ(edge.verify(), ZEL_ERR_GENERIC);
  MINT_AddInteger(&edge.body.s, &edge.body.s, 1);
  EXPECT_EQ(edge.verify(), ZEL_ERR_KCDSA_VERIFY);
}

// In bounded time and without a crash.
TEST(Kcdsa, HostileNumbersAreRefused) {
  const Case good = some_case();
  for (const auto member : {&KCDSA_PARAM::p, &KCDSA_PARAM::q, &KCDSA_PARAM::g}) {
    for (const MINT &value : hostile_numbers(good.param.*member)) {
      Case bad = good;
      bad.param.*member = value;
      EXPECT_NE(bad.verify(), ZEL_OK);
      const bool is_one = MINT_GetBitLength(&value) == 1 && member == &KCDSA_PARAM::g;
      EXPECT_EQ(KCDSA_CheckParam(&bad.param) == ZEL_OK, is_one) << hex_of(value);
      EXPECT_NE(KCDSA_CheckKey(&bad.x, &bad.y, &bad.param), ZEL_OK);
      EXPECT_NE(KCDSA_CheckKeyPair(&bad.x, &bad.y, &bad.param), ZEL_OK);
      KCDSA_SIGNATURE_BODY made;
      const int32_t signs =
          KCDSA_SSA_S(&made, bad.msg.data(), 1, &bad.x, &bad.param, bad.hash, &bad.y);
      const bool computes = MINT_GetBitLength(&value) > 1 && value.length <= ZEL_MINT_WORDS &&
                            (member == &KCDSA_PARAM::g || value.words[0] % 2 != 0) &&
                            member != &KCDSA_PARAM::q;
      EXPECT_EQ(signs == ZEL_OK, computes || is_one) << hex_of(value);
      if (signs == ZEL_OK) continue;
      MINT x, y;
      EXPECT_NE(KCDSA_GenKey(&x, &y, &bad.param), ZEL_OK);
      EXPECT_NE(KCDSA_GenKey_UDK(&x, &y, &bad.param, bad.msg.data(), 1), ZEL_OK);
    }
  }
  for (const MINT &value : hostile_numbers(good.y)) {
    Case bad = good;
    bad.y = value;
    EXPECT_NE(bad.verify(), ZEL_OK);
    EXPECT_NE(KCDSA_CheckKey(&bad.x, &bad.y, &bad.param), ZEL_OK);
    bad = good;
    bad.body.s = value;
    EXPECT_NE(bad.verify(), ZEL_OK);
    bad = good;
    bad.x = value;
    KCDSA_SIGNATURE_BODY made;
    KCDSA_SSA_S(&made, bad.msg.data(), 1, &bad.x, &bad.param, bad.hash, &bad.y);
    EXPECT_NE(KCDSA_CheckKeyPair(&bad.x, &bad.y, &bad.param), ZEL_OK);
  }
  Case multiple = good;
  MINT_Add(&multiple.param.g, &good.param.p, &good.param.p);
  KCDSA_SIGNATURE_BODY of_zero;
  EXPECT_EQ(KCDSA_SP(&of_zero, multiple.msg.data(), &good.x, &multiple.param, good.hash),
            ZEL_ERR_GENERIC);
  // A q so short that few draws are below it, and outputs of a generator repeat by chance.
  Case tiny = good;
  MINT_SetByInteger(&tiny.param.p, 7);
  MINT_SetByInteger(&tiny.param.q, 3);
  MINT_SetByInteger(&tiny.param.g, 2);
  for (int i = 0; i < 300; ++i) {
    KCDSA_SIGNATURE_BODY made;
    EXPECT_EQ(KCDSA_SSA_S(&made, tiny.msg.data(), 1, &tiny.x, &tiny.param, tiny.hash, &tiny.y),
              ZEL_OK);
  }
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  KCDSA_PARAM seeded = good.param;
  for (const uint32_t len : {33U, 0xffffffffU}) {
    seeded.seed_len = len;
    EXPECT_EQ(KCDSA_CheckParam(&seeded), ZEL_ERR_GENERIC);
  }
}

TEST(Kcdsa, LeavesNeitherNonceNorKeyOnTheStack) {
  if (!OnOwnStack::kCounts) GTEST_SKIP() << "true of GCC's release";
  static Case c = some_case();
  static KCDSA_SIGNATURE_BODY made;
  for (uint8_t round = 1; round <= 8; ++round) {
    Bytes k(MINT_GetBitLength(&c.param.q) / 8);
    for (std::size_t i = 0; i < k.size(); ++i)
      k[i] = static_cast<uint8_t>(37 * i + round);
    choose_nonce(k);
    g_seedings = 0;
    const OnOwnStack signing([] {
      uint8_t value[64] = {};
      KCDSA_SP(&made, value, &c.x, &c.param, c.hash);
    });
    EXPECT_EQ(g_seedings, 1);
    EXPECT_TRUE(g_draws.empty());
    EXPECT_FALSE(left_behind(signing, number_of(k), c.param.q));
    EXPECT_FALSE(left_behind(signing, c.x, c.param.q));
    c.x = number_of(k);
    const OnOwnStack checking([] { KCDSA_CheckKeyPair(&c.x, &c.y, &c.param); });
    EXPECT_FALSE(left_behind(checking, c.x, c.param.q));
  }
}

// The published seeds give the published numbers, and the check knows their own generator alone.
TEST(Kcdsa, GeneratesThePublishedParameters) {
  for (const Vector &v : read_vectors("kcdsa_params")) {
    SCOPED_TRACE(v.place);
    const auto p_bits = static_cast<uint32_t>(v.number("pbits"));
    const auto q_bits = static_cast<uint32_t>(v.number("qbits"));
    Case c(v);
    EXPECT_EQ(KCDSA_CheckParam(&c.param), ZEL_OK);
    const Bytes seed = v.bytes("seed");
    std::copy(seed.begin(), seed.end(), c.param.seed);
    c.param.seed_len = size_of(seed);
    c.param.count = static_cast<uint32_t>(v.number("count"));
    EXPECT_EQ(KCDSA_CheckParam(&c.param), q_bits == 160 ? ZEL_OK : ZEL_ERR_GENERIC);

    // 3072 bits take too long here, and one set has a longer hash than the library takes.
    if (p_bits > 2048 || (q_bits == 224 && v.word("hash") != "sha224")) continue;
    Bytes draw = seed;
    for (uint8_t &byte : draw)
      byte ^= kDrbgByte;
    KCDSA_PARAM made;
    g_draws = {draw};
    ASSERT_EQ(KCDSA_GenParam(&made, p_bits, q_bits), ZEL_OK);
    EXPECT_EQ(hex_of(made.p), v.word("p"));
    EXPECT_EQ(hex_of(made.q), v.word("q"));
    EXPECT_EQ(to_hex(Bytes(made.seed, made.seed + made.seed_len)), v.word("seed"));
    EXPECT_EQ(made.count, c.param.count);
    EXPECT_EQ(KCDSA_CheckParam(&made), q_bits == 160 ? ZEL_OK : ZEL_ERR_GENERIC);
    made.seed_len = 0;
    EXPECT_EQ(KCDSA_CheckParam(&made), ZEL_OK);

    if (q_bits == 256) continue;
    KCDSA_PARAM_EX extended;
    g_draws = {draw};
    ASSERT_EQ(KCDSA_GenParamEx(&extended, p_bits, q_bits), ZEL_OK);
    EXPECT_EQ(to_hex(Bytes(extended.J, extended.J + extended.J_len)), v.word("j"));
    EXPECT_EQ(extended.count, c.param.count);
    EXPECT_EQ(extended.seed_len, size_of(seed));
    MINT power = number_of(Bytes(extended.h, extended.h + p_bits / 8)), twice = number_of(v, "j");
    const MINT base = power;
    MINT_LeftShift(&twice, 1);
    MINT_ExpWin(&power, &base, &twice, &extended.p, 4);
    EXPECT_EQ(hex_of(power), hex_of(extended.g));
  }
}

// The rounds are those for the sizes asked for: J has 4 bits less than the difference.
TEST(Kcdsa, TestsNumbersAsOftenAsTheirSizesAsk) {
  for (const auto &[p_bits, q_bits] : {std::pair{320U, 160U}, std::pair{512U, 256U}}) {
    KCDSA_PARAM made;
    g_rounds.clear();
    g_seedings = 0;
    ASSERT_EQ(KCDSA_GenParam(&made, p_bits, q_bits), ZEL_OK);
    EXPECT_EQ(g_rounds, (std::set{PRIME_SelectMRIter(p_bits), PRIME_SelectMRIter(q_bits),
                                  PRIME_SelectMRIter(p_bits - q_bits)}));
    EXPECT_EQ(g_seedings, 1);
  }
}

// The first base, 1, has no power but itself: the second is raised to 4 J.
TEST(Kcdsa, DoublesTheExponentForEveryBase) {
  KCDSA_PARAM_EX made;
  std::vector<int> draws(30);
  draws[0] = 2, draws[1] = 1;
  choose_after_seeding(draws);
  ASSERT_EQ(KCDSA_GenParamEx(&made, 320, 160), ZEL_OK);
  MINT exponent = number_of(Bytes(made.J, made.J + made.J_len)), power;
  const MINT base = number_of(Bytes(made.h, made.h + 40));
  MINT_LeftShift(&exponent, 2);
  MINT_ExpWin(&power, &base, &exponent, &made.p, 4);
  EXPECT_EQ(hex_of(made.g), hex_of(power));
  // A generator that is stuck above p.
  choose_after_seeding(std::vector<int>(3U << 20, 0x5555));
  EXPECT_EQ(KCDSA_GenParamEx(&made, 320, 160), ZEL_ERR_GENERIC);
}

TEST(Kcdsa, ChecksEachWayOfBeingWrong) {
  for (const Vector &v : read_vectors("kcdsa_params")) {
    if (v.word("hash") != "has160") continue;
    Case good(v);
    const Bytes seed = v.bytes("seed");
    std::copy(seed.begin(), seed.end(), good.param.seed);
    good.param.seed_len = size_of(seed);
    good.param.count = static_cast<uint32_t>(v.number("count"));
    const auto altered = [&good](auto alter) {
      KCDSA_PARAM bad = good.param;
      alter(bad);
      EXPECT_EQ(KCDSA_CheckParam(&bad), ZEL_ERR_GENERIC);
    };
    altered([](KCDSA_PARAM &p) { MINT_AddInteger(&p.p, &p.p, 2); });
    altered([](KCDSA_PARAM &p) { MINT_AddInteger(&p.q, &p.q, 2); });
    altered([](KCDSA_PARAM &p) { MINT_AddInteger(&p.g, &p.g, 1); });
    altered([](KCDSA_PARAM &p) { p.seed[19] ^= 1; });
    altered([](KCDSA_PARAM &p) { ++p.count; });
    altered([](KCDSA_PARAM &p) { --p.seed_len; });
    // Without the seed, what does not fit together is still seen.
    altered([](KCDSA_PARAM &p) { MINT_AddInteger(&p.q, &p.q, 2), p.seed_len = 0; });
    altered([](KCDSA_PARAM &p) { MINT_AddInteger(&p.p, &p.p, 2), p.seed_len = 0; });
  }
}

TEST(Kcdsa, MakesKeysFromWhatItDraws) {
  for (const Vector &v : read_vectors("kcdsa_keygen")) {
    const Case c(v);
    EXPECT_EQ(KCDSA_CheckKey(&c.x, &c.y, &c.param), ZEL_OK) << v.place;
    MINT wrong = c.x, power;
    MINT_AddInteger(&wrong, &wrong, 1);
    EXPECT_EQ(KCDSA_CheckKeyPair(&wrong, &c.y, &c.param), ZEL_ERR_GENERIC);
    MINT_Sub(&power, &c.param.p, &c.y);  // not in the subgroup
    EXPECT_EQ(KCDSA_CheckKey(&c.x, &power, &c.param), ZEL_ERR_GENERIC);
  }
  const Case c = some_case();
  MINT x{}, y{};
  // Zero has no inverse, and the next draw takes its place; a draw above q is reduced.
  for (const Bytes &draw : {Bytes(20, 0x11), Bytes(20, 0xff)}) {
    g_draws = {Bytes(20), draw};
    MINT want = number_of(draw);
    MINT_ModClassic(&want, &c.param.q);
    g_seedings = 0;
    EXPECT_EQ(KCDSA_GenKey(&x, &y, &c.param), ZEL_OK);
    EXPECT_EQ(g_seedings, 1 + 1) << "one for the key, one for the signature that tries it";
    EXPECT_EQ(hex_of(x), hex_of(want));
    EXPECT_EQ(KCDSA_CheckKey(&x, &y, &c.param), ZEL_OK);
  }
  // HAS-160 of "abc".
  const uint8_t text[] = "abc";
  MINT want = number_of(from_hex("975e810488cf2a3d49838478124afce4b1c78804"));
  MINT_ModClassic(&want, &c.param.q);
  EXPECT_EQ(KCDSA_GenKey_UDK(&x, &y, &c.param, text, 3), ZEL_OK);
  EXPECT_EQ(hex_of(x), hex_of(want));
  EXPECT_EQ(KCDSA_CheckKey(&x, &y, &c.param), ZEL_OK);
  EXPECT_EQ(KCDSA_GenKey_UDK(&x, &y, &c.param, text, 0), ZEL_ERR_GENERIC);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
}

TEST(Kcdsa, ExtendedKeysFollowFromTheirRecord) {
  for (const Vector &v : read_vectors("kcdsa_params")) {
    const Case c(v);
    KCDSA_PARAM_EX record{};
    record.p = c.param.p, record.q = c.param.q, record.g = c.param.g;
    MINT x{}, y{}, sum, want;
    ASSERT_EQ(KCDSA_GenKeyEx(&x, &y, &record), ZEL_OK);
    const auto bits = static_cast<uint32_t>(v.number("qbits"));
    const auto prng = bits == 224   ? KCDSARNGSHA224_PRNG
                      : bits == 256 ? KCDSARNGSHA256_PRNG
                                    : KCDSARNGHAS160_PRNG;
    Bytes bytes(bits / 8);
    prng(bytes.data(), bits, record.XSEED, bits);
    const MINT from_seed = number_of(bytes);
    want = number_of(Bytes(record.XKEY, record.XKEY + bits / 8));
    MINT_Add(&sum, &from_seed, &want);
    MINT_WriteLSNByteInByteArray(bytes.data(), bits / 8, &sum);
    Bytes out(bits / 8);
    prng(out.data(), bits, bytes.data(), bits);
    want = number_of(out);
    MINT_ModClassic(&want, &c.param.q);
    EXPECT_EQ(hex_of(x), hex_of(want)) << v.place;
    EXPECT_EQ(KCDSA_CheckKey(&x, &y, &c.param), ZEL_OK);
  }
}

TEST(Kcdsa, ServesThroughTheFrontEndWithEveryHash) {
  Case c = some_case();
  KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  for (const auto *scheme : {&p_kcdsa1, &popkcdsa}) {
    PKCRYPT_KEY *const param = PKCRYPT_NewParam(scheme), *const pri = PKCRYPT_NewPriKey(scheme),
                       *const pub = PKCRYPT_NewPubKey(scheme);
    std::memcpy(param->buf, &c.param, sizeof c.param);
    EXPECT_EQ(PKCRYPT_CheckParam(param), ZEL_OK);
    EXPECT_EQ(PKCRYPT_GenKey(pri, pub, param, 0), ZEL_OK);
    EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_VERIFIED);
    EXPECT_EQ(PKCRYPT_CheckKey(pri, pub, param), ZEL_OK);
    for (const char *const name :
         {"sha1", "sha224", "sha256", "sha384", "sha512", "has160", "md5", "md2", "ripemd160"}) {
      const HASH_ALGORITHM *const hash = hash_of(name);
      KCDSA_SIGNATURE signature{};
      const Bytes z(64, 3);
      const void *const extra = scheme == &p_kcdsa1 ? static_cast<const void *>(pub) : z.data();
      // Those that compute nothing here must not sign.
      const bool inert = hash == &popmd5 || hash == &md2 || hash == &ripemd160;
      EXPECT_EQ(PKCRYPT_Sign(&signature.head, c.msg.data(), 5, pri, param, hash, extra),
                inert ? ZEL_ERR_GENERIC : ZEL_OK);
      EXPECT_EQ(PKCRYPT_Verify(&signature.head, c.msg.data(), 5, pub, param, hash, extra),
                inert ? ZEL_ERR_GENERIC : ZEL_OK);
      EXPECT_EQ(PKCRYPT_SignHash(&signature.head, c.msg.data(), 20, pri, param, &sha256, extra),
                scheme == &p_kcdsa1 ? ZEL_OK : ZEL_ERR_GENERIC);
      if (!inert) continue;
      KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);  // here they compute
      EXPECT_EQ(PKCRYPT_Sign(&signature.head, c.msg.data(), 5, pri, param, hash, extra), ZEL_OK);
      EXPECT_EQ(PKCRYPT_Verify(&signature.head, c.msg.data(), 5, pub, param, hash, extra), ZEL_OK);
      EXPECT_EQ(PKCRYPT_Verify(&signature.head, c.msg.data(), 4, pub, param, hash, extra),
                ZEL_ERR_GENERIC);
      KZEL_CC_SetState(ZEL_STATE_VERIFIED);
    }
    PKCRYPT_DelParam(param);
    PKCRYPT_DelPriKey(pri);
    PKCRYPT_DelPubKey(pub);
  }
}

TEST(Kcdsa, APairThatDoesNotWorkEndsTheModule) {
  for (const Vector &v : read_vectors("kcdsa_keygen")) {
    const Case c(v);
    EXPECT_EQ(CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(&c.x, &c.y, &c.param), ZEL_OK);
    EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
  }
  const Case c = some_case();
  MINT wrong = c.x;
  wrong.words[0] ^= 1;
  EXPECT_EQ(CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(&wrong, &c.y, &c.param), ZEL_ERR_KCDSA_TEST);
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_ERROR);
  EXPECT_EQ(CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(&c.x, &c.y, &c.param), ZEL_ERR_STATE);
  MINT x, y;
  EXPECT_EQ(KCDSA_GenKey(&x, &y, &c.param), ZEL_ERR_GENERIC);
}

}  // namespace
