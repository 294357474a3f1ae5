/**
 * @file
 * The RC4 stream cipher. Not approved: every function does nothing in the verified service.
 */
#ifndef ZEL_CC_RC4_H
#define ZEL_CC_RC4_H

#include "zel_cc/base.h"

/** A running key stream. The caller owns it; the library does not wipe it. */
typedef struct {
  uint8_t S[256]; /**< the permutation */
  uint32_t i;     /**< first index, 0 to 255 */
  uint32_t j;     /**< second index, 0 to 255 */
} RC4_STATE;
ZEL_STATIC_ASSERT(sizeof(RC4_STATE) == 264, "layout of RC4_STATE");

ZEL_BEGIN_DECLS

/**
 * Starts a key stream.
 *
 * @param[out] state     the state to fill; left as it was when `key_bits` is below 8 or in the
 *                       verified service
 * @param[in]  key       [key_bits / 8] bytes
 * @param[in]  key_bits  length of the key in bits; a last partial byte is not used
 */
ZEL_API void RC4_init(RC4_STATE *state, const uint8_t *key, int32_t key_bits);

/**
 * Enciphers or deciphers the next bytes. A stream may be cut into calls anywhere.
 *
 * @param[out]    out    [len] bytes; may equal `in`
 * @param[in]     in     [len] bytes
 * @param[in]     len    bytes; nothing happens when it is not positive
 * @param[in,out] state  from `RC4_init`
 */
ZEL_API void RC4_crypt(uint8_t *out, const uint8_t *in, int32_t len, RC4_STATE *state);

/**
 * Writes the next bytes of the key stream itself.
 *
 * @param[out]    buffer  [len] bytes
 * @param[in]     len     bytes; nothing happens when it is not positive
 * @param[in,out] state   from `RC4_init`
 */
ZEL_API void RC4_crypt_core(uint8_t *buffer, int32_t len, RC4_STATE *state);

ZEL_END_DECLS

#endif
