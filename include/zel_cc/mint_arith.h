/**
 * @file
 * Arithmetic of big integers. The rules at the head of mint.h hold here too.
 *
 * The functions whose names end in `_Core` work on bare arrays of 32-bit words, least significant
 * first, with the lengths that the caller states. They touch exactly the words that each one names.
 * The caller sees to the room; an array may not overlap another unless a function says so.
 */
#ifndef ZEL_CC_MINT_ARITH_H
#define ZEL_CC_MINT_ARITH_H

#include "zel_cc/mint.h"

/** The shape of MINT_Mult_Core, for MINT_KMult_Core. */
typedef void (*MINT_MULT_FN)(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                             uint32_t b_len, const uint32_t *b);
/** The shape of MINT_Square_Core, for MINT_KSquare_Core. */
typedef void (*MINT_SQUARE_FN)(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a);

ZEL_BEGIN_DECLS

/** @name Addition and subtraction */
/** @{ */

/**
 * Adds. Keeps the low 4160 bits. A zero operand gives a copy of the other.
 *
 * @param[out] r  a + b; length of the longer operand, one more when a carry leaves the top
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_Add(MINT *r, const MINT *a, const MINT *b);

/**
 * Adds a word. Keeps the low 4160 bits.
 *
 * @param[out] r  a + w; length of `a`, one more when a carry leaves the top
 * @param[in]  a  one value
 * @param[in]  w  the other
 */
ZEL_API void MINT_AddInteger(MINT *r, const MINT *a, uint32_t w);

/**
 * Takes the magnitude of a difference.
 *
 * @param[out] r  |a - b|; length of the larger operand, not trimmed; zero when they are equal
 * @param[in]  a  minuend
 * @param[in]  b  subtrahend
 * @return MINT_Compare of `a` and `b`, the sign of the difference
 */
ZEL_API int32_t MINT_Sub(MINT *r, const MINT *a, const MINT *b);

/**
 * Subtracts a word. Magnitudes count, and a single word below `w` wraps around.
 *
 * @param[out] r  a - w of the length of `a`, not trimmed; `w` itself when `a` is zero
 * @param[in]  a  minuend
 * @param[in]  w  subtrahend
 * @return 1; 0 when both are zero; -1 when `a` alone is zero
 */
ZEL_API int32_t MINT_SubInteger(MINT *r, const MINT *a, uint32_t w);

/**
 * Adds word arrays of any length.
 *
 * @param[out] r_len  max(a_len, b_len), one more when a carry leaves the top
 * @param[out] r      [r_len], so room for one word above the longer operand; may be `a` or `b`
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 */
ZEL_API void MINT_Add_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                           uint32_t b_len, const uint32_t *b);

/**
 * Subtracts word arrays of any length, the lesser from the greater. The longer array counts as the
 * greater; equal lengths are told apart word by word from the top.
 *
 * @param[out] r_len  length of the greater, not trimmed; 0 when they are equal
 * @param[out] r      [r_len]; may be `a` or `b`
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 * @return 1 when `a` is the greater, -1 when `b` is, 0 when they are equal
 */
ZEL_API int32_t MINT_Sub_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                              uint32_t b_len, const uint32_t *b);

/** @} */
/** @name Multiplication */
/** @{ */

/**
 * Multiplies, in a time that the lengths decide. Keeps the low 4160 bits. A zero operand gives
 * zero.
 *
 * @param[out] r  a * b; length of `a` plus length of `b`, at most 130, not trimmed
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_Mult(MINT *r, const MINT *a, const MINT *b);

/**
 * Multiplies by a word. Keeps the low 4160 bits. A zero operand gives zero.
 *
 * @param[out] r  a * w; length of `a`, one more when a carry leaves the top
 * @param[in]  a  one value
 * @param[in]  w  the other
 */
ZEL_API void MINT_MultInteger(MINT *r, const MINT *a, uint32_t w);

/**
 * Squares, in a time that the length decides. Keeps the low 4160 bits.
 *
 * @param[out] r  a * a; twice the length of `a`, at most 130, not trimmed
 * @param[in]  a  the value
 */
ZEL_API void MINT_Square(MINT *r, const MINT *a);

/**
 * MINT_Mult by Karatsuba's method (Soviet Physics Doklady 7, 1963).
 *
 * @param[out] r      as of MINT_Mult
 * @param[in]  a      one value
 * @param[in]  b      the other
 * @param[in]  depth  levels of recursion; any number is safe
 */
