/**
 * @file
 * Authenticated encryption: GCM and CCM, and their building blocks.
 */
#ifndef ZEL_CC_BCIPHER_AUTH_H
#define ZEL_CC_BCIPHER_AUTH_H

#include "zel_cc/base.h"
#include "zel_cc/bcipher.h"
#include "zel_cc/errors.h"

ZEL_BEGIN_DECLS

/**
 * Enciphers a message and appends its tag, in GCM or CCM as `context` says.
 *
 * The context is only read: one may serve any number of messages, and several threads may use one
 * key at the same time. Never use a nonce twice under one key. Needs no memory beyond the caller's.
 * CCM with a nonce of 12 or 13 bytes has a length field of 3 or 2 bytes, which is not checked: keep
 * messages below 2^24 or 2^16 bytes there.
 *
 * @param[out]    out        [in_len + tag_len] bytes: ciphertext, then the tag; may equal `in`.
 * Where the two overlap otherwise, `in` is first moved to `out`
 * @param[out]    out_len    in_len + tag_len
 * @param[in]     in         [in_len] bytes
 * @param[in]     in_len     bytes
 * @param[in]     aad        [aad_len] bytes that are authenticated only
 * @param[in]     aad_len    bytes
 * @param[in]     nonce      [nonce_len] bytes
 * @param[in]     nonce_len  bytes: for GCM any number, best 12; for CCM 7 to 13
 * @param[in]     context    from `BCIPHER_Initialize`, with mode #ZEL_MODE_GCM or #ZEL_MODE_CCM
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     tag_len    bytes: for GCM 4, 8 or 12 to 16; for CCM an even number from 4 to 16
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, key of another descriptor, a cipher without 16-byte
 *                          blocks, a tag length that GCM does not have, or a result above 32 bits:
 *                          nothing touched. A tag or nonce length that CCM does not have: `in` was
 *                          copied to `out` and `out_len` was set
 * @retval ZEL_ERR_APPROVED verified service and a cipher that is not approved; nothing touched
 * @retval ZEL_ERR_MODE     another mode: `in` was copied to `out`, nothing else
 * GCM: NIST SP 800-38D. CCM: NIST SP 800-38C.
 */
ZEL_API int32_t BCIPHER_EncryptAuth(uint8_t *out, uint32_t *out_len, const uint8_t *in,
                                    uint32_t in_len, const uint8_t *aad, uint32_t aad_len,
                                    const uint8_t *nonce, uint32_t nonce_len,
                                    const BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                    uint32_t tag_len);

/**
 * Deciphers a message and verifies the tag at its end. What holds for `BCIPHER_EncryptAuth` holds
 * here, but that CCM takes memory for a copy of the message.
 *
 * **A message that fails in GCM has been deciphered into `out` all the same: throw it away.** CCM
 * leaves the ciphertext there, and never accepts a message without payload. Tags are compared in
 * constant time.
 *
 * @param[out]    out        [in_len] bytes: the message, then the tag as it came; may equal or
 *                           overlap `in`, as above
 * @param[out]    out_len    in_len - tag_len
 * @param[in]     in         [in_len] bytes: ciphertext, then the tag
 * @param[in]     in_len     bytes
 * @param[in]     aad        [aad_len] bytes
 * @param[in]     aad_len    bytes
 * @param[in]     nonce      [nonce_len] bytes
 * @param[in]     nonce_len  bytes
 * @param[in]     context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     tag_len    bytes
 * @retval ZEL_OK           the message is genuine
 * @retval ZEL_ERR_TAG      it is not, or it is shorter than the tag, or for CCM not longer, or CCM
 * has no such tag or nonce length; `out_len` was not set
 * @retval ZEL_ERR_STATE    as for `BCIPHER_EncryptAuth`
 * @retval ZEL_ERR_GENERIC  null argument, key of another descriptor, a cipher without 16-byte
 *                          blocks, or a tag length that GCM does not have: nothing touched. Short
 * of memory in CCM: `in` was copied to `out` and `out_len` was set
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_EncryptAuth`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_EncryptAuth`
 */
ZEL_API int32_t BCIPHER_DecryptAuth(uint8_t *out, uint32_t *out_len, const uint8_t *in,
                                    uint32_t in_len, const uint8_t *aad, uint32_t aad_len,
                                    const uint8_t *nonce, uint32_t nonce_len,
                                    const BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                    uint32_t tag_len);

