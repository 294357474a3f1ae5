/**
 * @file
 * DSA signatures of FIPS 186-2, with p of up to 4160 bits and any hash. Not approved: every
 * function here refuses in the verified service (state 4) before it looks at its arguments.
 *
 * Three things differ from later editions of FIPS 186: the whole hash value enters the signature,
 * also where it is longer than q; nonces have as many whole bytes as fit in q; and keys are random
 * bytes modulo q. Take q of 160, 224 or 256 bits and a hash of the same length, which makes the
 * first two no difference.
 *
 * Parameters, keys and signatures from outside may hold anything: what makes no sense is refused
 * with #ZEL_ERR_GENERIC in bounded time. They are not validated, however: `DSA_CheckParam` and
 * `DSA_CheckKey` do that.
 */
#ifndef ZEL_CC_DSA_H
#define ZEL_CC_DSA_H

#include <stdio.h>

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"
#include "zel_cc/mint.h"
#include "zel_cc/pkcrypt.h"

/** Domain parameters, as the buffer of a parameter object holds them. */
typedef struct {
  MINT p; /**< prime modulus */
  MINT q; /**< prime order of the subgroup */
  MINT g; /**< generator of the subgroup */
} DSA_PARAM;
ZEL_STATIC_ASSERT(sizeof(DSA_PARAM) == 1572, "layout of DSA_PARAM");

/** The body of a signature. */
typedef struct {
  MINT r; /**< (g^k mod p) mod q */
  MINT s; /**< (h + x r) / k mod q */
} DSA_SIGNATURE_BODY;
ZEL_STATIC_ASSERT(sizeof(DSA_SIGNATURE_BODY) == 1048, "layout of DSA_SIGNATURE_BODY");

/** A signature record, for the front-end. */
typedef struct {
  PKCRYPT_SIGNATURE head;  /**< its descriptor */
  DSA_SIGNATURE_BODY body; /**< r and s */
} DSA_SIGNATURE;
ZEL_STATIC_ASSERT(offsetof(DSA_SIGNATURE, body) == sizeof(PKCRYPT_SIGNATURE),
                  "body behind the head");

ZEL_BEGIN_DECLS

/** DSA. A private key is one MINT, x, and a public key one, y = g^x mod p. */
extern ZEL_API const PKCRYPT_ALGORITHM dsa;

/**
 * Hashes a message as a signature would.
 *
 * @param[out] out      [digest length of `hash`] bytes
 * @param[out] out_len  bytes written
 * @param[in]  message  [len] bytes
 * @param[in]  len      bytes
 * @param[in]  hash     any hash
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, or module not serving; nothing touched
 */
ZEL_API int32_t DSA_EMSA1(uint8_t *out, uint32_t *out_len, const uint8_t *message, uint32_t len,
                          const HASH_ALGORITHM *hash);

/**
 * Hashes what an open stream holds as a signature would.
 *
 * @param[out]    out      [digest length of `hash`] bytes
 * @param[out]    out_len  bytes written
 * @param[in,out] stream   open for reading, at the place to start
 * @param[in]     len      bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     hash     any hash
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, read error, no memory, or module not serving
 */
ZEL_API int32_t DSA_EMSA1_File(uint8_t *out, uint32_t *out_len, FILE *stream, uint32_t len,
                               const HASH_ALGORITHM *hash);

/**
 * Signs a hash value, with a nonce of its own from `RANDHASH`.
 *
 * Neither branches on nor indexes by the key and the nonce; that a nonce was drawn again shows.
 *
 * @param[out] signature   r and s, trimmed
 * @param[in]  hash_value  [digest length of `hash`] bytes
 * @param[in]  x           private key
 * @param[in]  param       domain parameters
 * @param[in]  hash        says how long the hash value is
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, module not serving, no memory, or parameters that admit
 *                           no signature; nothing touched
 * Standard: FIPS 186-2, section 5.
 */
