/**
 * @file
 * Random numbers: the entropy collector, Hash_DRBG and HMAC_DRBG of NIST SP 800-90A.
 *
 * Programs that want random bytes call `HASHDRBG_GetRandNum` for a few and keep a context of
 * `HASHDRBG_Instantiate` for many. A context holds no resources and belongs to one thread at a
 * time; it holds secrets, so wipe it when it is done with.
 *
 * After `fork`, parent and child hold the same context and would produce the same output until one
 * of them reseeds it (`HASHDRBG_Reseed`, `HMACDRBG_Reseed`, or a request with prediction
 * resistance). The one-call services keep nothing between calls and draw fresh entropy in each
 * process.
 */
#ifndef ZEL_CC_RNG_H
#define ZEL_CC_RNG_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"

/** Bytes that `RNGSEED_GetEntropyData` writes with the random device. */
#define ZEL_ENTROPY_LEN 874
/** Bytes that `RNGSEED_GetEntropyData` writes without the random device. */
#define ZEL_ENTROPY_LEN_WITHOUT_DEVICE 618
/** Entropy count that `RNGSEED_GetEntropyData` reports with the random device. */
#define ZEL_ENTROPY_COUNT 269
/** Entropy count that `RNGSEED_GetEntropyData` reports without the random device. */
#define ZEL_ENTROPY_COUNT_WITHOUT_DEVICE 13

/** Requests that a context serves before it reseeds by itself; set at instantiation. */
#define ZEL_DRBG_RESEED_INTERVAL 1048576

/** The hash of a DRBG, as the instantiating functions take it. */
enum ZEL_DRBG_HASH {
  /** SHA-224. */
  ZEL_DRBG_SHA224 = 0,
  /** SHA-256. */
  ZEL_DRBG_SHA256 = 1,
  /** SHA-384. */
  ZEL_DRBG_SHA384 = 2,
  /** SHA-512. */
  ZEL_DRBG_SHA512 = 3
};

/** State of a Hash_DRBG. The caller owns it; `HASHDRBG_Instantiate` fills it. */
typedef struct {
  uint8_t V[111];                 /**< the value V, big-endian, in the first `seedlen` / 8 bytes */
  uint8_t C[111];                 /**< the constant C, likewise */
  uint32_t reseed_counter;        /**< 1 after instantiation or reseed, one more a request */
  uint32_t reseed_interval;       /**< value of the counter at which a request reseeds first */
  uint32_t security_strength;     /**< 80, 112, 128, 192 or 256 */
  uint32_t seedlen;               /**< in bits: 440 for SHA-224 and SHA-256, 888 for the others */
  uint32_t prediction_resistance; /**< the flag given at instantiation */
  const HASH_ALGORITHM *hash;     /**< one of the four SHA-2 functions */
} HASHDRBG_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(HASHDRBG_CONTEXT) == 256, "layout of HASHDRBG_CONTEXT");

/** State of an HMAC_DRBG. The caller owns it; `HMACDRBG_Instantiate` fills it. */
typedef struct {
  uint8_t V[64];                  /**< the value V in the first `outlen` / 8 bytes */
  uint8_t Key[64];                /**< the key K in the first `outlen` / 8 bytes */
  uint32_t outlen;                /**< digest length in bits: 224, 256, 384 or 512 */
  uint32_t reseed_counter;        /**< 1 after instantiation or reseed, one more a request */
  uint32_t reseed_interval;       /**< value of the counter at which a request reseeds first */
  uint32_t security_strength;     /**< 80, 112, 128, 192 or 256 */
  uint32_t prediction_resistance; /**< the flag given at instantiation */
  const HASH_ALGORITHM *hash;     /**< one of the four SHA-2 functions */
} HMACDRBG_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(HMACDRBG_CONTEXT) == 160, "layout of HMACDRBG_CONTEXT");

ZEL_BEGIN_DECLS