/**
 * Enciphers in place with CCM over any block function, and writes the tag behind the data.
 *
 * @param[in,out] data           [len + tag_len] bytes, of which `len` are the message
 * @param[in]     len            bytes
 * @param[in]     tag_len        bytes: an even number from 4 to 16
 * @param[in]     nonce          [nonce_len] bytes
 * @param[in]     nonce_len      bytes: 7 to 13
 * @param[in]     aad            [aad_len] bytes
 * @param[in]     aad_len        bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     block_len      16
 * @param[in]     encrypt_block  enciphers one block
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_CCM_TAG_LEN   no such tag length; nothing touched
 * @retval ZEL_ERR_CCM_NONCE_LEN no such nonce length; nothing touched
 * @retval ZEL_ERR_GENERIC       null argument or another block length; nothing touched
 * NIST SP 800-38C, section 6.1.
 */
ZEL_API int32_t BCIPHER_EncryptCCM(uint8_t *data, uint32_t len, uint32_t tag_len,
                                   const uint8_t *nonce, uint32_t nonce_len, const uint8_t *aad,
                                   uint32_t aad_len, const void *round_keys, uint32_t block_len,
                                   BCIPHER_BLOCK_FN encrypt_block);

/**
 * Deciphers in place with CCM over any block function, if the tag is genuine.
 *
 * @param[in,out] data           [len] bytes: ciphertext, then the tag; on success the message comes
 *                               in place of the ciphertext
 * @param[in]     len            bytes, more than `tag_len`
 * @param[in]     tag_len        bytes: an even number from 4 to 16
 * @param[in]     nonce          [nonce_len] bytes
 * @param[in]     nonce_len      bytes: 7 to 13
 * @param[in]     aad            [aad_len] bytes
 * @param[in]     aad_len        bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     block_len      16
 * @param[in]     encrypt_block  enciphers one block
 * @retval ZEL_OK          the message is genuine
 * @retval ZEL_ERR_TAG     it is not, or a length is not one of CCM; nothing touched
 * @retval ZEL_ERR_GENERIC null argument, another block length, or no memory for a copy of the
 *                         message; nothing touched
 * NIST SP 800-38C, section 6.2.
 */
ZEL_API int32_t BCIPHER_DecryptCCM(uint8_t *data, uint32_t len, uint32_t tag_len,
                                   const uint8_t *nonce, uint32_t nonce_len, const uint8_t *aad,
                                   uint32_t aad_len, const void *round_keys, uint32_t block_len,
                                   BCIPHER_BLOCK_FN encrypt_block);

/**
 * Writes the blocks that CCM authenticates: flags, nonce and length, then the associated data
 * behind its length, then the payload, each padded with zero bytes.
 *
 * @param[out] out          [16 + the next multiple of 16 above aad_len + 6, if there is associated
 *                          data, + payload_len up to a multiple of 16] bytes
 * @param[out] out_len      bytes written
 * @param[in]  nonce        [nonce_len] bytes
 * @param[in]  nonce_len    bytes: 7 to 13 in CCM, up to 15 here
 * @param[in]  aad          [aad_len] bytes
 * @param[in]  aad_len      bytes
 * @param[in]  payload      [payload_len] bytes
 * @param[in]  payload_len  bytes
 * @param[in]  tag_len      bytes, for the flags alone
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument, a longer nonce, or a result above 32 bits; nothing touched
 * NIST SP 800-38C, appendix A.2.
 */
ZEL_API int32_t CCM_FormatNAP(uint8_t *out, uint32_t *out_len, const uint8_t *nonce,
                              uint32_t nonce_len, const uint8_t *aad, uint32_t aad_len,
                              const uint8_t *payload, uint32_t payload_len, uint32_t tag_len);

/**
 * Writes the counter blocks of CCM: 0, 1, 2 and so on.
 *
 * @param[out] out        [total] bytes
 * @param[in]  total      bytes; a last block that does not fit is cut off
 * @param[in]  nonce      [nonce_len] bytes
 * @param[in]  nonce_len  bytes
 * @param[in]  block_len  bytes, at most 16: 1 + nonce_len + q
 * @param[in]  q          bytes of the counter
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument, or lengths that do not make a block; nothing touched
 * NIST SP 800-38C, appendix A.3.
 */
ZEL_API int32_t CCM_FormatCNT(uint8_t *out, uint32_t total, const uint8_t *nonce,
                              uint32_t nonce_len, uint32_t block_len, uint32_t q);

