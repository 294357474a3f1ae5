/**
 * @file
 * Public-key schemes: one interface over signature and encryption schemes, chosen by a descriptor.
 *
 * Objects hold parameters and keys as the scheme lays them out; the headers of the schemes have the
 * records. No function here takes a lock: an object that is being changed belongs to one thread at
 * a time, others may be shared.
 *
 * Objects go together when they are of the same descriptor, or each of `rsa` or `rsa21`: one RSA
 * key serves both.
 */
#ifndef ZEL_CC_PKCRYPT_H
#define ZEL_CC_PKCRYPT_H

#include <stdio.h>

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"

/** Length of a stream in the file operations: all that is left of it. */
#define ZEL_WHOLE_STREAM 0xFFFFFFFFU

/**
 * @name Shapes of the slots
 * `signature` is the body of a signature record; keys and parameters are the bare buffers. The
 * forms that end in EXTRA have one argument more.
 */
/** @{ */
/** Signs a message, or a hash value, in memory. */
typedef int32_t (*PKCRYPT_SIGN_FN)(void *signature, const uint8_t *message, uint32_t len,
                                   const void *key, const void *param, const HASH_ALGORITHM *hash);
/** The same with one argument more. */
typedef int32_t (*PKCRYPT_SIGN_EXTRA_FN)(void *signature, const uint8_t *message, uint32_t len,
                                         const void *key, const void *param,
                                         const HASH_ALGORITHM *hash, const void *extra);
/** Verifies a signature over a message, or a hash value, in memory. */
typedef int32_t (*PKCRYPT_VERIFY_FN)(const void *signature, const uint8_t *message, uint32_t len,
                                     const void *key, const void *param,
                                     const HASH_ALGORITHM *hash);
/** The same with one argument more. */
typedef int32_t (*PKCRYPT_VERIFY_EXTRA_FN)(const void *signature, const uint8_t *message,
                                           uint32_t len, const void *key, const void *param,
                                           const HASH_ALGORITHM *hash, const void *extra);
/** Signs what an open stream holds. */
typedef int32_t (*PKCRYPT_SIGN_FILE_FN)(void *signature, FILE *stream, uint32_t len,
                                        const void *key, const void *param,
                                        const HASH_ALGORITHM *hash);
/** The same with one argument more. */
typedef int32_t (*PKCRYPT_SIGN_FILE_EXTRA_FN)(void *signature, FILE *stream, uint32_t len,
                                              const void *key, const void *param,
                                              const HASH_ALGORITHM *hash, const void *extra);
/** Verifies a signature over what an open stream holds. */
typedef int32_t (*PKCRYPT_VERIFY_FILE_FN)(const void *signature, FILE *stream, uint32_t len,
                                          const void *key, const void *param,
                                          const HASH_ALGORITHM *hash);
/** The same with one argument more. */
typedef int32_t (*PKCRYPT_VERIFY_FILE_EXTRA_FN)(const void *signature, FILE *stream, uint32_t len,
                                                const void *key, const void *param,
                                                const HASH_ALGORITHM *hash, const void *extra);
/** Encrypts with a public key or decrypts with a private one. */
typedef int32_t (*PKCRYPT_CRYPT_FN)(uint8_t *out, uint32_t *out_len, const uint8_t *in,
                                    uint32_t in_len, const void *key, const void *param,
                                    const HASH_ALGORITHM *hash, const void *extra);
/** Generates domain parameters of two sizes in bits. */
typedef int32_t (*PKCRYPT_GEN_PARAM_FN)(void *param, uint32_t a_bits, uint32_t b_bits);
/** Generates a key pair for domain parameters. */
typedef int32_t (*PKCRYPT_GEN_KEY_FN)(void *private_key, void *public_key, const void *param);
/** Generates a key pair of a size in bits. */
typedef int32_t (*PKCRYPT_GEN_KEY_BITS_FN)(void *private_key, void *public_key, uint32_t bits);
/** Validates domain parameters. */
typedef int32_t (*PKCRYPT_CHECK_PARAM_FN)(const void *param);
/** Validates a key pair against domain parameters. */
typedef int32_t (*PKCRYPT_CHECK_KEY_FN)(const void *private_key, const void *public_key,
                                        const void *param);
