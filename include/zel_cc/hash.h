/**
 * @file
 * Hash functions: one streaming interface over nine algorithms.
 *
 * SHA-1, SHA-224, SHA-256, SHA-384, SHA-512: FIPS 180-4. HAS-160: TTAS.KO-12.0011/R2. MD5: RFC
 * 1321. RIPEMD-160: ISO/IEC 10118-3. MD2: RFC 1319. Only the four SHA-2 functions are approved.
 *
 * One initialiser, any number of updates, then one or more finalisations. A context holds no
 * resources, may be copied by assignment, and belongs to one thread at a time. The library does not
 * wipe it.
 */
#ifndef ZEL_CC_HASH_H
#define ZEL_CC_HASH_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

/**
 * A hash algorithm: its sizes and entry points. The library compares descriptors by address, so
 * pass the exported objects themselves.
 *
 * An algorithm with a null `PadLength` does its own buffering and is given whole messages: its
 * second slot is then `Update`, and its last one finalises.
 */
typedef struct {
  /** Digest size in bytes, at most #ZEL_MAX_DIGEST_LEN. */
  uint32_t digest_len;
  /** Loads the initial chaining value; a whole-message algorithm is given the whole context. */
  void (*Initialize)(void *state);
  union {
    /** Absorbs one full block into the chaining state. */
    void (*CompressBlock)(void *state, const uint8_t *block);
    /** Absorbs `len` bytes: a whole-message algorithm, given the whole context. */
    void (*Update)(void *context, const uint8_t *data, uint32_t len);
  };
  /**
   * Writes the message length into the end of the last block. `bit_count` points to two words, low
   * then high, of 32 bits for blocks of 64 bytes and of 64 bits for blocks of 128.
   */
  void (*PadLength)(uint8_t *block, const void *bit_count);
  /** Writes the digest; a whole-message algorithm is given the whole context, and finalises a copy.
   */
  void (*DumpDigest)(uint8_t *out, const void *state);
} HASH_ALGORITHM;
ZEL_STATIC_ASSERT(sizeof(HASH_ALGORITHM) == 40, "layout of HASH_ALGORITHM");

/** Working area of the algorithms with 64-byte blocks. */
typedef struct {
  uint32_t state[16];  /**< chaining state; the algorithm uses its own number of words */
  uint8_t buffer[128]; /**< the pending block, in the first 64 bytes */
  uint32_t count_low;  /**< bytes given so far, low word */
  uint32_t count_high; /**< bytes given so far, high word */
} HASH_AREA32;

/** Working area of the algorithms with 128-byte blocks. */
typedef struct {
  uint64_t state[16];  /**< chaining state; the algorithm uses its first eight words */
  uint8_t buffer[256]; /**< the pending block, in the first 128 bytes */
  uint64_t count_low;  /**< bytes given so far, low word */
  uint64_t count_high; /**< bytes given so far, high word */
} HASH_AREA64;

/** Record of MD2, which does its own buffering. RFC 1319. */
typedef struct {
  uint32_t state[16];    /**< one byte value a word */
  uint32_t checksum[16]; /**< one byte value a word */
  uint8_t pending[16];   /**< bytes that wait for a full block */
  uint32_t pending_len;  /**< how many of them, 0 to 15 */
} HASH_AREA_MD2;

/** A running hash. The caller owns it, usually on the stack. */
typedef struct {
  const HASH_ALGORITHM *descriptor; /**< as given to the initialiser */
  union {
    HASH_AREA32 area32;     /**< blocks of 64 bytes */
    HASH_AREA_MD2 area_md2; /**< MD2 */
  };
  HASH_AREA64 area64; /**< blocks of 128 bytes */
} HASH_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(HASH_CONTEXT) == 608, "layout of HASH_CONTEXT");

/** The longest digest of the library in bytes. */
#define ZEL_MAX_DIGEST_LEN 64

ZEL_BEGIN_DECLS

/** SHA-1, 20 bytes. FIPS 180-4. Not approved. */
extern ZEL_API const HASH_ALGORITHM popsha1;
/** SHA-224, 28 bytes. FIPS 180-4. */
extern ZEL_API const HASH_ALGORITHM sha224;
/** SHA-256, 32 bytes. FIPS 180-4. */
extern ZEL_API const HASH_ALGORITHM sha256;
/** SHA-384, 48 bytes. FIPS 180-4. */
extern ZEL_API const HASH_ALGORITHM sha384;
/** SHA-512, 64 bytes. FIPS 180-4. */
extern ZEL_API const HASH_ALGORITHM sha512;
/** HAS-160, 20 bytes. TTAS.KO-12.0011/R2. Not approved. */
extern ZEL_API const HASH_ALGORITHM pophas160;
/** MD5, 16 bytes. RFC 1321. Not approved; inert in the verified service. */
extern ZEL_API const HASH_ALGORITHM popmd5;
/** RIPEMD-160, 20 bytes. ISO/IEC 10118-3. Not approved; inert in the verified service. */
extern ZEL_API const HASH_ALGORITHM ripemd160;
/** MD2, 16 bytes. RFC 1319. Not approved; inert in the verified service. */
extern ZEL_API const HASH_ALGORITHM md2;

/**
 * Starts a hash, with only approved algorithms in the verified service.
 *
 * @param[out] context     the hash to start; any former content is overwritten
 * @param[in]  descriptor  the algorithm; trusted, must not be null
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_APPROVED verified service and not SHA-224, 256, 384 or 512; nothing touched
 */
ZEL_API int32_t HASH_InitializeEx(HASH_CONTEXT *context, const HASH_ALGORITHM *descriptor);

/**
 * Starts a hash with any algorithm, in the verified service too.
 *
 * MD5, MD2 and RIPEMD-160 compute nothing there all the same, and `HASH_Finalize` then leaves its
 * output buffer as it was although it reports a length.
 *
 * @param[out] context     the hash to start
 * @param[in]  descriptor  the algorithm; trusted, must not be null
 * @retval ZEL_OK  done
 * @return otherwise the module state itself, when the module is not serving; nothing touched. State
 *         0 so reads like success: ask `KZEL_CC_GetState` where that state is possible.
 */
ZEL_API int32_t HASH_Initialize(HASH_CONTEXT *context, const HASH_ALGORITHM *descriptor);

/**
 * Adds data to a hash. Does nothing when the module is not serving or `len` is 0.
 *
 * @param[in,out] context  from one of the initialisers
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 */
ZEL_API void HASH_Update_KZEL(HASH_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Adds data to a hash: `HASH_Update_KZEL` under a second name.
 *
 * @param[in,out] context  from one of the initialisers
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 */
ZEL_API void HASH_Update(HASH_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Adds data to a hash: `HASH_Update_KZEL` under a third name.
 *
 * @param[in,out] context  from one of the initialisers
 * @param[in]     data     [len] bytes
 * @param[in]     len      bytes
 */
ZEL_API void HASH_Update_clone(HASH_CONTEXT *context, const uint8_t *data, uint32_t len);

/**
 * Writes the digest of all data given so far. The context is not changed: more data may follow, and
 * a later finalisation covers everything.
 *
 * SHA-384 and SHA-512 of messages of 512 MiB and more differ from FIPS 180-4, on purpose: see
 * docs/departures.md.
 *
 * @param[out] out      [digest length] bytes; left as it was when the module is not serving
 * @param[out] out_len  bytes written; 0 when the module is not serving
 * @param[in]  context  from one of the initialisers
 */
ZEL_API void HASH_Finalize(uint8_t *out, uint32_t *out_len, const HASH_CONTEXT *context);

ZEL_END_DECLS

#endif
