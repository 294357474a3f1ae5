/**
 * @file
 * KCDSA signatures of TTAK.KO-12.0001, with p of up to 4160 bits and any hash.
 *
 * The whole hash value enters the signature, also where it is longer than q; the standard cuts it.
 * Take q of 224 bits with SHA-224, or of 256 bits with SHA-256, which makes that no difference.
 *
 * Parameters, keys and signatures from outside may hold anything: what makes no sense is refused
 * with #ZEL_ERR_GENERIC in bounded time. They are not validated, however: `KCDSA_CheckParam` and
 * `KCDSA_CheckKey` do that.
 *
 * None of these functions asks for the module state. What needs hashes or random numbers fails with
 * #ZEL_ERR_GENERIC where the module is not serving, and in the verified service with MD5, MD2 and
 * RIPEMD-160, which are inert there.
 */
#ifndef ZEL_CC_KCDSA_H
#define ZEL_CC_KCDSA_H

#include <stdio.h>

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"
#include "zel_cc/mint.h"
#include "zel_cc/pkcrypt.h"

/** Domain parameters, as the buffer of a parameter object holds them. */
typedef struct {
  MINT p;            /**< prime modulus, 2 J q + 1 */
  MINT q;            /**< prime order of the subgroup */
  MINT g;            /**< generator of the subgroup */
  uint8_t seed[32];  /**< what J and q were generated from, in the first `seed_len` bytes */
  uint32_t seed_len; /**< bytes; 0 when no seed is recorded */
  uint32_t count;    /**< the counter behind the seed that gave q */
} KCDSA_PARAM;
ZEL_STATIC_ASSERT(sizeof(KCDSA_PARAM) == 1612, "layout of KCDSA_PARAM");

/**
 * The extended record of `KCDSA_GenParamEx` and `KCDSA_GenKeyEx`, for p of up to 2048 bits. Its
 * `seed_len` and `count` are not where #KCDSA_PARAM has them: never give it to `KCDSA_CheckParam`.
 */
typedef struct {
  MINT p;            /**< prime modulus, 2 J q + 1 */
  MINT q;            /**< prime order of the subgroup */
  MINT g;            /**< generator of the subgroup, h^(2J) mod p */
  uint8_t seed[32];  /**< what J and q were generated from, in the first `seed_len` bytes */
  uint8_t J[228];    /**< the cofactor, big-endian, in the first `J_len` bytes */
  uint8_t XKEY[32];  /**< random number of the last key, big-endian, as long as q */
  uint8_t h[256];    /**< what g is a power of, big-endian, as long as p */
  uint8_t XSEED[32]; /**< random bytes of the last key, as long as q */
  uint32_t J_len;    /**< bytes */
  uint32_t seed_len; /**< bytes */
  uint32_t count;    /**< the counter behind the seed that gave q */
} KCDSA_PARAM_EX;
ZEL_STATIC_ASSERT(offsetof(KCDSA_PARAM_EX, J) == 1604, "layout of KCDSA_PARAM_EX");
ZEL_STATIC_ASSERT(offsetof(KCDSA_PARAM_EX, XSEED) == 2120, "layout of KCDSA_PARAM_EX");
ZEL_STATIC_ASSERT(sizeof(KCDSA_PARAM_EX) == 2164, "layout of KCDSA_PARAM_EX");

/** The body of a signature. */
typedef struct {
  uint8_t r[64]; /**< Hash(g^k mod p), in the first bytes, as long as the digest */
  MINT s;        /**< x (k - e) mod q */
} KCDSA_SIGNATURE_BODY;
ZEL_STATIC_ASSERT(sizeof(KCDSA_SIGNATURE_BODY) == 588, "layout of KCDSA_SIGNATURE_BODY");

