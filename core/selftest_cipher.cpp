// Known-answer tests of ARIA and SEED in six modes. KS X 1213, RFC 4269, NIST SP 800-38A.
#include "core/cipher_key.hpp"
#include "core/selftest_cipher_tables.hpp"
#include "zel_cc/known_answer.h"

namespace zel {
namespace {

constexpr std::uint8_t kModes[] = {ZEL_MODE_ECB,  ZEL_MODE_CBC, ZEL_MODE_OFB,
                                   ZEL_MODE_CFB8, ZEL_MODE_CFB, ZEL_MODE_CTR};

using Operation = decltype(BCIPHER_Encrypt);

/// Encrypts and decrypts the message in every mode, in whole blocks without padding.
template <std::size_t kKeyLen, std::size_t kLen>
bool answers(const Check &check, const BCIPHER_ALGORITHM &cipher,
             const CipherAnswers<kKeyLen, kLen> &data) noexcept {
  const CipherKey key(cipher, data.key.data(), kKeyLen);
  if (!key.loaded()) return false;
  const auto gives = [&](std::uint8_t mode, Operation *operation, const auto &in,
                         const auto &expected) {
    const auto &iv = mode == ZEL_MODE_CTR ? data.counter : data.iv;
    BCIPHER_CONTEXT context;
    std::array<std::uint8_t, kLen> out;
    std::uint32_t out_len = 0;
    return BCIPHER_Initialize(&context, mode, iv.data(), &cipher) == ZEL_OK &&
           operation(out.data(), &out_len, in.data(), kLen, &context, key.get(), 0) == ZEL_OK &&
           check.equal(out.data(), out_len, expected);
  };
  for (std::size_t i = 0; i < std::size(kModes); ++i) {
    if (!gives(kModes[i], BCIPHER_Encrypt, data.message, data.answers[i])) return false;
    if (!gives(kModes[i], BCIPHER_Decrypt, data.answers[i], data.message)) return false;
  }
  return true;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_ARIA_128K(void) {
  return known_answer(__func__, ZEL_ERR_KAT_ARIA128,
                      [](const Check &check) { return answers(check, zel_own_aria, kAria128); });
}

int32_t SELFTEST_ARIA_192K(void) {
  return known_answer(__func__, ZEL_ERR_KAT_ARIA192,
                      [](const Check &check) { return answers(check, zel_own_aria192, kAria192); });
}

int32_t SELFTEST_ARIA_256K(void) {
  return known_answer(__func__, ZEL_ERR_KAT_ARIA256,
                      [](const Check &check) { return answers(check, zel_own_aria256, kAria256); });
}

int32_t SELFTEST_SEED(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SEED,
                      [](const Check &check) { return answers(check, zel_own_seed, kSeed128); });
}
