/**
 * @file
 * HMAC_DRBG of NIST SP 800-90A. What holds for both generators stands in zel_cc/rng.h.
 */
#ifndef ZEL_CC_HMACDRBG_H
#define ZEL_CC_HMACDRBG_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"

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
 * After `fork` each process draws its own.
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
