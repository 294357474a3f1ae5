/**
 * @file
 * Random numbers: the entropy collector, Hash_DRBG and HMAC_DRBG of NIST SP 800-90A.
 *
 * Programs that want random bytes call `HASHDRBG_GetRandNum` for a few and keep a context of
 * `HASHDRBG_Instantiate` for many. A context holds no resources and belongs to one thread at a
 * time; it holds secrets, so wipe it when it is done with.
 *
 * After `fork`, parent and child hold the same context and would produce the same output until one
 * of them reseeds it (`HASHDRBG_Reseed`, `HMACDRBG_Reseed`, or a request with prediction
 * resistance). The one-call services keep nothing between calls and draw fresh entropy in each
 * process.
 *
 * Outputs must not overlap inputs or contexts.
 */
#ifndef ZEL_CC_RNG_H
#define ZEL_CC_RNG_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hashdrbg.h"
#include "zel_cc/hmacdrbg.h"

/** Bytes that `RNGSEED_GetEntropyData` writes with the random device. */
#define ZEL_ENTROPY_LEN 874
/** Bytes that `RNGSEED_GetEntropyData` writes without the random device. */
#define ZEL_ENTROPY_LEN_WITHOUT_DEVICE 618
/** Entropy count that `RNGSEED_GetEntropyData` reports with the random device. */
#define ZEL_ENTROPY_COUNT 269
/** Entropy count that `RNGSEED_GetEntropyData` reports without the random device. */
#define ZEL_ENTROPY_COUNT_WITHOUT_DEVICE 13

/** Requests that a context serves before it reseeds by itself; set at instantiation. */
#define ZEL_DRBG_RESEED_INTERVAL 1048576

/** The hash of a DRBG, as the instantiating functions take it. */
enum ZEL_DRBG_HASH {
  /** SHA-224. */
  ZEL_DRBG_SHA224 = 0,
  /** SHA-256. */
  ZEL_DRBG_SHA256 = 1,
  /** SHA-384. */
  ZEL_DRBG_SHA384 = 2,
  /** SHA-512. */
  ZEL_DRBG_SHA512 = 3
};

ZEL_BEGIN_DECLS

/**
 * Collects raw entropy from the system, in this order and in host byte order: 256 bytes of
 * "/dev/urandom"; time, process id (8 bytes each); a word that depends on heap addresses (4); user
 * id, group id, session id, microseconds of the clock (8 each); the `struct stat` of "/" (144); the
 * host name (32); the `struct utsname` (390).
 *
 * If the device cannot be opened, or does not give all of its 256 bytes, the rest follows from
 * offset 0 and `entropy` is the smaller count; that is not an error. Works in every module state.
 *
 * @param[out] buf      [#ZEL_ENTROPY_LEN] bytes, of which `len` are written
 * @param[out] len      bytes written: #ZEL_ENTROPY_LEN, or #ZEL_ENTROPY_LEN_WITHOUT_DEVICE
 * @param[out] entropy  #ZEL_ENTROPY_COUNT, or #ZEL_ENTROPY_COUNT_WITHOUT_DEVICE
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetEntropyData(uint8_t *buf, uint32_t *len, int32_t *entropy);

/**
 * Collects entropy and condenses it with SHA-224 into a seed. Works in every module state.
 *
 * @param[out] out      [bits / 8, rounded up] bytes
 * @param[out] out_len  bytes written
 * @param[in]  bits     seed length in bits; 0 writes no bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetSeed(uint8_t *out, uint32_t *out_len, uint32_t bits);

/**
 * Collects entropy and condenses it with HAS-160 into a seed key. Works in every module state.
 *
 * @param[out] out      [bits / 8, rounded up] bytes
 * @param[out] out_len  bytes written
 * @param[in]  bits     seed length in bits; 0 writes no bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  null argument; nothing touched
 */
ZEL_API int32_t RNGSEED_GetSeedKey(uint8_t *out, uint32_t *out_len, uint32_t bits);

/**
 * Advances a process-wide counter by `b` and turns it into a number that depends on where the heap
 * would place a block of up to 252 bytes. A weak source, one of many in the collector.
 *
 * @param[in] b  0 to 255
 * @return the low 32 bits of the address plus an offset
 */
ZEL_API uint32_t RNGSEED_GetRandomMemoryAddr(int32_t b);

ZEL_END_DECLS

#endif
