// RSA signatures: published vectors, every size, altered signatures, refusals and their order.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "tests/support/features.hpp"
#include "tests/support/openssl_rsa.hpp"

// The C library's generator, seen and steered: the program's definition wins over the library's.
namespace {
bool g_zeros = false;
std::mt19937 g_random(1);
std::size_t g_draws = 0;
}  // namespace
extern "C" int rand() noexcept {
  ++g_draws;
  return g_zeros ? 0 : static_cast<int>(g_random() >> 1);
}
extern "C" void srand(unsigned) noexcept {}

namespace zel::test {
namespace {

const Bytes kMessage = from_text("a message of some length, to be signed");

std::uint32_t len_of(const Bytes &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

Bytes digest_of(const HASH_ALGORITHM &hash, const Bytes &message) {
  HASH_CONTEXT context;
  HASH_Initialize(&context, &hash);
  HASH_Update(&context, message.data(), len_of(message));
  Bytes out(ZEL_MAX_DIGEST_LEN);
  std::uint32_t len = 0;
  HASH_Finalize(out.data(), &len, &context);
  out.resize(len);
  return out;
}

using Stream = std::unique_ptr<FILE, int (*)(FILE *)>;
Stream stream_of(const Bytes &bytes) {
  Stream stream(std::tmpfile(), std::fclose);
  std::fwrite(bytes.data(), 1, bytes.size(), stream.get());
  std::rewind(stream.get());
  return stream;
}

int32_t sign(RSA_SIGNATURE &s, const RsaKey &key, const PKCRYPT_ALGORITHM &scheme,
             const HASH_ALGORITHM &hash, const Bytes &message = kMessage) {
  RsaKey copy = key;
  const PKCRYPT_KEY object = copy.pri_of(scheme);
  return PKCRYPT_Sign(&s.head, message.data(), len_of(message), &object, nullptr, &hash, nullptr);
}

int32_t verify(const RSA_SIGNATURE &s, const RsaKey &key, const PKCRYPT_ALGORITHM &scheme,
               const HASH_ALGORITHM &hash, const Bytes &message = kMessage) {
  RsaKey copy = key;
  const PKCRYPT_KEY object = copy.pub_of(scheme);
  return PKCRYPT_Verify(&s.head, message.data(), len_of(message), &object, nullptr, &hash, nullptr);
}

const PKCRYPT_ALGORITHM *const kSchemes[] = {&rsa, &rsa21};

// Every published case, in memory, hashed and from a stream, with each processor feature masked.
TEST(RsaVectors, GiveThePublishedAnswers) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const char *file : {"rsa_pkcs1v15_sig", "rsa_pss"}) {
      for (const Vector &v : read_vectors(file)) {
        SCOPED_TRACE(v.place + " " + set.name);
        RsaKey key = key_of(v);
        const HASH_ALGORITHM &hash = *hash_named(v.word("hash"));
        const PKCRYPT_ALGORITHM &scheme = file == std::string("rsa_pss") ? rsa21 : rsa;
        const Bytes message = v.bytes("msg"), digest = digest_of(hash, message);
        RSA_SIGNATURE s{{}, integer(v.bytes("sig"))};
        const int32_t status = verify(s, key, scheme, hash, message);
        EXPECT_EQ(v.word("result") == "valid", status == ZEL_OK);
        const PKCRYPT_KEY object = key.pub_of(scheme);
        EXPECT_EQ(status, PKCRYPT_VerifyHash(&s.head, digest.data(), len_of(digest), &object,
                                             nullptr, &hash, nullptr));
        EXPECT_EQ(status, PKCRYPT_VerifyFile(&s.head, stream_of(message).get(), ZEL_WHOLE_STREAM,
                                             &object, nullptr, &hash, nullptr));
        if (!v.has("p") || &scheme == &rsa21 || v.word("result") != "valid") continue;
        RSA_SIGNATURE made{};
        ASSERT_EQ(ZEL_OK, sign(made, key, scheme, hash, message));
        EXPECT_EQ(v.bytes("sig"), octets(made.s, key.len()));
      }
    }
  }
}

