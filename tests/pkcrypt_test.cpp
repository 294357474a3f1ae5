// The front of the public-key schemes: which objects go together, which slot is called with what,
// and in which order calls are refused. The schemes here are the test's own and note their calls.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

#include "zel_cc.h"

namespace zel::test {
namespace {

/// What reached a slot.
struct Seen {
  std::string slot;
  const void *body, *input, *key, *param, *seventh;
  std::uint32_t len;
};
Seen g_seen;
constexpr std::int32_t kResult = 4711;
char g_no_seventh;

int32_t note(const char *slot, const void *body, const void *input, uint32_t len, const void *key,
             const void *param, const void *seventh) {
  g_seen = {slot, body, input, key, param, seventh, len};
  return kResult;
}

/// Slot functions of every shape: `Signature` may be const, `Input` bytes or a stream.
template <int kSlot, class Signature, class Input>
int32_t six(Signature *s, Input *in, uint32_t len, const void *key, const void *param,
            const HASH_ALGORITHM *) {
  return note(std::to_string(kSlot).c_str(), s, in, len, key, param, &g_no_seventh);
}
template <int kSlot, class Signature, class Input>
int32_t seven(Signature *s, Input *in, uint32_t len, const void *key, const void *param,
              const HASH_ALGORITHM *, const void *extra) {
  return note(std::to_string(kSlot).c_str(), s, in, len, key, param, extra);
}

enum Slot { kSign, kSignHash, kSignFile, kVerify, kVerifyHash, kVerifyFile };

PKCRYPT_ALGORITHM scheme_of(std::int32_t type) {
  PKCRYPT_ALGORITHM scheme{};
  scheme.PriKeySize = 8;
  scheme.PubKeySize = 16;
  scheme.ParamSize = 24;
  scheme.Type = type;
  if (type == PKCRYPT_TYPE_PLAIN) {
    scheme.Sign = six<kSign, void, const uint8_t>;
    scheme.SignHash = six<kSignHash, void, const uint8_t>;
    scheme.SignFile = six<kSignFile, void, FILE>;
  } else {
    scheme.SignExtra = seven<kSign, void, const uint8_t>;
    scheme.SignHashExtra = seven<kSignHash, void, const uint8_t>;
    scheme.SignFileExtra = seven<kSignFile, void, FILE>;
  }
  if (type == PKCRYPT_TYPE_EXTRA) {
    scheme.VerifyExtra = seven<kVerify, const void, const uint8_t>;
    scheme.VerifyHashExtra = seven<kVerifyHash, const void, const uint8_t>;
    scheme.VerifyFileExtra = seven<kVerifyFile, const void, FILE>;
  } else {
    scheme.Verify = six<kVerify, const void, const uint8_t>;
    scheme.VerifyHash = six<kVerifyHash, const void, const uint8_t>;
    scheme.VerifyFile = six<kVerifyFile, const void, FILE>;
  }
  return scheme;
}

using Object = std::unique_ptr<PKCRYPT_KEY, void (*)(PKCRYPT_KEY *)>;
Object pri_of(const PKCRYPT_ALGORITHM &a) { return {PKCRYPT_NewPriKey(&a), PKCRYPT_DelPriKey}; }
Object pub_of(const PKCRYPT_ALGORITHM &a) { return {PKCRYPT_NewPubKey(&a), PKCRYPT_DelPubKey}; }
Object param_of(const PKCRYPT_ALGORITHM &a) { return {PKCRYPT_NewParam(&a), PKCRYPT_DelParam}; }

/// One of the six operations by number.
int32_t operate(int slot, PKCRYPT_SIGNATURE *s, void *input, const PKCRYPT_KEY *key,
                const PKCRYPT_KEY *param, const HASH_ALGORITHM *hash, const void *extra) {
  const auto *const bytes = static_cast<const uint8_t *>(input);
  auto *const stream = static_cast<FILE *>(input);
  switch (slot) {
    case kSign:
      return PKCRYPT_Sign(s, bytes, 99, key, param, hash, extra);
    case kSignHash:
      return PKCRYPT_SignHash(s, bytes, 99, key, param, hash, extra);
    case kSignFile:
      return PKCRYPT_SignFile(s, stream, 99, key, param, hash, extra);
    case kVerify:
      return PKCRYPT_Verify(s, bytes, 99, key, param, hash, extra);
    case kVerifyHash:
      return PKCRYPT_VerifyHash(s, bytes, 99, key, param, hash, extra);
    default:
      return PKCRYPT_VerifyFile(s, stream, 99, key, param, hash, extra);
  }
}

// A wrong slot, a lost argument, or a seventh argument that the type does not ask for.
TEST(PublicKeyFront, CallsTheSlotThatTypeAndOperationName) {
  for (const std::int32_t type : {0, 1, 2}) {
    const PKCRYPT_ALGORITHM scheme = scheme_of(type);
    const Object key = pri_of(scheme), param = param_of(scheme), signer = pub_of(scheme);
    for (int slot = kSign; slot <= kVerifyFile; ++slot) {
      PKCRYPT_SIGNATURE signature[2]{};
      ASSERT_EQ(kResult,
                operate(slot, signature, stdin, key.get(), param.get(), &sha256, signer.get()));
      EXPECT_EQ(std::to_string(slot), g_seen.slot);
      EXPECT_TRUE(g_seen.body == signature + 1 && g_seen.input == stdin && g_seen.len == 99 &&
                  g_seen.key == key->buf && g_seen.param == param->buf);
      const bool signs = slot <= kSignFile;
      const void *const seventh = type == 1            ? static_cast<const void *>(signer.get())
                                  : type == 2 && signs ? signer->buf
                                                       : &g_no_seventh;
      EXPECT_EQ(seventh, g_seen.seventh) << "type " << type << ", slot " << slot;
      EXPECT_EQ(signs ? &scheme : nullptr, signature->desc);
      ASSERT_EQ(kResult,
                operate(slot, signature, stdin, key.get(), nullptr, &sha256, signer.get()));
      EXPECT_EQ(nullptr, g_seen.param);
    }
  }
}

TEST(PublicKeyFront, RefusesSignaturesInOrder) {
  const PKCRYPT_ALGORITHM scheme = scheme_of(0), other = scheme_of(0);
  PKCRYPT_ALGORITHM empty{}, only_verifies = scheme_of(0);
  only_verifies.SignHash = nullptr;
  const Object key = pri_of(scheme), foreign = param_of(other), none = pri_of(empty);
  const Object half = pri_of(only_verifies);
  for (int slot = kSign; slot <= kVerifyFile; ++slot) {
    PKCRYPT_SIGNATURE s[2]{};
    EXPECT_EQ(-1, operate(slot, nullptr, stdin, key.get(), nullptr, &sha256, nullptr));
    EXPECT_EQ(-1, operate(slot, s, nullptr, key.get(), nullptr, &sha256, nullptr));
    EXPECT_EQ(-1, operate(slot, s, stdin, nullptr, nullptr, &sha256, nullptr));
    EXPECT_EQ(-1, operate(slot, s, stdin, key.get(), nullptr, nullptr, nullptr));
    EXPECT_EQ(-1, operate(slot, s, stdin, key.get(), foreign.get(), &sha256, nullptr));
    EXPECT_EQ(nullptr, s->desc) << "nothing before the slot is looked at";
    EXPECT_EQ(-1, operate(slot, s, stdin, none.get(), nullptr, &sha256, nullptr));
    EXPECT_EQ(slot <= kSignFile ? &empty : nullptr, s->desc);
  }
  PKCRYPT_SIGNATURE s[2]{};
  EXPECT_EQ(-1, operate(kVerifyHash, s, stdin, half.get(), nullptr, &sha256, nullptr))
      << "it is the slot for signing that is asked";
}

TEST(PublicKeyFront, MakesObjectsOfTheSizesOfTheScheme) {
  PKCRYPT_ALGORITHM scheme = scheme_of(0);
  const Object param = param_of(scheme), pri = pri_of(scheme);
  EXPECT_EQ(std::string(24, '\0'), std::string(static_cast<char *>(param->buf), 24));
  std::memset(pri->buf, 1, 8);
  PKCRYPT_WipePriKey(pri.get());
  EXPECT_EQ(std::string(8, '\0'), std::string(static_cast<char *>(pri->buf), 8));
  scheme.PriKeySize = scheme.PubKeySize = scheme.ParamSize = -1;
  EXPECT_TRUE(!pri_of(scheme) && !pub_of(scheme) && !param_of(scheme));
  EXPECT_EQ(nullptr, PKCRYPT_NewPriKey(nullptr));
}

using Function = void (*)();
template <class... F>
std::array<Function, 13> slots(F... f) {
  return {reinterpret_cast<Function>(f)...};
}

// The records word for word, in the order of their slots; those of encryption and of parameters
// stand in the middle.
TEST(PublicKeyFront, DescribesTheSchemes) {
  const auto none = static_cast<Function>(nullptr);
  const struct {
    const PKCRYPT_ALGORITHM &scheme;
    std::array<Function, 13> functions;
    std::array<std::int32_t, 6> words;
  } rows[] = {
      {rsa,
       slots(RSA_SSA_S, RSA_SSA_V, RSA_SSA_S_File, RSA_SSA_V_File, RSAES_OAEP_ENCRYPT21,
             RSAES_OAEP_DECRYPT21, none, RSA_GenKey, none, RSA_CheckKey, RSA_CheckKeyPair,
             RSA_SSA_S_Hash, RSA_SSA_V_Hash),
       {4192, 1048, 0, 524, 0, 0}},
      {rsa21,
       slots(RSA_SSA_PSS_S, RSA_SSA_PSS_V, RSA_SSA_PSS_S_File, RSA_SSA_PSS_V_File,
             RSAES_OAEP_ENCRYPT21, RSAES_OAEP_DECRYPT21, none, RSA_GenKey, none, RSA_CheckKey,
             RSA_CheckKeyPair, RSA_SSA_PSS_S_Hash, RSA_SSA_PSS_V_Hash),
       {4192, 1048, 0, 524, 0, 0}},
      {rsa20,
       slots(RSA20_SSA_S, RSA20_SSA_V, RSA20_SSA_S_File, RSA20_SSA_V_File, RSA20_ES_E, RSA20_ES_D,
             none, RSA20_GenKey, none, RSA20_CheckKey, RSA20_CheckKeyPair, RSA20_SSA_S_Hash,
             RSA20_SSA_V_Hash),
       {4192, 1048, 0, 524, 0, 0}},
      {p_kcdsa1,
       slots(KCDSA_SSA_S, KCDSA_SSA_V, KCDSA_SSA_S_File, KCDSA_SSA_V_File, none, none,
             KCDSA_GenParam, KCDSA_GenKey, KCDSA_CheckParam, KCDSA_CheckKey, KCDSA_CheckKeyPair,
             KCDSA_SSA_S_Hash, KCDSA_SSA_V_Hash),
       {524, 524, 1612, 588, 2, 0}},
      {popkcdsa,
       slots(KCDSA_SSA_S0, KCDSA_SSA_V0, KCDSA_SSA_S0_File, KCDSA_SSA_V0_File, none, none,
             KCDSA_GenParam, KCDSA_GenKey, KCDSA_CheckParam, KCDSA_CheckKey, KCDSA_CheckKeyPair,
             none, none),
       {524, 524, 1612, 588, 1, 0}},
      {dsa,
       slots(DSA_SSA_S, DSA_SSA_V, DSA_SSA_S_File, DSA_SSA_V_File, none, none, DSA_GenParam,
             DSA_GenKey, DSA_CheckParam, DSA_CheckKey, DSA_CheckKeyPair, DSA_SSA_S_Hash,
             DSA_SSA_V_Hash),
       {524, 524, 1572, 1048, 0, 0}},
  };
  for (const auto &row : rows) {
    std::array<Function, 13> functions;
    std::memcpy(&functions, &row.scheme, 11 * sizeof(Function));
    std::memcpy(&functions[11], &row.scheme.SignHash, 2 * sizeof(Function));
    EXPECT_EQ(row.functions, functions) << row.words[3] << " " << &row - rows;
    EXPECT_EQ(0, std::memcmp(&row.words, &row.scheme.PriKeySize, sizeof row.words)) << &row - rows;
  }
}

// Keys of the two RSA schemes serve each other; nothing else crosses a descriptor.
TEST(PublicKeyFront, GoesTogether) {
  static int calls;
  const auto check = [](const void *, const void *, const void *) { return ++calls, kResult; };
  PKCRYPT_ALGORITHM scheme = scheme_of(0);
  scheme.CheckKey = scheme.CheckKeyPair = check;
  const PKCRYPT_ALGORITHM twin = scheme;
  const Object pri = pri_of(scheme), pub = pub_of(scheme), stranger = pub_of(twin);
  const Object param = param_of(scheme), rsa_pub = pub_of(rsa);
  EXPECT_EQ(kResult, PKCRYPT_CheckKey(pri.get(), pub.get(), param.get()));
  EXPECT_EQ(kResult, PKCRYPT_CheckKeyPair(pri.get(), pub.get(), nullptr));
  EXPECT_EQ(2, calls);
  EXPECT_EQ(-1, PKCRYPT_CheckKey(pri.get(), stranger.get(), nullptr));
  EXPECT_EQ(-1, PKCRYPT_CheckKeyPair(pri.get(), pub.get(), stranger.get()));
  EXPECT_EQ(-1, PKCRYPT_CheckKey(pri.get(), rsa_pub.get(), nullptr));
  EXPECT_EQ(-1, PKCRYPT_CheckKey(nullptr, pub.get(), nullptr));
}

// The family of two is no bridge to the third scheme, from either side.
TEST(PublicKeyFront, KeepsTheRsaFamilyToItself) {
  RSA_PRIVATE_KEY a{};
  RSA_PUBLIC_KEY b{};
  PKCRYPT_KEY pri{&rsa, &a}, pub{&rsa21, &b}, pri20{&rsa20, &a}, pub20{&rsa20, &b};
  EXPECT_EQ(0, PKCRYPT_CheckKeyPair(&pri, &pub, &pub));
  EXPECT_EQ(0, PKCRYPT_CheckKeyPair(&pri20, &pub20, nullptr));
  EXPECT_EQ(-1, PKCRYPT_CheckKeyPair(&pri, &pub20, nullptr));
  EXPECT_EQ(-1, PKCRYPT_CheckKeyPair(&pri20, &pub, nullptr));
  EXPECT_EQ(-1, PKCRYPT_CheckKeyPair(&pri, &pub, &pub20));
}

// Each object absent, without a scheme and without a buffer: no slot is reached.
TEST(PublicKeyFront, WantsWholeObjects) {
  PKCRYPT_ALGORITHM scheme = scheme_of(0), bare = scheme_of(0);
  scheme.GenParam = [](void *, uint32_t, uint32_t) { return kResult; };
  scheme.CheckParam = [](const void *) { return kResult; };
  scheme.GenKey = [](void *, void *, const void *) { return kResult; };
  scheme.CheckKey =
      scheme.CheckKeyPair = [](const void *, const void *, const void *) { return kResult; };
  char buf[24];
  PKCRYPT_KEY good{&scheme, buf}, without_slots{&bare, buf};
  PKCRYPT_KEY schemeless{nullptr, buf}, bufferless{&scheme, nullptr};
  EXPECT_EQ(kResult, PKCRYPT_GenParam(&good, 1, 2));
  EXPECT_EQ(kResult, PKCRYPT_CheckParam(&good));
  EXPECT_EQ(kResult, PKCRYPT_GenKey(&good, &good, &good, 0));
  EXPECT_EQ(-1, PKCRYPT_GenParam(&without_slots, 1, 2));
  EXPECT_EQ(-1, PKCRYPT_CheckParam(&without_slots));
  for (PKCRYPT_KEY *bad : {static_cast<PKCRYPT_KEY *>(nullptr), &schemeless, &bufferless}) {
    EXPECT_EQ(-1, PKCRYPT_GenParam(bad, 1, 2));
    EXPECT_EQ(-1, PKCRYPT_CheckParam(bad));
    EXPECT_EQ(-1, PKCRYPT_GenKey(bad, &good, &good, 1));
    EXPECT_EQ(-1, PKCRYPT_GenKey(&good, bad, &good, 1));
    EXPECT_EQ(-1, PKCRYPT_GenKey(&good, &good, bad, 1)) << "nor is a size taken instead";
    for (const auto check : {PKCRYPT_CheckKey, PKCRYPT_CheckKeyPair}) {
      EXPECT_EQ(-1, check(bad, &good, &good));
      EXPECT_EQ(-1, check(&good, bad, &good));
      EXPECT_EQ(bad == nullptr ? kResult : -1, check(&good, &good, bad));
    }
  }
}

TEST(PublicKeyFront, EncryptsThroughWholeCallsAlone) {
  PKCRYPT_ALGORITHM scheme = scheme_of(0);
  scheme.Encrypt = scheme.Decrypt = [](uint8_t *out, uint32_t *, const uint8_t *in, uint32_t len,
                                       const void *key, const void *param, const HASH_ALGORITHM *,
                                       const void *extra) {
    return note("crypt", out, in, len, key, param, extra);
  };
  const PKCRYPT_ALGORITHM other = scheme;
  char buf[24];
  const PKCRYPT_KEY key{&scheme, buf}, param{&scheme, buf + 1}, foreign{&other, buf};
  const PKCRYPT_KEY schemeless{nullptr, buf}, signs_only{&dsa, buf};
  std::uint8_t out[4], in[4];
  std::uint32_t len = 0;
  for (const auto operation : {PKCRYPT_Encrypt, PKCRYPT_Decrypt}) {
    EXPECT_EQ(kResult, operation(out, &len, in, 4, &key, &param, nullptr, &len));
    EXPECT_TRUE(g_seen.body == out && g_seen.input == in && g_seen.len == 4 && g_seen.key == buf &&
                g_seen.param == buf + 1 && g_seen.seventh == &len);
    EXPECT_EQ(-1, operation(nullptr, &len, in, 4, &key, nullptr, &sha256, nullptr));
    EXPECT_EQ(-1, operation(out, &len, nullptr, 4, &key, nullptr, &sha256, nullptr));
    EXPECT_EQ(-1, operation(out, &len, in, 4, &key, &foreign, &sha256, nullptr));
    for (const PKCRYPT_KEY *bad :
         {static_cast<const PKCRYPT_KEY *>(nullptr), &schemeless, &signs_only})
      EXPECT_EQ(-1, operation(out, &len, in, 4, bad, nullptr, &sha256, nullptr));
  }
}

TEST(PublicKeyFront, GeneratesForParametersOrForASize) {
  PKCRYPT_ALGORITHM scheme = scheme_of(0), plain = scheme_of(0);
  scheme.GenKey = [](void *a, void *b, const void *param) {
    return note("param", a, b, 0, 0, param, 0);
  };
  plain.ParamSize = 0;
  plain.GenKeyOfBits = [](void *a, void *b, uint32_t bits) {
    return note("bits", a, b, bits, 0, 0, 0);
  };
  const Object pri = pri_of(scheme), pub = pub_of(scheme), param = param_of(scheme);
  const Object pri2 = pri_of(plain), pub2 = pub_of(plain), param2 = param_of(plain);
  EXPECT_EQ(kResult, PKCRYPT_GenKey(pri.get(), pub.get(), param.get(), 0));
  EXPECT_TRUE(g_seen.slot == "param" && g_seen.body == pri->buf && g_seen.param == param->buf);
  EXPECT_EQ(kResult, PKCRYPT_GenKey(pri2.get(), pub2.get(), nullptr, 2048));
  EXPECT_TRUE(g_seen.slot == "bits" && g_seen.input == pub2->buf && g_seen.len == 2048);
  // An address is not a size, and a size is no address.
  EXPECT_EQ(-1, PKCRYPT_GenKey(pri2.get(), pub2.get(), param2.get(), 2048));
  EXPECT_EQ(-1, PKCRYPT_GenKey(pri.get(), pub.get(), nullptr, 2048));
  EXPECT_EQ(-1, PKCRYPT_GenKey(pri.get(), pub2.get(), nullptr, 0));
  const Object rsa_pri = pri_of(rsa), rsa_pub = pub_of(rsa21), rsa_param = param_of(rsa21);
  EXPECT_EQ(-1, PKCRYPT_GenKey(rsa_pri.get(), rsa_pub.get(), rsa_param.get(), 512))
      << "parameters are of the very scheme of the private key";
  EXPECT_EQ(ZEL_STATE_NOT_VERIFIED, KZEL_CC_GetState());
}

// A request with neither parameters nor a size is an error of the module.
TEST(PublicKeyFront, ReportsARequestWithoutASize) {
  char buf[8];
  PKCRYPT_KEY pri{&rsa, buf}, pub{&rsa21, buf};
  EXPECT_EQ(-1, PKCRYPT_GenKey(&pri, &pub, nullptr, 0));
  EXPECT_EQ(ZEL_STATE_ERROR, KZEL_CC_GetState());
}

}  // namespace
}  // namespace zel::test