ZEL_API int32_t DSA_SP(DSA_SIGNATURE_BODY *signature, const uint8_t *hash_value, const MINT *x,
                       const DSA_PARAM *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value.
 *
 * @param[in] signature   r and s
 * @param[in] hash_value  [digest length of `hash`] bytes
 * @param[in] y           public key
 * @param[in] param       domain parameters
 * @param[in] hash        says how long the hash value is
 * @retval ZEL_OK              the signature verifies
 * @retval ZEL_ERR_APPROVED    verified service
 * @retval ZEL_ERR_DSA_VERIFY  r or s is above q
 * @retval ZEL_ERR_GENERIC     the signature does not verify; null argument, no memory, or
 * parameters that make no sense Standard: FIPS 186-2, section 6.
 */
ZEL_API int32_t DSA_VP(const DSA_SIGNATURE_BODY *signature, const uint8_t *hash_value,
                       const MINT *y, const DSA_PARAM *param, const HASH_ALGORITHM *hash);

/**
 * Signs a message.
 *
 * @param[out] signature  #DSA_SIGNATURE_BODY
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        private key, a MINT
 * @param[in]  param      #DSA_PARAM
 * @param[in]  hash       any hash
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   as of `DSA_SP`; nothing touched
 */
ZEL_API int32_t DSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                          const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs a hash value that the caller has computed. It is read for the digest length of `hash`:
 * shorter ones have zero bytes behind them.
 *
 * @param[out] signature   #DSA_SIGNATURE_BODY
 * @param[in]  hash_value  [len] bytes
 * @param[in]  len         bytes, 1 to 64
 * @param[in]  key         private key, a MINT
 * @param[in]  param       #DSA_PARAM
 * @param[in]  hash        the hash that the value is of
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   a length outside 1 to 64, or as of `DSA_SP`; nothing touched
 */
ZEL_API int32_t DSA_SSA_S_Hash(void *signature, const uint8_t *hash_value, uint32_t len,
                               const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs what an open stream holds.
 *
 * @param[out]    signature  #DSA_SIGNATURE_BODY
 * @param[in,out] stream     open for reading, at the place to start
 * @param[in]     len        bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key        private key, a MINT
 * @param[in]     param      #DSA_PARAM
 * @param[in]     hash       any hash
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   a read error, or as of `DSA_SP`; no signature written
 */
ZEL_API int32_t DSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                               const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a message.
 *
 * @param[in] signature  #DSA_SIGNATURE_BODY
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        public key, a MINT
 * @param[in] param      #DSA_PARAM
 * @param[in] hash       the hash that was signed with
 * @retval ZEL_OK              the signature verifies
 * @retval ZEL_ERR_APPROVED    verified service
 * @retval ZEL_ERR_DSA_VERIFY  r or s is above q
 * @retval ZEL_ERR_GENERIC     as of `DSA_VP`
 */
ZEL_API int32_t DSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len,
                          const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value, which is read as `DSA_SSA_S_Hash` reads it.
 *
 * @param[in] signature   #DSA_SIGNATURE_BODY
 * @param[in] hash_value  [len] bytes
 * @param[in] len         bytes, 1 to 64
 * @param[in] key         public key, a MINT
 * @param[in] param       #DSA_PARAM
 * @param[in] hash        the hash that the value is of
 * @retval ZEL_OK              the signature verifies
 * @retval ZEL_ERR_APPROVED    verified service
 * @retval ZEL_ERR_DSA_VERIFY  r or s is above q
 * @retval ZEL_ERR_GENERIC     a length outside 1 to 64, or as of `DSA_VP`
 */
ZEL_API int32_t DSA_SSA_V_Hash(const void *signature, const uint8_t *hash_value, uint32_t len,
                               const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over what an open stream holds.
 *
 * @param[in]     signature  #DSA_SIGNATURE_BODY
 * @param[in,out] stream     open for reading, at the place to start
 * @param[in]     len        bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key        public key, a MINT
 * @param[in]     param      #DSA_PARAM
 * @param[in]     hash       the hash that was signed with
 * @retval ZEL_OK              the signature verifies
 * @retval ZEL_ERR_APPROVED    verified service
 * @retval ZEL_ERR_DSA_VERIFY  r or s is above q
 * @retval ZEL_ERR_GENERIC     a read error, or as of `DSA_VP`
 */
ZEL_API int32_t DSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                               const void *param, const HASH_ALGORITHM *hash);

/**
 * Generates domain parameters from libc's `rand`, which it seeds anew: random primes q and p with q
 * dividing p - 1. FIPS 186-2's own method, with a seed and a counter, is not used.
 *
 * @param[out] param  #DSA_PARAM, trimmed
 * @param[in]  pBits  bits of p, at most 4160
 * @param[in]  qBits  bits of q, below `pBits`
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, or sizes for which there are no such primes or none was
 *                           found; nothing touched
 */
ZEL_API int32_t DSA_GenParam(void *param, uint32_t pBits, uint32_t qBits);

/**
 * Validates domain parameters: p and q are prime, g < p, g^q = 1 modulo p, and q does not divide the
 * quotient (p - 1) / q.
 *
 * So g = 1 passes, and that q divides p - 1 is not asked for itself: any other g asks for it.
 *
 * @param[in] param  #DSA_PARAM
 * @retval ZEL_OK            valid
 * @retval ZEL_ERR_APPROVED  verified service
 * @retval ZEL_ERR_GENERIC   null argument, or not valid
 */
ZEL_API int32_t DSA_CheckParam(const void *param);

/**
 * Generates a key pair: x is random bytes modulo q, from `RANDHASH`.
 *
 * Neither branches on nor indexes by x; its length in words shows.
 *
 * @param[out] private_key  x, a MINT, trimmed
 * @param[out] public_key   y, a MINT, trimmed
 * @param[in]  param        #DSA_PARAM
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, module not serving, no memory, or parameters that make
 * no sense; nothing touched
 */
ZEL_API int32_t DSA_GenKey(void *private_key, void *public_key, const void *param);

/**
 * Validates a key pair: y is below p and in the subgroup, and g^x = y.
 *
 * @param[in] private_key  x, a MINT
 * @param[in] public_key   y, a MINT
 * @param[in] param        #DSA_PARAM
 * @retval ZEL_OK            valid
 * @retval ZEL_ERR_APPROVED  verified service
 * @retval ZEL_ERR_GENERIC   null argument, no memory, or not valid
 */
ZEL_API int32_t DSA_CheckKey(const void *private_key, const void *public_key, const void *param);

/**
 * Checks that two keys belong together: g^x = y.
 *
 * @param[in] private_key  x, a MINT
 * @param[in] public_key   y, a MINT
 * @param[in] param        #DSA_PARAM
 * @retval ZEL_OK            they do
 * @retval ZEL_ERR_APPROVED  verified service
 * @retval ZEL_ERR_GENERIC   null argument, no memory, or they do not
 */
ZEL_API int32_t DSA_CheckKeyPair(const void *private_key, const void *public_key,
                                 const void *param);

ZEL_END_DECLS

#endif
