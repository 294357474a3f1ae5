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
 * - What does not fit in 4160 bits is refused with ZEL_ERR_GENERIC by functions that report a
 *   status; the others keep the low 4160 bits.
 * - Pointers must not be null; functions that report a status answer ZEL_ERR_GENERIC for a null
 *   pointer.
 * - Whatever else a status refuses or fails at leaves every result zero. Nothing is touched only
 *   where a pointer is null, or where two records that must be different are the same one: a
 *   result might be an operand there.
 * - Only functions that say so run in a time that does not depend on the values.
 *
 * None of these functions asks for the module state. Their data are in the caller's records and on
 * the stack. This file has the record and its forms; mint_arith.h has the arithmetic.
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
 * @param[out] a    length ceil(digits / 8), not trimmed; zero for "" and "0"
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
 * @param[out] a       the value, not trimmed; after a refusal zero words, as many as announced, or
 *                     none when the count itself is missing or above 130
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

ZEL_END_DECLS

#endif
