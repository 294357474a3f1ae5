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

#endif
