// RSA encryption: OAEP of both versions, the padding of version 1.5, and RSA of version 2.0.
#include <gtest/gtest.h>

#include "pk/oaep.hpp"
#include "tests/support/openssl_rsa.hpp"

// The allocator, as the library sees it.
namespace {
bool g_no_memory = false;
}
extern "C" void *__real_calloc(std::size_t count, std::size_t size);
extern "C" void *__wrap_calloc(std::size_t count, std::size_t size) {
  return g_no_memory ? nullptr : __real_calloc(count, size);
}

namespace zel::test {
namespace {

std::uint32_t len_of(const Bytes &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

/// What encryption or decryption gave.
struct Answer {
  std::int32_t status;
  Bytes out;
};

/// Through the front; the label stands in the place of parameters.
template <class Operation>
Answer crypt(Operation operation, const PKCRYPT_KEY &key, const Bytes &in,
             const HASH_ALGORITHM *hash, const Bytes &label = {}) {
  RSA_OAEP_LABEL record{label.data(), len_of(label)};
  const PKCRYPT_KEY param{key.desc, &record};
  Answer answer{0, Bytes(600, 0xa5)};
  std::uint32_t len = 600;
  const std::uint8_t none = 0;
  answer.status = operation(answer.out.data(), &len, in.empty() ? &none : in.data(), len_of(in),
                            &key, label.empty() ? nullptr : &param, hash, nullptr);
  if (answer.status == ZEL_OK) answer.out.resize(len);
  return answer;
}
const Bytes kUntouched(600, 0xa5);

Answer decrypt(const PKCRYPT_ALGORITHM &scheme, RsaKey key, const Bytes &in,
               const HASH_ALGORITHM *hash, const Bytes &label = {}) {
  return crypt(PKCRYPT_Decrypt, key.pri_of(scheme), in, hash, label);
}
Answer encrypt(const PKCRYPT_ALGORITHM &scheme, RsaKey key, const Bytes &in,
               const HASH_ALGORITHM *hash, const Bytes &label = {}) {
  return crypt(PKCRYPT_Encrypt, key.pub_of(scheme), in, hash, label);
}

// Published ciphertexts; those that must be refused leave the output alone. The two of
// rsa_oaep_standard are refused by the standard and accepted here.
TEST(RsaOaep, DecryptsPublishedCiphertexts) {
  int too_long = 0;
  for (const char *file : {"rsa_oaep", "rsa_oaep_standard"}) {
    for (const Vector &v : read_vectors(file)) {
      SCOPED_TRACE(v.place);
      too_long += v.bytes("n").size() > ZEL_MINT_BYTES ? 1 : 0;
      if (v.bytes("n").size() > ZEL_MINT_BYTES) continue;
      const HASH_ALGORITHM *const hash = hash_named(v.word("hash"));
      const bool valid = v.word(v.has("product") ? "product" : "result") == "valid";
      for (const PKCRYPT_ALGORITHM *scheme : {&rsa, &rsa21, &rsa20}) {
        const Answer got = decrypt(*scheme, key_of(v), v.bytes("ct"), hash, v.bytes("label"));
        EXPECT_EQ(valid, got.status == ZEL_OK);
        EXPECT_EQ(valid ? v.bytes(v.has("product_msg") ? "product_msg" : "msg") : kUntouched,
                  got.out);
      }
    }
  }
  EXPECT_EQ(1, too_long) << "one key of 8192 bits, which no record holds";
}

// The seed is zero: ciphertexts are fixed. Values of a model in another program.
TEST(RsaOaep, EncryptsWithAZeroSeed) {
  for (const Vector &v : read_vectors("rsa_oaep_encrypt_product")) {
    SCOPED_TRACE(v.place);
    const HASH_ALGORITHM *const hash = hash_named(v.word("hash"));
    const RsaKey key = key_of(v);
    const Bytes message = v.bytes("msg"), label = v.bytes("label");
    const Answer got = encrypt(rsa, key, message, hash, label);
    EXPECT_EQ(ZEL_OK, got.status);
    EXPECT_EQ(v.bytes("ct"), got.out);
    Bytes em(key.len());
    EXPECT_EQ(ZEL_OK, EME_OAEP_ENCODE21(em.data(), key.len(), message.data(), len_of(message),
                                        label.data(), len_of(label), hash));
    EXPECT_EQ(v.bytes("em"), em);
    std::uint32_t len = 0;
    em[0] = 0x77;
    EXPECT_EQ(ZEL_OK, EME_OAEP_DECODE21(em.data(), &len, em.data(), key.len(), label.data(),
                                        len_of(label), hash));
    EXPECT_EQ(message, Bytes(em.begin(), em.begin() + len)) << "the first byte is not looked at";
  }
}

// A label that is not there has no length.
TEST(RsaOaep, TakesANullLabelForTheEmptyOne) {
  const RsaKey &key = key_of_bits(1024);
  const RSA_OAEP_LABEL label{nullptr, 5};
  std::uint8_t plain[128]{}, labelled[128]{}, out[128];
  std::uint32_t len = 0;
  const auto encrypt_to = [&](std::uint8_t *sealed, const RSA_OAEP_LABEL *with) {
    return RSAES_OAEP_ENCRYPT21(sealed, &len, plain, 0, &key.pub, with, &sha256, nullptr);
  };
  EXPECT_EQ(ZEL_OK, encrypt_to(labelled, &label));
  EXPECT_EQ(ZEL_OK, encrypt_to(plain, nullptr));
  EXPECT_EQ(0, std::memcmp(plain, labelled, 128));
  EXPECT_EQ(ZEL_OK,
            RSAES_OAEP_DECRYPT21(out, &len, plain, 128, &key.pri, &label, &sha256, nullptr));
  EXPECT_EQ(0U, len);
}

Answer peer(const RsaKey &key, const Bytes &in, const char *md, bool encrypts) {
  const PeerKey pkey = peer_key(key);
  EVP_PKEY_CTX *const context = EVP_PKEY_CTX_new(pkey.get(), nullptr);
  (encrypts ? EVP_PKEY_encrypt_init : EVP_PKEY_decrypt_init)(context);
  EVP_PKEY_CTX_set_rsa_padding(context, md == nullptr ? RSA_PKCS1_PADDING : RSA_PKCS1_OAEP_PADDING);
  if (md != nullptr) EVP_PKEY_CTX_set_rsa_oaep_md(context, EVP_get_digestbyname(md));
  Answer answer{0, Bytes(600)};
  std::size_t len = 600;
  answer.status = (encrypts ? EVP_PKEY_encrypt : EVP_PKEY_decrypt)(context, answer.out.data(), &len,
                                                                   in.data(), in.size());
  answer.out.resize(len);
  EVP_PKEY_CTX_free(context);
  return answer;
}

// Both ways, at sizes where the top byte is nearly full and nearly empty, with short and full
// messages.
TEST(RsaEncryption, AgreesWithOpenSsl) {
  for (const std::uint32_t bits : {1023U, 1024U, 1025U, 2047U, 2048U}) {
    const RsaKey &key = key_of_bits(bits);
    const struct {
      const PKCRYPT_ALGORITHM *scheme;
      const HASH_ALGORITHM *hash;
      const char *md;
      std::uint32_t overhead;
    } rows[] = {{&rsa21, &sha256, "SHA256", 66},
                {&rsa, &popsha1, "SHA1", 42},
                {&rsa20, &sha256, "SHA256", 66},
                {&rsa20, nullptr, nullptr, 11}};
    for (const auto &row : rows) {
      for (const std::uint32_t len : {1U, key.len() - row.overhead}) {
        SCOPED_TRACE(std::to_string(bits) + (row.md == nullptr ? "v1.5" : row.md));
        const Bytes message = noise(len);
        const Answer sealed = encrypt(*row.scheme, key, message, row.hash);
        ASSERT_EQ(ZEL_OK, sealed.status);
        EXPECT_EQ(message, peer(key, sealed.out, row.md, false).out);
        const Answer opened =
            decrypt(*row.scheme, key, peer(key, message, row.md, true).out, row.hash);
        EXPECT_EQ(message, opened.out);
        EXPECT_EQ(row.scheme == &rsa20,
                  encrypt(*row.scheme, key, message, row.hash).out != sealed.out)
            << "only version 2.0 draws";
      }
      const Answer refused =
          encrypt(*row.scheme, key, noise(key.len() - row.overhead + 1), row.hash);
      EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN, refused.status);
    }
  }
}

TEST(RsaEncryption, RefusesInOrder) {
  const RsaKey &key = key_of_bits(1024), &small = key_of_bits(512);
  const Bytes block(128, 1);
  EXPECT_EQ(ZEL_ERR_RSA_DECODE, decrypt(rsa, key, Bytes(127, 1), &sha512).status);
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa, key, {}, &sha512).status);
  EXPECT_EQ(ZEL_ERR_OAEP_MODULUS, decrypt(rsa, key, block, &sha512).status);
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa, key, block, &sha256).status);
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa, key, block, nullptr).status);
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa20, key, block, &sha512).status);
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa20, key, {}, nullptr).status);
  EXPECT_EQ(ZEL_ERR_RSA_DECODE, decrypt(rsa20, key, Bytes(127, 1), nullptr).status);
  EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN, encrypt(rsa, small, noise(1), &sha256).status);
  std::uint32_t len = 0;
  std::uint8_t out[64];
  EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN,
            RSAES_OAEP_ENCRYPT21(out, &len, out, 64, &small.pub, nullptr, &sha256, nullptr));
  EXPECT_EQ(64U, len) << "the length is told before the message is looked at";
  RsaKey hostile = key;
  hostile.pri.p = hostile.pub.n = MINT{};
  EXPECT_EQ(ZEL_ERR_GENERIC, decrypt(rsa, hostile, block, &sha256).status);
  EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN, encrypt(rsa20, hostile, {1}, nullptr).status);
  hostile.pub.n = MINT{32, {2}};
  hostile.pub.n.words[31] = 1U << 31;
  EXPECT_EQ(ZEL_ERR_GENERIC, encrypt(rsa, hostile, {1}, &sha256).status);
}

