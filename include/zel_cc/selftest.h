/**
 * @file
 * Self-tests that the library runs on its own output. Those for applications are in
 * zel_cc/known_answer.h.
 *
 * Where an entry does not say otherwise, a self-test works in the self-test state (2) and returns to
 * the state that it came from; a failure leaves the module in its error state (-98).
 */
#ifndef ZEL_CC_SELFTEST_H
#define ZEL_CC_SELFTEST_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/kcdsa.h"
#include "zel_cc/rsa.h"

ZEL_BEGIN_DECLS

/**
 * Repeated-output test of Hash_DRBG: two successive outputs must differ.
 *
 * From state 3 or 4 the test passes through the self-test state. Called in the self-test state, a
 * test that passes ends it: the module is then in the state saved by whoever entered it. State 1
 * stays.
 *
 * @param[in] previous  [len] bytes; may be null when `len` is 0
 * @param[in] next      [len] bytes; may be null when `len` is 0
 * @param[in] len       bytes; nothing is compared when it is 0
 * @retval ZEL_OK           the outputs differ, or `len` is 0
 * @retval ZEL_ERR_GENERIC  the outputs are equal: the module is now in its error state; or a null
 *                          argument or negative length: nothing touched
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_HASHDRBG(const uint8_t *previous, const uint8_t *next,
                                              int32_t len);

/**
 * Repeated-output test of HMAC_DRBG; otherwise as `CONDITIONAL_SELFTEST_HASHDRBG`.
 *
 * @param[in] previous  [len] bytes; may be null when `len` is 0
 * @param[in] next      [len] bytes; may be null when `len` is 0
 * @param[in] len       bytes; nothing is compared when it is 0
 * @retval ZEL_OK           the outputs differ, or `len` is 0
 * @retval ZEL_ERR_GENERIC  the outputs are equal: the module is now in its error state; or a null
 *                          argument or negative length: nothing touched
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_HMACDRBG(const uint8_t *previous, const uint8_t *next,
                                              int32_t len);

/**
 * Repeated-output test of `KCDSARNGHAS160_GenerateX`: a value must differ from the one before, and
 * then takes its place. The module state does not change: the generator itself enters the error
 * state when its test fails.
 *
 * @param[in,out] previous  [len] bytes; may be null when `len` is 0
 * @param[in]     next      [len] bytes; may be null when `len` is 0
 * @param[in]     len       bytes; nothing is compared when it is 0
 * @retval ZEL_OK           the values differ, and `previous` is now a copy of `next`; or `len` is 0
 * @retval ZEL_ERR_GENERIC  the values are equal; or a null argument or negative length; nothing
 *                          touched
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160(uint8_t *previous, const uint8_t *next,
                                                      int32_t len);

/**
 * Repeated-output test of `DSARNGSHA1_GenerateX`.
 * @copydetails CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_DSA_RNG_SHA1(uint8_t *previous, const uint8_t *next,
                                                  int32_t len);

/**
 * Pairwise test of a new RSA key pair: RSAES-OAEP over SHA-224. Does not enter the self-test state.
 *
 * @param[in] private_key  private key
 * @param[in] public_key   its public key
 * @retval ZEL_OK                   the keys belong together
 * @retval ZEL_ERR_RSAES_OAEP_TEST  they do not: the module is now in its error state
 * @retval ZEL_ERR_STATE            module not serving
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP(const RSA_PRIVATE_KEY *private_key,
                                                        const RSA_PUBLIC_KEY *public_key);

/**
 * Pairwise test of a new RSA key pair: RSASSA-PSS over SHA-224. Does not enter the self-test state.
 *
 * @param[in] private_key  private key
 * @param[in] public_key   its public key
 * @retval ZEL_OK                   the keys belong together
 * @retval ZEL_ERR_RSASSA_PSS_TEST  they do not: the module is now in its error state
 * @retval ZEL_ERR_STATE            module not serving
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS(const RSA_PRIVATE_KEY *private_key,
                                                        const RSA_PUBLIC_KEY *public_key);

/**
 * Pairwise test of a new RSA key pair: RSASSA-PKCS1-v1_5 over SHA-1. Does not enter the self-test
 * state.
 *
 * @param[in] private_key  private key
 * @param[in] public_key   its public key
 * @retval ZEL_OK                     the keys belong together
 * @retval ZEL_ERR_RSASSA_PKCS1_TEST  they do not: the module is now in its error state
 * @retval ZEL_ERR_STATE              module not serving
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PKCS1_V15(const RSA_PRIVATE_KEY *private_key,
                                                              const RSA_PUBLIC_KEY *public_key);

/**
 * Pairwise test of a new KCDSA key pair: a message signed with the private key must verify with the
 * public one. The hash is SHA-224 for q of 224 bits, else SHA-256.
 *
 * The module passes through the self-test state.
 *
 * @param[in] private_key  x
 * @param[in] public_key   y
 * @param[in] param        their domain parameters
 * @retval ZEL_OK              the pair works
 * @retval ZEL_ERR_KCDSA_TEST  it does not, or an argument is null: the module is now in its error
 *                             state
 * @retval ZEL_ERR_STATE       module not serving; nothing touched
 */
ZEL_API int32_t CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(const MINT *private_key, const MINT *public_key,
                                                   const KCDSA_PARAM *param);

ZEL_END_DECLS

#endif
