/**
 * @file
 * Block ciphers: descriptors, key objects, contexts and modes of operation.
 *
 * A key object is made for a descriptor and loaded once; a context holds the mode and the chaining
 * value of one message. ARIA and SEED are approved; the others are refused in the verified service.
 *
 * No function here takes a lock: a key object that is being changed and a context belong to one
 * thread at a time, a loaded key and the descriptors may be shared.
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

/** Modes of operation. */
enum ZEL_MODE {
  /** Electronic codebook; padded. SP 800-38A, section 6.1. */
  ZEL_MODE_ECB = 1,
  /** Cipher block chaining; padded. SP 800-38A, section 6.2. */
  ZEL_MODE_CBC = 2,
  /** Cipher feedback, full blocks; decrypt in one call. SP 800-38A, section 6.3. */
  ZEL_MODE_CFB = 3,
  /** Cipher feedback of single bytes. */
  ZEL_MODE_CFB8 = 4,
  /** Output feedback. SP 800-38A, section 6.4. */
  ZEL_MODE_OFB = 5,
  /** Output feedback that uses the first byte of each block; restarts from the IV at each call. */
  ZEL_MODE_OFB_BYTE = 6,
  /** CBC with ciphertext stealing, last two blocks always swapped; more than one block, one call.
   */
  ZEL_MODE_CBC_CTS = 7,
  /** Cipher feedback of single bits. */
  ZEL_MODE_CFB1 = 8,
  /** Counter mode over the whole block. SP 800-38A, section 6.5. */
  ZEL_MODE_CTR = 9,
  /** Cipher feedback, full blocks, cut into calls anywhere. */
  ZEL_MODE_CFB_STREAM = 10,
  /** Galois/counter mode: for the authenticated calls alone. */
  ZEL_MODE_GCM = 11,
  /** Counter with CBC-MAC: for the authenticated calls alone. */
  ZEL_MODE_CCM = 12
};