/**
 * Collects raw entropy: 256 bytes of "/dev/urandom", then clocks, identities of process, user and
 * host, the status of "/", and two heap addresses, all in the order and host layout that
 * docs/departures.md lists.
 *
 * If the device cannot be opened, or does not give all 256 bytes, everything else follows from
 * offset 0 and `entropy` is the smaller count; that is not an error. Works in every module state.
 *
 * @param[out] buf      [#ZEL_ENTROPY_LEN] bytes, of which `len` are written
 * @param[out] len      bytes written: #ZEL_ENTROPY_LEN, or #ZEL_ENTROPY_LEN_WITHOUT_DEVICE
 * @param[out] entropy  #ZEL_ENTROPY_COUNT, or #ZEL_ENTROPY_COUNT_WITHOUT_DEVICE
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetEntropyData(uint8_t *buf, uint32_t *len, int32_t *entropy);

/**
 * Collects entropy and condenses it with SHA-224 into a seed. Works in every module state.
 *
 * @param[out] out      [bits / 8, rounded up] bytes
 * @param[out] out_len  bytes written
 * @param[in]  bits     seed length in bits; 0 writes no bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetSeed(uint8_t *out, uint32_t *out_len, uint32_t bits);

/**
 * Collects entropy and condenses it with HAS-160 into a seed key. Works in every module state.
 *
 * @param[out] out      [bits / 8, rounded up] bytes
 * @param[out] out_len  bytes written
 * @param[in]  bits     seed length in bits; 0 writes no bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetSeedKey(uint8_t *out, uint32_t *out_len, uint32_t bits);

/**
 * Advances a process-wide counter by `b` and turns it into a number that depends on where the heap
 * would place a block of up to 252 bytes. A weak source, one of many in the collector.
 *
 * @param[in] b  0 to 255
 * @return the low 32 bits of the address plus an offset
 */
ZEL_API uint32_t RNGSEED_GetRandomMemoryAddr(int32_t b);

/**
 * Hash_df: derives `out_bits` bits from a byte string. NIST SP 800-90A, section 10.3.1.
 *
 * The block counter is one byte, as the standard has it; outputs of more than 255 digests, which
 * the standard does not allow, repeat from there.
 *
 * @param[out] out       [out_bits / 8] bytes; must not overlap `in`
 * @param[in]  in        [in_len] bytes; may be null when `in_len` is 0
 * @param[in]  in_len    bytes
 * @param[in]  out_bits  output length in bits; a partial last byte is not written
 * @param[in]  hash      `sha224`, `sha256`, `sha384` or `sha512`
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      any other hash, or null; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null argument; nothing touched
 */
ZEL_API int32_t HASHDRBG_DerivateFunction(uint8_t *out, const uint8_t *in, uint32_t in_len,
                                          uint32_t out_bits, const HASH_ALGORITHM *hash);

/**
 * Starts a Hash_DRBG from entropy that the caller gives. NIST SP 800-90A, section 10.1.1.2, except
 * for the constant C: see docs/departures.md.
 *
 * @param[out] context                the generator
 * @param[in]  hash_id                a value of `enum ZEL_DRBG_HASH`
 * @param[in]  strength               security strength in bits; rounded up to 80, 112, 128, 192 or
 *                                    256, and larger values down to 256
 * @param[in]  prediction_resistance  1 if requests may ask for prediction resistance, else 0
 * @param[in]  entropy                [entropy_len] bytes
 * @param[in]  entropy_len            bytes, not 0
 * @param[in]  nonce                  [nonce_len] bytes, or null
 * @param[in]  nonce_len              bytes
 * @param[in]  personalization        [personalization_len] bytes, or null
 * @param[in]  personalization_len    bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      unknown hash; nothing touched
 * @retval ZEL_ERR_DRBG_ENTROPY   null or empty entropy; only the field `hash` is set
 */