/** A signature record, for the front-end. */
typedef struct {
  PKCRYPT_SIGNATURE head;    /**< its descriptor */
  KCDSA_SIGNATURE_BODY body; /**< r and s */
} KCDSA_SIGNATURE;
ZEL_STATIC_ASSERT(offsetof(KCDSA_SIGNATURE, body) == sizeof(PKCRYPT_SIGNATURE),
                  "body behind the head");

ZEL_BEGIN_DECLS

/**
 * KCDSA with the prefix z taken from the public key. A private key is one MINT, x, and a public key
 * one, y = g^(1/x mod q) mod p. Signing takes the signer's public key as its extra argument.
 */
extern ZEL_API const PKCRYPT_ALGORITHM p_kcdsa1;
/** KCDSA with the prefix z from the caller, the extra argument of signing and verifying. */
extern ZEL_API const PKCRYPT_ALGORITHM popkcdsa;

/** @name Primitives */
/** @{ */

/**
 * Hashes a prefix and a message as a signature would: H(z || M).
 *
 * @param[out] out      [digest length of `hash`] bytes
 * @param[out] out_len  bytes written
 * @param[in]  message  [len] bytes
 * @param[in]  len      bytes
 * @param[in]  z        [z_len] bytes; may be null when `z_len` is 0
 * @param[in]  z_len    bytes
 * @param[in]  hash     any hash
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, or the hash does not work; nothing touched
 */
ZEL_API int32_t KCDSA_EMSA1(uint8_t *out, uint32_t *out_len, const uint8_t *message, uint32_t len,
                            const uint8_t *z, uint32_t z_len, const HASH_ALGORITHM *hash);

/**
 * Hashes a prefix and what an open stream holds as a signature would.
 *
 * @param[out]    out      [digest length of `hash`] bytes
 * @param[out]    out_len  bytes written
 * @param[in,out] stream   open for reading, at the place to start
 * @param[in]     len      bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     z        [z_len] bytes; may be null when `z_len` is 0
 * @param[in]     z_len    bytes
 * @param[in]     hash     any hash
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, read error, no memory, or the hash does not work
 */
ZEL_API int32_t KCDSA_EMSA1_File(uint8_t *out, uint32_t *out_len, FILE *stream, uint32_t len,
                                 const uint8_t *z, uint32_t z_len, const HASH_ALGORITHM *hash);

/**
 * Signs a hash value H(z || M), with a nonce of its own from Hash_DRBG and `RANDHASH`.
 *
 * Neither branches on nor indexes by the key and the nonce; that a nonce was drawn again shows.
 *
 * @param[out]    signature   r in as many bytes as the digest has, and s, trimmed
 * @param[in,out] hash_value  [digest length of `hash`] bytes; on success r is mixed into them
 * @param[in]     x           private key
 * @param[in]     param       domain parameters
 * @param[in]     hash        says how long the hash value is, and hashes g^k
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, module not serving, no memory, or parameters that admit
 *                          no signature; nothing touched
 * Standard: TTAK.KO-12.0001.
 */
ZEL_API int32_t KCDSA_SP(KCDSA_SIGNATURE_BODY *signature, uint8_t *hash_value, const MINT *x,
                         const KCDSA_PARAM *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value H(z || M).
 *
 * Where the power of g begins with a zero byte, a signature verifies too whose signer hashed it
 * without its leading zeros.
 *
 * @param[in] signature   r and s
 * @param[in] hash_value  [digest length of `hash`] bytes
 * @param[in] y           public key
 * @param[in] param       domain parameters
 * @param[in] hash        says how long the hash value is, and hashes g^k
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       the signature does not verify; null argument, no memory, or
 *                               parameters that make no sense
 * Standard: TTAK.KO-12.0001.
 */
ZEL_API int32_t KCDSA_VP(const KCDSA_SIGNATURE_BODY *signature, const uint8_t *hash_value,
                         const MINT *y, const KCDSA_PARAM *param, const HASH_ALGORITHM *hash);

/** @} */
/**
 * @name Signatures with z from the public key
 * z is the low 64 bytes of y, big-endian, and the low 128 with SHA-384 and SHA-512.
 */
/** @{ */

/**
 * Signs a message.
 *
 * @param[out] signature   #KCDSA_SIGNATURE_BODY
 * @param[in]  message     [len] bytes
 * @param[in]  len         bytes
 * @param[in]  key         private key, a MINT
 * @param[in]  param       #KCDSA_PARAM
 * @param[in]  hash        any hash
 * @param[in]  public_key  public key, a MINT
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  as of `KCDSA_SP`; nothing touched
 */
ZEL_API int32_t KCDSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                            const void *param, const HASH_ALGORITHM *hash, const void *public_key);