/**
 * Enciphers in place with GCM over any block function. Without data this is GMAC.
 *
 * @param[in,out] data           [len] bytes
 * @param[in]     len            bytes
 * @param[out]    tag            [16] bytes
 * @param[in]     aad            [aad_len] bytes
 * @param[in]     aad_len        bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     iv             [iv_len] bytes
 * @param[in]     iv_len         bytes, best 12
 * @param[in]     block_len      16
 * @param[in]     encrypt_block  enciphers one block
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument or another block length; nothing touched
 * NIST SP 800-38D, section 7.1.
 */
ZEL_API int32_t GMAC_Encrypt(uint8_t *data, uint32_t len, uint8_t *tag, const uint8_t *aad,
                             uint32_t aad_len, const void *round_keys, const uint8_t *iv,
                             uint32_t iv_len, uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block);

/**
 * Deciphers in place with GCM over any block function, and gives the tag that the message should
 * have. Compare it in constant time, and throw the message away when it differs.
 *
 * @param[in,out] data           [len] bytes
 * @param[in]     len            bytes
 * @param[out]    tag            [16] bytes
 * @param[in]     aad            [aad_len] bytes
 * @param[in]     aad_len        bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     iv             [iv_len] bytes
 * @param[in]     iv_len         bytes
 * @param[in]     block_len      16
 * @param[in]     encrypt_block  enciphers one block
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument or another block length; nothing touched
 * NIST SP 800-38D, section 7.2.
 */
ZEL_API int32_t GMAC_Decrypt(uint8_t *data, uint32_t len, uint8_t *tag, const uint8_t *aad,
                             uint32_t aad_len, const void *round_keys, const uint8_t *iv,
                             uint32_t iv_len, uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block);

/**
 * Hashes whole blocks with GHASH; a partial block behind them is ignored.
 *
 * @param[out] y          [block_len] bytes
 * @param[in]  x          [len] bytes
 * @param[in]  len        bytes
 * @param[in]  h          [block_len] bytes: the hash key
 * @param[in]  block_len  bytes: 16 in GCM, 1 to 16 here
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument or another block length; nothing touched
 * NIST SP 800-38D, section 6.4.
 */
ZEL_API int32_t GMAC_GHash(uint8_t *y, const uint8_t *x, uint32_t len, const uint8_t *h,
                           uint32_t block_len);

/**
 * Multiplies two blocks as polynomials, modulo that of the block length with its lowest terms 1, x,
 * x^2 and x^7. Constant time, without tables.
 *
 * @param[out] z          [block_len] bytes; may equal `x` or `y`
 * @param[in]  x          [block_len] bytes
 * @param[in]  y          [block_len] bytes
 * @param[in]  block_len  bytes: 16 in GCM, 1 to 16 here
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument or another block length; nothing touched
 * NIST SP 800-38D, section 6.3.
 */
ZEL_API int32_t GMAC_Mult(uint8_t *z, const uint8_t *x, const uint8_t *y, uint32_t block_len);

/**
 * Counter mode in which only the last four bytes of the block count. Does nothing for zero bytes.
 *
 * @param[out]    out            [len] bytes; may equal or overlap `in`
 * @param[in,out] counter        [block_len] bytes: the first counter block, afterwards the last one
 *                               that was used
 * @param[in]     in             [len] bytes
 * @param[in]     len            bytes
 * @param[in]     block_len      4 to 16; for a block function of this library its own
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     encrypt_block  enciphers one block
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument or another block length; nothing touched
 * NIST SP 800-38D, section 6.5.
 */
ZEL_API int32_t GMAC_GCTR(uint8_t *out, uint8_t *counter, const uint8_t *in, uint32_t len,
                          uint32_t block_len, const void *round_keys,
                          BCIPHER_BLOCK_FN encrypt_block);

/**
 * Adds 1 to the last `s` bytes of a block, a big-endian number that wraps to zero.
 *
 * @param[in,out] block      [block_len] bytes
 * @param[in]     block_len  bytes
 * @param[in]     s          bytes that count, at most `block_len`
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument, or more bytes than there are; nothing touched
 * NIST SP 800-38D, section 6.2.
 */
ZEL_API int32_t GMAC_Inc(uint8_t *block, uint32_t block_len, uint32_t s);

ZEL_END_DECLS

#endif
