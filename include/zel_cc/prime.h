/**
 * @file
 * Prime numbers: a probabilistic test and three generators.
 *
 * Everything random comes from `rand`: see mint_rand.h. The number and order of the draws are part
 * of the interface.
 *
 * A generator tries candidates until one is prime. Conditions that no prime meets end with a zero
 * result: before the first draw where that is plain (minBits > maxBits, maxBits below 11 or above
 * 4160, an even `e`, a divisor that all members of a residue class have), else after
 * 1000 * (maxBits + 100) candidates, or fewer where a residue class has few.
 */
#ifndef ZEL_CC_PRIME_H
#define ZEL_CC_PRIME_H

#include "zel_cc/mint_rand.h"

ZEL_BEGIN_DECLS

/**
 * Sets 2^bits - 1.
 *
 * @param[out] r     the number, trimmed
 * @param[in]  bits  above 4160 they count as 4160
 */
ZEL_API void p_max(MINT *r, uint32_t bits);

/**
 * Sets 2^(bits - 1), the least number of so many bits.
 *
 * @param[out] r     the number; zero for 0 bits and above 4160 bits
 * @param[in]  bits  how many
 */
ZEL_API void p_min(MINT *r, uint32_t bits);

/**
 * Tells how many iterations of the Miller-Rabin test random candidates need.
 *
 * @param[in] bits  bit length of the candidates
 * @return from 50 below 160 bits down to 2 above 1853 bits. Handbook of Applied Cryptography, 4.4
 */
ZEL_API uint32_t PRIME_SelectMRIter(uint32_t bits);

/**
 * Tests for primality: trial division by the odd primes up to 1999, then Miller-Rabin.
 *
 * The primes up to 1999 are themselves told composite, on purpose: candidates are far larger. Each
 * iteration draws a base of as many bits as `n` has, again while it is not below `n`; the bases 0
 * and 1 are not excluded. The exponentiation does not branch on the bits of `n`.
 *
 * @param[in] n           the candidate; not changed
 * @param[in] iterations  of Miller-Rabin; with 0, trial division decides
 * @retval 1  probably prime
 * @retval 0  composite, 0 or 1, a prime up to 1999, or there was no memory
 * @retval ZEL_ERR_GENERIC  null pointer
 */
ZEL_API int32_t PRIME_MRTest(const MINT *n, uint32_t iterations);

/**
 * Generates a prime. Seeds `rand` by MINT_RandInit first.
 *
 * @param[out] p        the prime, trimmed; zero when there is none
 * @param[in]  minBits  fewest bits; it decides the number of iterations
 * @param[in]  maxBits  most bits
 * @param[in]  e        gcd(e, p - 1) shall be 1; null or 1 for no such condition
 */
ZEL_API void PRIME_GeneratePrime(MINT *p, uint32_t minBits, uint32_t maxBits, const MINT *e);

/**
 * Generates a prime p = a modulo 2 m; p = a + m where `a` is even. Seeds `rand` first.
 *
 * p is k * m + a, where MINT_RandWithinMINT draws k between |2^(minBits - 1) - a| / m and
 * |2^maxBits - 1 - a| / m and bit 0 of k is cleared then. So it is k that keeps to the bounds:
 * where few fit between them, p may have a bit too few or too many. An `a` above 2^(minBits - 1)
 * moves the lower bound up again, and one above 2^maxBits gives primes above it, of up to 4160
 * bits.
 *
 * @param[out] p        the prime, trimmed; zero when there is none
 * @param[in]  a        the residue
 * @param[in]  m        half the modulus
 * @param[in]  minBits  fewest bits; it decides the number of iterations
 * @param[in]  maxBits  most bits
 * @param[in]  e        gcd(e, p - 1) shall be 1; null or 1 for no such condition
 */
ZEL_API void PRIME_GeneratePrimeCongruence(MINT *p, const MINT *a, const MINT *m, uint32_t minBits,
                                           uint32_t maxBits, const MINT *e);

/**
 * Generates a strong prime: p - 1 has a prime factor r, p + 1 has a prime factor s (or the other
 * way round), and r - 1 has a prime factor t. Seeds `rand` four times.
 * J. Gordon, "Strong primes are easy to find", Eurocrypt 84; Handbook of Applied
 * Cryptography, 4.53.
 *
 * @param[out] p        the prime, trimmed; zero when there is none
 * @param[in]  minBits  fewest bits of p
 * @param[in]  maxBits  most bits of p
 * @param[in]  e        gcd(e, p - 1) shall be 1; null or 1 for no such condition
 * @param[in]  rBits    bits of r; rBits + sBits at most maxBits, else the result is zero at once
 * @param[in]  sBits    bits of s, at least 11
 * @param[in]  tBits    bits of t, at least 11 and below rBits
 */
ZEL_API void PRIME_GenerateStrongPrime(MINT *p, uint32_t minBits, uint32_t maxBits, const MINT *e,
                                       uint32_t rBits, uint32_t sBits, uint32_t tBits);

ZEL_END_DECLS

#endif
