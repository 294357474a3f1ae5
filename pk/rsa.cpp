// The RSA schemes of PKCS #1 v2.1 (RFC 8017): their descriptors.
#include "zel_cc/rsa.h"

#include "pk/algorithms.hpp"
#include "zel_cc/rsa_key.h"
#include "zel_cc/rsa_oaep.h"

extern "C" {

constinit const PKCRYPT_ALGORITHM rsa = {
    .Sign = RSA_SSA_S,
    .Verify = RSA_SSA_V,
    .SignFile = RSA_SSA_S_File,
    .VerifyFile = RSA_SSA_V_File,
    .Encrypt = RSAES_OAEP_ENCRYPT21,
    .Decrypt = RSAES_OAEP_DECRYPT21,
    .GenParam = nullptr,
    .GenKeyOfBits = RSA_GenKey,
    .CheckParam = nullptr,
    .CheckPlainKey = RSA_CheckKey,
    .CheckPlainKeyPair = RSA_CheckKeyPair,
    .PriKeySize = sizeof(RSA_PRIVATE_KEY),
    .PubKeySize = sizeof(RSA_PUBLIC_KEY),
    .ParamSize = 0,
    .SignatureSize = sizeof(MINT),
    .Type = PKCRYPT_TYPE_PLAIN,
    .zero = 0,
    .SignHash = RSA_SSA_S_Hash,
    .VerifyHash = RSA_SSA_V_Hash,
};
constinit const PKCRYPT_ALGORITHM rsa21 = {
    .Sign = RSA_SSA_PSS_S,
    .Verify = RSA_SSA_PSS_V,
    .SignFile = RSA_SSA_PSS_S_File,
    .VerifyFile = RSA_SSA_PSS_V_File,
    .Encrypt = RSAES_OAEP_ENCRYPT21,
    .Decrypt = RSAES_OAEP_DECRYPT21,
    .GenParam = nullptr,
    .GenKeyOfBits = RSA_GenKey,
    .CheckParam = nullptr,
    .CheckPlainKey = RSA_CheckKey,
    .CheckPlainKeyPair = RSA_CheckKeyPair,
    .PriKeySize = sizeof(RSA_PRIVATE_KEY),
    .PubKeySize = sizeof(RSA_PUBLIC_KEY),
    .ParamSize = 0,
    .SignatureSize = sizeof(MINT),
    .Type = PKCRYPT_TYPE_PLAIN,
    .zero = 0,
    .SignHash = RSA_SSA_PSS_S_Hash,
    .VerifyHash = RSA_SSA_PSS_V_Hash,
};

extern const PKCRYPT_ALGORITHM zel_own_rsa ZEL_HIDDEN_ALIAS("rsa");
extern const PKCRYPT_ALGORITHM zel_own_rsa21 ZEL_HIDDEN_ALIAS("rsa21");

}  // extern "C"
