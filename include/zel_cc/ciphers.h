/**
 * @file
 * The block ciphers one by one: key schedule, encryption and decryption of a single block.
 *
 * These are what the descriptors of bcipher.h hold; most programs only use the descriptors. A
 * schedule may lie at any address. The entry points of the ciphers that are not approved do nothing
 * in the verified service: they leave schedule and block as they were.
 */
#ifndef ZEL_CC_CIPHERS_H
#define ZEL_CC_CIPHERS_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

ZEL_BEGIN_DECLS

/**
 * Expands the key of ARIA with a 128-bit key (KS X 1213, RFC 5794).
 *
 * @param[out] round_keys  [416] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 */
ZEL_API int32_t ARIA_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of ARIA with a 128-bit key (KS X 1213, RFC 5794) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `ARIA_MakeRoundKey`
 */
ZEL_API void ARIA_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of ARIA with a 128-bit key (KS X 1213, RFC 5794) in place.
 * @copydetails ARIA_EncryptBlock
 */
ZEL_API void ARIA_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of ARIA with a 192-bit key (KS X 1213, RFC 5794).
 *
 * @param[out] round_keys  [480] bytes, at any alignment
 * @param[in]  key         [24] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 */
ZEL_API int32_t ARIA192_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of ARIA with a 192-bit key (KS X 1213, RFC 5794) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `ARIA192_MakeRoundKey`
 */
ZEL_API void ARIA192_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of ARIA with a 192-bit key (KS X 1213, RFC 5794) in place.
 * @copydetails ARIA192_EncryptBlock
 */
ZEL_API void ARIA192_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of ARIA with a 256-bit key (KS X 1213, RFC 5794).
 *
 * @param[out] round_keys  [544] bytes, at any alignment
 * @param[in]  key         [32] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 */
ZEL_API int32_t ARIA256_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of ARIA with a 256-bit key (KS X 1213, RFC 5794) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `ARIA256_MakeRoundKey`
 */
ZEL_API void ARIA256_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of ARIA with a 256-bit key (KS X 1213, RFC 5794) in place.
 * @copydetails ARIA256_EncryptBlock
 */
ZEL_API void ARIA256_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of SEED (TTAS.KO-12.0004, RFC 4269).
 *
 * @param[out] round_keys  [128] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 */
ZEL_API int32_t SEED_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of SEED (TTAS.KO-12.0004, RFC 4269) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `SEED_MakeRoundKey`
 */
ZEL_API void SEED_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of SEED (TTAS.KO-12.0004, RFC 4269) in place.
 * @copydetails SEED_EncryptBlock
 */
ZEL_API void SEED_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of AES with a 128-bit key (FIPS 197).
 *
 * The schedule holds the words of FIPS 197, section 5.2, each as its four bytes, and after them, in
 * the same order, the words for the equivalent inverse cipher of section 5.3.5.
 *
 * @param[out] round_keys  [352] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RIJNDAEL_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of AES with a 128-bit key (FIPS 197) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `RIJNDAEL_MakeRoundKey`
 */
ZEL_API void RIJNDAEL_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of AES with a 128-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL_EncryptBlock
 */
ZEL_API void RIJNDAEL_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of AES with a 256-bit key (FIPS 197).
 *
 * The schedule holds the words of FIPS 197, section 5.2, each as its four bytes, and after them, in
 * the same order, the words for the equivalent inverse cipher of section 5.3.5.
 *
 * @param[out] round_keys  [480] bytes, at any alignment
 * @param[in]  key         [32] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RIJNDAEL256_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of AES with a 256-bit key (FIPS 197) in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `RIJNDAEL256_MakeRoundKey`
 */
ZEL_API void RIJNDAEL256_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of AES with a 256-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL256_EncryptBlock
 */
