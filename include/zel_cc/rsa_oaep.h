/**
 * @file
 * RSAES-OAEP encryption of PKCS #1 v2.1, with MGF1 over the hash of the label. RFC 8017,
 * section 7.1.
 *
 * Encryption uses a seed of zero bytes, on purpose: the same message, key and label always give the
 * same ciphertext. So a message that can be guessed can be confirmed; encrypt random keys, not
 * texts.
 */
#ifndef ZEL_CC_RSA_OAEP_H
#define ZEL_CC_RSA_OAEP_H

#include "zel_cc/rsa.h"

ZEL_BEGIN_DECLS

/**
 * Encodes a message: 00, masked seed, masked data block.
 *
 * @param[out] em         [k] bytes; not the message
 * @param[in]  k          bytes of the modulus
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes, at most k - 2 - 2 digests
 * @param[in]  label      [label_len] bytes, or null for none
 * @param[in]  label_len  bytes
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long; nothing touched
 * @retval ZEL_ERR_GENERIC          null argument, or the module is not serving and does not hash
 */
ZEL_API int32_t EME_OAEP_ENCODE21(uint8_t *em, uint32_t k, const uint8_t *message, uint32_t len,
                                  const uint8_t *label, uint32_t label_len,
                                  const HASH_ALGORITHM *hash);

/**
 * Decodes a block. The first byte is not looked at. Does not branch on what the block holds, but on
 * whether it is right.
 *
 * @param[out] out        [k - 2 - 2 digests] bytes at most; may be `em`
 * @param[out] out_len    bytes written
 * @param[in]  em         [k] bytes
 * @param[in]  k          bytes of the modulus
 * @param[in]  label      [label_len] bytes, or null for none
 * @param[in]  label_len  bytes
 * @param[in]  hash       hash algorithm
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument, k too small, another label or hash, no separator, no
 *                          memory, or the module does not serve: nothing touched
 */
ZEL_API int32_t EME_OAEP_DECODE21(uint8_t *out, uint32_t *out_len, const uint8_t *em, uint32_t k,
                                  const uint8_t *label, uint32_t label_len,
                                  const HASH_ALGORITHM *hash);

/**
 * Encrypts with a public key.
 *
 * @param[out] out      [modulus length] bytes; may be `in`
 * @param[out] out_len  the modulus length, set before the message is looked at
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   bytes, at most the modulus length - 2 - 2 digests
 * @param[in]  key      an RSA_PUBLIC_KEY
 * @param[in]  label    an RSA_OAEP_LABEL; null for none
 * @param[in]  hash     hash algorithm
 * @param[in]  unused   not used
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_RSA_MESSAGE_LEN  the message is too long
 * @retval ZEL_ERR_GENERIC          null argument, a key that cannot be used, no memory, or the
 *                                  module does not serve
 */
ZEL_API int32_t RSAES_OAEP_ENCRYPT21(uint8_t *out, uint32_t *out_len, const uint8_t *in,
                                     uint32_t in_len, const void *key, const void *label,
                                     const HASH_ALGORITHM *hash, const void *unused);

/**
 * Decrypts with a private key. Takes ciphertexts of any seed. One result covers all that may be
 * wrong inside; the time does not tell more.
 *
 * @param[out] out      [modulus length - 2 - 2 digests] bytes at most; may be `in`
 * @param[out] out_len  bytes written
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   the modulus length
 * @param[in]  key      an RSA_PRIVATE_KEY
 * @param[in]  label    an RSA_OAEP_LABEL; null for none
 * @param[in]  hash     hash algorithm
 * @param[in]  unused   not used
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_RSA_DECODE    `in_len` is not the modulus length; nothing touched
 * @retval ZEL_ERR_OAEP_MODULUS  the modulus is too short for the hash; nothing touched
 * @retval ZEL_ERR_GENERIC       null argument, a ciphertext of length 0, another label, hash or
 * key, no memory, or the module does not serve: nothing touched
 */
ZEL_API int32_t RSAES_OAEP_DECRYPT21(uint8_t *out, uint32_t *out_len, const uint8_t *in,
                                     uint32_t in_len, const void *key, const void *label,
                                     const HASH_ALGORITHM *hash, const void *unused);

ZEL_END_DECLS

#endif