ZEL_API int32_t HASHDRBG_InstantiateEntIn(HASHDRBG_CONTEXT *context, uint32_t hash_id,
                                          uint32_t strength, uint32_t prediction_resistance,
                                          const uint8_t *entropy, uint32_t entropy_len,
                                          const uint8_t *nonce, uint32_t nonce_len,
                                          const uint8_t *personalization,
                                          uint32_t personalization_len);

/**
 * Starts a Hash_DRBG from 1024 bits of `RNGSEED_GetSeed`; otherwise as `HASHDRBG_InstantiateEntIn`.
 *
 * @param[out] context                the generator
 * @param[in]  hash_id                a value of `enum ZEL_DRBG_HASH`
 * @param[in]  strength               security strength in bits
 * @param[in]  prediction_resistance  1 if requests may ask for prediction resistance, else 0
 * @param[in]  nonce                  [nonce_len] bytes, or null
 * @param[in]  nonce_len              bytes
 * @param[in]  personalization        [personalization_len] bytes, or null
 * @param[in]  personalization_len    bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      unknown hash; nothing touched
 */
ZEL_API int32_t HASHDRBG_Instantiate(HASHDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                                     uint32_t prediction_resistance, const uint8_t *nonce,
                                     uint32_t nonce_len, const uint8_t *personalization,
                                     uint32_t personalization_len);

/**
 * Reseeds a Hash_DRBG with entropy that the caller gives. NIST SP 800-90A, section 10.1.1.3.
 *
 * @param[in,out] context         an instantiated generator
 * @param[in]     entropy         [entropy_len] bytes
 * @param[in]     entropy_len     bytes, not 0
 * @param[in]     additional      [additional_len] bytes, or null
 * @param[in]     additional_len  bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_ENTROPY   null or empty entropy; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HASHDRBG_ReseedEntIn(HASHDRBG_CONTEXT *context, const uint8_t *entropy,
                                     uint32_t entropy_len, const uint8_t *additional,
                                     uint32_t additional_len);

/**
 * Reseeds a Hash_DRBG with 1024 bits of `RNGSEED_GetSeed`.
 *
 * @param[in,out] context         an instantiated generator
 * @param[in]     additional      [additional_len] bytes, or null
 * @param[in]     additional_len  bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HASHDRBG_Reseed(HASHDRBG_CONTEXT *context, const uint8_t *additional,
                                uint32_t additional_len);

/**
 * Hashgen: the output that follows from V, which it does not change. A building block of
 * `HASHDRBG_GenerateRand`; two calls give the same bytes. NIST SP 800-90A, section 10.1.1.4.
 *
 * When `bits` is not a multiple of 8, the byte at `bits` / 8 is the caller's own, masked to its top
 * `bits` % 8 bits, and holds nothing random: see docs/departures.md.
 *
 * @param[out] out      [bits / 8, rounded up] bytes
 * @param[in]  bits     output length in bits; 0 is allowed
 * @param[in]  context  an instantiated generator
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null argument; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HASHDRBG_GenerateRandBit(uint8_t *out, uint32_t bits,
                                         const HASHDRBG_CONTEXT *context);

/**
 * Generates random bits. NIST SP 800-90A, section 10.1.1.4.
 *
 * Reseeds first when prediction resistance is asked for or the reseed counter has reached its
 * interval: with `entropy` when `entropy_len` is not 0, else with a fresh seed. The reseed takes
 * the additional input.
 *
 * When `bits` is not a multiple of 8, the last byte is as `HASHDRBG_GenerateRandBit` says.
 *
 * @param[out]    out                    [bits / 8, rounded up] bytes
 * @param[in,out] context                an instantiated generator
 * @param[in]     bits                   output length in bits; 0 is allowed and steps the generator
 * @param[in]     strength               security strength in bits that the caller needs
 * @param[in]     entropy                [entropy_len] bytes for a reseed, or null
 * @param[in]     entropy_len            bytes
 * @param[in]     additional             [additional_len] bytes, or null
 * @param[in]     additional_len         bytes
 * @param[in]     prediction_resistance  1 to reseed first, else 0
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context or output; nothing touched
 * @retval ZEL_ERR_DRBG_STRENGTH  strength above the context's, or prediction resistance that was
 *                                not instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_ENTROPY   a reseed is due, and `entropy` is null but `entropy_len` not 0;
 *                                nothing touched
 */