/** Validates a key pair of a scheme without domain parameters. */
typedef int32_t (*PKCRYPT_CHECK_PAIR_FN)(const void *private_key, const void *public_key);
/** @} */

/** How the last argument of the signature operations reaches the scheme. */
enum PKCRYPT_TYPE {
  /** Not at all: the slots take six arguments. */
  PKCRYPT_TYPE_PLAIN = 0,
  /** As it is: the slots take seven arguments. */
  PKCRYPT_TYPE_EXTRA = 1,
  /** Signing takes the buffer of a public-key object; verifying takes six arguments. */
  PKCRYPT_TYPE_SIGNER_KEY = 2
};

/**
 * A public-key scheme: its sizes and entry points; an empty slot is null. The library compares
 * descriptors by address, so pass the exported objects themselves.
 *
 * `Type` says which member of a signature slot counts. A scheme with `ParamSize` 0 has no domain
 * parameters and fills `GenKeyOfBits`, `CheckPlainKey` and `CheckPlainKeyPair`; the others fill
 * `GenKey`, `CheckKey` and `CheckKeyPair`.
 */
typedef struct {
  union {
    PKCRYPT_SIGN_FN Sign;            /**< signs a message in memory */
    PKCRYPT_SIGN_EXTRA_FN SignExtra; /**< the same for types 1 and 2 */
  };
  union {
    PKCRYPT_VERIFY_FN Verify;            /**< verifies over a message in memory */
    PKCRYPT_VERIFY_EXTRA_FN VerifyExtra; /**< the same for type 1 */
  };
  union {
    PKCRYPT_SIGN_FILE_FN SignFile;            /**< signs what a stream holds */
    PKCRYPT_SIGN_FILE_EXTRA_FN SignFileExtra; /**< the same for types 1 and 2 */
  };
  union {
    PKCRYPT_VERIFY_FILE_FN VerifyFile;            /**< verifies over what a stream holds */
    PKCRYPT_VERIFY_FILE_EXTRA_FN VerifyFileExtra; /**< the same for type 1 */
  };
  PKCRYPT_CRYPT_FN Encrypt;      /**< encrypts with a public key */
  PKCRYPT_CRYPT_FN Decrypt;      /**< decrypts with a private key */
  PKCRYPT_GEN_PARAM_FN GenParam; /**< generates domain parameters */
  union {
    PKCRYPT_GEN_KEY_FN GenKey;            /**< generates a key pair for domain parameters */
    PKCRYPT_GEN_KEY_BITS_FN GenKeyOfBits; /**< generates a key pair of a size */
  };
  PKCRYPT_CHECK_PARAM_FN CheckParam; /**< validates domain parameters */
  union {
    PKCRYPT_CHECK_KEY_FN CheckKey;       /**< validates a key pair */
    PKCRYPT_CHECK_PAIR_FN CheckPlainKey; /**< the same without domain parameters */
  };
  union {
    PKCRYPT_CHECK_KEY_FN CheckKeyPair;       /**< checks that two keys belong together */
    PKCRYPT_CHECK_PAIR_FN CheckPlainKeyPair; /**< the same without domain parameters */
  };
  int32_t PriKeySize;    /**< bytes of a private-key buffer */
  int32_t PubKeySize;    /**< bytes of a public-key buffer */
  int32_t ParamSize;     /**< bytes of a parameter buffer; 0 without domain parameters */
  int32_t SignatureSize; /**< bytes of a signature body, for callers that allocate records */
  int32_t Type;          /**< one of `enum PKCRYPT_TYPE` */
  int32_t zero;          /**< 0 */
  union {
    PKCRYPT_SIGN_FN SignHash;            /**< signs a hash value */
    PKCRYPT_SIGN_EXTRA_FN SignHashExtra; /**< the same for types 1 and 2 */
  };
  union {
    PKCRYPT_VERIFY_FN VerifyHash;            /**< verifies over a hash value */
    PKCRYPT_VERIFY_EXTRA_FN VerifyHashExtra; /**< the same for type 1 */
  };
} PKCRYPT_ALGORITHM;
ZEL_STATIC_ASSERT(sizeof(PKCRYPT_ALGORITHM) == 128, "layout of PKCRYPT_ALGORITHM");

