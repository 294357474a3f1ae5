/**
 * @file
 * Big integers: non-negative, at most 4160 bits, in records that the caller owns.
 *
 * Rules that hold for every function here:
 * - The result comes first and may be any of the operands, unless a function says otherwise.
 * - A record is read through its `length`; a length above 130 counts as 130. Words above the
 *   length mean nothing. Nothing outside the 130 words is read or written, whatever the arguments.
 * - Top words may be zero: a value has many records. "Trimmed" means that a result has none.
 *   "Zero" means a record of length 0, except where the magnitude is said to count.
 * - What does not fit in 4160 bits is refused with ZEL_ERR_GENERIC and a zero result by functions
 *   that report a status; the others keep the low 4160 bits.
 * - Pointers must not be null; functions that report a status answer ZEL_ERR_GENERIC for a null
 *   pointer and touch nothing.
 * - Only functions that say so run in a time that does not depend on the values.
 *
 * The functions whose names end in `_Core` work on bare arrays of 32-bit words, least significant
 * first, with the lengths that the caller states. They touch exactly the words that each one names.
 * The caller sees to the room; an array may not overlap another unless a function says so.
 *
 * None of these functions asks for the module state, and all of them keep their data in the
 * caller's records and on the stack.
 */
#ifndef ZEL_CC_MINT_H
#define ZEL_CC_MINT_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

/** Capacity of a MINT in 32-bit words. */
#define ZEL_MINT_WORDS 130
/** Capacity of a MINT in bits. */
#define ZEL_MINT_BITS 4160
/** Characters that MINT_WriteInHexString may write, with the NUL. */
#define ZEL_MINT_HEX_LEN 1041
/** Characters that MINT_WriteInHexStringBWT may write, with the NUL. */
#define ZEL_MINT_BWT_LEN 1171
/** Characters that MINT_WriteInStructForm may write, with the NUL. */
#define ZEL_MINT_STRUCT_LEN 1577
/** Bytes that MINT_WriteInByteArray may write. */
#define ZEL_MINT_BYTES 520
/** Bytes that MINT_WriteToBuffer may write. */
#define ZEL_MINT_BUFFER_LEN 524

/** A non-negative integer of at most 4160 bits. Copied by assignment; holds no resources. */
typedef struct {
  uint32_t length;                /**< words in use; 0 is the value zero */
  uint32_t words[ZEL_MINT_WORDS]; /**< the magnitude, least significant word first */
} MINT;
ZEL_STATIC_ASSERT(sizeof(MINT) == 524, "layout of MINT");

/** What Montgomery multiplication needs to know of an odd modulus N; R = 2^ri. */
typedef struct {
  uint32_t ri;      /**< bit length of N, rounded up to a multiple of 32 */
  MINT RR;          /**< R * R mod N */
  MINT N;           /**< the modulus */
  MINT Ni;          /**< read by MINT_from_mont alone; the caller may fill it */
  uint32_t minv[2]; /**< -1/N mod 2^32, then 0 */
} MINT_MONT_CTX;
ZEL_STATIC_ASSERT(sizeof(MINT_MONT_CTX) == 1584, "layout of MINT_MONT_CTX");

/** The shape of MINT_Mult_Core, for MINT_KMult_Core. */
typedef void (*MINT_MULT_FN)(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                             uint32_t b_len, const uint32_t *b);
/** The shape of MINT_Square_Core, for MINT_KSquare_Core. */
typedef void (*MINT_SQUARE_FN)(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a);

ZEL_BEGIN_DECLS

/** @name Values from outside */
/** @{ */

/**
 * Sets a record to one word.
 *
 * @param[out] a  length 1, or 0 when `v` is 0
 * @param[in]  v  the value
 */
ZEL_API void MINT_SetByInteger(MINT *a, uint32_t v);

/**
 * Reads hexadecimal digits of either case, most significant first. Leading zeros are kept as words.
 *
 * @param[out] a    length ceil(digits / 8), not trimmed; zero for "" and "0" and on refusal
 * @param[in]  hex  at most 1040 digits, without a prefix
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  another character, or too many of them
 */
ZEL_API int32_t MINT_SetByHexString(MINT *a, const char *hex);

/**
 * Reads big-endian bytes; the last 520 of them when there are more.
 *
 * @param[out] a      length ceil(n / 4), not trimmed
 * @param[in]  bytes  [n]
 * @param[in]  n      bytes; 0 and below give zero
 */
ZEL_API void MINT_SetByByteArray(MINT *a, const uint8_t *bytes, int32_t n);

/**
 * Sets a record to a power of two, except that an exponent of 0 gives zero, not one.
 *
 * @param[out] a  2^n of length n / 32 + 1; zero when `n` is 0, negative, or 4160 and above
 * @param[in]  n  exponent
 */
ZEL_API void MINT_SetBy2ExpN(MINT *a, int32_t n);