/**
 * Signs what an open stream holds.
 *
 * @param[out]    signature   #KCDSA_SIGNATURE_BODY
 * @param[in,out] stream      open for reading, at the place to start
 * @param[in]     len         bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key         private key, a MINT
 * @param[in]     param       #KCDSA_PARAM
 * @param[in]     hash        any hash
 * @param[in]     public_key  public key, a MINT
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  a read error, or as of `KCDSA_SP`; no signature written
 */
ZEL_API int32_t KCDSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                                 const void *param, const HASH_ALGORITHM *hash,
                                 const void *public_key);

/**
 * Signs a hash value H(z || M) that the caller has computed. It is read for the digest length of
 * `hash`: shorter ones have zero bytes behind them.
 *
 * @param[out] signature   #KCDSA_SIGNATURE_BODY
 * @param[in]  hash_value  [len] bytes
 * @param[in]  len         bytes, 1 to 64
 * @param[in]  key         private key, a MINT
 * @param[in]  param       #KCDSA_PARAM
 * @param[in]  hash        the hash that the value is of
 * @param[in]  public_key  not used, but not null
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  a length outside 1 to 64, or as of `KCDSA_SP`; nothing touched
 */
ZEL_API int32_t KCDSA_SSA_S_Hash(void *signature, const uint8_t *hash_value, uint32_t len,
                                 const void *key, const void *param, const HASH_ALGORITHM *hash,
                                 const void *public_key);

/**
 * Verifies a signature over a message.
 *
 * @param[in] signature  #KCDSA_SIGNATURE_BODY
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        public key, a MINT
 * @param[in] param      #KCDSA_PARAM
 * @param[in] hash       the hash that was signed with
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       as of `KCDSA_VP`
 */
ZEL_API int32_t KCDSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len,
                            const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over what an open stream holds.
 *
 * @param[in]     signature  #KCDSA_SIGNATURE_BODY
 * @param[in,out] stream     open for reading, at the place to start
 * @param[in]     len        bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key        public key, a MINT
 * @param[in]     param      #KCDSA_PARAM
 * @param[in]     hash       the hash that was signed with
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       a read error, or as of `KCDSA_VP`
 */
ZEL_API int32_t KCDSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                                 const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value, which is read as `KCDSA_SSA_S_Hash` reads it.
 *
 * @param[in] signature   #KCDSA_SIGNATURE_BODY
 * @param[in] hash_value  [len] bytes
 * @param[in] len         bytes, 1 to 64
 * @param[in] key         public key, a MINT
 * @param[in] param       #KCDSA_PARAM
 * @param[in] hash        the hash that the value is of
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       a length outside 1 to 64, or as of `KCDSA_VP`
 */
ZEL_API int32_t KCDSA_SSA_V_Hash(const void *signature, const uint8_t *hash_value, uint32_t len,
                                 const void *key, const void *param, const HASH_ALGORITHM *hash);

/** @} */
/**
 * @name Signatures with z from the caller
 * z has 32 bytes with SHA-256, 48 with SHA-384, 64 with SHA-512 and 20 with any other hash.
 */
/** @{ */