// Where this library and the standard differ, case by case. Moduli whose encoded message is no
// whole number of words verify like the others.
TEST(RsaVectors, DifferWhereTheyAreSaidTo) {
  std::map<std::string, int> seen;
  for (const Vector &v : read_vectors("rsa_pss_standard")) {
    const RsaKey key = key_of(v);
    const HASH_ALGORITHM &hash = *hash_named(v.word("hash"));
    const RSA_SIGNATURE s{{}, integer(v.bytes("sig"))};
    const int32_t status = verify(s, key, rsa21, hash, v.bytes("msg"));
    const bool other_salt = v.number("salt_len") != static_cast<long>(hash.digest_len);
    const bool valid = v.word("result") == "valid";
    const char *const why = other_salt ? "salt" : valid ? "odd size" : "padding";
    ++seen[why];
    EXPECT_EQ(other_salt ? ZEL_ERR_PSS_VERIFY : ZEL_OK, status) << v.place << " " << why;
  }
  EXPECT_EQ((std::map<std::string, int>{{"odd size", 12}, {"padding", 2}, {"salt", 1}}), seen);
  for (const Vector &v : read_vectors("rsa_pkcs1v15_sig_standard")) {
    const RSA_SIGNATURE s{{}, integer(v.bytes("sig"))};
    EXPECT_EQ(ZEL_ERR_GENERIC, verify(s, key_of(v), rsa, sha224, v.bytes("msg"))) << v.place;
  }
}

/// OpenSSL's signatures with a key, and its view of ours.
class OpenSsl {
 public:
  OpenSsl(const RsaKey &key, bool pss, const EVP_MD *md)
      : pss_(pss), md_(md), key_(peer_key(key)) {}

  bool verifies(const Bytes &sig) const {
    EVP_MD_CTX *const context = EVP_MD_CTX_new();
    EVP_PKEY_CTX *pkey = nullptr;
    EVP_DigestVerifyInit(context, &pkey, md_, nullptr, key_.get());
    pad(pkey);
    const int ok =
        EVP_DigestVerify(context, sig.data(), sig.size(), kMessage.data(), kMessage.size());
    EVP_MD_CTX_free(context);
    return ok == 1;
  }
  Bytes sign() const {
    EVP_MD_CTX *const context = EVP_MD_CTX_new();
    EVP_PKEY_CTX *pkey = nullptr;
    EVP_DigestSignInit(context, &pkey, md_, nullptr, key_.get());
    pad(pkey);
    Bytes sig(600);
    std::size_t len = sig.size();
    if (EVP_DigestSign(context, sig.data(), &len, kMessage.data(), kMessage.size()) != 1) len = 0;
    EVP_MD_CTX_free(context);
    sig.resize(len);
    return sig;
  }

 private:
  void pad(EVP_PKEY_CTX *pkey) const {
    if (!pss_) return;
    EVP_PKEY_CTX_set_rsa_padding(pkey, RSA_PKCS1_PSS_PADDING);
    EVP_PKEY_CTX_set_rsa_pss_saltlen(pkey, RSA_PSS_SALTLEN_DIGEST);
  }
  bool pss_;
  const EVP_MD *md_;
  PeerKey key_;
};

// A size whose block or whose top bits are laid out wrongly fails against another program.
TEST(RsaSignatures, AgreeWithOpenSslAtEverySize) {
  for (const std::uint32_t bits :
       {512U, 1023U, 1024U, 1025U, 1026U, 1031U, 1032U, 1033U, 1536U, 2047U, 2048U, 3072U, 4096U}) {
    const RsaKey &key = key_of_bits(bits);
    for (const HashRow &row : kHashes) {
      if (row.kind == HashKind::kInert || row.openssl[0] == '\0') continue;
      for (const PKCRYPT_ALGORITHM *scheme : kSchemes) {
        const bool pss = scheme == &rsa21;
        const std::uint32_t hash_len = row.descriptor->digest_len;
        const bool short_salt = bits == 1024 && hash_len == 64;
        const std::uint32_t overhead = pss ? hash_len * 2 + 2 : hash_len + 30;
        if ((!pss && row.descriptor == &sha224) || (short_salt && pss) || overhead > (bits + 6) / 8)
          continue;
        SCOPED_TRACE(std::to_string(bits) + row.name + (pss ? " PSS" : " v1.5"));
        const OpenSsl peer(key, pss, EVP_get_digestbyname(row.openssl));
        RSA_SIGNATURE s{};
        ASSERT_EQ(ZEL_OK, sign(s, key, *scheme, *row.descriptor));
        EXPECT_EQ(scheme, s.head.desc);
        EXPECT_TRUE(peer.verifies(octets(s.s, key.len())));
        EXPECT_EQ(ZEL_OK, verify(s, key, *scheme, *row.descriptor));
        s.s = integer(peer.sign());
        EXPECT_EQ(ZEL_OK, verify(s, key, *scheme, *row.descriptor));
      }
    }
  }
}

