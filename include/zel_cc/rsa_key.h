/**
 * @file
 * RSA key pairs over strong primes.
 *
 * Everything random comes from libc's `rand`, which is seeded from the clock and draws of its own:
 * a program needs a strong `rand`, see docs/departures.md. None of these functions asks for the
 * module state.
 */
#ifndef ZEL_CC_RSA_KEY_H
#define ZEL_CC_RSA_KEY_H

#include "zel_cc/rsa.h"

ZEL_BEGIN_DECLS

/**
 * Generates a key pair with e = 65537. Two primes of half the bits make a modulus of as many bits
 * as asked, or of one less.
 *
 * Draws, in order: MINT_RandInit, an integer of bits / 4 bits that is thrown away, the strong prime
 * p, the strong prime q.
 *
 * @param[out] private_key  an RSA_PRIVATE_KEY
 * @param[out] public_key   an RSA_PUBLIC_KEY
 * @param[in]  bits         bits of the modulus, 4160 at most
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, or no primes of such a size: nothing written
 */
ZEL_API int32_t RSA_GenKey(void *private_key, void *public_key, uint32_t bits);

/**
 * Generates a key pair for an exponent, as RSA_GenKey without the integer that is thrown away.
 *
 * @param[out] private_key  private key
 * @param[out] public_key   public key
 * @param[in]  bits         bits of the modulus, 4160 at most
 * @param[in]  e            public exponent, odd. Take 65537: see docs/side_channels.md
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, or no primes of such a size or for such an exponent:
 *                          nothing written
 */
ZEL_API int32_t RSA_GenKeyE(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key, uint32_t bits,
                            uint32_t e);

/**
 * Generates as RSA_GenKeyE and runs the pairwise tests of RSAES-OAEP and RSASSA-PSS on the pair.
 * These need 592 bits at least.
 *
 * @param[out] private_key  private key
 * @param[out] public_key   public key
 * @param[in]  bits         bits of the modulus, 4160 at most
 * @param[in]  e            public exponent, odd
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_GENERIC          as of RSA_GenKeyE
 * @retval ZEL_ERR_STATE            the module is not serving and does not test; the pair is written
 * @retval ZEL_ERR_RSAES_OAEP_TEST  the pair does not encrypt; the module is in its error state
 * @retval ZEL_ERR_RSASSA_PSS_TEST  the pair does not sign; the module is in its error state
 */
ZEL_API int32_t RSA_GenKeyEx(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key,
                             uint32_t bits, uint32_t e);

/**
 * Generates by RSA_GenKeyEx until the modulus has exactly the bits that were asked. A failure of
 * RSA_GenKeyEx is also told on standard output.
 *
 * @param[out] private_key  private key
 * @param[out] public_key   public key
 * @param[in]  bits         bits of the modulus, even, 4160 at most
 * @param[in]  e            public exponent, odd
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  an odd number of bits, which primes of bits / 2 bits cannot make: nothing
 *                          touched or told; or none in 1000 pairs: keys zeroed, nothing told
 * @return otherwise the result of RSA_GenKeyEx, with the keys as that leaves them
 */
ZEL_API int32_t RSA_GenKey_Exact(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key,
                                 uint32_t bits, uint32_t e);

/**
 * Validates a key pair: both primes (drawing bases from `rand`), n = p q, e coprime to p - 1, q - 1
 * and their least common multiple, the public key, the exponents of the halves and 1/q. That d is
 * the inverse of e is not checked, on purpose.
 *
 * @param[in] private_key  an RSA_PRIVATE_KEY
 * @param[in] public_key   an RSA_PUBLIC_KEY
 * @retval ZEL_OK           valid
 * @retval ZEL_ERR_GENERIC  null argument, or not valid
 */
ZEL_API int32_t RSA_CheckKey(const void *private_key, const void *public_key);

/**
 * Checks that two keys have the same modulus and public exponent.
 *
 * @param[in] private_key  an RSA_PRIVATE_KEY
 * @param[in] public_key   an RSA_PUBLIC_KEY
 * @retval ZEL_OK           they have
 * @retval ZEL_ERR_GENERIC  null argument, or they have not
 */
ZEL_API int32_t RSA_CheckKeyPair(const void *private_key, const void *public_key);

ZEL_END_DECLS

#endif