TEST(Rsa20, DecryptsPublishedCiphertexts) {
  for (const char *file : {"rsa_pkcs1v15_enc", "rsa_pkcs1v15_enc_standard"}) {
    for (const Vector &v : read_vectors(file)) {
      const bool valid = v.word(v.has("product") ? "product" : "result") == "valid";
      const Answer got = decrypt(rsa20, key_of(v), v.bytes("ct"), nullptr);
      EXPECT_EQ(valid, got.status == ZEL_OK) << v.place;
      EXPECT_EQ(valid ? v.bytes(v.has("product_msg") ? "product_msg" : "msg") : kUntouched, got.out)
          << v.place;
    }
  }
}

// The encoded message is shorter by a zero byte, so signatures are those of `rsa`.
TEST(Rsa20, SignsAsVersion21) {
  for (const std::uint32_t bits : {1023U, 1024U, 1025U}) {
    RsaKey key = key_of_bits(bits);
    const Bytes message = noise(100);
    RSA_SIGNATURE s{}, s20{};
    const PKCRYPT_KEY pri = key.pri_of(rsa), pri20 = key.pri_of(rsa20), pub20 = key.pub_of(rsa20);
    ASSERT_EQ(ZEL_OK, PKCRYPT_Sign(&s.head, message.data(), 100, &pri, nullptr, &sha256, nullptr));
    ASSERT_EQ(ZEL_OK,
              PKCRYPT_Sign(&s20.head, message.data(), 100, &pri20, nullptr, &sha256, nullptr));
    EXPECT_EQ(0, MINT_Compare(&s.s, &s20.s));
    EXPECT_EQ(ZEL_OK,
              PKCRYPT_Verify(&s.head, message.data(), 100, &pub20, nullptr, &sha256, nullptr));
    EXPECT_EQ(ZEL_ERR_GENERIC,
              PKCRYPT_Verify(&s.head, message.data(), 99, &pub20, nullptr, &sha256, nullptr));
    EXPECT_EQ(ZEL_ERR_GENERIC, PKCRYPT_CheckKeyPair(&pri20, &pri, nullptr)) << "not of the family";
  }
  std::uint8_t em[62];
  const std::uint8_t digest[32] = {};
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_EMSA2_Hash(em, 60, digest, 32, &sha256));
  EXPECT_EQ(ZEL_OK, RSA20_EMSA2_Hash(em, 61, digest, 32, &sha256));
  EXPECT_EQ("01ffffffffffffffff003031", to_hex(Bytes(em, em + 12)));
}