ZEL_API int32_t HASHDRBG_GenerateRandEntIn(uint8_t *out, HASHDRBG_CONTEXT *context, uint32_t bits,
                                           uint32_t strength, const uint8_t *entropy,
                                           uint32_t entropy_len, const uint8_t *additional,
                                           uint32_t additional_len, int32_t prediction_resistance);

/**
 * Generates random bits; a reseed that is due takes a fresh seed. Otherwise as
 * `HASHDRBG_GenerateRandEntIn`.
 *
 * @param[out]    out                    [bits / 8, rounded up] bytes
 * @param[in,out] context                an instantiated generator
 * @param[in]     bits                   output length in bits; 0 is allowed and steps the generator
 * @param[in]     strength               security strength in bits that the caller needs
 * @param[in]     additional             [additional_len] bytes, or null
 * @param[in]     additional_len         bytes
 * @param[in]     prediction_resistance  1 to reseed first, else 0
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context or output; nothing touched
 * @retval ZEL_ERR_DRBG_STRENGTH  strength above the context's, or prediction resistance that was
 *                                not instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HASHDRBG_GenerateRand(uint8_t *out, HASHDRBG_CONTEXT *context, uint32_t bits,
                                      uint32_t strength, const uint8_t *additional,
                                      uint32_t additional_len, int32_t prediction_resistance);

/**
 * Random bits in one call: a Hash_DRBG with SHA-224 and strength 128 from the caller's entropy.
 *
 * The output is compared with a second one from the same generator; equal ones put the module in
 * its error state. An output of n whole bytes so fails by chance once in 256^n calls: ask for 16
 * bytes or more. Outputs of fewer than 8 bits are not compared.
 *
 * @param[out] out          [bits / 8, rounded up] bytes; a last partial byte is as
 *                          `HASHDRBG_GenerateRandBit` says
 * @param[in]  bits         output length in bits
 * @param[in]  entropy      [entropy_len] bytes
 * @param[in]  entropy_len  bytes, not 0
 * @retval ZEL_OK             done
 * @retval ZEL_ERR_DRBG_TEST  module not serving, missing argument, or the comparison failed (the
 *                            module is then in its error state); the bits / 8 bytes of `out` are 0
 */
ZEL_API int32_t HASHDRBG_RNG(uint8_t *out, uint32_t bits, const uint8_t *entropy,
                             uint32_t entropy_len);

/**
 * Random bits in one call: as `HASHDRBG_RNG`, with fresh entropy from `RNGSEED_GetSeed` each time.
 *
 * @param[out] out   [bits / 8, rounded up] bytes; a last partial byte is as
 *                   `HASHDRBG_GenerateRandBit` says
 * @param[in]  bits  output length in bits; see `HASHDRBG_RNG` for short ones
 * @retval ZEL_OK             done
 * @retval ZEL_ERR_DRBG_TEST  module not serving, null output, or the comparison failed (the module
 *                            is then in its error state); the bits / 8 bytes of `out` are 0
 */
ZEL_API int32_t HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits);

