// The front of the public-key schemes, over a scheme of the test's own.
#include <utility>

#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

int32_t sign(void *, const uint8_t *, uint32_t, const void *, const void *, const HASH_ALGORITHM *) {
  return ZEL_OK;
}
int32_t sign_file(void *, FILE *, uint32_t, const void *, const void *, const HASH_ALGORITHM *) {
  return ZEL_OK;
}
int32_t verify(const void *, const uint8_t *, uint32_t, const void *, const void *,
               const HASH_ALGORITHM *) {
  return ZEL_OK;
}
int32_t verify_file(const void *, FILE *, uint32_t, const void *, const void *,
                    const HASH_ALGORITHM *) {
  return ZEL_OK;
}
int32_t crypt(uint8_t *out, uint32_t *, const uint8_t *, uint32_t, const void *, const void *,
              const HASH_ALGORITHM *, const void *) {
  out[0] = 1;
  return ZEL_OK;
}
int32_t gen_param(void *, uint32_t, uint32_t) { return ZEL_OK; }
int32_t check_param(const void *) { return ZEL_OK; }
int32_t gen_key(void *, void *, uint32_t) { return ZEL_OK; }
int32_t check_pair(const void *, const void *) { return ZEL_OK; }

const PKCRYPT_ALGORITHM kScheme = [] {
  PKCRYPT_ALGORITHM scheme{};
  scheme.Sign = scheme.SignHash = sign;
  scheme.Verify = scheme.VerifyHash = verify;
  scheme.SignFile = sign_file;
  scheme.VerifyFile = verify_file;
  scheme.Encrypt = scheme.Decrypt = crypt;
  scheme.GenParam = gen_param;
  scheme.CheckParam = check_param;
  scheme.GenKeyOfBits = gen_key;
  scheme.CheckPlainKey = scheme.CheckPlainKeyPair = check_pair;
  scheme.PriKeySize = scheme.PubKeySize = 8;
  return scheme;
}();

struct Arena {
  PKCRYPT_KEY *pri = PKCRYPT_NewPriKey(&kScheme), *pub = PKCRYPT_NewPubKey(&kScheme),
              *param = PKCRYPT_NewParam(&kScheme);
  PKCRYPT_SIGNATURE signature{};
  std::uint8_t in[4]{}, out[4]{9, 9, 9, 9};
  std::uint32_t len = 0;
  Arena() { std::memset(pri->buf, 7, 8); }

  Bytes watched() const {
    const auto *const key = static_cast<const std::uint8_t *>(pri->buf);
    return {key, key + 8};
  }
};

const Answers kReleases = gives({0, 0, 0, 1, 1, 1, 1, 0});

const Rows<Arena> kRows{
    {"PKCRYPT_NewParam", null_object(), [](Arena &) { return PKCRYPT_NewParam(&kScheme); }},
    {"PKCRYPT_NewPriKey", null_object(), [](Arena &) { return PKCRYPT_NewPriKey(&kScheme); }},
    {"PKCRYPT_NewPubKey", null_object(), [](Arena &) { return PKCRYPT_NewPubKey(&kScheme); }},
    {"PKCRYPT_DelParam", kReleases, [](Arena &a) { return is_given_back(a.param, PKCRYPT_DelParam); }},
    {"PKCRYPT_DelPriKey", kReleases, [](Arena &a) { return is_given_back(std::exchange(a.pri, a.pub), PKCRYPT_DelPriKey); }},
    {"PKCRYPT_DelPubKey", kReleases, [](Arena &a) { return is_given_back(a.pub, PKCRYPT_DelPubKey); }},
    {"PKCRYPT_WipePriKey", inert(), [](Arena &a) { PKCRYPT_WipePriKey(a.pri); }},
    {"PKCRYPT_GenParam", code(), [](Arena &a) { return PKCRYPT_GenParam(a.param, 1, 1); }},
    {"PKCRYPT_CheckParam", code(), [](Arena &a) { return PKCRYPT_CheckParam(a.param); }},
    {"PKCRYPT_GenKey", code(), [](Arena &a) { return PKCRYPT_GenKey(a.pri, a.pub, nullptr, 1); }},
    {"PKCRYPT_CheckKey", code(), [](Arena &a) { return PKCRYPT_CheckKey(a.pri, a.pub, nullptr); }},
    {"PKCRYPT_CheckKeyPair", code(), [](Arena &a) { return PKCRYPT_CheckKeyPair(a.pri, a.pub, nullptr); }},
    {"PKCRYPT_Sign", code(), [](Arena &a) { return PKCRYPT_Sign(&a.signature, a.in, 4, a.pri, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_SignHash", code(), [](Arena &a) { return PKCRYPT_SignHash(&a.signature, a.in, 4, a.pri, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_SignFile", code(), [](Arena &a) { return PKCRYPT_SignFile(&a.signature, stdin, 4, a.pri, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_Verify", code(), [](Arena &a) { return PKCRYPT_Verify(&a.signature, a.in, 4, a.pub, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_VerifyHash", code(), [](Arena &a) { return PKCRYPT_VerifyHash(&a.signature, a.in, 4, a.pub, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_VerifyFile", code(), [](Arena &a) { return PKCRYPT_VerifyFile(&a.signature, stdin, 4, a.pub, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_Encrypt", code(), [](Arena &a) { return PKCRYPT_Encrypt(a.out, &a.len, a.in, 4, a.pub, nullptr, &sha256, nullptr); }},
    {"PKCRYPT_Decrypt", code(), [](Arena &a) { return PKCRYPT_Decrypt(a.out, &a.len, a.in, 4, a.pri, nullptr, &sha256, nullptr); }},
};

}  // namespace
}  // namespace zel::test
