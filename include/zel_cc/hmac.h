/**
 * @file
 * HMAC over any hash of the library. FIPS 198-1, RFC 2104.
 *
 * The key block has 128 bytes for SHA-384 and SHA-512 and 64 for every other hash, MD2 included. A
 * context holds the key's effect (not the key), holds no resources, and is not wiped by the
 * library.
 */
#ifndef ZEL_CC_HMAC_H
#define ZEL_CC_HMAC_H

#include "zel_cc/hash.h"

/** A running HMAC. The caller owns it, usually on the stack. */
typedef struct {
  HASH_CONTEXT inner; /**< hash that was fed the key block XOR 0x36, then the message */
  HASH_CONTEXT outer; /**< hash that was fed the key block XOR 0x5c */
} HMAC_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(HMAC_CONTEXT) == 1216, "layout of HMAC_CONTEXT");

ZEL_BEGIN_DECLS

/**
 * Starts an HMAC, with only approved hashes in the verified service.
 *
 * @param[out] context     the HMAC to start
 * @param[in]  key         [key_len] bytes; a key longer than the hash's block is hashed first
 * @param[in]  key_len     bytes; 0 is allowed
 * @param[in]  descriptor  the hash; trusted, must not be null
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_APPROVED verified service and not SHA-224, 256, 384 or 512; nothing touched
 */
ZEL_API int32_t HMAC_InitializeEx(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                                  const HASH_ALGORITHM *descriptor);

/**
 * Starts an HMAC with any hash, in the verified service too.
 *
 * @param[out] context     the HMAC to start
 * @param[in]  key         [key_len] bytes; a key longer than the hash's block is hashed first
 * @param[in]  key_len     bytes; 0 is allowed
 * @param[in]  descriptor  the hash; trusted, must not be null
 * @retval ZEL_OK  done
 * @return otherwise the module state itself, when the module is not serving; nothing touched. State
 *         0 so reads like success: ask `KZEL_CC_GetState` where that state is possible.
 */
ZEL_API int32_t HMAC_Initialize(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                                const HASH_ALGORITHM *descriptor);

/**
 * Adds data to an HMAC. Does nothing when the module is not serving or `len` is 0.
 *
 * @param[in,out] context  from one of the initialisers
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 */
ZEL_API void __HMAC_Update(HMAC_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Writes the code of all data given so far, never truncated. The context is not changed: more data
 * may follow.
 *
 * @param[out] out      [digest length] bytes; left as it was when the module is not serving
 * @param[out] out_len  bytes written; left as it was when the module is not serving
 * @param[in]  context  from one of the initialisers
 */
ZEL_API void HMAC_Finalize(uint8_t *out, uint32_t *out_len, const HMAC_CONTEXT *context);

ZEL_END_DECLS

#endif