// Each separator, from the first place that is too early to the last byte, and none at all.
TEST(Rsa20, FindsTheMessageBehindThePadding) {
  Bytes em(40, 0xff), out(40);
  std::uint32_t len = 0;
  em[0] = 2;
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_EME2_D(out.data(), &len, em.data(), 40));
  for (std::uint32_t at = 1; at < 40; ++at) {
    Bytes block = em;
    block[at] = 0;
    const int32_t status = RSA20_EME2_D(out.data(), &len, block.data(), 40);
    EXPECT_EQ(at < 9 ? ZEL_ERR_GENERIC : ZEL_OK, status) << at;
    EXPECT_TRUE(status != ZEL_OK || len == 39 - at);
    block[0] = 1;
    EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_EME2_D(out.data(), &len, block.data(), 40));
  }
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_EME2_D(out.data(), &len, em.data(), 0));
  const Bytes message = noise(30);
  EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN, RSA20_EME2_E(em.data(), 39, message.data(), 30));
  EXPECT_EQ(ZEL_OK, RSA20_EME2_E(em.data(), 40, message.data(), 30));
  EXPECT_TRUE(em[0] == 2 && em[9] == 0 && std::count(em.begin() + 1, em.begin() + 9, 0) == 0);
  EXPECT_EQ(message, Bytes(em.begin() + 10, em.end()));
  // Zeros of the padding become ones, so that there are twice as many of these.
  Bytes padded(100000);
  ASSERT_EQ(ZEL_OK, RSA20_EME2_E(padded.data(), 100000, message.data(), 1));
  EXPECT_GT(std::count(padded.begin(), padded.end(), 1), 100000 / 256 * 3 / 2);
  EXPECT_LT(std::count(padded.begin(), padded.end(), 2), 100000 / 256 * 3 / 2);
}