ZEL_API void RIJNDAEL256_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of AES with a 128-bit key (FIPS 197).
 *
 * Empty unless `Check_CPU_support_AES` answers 1; the schedule is that of `RIJNDAEL_MakeRoundKey`.
 *
 * @param[out] round_keys  [352] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  empty entry point; nothing touched
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RIJNDAEL_MakeRoundKey_AESNI(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of AES with a 128-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL_EncryptBlock
 */
ZEL_API void RIJNDAEL_EncryptBlock_AESNI(void *block, const void *round_keys);

/**
 * Deciphers one block of AES with a 128-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL_EncryptBlock_AESNI
 */
ZEL_API void RIJNDAEL_DecryptBlock_AESNI(void *block, const void *round_keys);

/**
 * Expands the key of AES with a 256-bit key (FIPS 197).
 *
 * Empty unless `Check_CPU_support_AES` answers 1; the schedule is that of
 * `RIJNDAEL256_MakeRoundKey`.
 *
 * @param[out] round_keys  [480] bytes, at any alignment
 * @param[in]  key         [32] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  empty entry point; nothing touched
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RIJNDAEL256_MakeRoundKey_AESNI(void *round_keys, const uint8_t *key,
                                               uint32_t key_len);

/**
 * Enciphers one block of AES with a 256-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL256_EncryptBlock
 */
ZEL_API void RIJNDAEL256_EncryptBlock_AESNI(void *block, const void *round_keys);

/**
 * Deciphers one block of AES with a 256-bit key (FIPS 197) in place.
 * @copydetails RIJNDAEL256_EncryptBlock_AESNI
 */
ZEL_API void RIJNDAEL256_DecryptBlock_AESNI(void *block, const void *round_keys);

/**
 * Tells whether the `_AESNI` entry points and the descriptors `aesni` and `aesni256` compute
 * anything: whether the library was built with ZEL_CC_AESNI and the processor has AES instructions.
 *
 * `rijndael` and `rijndael256` use the instructions by themselves, whatever the answer.
 *
 * @retval 1  they do
 * @retval 0  they are empty
 */
ZEL_API int32_t Check_CPU_support_AES(void);

/**
 * Expands the key of DES (FIPS 46-3).
 *
 * Parity bits are ignored.
 *
 * @param[out] round_keys  [128] bytes, at any alignment
 * @param[in]  key         [8] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t DES_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of DES (FIPS 46-3) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `DES_MakeRoundKey`
 */
ZEL_API void DES_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of DES (FIPS 46-3) in place.
 * @copydetails DES_EncryptBlock
 */
ZEL_API void DES_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of triple DES in the order encrypt, decrypt, encrypt (SP 800-67).
 *
 * 16 bytes are K1, K2, K1; 24 bytes are K1, K2, K3. Any other length silently gives the schedule of
 * 24 zero bytes.
 *
 * @param[out] round_keys  [384] bytes, at any alignment
 * @param[in]  key         [key_len] bytes
 * @param[in]  key_len     bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t TDES_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of triple DES in the order encrypt, decrypt, encrypt (SP 800-67) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `TDES_MakeRoundKey`
 */
ZEL_API void TDES_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of triple DES in the order encrypt, decrypt, encrypt (SP 800-67) in place.
 * @copydetails TDES_EncryptBlock
 */
ZEL_API void TDES_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of Blowfish (Schneier, 1993).
 *
 * The key counts in words of 4 bytes, of which 18 are used: bytes behind the last whole word do not
 * count, and fewer than 4 bytes give the schedule of a zero key.
 *
 * @param[out] round_keys  [4168] bytes, at any alignment
 * @param[in]  key         [key_len] bytes
 * @param[in]  key_len     bytes
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t BLOWFISH_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of Blowfish (Schneier, 1993) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `BLOWFISH_MakeRoundKey`
 */
ZEL_API void BLOWFISH_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of Blowfish (Schneier, 1993) in place.
 * @copydetails BLOWFISH_EncryptBlock
 */
ZEL_API void BLOWFISH_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of CAST-128 with a 128-bit key (RFC 2144).
 *
 * @param[out] round_keys  [128] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t CAST128_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of CAST-128 with a 128-bit key (RFC 2144) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `CAST128_MakeRoundKey`
 */
ZEL_API void CAST128_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of CAST-128 with a 128-bit key (RFC 2144) in place.
 * @copydetails CAST128_EncryptBlock
 */
ZEL_API void CAST128_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of IDEA.
 *
 * @param[out] round_keys  [224] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t IDEA_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of IDEA in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `IDEA_MakeRoundKey`
 */
ZEL_API void IDEA_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of IDEA in place.
 * @copydetails IDEA_EncryptBlock
 */
ZEL_API void IDEA_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of RC2 (RFC 2268).
 *
 * The length argument packs two numbers: the low 16 bits are the key length in bytes, where 0 and
 * more than 128 mean 128; the high 16 bits are the effective key length in bits, where 0 means 8
 * times the key length and more than 1024 means 1024.
 *
 * @param[out] round_keys  [128] bytes, at any alignment
 * @param[in]  key         [key length] bytes, 128 at most
 * @param[in]  key_len     key length and effective key length
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RC2_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of RC2 (RFC 2268) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `RC2_MakeRoundKey`
 */
ZEL_API void RC2_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of RC2 (RFC 2268) in place.
 * @copydetails RC2_EncryptBlock
 */
ZEL_API void RC2_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of RC5-32/12 (RFC 2040).
 *
 * An empty key is a zero word. Keys of more than 256 bytes, which the standard does not have, take
 * memory of their length.
 *
 * @param[out] round_keys  [104] bytes, at any alignment
 * @param[in]  key         [key_len] bytes
 * @param[in]  key_len     bytes, any number
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_GENERIC  no memory for a long key; nothing touched
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t RC5_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of RC5-32/12 (RFC 2040) in place.
 *
 * @param[in,out] block       [8] bytes
 * @param[in]     round_keys  from `RC5_MakeRoundKey`
 */
ZEL_API void RC5_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of RC5-32/12 (RFC 2040) in place.
 * @copydetails RC5_EncryptBlock
 */
ZEL_API void RC5_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of `tavo`, this library's own and unreviewed cipher (docs/tavo.md).
 *
 * @param[out] round_keys  [256] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t TAVO_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of `tavo` in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `TAVO_MakeRoundKey`
 */
ZEL_API void TAVO_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of `tavo` in place.
 * @copydetails TAVO_EncryptBlock
 */
ZEL_API void TAVO_DecryptBlock(void *block, const void *round_keys);

/**
 * Expands the key of `tavoold`, the older form of `tavo` (docs/tavo.md).
 *
 * @param[out] round_keys  [256] bytes, at any alignment
 * @param[in]  key         [16] bytes
 * @param[in]  key_len     not looked at
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_APPROVED verified service; nothing touched
 */
ZEL_API int32_t TAVOOLD_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len);