/**
 * Updates K and V of an HMAC_DRBG with data. NIST SP 800-90A, section 10.1.2.2.
 *
 * @param[in,out] context   an instantiated generator
 * @param[in]     provided  [len] bytes; may be null when `len` is 0
 * @param[in]     len       bytes; not negative
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null argument or negative length; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HMACDRBG_Update(HMACDRBG_CONTEXT *context, const uint8_t *provided, int32_t len);

/**
 * Starts an HMAC_DRBG from entropy that the caller gives. NIST SP 800-90A, section 10.1.2.3.
 *
 * @param[out] context                the generator
 * @param[in]  hash_id                a value of `enum ZEL_DRBG_HASH`
 * @param[in]  strength               security strength in bits; rounded up to 80, 112, 128, 192 or
 *                                    256, and larger values down to 256
 * @param[in]  prediction_resistance  1 if requests may ask for prediction resistance, else 0
 * @param[in]  entropy                [entropy_len] bytes
 * @param[in]  entropy_len            bytes, not 0
 * @param[in]  nonce                  [nonce_len] bytes, or null
 * @param[in]  nonce_len              bytes
 * @param[in]  personalization        [personalization_len] bytes, or null
 * @param[in]  personalization_len    bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      unknown hash; nothing touched
 * @retval ZEL_ERR_DRBG_ENTROPY   null or empty entropy; only the field `hash` is set
 */
ZEL_API int32_t HMACDRBG_InstantiateEntIn(HMACDRBG_CONTEXT *context, uint32_t hash_id,
                                          uint32_t strength, uint32_t prediction_resistance,
                                          const uint8_t *entropy, uint32_t entropy_len,
                                          const uint8_t *nonce, uint32_t nonce_len,
                                          const uint8_t *personalization,
                                          uint32_t personalization_len);

/**
 * Starts an HMAC_DRBG from 1024 bits of `RNGSEED_GetSeed`; otherwise as
 * `HMACDRBG_InstantiateEntIn`.
 *
 * @param[out] context                the generator
 * @param[in]  hash_id                a value of `enum ZEL_DRBG_HASH`
 * @param[in]  strength               security strength in bits
 * @param[in]  prediction_resistance  1 if requests may ask for prediction resistance, else 0
 * @param[in]  nonce                  [nonce_len] bytes, or null
 * @param[in]  nonce_len              bytes
 * @param[in]  personalization        [personalization_len] bytes, or null
 * @param[in]  personalization_len    bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      unknown hash; nothing touched
 */
ZEL_API int32_t HMACDRBG_Instantiate(HMACDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                                     uint32_t prediction_resistance, const uint8_t *nonce,
                                     uint32_t nonce_len, const uint8_t *personalization,
                                     uint32_t personalization_len);

/**
 * Reseeds an HMAC_DRBG with entropy that the caller gives. NIST SP 800-90A, section 10.1.2.4.
 *
 * @param[in,out] context         an instantiated generator
 * @param[in]     entropy         [entropy_len] bytes
 * @param[in]     entropy_len     bytes, not 0
 * @param[in]     additional      [additional_len] bytes, or null
 * @param[in]     additional_len  bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_ENTROPY   null or empty entropy; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HMACDRBG_ReseedEntIn(HMACDRBG_CONTEXT *context, const uint8_t *entropy,
                                     uint32_t entropy_len, const uint8_t *additional,
                                     uint32_t additional_len);

/**
 * Reseeds an HMAC_DRBG with 1024 bits of `RNGSEED_GetSeed`.
 *
 * @param[in,out] context         an instantiated generator
 * @param[in]     additional      [additional_len] bytes, or null
 * @param[in]     additional_len  bytes
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HMACDRBG_Reseed(HMACDRBG_CONTEXT *context, const uint8_t *additional,
                                uint32_t additional_len);

/**
 * Generates random bits. NIST SP 800-90A, section 10.1.2.5.
 *
 * Reseeds first when prediction resistance is asked for or the reseed counter has reached its
 * interval: with `entropy` when `entropy_len` is not 0, else with a fresh seed. The reseed takes
 * the additional input.
 *
 * When `bits` is not a multiple of 8, the last byte holds the top `bits` % 8 bits of the first byte
 * of one more block, and zeros below: see docs/departures.md.
 *
 * @param[out]    out                    [bits / 8, rounded up] bytes
 * @param[in,out] context                an instantiated generator
 * @param[in]     bits                   output length in bits; 0 is allowed and steps the generator
 * @param[in]     strength               security strength in bits that the caller needs
 * @param[in]     entropy                [entropy_len] bytes for a reseed, or null
 * @param[in]     entropy_len            bytes
 * @param[in]     additional             [additional_len] bytes, or null
 * @param[in]     additional_len         bytes
 * @param[in]     prediction_resistance  1 to reseed first, else 0
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context or output; nothing touched
 * @retval ZEL_ERR_DRBG_STRENGTH  strength above the context's, or prediction resistance that was
 *                                not instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_ENTROPY   a reseed is due, and `entropy` is null but `entropy_len` not 0;
 *                                nothing touched
 */