TEST(RsaSignatures, DoNotVerifyWhenAnyByteIsAltered) {
  const RsaKey &key = key_of_bits(1024);
  for (const PKCRYPT_ALGORITHM *scheme : kSchemes) {
    RSA_SIGNATURE s{};
    ASSERT_EQ(ZEL_OK, sign(s, key, *scheme, sha256));
    const Bytes good = octets(s.s, key.len());
    for (std::size_t i = 0; i < good.size(); ++i) {
      Bytes bad = good;
      bad[i] ^= static_cast<std::uint8_t>(1U << (i % 8));
      const RSA_SIGNATURE altered{{}, integer(bad)};
      EXPECT_NE(ZEL_OK, verify(altered, key, *scheme, sha256)) << "byte " << i;
    }
    EXPECT_NE(ZEL_OK, verify(s, key, *scheme, sha256, from_text("another message")));
    EXPECT_NE(ZEL_OK, verify(s, key, *scheme, sha384));
    MINT_Add(&s.s, &s.s, &key.pub.n);
    EXPECT_EQ(ZEL_ERR_RSA_REPRESENTATIVE, verify(s, key, *scheme, sha256));
  }
}

// The verifier looks at the trailer, the salt and the hash, and at nothing else.
TEST(RsaSignatures, PssPaddingIsNotLookedAt) {
  const RsaKey &key = key_of_bits(1027);
  RSA_SIGNATURE s{};
  ASSERT_EQ(ZEL_OK, sign(s, key, rsa21, sha256));
  MINT m;
  ASSERT_EQ(ZEL_OK, RSA_VP1(&m, &s.s, &key.pub));
  const Bytes em = octets(m, 129);
  const std::size_t salt_at = 129 - 1 - 32 - 32;
  const auto with_byte = [&](std::size_t i) {
    Bytes altered = em;
    altered[i] ^= 1;
    RSA_SIGNATURE other{};
    m = integer(altered);
    EXPECT_EQ(ZEL_OK, RSA_SP1(&other.s, &m, &key.pri));
    return verify(other, key, rsa21, sha256);
  };
  for (std::size_t i = 0; i < 129; ++i)
    EXPECT_EQ(i < salt_at ? ZEL_OK : ZEL_ERR_PSS_VERIFY, with_byte(i)) << "byte " << i;
}

// A bit above the encoded message: ignored in the top byte, refused where it takes a byte more.
TEST(RsaSignatures, PssTopBitsAreNotLookedAt) {
  for (const auto &[bits, status] : {std::pair{1027U, ZEL_OK}, {1025U, ZEL_ERR_PSS_VERIFY}}) {
    const RsaKey &key = key_of_bits(bits);
    RSA_SIGNATURE s{};
    MINT m;
    mpz_class altered;
    do {
      ASSERT_EQ(ZEL_OK, sign(s, key, rsa21, sha256));
      ASSERT_EQ(ZEL_OK, RSA_VP1(&m, &s.s, &key.pub));
      altered = value_of(m) + two_to(bits - 1);
    } while (altered >= value_of(key.pub.n));
    m = record(altered);
    ASSERT_EQ(ZEL_OK, RSA_SP1(&s.s, &m, &key.pri));
    EXPECT_EQ(status, verify(s, key, rsa21, sha256)) << bits;
  }
}