/** A parameter set, private key or public key. Made and released by the functions below. */
typedef struct {
  const PKCRYPT_ALGORITHM *desc; /**< the scheme; fixed at creation */
  void *buf;                     /**< owned; of the descriptor's size for this kind of object */
} PKCRYPT_KEY;
ZEL_STATIC_ASSERT(sizeof(PKCRYPT_KEY) == 16, "layout of PKCRYPT_KEY");

/**
 * The head of a signature record. The body of `SignatureSize` bytes follows at once; the caller
 * allocates both, as a record of the scheme's header.
 */
typedef struct {
  const PKCRYPT_ALGORITHM *desc; /**< set by signing; not looked at by verifying */
} PKCRYPT_SIGNATURE;
ZEL_STATIC_ASSERT(sizeof(PKCRYPT_SIGNATURE) == 8, "layout of PKCRYPT_SIGNATURE");

ZEL_BEGIN_DECLS

/** @name Objects */
/** @{ */

/**
 * Makes a parameter object, filled with zeros; for a scheme without parameters they are 16, which
 * encryption takes for an empty label. Release it with `PKCRYPT_DelParam`.
 *
 * @param[in] descriptor  the scheme
 * @return the object; null: the module is not serving, no descriptor or a negative size, no memory
 */
ZEL_API PKCRYPT_KEY *PKCRYPT_NewParam(const PKCRYPT_ALGORITHM *descriptor);

/**
 * Makes a private-key object, whose buffer is not initialised. Release it with
 * `PKCRYPT_DelPriKey`.
 *
 * @param[in] descriptor  the scheme
 * @return the object; null as of `PKCRYPT_NewParam`
 */
ZEL_API PKCRYPT_KEY *PKCRYPT_NewPriKey(const PKCRYPT_ALGORITHM *descriptor);

/**
 * Makes a public-key object, whose buffer is not initialised. Release it with `PKCRYPT_DelPubKey`.
 *
 * @param[in] descriptor  the scheme
 * @return the object; null as of `PKCRYPT_NewParam`
 */
ZEL_API PKCRYPT_KEY *PKCRYPT_NewPubKey(const PKCRYPT_ALGORITHM *descriptor);

/**
 * Releases a parameter object. Does nothing when the module is not serving or `param` is null.
 *
 * @param[in] param  from `PKCRYPT_NewParam`
 */
ZEL_API void PKCRYPT_DelParam(PKCRYPT_KEY *param);

/**
 * Releases a private-key object. It is not cleared: call `PKCRYPT_WipePriKey` first. Does nothing
 * when the module is not serving or `key` is null.
 *
 * @param[in] key  from `PKCRYPT_NewPriKey`
 */
ZEL_API void PKCRYPT_DelPriKey(PKCRYPT_KEY *key);

/**
 * Releases a public-key object. Does nothing when the module is not serving or `key` is null.
 *
 * @param[in] key  from `PKCRYPT_NewPubKey`
 */
ZEL_API void PKCRYPT_DelPubKey(PKCRYPT_KEY *key);

/**
 * Zeroes the buffer of a private key and keeps the object. Does nothing when the module is not
 * serving, or `key` or its buffer is null.
 *
 * @param[in,out] key  the object to clear
 */
ZEL_API void PKCRYPT_WipePriKey(PKCRYPT_KEY *key);

/** @} */
/** @name Parameters and keys */
/** @{ */

