/**
 * @file
 * Montgomery multiplication and modular exponentiation of big integers. The rules at the head of
 * mint.h hold here too. Montgomery, Modular multiplication without trial division, Mathematics of
 * Computation 44, 1985.
 */
#ifndef ZEL_CC_MINT_MONT_H
#define ZEL_CC_MINT_MONT_H

#include "zel_cc/mint.h"

/** What Montgomery multiplication needs to know of an odd modulus N; R = 2^ri. */
typedef struct {
  uint32_t ri;      /**< bit length of N, rounded up to a multiple of 32 */
  MINT RR;          /**< R * R mod N */
  MINT N;           /**< the modulus */
  MINT Ni;          /**< read by MINT_from_mont alone; the caller may fill it */
  uint32_t minv[2]; /**< -1/N mod 2^32, then 0 */
} MINT_MONT_CTX;
ZEL_STATIC_ASSERT(sizeof(MINT_MONT_CTX) == 1584, "layout of MINT_MONT_CTX");

ZEL_BEGIN_DECLS

/**
 * Prepares Montgomery multiplication.
 *
 * An even modulus is not refused but makes a context that nobody can use: `minv` is zero then.
 *
 * @param[out] mont  all fields; `Ni` zero
 * @param[in]  N     the odd modulus; its zero words on top do not count
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null pointer; or N is zero, and so is the whole context
 */
ZEL_API int32_t MINT_mont_set(MINT_MONT_CTX *mont, const MINT *N);

/**
 * Multiplies: r = a * b / R mod N. Constant time in the values of `a` and `b`.
 *
 * @param[out] r     trimmed; below N when a * b < N * R; may be `a` or `b`
 * @param[in]  a     below R
 * @param[in]  b     below R; where it is the same record as `a`, the square routine serves
 * @param[in]  mont  from MINT_mont_set
 * @retval 1                done
 * @retval ZEL_ERR_GENERIC  null pointer
 */
ZEL_API int32_t MINT_mont_mul_mod(MINT *r, const MINT *a, const MINT *b, const MINT_MONT_CTX *mont);

/**
 * Reduces: r = t / R mod N. Constant time in the value of `t`.
 *
 * @param[out]    r     as many words as N has, not trimmed; below N when t < N * R; may be `t`
 * @param[in,out] t     its low 2 words(N) words count; they are zero afterwards, and the length
 *                      covers them as far as the record does
 * @param[in]     mont  from MINT_mont_set
 * @retval 1                done
 * @retval ZEL_ERR_GENERIC  null pointer
 */
ZEL_API int32_t MINT_from_mont_word(MINT *r, MINT *t, const MINT_MONT_CTX *mont);

/**
 * Reduces in whole numbers through `Ni`: r = (t + (t * Ni mod R) * N) / R, less N where it is not
 * below N. That is t / R mod N when the caller has set `Ni` to -1/N mod R, which MINT_mont_set does
 * not do.
 *
 * @param[out] r     trimmed; may be `t`
 * @param[in]  t     below N * R
 * @param[in]  mont  from MINT_mont_set, with `Ni` filled in
 * @retval 1                done
 * @retval ZEL_ERR_GENERIC  null pointer
 */
ZEL_API int32_t MINT_from_mont(MINT *r, const MINT *t, const MINT_MONT_CTX *mont);

/**
 * Adds a multiple: rp[i] += ap[i] * w, with carries.
 *
 * @param[in,out] rp   [num] words
 * @param[in]     ap   [num] words; may be `rp`
 * @param[in]     num  words; below 1 there is nothing to do
 * @param[in]     w    the factor
 * @return the word that leaves the top; 0 when `num` is below 1
 */
ZEL_API uint32_t MINT_mul_add_words(uint32_t *rp, const uint32_t *ap, int32_t num, uint32_t w);

/**
 * Subtracts: rp = ap - bp, with borrows.
 *
 * @param[out] rp   [num] words; may be `ap` or `bp`
 * @param[in]  ap   [num] words
 * @param[in]  bp   [num] words
 * @param[in]  num  words; below 1 there is nothing to do
 * @return the borrow that leaves the top, 0 or 1; 0 when `num` is below 1
 */
ZEL_API uint32_t MINT_sub_words(uint32_t *rp, const uint32_t *ap, const uint32_t *bp, int32_t num);

/**
 * Raises to a power with a secret exponent: r = a^e mod N for an odd N.
 *
 * Neither branches on nor indexes by the bits of `e`, `a`, `N` or anything between: fixed windows
 * of 6, 5, 4, 3 or 1 bits for exponents from 672, 240, 80, 24 or 1 bits on, every read of the table
 * covering all of it. The bit lengths of `e` and `N` and the length of `a` decide the time.
 *
 * @param[out] r  trimmed; 1 when `e` is zero, whatever `a` and `N` are; may be any operand
 * @param[in]  a  the base, of any size
 * @param[in]  e  the exponent
 * @param[in]  N  the modulus, odd, of up to 4160 bits
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null pointer, `e` not zero and N zero or even, or no memory
 */
ZEL_API int32_t MINT_mont_exp_mod(MINT *r, const MINT *a, const MINT *e, const MINT *N);

/**
 * Raises public values to a power: r = a^e mod N for any N.
 *
 * The checks come in this order: the records, N zero, `a` zero, N one, `e` zero, the window.
 *
 * @param[out] r       trimmed; zero when `a` is zero or N is 1, else 1 when `e` is zero; may be any
 *                     operand
 * @param[in]  a       the base, of any size; not the same record as `e` or `N`
 * @param[in]  e       the exponent; not the same record as `N`
 * @param[in]  N       the modulus, of up to 4160 bits, odd or even
 * @param[in]  window  1 to 23; it does not change the result. The callers' usual value is 4
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null pointer, records not distinct, N zero, a window out of range, or no
 *                          memory
 */
ZEL_API int32_t MINT_ExpWin(MINT *r, const MINT *a, const MINT *e, const MINT *N, uint32_t window);

ZEL_END_DECLS

#endif
