/**
 * @file
 * RSA of PKCS #1 v2.0 (RFC 2437). Not approved: signatures, encryption and keys are refused in the
 * verified service.
 *
 * Keys and signatures are those of rsa.h, and a signature here is the signature of `rsa`.
 * Encryption takes a hash for OAEP, with a random seed, or none for the padding of version 1.5.
 */
#ifndef ZEL_CC_RSA20_H
#define ZEL_CC_RSA20_H

#include "zel_cc/rsa.h"

ZEL_BEGIN_DECLS

/** RSASSA-PKCS1-v1_5 signatures, OAEP or PKCS #1 v1.5 encryption. Not approved. */
extern ZEL_API const PKCRYPT_ALGORITHM rsa20;

/** @name Primitives: those of version 2.1 */
/** @{ */

/**
 * The private operation: RSA_SP1 under a second name.
 *
 * @param[out] out  as of RSA_SP1
 * @param[in]  in   as of RSA_SP1
 * @param[in]  key  private key
 * @return as of RSA_SP1
 */
ZEL_API int32_t RSA20_SP1(MINT *out, const MINT *in, const RSA_PRIVATE_KEY *key);

/**
 * The public operation: RSA_VP1 under a second name.
 *
 * @param[out] out  as of RSA_VP1
 * @param[in]  in   as of RSA_VP1
 * @param[in]  key  public key
 * @return as of RSA_VP1
 */
ZEL_API int32_t RSA20_VP1(MINT *out, const MINT *in, const RSA_PUBLIC_KEY *key);

/**
 * Writes an integer as big-endian bytes: RSA_I2OSP, but refused in the verified service.
 *
 * @param[out] out      as of RSA_I2OSP
 * @param[out] out_len  as of RSA_I2OSP
 * @param[in]  a        the integer
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @return otherwise as of RSA_I2OSP
 */
ZEL_API int32_t RSA20_I2OSP(uint8_t *out, uint32_t *out_len, const MINT *a);

/**
 * The mask generation function MGF1: RSA_MGF1 under a second name.
 *
 * @param[out] mask      [mask_len] bytes
 * @param[in]  mask_len  bytes
 * @param[in]  seed      [seed_len] bytes
 * @param[in]  seed_len  bytes
 * @param[in]  hash      hash algorithm
 * @return as of RSA_MGF1
 */
ZEL_API int32_t RSA20_MGF1(uint8_t *mask, uint32_t mask_len, const uint8_t *seed, uint32_t seed_len,
                           const HASH_ALGORITHM *hash);

/** @} */
/** @name Signatures */
/** @{ */

/**
 * Builds the block that is signed, from a message in memory. RFC 2437, section 9.2.1.
 *
 * @param[out] em      [em_len] bytes: 01, padding, 00, the digest with its algorithm
 * @param[in]  em_len  bytes
 * @param[in]  message  [len] bytes
 * @param[in]  len     bytes
 * @param[in]  hash    one of the hash algorithms of `rsa`
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, another hash, a stream that cannot be read, or `em_len`
 * is too short; nothing written
 */
ZEL_API int32_t RSA20_EMSA2(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len,
                            const HASH_ALGORITHM *hash);

/**
 * Builds the block that is signed, from a hash value. RFC 2437, section 9.2.1.
 *
 * @param[out] em      [em_len] bytes: 01, padding, 00, the digest with its algorithm
 * @param[in]  em_len  bytes
 * @param[in]  digest   [len] bytes: the hash value of the message
 * @param[in]  len     bytes
 * @param[in]  hash    one of the hash algorithms of `rsa`
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, another hash, a stream that cannot be read, or `em_len`
 * is too short; nothing written
 */
ZEL_API int32_t RSA20_EMSA2_Hash(uint8_t *em, uint32_t em_len, const uint8_t *digest, uint32_t len,
                                 const HASH_ALGORITHM *hash);

/**
 * Builds the block that is signed, from what an open stream holds. RFC 2437, section 9.2.1.
 *
 * @param[out] em      [em_len] bytes: 01, padding, 00, the digest with its algorithm
 * @param[in]  em_len  bytes
 * @param[in]  stream   open where the message begins; it stays open, behind what was read
 * @param[in]  len     bytes to read, #ZEL_WHOLE_STREAM for all that is left
 * @param[in]  hash    one of the hash algorithms of `rsa`
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, another hash, a stream that cannot be read, or `em_len`
 * is too short; nothing written
 */
ZEL_API int32_t RSA20_EMSA2_File(uint8_t *em, uint32_t em_len, FILE *stream, uint32_t len,
                                 const HASH_ALGORITHM *hash);