ZEL_API void MINT_KMult(MINT *r, const MINT *a, const MINT *b, uint32_t depth);

/**
 * MINT_Square by Karatsuba's method.
 *
 * @param[out] r      as of MINT_Square
 * @param[in]  a      the value
 * @param[in]  depth  levels of recursion; any number is safe
 */
ZEL_API void MINT_KSquare(MINT *r, const MINT *a, uint32_t depth);

/**
 * Multiplies word arrays of any length.
 *
 * @param[out] r_len  a_len + b_len
 * @param[out] r      [a_len + b_len]
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 */
ZEL_API void MINT_Mult_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                            uint32_t b_len, const uint32_t *b);

/**
 * Squares a word array of any length.
 *
 * @param[out] r_len  2 * a_len
 * @param[out] r      [2 * a_len]
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 */
ZEL_API void MINT_Square_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a);

/**
 * Multiplies word arrays by Karatsuba's method. `mult` is called at depth 0, for an operand of one
 * word or none, and for arrays of more than 130 words.
 *
 * @param[out] r_len  a_len + b_len
 * @param[out] r      [a_len + b_len]
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 * @param[in]  depth  levels of recursion; any number is safe
 * @param[in]  mult   multiplies the parts: MINT_Mult_Core, or the caller's own
 */
ZEL_API void MINT_KMult_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                             uint32_t b_len, const uint32_t *b, uint32_t depth, MINT_MULT_FN mult);

/**
 * Squares a word array by Karatsuba's method. `square` is called at depth 0, for one word or none,
 * and for arrays of more than 130 words.
 *
 * @param[out] r_len   2 * a_len
 * @param[out] r       [2 * a_len]
 * @param[in]  a_len   words of `a`
 * @param[in]  a       [a_len]
 * @param[in]  depth   levels of recursion; any number is safe
 * @param[in]  square  squares the parts: MINT_Square_Core, or the caller's own
 */
ZEL_API void MINT_KSquare_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                               uint32_t depth, MINT_SQUARE_FN square);

/** @} */
/** @name Division and reduction */
/** @{ */

/**
 * Divides with remainder.
 *
 * @param[out] q    a div b, trimmed; may be `a`
 * @param[out] rem  a mod b, of the significant length of `b`, not trimmed; a copy of `a` when
 *                  a < b, zero when a = b or `a` is zero; may be `a`
 * @param[in]  a    dividend
 * @param[in]  b    divisor
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `b` is zero in magnitude, or `q`, `rem` and `b` are not three different
 *                          records
 */
ZEL_API int32_t MINT_Div(MINT *q, MINT *rem, const MINT *a, const MINT *b);

/**
 * Divides by a word.
 *
 * @param[out] q    a div d, of the length of `a`, not trimmed
 * @param[out] rem  a mod d
 * @param[in]  a    dividend
 * @param[in]  d    divisor
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `d` is 0
 */
ZEL_API int32_t MINT_DivInteger(MINT *q, uint32_t *rem, const MINT *a, uint32_t d);

/**
 * Takes the remainder by a word.
 *
 * @param[out] rem  a mod d
 * @param[in]  a    dividend
 * @param[in]  d    divisor
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `d` is 0
 */
ZEL_API int32_t MINT_ModInteger(uint32_t *rem, const MINT *a, uint32_t d);

/**
 * Reduces in place.
 *
 * @param[in,out] a  becomes a mod m, trimmed
 * @param[in]     m  modulus; must not be `a`
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `m` is zero in magnitude, or is `a`
 */
ZEL_API int32_t MINT_ModClassic(MINT *a, const MINT *m);

/**
 * Cuts to ceil(n / 32) words; where `n` is no multiple of 32, the top one of these becomes its
 * remainder modulo (n mod 32), which is not the same as a mask of n mod 32 bits.
 *
 * @param[in,out] a  length ceil(n / 32), at most 130, with zero words where `a` was shorter
 * @param[in]     n  bits
 */
ZEL_API void MINT_Mod2ExpN(MINT *a, uint32_t n);