/**
 * Enciphers one block of `tavoold` in place.
 *
 * @param[in,out] block       [16] bytes
 * @param[in]     round_keys  from `TAVOOLD_MakeRoundKey`
 */
ZEL_API void TAVOOLD_EncryptBlock(void *block, const void *round_keys);

/**
 * Deciphers one block of `tavoold` in place.
 * @copydetails TAVOOLD_EncryptBlock
 */
ZEL_API void TAVOOLD_DecryptBlock(void *block, const void *round_keys);

/**
 * Pads a final message of `tavoold`: 1 to 16 bytes that each hold `len` mod 16.
 *
 * Nothing is padded where 32 bits cannot hold the padded length.
 *
 * @param[out] out  [len + 16] bytes; may equal `in`
 * @param[in]  in   [len] bytes
 * @param[in]  len  bytes
 * @return the padded length; 0 in the verified service, nothing touched
 */
ZEL_API uint32_t TAVOOLD_AddPadding(uint8_t *out, const uint8_t *in, uint32_t len);

/**
 * Undoes `TAVOOLD_AddPadding`: `len` - 16 + the last byte, which is not checked.
 *
 * @param[out] out  [len] bytes; may equal `in`
 * @param[in]  in   [len] bytes
 * @param[in]  len  bytes
 * @return the length without padding, never more than `len`; 0 for fewer than 16 bytes, and in the
 * verified service, nothing touched
 */
ZEL_API uint32_t TAVOOLD_RemovePadding(uint8_t *out, const uint8_t *in, uint32_t len);

ZEL_END_DECLS

#endif