/**
 * Reads what MINT_WriteToBuffer wrote: a big-endian word count, then the words from the top.
 *
 * @param[out] a       the value, not trimmed; after a refusal its length is the count, or 0 when
 *                     the count itself is missing or above 130
 * @param[in]  in      [in_len] bytes
 * @param[in]  in_len  bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  fewer bytes than announced, or a count above 130
 */
ZEL_API int32_t MINT_ReadFromBuffer(MINT *a, const uint8_t *in, uint32_t in_len);

/** @} */
/** @name Values to outside */
/** @{ */

/**
 * Writes upper-case hexadecimal digits without leading zeros: "0" for length 0, nothing for words
 * that are all zero.
 *
 * @param[out] out  [8 * length + 1] characters and at least 2, NUL-terminated
 * @param[in]  a    the value
 */
ZEL_API void MINT_WriteInHexString(char *out, const MINT *a);

/**
 * Writes every word as eight upper-case hexadecimal digits and a blank, from the top word down;
 * "00000000" for length 0.
 *
 * @param[out] out  [9 * length + 1] characters and at least 9, NUL-terminated
 * @param[in]  a    the value
 */
ZEL_API void MINT_WriteInHexStringBWT(char *out, const MINT *a);

/**
 * Writes the record like a C initialiser, {{0x<length>}, {0x<word 0>, ...}}; "{{0}}" for length 0.
 *
 * @param[out] out  [12 * length + 17] characters, NUL-terminated
 * @param[in]  a    the value
 */
ZEL_API void MINT_WriteInStructForm(char *out, const MINT *a);

/**
 * Writes big-endian bytes without leading zeros: one zero byte for length 0, nothing for words
 * that are all zero.
 *
 * @param[out] out      [4 * length] bytes and at least 1
 * @param[out] out_len  bytes written
 * @param[in]  a        the value
 */
ZEL_API void MINT_WriteInByteArray(uint8_t *out, uint32_t *out_len, const MINT *a);

/**
 * Writes the `n` least significant bytes, big-endian, with zeros in front where the value has
 * fewer. Higher bytes are dropped.
 *
 * @param[out] out  [n]
 * @param[in]  n    bytes
 * @param[in]  a    the value
 */
ZEL_API void MINT_WriteLSNByteInByteArray(uint8_t *out, uint32_t n, const MINT *a);

/**
 * Writes a big-endian word count and then the words from the top word down, top zero words too.
 *
 * @param[out] out      [4 + 4 * length] bytes
 * @param[out] out_len  bytes written
 * @param[in]  a        the value
 */
ZEL_API void MINT_WriteToBuffer(uint8_t *out, uint32_t *out_len, const MINT *a);

/**
 * Prints a title, the form of MINT_WriteInHexString and a line feed to standard output.
 *
 * @param[in] title  printed as it is
 * @param[in] a      the value
 */
ZEL_API void MINT_PrintInHexString(const char *title, const MINT *a);

/**
 * Prints a title, the form of MINT_WriteInHexStringBWT and a line feed to standard output.
 *
 * @param[in] title  printed as it is
 * @param[in] a      the value
 */
ZEL_API void MINT_PrintInHexStringBWT(const char *title, const MINT *a);

/**
 * Prints a title, the form of MINT_WriteInStructForm and a line feed to standard output.
 *
 * @param[in] title  printed as it is
 * @param[in] a      the value
 */
ZEL_API void MINT_PrintInStructForm(const char *title, const MINT *a);

/** @} */
/** @name Inspection and housekeeping */
/** @{ */

/**
 * Tells the number of significant bits.
 *
 * @param[in] a  the value
 * @return 0 for zero, also for words that are all zero
 */
ZEL_API uint32_t MINT_GetBitLength(const MINT *a);

/**
 * Compares magnitudes; top zero words do not count.
 *
 * @param[in] a  one value
 * @param[in] b  the other
 * @return 1 when a > b, -1 when a < b, 0 when they are equal
 */
ZEL_API int32_t MINT_Compare(const MINT *a, const MINT *b);

/**
 * Destroys a value: 130 draws of `rand` over the words, then zeros over the whole record.
 *
 * Reseeds the process-wide generator with `srand(time(NULL))`: draws after it repeat those of any
 * other call in the same second.
 *
 * @param[out] a  zero in every byte
 */
ZEL_API void MINT_ClearSecurely(MINT *a);

/** @} */
/** @name Shifts and bitwise operations */
/** @{ */

/**
 * Shifts left in place. Keeps the low 4160 bits.
 *
 * @param[in,out] a  the value; trimmed
 * @param[in]     n  bits
 */
ZEL_API void MINT_LeftShift(MINT *a, uint32_t n);

/**
 * Shifts right in place.
 *
 * @param[in,out] a  the value; trimmed
 * @param[in]     n  bits; as many as `a` has, or more, give zero
 */
