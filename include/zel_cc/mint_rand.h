/**
 * @file
 * Random integers from the C library's generator, `rand`. Not for keys or nonces.
 *
 * The number and order of the draws are part of the interface: a program that seeds `rand` gets the
 * same integers. The generator's state belongs to the whole process.
 */
#ifndef ZEL_CC_MINT_RAND_H
#define ZEL_CC_MINT_RAND_H

#include "zel_cc/mint.h"

ZEL_BEGIN_DECLS

/** Seeds `rand` with the sum of the time, the processor time and one draw. */
ZEL_API void MINT_RandInit(void);

/**
 * Draws an integer of at most `bits` bits: three draws for each word of 32 bits; a last word of
 * fewer bits takes two draws up to 16 bits and three above.
 *
 * @param[out] r     ceil(bits / 32) words, not trimmed
 * @param[in]  bits  above 4160 they count as 4160
 */
ZEL_API void MINT_Rand(MINT *r, uint32_t bits);

/**
 * Draws an integer with minBits <= bit length <= maxBits.
 *
 * As MINT_Rand(r, maxBits), with a fourth draw after each whole word, which is thrown away. As long
 * as the integer is too short its top word and the words above are drawn again, not those below.
 *
 * @param[out] r        the integer, trimmed; zero when minBits > maxBits, without a draw
 * @param[in]  minBits  fewest bits
 * @param[in]  maxBits  most bits; above 4160 they count as 4160
 * @return the bit length
 */
ZEL_API uint32_t MINT_RandWithinRange(MINT *r, uint32_t minBits, uint32_t maxBits);

/**
 * Draws an integer between two others.
 *
 * Draws as many bits as `hi` has until the integer is below `hi`; ORs `lo` into it when it is below
 * `lo`; starts again when it is `lo` now. Where `hi` is less than twice `lo`, the OR may pass `hi`.
 *
 * @param[out] r   the integer, not trimmed; zero after 2^20 integers that would not do, as there is
 *                 none between neighbours
 * @param[in]  lo  lower bound, not taken itself
 * @param[in]  hi  upper bound, not taken itself
 */
ZEL_API void MINT_RandWithinMINT(MINT *r, const MINT *lo, const MINT *hi);

/**
 * Draws as MINT_Rand and sets the topmost bits.
 *
 * @param[out] r     ceil(bits / 32) words
 * @param[in]  bits  above 4160 they count as 4160
 * @param[in]  ones  bits to set from bit `bits - 1` downward; above `bits` they count as `bits`
 */
ZEL_API void MINT_RandOnes(MINT *r, uint32_t bits, uint32_t ones);

ZEL_END_DECLS

#endif