/**
 * Signs a message in memory. RFC 2437, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_S(void *signature, const uint8_t *message, uint32_t len, const void *key,
                            const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs a hash value. RFC 2437, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  digest     [len] bytes: the hash value of the message
 * @param[in]  len        bytes, 1 to 64
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_S_Hash(void *signature, const uint8_t *digest, uint32_t len,
                                 const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Signs what an open stream holds. RFC 2437, section 8.1.
 *
 * @param[out] signature  a MINT: the signature representative
 * @param[in]  stream     open where the message begins; it stays open, behind what was read
 * @param[in]  len        bytes to read, #ZEL_WHOLE_STREAM for all that is left
 * @param[in]  key        an RSA_PRIVATE_KEY
 * @param[in]  param      not used
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_S_File(void *signature, FILE *stream, uint32_t len, const void *key,
                                 const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a message in memory. RFC 2437, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK            the signature verifies
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_V(const void *signature, const uint8_t *message, uint32_t len,
                            const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over a hash value. RFC 2437, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] digest     [len] bytes: the hash value of the message
 * @param[in] len        bytes, 1 to 64
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK            the signature verifies
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_V_Hash(const void *signature, const uint8_t *digest, uint32_t len,
                                 const void *key, const void *param, const HASH_ALGORITHM *hash);

/**
 * Verifies a signature over what an open stream holds. RFC 2437, section 8.1.
 *
 * @param[in] signature  a MINT: the signature representative
 * @param[in] stream     open where the message begins; it stays open, behind what was read
 * @param[in] len        bytes to read, #ZEL_WHOLE_STREAM for all that is left
 * @param[in] key        an RSA_PUBLIC_KEY
 * @param[in] param      not used
 * @param[in] hash       hash algorithm
 * @retval ZEL_OK            the signature verifies
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_RSA_REPRESENTATIVE  the signature is not below the modulus
 * @retval ZEL_ERR_GENERIC   as of `rsa`, and a modulus that is too short
 */
ZEL_API int32_t RSA20_SSA_V_File(const void *signature, FILE *stream, uint32_t len, const void *key,
                                 const void *param, const HASH_ALGORITHM *hash);

/** @} */
/** @name Encryption */
/** @{ */

/**
 * Encodes a message for OAEP with a random seed from libc's `rand`. RFC 2437, section 9.1.1.1.
 *
 * @param[out] em         [em_len] bytes: masked seed, masked data block; not the message
 * @param[in]  em_len     bytes of the modulus, less one
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes, at most em_len - 1 - 2 digests
 * @param[in]  label      [label_len] bytes, the encoding parameters; null for none
 * @param[in]  label_len  bytes
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long; nothing touched
 * @retval ZEL_ERR_GENERIC          null argument, or the module is not serving and does not hash
 */
ZEL_API int32_t RSA20_EME1_E(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len,
                             const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash);

/**
 * Decodes a block of OAEP. RFC 2437, section 9.1.1.2.
 *
 * @param[out] out        [em_len - 1 - 2 digests] bytes at most; may be `em`
 * @param[out] out_len    bytes written
 * @param[in]  em         [em_len] bytes
 * @param[in]  em_len     bytes of the modulus, less one
 * @param[in]  label      [label_len] bytes; null for none
 * @param[in]  label_len  bytes
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, a block that is too short or does not decode, no memory,
 *                          or the module does not serve: nothing touched
 */
ZEL_API int32_t RSA20_EME1_D(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t em_len,
                             const uint8_t *label, uint32_t label_len, const HASH_ALGORITHM *hash);

/**
 * Pads a message as version 1.5 does: 02, random bytes from DSARNGSHA1_GetRandomNum with zeros made
 * ones, 00, message. RFC 2437, section 9.1.2.1.
 *
 * @param[out] em       [em_len] bytes; not the message
 * @param[in]  em_len   bytes of the modulus, less one
 * @param[in]  message  [len] bytes
 * @param[in]  len      bytes, at most em_len - 10
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_APPROVED         verified service; nothing touched
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long; nothing touched
 * @retval ZEL_ERR_GENERIC          null argument
 * @return otherwise the failure of the generator
 */
ZEL_API int32_t RSA20_EME2_E(uint8_t *em, uint32_t em_len, const uint8_t *message, uint32_t len);

/**
 * Takes the padding of version 1.5 away. Where this result reaches an attacker, ciphertexts can be
 * decrypted by asking (Bleichenbacher, Crypto 98).
 *
 * @param[out] out      [em_len - 10] bytes at most; may be `em`
 * @param[out] out_len  bytes written
 * @param[in]  em       [em_len] bytes
 * @param[in]  em_len   bytes of the modulus, less one
 * @retval ZEL_OK            done
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @retval ZEL_ERR_GENERIC   null argument, or a block that is not padded so: nothing touched
 */
ZEL_API int32_t RSA20_EME2_D(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t em_len);

