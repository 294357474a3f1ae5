/**
 * @file
 * RSA: signatures RSASSA-PKCS1-v1_5 (`rsa`) and RSASSA-PSS (`rsa21`), encryption RSAES-OAEP (both),
 * keys of up to 4160 bits. PKCS #1 v2.1 (RFC 3447, RFC 8017).
 */
#ifndef ZEL_CC_RSA_H
#define ZEL_CC_RSA_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/mint.h"
#include "zel_cc/pkcrypt.h"

/** A private key, as the buffer of a private-key object holds it. */
typedef struct {
  MINT n;    /**< modulus */
  MINT e;    /**< public exponent */
  MINT d;    /**< private exponent */
  MINT p;    /**< first prime */
  MINT q;    /**< second prime */
  MINT dP;   /**< d mod (p - 1) */
  MINT dQ;   /**< d mod (q - 1) */
  MINT qInv; /**< 1/q mod p */
} RSA_PRIVATE_KEY;
ZEL_STATIC_ASSERT(sizeof(RSA_PRIVATE_KEY) == 4192, "layout of RSA_PRIVATE_KEY");

/** A public key, as the buffer of a public-key object holds it. */
typedef struct {
  MINT n; /**< modulus */
  MINT e; /**< public exponent */
} RSA_PUBLIC_KEY;
ZEL_STATIC_ASSERT(sizeof(RSA_PUBLIC_KEY) == 1048, "layout of RSA_PUBLIC_KEY");

/** A signature record of the RSA schemes. */
typedef struct {
  PKCRYPT_SIGNATURE head; /**< its descriptor */
  MINT s;                 /**< the body: the signature representative */
} RSA_SIGNATURE;
ZEL_STATIC_ASSERT(offsetof(RSA_SIGNATURE, s) == sizeof(PKCRYPT_SIGNATURE), "body behind the head");

/** The label of OAEP. In the encryption functions it stands in the place of domain parameters. */
typedef struct {
  const uint8_t *label; /**< [labelLen] bytes */
  uint32_t labelLen;    /**< bytes */
} RSA_OAEP_LABEL;
ZEL_STATIC_ASSERT(sizeof(RSA_OAEP_LABEL) == 16, "layout of RSA_OAEP_LABEL");

ZEL_BEGIN_DECLS

/** RSASSA-PKCS1-v1_5 signatures, RSAES-OAEP encryption. */
extern ZEL_API const PKCRYPT_ALGORITHM rsa;
/** RSASSA-PSS signatures, RSAES-OAEP encryption; the same keys. */
extern ZEL_API const PKCRYPT_ALGORITHM rsa21;

/** @name Primitives */
/** @{ */

/**
 * The private operation s = m^d mod n by Chinese remaindering; `d` itself is not used, and `in` may
 * be any integer. RFC 8017, section 5.2.1.
 *
 * Neither branches on nor indexes by the primes, the exponents, 1/q or what comes of them; their
 * bit lengths, in words, show.
 *
 * @param[out] out  s, trimmed; may be `in`
 * @param[in]  in   m
 * @param[in]  key  private key
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; n, p or q zero or even, p or q one, p times q above 4160
 *                          bits; no memory: nothing touched
 */
ZEL_API int32_t RSA_SP1(MINT *out, const MINT *in, const RSA_PRIVATE_KEY *key);

/**
 * The public operation m = s^e mod n. RFC 8017, section 5.2.2.
 *
 * @param[out] out  m, trimmed; may be `in`
 * @param[in]  in   s
 * @param[in]  key  public key
 * @retval ZEL_OK                      done
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  s is not below n: nothing touched
 * @retval ZEL_ERR_GENERIC             null argument, even n, no memory
 */
ZEL_API int32_t RSA_VP1(MINT *out, const MINT *in, const RSA_PUBLIC_KEY *key);

/**
 * Writes an integer as big-endian bytes, whole words of it: zero bytes lead where the top word has
 * them.
 *
 * @param[out] out      [4 * length] bytes
 * @param[out] out_len  bytes written; 0 for an integer of length 0
 * @param[in]  a        the integer
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, nothing touched; or an integer of length 0
 */
ZEL_API int32_t RSA_I2OSP(uint8_t *out, uint32_t *out_len, const MINT *a);

/**
 * The mask generation function MGF1. RFC 8017, appendix B.2.1.
 *
 * @param[out] mask      [mask_len] bytes; may be null for none
 * @param[in]  mask_len  bytes
 * @param[in]  seed      [seed_len] bytes; may be null for none
 * @param[in]  seed_len  bytes
 * @param[in]  hash      hash algorithm
 * @retval ZEL_OK           done; or the module is not serving and does not hash, and `mask` is zero
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RSA_MGF1(uint8_t *mask, uint32_t mask_len, const uint8_t *seed, uint32_t seed_len,
                         const HASH_ALGORITHM *hash);

/** @} */
/** @name RSASSA-PKCS1-v1_5: SHA-1, SHA-256, SHA-384, SHA-512, MD5 and MD2 */
/** @{ */