// Encoding alone puts a zero byte in front; decoding alone wants it gone, and one byte at the end.
TEST(Rsa20, EncodesWithoutRsa) {
  const Bytes message = noise(20), label = from_text("label");
  const RSA_OAEP_LABEL record{label.data(), 5};
  for (const HASH_ALGORITHM *hash : {&sha256, static_cast<const HASH_ALGORITHM *>(nullptr)}) {
    for (const std::uint32_t bits : {1024U, 1025U, 9000U}) {
      const std::uint32_t k = (bits + 7) / 8;
      Bytes block(k + 1, 0xee), out(k);
      std::uint32_t len = 0;
      ASSERT_EQ(ZEL_OK, EME_OAEP_ENCODE(block.data(), &len, message.data(), 20, bits, &record, hash,
                                        nullptr));
      EXPECT_EQ(k, len);
      EXPECT_EQ(0, block[0]);
      EXPECT_EQ(ZEL_OK, EME_OAEP_DECODE(out.data(), &len, block.data() + 1, k, bits, &record, hash,
                                        nullptr));
      EXPECT_EQ(message, Bytes(out.begin(), out.begin() + len));
      EXPECT_EQ(ZEL_ERR_RSA_DECODE, EME_OAEP_DECODE(out.data(), &len, block.data(), k + 1, bits,
                                                    &record, hash, nullptr));
      EXPECT_EQ(ZEL_ERR_GENERIC,
                EME_OAEP_DECODE(out.data(), &len, block.data(), k, bits, &record, hash, nullptr));
    }
    std::uint8_t tiny[1];
    std::uint32_t len = 0;
    EXPECT_EQ(ZEL_ERR_RSA_MESSAGE_LEN,
              EME_OAEP_ENCODE(tiny, &len, tiny, 1, 0, nullptr, hash, nullptr));
    EXPECT_EQ(ZEL_ERR_GENERIC, EME_OAEP_DECODE(tiny, &len, tiny, 1, 0, nullptr, hash, nullptr));
  }
}

// Whatever needs memory says so, and leaves its output alone.
TEST(RsaEncryption, SurvivesWithoutMemory) {
  const RsaKey &key = key_of_bits(1024);
  std::uint8_t block[128] = {}, out[128] = {};
  std::uint32_t len = 77;
  MINT r{1, {5}};
  const MINT in{1, {9}};
  FILE *const stream = std::tmpfile();
  const RSA_OAEP_LABEL *const none = nullptr;
  const RsaKey &long_e = key_of_bits(1024, 4294967291);  // powers of short exponents need no memory
  g_no_memory = true;
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SP1(&r, &in, &key.pri));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_S_File(&r, stream, 9, &key.pri, nullptr, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_SSA_PSS_S(&r, block, 9, &key.pri, nullptr, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, EME_OAEP_DECODE21(out, &len, block, 128, nullptr, 0, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_EME1_D(out, &len, block, 127, nullptr, 0, &sha256));
  EXPECT_EQ(ZEL_ERR_GENERIC, EME_OAEP_DECODE(out, &len, block, 128, 1024, none, &sha256, nullptr));
  RsaKey made;
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_GenKey(&made.pri, &made.pub, 512));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_CheckKey(&key.pri, &key.pub));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA_VP1(&r, &in, &long_e.pub));
  g_no_memory = false;
  EXPECT_EQ(0U, made.bits());
  EXPECT_TRUE(len == 77 && r.words[0] == 5 && out[0] == 0);
  std::fclose(stream);
  // These tell the length first.
  g_no_memory = true;
  EXPECT_EQ(ZEL_ERR_GENERIC,
            RSAES_OAEP_ENCRYPT21(out, &len, block, 9, &long_e.pub, none, &sha256, nullptr));
  EXPECT_EQ(ZEL_ERR_GENERIC, RSA20_ES_E(out, &len, block, 9, &long_e.pub, none, &sha256, nullptr));
  g_no_memory = false;
  EXPECT_EQ(0, out[0] | out[127]);
}

}  // namespace
}  // namespace zel::test
