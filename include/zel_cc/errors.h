/**
 * @file
 * Every result code of the library. Codes are negative; 0 is success; positive results are lengths
 * or truth values where a function says so.
 */
#ifndef ZEL_CC_ERRORS_H
#define ZEL_CC_ERRORS_H

#include "zel_cc/base.h"

/** Result codes. The functions return them as `int32_t`. */
enum ZEL_ERROR {
  /** Success. */
  ZEL_OK = 0,
  /** Null argument, bad length or size, allocation or file failure, mismatch, repeated block. */
  ZEL_ERR_GENERIC = -1,
  /** A file cannot be opened. */
  ZEL_ERR_FILE_OPEN = -6,
  /** A file offset is negative. */
  ZEL_ERR_FILE_OFFSET = -7,
  /** An authentication tag does not match. */
  ZEL_ERR_TAG = -10,
  /** The module is in its error state; also the value of that state. */
  ZEL_ERR_ERROR_STATE = -98,
  /** Padding of a decrypted message invalid, or a DSA signature that does not verify. */
  ZEL_ERR_PADDING = -1001,
  /** The same code under the name that suits a DSA signature. */
  ZEL_ERR_DSA_VERIFY = -1001,
  /** Unknown mode of operation or padding method. */
  ZEL_ERR_MODE = -1002,
  /** CCM: tag length odd, below 4 or above 16 bytes. */
  ZEL_ERR_CCM_TAG_LEN = -1003,
  /** CCM: nonce length outside 7 to 13 bytes. */
  ZEL_ERR_CCM_NONCE_LEN = -1004,
  /** No modular inverse: the operands are not coprime. */
  ZEL_ERR_NO_INVERSE = -1011,
  /** A KCDSA signature does not verify. */
  ZEL_ERR_KCDSA_VERIFY = -1040,
  /** FIPS 186-2 generator over SHA-1: two equal blocks in succession; the module is in error. */
  ZEL_ERR_DSA_RNG_REPEAT = -1050,
  /** KCDSA generator over HAS-160: two equal blocks in succession; the module is in error. */
  ZEL_ERR_KCDSA_RNG_REPEAT = -1051,
  /** RSA: the signature representative is not smaller than the modulus. */
  ZEL_ERR_RSA_REPRESENTATIVE = -1090,
  /** RSA encryption: message too long for the modulus and the hash. */
  ZEL_ERR_RSA_MESSAGE_LEN = -1091,
  /** RSA decryption: ciphertext length is not the modulus length, or a decoding error. */
  ZEL_ERR_RSA_DECODE = -1092,
  /** RSASSA-PSS: the modulus is too small for the encoding. */
  ZEL_ERR_PSS_ENCODE = -1093,
  /** An RSASSA-PSS signature does not verify. */
  ZEL_ERR_PSS_VERIFY = -1094,
  /** RSAES-OAEP decryption: the modulus is too short for the hash. */
  ZEL_ERR_OAEP_MODULUS = -1095,
  /** RSASSA-PKCS1-v1_5: the encoding is impossible for the modulus. */
  ZEL_ERR_PKCS1_ENCODE = -1096,
  /** DRBG: unsupported hash or security strength. */
  ZEL_ERR_DRBG_HASH = -5282,
  /** DRBG: missing context, output buffer or length. */
  ZEL_ERR_DRBG_ARGUMENT = -5285,
  /** DRBG: strength above the context's, or prediction resistance that was not instantiated. */
  ZEL_ERR_DRBG_STRENGTH = -5286,
  /** DRBG: missing entropy input. */
  ZEL_ERR_DRBG_ENTROPY = -5288,
  /** Refused in the current module state. */
  ZEL_ERR_STATE = -9001,
  /** Non-approved algorithm in the verified service. */
  ZEL_ERR_APPROVED = -9002,
  /** Module integrity test failed. */
  ZEL_ERR_INTEGRITY = -9003,
  /** ARIA-128: known answer wrong. */
  ZEL_ERR_KAT_ARIA128 = -9102,
  /** ARIA-192: known answer wrong. */
  ZEL_ERR_KAT_ARIA192 = -9103,
  /** ARIA-256: known answer wrong. */
  ZEL_ERR_KAT_ARIA256 = -9104,
  /** SEED: known answer wrong. */
  ZEL_ERR_KAT_SEED = -9105,
  /** HAS-160: known answer wrong. */
  ZEL_ERR_KAT_HAS160 = -9121,
  /** SHA-1: known answer wrong. */
  ZEL_ERR_KAT_SHA1 = -9122,
  /** SHA-224: known answer wrong. */
  ZEL_ERR_KAT_SHA224 = -9123,
  /** SHA-256: known answer wrong. */
  ZEL_ERR_KAT_SHA256 = -9124,
  /** SHA-384: known answer wrong. */
  ZEL_ERR_KAT_SHA384 = -9125,
  /** SHA-512: known answer wrong. */
  ZEL_ERR_KAT_SHA512 = -9126,
  /** HMAC-HAS-160: known answer wrong. */
  ZEL_ERR_KAT_HMAC_HAS160 = -9141,
  /** HMAC-SHA-1: known answer wrong. */
  ZEL_ERR_KAT_HMAC_SHA1 = -9142,
  /** HMAC-SHA-224: known answer wrong. */
  ZEL_ERR_KAT_HMAC_SHA224 = -9143,
  /** HMAC-SHA-256: known answer wrong. */
  ZEL_ERR_KAT_HMAC_SHA256 = -9144,
  /** HMAC-SHA-384: known answer wrong. */
  ZEL_ERR_KAT_HMAC_SHA384 = -9145,
  /** HMAC-SHA-512: known answer wrong. */
  ZEL_ERR_KAT_HMAC_SHA512 = -9146,
  /** CMAC over ARIA-128: known answer wrong. */
  ZEL_ERR_KAT_CMAC_ARIA128 = -9147,
  /** CMAC over ARIA-192: known answer wrong. */
  ZEL_ERR_KAT_CMAC_ARIA192 = -9148,
  /** CMAC over ARIA-256: known answer wrong. */
  ZEL_ERR_KAT_CMAC_ARIA256 = -9149,
  /** CMAC over SEED: known answer wrong. */
  ZEL_ERR_KAT_CMAC_SEED = -9150,
  /** GCM over ARIA-128: known answer wrong. */
  ZEL_ERR_KAT_GCM_ARIA128 = -9151,
  /** GCM over ARIA-192: known answer wrong. */
  ZEL_ERR_KAT_GCM_ARIA192 = -9152,
  /** GCM over ARIA-256: known answer wrong. */
  ZEL_ERR_KAT_GCM_ARIA256 = -9153,
  /** GCM over SEED: known answer wrong. */
  ZEL_ERR_KAT_GCM_SEED = -9154,
  /** CCM over ARIA-128: known answer wrong. */
  ZEL_ERR_KAT_CCM_ARIA128 = -9155,
  /** CCM over ARIA-192: known answer wrong. */
  ZEL_ERR_KAT_CCM_ARIA192 = -9156,
  /** CCM over ARIA-256: known answer wrong. */
  ZEL_ERR_KAT_CCM_ARIA256 = -9157,
  /** CCM over SEED: known answer wrong. */
  ZEL_ERR_KAT_CCM_SEED = -9158,
  /** KCDSA key generator over HAS-160: known answer wrong. */
  ZEL_ERR_KAT_KCDSA_RNG = -9161,
  /** DSA key generator over SHA-1: known answer wrong. */
  ZEL_ERR_KAT_DSA_RNG = -9162,
  /** Health test of the entropy source failed. */
  ZEL_ERR_ENTROPY_HEALTH = -9165,
  /** DRBG: known answer wrong, or two successive output blocks equal. */
  ZEL_ERR_DRBG_TEST = -9166,
  /** RSAES-OAEP: known-answer or pairwise test failed. */
  ZEL_ERR_RSAES_OAEP_TEST = -9182,
  /** KCDSA: known-answer or pairwise test failed. */
  ZEL_ERR_KCDSA_TEST = -9201,
  /** RSASSA-PKCS1-v1_5: known-answer or pairwise test failed. */
  ZEL_ERR_RSASSA_PKCS1_TEST = -9203,
  /** RSASSA-PSS: known-answer or pairwise test failed. */
  ZEL_ERR_RSASSA_PSS_TEST = -9204,
  /** Key sharing, threshold three: modular inverse missing. */
  ZEL_ERR_SHARE3_INVERSE = -22092,
  /** Key sharing, threshold three: subtraction of shares failed. */
  ZEL_ERR_SHARE3_SUBTRACT = -22093,
  /** Key sharing, threshold three: fewer than three shares. */
  ZEL_ERR_SHARE3_TOO_FEW = -22094,
  /** Key sharing, threshold three: a number of shares outside 3 to 5. */
  ZEL_ERR_SHARE3_COUNT = -22095,
  /** Key sharing, threshold two: modular inverse missing. */
  ZEL_ERR_SHARE2_INVERSE = -22096,
  /** Key sharing, threshold two: subtraction of shares failed, or a share missing. */
  ZEL_ERR_SHARE2_SUBTRACT = -22097,
  /** Key sharing, threshold two: fewer than two shares. */
  ZEL_ERR_SHARE2_TOO_FEW = -22098,
  /** Key sharing, threshold two: a number of shares outside 2 to 5. */
  ZEL_ERR_SHARE2_COUNT = -22099
};

