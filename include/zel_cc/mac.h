/**
 * @file
 * Message authentication codes over block ciphers: CMAC and DAC.
 */
#ifndef ZEL_CC_MAC_H
#define ZEL_CC_MAC_H

#include "zel_cc/base.h"
#include "zel_cc/bcipher.h"
#include "zel_cc/errors.h"

/** A running CMAC. The caller owns it and wipes it; `CMAC_Finalize` releases its key object. */
typedef struct {
  uint32_t count;                    /**< bytes in `buffer`; a last whole block waits there */
  uint8_t buffer[ZEL_MAX_BLOCK_LEN]; /**< the message as far as it is not enciphered */
  uint8_t state[ZEL_MAX_BLOCK_LEN];  /**< the last enciphered block */
  BCIPHER_KEY *key;                  /**< from `CMAC_Initialize`; null once released */
  BCIPHER_CONTEXT cipher;            /**< CBC with a zero IV */
  uint8_t k1[32]; /**< subkey for a whole last block, in the first block-length bytes */
  uint8_t k2[32]; /**< subkey for a padded last block, likewise */
} CMAC_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(CMAC_CONTEXT) == 152, "layout of CMAC_CONTEXT");

/** A running DAC. The caller owns it and wipes it; `DAC_Finalize` releases its key object. */
typedef struct {
  uint8_t buffer[ZEL_MAX_BLOCK_LEN]; /**< the message as far as it is not enciphered */
  uint8_t state[ZEL_MAX_BLOCK_LEN];  /**< the last enciphered block */
  uint32_t count;                    /**< bytes in `buffer`, less than a block */
  BCIPHER_KEY *key;                  /**< from `DAC_Initialize`; null once released */
  BCIPHER_CONTEXT cipher;            /**< CBC with a zero IV */
} DAC_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(DAC_CONTEXT) == 88, "layout of DAC_CONTEXT");

ZEL_BEGIN_DECLS

/**
 * Starts a CMAC. End it with `CMAC_Finalize`, or its key object is lost.
 *
 * For blocks of 8 bytes the subkeys are made with the constant 1C, where the standard has 1B: such
 * codes are of this library alone.
 *
 * In a module that is not serving, and over a cipher that is not approved in the verified service,
 * the three calls succeed and the code is wrong.
 *
 * @param[out] context     the CMAC to start
 * @param[in]  key         [key_len] bytes
 * @param[in]  key_len     bytes, as for `BCIPHER_MakeKey`
 * @param[in]  descriptor  the cipher
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument, a key above 32 bytes, a block length of 0 or above 16, or
 *                         no memory; nothing touched
 * NIST SP 800-38B.
 */
ZEL_API int32_t CMAC_Initialize(CMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                                const BCIPHER_ALGORITHM *descriptor);

/**
 * Adds data to a CMAC.
 *
 * @param[in,out] context  from `CMAC_Initialize`
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument, or a cipher as `CMAC_Initialize` refuses it; nothing
 *                         touched
 */
ZEL_API int32_t CMAC_Update(CMAC_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Ends a CMAC, and wipes and releases its key object. The context is spent; its subkeys are still
 * there, so wipe it.
 *
 * @param[out]    mac      [mac_len] bytes, of which at most a block are written
 * @param[in]     mac_len  bytes
 * @param[in,out] context  from `CMAC_Initialize`
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC null argument; nothing touched. Or a cipher as `CMAC_Initialize` refuses
 *                         it; the key object is released all the same
 */
ZEL_API int32_t CMAC_Finalize(uint8_t *mac, uint32_t mac_len, CMAC_CONTEXT *context);

/**
 * Starts a DAC: CBC-MAC with a zero IV, the message padded with zero bytes. Not for messages whose
 * length is not fixed. End it with `DAC_Finalize`, or its key object is lost.
 *
 * @param[out] context     the DAC to start
 * @param[in]  key         [key_len] bytes
 * @param[in]  key_len     bytes, as for `BCIPHER_MakeKey`
 * @param[in]  descriptor  the cipher
 * @retval ZEL_OK             done
 * @retval ZEL_STATE_VERIFIED verified service, where DAC is not offered; nothing touched
 * @retval ZEL_ERR_STATE      module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC    null argument, a key above 32 bytes, a block length of 0 or above 16,
 *                            or no memory; nothing touched
 * FIPS 113.
 */
ZEL_API int32_t DAC_Initialize(DAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                               const BCIPHER_ALGORITHM *descriptor);

/**
 * Adds data to a DAC. Does nothing in the verified service or with a null argument.
 *
 * @param[in,out] context  from `DAC_Initialize`
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 */
ZEL_API void DAC_Update(DAC_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Ends a DAC, and wipes and releases its key object. The DAC of an empty message is zero. Does
 * nothing in the verified service or with a null argument.
 *
 * @param[out]    mac      [mac_len] bytes, of which at most a block are written
 * @param[in]     mac_len  bytes
 * @param[in,out] context  from `DAC_Initialize`
 */
ZEL_API void DAC_Finalize(uint8_t *mac, uint32_t mac_len, DAC_CONTEXT *context);

ZEL_END_DECLS

#endif