/** A loaded key. Made by `BCIPHER_NewKey`, released by `BCIPHER_DelKey`. */
typedef struct {
  const BCIPHER_ALGORITHM *descriptor; /**< the cipher; fixed at creation */
  uint8_t key_bytes[ZEL_MAX_KEY_LEN];  /**< copy of the key that was loaded last */
  uint32_t key_len; /**< how many of them, or what `rc2` was given: bytes and effective bits; 0
                         after creation */
  void *round_keys; /**< expanded schedule, of the descriptor's length */
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

ZEL_BEGIN_DECLS

/** ARIA-128. KS X 1213, RFC 5794. */
extern ZEL_API const BCIPHER_ALGORITHM aria;
/** ARIA-192. */
extern ZEL_API const BCIPHER_ALGORITHM aria192;
/** ARIA-256. */
extern ZEL_API const BCIPHER_ALGORITHM aria256;
/** SEED. TTAS.KO-12.0004, RFC 4269. */
extern ZEL_API const BCIPHER_ALGORITHM seed;
/** AES-128. FIPS 197. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM rijndael;
/** AES-256. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM rijndael256;
/** AES-128 through processor instructions; empty unless `Check_CPU_support_AES` says 1. Not
 * approved. */
extern ZEL_API const BCIPHER_ALGORITHM aesni;
/** AES-256 through processor instructions, likewise. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM aesni256;
/** DES. FIPS 46-3. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM des;
/** Triple DES with two or three keys. SP 800-67. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM tdes;
/** Blowfish. Schneier, 1993. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM blowfish;
/** CAST-128. RFC 2144. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM cast128;
/** IDEA. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM idea;
/** RC2. RFC 2268. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM rc2;
/** RC5-32/12. RFC 2040. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM rc5;
/** A cipher of this library with 16-byte blocks. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM tavo;
/** The older form of `tavo`, with a padding of its own. Not approved. */
extern ZEL_API const BCIPHER_ALGORITHM tavoold;

/**
 * Makes a key object. Release it with `BCIPHER_DelKey`.
 *
 * @param[in] descriptor  the cipher
 * @return a key object without a key; null when the module is not serving, the descriptor is null
 *         or memory is short
 */
ZEL_API BCIPHER_KEY *BCIPHER_NewKey(const BCIPHER_ALGORITHM *descriptor);

/**
 * Copies a key object with its key and its schedule.
 *
 * @param[in] key  the object to copy
 * @return a key object of its own; null when the module is not serving, `key` or its schedule is
 *         null or memory is short
 */
ZEL_API BCIPHER_KEY *BCIPHER_DupKey(const BCIPHER_KEY *key);

/**
 * Releases a key object. It is not cleared: call `BCIPHER_WipeKey` first where that matters. Does
 * nothing when the module is not serving or `key` is null.
 *
 * @param[in] key  from `BCIPHER_NewKey` or `BCIPHER_DupKey`
 */
ZEL_API void BCIPHER_DelKey(BCIPHER_KEY *key);

/**
 * Zeroes the schedule and the key bytes. The key length stays, and a new key may be loaded. Does
 * nothing when the module is not serving, or `key`, its descriptor or its schedule is null.
 *
 * @param[in,out] key  the object to clear
 */
ZEL_API void BCIPHER_WipeKey(BCIPHER_KEY *key);

/**
 * Draws random key bytes from the approved generator, `HASHDRBG_GetRandNum`.
 *
 * A generator that refuses puts the module into the error state: do not call this where the module
 * is not serving.
 *
 * @param[out] out  [len] bytes
 * @param[in]  len  bytes, at most 2^29 - 1
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_GENERIC more bytes than the generator counts: nothing touched; otherwise the
 *                         generator failed and the module is in the error state
 */
ZEL_API int32_t BCIPHER_GenKey(uint8_t *out, uint32_t len);

/**
 * Loads a key and expands it. Whether the length suits the cipher is the cipher's business: no
 * answer tells. The record keeps `key_len` as it was given, so that its `key_bytes` and `key_len`
 * make the same key again, with `rc2` too.
 *
 * @param[in,out] key         from `BCIPHER_NewKey`
 * @param[in]     key_bytes   [key_len] bytes, and at least the key length of a cipher with a fixed
 *                            one
 * @param[in]     key_len     bytes, at most 32; for `rc2` the low 16 bits count bytes (0 for 128,
 *                            which is too many) and the high 16 bits are the effective key bits
 * @param[in]     descriptor  the one that the object was made for
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_STATE   module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC null argument, foreign descriptor, no schedule, or a longer key; nothing
 *                         touched
 */
ZEL_API int32_t BCIPHER_MakeKey(BCIPHER_KEY *key, const uint8_t *key_bytes, uint32_t key_len,
                                const BCIPHER_ALGORITHM *descriptor);

/**
 * Starts a message.
 *
 * @param[out] context     the context to fill
 * @param[in]  mode        one of `enum ZEL_MODE`
 * @param[in]  iv          [block length] bytes: IV or first counter block; null for zero bytes
 * @param[in]  descriptor  the cipher; keys must be of the same one
 * @retval ZEL_OK          done
 * @retval ZEL_ERR_STATE   module not serving; nothing touched
 * @retval ZEL_ERR_MODE    unknown mode; nothing touched
 * @retval ZEL_ERR_GENERIC null context or descriptor; a descriptor without one of the two block
 *                         functions, with a block length of 0 or above 16, or with a block function
 *                         of this library and not its block length; nothing touched
 */
ZEL_API int32_t BCIPHER_Initialize(BCIPHER_CONTEXT *context, uint8_t mode, const uint8_t *iv,
                                   const BCIPHER_ALGORITHM *descriptor);

/**
 * Enciphers one piece of a message in the mode that `context` holds.
 *
 * Pieces chain through the context; only a final piece (`final` 1) in ECB and CBC is padded. Mode 6
 * restarts from the IV and mode 7 is complete in one call. A call of zero bytes advances the
 * register in OFB and CTR.
 *
 * @param[out]    out      [in_len] bytes, or [in_len + block] on a final ECB or CBC call; may equal
 *                         `in`. Where the two overlap otherwise, `in` is first moved to `out`
 * @param[out]    out_len  bytes written
 * @param[in]     in       [in_len] bytes
 * @param[in]     in_len   bytes
 * @param[in,out] context  from `BCIPHER_Initialize`
 * @param[in]     key      loaded by `BCIPHER_MakeKey`
 * @param[in]     final    1 for the last piece of a message
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, key of another descriptor, a record that holds a null
 *                          pointer or a descriptor that `BCIPHER_Initialize` refuses, or a padded
 *                          length above 32 bits: nothing touched. In ECB and CBC, a trailing
 *                          partial block: the whole blocks are done, the rest is copied, `out_len`
 *                          counts everything. In mode 7, one block or less: copied, `out_len`
 *                          counts it
 * @retval ZEL_ERR_APPROVED verified service and a cipher that is not approved; nothing touched
 * @retval ZEL_ERR_MODE     GCM, CCM or an unknown mode: `in` was copied to `out`, nothing else
 * Modes: SP 800-38A and its addendum. Padding: RFC 5652, section 6.3.
 */
ZEL_API int32_t BCIPHER_Encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final);

