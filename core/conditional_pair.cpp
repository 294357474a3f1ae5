// Pairwise tests of new key pairs: what one key does the other undoes. The RSA tests work in
// whatever state the module is, that of KCDSA in the self-test state; a failure leaves it in its
// error state.
#include <cstring>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/kcdsa.h"
#include "zel_cc/rsa_oaep.h"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

std::int32_t verdict(bool passed, std::int32_t code) noexcept {
  if (passed) return ZEL_OK;
  KZEL_CC_SetState(ZEL_STATE_ERROR);
  return code;
}

/// A text with its terminating zero byte.
template <std::size_t kLen>
struct Text {
  const char (&text)[kLen];
  const std::uint8_t *data() const noexcept { return reinterpret_cast<const std::uint8_t *>(text); }
  static constexpr std::uint32_t len() noexcept { return kLen; }
};
template <std::size_t kLen>
Text(const char (&)[kLen]) -> Text<kLen>;

constexpr Text kEncrypted{"This is a test."};
constexpr Text kSignedPss{"This is a test message for RSASSA-PSS usage!"};
constexpr Text kSignedKcdsa{"This is a test message for KCDSA usage!"};
constexpr Text kSignedPkcs1{"This is a test message."};

/// SHA-224, not the default of any scheme here, leaves room for moduli down to 592 bits.
bool encrypts(const RSA_PRIVATE_KEY *private_key, const RSA_PUBLIC_KEY *public_key) noexcept {
  Wiped<std::uint8_t[ZEL_MINT_BYTES]> sealed;
  Wiped<std::uint8_t[ZEL_MINT_BYTES]> opened;
  std::uint32_t sealed_len = 0;
  std::uint32_t opened_len = 0;
  constexpr std::uint32_t kLen = kEncrypted.len();
  if (RSAES_OAEP_ENCRYPT21(*sealed, &sealed_len, kEncrypted.data(), kLen, public_key, nullptr,
                           &zel_own_sha224, nullptr) != ZEL_OK) {
    return false;
  }
  if (std::memcmp(*sealed, kEncrypted.data(), kLen) == 0) return false;
  return RSAES_OAEP_DECRYPT21(*opened, &opened_len, *sealed, sealed_len, private_key, nullptr,
                              &zel_own_sha224, nullptr) == ZEL_OK &&
         opened_len == kLen && std::memcmp(*opened, kEncrypted.data(), kLen) == 0;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP(const RSA_PRIVATE_KEY *private_key,
                                                const RSA_PUBLIC_KEY *public_key) {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  return verdict(encrypts(private_key, public_key), ZEL_ERR_RSAES_OAEP_TEST);
}

int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS(const RSA_PRIVATE_KEY *private_key,
                                                const RSA_PUBLIC_KEY *public_key) {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  MINT signature;
  const bool passed = RSA_SSA_PSS_S(&signature, kSignedPss.data(), kSignedPss.len(), private_key,
                                    nullptr, &zel_own_sha224) == ZEL_OK &&
                      RSA_SSA_PSS_V(&signature, kSignedPss.data(), kSignedPss.len(), public_key,
                                    nullptr, &zel_own_sha224) == ZEL_OK;
  return verdict(passed, ZEL_ERR_RSASSA_PSS_TEST);
}

int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PKCS1_V15(const RSA_PRIVATE_KEY *private_key,
                                                      const RSA_PUBLIC_KEY *public_key) {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  MINT signature;
  const bool passed = RSA_SSA_S(&signature, kSignedPkcs1.data(), kSignedPkcs1.len(), private_key,
                                nullptr, &zel_own_popsha1) == ZEL_OK &&
                      RSA_SSA_V(&signature, kSignedPkcs1.data(), kSignedPkcs1.len(), public_key,
                                nullptr, &zel_own_popsha1) == ZEL_OK;
  return verdict(passed, ZEL_ERR_RSASSA_PKCS1_TEST);
}

int32_t CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(const MINT *private_key, const MINT *public_key,
                                           const KCDSA_PARAM *param) {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  KZEL_CC_SetStateConditionalSelfTest();
  constexpr std::uint32_t kLen = kSignedKcdsa.len() - 1;  // without the zero byte
  const bool is_224 = param != nullptr && MINT_GetBitLength(&param->q) == 224;
  const HASH_ALGORITHM *const hash = is_224 ? &zel_own_sha224 : &zel_own_sha256;
  KCDSA_SIGNATURE_BODY signature;
  const bool passed =
      KCDSA_SSA_S(&signature, kSignedKcdsa.data(), kLen, private_key, param, hash, public_key) ==
          ZEL_OK &&
      KCDSA_SSA_V(&signature, kSignedKcdsa.data(), kLen, public_key, param, hash) == ZEL_OK;
  if (passed) KZEL_CC_SetPreStateConditionalSelfTest();
  return verdict(passed, ZEL_ERR_KCDSA_TEST);
}