/**
 * Generates domain parameters.
 *
 * @param[in,out] param   parameter object to fill
 * @param[in]     a_bits  bits of the field prime
 * @param[in]     b_bits  bits of the group order
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null object, or a scheme without parameters; nothing touched
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_GenParam(PKCRYPT_KEY *param, uint32_t a_bits, uint32_t b_bits);

/**
 * Validates domain parameters.
 *
 * @param[in] param  parameter object
 * @retval ZEL_ERR_STATE    module not serving
 * @retval ZEL_ERR_GENERIC  null object, or a scheme without parameters
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_CheckParam(const PKCRYPT_KEY *param);

/**
 * Generates a key pair: for domain parameters, or of a size where the scheme has none.
 *
 * @param[in,out] private_key  object to fill
 * @param[in,out] public_key   object to fill
 * @param[in]     param        of the descriptor of `private_key` itself; null for a key of a size
 * @param[in]     bits         size, for RSA of the modulus; not looked at when `param` is given
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null object, objects that do not go together, parameters for a scheme
 *                          that has none or none for a scheme that needs them: nothing touched.
 *                          Neither parameters nor a size: the module is in its error state now
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_GenKey(PKCRYPT_KEY *private_key, PKCRYPT_KEY *public_key,
                               const PKCRYPT_KEY *param, uint32_t bits);

/**
 * Validates a key pair.
 *
 * @param[in] private_key  private key
 * @param[in] public_key   public key that goes with it
 * @param[in] param        domain parameters; null where the scheme has none
 * @retval ZEL_ERR_STATE    module not serving
 * @retval ZEL_ERR_GENERIC  null object, or objects that do not go together
 * @return otherwise the result of the scheme, #ZEL_OK for a valid pair
 */
ZEL_API int32_t PKCRYPT_CheckKey(const PKCRYPT_KEY *private_key, const PKCRYPT_KEY *public_key,
                                 const PKCRYPT_KEY *param);

/**
 * Checks that a private and a public key belong together.
 *
 * @param[in] private_key  private key
 * @param[in] public_key   public key
 * @param[in] param        domain parameters; null where the scheme has none
 * @retval ZEL_ERR_STATE    module not serving
 * @retval ZEL_ERR_GENERIC  null object, or objects that do not go together
 * @return otherwise the result of the scheme, #ZEL_OK for a pair
 */
ZEL_API int32_t PKCRYPT_CheckKeyPair(const PKCRYPT_KEY *private_key, const PKCRYPT_KEY *public_key,
                                     const PKCRYPT_KEY *param);

/** @} */
/** @name Signatures */
/** @{ */