/**
 * Deciphers one piece of a message in the mode that `context` holds. What holds for
 * `BCIPHER_Encrypt` holds here.
 *
 * On a final call the last byte alone tells how much padding there is; the other padding bytes are
 * not compared. CFB with full blocks (mode 3) does not chain: give the whole message in one call.
 *
 * @param[out]    out      [in_len] bytes; may equal `in`. Where the two overlap otherwise, `in` is
 *                         first moved to `out`
 * @param[out]    out_len  bytes of message
 * @param[in]     in       [in_len] bytes
 * @param[in]     in_len   bytes
 * @param[in,out] context  from `BCIPHER_Initialize`
 * @param[in]     key      loaded by `BCIPHER_MakeKey`
 * @param[in]     final    1 for the last piece of a message
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_PADDING  final ECB or CBC call: empty input, or a last byte of 0 or above the
 *                          block length; `out` holds the deciphered blocks, `out_len` is `in_len`
 * @retval ZEL_ERR_STATE    as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_GENERIC  as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Encrypt`
 */
ZEL_API int32_t BCIPHER_Decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final);

/**
 * Appends 1 to `block_len` bytes that each hold their number. RFC 5652, section 6.3.
 *
 * @param[out] out        [len + block_len] bytes; may equal `in`
 * @param[in]  in         [len] bytes
 * @param[in]  len        bytes
 * @param[in]  block_len  1 to 255
 * @return the padded length; `len` itself, without padding, when `block_len` is out of range or the
 *         padded length would exceed 32 bits
 */
ZEL_API uint32_t AddPadding(uint8_t *out, const uint8_t *in, uint32_t len, uint32_t block_len);

/**
 * Takes off as many bytes as the last one says. Nothing is validated.
 *
 * @param[out] out  [len] bytes; may equal `in`
 * @param[in]  in   [len] bytes
 * @param[in]  len  bytes
 * @return the length without padding; 0 when the last byte says more than there is
 */
ZEL_API uint32_t RemovePadding(uint8_t *out, const uint8_t *in, uint32_t len);

/**
 * Counter mode, in place and in both directions, over any block function.
 *
 * Every block of key stream that is begun is used up: a partial block discards the rest of it, and
 * a call of zero bytes discards a whole one.
 *
 * Take the block function from the descriptor (`rijndael.EncryptBlock`): a program linked at a
 * fixed address that takes it by name (`RIJNDAEL_EncryptBlock`) has an address of its own for it,
 * which works alike, block after block, but not by the faster ways for many blocks.
 *
 * @param[in,out] data           [len] bytes
 * @param[in]     len            bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in,out] counter        [block_len] bytes: a big-endian number that wraps to zero
 * @param[in]     block_len      1 to 16; for a block function of this library its own
 * @param[in]     encrypt_block  enciphers one block
 * @return bytes left unprocessed: 0, or `len`, with nothing touched, for another block length or a
 *         null function
 */
ZEL_API uint32_t BCIPHER_EncryptCTR(uint8_t *data, uint32_t len, const void *round_keys,
                                    uint8_t *counter, uint32_t block_len,
                                    BCIPHER_BLOCK_FN encrypt_block);

/**
 * Output feedback, in place and in both directions, over any block function. Partial blocks and
 * calls of zero bytes use up a block of key stream, as in `BCIPHER_EncryptCTR`.
 *
 * @param[in,out] data           [len] bytes
 * @param[in]     len            bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in,out] chain          [block_len] bytes: the register
 * @param[in]     block_len      1 to 16; for a block function of this library its own
 * @param[in]     encrypt_block  enciphers one block
 * @return bytes left unprocessed: 0, or `len`, with nothing touched, for another block length or a
 *         null function
 */
ZEL_API uint32_t BCIPHER_EncryptOFB(uint8_t *data, uint32_t len, const void *round_keys,
                                    uint8_t *chain, uint32_t block_len,
                                    BCIPHER_BLOCK_FN encrypt_block);

/**
 * Output feedback that uses only the first byte of each block, in place and in both directions. The
 * register is not changed: every call starts from the same one.
 *
 * @param[in,out] data           [len] bytes
 * @param[in]     len            bytes
 * @param[in]     round_keys     schedule for `encrypt_block`
 * @param[in]     chain          [block_len] bytes: the register
 * @param[in]     block_len      1 to 16; for a block function of this library its own
 * @param[in]     encrypt_block  enciphers one block
 * @return bytes left unprocessed: 0, or `len`, with nothing touched, for another block length or a
 *         null function
 */
ZEL_API uint32_t BCIPHER_EncryptOFB_BYTE(uint8_t *data, uint32_t len, const void *round_keys,
                                         const uint8_t *chain, uint32_t block_len,
                                         BCIPHER_BLOCK_FN encrypt_block);

ZEL_END_DECLS

#endif
