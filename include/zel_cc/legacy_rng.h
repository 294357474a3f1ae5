/**
 * @file
 * Older generators, kept beside the DRBGs of zel_cc/rng.h for data and programs that need them: an
 * ANSI X9.17 generator over triple DES, a SHA-1 generator of the same shape, the private-value
 * generator of FIPS 186-2, and the generators of the KCDSA standard.
 *
 * `RANDANSI` and `RANDHASH` draw on the clock alone besides their state: a new program takes a
 * DRBG.
 *
 * A context holds no resources and belongs to one thread at a time. It and all outputs of the
 * private-value generators are secrets: wipe them. Outputs must not overlap inputs.
 */
#ifndef ZEL_CC_LEGACY_RNG_H
#define ZEL_CC_LEGACY_RNG_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

/** State of `RANDANSI`. The caller owns it and fills it before `RANDANSI_Initialize`. */
typedef struct {
  uint8_t round_keys[384]; /**< from `TDES_MakeRoundKey` */
  uint8_t V[8];            /**< the seed value */
} RANDANSI_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(RANDANSI_CONTEXT) == 392, "layout of RANDANSI_CONTEXT");

/** State of `RANDHASH`. The caller owns it and fills it before `RANDHASH_Initialize`. */
typedef struct {
  uint8_t X[20]; /**< the state */
} RANDHASH_CONTEXT;
ZEL_STATIC_ASSERT(sizeof(RANDHASH_CONTEXT) == 20, "layout of RANDHASH_CONTEXT");

ZEL_BEGIN_DECLS

/**
 * Replaces the key and the seed value of `RANDANSI` by its own output.
 *
 * Three blocks are drawn under the present key and become the new key, then one more block becomes
 * V. Nothing random is added but clock readings: what the context held before decides. Does nothing
 * when the module is not serving.
 *
 * @param[in,out] context  a key schedule and a seed value
 */
ZEL_API void RANDANSI_Initialize(RANDANSI_CONTEXT *context);

/**
 * Draws bytes from `RANDANSI`: I = E(DT), R = E(I ^ V), V = E(R ^ I) for each block of 8 bytes.
 *
 * DT is a clock reading and the negative of a second one, `time(NULL) + clock()` each, 4 bytes in
 * host order. A request of 0 bytes takes a step too. In the verified service triple DES is inert
 * and the output is no longer random. Does nothing when the module is not serving.
 *
 * @param[out]    out      [len] bytes; the last block is cut
 * @param[in]     len      bytes
 * @param[in,out] context  a key schedule and a seed value
 * Steps: ANSI X9.17, appendix C.
 */
ZEL_API void RANDANSI_GetRandomNum(uint8_t *out, uint32_t len, RANDANSI_CONTEXT *context);

/**
 * Replaces the state of `RANDHASH` by one block of its own output.
 *
 * Nothing random is added but a clock reading: fill the context from `RNGSEED_GetSeed` first. Does
 * nothing when the module is not serving.
 *
 * @param[in,out] context  20 bytes that nobody can guess
 */
ZEL_API void RANDHASH_Initialize(RANDHASH_CONTEXT *context);

/**
 * Draws bytes from `RANDHASH`: T = H(clock), R = H(X || T || X), X = H(T || R || T) for each block
 * of 20 bytes, where H is SHA-1 and the clock is `time(NULL) + clock()`, 4 bytes in host order.
 *
 * Does nothing when the module is not serving.
 *
 * @param[out]    out      [len] bytes; the last block is cut; may be the context
 * @param[in]     len      bytes; 0 takes no step
 * @param[in,out] context  the state
 */
ZEL_API void RANDHASH_GetRandomNum(uint8_t *out, uint32_t len, RANDHASH_CONTEXT *context);

/**
 * The function G over SHA-1: one compression of a zero-padded block. Works in every module state.
 *
 * @param[out] out20  [20] bytes
 * @param[in]  t      [20] bytes: the chaining value to start from
 * @param[in]  c      [cBits / 8, rounded up] bytes
 * @param[in]  cBits  bits; above 512 they count as 512
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 * Standard: FIPS 186-2, appendix 3.3.
 */
ZEL_API int32_t DSARNGSHA1_G(uint8_t *out20, const uint8_t *t, const uint8_t *c, uint32_t cBits);