/** One code and its meaning, for `zel_error_text`. */
struct ZEL_ERROR_TEXT {
  int32_t code;     /**< a value of `enum ZEL_ERROR` */
  const char *text; /**< what it means, in a few words without a full stop */
};

/**
 * Says in a few English words what a result code means.
 *
 * @param[in] code  a result of any function of the library
 * @return a constant string; "done" for 0, "unknown code" for a negative code that no function
 *         returns, "a length or a truth value" for a positive one. Never null.
 */
static inline const char *zel_error_text(int32_t code) {
  static const struct ZEL_ERROR_TEXT texts[] = {
      {ZEL_OK, "done"},
      {ZEL_ERR_GENERIC,
       "null argument, bad length or size, allocation or file failure, mismatch, repeated block"},
      {ZEL_ERR_FILE_OPEN, "a file cannot be opened"},
      {ZEL_ERR_FILE_OFFSET, "a file offset is negative"},
      {ZEL_ERR_TAG, "an authentication tag does not match"},
      {ZEL_ERR_ERROR_STATE, "the module is in its error state; also the value of that state"},
      {ZEL_ERR_PADDING,
       "padding of a decrypted message invalid, or a DSA signature that does not verify"},
      {ZEL_ERR_MODE, "unknown mode of operation or padding method"},
      {ZEL_ERR_CCM_TAG_LEN, "CCM: tag length odd, below 4 or above 16 bytes"},
      {ZEL_ERR_CCM_NONCE_LEN, "CCM: nonce length outside 7 to 13 bytes"},
      {ZEL_ERR_NO_INVERSE, "no modular inverse: the operands are not coprime"},
      {ZEL_ERR_KCDSA_VERIFY, "a KCDSA signature does not verify"},
      {ZEL_ERR_DSA_RNG_REPEAT,
       "FIPS 186-2 generator over SHA-1: two equal blocks in succession; the module is in error"},
      {ZEL_ERR_KCDSA_RNG_REPEAT,
       "KCDSA generator over HAS-160: two equal blocks in succession; the module is in error"},
      {ZEL_ERR_RSA_REPRESENTATIVE,
       "RSA: the signature representative is not smaller than the modulus"},
      {ZEL_ERR_RSA_MESSAGE_LEN, "RSA encryption: message too long for the modulus and the hash"},
      {ZEL_ERR_RSA_DECODE,
       "RSA decryption: ciphertext length is not the modulus length, or a decoding error"},
      {ZEL_ERR_PSS_ENCODE, "RSASSA-PSS: the modulus is too small for the encoding"},
      {ZEL_ERR_PSS_VERIFY, "an RSASSA-PSS signature does not verify"},
      {ZEL_ERR_OAEP_MODULUS, "RSAES-OAEP decryption: the modulus is too short for the hash"},
      {ZEL_ERR_PKCS1_ENCODE, "RSASSA-PKCS1-v1_5: the encoding is impossible for the modulus"},
      {ZEL_ERR_DRBG_HASH, "DRBG: unsupported hash or security strength"},
      {ZEL_ERR_DRBG_ARGUMENT, "DRBG: missing context, output buffer or length"},
      {ZEL_ERR_DRBG_STRENGTH,
       "DRBG: strength above the context's, or prediction resistance that was not instantiated"},
      {ZEL_ERR_DRBG_ENTROPY, "DRBG: missing entropy input"},
      {ZEL_ERR_STATE, "refused in the current module state"},
      {ZEL_ERR_APPROVED, "non-approved algorithm in the verified service"},
      {ZEL_ERR_INTEGRITY, "module integrity test failed"},
      {ZEL_ERR_KAT_ARIA128, "ARIA-128: known answer wrong"},
      {ZEL_ERR_KAT_ARIA192, "ARIA-192: known answer wrong"},
      {ZEL_ERR_KAT_ARIA256, "ARIA-256: known answer wrong"},
      {ZEL_ERR_KAT_SEED, "SEED: known answer wrong"},
      {ZEL_ERR_KAT_HAS160, "HAS-160: known answer wrong"},
      {ZEL_ERR_KAT_SHA1, "SHA-1: known answer wrong"},
      {ZEL_ERR_KAT_SHA224, "SHA-224: known answer wrong"},
      {ZEL_ERR_KAT_SHA256, "SHA-256: known answer wrong"},
      {ZEL_ERR_KAT_SHA384, "SHA-384: known answer wrong"},
      {ZEL_ERR_KAT_SHA512, "SHA-512: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_HAS160, "HMAC-HAS-160: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_SHA1, "HMAC-SHA-1: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_SHA224, "HMAC-SHA-224: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_SHA256, "HMAC-SHA-256: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_SHA384, "HMAC-SHA-384: known answer wrong"},
      {ZEL_ERR_KAT_HMAC_SHA512, "HMAC-SHA-512: known answer wrong"},
      {ZEL_ERR_KAT_CMAC_ARIA128, "CMAC over ARIA-128: known answer wrong"},
      {ZEL_ERR_KAT_CMAC_ARIA192, "CMAC over ARIA-192: known answer wrong"},
      {ZEL_ERR_KAT_CMAC_ARIA256, "CMAC over ARIA-256: known answer wrong"},
      {ZEL_ERR_KAT_CMAC_SEED, "CMAC over SEED: known answer wrong"},
      {ZEL_ERR_KAT_GCM_ARIA128, "GCM over ARIA-128: known answer wrong"},
      {ZEL_ERR_KAT_GCM_ARIA192, "GCM over ARIA-192: known answer wrong"},
      {ZEL_ERR_KAT_GCM_ARIA256, "GCM over ARIA-256: known answer wrong"},
      {ZEL_ERR_KAT_GCM_SEED, "GCM over SEED: known answer wrong"},
      {ZEL_ERR_KAT_CCM_ARIA128, "CCM over ARIA-128: known answer wrong"},
      {ZEL_ERR_KAT_CCM_ARIA192, "CCM over ARIA-192: known answer wrong"},
      {ZEL_ERR_KAT_CCM_ARIA256, "CCM over ARIA-256: known answer wrong"},
      {ZEL_ERR_KAT_CCM_SEED, "CCM over SEED: known answer wrong"},
      {ZEL_ERR_KAT_KCDSA_RNG, "KCDSA key generator over HAS-160: known answer wrong"},
      {ZEL_ERR_KAT_DSA_RNG, "DSA key generator over SHA-1: known answer wrong"},
      {ZEL_ERR_ENTROPY_HEALTH, "health test of the entropy source failed"},
      {ZEL_ERR_DRBG_TEST, "DRBG: known answer wrong, or two successive output blocks equal"},
      {ZEL_ERR_RSAES_OAEP_TEST, "RSAES-OAEP: known-answer or pairwise test failed"},
      {ZEL_ERR_KCDSA_TEST, "KCDSA: known-answer or pairwise test failed"},
      {ZEL_ERR_RSASSA_PKCS1_TEST, "RSASSA-PKCS1-v1_5: known-answer or pairwise test failed"},
      {ZEL_ERR_RSASSA_PSS_TEST, "RSASSA-PSS: known-answer or pairwise test failed"},
      {ZEL_ERR_SHARE3_INVERSE, "key sharing, threshold three: modular inverse missing"},
      {ZEL_ERR_SHARE3_SUBTRACT, "key sharing, threshold three: subtraction of shares failed"},
      {ZEL_ERR_SHARE3_TOO_FEW, "key sharing, threshold three: fewer than three shares"},
      {ZEL_ERR_SHARE3_COUNT, "key sharing, threshold three: a number of shares outside 3 to 5"},
      {ZEL_ERR_SHARE2_INVERSE, "key sharing, threshold two: modular inverse missing"},
      {ZEL_ERR_SHARE2_SUBTRACT,
       "key sharing, threshold two: subtraction of shares failed, or a share missing"},
      {ZEL_ERR_SHARE2_TOO_FEW, "key sharing, threshold two: fewer than two shares"},
      {ZEL_ERR_SHARE2_COUNT, "key sharing, threshold two: a number of shares outside 2 to 5"},
  };
  size_t i;
  if (code > 0) return "a length or a truth value";
  for (i = 0; i < sizeof texts / sizeof texts[0]; ++i) {
    if (texts[i].code == code) return texts[i].text;
  }
  return "unknown code";
}

#endif
