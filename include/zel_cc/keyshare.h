/**
 * @file
 * Key sharing: a secret becomes two to five shares, of which any two, or any three, give it back.
 * A. Shamir, "How to share a secret", Communications of the ACM 22 (1979).
 *
 * A secret of L bytes is the integer S < 2^(8 L). The field has a random prime p of 8 L + 1 bits,
 * and the shares are points (x, y) of a random line or parabola with the value S at zero, whose
 * coefficients and x-coordinates have up to 8 L bits. All randomness comes from `rand`: see
 * mint_rand.h. Key sharing is not an approved service.
 *
 * Two consequences of the integer: leading zero bytes of a secret are lost, and threshold two does
 * not give back a secret of zeros. What else departs from the paper is in docs/departures.md.
 *
 * The arithmetic on secrets, coefficients and shares runs in constant time; the result codes show
 * what they say, and the length of a secret its leading zero bytes.
 */
#ifndef ZEL_CC_KEYSHARE_H
#define ZEL_CC_KEYSHARE_H

#include "zel_cc/mint.h"

/** Most shares of a set. */
#define ZEL_KEYSHARE_MAX_SHARES 5
/** Fewest bytes of a secret: below there is no prime that PRIME_GeneratePrime would find. */
#define ZEL_KEYSHARE_MIN_SECRET_LEN 2
/** Most bytes of a secret: a prime has at most 4096 bits. */
#define ZEL_KEYSHARE_MAX_SECRET_LEN 511

/** One share: a point of the polynomial. */
typedef struct {
  MINT x; /**< argument; from KEYSHAREFS_Repro2SharedInfo it may be above the prime */
  MINT y; /**< value, below the prime */
} KEYSHAREFS_SHARE;
ZEL_STATIC_ASSERT(sizeof(KEYSHAREFS_SHARE) == 1048, "layout of KEYSHAREFS_SHARE");

/** Shares of one secret and their field. */
typedef struct {
  uint64_t count;                                   /**< how many shares there are */
  KEYSHAREFS_SHARE shares[ZEL_KEYSHARE_MAX_SHARES]; /**< the first `count` of them count */
  MINT prime;                                       /**< the field */
} KEYSHAREFS_SHARE_SET;
ZEL_STATIC_ASSERT(sizeof(KEYSHAREFS_SHARE_SET) == 5776, "layout of KEYSHAREFS_SHARE_SET");

ZEL_BEGIN_DECLS

/**
 * Splits a secret into shares of which any two give it back.
 *
 * Seeds `rand` by MINT_RandInit. The checks come in the order of the list.
 *
 * @param[out] out        count, the first `n` shares and the prime; other shares are not touched
 * @param[in]  secret     [secretLen] bytes, big-endian
 * @param[in]  secretLen  bytes, 2 to 511
 * @param[in]  n          how many shares, 2 to 5
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_STATE         module not serving
 * @retval ZEL_ERR_APPROVED      verified service
 * @retval ZEL_ERR_SHARE2_COUNT  `n` out of range
 * @retval ZEL_ERR_GENERIC       null pointer, `secretLen` out of range, or no prime or no distinct
 *                               x-coordinates in very many draws
 * A failure touches nothing in `out`.
 */
ZEL_API int32_t KEYSHAREFS_Gen2SharedInfo(KEYSHAREFS_SHARE_SET *out, const uint8_t *secret,
                                          uint32_t secretLen, uint64_t n);

/**
 * Recovers a secret from shares 0 and 1 of a set.
 *
 * Checks first the set: pointers, count too small, prime, all that is malformed. Then the x, the
 * inverse, and the secret.
 *
 * @param[out] secretOut  [secretLen] big-endian bytes without leading zeros; as many as the prime
 *                        has are enough
 * @param[out] secretLen  bytes written
 * @param[in]  in         the set; nothing in it is trusted
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_STATE            module not serving
 * @retval ZEL_ERR_APPROVED         verified service
 * @retval ZEL_ERR_GENERIC          null pointer; or `count` above 5, a record of more than 130
 *                                  words, an x of more words than the prime, a y not below it
 * @retval ZEL_ERR_SHARE2_TOO_FEW   `count` below 2
 * @retval ZEL_ERR_SHARE2_INVERSE   the prime is zero or even; or the difference of the x has no
 *                                  inverse, because the prime is none
 * @retval ZEL_ERR_SHARE2_SUBTRACT  equal x modulo the prime; or the secret is zero
 * A failure touches neither output.
 */
