/**
 * @file
 * The interface of libzel_cc-3.2: the one header that programs include.
 */
#ifndef ZEL_CC_H
#define ZEL_CC_H

#include "zel_cc/base.h"
#include "zel_cc/bcipher.h"
#include "zel_cc/bcipher_auth.h"
#include "zel_cc/bcipher_file.h"
#include "zel_cc/ciphers.h"
#include "zel_cc/dsa.h"
#include "zel_cc/errors.h"
#include "zel_cc/hash.h"
#include "zel_cc/hashdrbg.h"
#include "zel_cc/hmac.h"
#include "zel_cc/hmacdrbg.h"
#include "zel_cc/legacy_rng.h"
#include "zel_cc/integrity.h"
#include "zel_cc/kcdsa.h"
#include "zel_cc/known_answer.h"
#include "zel_cc/keyshare.h"
#include "zel_cc/mac.h"
#include "zel_cc/mint.h"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"
#include "zel_cc/mint_rand.h"
#include "zel_cc/pkcrypt.h"
#include "zel_cc/prime.h"
#include "zel_cc/rc4.h"
#include "zel_cc/rng.h"
#include "zel_cc/rsa.h"
#include "zel_cc/rsa20.h"
#include "zel_cc/rsa_key.h"
#include "zel_cc/rsa_oaep.h"
#include "zel_cc/selftest.h"
#include "zel_cc/state.h"

#endif
