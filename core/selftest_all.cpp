// The ordered run of the known-answer tests of all approved algorithms, which opens the verified
// service from state 1.
#include "core/gate.hpp"
#include "zel_cc/known_answer.h"

using namespace zel;

int32_t SELFTEST_VerifiedAlgorithm(void) {
  using SelfTest = int32_t();
  static constexpr SelfTest *kTests[] = {
      SELFTEST_ARIA_128K,        SELFTEST_ARIA_192K,
      SELFTEST_ARIA_256K,        SELFTEST_SEED,
      SELFTEST_SHA224,           SELFTEST_SHA256,
      SELFTEST_SHA384,           SELFTEST_SHA512,
      SELFTEST_HMAC_SHA224,      SELFTEST_HMAC_SHA256,
      SELFTEST_HMAC_SHA384,      SELFTEST_HMAC_SHA512,
      SELFTEST_CMAC_ARIA128,     SELFTEST_CMAC_ARIA192,
      SELFTEST_CMAC_ARIA256,     SELFTEST_CMAC_SEED,
      SELFTEST_CCM_ARIA128,      SELFTEST_CCM_ARIA192,
      SELFTEST_CCM_ARIA256,      SELFTEST_CCM_SEED,
      SELFTEST_GMAC_ARIA128,     SELFTEST_GMAC_ARIA192,
      SELFTEST_GMAC_ARIA256,     SELFTEST_GMAC_SEED,
      SELFTEST_EntropyHeathTest, SELFTEST_SequentialRNGTest,
      SELFTEST_RSAES_OAEP,       SELFTEST_KCDSA,
      SELFTEST_RSASSA_PSS,
  };
  if (gate::state() < ZEL_STATE_INITIALISED) return ZEL_ERR_STATE;
  for (SelfTest *test : kTests) {
    if (const int32_t code = test(); code != ZEL_OK) return code;
  }
  if (gate::state() == ZEL_STATE_INITIALISED) KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  return ZEL_OK;
}

int32_t SELFTEST_DoPowerUpSelfTest(void) { return ZEL_OK; }
