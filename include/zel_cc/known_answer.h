/**
 * @file
 * Self-tests for applications: known-answer tests, each of which runs one algorithm through its
 * public functions on fixed data and compares, and the runs of several of them.
 *
 * All of them behave alike. From state 3 or 4 a test works in the self-test state (2), which holds
 * for every thread of the process, and returns to the state that it came from; state 1 stays. While
 * a test runs in the verified service, other threads are also served algorithms that are not
 * approved: run the tests before there are other threads. Run in the self-test state, a test that
 * passes ends it: the module is then in the saved state. A wrong answer, and a service that reports
 * an error, leave the module in its error state (-98).
 *
 * The data are published test vectors; the sources of the tests say which.
 */
#ifndef ZEL_CC_KNOWN_ANSWER_H
#define ZEL_CC_KNOWN_ANSWER_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

ZEL_BEGIN_DECLS

/**
 * Tests ARIA-128: 160 bytes encrypted and decrypted in ECB, CBC, OFB, CFB of bytes, CFB and CTR.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_ARIA128  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_ARIA_128K(void);

/**
 * Tests ARIA-192 as `SELFTEST_ARIA_128K` does ARIA-128.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_ARIA192  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_ARIA_192K(void);

/**
 * Tests ARIA-256 as `SELFTEST_ARIA_128K` does ARIA-128.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_ARIA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_ARIA_256K(void);

/**
 * Tests SEED as `SELFTEST_ARIA_128K` does ARIA-128, with 64 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SEED  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SEED(void);

/**
 * Tests HAS-160 with a message of 3 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HAS160  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HAS160(void);

/**
 * Tests SHA-1 with a message of 3 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SHA1  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SHA1(void);

/**
 * Tests SHA-224 with a message of 3 bytes, through the gate for approved algorithms.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SHA224  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SHA224(void);

/**
 * Tests SHA-256 with a message of 3 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SHA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SHA256(void);

/**
 * Tests SHA-384 with a message of 3 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SHA384  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SHA384(void);

/**
 * Tests SHA-512 with a message of 3 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_SHA512  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SHA512(void);

/**
 * Tests HMAC-HAS-160 with a key of 20 bytes and a message of 8.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_HAS160  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_HAS160(void);

/**
 * Tests HMAC-SHA-1 with a key of 20 bytes and a message of 9.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_SHA1  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_SHA1(void);

/**
 * Tests HMAC-SHA-224 with a key of 20 bytes and a message of 8.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_SHA224  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_SHA224(void);

/**
 * Tests HMAC-SHA-256 with a key of 20 bytes and a message of 8.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_SHA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_SHA256(void);

/**
 * Tests HMAC-SHA-384 with a key of 20 bytes and a message of 8.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_SHA384  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_SHA384(void);

/**
 * Tests HMAC-SHA-512 with a key of 20 bytes and a message of 8.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_HMAC_SHA512  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_SHA512(void);

/**
 * Tests CMAC over ARIA-128 with a message of 6 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CMAC_ARIA128  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CMAC_ARIA128(void);

/**
 * Tests CMAC over ARIA-192 with a message of 6 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CMAC_ARIA192  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CMAC_ARIA192(void);

/**
 * Tests CMAC over ARIA-256 with a message of 6 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CMAC_ARIA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CMAC_ARIA256(void);

/**
 * Tests CMAC over SEED with a message of 6 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CMAC_SEED  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CMAC_SEED(void);

/**
 * Tests GCM over ARIA-128: a message of 16 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_GCM_ARIA128  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_GMAC_ARIA128(void);

/**
 * Tests GCM over ARIA-192: a message of 16 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_GCM_ARIA192  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_GMAC_ARIA192(void);

/**
 * Tests GCM over ARIA-256: a message of 16 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_GCM_ARIA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_GMAC_ARIA256(void);

/**
 * Tests GCM over SEED: a message of 16 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_GCM_SEED  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_GMAC_SEED(void);

/**
 * Tests CCM over ARIA-128: messages with tags of 4 and 14 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CCM_ARIA128  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CCM_ARIA128(void);

/**
 * Tests CCM over ARIA-192: messages with tags of 4 and 14 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CCM_ARIA192  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CCM_ARIA192(void);

/**
 * Tests CCM over ARIA-256: messages with tags of 4 and 14 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CCM_ARIA256  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CCM_ARIA256(void);

/**
 * Tests CCM over SEED: messages with tags of 4 and 14 bytes, encrypted.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_CCM_SEED  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_CCM_SEED(void);

/**
 * Tests RSAES-OAEP with a key of 2048 bits: two messages encrypted and decrypted, with SHA-224,
 * and with SHA-256 and a label.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_RSAES_OAEP_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_RSAES_OAEP(void);

/**
 * Tests RSASSA-PSS with a key of 2048 bits, with SHA-224 and with SHA-256: the signature of
 * another program verifies, and so does a new one.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_RSASSA_PSS_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_RSASSA_PSS(void);

/**
 * Tests RSASSA-PKCS1-v1_5 with a key of 2048 bits and SHA-256: a message signed and verified.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_RSASSA_PKCS1_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_RSASSA_PKCS1_V15(void);

/**
 * Tests KCDSA with a modulus of 2048 bits and SHA-256: the signature of the standard's example
 * verifies, and so does a new one.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KCDSA_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_KCDSA(void);

/**
 * Tests Hash_DRBG over SHA-224: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HASH_DRBG224(void);

/**
 * Tests Hash_DRBG over SHA-256: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HASH_DRBG256(void);

/**
 * Tests Hash_DRBG over SHA-384: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HASH_DRBG384(void);

/**
 * Tests Hash_DRBG over SHA-512: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HASH_DRBG512(void);

/**
 * Tests HMAC_DRBG over SHA-224: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_DRBG224(void);

/**
 * Tests HMAC_DRBG over SHA-256: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_DRBG256(void);

/**
 * Tests HMAC_DRBG over SHA-384: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_DRBG384(void);

/**
 * Tests HMAC_DRBG over SHA-512: fixed entropy and nonce, two requests of 128 bytes.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_DRBG_TEST  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_HMAC_DRBG512(void);

/**
 * Tests `KCDSARNGHAS160_GenerateX`: one value from a fixed seed and key.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_KCDSA_RNG  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_KCDSA_RNG_HAS160(void);

/**
 * Tests `DSARNGSHA1_GenerateX`: two values from a fixed seed and key.
 *
 * @retval ZEL_OK  all answers right
 * @retval ZEL_ERR_KAT_DSA_RNG  wrong: the module is now in its error state
 * @retval ZEL_ERR_STATE  module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_DSA_RNG_SHA1(void);

/**
 * Runs the known-answer tests of all eight DRBGs, in the self-test state.
 *
 * @retval ZEL_OK             all answers right
 * @retval ZEL_ERR_DRBG_TEST  an answer was wrong, or a test was refused because the state changed
 *                            meanwhile: the module is now in its error state
 * @retval ZEL_ERR_STATE      module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_SequentialRNGTest(void);

/**
 * Health test of the entropy source: two seeds of 512 bits must differ.
 *
 * @retval ZEL_OK                  they differ
 * @retval ZEL_ERR_ENTROPY_HEALTH  they are equal: the module is now in its error state
 * @retval ZEL_ERR_STATE           module not serving; nothing touched
 */
ZEL_API int32_t SELFTEST_EntropyHeathTest(void);

/**
 * Runs the known-answer tests of all approved algorithms, and from state 1 opens the verified
 * service (4). From state 3 and 4 the state is afterwards what it was: an application in state 3
 * goes on with `KZEL_CC_SetStateVerifiedService`.
 *
 * The tests are, in this order: the ciphers, the hashes, HMAC, CMAC, CCM, GCM,
 * `SELFTEST_EntropyHeathTest`, `SELFTEST_SequentialRNGTest`, RSAES-OAEP, KCDSA, RSASSA-PSS. The
 * first that fails ends the run.
 *
 * @return #ZEL_OK; the code of the test that failed, which leaves the module in its error state; or
 *         #ZEL_ERR_STATE when the module is not serving
 */
ZEL_API int32_t SELFTEST_VerifiedAlgorithm(void);

/**
 * Stands for a self-test at power-up. Nothing is tested: what is to be tested before the first use,
 * and when, is the application's choice.
 *
 * @retval ZEL_OK  always, in every state
 */
ZEL_API int32_t SELFTEST_DoPowerUpSelfTest(void);

ZEL_END_DECLS

#endif