/**
 * Private values of DSA: x_j = G(t, (XKEY + XSEED) mod 2^(8b)).
 *
 * Two departures from FIPS 186-2, appendix 3.1: x_j is not reduced modulo q, and XKEY moves on by
 * x_0 in every round. Each value is compared with the one before, and the first with zero bytes,
 * unless the module state is 1; equal ones put the module in its error state.
 *
 * @param[out] out      [20 m] bytes: x_0, x_1, ...
 * @param[out] outLens  [m] words, each set to `b`
 * @param[in]  xseed    [b] bytes, big-endian
 * @param[in]  b        bytes of XKEY's modulus, at most 64
 * @param[in]  xkey     [xkeyLen] bytes, big-endian
 * @param[in]  xkeyLen  bytes, at most 516
 * @param[in]  t        [20] bytes: the chaining value of G
 * @param[in]  q        [qLen] bytes, big-endian, not zero
 * @param[in]  qLen     bytes, at most 520
 * @param[in]  m        values to generate
 * @retval ZEL_OK                  done
 * @retval ZEL_ERR_STATE           module not serving; nothing touched
 * @retval ZEL_ERR_DSA_RNG_REPEAT  `xseed` and `xkey` are the same bytes, or both empty: the module
 *                                 is now in its error state; nothing written
 * @retval ZEL_ERR_GENERIC         two equal values in succession: the module is now in its error
 *                                 state; or a null argument, a length above its bound or q zero:
 *                                 nothing touched
 */
ZEL_API int32_t DSARNGSHA1_GenerateX(uint8_t *out, uint32_t *outLens, const uint8_t *xseed,
                                     uint32_t b, const uint8_t *xkey, uint32_t xkeyLen,
                                     const uint8_t *t, const uint8_t *q, uint32_t qLen, uint32_t m);

/**
 * Random bytes from the generator of `DSARNGSHA1_GenerateX`, with a fresh prime q of 160 bits, and
 * XSEED and XKEY from `RNGSEED_GetSeed` and `RNGSEED_GetSeedKey`.
 *
 * Reseeds libc's `rand`, as every generation of a prime does.
 *
 * @param[out] out  [len] bytes
 * @param[in]  len  bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null output; or a repeated value: the module is now in its error state,
 *                          and `out` is zero
 */
ZEL_API int32_t DSARNGSHA1_GetRandomNum(uint8_t *out, uint32_t len);

/**
 * The generator of the KCDSA standard over HAS-160: hash values of the seed and a counter byte, the
 * highest counter first.
 *
 * One departure: of the first byte the low 8 - (outBits mod 8) bits are kept, where the standard
 * keeps outBits mod 8. More than 256 hash values repeat.
 *
 * @param[out] out       [outBits / 8, rounded up] bytes, big-endian
 * @param[in]  outBits   bits; 0 writes nothing
 * @param[in]  seed      [seedBits / 8, rounded up] bytes; may be null when `seedBits` is 0
 * @param[in]  seedBits  bits
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 * Standard: TTAK.KO-12.0001.
 */
ZEL_API int32_t KCDSARNGHAS160_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                                    uint32_t seedBits);

/**
 * The same over SHA-224.
 * @copydetails KCDSARNGHAS160_PRNG
 */
ZEL_API int32_t KCDSARNGSHA224_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                                    uint32_t seedBits);

/**
 * The same over SHA-256.
 * @copydetails KCDSARNGHAS160_PRNG
 */
ZEL_API int32_t KCDSARNGSHA256_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                                    uint32_t seedBits);

/**
 * Private values of KCDSA over HAS-160.
 *
 * With b the bits of XKEY, A the generator's output for the seed and B = XKEY: x_j is the output
 * for (A + B) mod 2^b, modulo q; B moves on by the output for x_j + A. Each value is compared with
 * the one before, and the first with zero, unless the module state is 1; equal ones put the module
 * in its error state.
 *
 * @param[out] out      x_j from byte 20 j on, without leading zero bytes: [20 m] bytes, and what
 * the last value needs beyond them when q is longer than 160 bits. Such values overwrite the ends
 * of those before
 * @param[out] outLens  [m] lengths of the values in bytes
 * @param[in]  seed     [seedLen] bytes
 * @param[in]  seedLen  bytes
 * @param[in]  xkey     [xkeyLen] bytes, big-endian
 * @param[in]  xkeyLen  bytes, at most 512
 * @param[in]  q        [qLen] bytes, big-endian, not zero
 * @param[in]  qLen     bytes, at most 520
 * @param[in]  m        values to generate
 * @retval ZEL_OK                    done
 * @retval ZEL_ERR_STATE             module not serving; nothing touched
 * @retval ZEL_ERR_KCDSA_RNG_REPEAT  `seed` and `xkey` are the same bytes, or both empty: the module
 *                                   is now in its error state; nothing written
 * @retval ZEL_ERR_GENERIC           two equal values in succession: the module is now in its error
 *                                   state; or a null argument, a length above its bound or q zero:
 *                                   nothing touched
 * Standard: TTAK.KO-12.0001.
 */
ZEL_API int32_t KCDSARNGHAS160_GenerateX(uint8_t *out, uint32_t *outLens, const uint8_t *seed,
                                         uint32_t seedLen, const uint8_t *xkey, uint32_t xkeyLen,
                                         const uint8_t *q, uint32_t qLen, uint32_t m);

ZEL_END_DECLS

#endif
