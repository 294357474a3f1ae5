/**
 * @file
 * Block ciphers: descriptors, key objects, contexts and modes of operation.
 */
#ifndef ZEL_CC_BCIPHER_H
#define ZEL_CC_BCIPHER_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

/** Enciphers or deciphers one block in place under expanded round keys. */
typedef void (*BCIPHER_BLOCK_FN)(void *block, const void *round_keys);

/**
 * A block cipher: its sizes and entry points. The library compares descriptors by address, so pass
 * the exported objects themselves.
 */
typedef struct {
  uint32_t block_len;      /**< block size in bytes, 8 or 16 */
  uint32_t round_keys_len; /**< bytes of expanded key schedule that `MakeRoundKey` writes */
  /** Expands `key_len` bytes of `key` into `round_keys`, at any alignment; the result is ignored.
   */
  int32_t (*MakeRoundKey)(void *round_keys, const uint8_t *key, uint32_t key_len);
  BCIPHER_BLOCK_FN EncryptBlock; /**< enciphers one block in place */
  BCIPHER_BLOCK_FN DecryptBlock; /**< deciphers one block in place */
  /** Pads a final ECB or CBC message in place of the generic rule; null in most ciphers. */
  uint32_t (*AddPadding)(uint8_t *out, const uint8_t *in, uint32_t len);
  /** Undoes `AddPadding`; null in most ciphers. */
  uint32_t (*RemovePadding)(uint8_t *out, const uint8_t *in, uint32_t len);
} BCIPHER_ALGORITHM;
ZEL_STATIC_ASSERT(sizeof(BCIPHER_ALGORITHM) == 48, "layout of BCIPHER_ALGORITHM");

/** The most key bytes that a key object holds. */
#define ZEL_MAX_KEY_LEN 32
/** The longest block in bytes. */
#define ZEL_MAX_BLOCK_LEN 16

/** A loaded key. Made by `BCIPHER_NewKey`, released by `BCIPHER_DelKey`. */
typedef struct {
  const BCIPHER_ALGORITHM *descriptor; /**< the cipher; fixed at creation */
  uint8_t key_bytes[ZEL_MAX_KEY_LEN];  /**< copy of the key that was loaded last */
  uint32_t key_len;                    /**< how many of them; 0 after creation */
  void *round_keys;                    /**< expanded schedule, of the descriptor's length */
} BCIPHER_KEY;
ZEL_STATIC_ASSERT(sizeof(BCIPHER_KEY) == 56, "layout of BCIPHER_KEY");

/** A running operation. The caller owns it. */
typedef struct {
  uint8_t mode;                     /**< one of `enum ZEL_MODE` */
  uint8_t chain[ZEL_MAX_BLOCK_LEN]; /**< IV, feedback or counter, in the first block-length bytes */
  const BCIPHER_ALGORITHM *descriptor; /**< the cipher; keys must be of the same one */
  uint8_t stream_pos;                  /**< streaming CFB: bytes of `chain` already used */
} BCIPHER_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(BCIPHER_CONTEXT) == 40, "layout of BCIPHER_CONTEXT");

#endif