ZEL_API int32_t KEYSHAREFS_Recover2SharedInfo(uint8_t *secretOut, uint32_t *secretLen,
                                              const KEYSHAREFS_SHARE_SET *in);

/**
 * Makes one more share for threshold two from shares 0 and 1 of a set.
 *
 * Seeds `rand` by MINT_RandInit. The new x has as many bits as the words of the x of share 0, so it
 * may be above the prime; it differs from every x of the set.
 *
 * @param[out] out  the new share; may be one of the set
 * @param[in]  in   the set; nothing in it is trusted
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_STATE            module not serving
 * @retval ZEL_ERR_APPROVED         verified service
 * @retval ZEL_ERR_GENERIC          as of recovery; or no new x in very many draws
 * @retval ZEL_ERR_SHARE2_TOO_FEW   as of recovery
 * @retval ZEL_ERR_SHARE2_INVERSE   as of recovery
 * @retval ZEL_ERR_SHARE2_SUBTRACT  as of recovery; or equal y
 * A failure touches nothing in `out`.
 */
ZEL_API int32_t KEYSHAREFS_Repro2SharedInfo(KEYSHAREFS_SHARE *out, const KEYSHAREFS_SHARE_SET *in);

/**
 * Splits a secret into shares of which any three give it back; otherwise as
 * KEYSHAREFS_Gen2SharedInfo.
 *
 * @param[out] out        count, the first `n` shares and the prime; other shares are not touched
 * @param[in]  secret     [secretLen] bytes, big-endian
 * @param[in]  secretLen  bytes, 2 to 511
 * @param[in]  n          how many shares, 3 to 5
 * @retval ZEL_OK                done
 * @retval ZEL_ERR_STATE         module not serving
 * @retval ZEL_ERR_APPROVED      verified service
 * @retval ZEL_ERR_SHARE3_COUNT  `n` out of range
 * @retval ZEL_ERR_GENERIC       as of KEYSHAREFS_Gen2SharedInfo
 * A failure touches nothing in `out`.
 */
ZEL_API int32_t KEYSHAREFS_Gen3SharedInfo(KEYSHAREFS_SHARE_SET *out, const uint8_t *secret,
                                          uint32_t secretLen, uint64_t n);

/**
 * Recovers a secret from shares 0, 1 and 2 of a set, with checks in the order of
 * KEYSHAREFS_Recover2SharedInfo.
 *
 * @param[out] secretOut  [secretLen] big-endian bytes without leading zeros, one zero byte for
 *                        zero; as many as the prime has are enough
 * @param[out] secretLen  bytes written
 * @param[in]  in         the set; nothing in it is trusted
 * @retval ZEL_OK                   done
 * @retval ZEL_ERR_STATE            module not serving
 * @retval ZEL_ERR_APPROVED         verified service
 * @retval ZEL_ERR_GENERIC          as of KEYSHAREFS_Recover2SharedInfo
 * @retval ZEL_ERR_SHARE3_TOO_FEW   `count` below 3
 * @retval ZEL_ERR_SHARE3_INVERSE   the prime is zero or even; or a product of differences of the x
 *                                  has no inverse, because the prime is none
 * @retval ZEL_ERR_SHARE3_SUBTRACT  two equal x modulo the prime
 * A failure touches neither output.
 */
ZEL_API int32_t KEYSHAREFS_Recover3SharedInfo(uint8_t *secretOut, uint32_t *secretLen,
                                              const KEYSHAREFS_SHARE_SET *in);

ZEL_END_DECLS

#endif