// Salts keep their width: a generator of zeros gives zero bytes, not an empty salt.
TEST(RsaSignatures, DrawTheirSaltsInOneOrder) {
  for (const auto &[bits, hash, draws] : {std::tuple{1024U, &sha512, 62 / 4 * 3 + 2},
                                          {2048U, &sha512, 16 * 3},
                                          {1024U, &sha224, 7 * 3}}) {
    const RsaKey &key = key_of_bits(bits);
    RSA_SIGNATURE s{}, again{};
    g_zeros = true;
    g_draws = 0;
    EXPECT_EQ(ZEL_OK, sign(s, key, rsa21, *hash));
    EXPECT_EQ(static_cast<std::size_t>(draws) + 1, g_draws) << "one more to seed";
    EXPECT_EQ(ZEL_OK, verify(s, key, rsa21, *hash));
    EXPECT_EQ(ZEL_OK, sign(again, key, rsa21, *hash));
    g_zeros = false;
    EXPECT_EQ(0, MINT_Compare(&s.s, &again.s));
  }
  g_draws = 0;
  RSA_SIGNATURE s{};
  EXPECT_EQ(ZEL_ERR_PSS_ENCODE, sign(s, key_of_bits(1023), rsa21, sha512));
  EXPECT_EQ(0U, g_draws) << "refused before the salt";
}

TEST(RsaSignatures, AreRefusedInOrder) {
  RsaKey key = key_of_bits(512);
  RSA_SIGNATURE s{};
  EXPECT_EQ(ZEL_ERR_GENERIC, sign(s, key_of_bits(1024), rsa, sha224));
  EXPECT_EQ(ZEL_ERR_GENERIC, sign(s, key, rsa, pophas160)) << "unknown before too long";
  EXPECT_EQ(ZEL_ERR_PKCS1_ENCODE, sign(s, key, rsa, sha512));
  EXPECT_EQ(0U, s.s.length);
  const std::uint8_t digest[65] = {};
  for (const std::uint32_t len : {0U, 65U}) {
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_S_Hash(&s.s, digest, len, &key.pri, nullptr, &sha256));
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_V_Hash(&s.s, digest, len, &key.pub, nullptr, &sha256));
  }
  // The length of a hash value is the caller's, in PSS without a limit.
  RsaKey large = key_of_bits(1024);
  EXPECT_EQ(ZEL_OK, RSA_SSA_S_Hash(&s.s, digest, 20, &large.pri, nullptr, &sha256));
  EXPECT_EQ(ZEL_OK, RSA_SSA_V_Hash(&s.s, digest, 20, &large.pub, nullptr, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_V_Hash(&s.s, digest, 32, &large.pub, nullptr, &sha256));
  EXPECT_EQ(ZEL_OK, RSA_SSA_PSS_S_Hash(&s.s, digest, 65, &large.pri, nullptr, &sha256));
  EXPECT_EQ(ZEL_OK, RSA_SSA_PSS_V_Hash(&s.s, digest, 65, &large.pub, nullptr, &sha256));
  EXPECT_EQ(ZEL_ERR_PSS_VERIFY, RSA_SSA_PSS_V_Hash(&s.s, digest, 64, &large.pub, nullptr, &sha256));
  // Where the hash is looked at after the signature, and where before.
  s.s = key.pub.n;
  EXPECT_EQ(ZEL_ERR_RSA_REPRESENTATIVE,
            RSA_SSA_V_Hash(&s.s, digest, 32, &key.pub, nullptr, nullptr));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_V(&s.s, digest, 32, &key.pub, nullptr, nullptr));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_PSS_V(&s.s, nullptr, 32, &key.pub, nullptr, &sha256));
  std::uint8_t em[64];
  for (const std::uint32_t len : {61U, 62U}) {
    EXPECT_EQ(len == 62 ? ZEL_OK : ZEL_ERR_PKCS1_ENCODE,
              EMSA_PKCS1_v1_5_ENCODE_Hash(em, len, digest, 32, &sha256));
  }
}

