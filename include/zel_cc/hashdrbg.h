/**
 * @file
 * Hash_DRBG of NIST SP 800-90A. What holds for both generators stands in zel_cc/rng.h.
 */
#ifndef ZEL_CC_HASHDRBG_H
#define ZEL_CC_HASHDRBG_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"

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

ZEL_BEGIN_DECLS

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
 * A copy of the context, such as the child's after `fork`, repeats its output until it is reseeded.
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
 * After `fork` each process draws its own.
 *
 * @param[out] out   [bits / 8, rounded up] bytes; a last partial byte is as
 *                   `HASHDRBG_GenerateRandBit` says
 * @param[in]  bits  output length in bits; see `HASHDRBG_RNG` for short ones
 * @retval ZEL_OK             done
 * @retval ZEL_ERR_DRBG_TEST  module not serving, null output, or the comparison failed (the module
 *                            is then in its error state); the bits / 8 bytes of `out` are 0
 */
ZEL_API int32_t HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits);

ZEL_END_DECLS

#endif