/**
 * Builds the block that is signed, from a message in memory. RFC 8017, section 9.2.
 *
 * @param[out] em      [em_len] bytes
 * @param[in]  em_len  bytes
 * @param[in]  message [len] bytes
 * @param[in]  len     bytes
 * @param[in]  hash    one of the six hash algorithms
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_PKCS1_ENCODE  `em_len` is too short; nothing written
 * @retval ZEL_ERR_GENERIC       null argument, another hash; nothing written
 */
ZEL_API int32_t EMSA_PKCS1_v1_5_ENCODE(uint8_t *em, uint32_t em_len, const uint8_t *message,
                                       uint32_t len, const HASH_ALGORITHM *hash);

/**
 * Builds the block that is signed, from a hash value. RFC 8017, section 9.2.
 *
 * @param[out] em      [em_len] bytes
 * @param[in]  em_len  bytes
 * @param[in]  digest  [len] bytes: the hash value of the message
 * @param[in]  len     bytes, taken as they are
 * @param[in]  hash    one of the six hash algorithms
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_PKCS1_ENCODE  `em_len` is too short; nothing written
 * @retval ZEL_ERR_GENERIC       null argument, another hash; nothing written
 */
ZEL_API int32_t EMSA_PKCS1_v1_5_ENCODE_Hash(uint8_t *em, uint32_t em_len, const uint8_t *digest,
                                            uint32_t len, const HASH_ALGORITHM *hash);

/**
 * Builds the block that is signed, from what an open stream holds. RFC 8017, section 9.2.
 *
 * @param[out] em      [em_len] bytes
 * @param[in]  em_len  bytes
 * @param[in]  stream  open where the message begins; it stays open, behind what was read
 * @param[in]  len     bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in]  hash    one of the six hash algorithms
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_PKCS1_ENCODE  `em_len` is too short; nothing written
 * @retval ZEL_ERR_GENERIC       null argument, another hash; a stream that cannot be read; nothing
 * written
 */
ZEL_API int32_t EMSA_PKCS1_v1_5_ENCODE_File(uint8_t *em, uint32_t em_len, FILE *stream,
                                            uint32_t len, const HASH_ALGORITHM *hash);

/**
 * Signs a message in memory: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; another hash than the six;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                          const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs a hash value: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  digest     [len] bytes: the hash value of the message
 * @param[in]  len        bytes, 1 to 64
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a length outside 1 to 64; another hash than the six;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_S_Hash(void *signature, const uint8_t *digest, uint32_t len,
                               const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs what an open stream holds: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  stream     open where the message begins; it stays open, behind what was read
 * @param[in]  len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a stream that cannot be read; another hash than the six;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                               const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a message in memory: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; another signature; another hash than the six;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_V(const void *signature, const uint8_t *message, uint32_t len,
                          const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] digest     [len] bytes: the hash value of the message
 * @param[in] len        bytes, 1 to 64
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a length outside 1 to 64; another signature; another hash
 * than the six; a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_V_Hash(const void *signature, const uint8_t *digest, uint32_t len,
                               const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over what an open stream holds: RSASSA-PKCS1-v1_5, RFC 8017, section 8.2.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] stream     open where the message begins; it stays open, behind what was read
 * @param[in] len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PKCS1_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a stream that cannot be read; another signature; another
 * hash than the six; a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                               const void *param, const HASH_ALGORITHM *hash);

/** @} */
/**
 * @name RSASSA-PSS with MGF1 over the same hash
 * The salt is as long as the digest, but 62 bytes for SHA-512 and a modulus of 1024 bits, which has
 * no room for more. It is drawn from libc's `rand`: see docs/departures.md.
 *
 * Verification does not look at the padding of the encoded message, on purpose; with a small public
 * exponent signatures can be forged. Use keys with e = 65537: see docs/side_channels.md.
 */
/** @{ */

/**
 * Signs a message in memory: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PSS_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_S(void *signature, const uint8_t *message, uint32_t len,
                              const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs a hash value: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  digest     [len] bytes: the hash value of the message
 * @param[in]  len        bytes, taken as they are
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PSS_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_S_Hash(void *signature, const uint8_t *digest, uint32_t len,
                                   const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs what an open stream holds: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  stream     open where the message begins; it stays open, behind what was read
 * @param[in]  len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PSS_ENCODE  the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a stream that cannot be read;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                                   const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a message in memory: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PSS_VERIFY  another signature, or the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_V(const void *signature, const uint8_t *message, uint32_t len,
                              const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] digest     [len] bytes: the hash value of the message
 * @param[in] len        bytes, taken as they are
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PSS_VERIFY  another signature, or the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_V_Hash(const void *signature, const uint8_t *digest, uint32_t len,
                                   const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over what an open stream holds: RSASSA-PSS, RFC 8017, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] stream     open where the message begins; it stays open, behind what was read
 * @param[in] len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_PSS_VERIFY  another signature, or the modulus is too short
 * @retval ZEL_ERR_GENERIC  null argument; a stream that cannot be read;
 *                          a key that cannot be used; no memory
 */
ZEL_API int32_t RSA_SSA_PSS_V_File(const void *signature, FILE *stream, uint32_t len,
                                   const void *key, const void *param, const HASH_ALGORITHM *hash);

/** @} */

ZEL_END_DECLS

#endif