/**
 * Divides word arrays in place.
 *
 * @param[out]    q_len  a_len - (significant words of `b`) + 1, trimmed; 0 when `a` is shorter
 * @param[out]    q      [a_len - (significant words of `b`) + 1] words of room
 * @param[in,out] a_len  words of the dividend, then of the remainder: the significant length of
 *                       `b`, or as it was when it is less than that
 * @param[in,out] a      [a_len] dividend, then remainder; words above the remainder become zero
 * @param[in]     b_len  words of `b`
 * @param[in]     b      [b_len] divisor
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null pointer; or `b` without a word that is not zero, or more than 262
 *                          words in `a` or `b`: both lengths are 0
 */
ZEL_API int32_t MINT_Div_Core(uint32_t *q_len, uint32_t *q, uint32_t *a_len, uint32_t *a,
                              uint32_t b_len, const uint32_t *b);

/**
 * MINT_Div_Core without the quotient.
 *
 * @param[in,out] a_len  as of MINT_Div_Core
 * @param[in,out] a      as of MINT_Div_Core
 * @param[in]     b_len  words of `b`
 * @param[in]     b      [b_len] modulus
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  as of MINT_Div_Core
 */
ZEL_API int32_t MINT_ModClassic_Core(uint32_t *a_len, uint32_t *a, uint32_t b_len,
                                     const uint32_t *b);

/** @} */
/** @name Greatest common divisor and inverse */
/** @{ */

/**
 * Takes the greatest common divisor; of zero and a value, that value.
 *
 * @param[out] g  gcd(a, b), trimmed; a copy of `a` when they are equal
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_BinGCD(MINT *g, const MINT *a, const MINT *b);

/**
 * Takes the greatest common divisor g of `a` and `b` and coefficients for it: the pair of least
 * magnitude, with x <= b / 2g and y <= a / 2g unless one value divides the other. Where one of
 * several pairs must be chosen, as for equal values, x is 0 and y is 1.
 *
 * @param[out] x  magnitude of the coefficient of `a`, trimmed
 * @param[out] y  magnitude of the coefficient of `b`, trimmed
 * @param[out] g  gcd(a, b), trimmed; a copy of `b` when the two are the same record
 * @param[in]  a  one value
 * @param[in]  b  the other
 * @return 1 when g = a*x - b*y, or g = b*y with x = 0; -1 when g = b*y - a*x; 0, with nothing
 *         touched, when `x`, `y` and `g` are not three different records or a pointer is null
 */
ZEL_API int32_t MINT_BinExtGCD(MINT *x, MINT *y, MINT *g, const MINT *a, const MINT *b);

/**
 * Inverts modulo n. Its time depends on the values.
 *
 * @param[out] r  1/a mod n, trimmed; must not be `n`
 * @param[in]  a  the value, of any size; must not be `n`
 * @param[in]  n  modulus, odd or even
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_GENERIC     `n` is zero in magnitude or one of the other records
 * @retval ZEL_ERR_NO_INVERSE  `a` and `n` have a common divisor
 */
ZEL_API int32_t MINT_Inverse(MINT *r, const MINT *a, const MINT *n);

/**
 * Takes the greatest common divisor of word arrays of at most 130 words; more are not looked at.
 *
 * @param[out] g_len  words of `g`, trimmed
 * @param[out] g      [max(a_len, b_len)] words of room; may be `a` or `b`
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 */
ZEL_API void MINT_BinGCD_Core(uint32_t *g_len, uint32_t *g, uint32_t a_len, const uint32_t *a,
                              uint32_t b_len, const uint32_t *b);

/**
 * MINT_BinExtGCD on word arrays of at most 130 words; more are not looked at.
 *
 * @param[out] x_len  words of `x`, trimmed
 * @param[out] x      [max(1, b_len)] words of room; may be `a` or `b`
 * @param[out] y_len  words of `y`, trimmed
 * @param[out] y      [max(1, a_len)] words of room; may be `a` or `b`
 * @param[out] g_len  words of `g`, trimmed
 * @param[out] g      [max(a_len, b_len)] words of room; may be `a` or `b`
 * @param[in]  a_len  words of `a`
 * @param[in]  a      [a_len]
 * @param[in]  b_len  words of `b`
 * @param[in]  b      [b_len]
 * @return 1 or -1 as of MINT_BinExtGCD
 */
ZEL_API int32_t MINT_BinExtGCD_Core(uint32_t *x_len, uint32_t *x, uint32_t *y_len, uint32_t *y,
                                    uint32_t *g_len, uint32_t *g, uint32_t a_len, const uint32_t *a,
                                    uint32_t b_len, const uint32_t *b);

/** @} */

ZEL_END_DECLS

#endif