ZEL_API int32_t HMACDRBG_GenerateRandEntIn(uint8_t *out, HMACDRBG_CONTEXT *context, uint32_t bits,
                                           uint32_t strength, const uint8_t *entropy,
                                           uint32_t entropy_len, const uint8_t *additional,
                                           uint32_t additional_len, uint32_t prediction_resistance);

/**
 * Generates random bits; a reseed that is due takes a fresh seed. Otherwise as
 * `HMACDRBG_GenerateRandEntIn`.
 *
 * @param[out]    out                    [bits / 8, rounded up] bytes
 * @param[in,out] context                an instantiated generator
 * @param[in]     bits                   output length in bits; 0 is allowed and steps the generator
 * @param[in]     strength               security strength in bits that the caller needs
 * @param[in]     additional             [additional_len] bytes, or null
 * @param[in]     additional_len         bytes
 * @param[in]     prediction_resistance  1 to reseed first, else 0
 * @retval ZEL_OK                 done
 * @retval ZEL_ERR_STATE          module not serving; nothing touched
 * @retval ZEL_ERR_DRBG_ARGUMENT  null context or output; nothing touched
 * @retval ZEL_ERR_DRBG_STRENGTH  strength above the context's, or prediction resistance that was
 *                                not instantiated; nothing touched
 * @retval ZEL_ERR_DRBG_HASH      the context was never instantiated; nothing touched
 */
ZEL_API int32_t HMACDRBG_GenerateRand(uint8_t *out, HMACDRBG_CONTEXT *context, uint32_t bits,
                                      uint32_t strength, const uint8_t *additional,
                                      uint32_t additional_len, uint32_t prediction_resistance);

/**
 * Random bits in one call: an HMAC_DRBG with SHA-224 and strength 128 from the caller's entropy.
 *
 * The output is compared with a second one from the same generator; equal ones put the module in
 * its error state. An output of n whole bytes so fails by chance once in 256^n calls: ask for 16
 * bytes or more. Outputs of fewer than 8 bits are not compared.
 *
 * @param[out] out          [bits / 8, rounded up] bytes; a last partial byte is as
 *                          `HMACDRBG_GenerateRandEntIn` says
 * @param[in]  bits         output length in bits
 * @param[in]  entropy      [entropy_len] bytes
 * @param[in]  entropy_len  bytes, not 0
 * @retval ZEL_OK             done
 * @retval ZEL_ERR_DRBG_TEST  module not serving, missing argument, or the comparison failed (the
 *                            module is then in its error state); `out` is 0
 */
ZEL_API int32_t HMACDRBG_RNG(uint8_t *out, uint32_t bits, const uint8_t *entropy,
                             uint32_t entropy_len);

/**
 * Random bits in one call: as `HMACDRBG_RNG`, with fresh entropy from `RNGSEED_GetSeed` each time.
 *
 * @param[out] out   [bits / 8, rounded up] bytes; a last partial byte is as
 *                   `HMACDRBG_GenerateRandEntIn` says
 * @param[in]  bits  output length in bits; see `HMACDRBG_RNG` for short ones
 * @retval ZEL_OK             done
 * @retval ZEL_ERR_DRBG_TEST  module not serving, null output, or the comparison failed (the module
 *                            is then in its error state); `out` is 0
 */
ZEL_API int32_t HMACDRBG_GetRandNum(uint8_t *out, uint32_t bits);

ZEL_END_DECLS

#endif