// Streams are read from where they stand, for as long as was asked.
TEST(RsaSignatures, ReadStreamsAsAsked) {
  RsaKey key = key_of_bits(1024);
  const Bytes content = noise(200000);
  const PKCRYPT_KEY pri = key.pri_of(rsa), pub = key.pub_of(rsa);
  for (const auto &[from, asked, hashed] : {std::tuple{0U, ZEL_WHOLE_STREAM, 200000U},
                                            {5U, ZEL_WHOLE_STREAM, 199995U},
                                            {0U, 0U, 0U},
                                            {3U, 65536U, 65536U},
                                            {3U, 65537U, 65537U},
                                            {0U, 131072U, 131072U},
                                            {7U, 300000U, 199993U}}) {
    const Stream stream = stream_of(content);
    std::fseek(stream.get(), from, SEEK_SET);
    RSA_SIGNATURE s{};
    ASSERT_EQ(ZEL_OK,
              PKCRYPT_SignFile(&s.head, stream.get(), asked, &pri, nullptr, &sha256, nullptr));
    EXPECT_EQ(from + hashed, std::ftell(stream.get()));
    EXPECT_EQ(ZEL_OK, PKCRYPT_Verify(&s.head, content.data() + from, hashed, &pub, nullptr, &sha256,
                                     nullptr))
        << from << " " << asked;
  }
  const Stream write_only(std::fopen("/dev/null", "w"), std::fclose);
  RSA_SIGNATURE s{};
  EXPECT_EQ(ZEL_ERR_GENERIC,
            RSA_SSA_S_File(&s.s, write_only.get(), 10, &key.pri, nullptr, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_PSS_S_File(&s.s, write_only.get(), ZEL_WHOLE_STREAM, &key.pri,
                                                nullptr, &sha256));
}

// Whatever a key holds: an answer, in time, within the records.
TEST(RsaHostileKeys, GiveErrors) {
  const RsaKey &good = key_of_bits(1024);
  const MINT zero{}, one{1, {1}}, even{2, {2, 7}};

  const MINT in{3, {5, 6, 7}};
  for (MINT RSA_PRIVATE_KEY::*field :
       {&RSA_PRIVATE_KEY::n, &RSA_PRIVATE_KEY::p, &RSA_PRIVATE_KEY::q}) {
    for (const MINT &value : {zero, one, even}) {
      RsaKey key = good;
      key.pri.*field = value;
      Fenced out;
      const bool is_one_n = field == &RSA_PRIVATE_KEY::n && value.words[0] == 1;
      EXPECT_EQ(is_one_n ? ZEL_OK : ZEL_ERR_GENERIC, RSA_SP1(out.get(), &in, &key.pri));
      RSA_SIGNATURE s{};
      EXPECT_NE(ZEL_OK, sign(s, key, rsa, sha256));
      EXPECT_NE(ZEL_OK, sign(s, key, rsa21, sha256));
      EXPECT_TRUE(out.intact());
    }
  }
  // Every field in turn with a length from outside: results are free, bounds are not.
  for (std::size_t i = 0; i < sizeof(RSA_PRIVATE_KEY) / sizeof(MINT); ++i) {
    RsaKey key = good;
    MINT &field = reinterpret_cast<MINT *>(&key.pri)[i];
    field.length = 0xFFFFFFFF;
    std::fill(field.words + 32, field.words + 130, 0xFFFFFFFFU);
    key.pub = {key.pri.n, key.pri.e};
    Fenced out;
    RSA_SP1(out.get(), &in, &key.pri);
    EXPECT_TRUE(out.intact());
    RSA_SIGNATURE s{};
    sign(s, key, rsa, sha256);
    sign(s, key, rsa21, sha256);
    verify(s, key, rsa21, sha256);
    s.s.length = 0xFFFFFFFF;
    EXPECT_NE(ZEL_OK, verify(s, key, rsa, sha256));
  }
  for (const MINT &n : {zero, even}) {
    RsaKey key = good;
    key.pub.n = n;
    const RSA_SIGNATURE s{{}, one};
    EXPECT_NE(ZEL_OK, verify(s, key, rsa, sha256));
    EXPECT_NE(ZEL_OK, verify(s, key, rsa21, sha256));
  }
}

// The halves join whatever their sizes; GMP knows the power. Mersenne primes, and a product of 4160
// bits.
TEST(RsaPrimitives, JoinPrimesOfUnequalSizes) {
  gmp_randclass random(gmp_randinit_mt);
  mpz_class last = two_to(943) * 3 / 4;
  mpz_nextprime(last.get_mpz_t(), last.get_mpz_t());
  for (const auto &[p, q] : {std::pair<mpz_class, mpz_class>{7, two_to(2203) - 1},
                             {two_to(2203) - 1, 7},
                             {two_to(61) - 1, two_to(89) - 1},
                             {two_to(521) - 1, two_to(607) - 1},
                             {two_to(1279) - 1, two_to(2281) - 1},
                             {two_to(3217) - 1, last}}) {
    const mpz_class lambda = lcm(p - 1, q - 1);
    mpz_class e = 65537, c = random.get_z_bits(4160);
    while (gcd(e, lambda) != 1)
      e += 2;
    const RsaKey key = key_of(p, q, e);
    for (const mpz_class &m : {c, mpz_class(0), p, mpz_class(p * q - 1), mpz_class(1)}) {
      mpz_class want;
      const mpz_class n = p * q, d = value_of(key.pri.d);
      mpz_powm(want.get_mpz_t(), m.get_mpz_t(), d.get_mpz_t(), n.get_mpz_t());
      MINT in = record(m);
      ASSERT_EQ(ZEL_OK, RSA_SP1(&in, &in, &key.pri));
      EXPECT_EQ(want, value_of(in)) << p << " and " << q;
    }
  }
}

// Products at the edge of a record, where with exponents of one nothing but the joining is at work;
// d is not used.
TEST(RsaPrimitives, JoinWhatARecordHolds) {
  for (const auto &[p, q, fits] : {std::tuple{mpz_class(5), mpz_class(two_to(4157) + 1), true},
                                   {mpz_class(two_to(4157) + 1), mpz_class(5), true},
                                   {mpz_class(5), mpz_class(two_to(4158) - 1), false},
                                   {mpz_class(two_to(4158) - 1), mpz_class(5), false}}) {
    RsaKey key = key_of(p, q);
    key.pri.d = MINT{0xFFFFFFFF, {2, 3}};
    key.pri.dP = key.pri.dQ = MINT{1, {1}};
    for (const mpz_class &m : {mpz_class(0), mpz_class(p * q % two_to(4160) - 1)}) {
      const MINT in = record(m);
      MINT out{1, {77}};
      EXPECT_EQ(fits ? ZEL_OK : ZEL_ERR_GENERIC, RSA_SP1(&out, &in, &key.pri));
      EXPECT_EQ(fits ? m : mpz_class(77), value_of(out));
    }
  }
}

TEST(RsaPrimitives, WriteWholeWordsAndMasks) {
  const MINT a{3, {0x01020304, 0, 0x05}};
  std::uint8_t out[520];
  std::uint32_t len = 9;
  EXPECT_EQ(ZEL_OK, RSA_I2OSP(out, &len, &a));
  EXPECT_EQ("000000050000000001020304", to_hex(Bytes(out, out + len)));
  const MINT zero{};
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_I2OSP(out, &len, &zero));
  EXPECT_EQ(0U, len);
  // MGF1 over SHA-1 and SHA-256: values of two public test suites.
  const Bytes seed = from_text("bar");
  EXPECT_EQ(ZEL_OK, RSA_MGF1(out, 50, seed.data(), 3, &sha256));
  EXPECT_EQ(
      "382576a7841021cc28fc4c0948753fb8312090cea942ea4c4e735d10dc724b155f9f6069f289d61daca0cb8"
      "14502ef04eae1",
      to_hex(Bytes(out, out + 50)));
  EXPECT_EQ(ZEL_OK, RSA_MGF1(out, 5, seed.data(), 3, &popsha1));
  EXPECT_EQ("bc0c655e01", to_hex(Bytes(out, out + 5)));
  // Nothing is no address: the mask of no seed is that of the empty one.
  std::uint8_t empty[5];
  EXPECT_EQ(ZEL_OK, RSA_MGF1(empty, 5, seed.data(), 0, &sha256));
  EXPECT_EQ(ZEL_OK, RSA20_MGF1(out, 5, nullptr, 0, &sha256));
  EXPECT_EQ(Bytes(empty, empty + 5), Bytes(out, out + 5));
  EXPECT_EQ(ZEL_OK, RSA_MGF1(nullptr, 0, nullptr, 0, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_MGF1(out, 5, nullptr, 1, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_MGF1(nullptr, 1, out, 5, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_MGF1(out, 5, out, 5, nullptr));
}

}  // namespace
}  // namespace zel::test
