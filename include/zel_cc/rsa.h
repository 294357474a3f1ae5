/**
 * @file
 * RSA: signatures RSASSA-PKCS1-v1_5 (`rsa`) and RSASSA-PSS (`rsa21`), encryption RSAES-OAEP (both),
 * keys of up to 4160 bits. PKCS #1 v2.1 (RFC 3447, RFC 8017).
 */
#ifndef ZEL_CC_RSA_H
#define ZEL_CC_RSA_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"
#include "zel_cc/mint.h"
#include "zel_cc/pkcrypt.h"

/** A private key, as the buffer of a private-key object holds it. */
typedef struct {
  MINT n;    /**< modulus */
  MINT e;    /**< public exponent */
  MINT d;    /**< private exponent */
  MINT p;    /**< first prime */
  MINT q;    /**< second prime */
  MINT dP;   /**< d mod (p - 1) */
  MINT dQ;   /**< d mod (q - 1) */
  MINT qInv; /**< 1/q mod p */
} RSA_PRIVATE_KEY;
ZEL_STATIC_ASSERT(sizeof(RSA_PRIVATE_KEY) == 4192, "layout of RSA_PRIVATE_KEY");

/** A public key, as the buffer of a public-key object holds it. */
typedef struct {
  MINT n; /**< modulus */
  MINT e; /**< public exponent */
} RSA_PUBLIC_KEY;
ZEL_STATIC_ASSERT(sizeof(RSA_PUBLIC_KEY) == 1048, "layout of RSA_PUBLIC_KEY");

/** A signature record of the RSA schemes. */
typedef struct {
  PKCRYPT_SIGNATURE head; /**< its descriptor */
  MINT s;                 /**< the body: the signature representative */
} RSA_SIGNATURE;
ZEL_STATIC_ASSERT(offsetof(RSA_SIGNATURE, s) == sizeof(PKCRYPT_SIGNATURE), "body behind the head");

/** The label of OAEP. In the encryption functions it stands in the place of domain parameters. */
typedef struct {
  const uint8_t *label; /**< [labelLen] bytes */
  uint32_t labelLen;    /**< bytes */
} RSA_OAEP_LABEL;
ZEL_STATIC_ASSERT(sizeof(RSA_OAEP_LABEL) == 16, "layout of RSA_OAEP_LABEL");

ZEL_BEGIN_DECLS

/** RSASSA-PKCS1-v1_5 signatures, RSAES-OAEP encryption. */
extern ZEL_API const PKCRYPT_ALGORITHM rsa;
/** RSASSA-PSS signatures, RSAES-OAEP encryption; the same keys. */
extern ZEL_API const PKCRYPT_ALGORITHM rsa21;

ZEL_END_DECLS

#endif