ZEL_API void MINT_RightShift(MINT *a, uint32_t n);

/**
 * Shifts left. Keeps the low 4160 bits.
 *
 * @param[out] r  a * 2^n, trimmed; may be `a`
 * @param[in]  a  the value
 * @param[in]  n  bits
 */
ZEL_API void MINT_LeftShift2(MINT *r, const MINT *a, uint32_t n);

/**
 * Shifts right.
 *
 * @param[out] r  a / 2^n, trimmed; may be `a`
 * @param[in]  a  the value
 * @param[in]  n  bits; as many as `a` has, or more, give zero
 */
ZEL_API void MINT_RightShift2(MINT *r, const MINT *a, uint32_t n);

/**
 * Exclusive or. A zero operand gives a copy of the other.
 *
 * @param[out] r  length of the longer operand, not trimmed: equal operands leave zero words
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_XOR(MINT *r, const MINT *a, const MINT *b);

/**
 * Bitwise and. A zero operand gives zero.
 *
 * @param[out] r  length of the longer operand, not trimmed
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_AND(MINT *r, const MINT *a, const MINT *b);

/**
 * Bitwise or. A zero operand gives a copy of the other.
 *
 * @param[out] r  length of the longer operand, not trimmed
 * @param[in]  a  one value
 * @param[in]  b  the other
 */
ZEL_API void MINT_OR(MINT *r, const MINT *a, const MINT *b);

/** @} */
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
 * Multiplies. Keeps the low 4160 bits. A zero operand gives zero.
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
 * Squares. Keeps the low 4160 bits.
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
 *                          records; nothing touched
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
 * @retval ZEL_ERR_GENERIC  `d` is 0; nothing touched
 */
ZEL_API int32_t MINT_DivInteger(MINT *q, uint32_t *rem, const MINT *a, uint32_t d);

/**
 * Takes the remainder by a word.
 *
 * @param[out] rem  a mod d
 * @param[in]  a    dividend
 * @param[in]  d    divisor
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `d` is 0; nothing touched
 */
ZEL_API int32_t MINT_ModInteger(uint32_t *rem, const MINT *a, uint32_t d);

/**
 * Reduces in place.
 *
 * @param[in,out] a  becomes a mod m, trimmed; left as it is when a < m
 * @param[in]     m  modulus; must not be `a`
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  `m` is zero in magnitude, or is `a`; nothing touched
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
 * @retval ZEL_ERR_GENERIC  null pointer, `b` without a word that is not zero, or more than 262
 *                          words in `a` or `b`; nothing touched
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
 * @retval ZEL_ERR_GENERIC  as of MINT_Div_Core; nothing touched
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
 * @retval ZEL_ERR_GENERIC     `n` is zero in magnitude or one of the other records; nothing touched
 * @retval ZEL_ERR_NO_INVERSE  `a` and `n` have a common divisor; nothing touched
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
/** @name Montgomery multiplication and exponentiation */
/** @{ */

/** Prepares Montgomery multiplication modulo the odd `N`. @return ZEL_OK */
ZEL_API int32_t MINT_mont_set(MINT_MONT_CTX *mont, const MINT *N);

/** Multiplies: r = a * b / R mod N, trimmed; `a` may be `b`. @return 1 */
ZEL_API int32_t MINT_mont_mul_mod(MINT *r, const MINT *a, const MINT *b, const MINT_MONT_CTX *mont);

/** Reduces: r = t / R mod N, not trimmed; `t` is scratch. */
ZEL_API int32_t MINT_from_mont_word(MINT *r, MINT *t, const MINT_MONT_CTX *mont);

/** Reduces through `Ni`, which the caller has filled: r = t / R mod N. */
ZEL_API int32_t MINT_from_mont(MINT *r, const MINT *t, const MINT_MONT_CTX *mont);

/** Adds ap[i] * w to rp[i] over `num` words. @return the carry; 0 when `num` is below 1 */
ZEL_API uint32_t MINT_mul_add_words(uint32_t *rp, const uint32_t *ap, int32_t num, uint32_t w);

/** Sets rp to ap - bp over `num` words. @return the borrow; 0 when `num` is below 1 */
ZEL_API uint32_t MINT_sub_words(uint32_t *rp, const uint32_t *ap, const uint32_t *bp, int32_t num);

/** Raises to a power: r = a^e mod N, for odd N. @return ZEL_OK, or ZEL_ERR_GENERIC */
ZEL_API int32_t MINT_mont_exp_mod(MINT *r, const MINT *a, const MINT *e, const MINT *N);

/** Raises public values to a power: r = a^e mod N. @return ZEL_OK, or ZEL_ERR_GENERIC */
ZEL_API int32_t MINT_ExpWin(MINT *r, const MINT *a, const MINT *e, const MINT *N, uint32_t window);

/** @} */

ZEL_END_DECLS

#endif
