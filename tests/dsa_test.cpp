// DSA against published signatures, keys and parameters, and against callers who mean harm.
#include "tests/support/discrete_log.hpp"

namespace {

using namespace zel::test;

struct Case {
  explicit Case(const Vector &v)
      : hash(v.has("hash") ? hash_of(v.word("hash")) : nullptr),
        param{number_of(v, "p"), number_of(v, "q"), number_of(v, "g")} {
    if (v.has("y")) y = number_of(v, "y");
    if (v.has("x")) x = number_of(v, "x");
    if (v.has("msg")) msg = v.bytes("msg");
    if (v.has("r")) body = {number_of(v, "r"), number_of(v, "s")};
  }
  int32_t verify() const { return DSA_SSA_V(&body, msg.data(), size_of(msg), &y, &param, hash); }

  const HASH_ALGORITHM *hash;
  DSA_PARAM param;
  MINT x{}, y{};
  Bytes msg = Bytes();
  DSA_SIGNATURE_BODY body{};
};

/// One with a key and the sizes that count today.
Case some_case() {
  for (const Vector &v : read_vectors("dsa")) {
    if (v.has("k") && v.word("hash") == "sha256") return Case(v);
  }
  throw std::runtime_error("no such case");
}

TEST(Dsa, VerifiesWhatIsPublished) {
  for (const Vector &v : read_vectors("dsa")) {
    const int32_t got = Case(v).verify();
    EXPECT_EQ(got == ZEL_OK, v.word("result") == "valid") << v.place << ": " << got;
  }
  // A hash value that is longer than q is not cut; s = 0 modulo q never verifies.
  for (const Vector &v : read_vectors("dsa_standard"))
    EXPECT_EQ(Case(v).verify(), v.number_or("product_rc", -1)) << v.place;
}

TEST(Dsa, SignsWithThePublishedNonces) {
  int signatures = 0;
  for (const Vector &v : read_vectors("dsa")) {
    if (!v.has("k")) continue;
    Case c(v);
    const std::string want = minimal(v.word("r")) + " " + minimal(v.word("s"));
    Bytes digest(64), k = v.bytes("k");
    uint32_t len = 0;
    EXPECT_EQ(DSA_EMSA1(digest.data(), &len, c.msg.data(), size_of(c.msg), c.hash), ZEL_OK);
    const Bytes above(k.size(), 0xff), zero(k.size());
    for (int form = 0; form < 3; ++form) {
      Stream stream(c.msg);
      // Nonces above q and zero are drawn again.
      g_draws = {above, zero, above, k};
      DSA_SIGNATURE_BODY made;
      std::memset(&made, 0xcc, sizeof made);
      EXPECT_EQ(form == 0 ? DSA_SSA_S(&made, c.msg.data(), size_of(c.msg), &c.x, &c.param, c.hash)
                : form == 1
                    ? DSA_SSA_S_Hash(&made, digest.data(), len, &c.x, &c.param, c.hash)
                    : DSA_SSA_S_File(&made, stream.file, ZEL_WHOLE_STREAM, &c.x, &c.param, c.hash),
                ZEL_OK);
      EXPECT_EQ(hex_of(made.r) + " " + hex_of(made.s), want) << v.place;
      EXPECT_TRUE(g_draws.empty());
      ++signatures;
    }
    Stream stream(c.msg);
    EXPECT_EQ(DSA_SSA_V_Hash(&c.body, digest.data(), len, &c.y, &c.param, c.hash), ZEL_OK);
    EXPECT_EQ(DSA_SSA_V_File(&c.body, stream.file, size_of(c.msg), &c.y, &c.param, c.hash), ZEL_OK);
  }
  EXPECT_GE(signatures, 12);
}

TEST(Dsa, ChecksPublishedKeysAndParameters) {
  for (const Vector &v : read_vectors("dsa_keys")) {
    const Case c(v);
    const int32_t want = v.word("result") == "valid" ? ZEL_OK : ZEL_ERR_GENERIC;
    EXPECT_EQ(DSA_CheckKey(&c.x, &c.y, &c.param), want) << v.place;
    EXPECT_EQ(DSA_CheckKeyPair(&c.x, &c.y, &c.param), want) << v.place;
  }
  for (const Vector &v : read_vectors("dsa_params")) {
    const int32_t want = v.word("result") == "valid" ? ZEL_OK : ZEL_ERR_GENERIC;
    const Case c(v);
    EXPECT_EQ(DSA_CheckParam(&c.param), want) << v.place << ": " << v.word("note");
  }
}

TEST(Dsa, NoAlteredFieldVerifies) {
  const Case good = some_case();
  ASSERT_EQ(good.verify(), ZEL_OK);
  const auto altered = [&good](auto alter) {
    Case bad = good;
    alter(bad);
    EXPECT_NE(bad.verify(), ZEL_OK);
  };
  for (const uint32_t bit : {0U, 7U, 100U, 255U}) {
    altered([bit](Case &c) { c.body.r.words[bit / 32] ^= 1U << bit % 32; });
    altered([bit](Case &c) { c.body.s.words[bit / 32] ^= 1U << bit % 32; });
    altered([bit](Case &c) { c.y.words[bit / 32] ^= 1U << bit % 32; });
    altered([bit](Case &c) { c.param.g.words[bit / 32] ^= 1U << bit % 32; });
  }
  altered([](Case &c) { c.msg[0] ^= 1; });
  altered([](Case &c) { c.msg.pop_back(); });
  altered([](Case &c) { c.hash = &sha224; });
  altered([](Case &c) { std::swap(c.body.r, c.body.s); });

  // At q the range test still lets pass, above it does not.
  Case edge = good;
  edge.body.r = good.param.q;
  EXPECT_EQ(edge.verify(), ZEL_ERR_GENERIC);
  MINT_AddInteger(&edge.body.r, &edge.body.r, 1);
  EXPECT_EQ(edge.verify(), ZEL_ERR_DSA_VERIFY);
  MINT_Add(&edge.body.r, &good.body.r, &good.param.q);
  EXPECT_EQ(edge.verify(), ZEL_ERR_DSA_VERIFY);
  edge = good;
  edge.body.s = good.param.q;
  EXPECT_EQ(edge.verify(), ZEL_ERR_GENERIC);
  MINT_AddInteger(&edge.body.s, &edge.body.s, 1);
  EXPECT_EQ(edge.verify(), ZEL_ERR_DSA_VERIFY);
}

// In bounded time, without a crash, and never with success by chance of a degenerate group.
TEST(Dsa, HostileNumbersAreRefused) {
  const Case good = some_case();
  const auto all = [](const Case &c, const char *what) {
    DSA_SIGNATURE_BODY made;
    MINT x, y;
    EXPECT_NE(c.verify(), ZEL_OK) << what;
    MINT_SetByInteger(&x, 1);
    // The generator 1 is no wrong one to DSA_CheckParam.
    EXPECT_EQ(DSA_CheckParam(&c.param) == ZEL_OK, MINT_Compare(&c.param.g, &x) == 0) << what;
    EXPECT_NE(DSA_CheckKey(&c.x, &c.y, &c.param), ZEL_OK) << what;
    DSA_CheckKeyPair(&c.x, &c.y, &c.param);
    DSA_GenKey(&x, &y, &c.param);
    return DSA_SSA_S(&made, c.msg.data(), 1, &c.x, &c.param, c.hash);
  };
  for (const auto member : {&DSA_PARAM::p, &DSA_PARAM::q, &DSA_PARAM::g}) {
    for (const MINT &value : hostile_numbers(good.param.*member)) {
      Case bad = good;
      bad.param.*member = value;
      const int32_t signs = all(bad, "parameter");
      // Numbers that are only not prime, or no generators, still make a signature, if a useless
      // one.
      const bool computes = MINT_GetBitLength(&value) > 1 && value.length <= ZEL_MINT_WORDS &&
                            (member == &DSA_PARAM::g || value.words[0] % 2 != 0) &&
                            member != &DSA_PARAM::q;
      const bool is_one = member == &DSA_PARAM::g && MINT_GetBitLength(&value) == 1;
      EXPECT_EQ(signs == ZEL_OK, computes || is_one) << hex_of(value);
    }
  }
  for (const MINT &value : hostile_numbers(good.y)) {
    Case bad = good;
    bad.y = value;
    EXPECT_NE(bad.verify(), ZEL_OK);
    EXPECT_NE(DSA_CheckKey(&bad.x, &bad.y, &bad.param), ZEL_OK);
    bad = good;
    bad.x = value;
    DSA_SIGNATURE_BODY made;
    DSA_SSA_S(&made, bad.msg.data(), 1, &bad.x, &bad.param, bad.hash);
    EXPECT_NE(DSA_CheckKeyPair(&bad.x, &bad.y, &bad.param), ZEL_OK);
    for (const auto member : {&DSA_SIGNATURE_BODY::r, &DSA_SIGNATURE_BODY::s}) {
      bad = good;
      bad.body.*member = value;
      EXPECT_NE(bad.verify(), ZEL_OK);
    }
  }
  // Zero in both halves, and a group in which every power is 1.
  Case trivial = good;
  trivial.body = {};
  EXPECT_EQ(trivial.verify(), ZEL_ERR_GENERIC);
  MINT_SetByInteger(&trivial.param.g, 1);
  MINT_SetByInteger(&trivial.y, 1);
  EXPECT_EQ(trivial.verify(), ZEL_ERR_GENERIC);
  // A multiple of p, of which every power is zero.
  Case multiple = good;
  MINT_Add(&multiple.param.g, &good.param.p, &good.param.p);
  EXPECT_EQ(all(multiple, "multiple of p"), ZEL_ERR_GENERIC);
  // A group of two elements, in which most nonces fail.
  MINT_SetByInteger(&trivial.param.p, 7);
  MINT_SetByInteger(&trivial.param.q, 3);
  MINT_SetByInteger(&trivial.param.g, 2);
  EXPECT_EQ(all(trivial, "tiny"), ZEL_ERR_GENERIC);
}

// With a nonce, or its inverse, a signature gives the key away.
TEST(Dsa, LeavesNoNonceOnTheStack) {
  if (!OnOwnStack::kCounts) GTEST_SKIP() << "true of GCC's release";
  static Case c = some_case();
  static DSA_SIGNATURE_BODY made;
  for (uint8_t round = 1; round <= 8; ++round) {
    Bytes k(MINT_GetBitLength(&c.param.q) / 8);
    for (std::size_t i = 0; i < k.size(); ++i)
      k[i] = static_cast<uint8_t>(37 * i + round);
    g_draws = {k};
    g_seedings = 0;
    const OnOwnStack own([] { DSA_SP(&made, c.msg.data(), &c.x, &c.param, c.hash); });
    EXPECT_EQ(g_seedings, 1);
    EXPECT_TRUE(g_draws.empty());
    EXPECT_FALSE(left_behind(own, number_of(k), c.param.q));
    EXPECT_FALSE(left_behind(own, c.x, c.param.q));
  }
}

TEST(Dsa, RefusesNullArgumentsAndFirstOfAllTheVerifiedService) {
  Case c = some_case();
  DSA_SIGNATURE_BODY made = c.body;
  MINT x, y;
  uint8_t out[64];
  uint32_t len = 0;
  const auto *const text = c.msg.data();
  Stream stream(c.msg);
  const auto refuses = [](auto function, auto... given) {
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
    for (const int32_t status : with_each_null(function, given...))
      EXPECT_EQ(status, ZEL_ERR_GENERIC);
    KZEL_CC_SetState(ZEL_STATE_VERIFIED);
    EXPECT_EQ(with_nothing(function), ZEL_ERR_APPROVED);
  };
  refuses(DSA_EMSA1, out, &len, text, 9, c.hash);
  refuses(DSA_EMSA1_File, out, &len, stream.file, 9, c.hash);
  refuses(DSA_SP, &made, text, &c.x, &c.param, c.hash);
  refuses(DSA_VP, &made, text, &c.y, &c.param, c.hash);
  refuses(DSA_SSA_S, &made, text, 9, &c.x, &c.param, c.hash);
  refuses(DSA_SSA_S_Hash, &made, text, 9, &c.x, &c.param, c.hash);
  refuses(DSA_SSA_S_File, &made, stream.file, 9, &c.x, &c.param, c.hash);
  refuses(DSA_SSA_V, &made, text, 9, &c.y, &c.param, c.hash);
  refuses(DSA_SSA_V_Hash, &made, text, 9, &c.y, &c.param, c.hash);
  refuses(DSA_SSA_V_File, &made, stream.file, 9, &c.y, &c.param, c.hash);
  refuses(DSA_GenParam, &c.param, 512, 160);
  refuses(DSA_CheckParam, &c.param);
  refuses(DSA_GenKey, &x, &y, &c.param);
  refuses(DSA_CheckKey, &c.x, &c.y, &c.param);
  refuses(DSA_CheckKeyPair, &c.x, &c.y, &c.param);
}

TEST(Dsa, HashFormsReadTheDigestLength) {
  const Case c = some_case();
  Bytes value(65, 1);
  DSA_SIGNATURE_BODY made;
  for (const uint32_t len : {0U, 65U}) {
    EXPECT_EQ(DSA_SSA_S_Hash(&made, value.data(), len, &c.x, &c.param, c.hash), ZEL_ERR_GENERIC);
    EXPECT_EQ(DSA_SSA_V_Hash(&c.body, value.data(), len, &c.y, &c.param, c.hash), ZEL_ERR_GENERIC);
  }
  ASSERT_EQ(DSA_SSA_S_Hash(&made, value.data(), 20, &c.x, &c.param, c.hash), ZEL_OK);
  Bytes padded(value.begin(), value.begin() + 20);
  padded.resize(32);
  EXPECT_EQ(DSA_SSA_V_Hash(&made, padded.data(), 32, &c.y, &c.param, c.hash), ZEL_OK);
  ASSERT_EQ(DSA_SSA_S_Hash(&made, value.data(), 64, &c.x, &c.param, c.hash), ZEL_OK);
  EXPECT_EQ(DSA_SSA_V_Hash(&made, value.data(), 32, &c.y, &c.param, c.hash), ZEL_OK);
}

TEST(Dsa, GeneratesParametersAndKeysThatServe) {
  for (const auto &[p_bits, q_bits] : {std::pair{512U, 160U}, std::pair{1024U, 161U}}) {
    PKCRYPT_KEY *const param = PKCRYPT_NewParam(&dsa), *const pri = PKCRYPT_NewPriKey(&dsa),
                       *const pub = PKCRYPT_NewPubKey(&dsa);
    ASSERT_EQ(PKCRYPT_GenParam(param, p_bits, q_bits), ZEL_OK);
    EXPECT_EQ(PKCRYPT_CheckParam(param), ZEL_OK);
    const auto *const numbers = static_cast<const DSA_PARAM *>(param->buf);
    EXPECT_EQ(MINT_GetBitLength(&numbers->p), p_bits);
    EXPECT_EQ(MINT_GetBitLength(&numbers->q), q_bits);
    // Bytes of q's length modulo q: 160 bits here take 20, 161 take 21.
    g_draws = {Bytes((q_bits + 7) / 8, 0xff)};
    MINT want = number_of(g_draws.front());
    MINT_ModClassic(&want, &numbers->q);
    g_seedings = 0;
    ASSERT_EQ(PKCRYPT_GenKey(pri, pub, param, 0), ZEL_OK);
    EXPECT_EQ(g_seedings, 1);
    EXPECT_EQ(hex_of(*static_cast<const MINT *>(pri->buf)), hex_of(want));
    EXPECT_EQ(PKCRYPT_CheckKey(pri, pub, param), ZEL_OK);
    DSA_SIGNATURE signature{};
    const uint8_t text[] = "text";
    // The hash value is longer than q.
    EXPECT_EQ(PKCRYPT_Sign(&signature.head, text, 4, pri, param, &sha256, nullptr), ZEL_OK);
    EXPECT_EQ(PKCRYPT_Verify(&signature.head, text, 4, pub, param, &sha256, nullptr), ZEL_OK);
    EXPECT_EQ(PKCRYPT_Verify(&signature.head, text, 3, pub, param, &sha256, nullptr),
              ZEL_ERR_GENERIC);
    PKCRYPT_DelParam(param);
    PKCRYPT_DelPriKey(pri);
    PKCRYPT_DelPubKey(pub);
  }
}

TEST(Dsa, RefusesSizesWithoutParameters) {
  DSA_PARAM param;
  std::memset(&param, 0xcc, sizeof param);
  const DSA_PARAM before = param;
  for (const auto &[p_bits, q_bits] : {std::pair{0U, 0U},
                                       {512U, 0U},
                                       {512U, 10U},
                                       {160U, 160U},
                                       {160U, 512U},
                                       {4161U, 160U},
                                       {0xffffffffU, 0xfffffffeU}}) {
    EXPECT_EQ(DSA_GenParam(&param, p_bits, q_bits), ZEL_ERR_GENERIC) << p_bits << " " << q_bits;
  }
  EXPECT_EQ(std::memcmp(&param, &before, sizeof param), 0);
}

}  // namespace