/**
 * Signs a message.
 *
 * @param[out] signature  #KCDSA_SIGNATURE_BODY
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        private key, a MINT
 * @param[in]  param      #KCDSA_PARAM
 * @param[in]  hash       any hash
 * @param[in]  z          the prefix, as long as the hash asks for
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  as of `KCDSA_SP`; nothing touched
 */
ZEL_API int32_t KCDSA_SSA_S0(void *signature, const uint8_t *message, uint32_t len, const void *key,
                             const void *param, const HASH_ALGORITHM *hash, const void *z);

/**
 * Signs what an open stream holds.
 *
 * @param[out]    signature  #KCDSA_SIGNATURE_BODY
 * @param[in,out] stream     open for reading, at the place to start
 * @param[in]     len        bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key        private key, a MINT
 * @param[in]     param      #KCDSA_PARAM
 * @param[in]     hash       any hash
 * @param[in]     z          the prefix, as long as the hash asks for
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  a read error, or as of `KCDSA_SP`; no signature written
 */
ZEL_API int32_t KCDSA_SSA_S0_File(void *signature, FILE *stream, uint32_t len, const void *key,
                                  const void *param, const HASH_ALGORITHM *hash, const void *z);

/**
 * Verifies a signature over a message.
 *
 * @param[in] signature  #KCDSA_SIGNATURE_BODY
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        public key, a MINT
 * @param[in] param      #KCDSA_PARAM
 * @param[in] hash       the hash that was signed with
 * @param[in] z          the prefix, as long as the hash asks for
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       as of `KCDSA_VP`
 */
ZEL_API int32_t KCDSA_SSA_V0(const void *signature, const uint8_t *message, uint32_t len,
                             const void *key, const void *param, const HASH_ALGORITHM *hash,
                             const void *z);

/**
 * Verifies a signature over what an open stream holds.
 *
 * @param[in]     signature  #KCDSA_SIGNATURE_BODY
 * @param[in,out] stream     open for reading, at the place to start
 * @param[in]     len        bytes to read at most, or #ZEL_WHOLE_STREAM
 * @param[in]     key        public key, a MINT
 * @param[in]     param      #KCDSA_PARAM
 * @param[in]     hash       the hash that was signed with
 * @param[in]     z          the prefix, as long as the hash asks for
 * @retval ZEL_OK                the signature verifies
 * @retval ZEL_ERR_KCDSA_VERIFY  s is above q
 * @retval ZEL_ERR_GENERIC       a read error, or as of `KCDSA_VP`
 */
ZEL_API int32_t KCDSA_SSA_V0_File(const void *signature, FILE *stream, uint32_t len,
                                  const void *key, const void *param, const HASH_ALGORITHM *hash,
                                  const void *z);

/** @} */
/** @name Parameters and keys */
/** @{ */

/**
 * Generates domain parameters by the standard's method, from a seed that it records. The generator
 * is over SHA-224 for q of 224 bits, over SHA-256 for 256 and over HAS-160 for any other.
 *
 * p is 2 J q + 1, and J and q have their words' top bits set. So the sizes must leave room: pBits
 * at least 32 times the words of J (pBits - qBits - 4 bits) and of q together. 1024 and 160, 2048
 * and 224, 2048 and 256, 3072 and 256 do. Seeds libc's `rand`, from which g comes.
 *
 * @param[out] param  #KCDSA_PARAM
 * @param[in]  pBits  bits of p, at most 4096
 * @param[in]  qBits  bits of q, at most 256
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, module not serving, sizes that leave no room, or nothing
 *                          found; nothing touched
 * Standard: TTAK.KO-12.0001, appendix.
 */
ZEL_API int32_t KCDSA_GenParam(void *param, uint32_t pBits, uint32_t qBits);

/**
 * Generates domain parameters as `KCDSA_GenParam` does, and records intermediate values.
 *
 * @param[out] param  #KCDSA_PARAM_EX
 * @param[in]  pBits  bits of p, at most 2048
 * @param[in]  qBits  bits of q, at most 256; J may have 228 bytes at most
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  as of `KCDSA_GenParam`; nothing touched
 */