/**
 * Encrypts: OAEP with a hash, the padding of version 1.5 without one.
 *
 * @param[out] out      [modulus length] bytes; may be `in`
 * @param[out] out_len  the modulus length, set before the message is looked at
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   bytes
 * @param[in]  key      an RSA_PUBLIC_KEY
 * @param[in]  label    an RSA_OAEP_LABEL; null for none
 * @param[in]  hash     hash algorithm, or null
 * @param[in]  unused   not used
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_APPROVED         verified service; nothing touched
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long
 * @retval ZEL_ERR_GENERIC          null argument, a key that cannot be used, no memory
 */
ZEL_API int32_t RSA20_ES_E(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const void *key, const void *label, const HASH_ALGORITHM *hash,
                           const void *unused);

/**
 * Decrypts what `RSA20_ES_E` encrypts.
 *
 * @param[out] out      [modulus length - 11] bytes at most; may be `in`
 * @param[out] out_len  bytes written
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   the modulus length
 * @param[in]  key      an RSA_PRIVATE_KEY
 * @param[in]  label    an RSA_OAEP_LABEL; null for none
 * @param[in]  hash     hash algorithm, or null
 * @param[in]  unused   not used
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_APPROVED    verified service; nothing touched
 * @retval ZEL_ERR_RSA_DECODE  `in_len` is not the modulus length; nothing touched
 * @retval ZEL_ERR_GENERIC     null argument, a ciphertext of length 0, a block that does not
 * decode, a key that cannot be used, no memory: nothing touched
 */
ZEL_API int32_t RSA20_ES_D(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                           const void *key, const void *label, const HASH_ALGORITHM *hash,
                           const void *unused);

/**
 * Encodes as `RSA20_ES_E` does, without RSA.
 *
 * @param[out] out       [modulus length] bytes: 00 and the encoded message; not `in`
 * @param[out] out_len   the modulus length, set before the message is looked at
 * @param[in]  in        [in_len] bytes
 * @param[in]  in_len    bytes
 * @param[in]  mod_bits  bits of the modulus
 * @param[in]  label     label; null for none
 * @param[in]  hash      hash algorithm, or null
 * @param[in]  unused    not used
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_APPROVED         verified service and no hash
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long
 * @retval ZEL_ERR_GENERIC          null argument
 */
ZEL_API int32_t EME_OAEP_ENCODE(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                uint32_t mod_bits, const RSA_OAEP_LABEL *label,
                                const HASH_ALGORITHM *hash, const void *unused);

/**
 * Decodes as `RSA20_ES_D` does, without RSA. Of the block the last byte is left out, not the first:
 * give it what `EME_OAEP_ENCODE` made from its second byte on, and one byte more.
 *
 * @param[out] out       [modulus length - 11] bytes at most; may be `in`
 * @param[out] out_len   bytes written
 * @param[in]  in        [in_len] bytes
 * @param[in]  in_len    the modulus length
 * @param[in]  mod_bits  bits of the modulus
 * @param[in]  label     label; null for none
 * @param[in]  hash      hash algorithm, or null
 * @param[in]  unused    not used
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_APPROVED    verified service and no hash
 * @retval ZEL_ERR_RSA_DECODE  `in_len` is not the modulus length; nothing touched
 * @retval ZEL_ERR_GENERIC     null argument, a block that does not decode, no memory
 */
ZEL_API int32_t EME_OAEP_DECODE(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                uint32_t mod_bits, const RSA_OAEP_LABEL *label,
                                const HASH_ALGORITHM *hash, const void *unused);

/** @} */
/** @name Keys */
/** @{ */

/**
 * Generates a key pair as RSA_GenKey does.
 *
 * @param[out] private_key  an RSA_PRIVATE_KEY
 * @param[out] public_key   an RSA_PUBLIC_KEY
 * @param[in]  bits         bits of the modulus, 4160 at most
 * @retval ZEL_ERR_APPROVED  verified service; nothing touched
 * @return otherwise as of RSA_GenKey
 */
ZEL_API int32_t RSA20_GenKey(void *private_key, void *public_key, uint32_t bits);

/**
 * Validates a key pair as RSA_CheckKey does.
 *
 * @param[in] private_key  an RSA_PRIVATE_KEY
 * @param[in] public_key   an RSA_PUBLIC_KEY
 * @retval ZEL_ERR_APPROVED  verified service
 * @return otherwise as of RSA_CheckKey
 */
ZEL_API int32_t RSA20_CheckKey(const void *private_key, const void *public_key);

/**
 * Checks that two keys belong together as RSA_CheckKeyPair does.
 *
 * @param[in] private_key  an RSA_PRIVATE_KEY
 * @param[in] public_key   an RSA_PUBLIC_KEY
 * @retval ZEL_ERR_APPROVED  verified service
 * @return otherwise as of RSA_CheckKeyPair
 */
ZEL_API int32_t RSA20_CheckKeyPair(const void *private_key, const void *public_key);

/** @} */

ZEL_END_DECLS

#endif