/**
 * Signs a message in memory.
 *
 * @param[out] signature  signature record; its descriptor is set before the slot is looked at
 * @param[in]  message    [len] bytes
 * @param[in]  len        bytes
 * @param[in]  key        private key
 * @param[in]  param      domain parameters, or null
 * @param[in]  hash       hash algorithm
 * @param[in]  extra      `popkcdsa`: bytes that are hashed before the message. `p_kcdsa1`: the
 *                        public-key object of the signer. Otherwise not used
 * @retval ZEL_OK           signed
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_Sign(PKCRYPT_SIGNATURE *signature, const uint8_t *message, uint32_t len,
                             const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                             const HASH_ALGORITHM *hash, const void *extra);

/**
 * Signs a hash value.
 *
 * @param[out] signature  signature record; its descriptor is set before the slot is looked at
 * @param[in]  digest     [len] bytes, the hash value of the message
 * @param[in]  len        bytes
 * @param[in]  key        private key
 * @param[in]  param      domain parameters, or null
 * @param[in]  hash       hash algorithm
 * @param[in]  extra      `popkcdsa`: bytes that are hashed before the message. `p_kcdsa1`: the
 *                        public-key object of the signer. Otherwise not used
 * @retval ZEL_OK           signed
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_SignHash(PKCRYPT_SIGNATURE *signature, const uint8_t *digest, uint32_t len,
                                 const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                 const HASH_ALGORITHM *hash, const void *extra);

/**
 * Signs what an open stream holds.
 *
 * @param[out] signature  signature record; its descriptor is set before the slot is looked at
 * @param[in]  stream     open where the message begins; it stays open, behind what was read
 * @param[in]  len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in]  key        private key
 * @param[in]  param      domain parameters, or null
 * @param[in]  hash       hash algorithm
 * @param[in]  extra      `popkcdsa`: bytes that are hashed before the message. `p_kcdsa1`: the
 *                        public-key object of the signer. Otherwise not used
 * @retval ZEL_OK           signed
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_SignFile(PKCRYPT_SIGNATURE *signature, FILE *stream, uint32_t len,
                                 const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                 const HASH_ALGORITHM *hash, const void *extra);

/**
 * Verifies a signature over a message in memory.
 *
 * @param[in] signature  signature record; its descriptor is not looked at
 * @param[in] message    [len] bytes
 * @param[in] len        bytes
 * @param[in] key        public key
 * @param[in] param      domain parameters, or null
 * @param[in] hash       hash algorithm
 * @param[in] extra      `popkcdsa`: bytes that are hashed before the message. Otherwise not used
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_Verify(const PKCRYPT_SIGNATURE *signature, const uint8_t *message,
                               uint32_t len, const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                               const HASH_ALGORITHM *hash, const void *extra);

/**
 * Verifies a signature over a hash value.
 *
 * @param[in] signature  signature record; its descriptor is not looked at
 * @param[in] digest     [len] bytes, the hash value of the message
 * @param[in] len        bytes
 * @param[in] key        public key
 * @param[in] param      domain parameters, or null
 * @param[in] hash       hash algorithm
 * @param[in] extra      `popkcdsa`: bytes that are hashed before the message. Otherwise not used
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_VerifyHash(const PKCRYPT_SIGNATURE *signature, const uint8_t *digest,
                                   uint32_t len, const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                   const HASH_ALGORITHM *hash, const void *extra);

/**
 * Verifies a signature over what an open stream holds.
 *
 * @param[in] signature  signature record; its descriptor is not looked at
 * @param[in] stream     open where the message begins; it stays open, behind what was read
 * @param[in] len        bytes to read, #ZEL_WHOLE_STREAM for all that is left; fewer are no error
 * @param[in] key        public key
 * @param[in] param      domain parameters, or null
 * @param[in] hash       hash algorithm
 * @param[in] extra      `popkcdsa`: bytes that are hashed before the message. Otherwise not used
 * @retval ZEL_OK           the signature verifies
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without this
 *                          operation
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_VerifyFile(const PKCRYPT_SIGNATURE *signature, FILE *stream, uint32_t len,
                                   const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                   const HASH_ALGORITHM *hash, const void *extra);

/** @} */
/** @name Encryption */
/** @{ */

/**
 * Encrypts with a public key.
 *
 * @param[out] out      ciphertext; the scheme says how long
 * @param[out] out_len  bytes written
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   bytes
 * @param[in]  key      public key
 * @param[in]  param    parameter object, or null. RSA: its buffer is the label record
 * @param[in]  hash     handed on to the scheme
 * @param[in]  extra    handed on to the scheme
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without
 *                          encryption; nothing touched
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_Encrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                const HASH_ALGORITHM *hash, const void *extra);

/**
 * Decrypts with a private key.
 *
 * @param[out] out      message; the scheme says how long at most
 * @param[out] out_len  bytes written
 * @param[in]  in       [in_len] bytes
 * @param[in]  in_len   bytes
 * @param[in]  key      private key
 * @param[in]  param    as of `PKCRYPT_Encrypt`
 * @param[in]  hash     handed on to the scheme
 * @param[in]  extra    handed on to the scheme
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, objects that do not go together, or a scheme without
 *                          encryption; nothing touched
 * @return otherwise the result of the scheme
 */
ZEL_API int32_t PKCRYPT_Decrypt(uint8_t *out, uint32_t *out_len, const uint8_t *in, uint32_t in_len,
                                const PKCRYPT_KEY *key, const PKCRYPT_KEY *param,
                                const HASH_ALGORITHM *hash, const void *extra);

/** @} */

ZEL_END_DECLS

#endif