ZEL_API int32_t KCDSA_GenParamEx(void *param, uint32_t pBits, uint32_t qBits);

/**
 * Validates domain parameters: p, q and J are prime, p = 2 J q + 1, g^q = 1, and J and q come from
 * the seed if there is one.
 *
 * The seed is followed by the generator over HAS-160 alone: parameters with a q of 224 or 256 bits
 * and their seed are not valid here. With `seed_len` 0 they are.
 *
 * @param[in] param  #KCDSA_PARAM
 * @retval ZEL_OK           valid
 * @retval ZEL_ERR_GENERIC  null argument, or not valid
 */
ZEL_API int32_t KCDSA_CheckParam(const void *param);

/**
 * Generates a key pair, and tries it with `CONDITIONAL_SELFTEST_KEYPAIR_KCDSA`.
 *
 * Parameters from elsewhere go through `KCDSA_CheckParam` first: where q is not prime, or g not of
 * order q, the pair does not work, which ends the module.
 *
 * Neither branches on nor indexes by x; its length in words shows.
 *
 * @param[out] private_key  x, a MINT, trimmed
 * @param[out] public_key   y, a MINT, trimmed
 * @param[in]  param        #KCDSA_PARAM
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_KCDSA_TEST  the pair does not work: the module is now in its error state
 * @retval ZEL_ERR_GENERIC     null argument, module not serving, no memory, or parameters that make
 *                             no sense; nothing touched
 */
ZEL_API int32_t KCDSA_GenKey(void *private_key, void *public_key, const void *param);

/**
 * Generates a key pair by the standard's method, from XKEY and XSEED, which it records. It is not
 * tried.
 *
 * XKEY comes from libc's `rand`, XSEED from Hash_DRBG.
 *
 * @param[out]    private_key  x, a MINT, trimmed
 * @param[out]    public_key   y, a MINT, trimmed
 * @param[in,out] param        #KCDSA_PARAM_EX; XKEY and XSEED are set
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, module not serving, no memory, or parameters that make no
 *                          sense; nothing touched
 */
ZEL_API int32_t KCDSA_GenKeyEx(void *private_key, void *public_key, void *param);

/**
 * Derives a key pair from the user's data: x is their HAS-160 value modulo q. It is not tried. The
 * key is as good as the data is hard to guess.
 *
 * @param[out] private_key  x, a MINT, trimmed
 * @param[out] public_key   y, a MINT, trimmed
 * @param[in]  param        #KCDSA_PARAM
 * @param[in]  user_data    [len] bytes
 * @param[in]  len          bytes, not 0
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, no data, module not serving, no memory, or parameters
 * that make no sense; nothing touched
 */
ZEL_API int32_t KCDSA_GenKey_UDK(void *private_key, void *public_key, const void *param,
                                 const uint8_t *user_data, uint32_t len);

/**
 * Validates a key pair: y is below p and in the subgroup, and g^(1/x) = y.
 *
 * @param[in] private_key  x, a MINT
 * @param[in] public_key   y, a MINT
 * @param[in] param        #KCDSA_PARAM
 * @retval ZEL_OK           valid
 * @retval ZEL_ERR_GENERIC  null argument, no memory, or not valid
 */
ZEL_API int32_t KCDSA_CheckKey(const void *private_key, const void *public_key, const void *param);

/**
 * Checks that two keys belong together: g^(1/x) = y.
 *
 * @param[in] private_key  x, a MINT
 * @param[in] public_key   y, a MINT
 * @param[in] param        #KCDSA_PARAM
 * @retval ZEL_OK           they do
 * @retval ZEL_ERR_GENERIC  null argument, no memory, or they do not
 */
ZEL_API int32_t KCDSA_CheckKeyPair(const void *private_key, const void *public_key,
                                   const void *param);

/** @} */

ZEL_END_DECLS

#endif
