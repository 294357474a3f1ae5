#include "tools/zel/key_check.hpp"

#include "tools/zel/der.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/key_objects.hpp"
#include "tools/zel/signature.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"

namespace zel::tool {
namespace {

constexpr std::uint32_t kOrderLeast = 160;
constexpr std::uint32_t kOrderMost = 512;
constexpr std::uint32_t kWindow = 4;

bool is_odd(const MINT &number) { return number.length != 0 && (number.words[0] & 1) != 0; }

bool is_above_one(const MINT &number) { return MINT_GetBitLength(&number) > 1; }

bool is_below(const MINT &a, const MINT &b) { return MINT_Compare(&a, &b) < 0; }

void require(bool good, const char *problem) {
  if (!good) throw Malformed(problem);
}

/// What the library says: a refusal by the module's state is no fault of the key.
void require_ok(const Key &key, int status, const char *problem) {
  if (status == ZEL_ERR_STATE || status == ZEL_ERR_APPROVED) {
    throw library_failure(name_of(key.type), status);
  }
  require(status == ZEL_OK, problem);
}

void check_modulus(const Key &key) {
  require(key.bits() >= kModulusLeast && key.bits() <= kModulusMost,
          "a modulus that is not of 512 to 4096 bits");
  require(is_odd(key[0]), "an even modulus");
}

void check_rsa(const Key &key) {
  check_modulus(key);
  require(is_odd(key[kE]) && is_above_one(key[kE]) && is_below(key[kE], key[kN]),
          "a public exponent that RSA does not have");
  if (!key.is_private()) return;
  for (std::size_t number = kD; number < kRsaNumbers; ++number) {
    require(key[number].length != 0 && is_below(key[number], key[kN]), "a number out of its range");
  }
  require(is_odd(key[kRsaP]) && is_odd(key[kRsaQ]), "a factor that is not a prime");
}

void check_group(const Key &key) {
  check_modulus(key);
  const std::uint32_t order_bits = MINT_GetBitLength(&key[kQ]);
  require(order_bits >= kOrderLeast && order_bits <= kOrderMost && order_bits < key.bits() &&
              is_odd(key[kQ]),
          "a subgroup that is not of 160 to 512 bits");
  require(is_above_one(key[kG]) && is_below(key[kG], key[kP]), "a generator out of its range");
  const KeyObjects objects(key, scheme_of(key.type));
  require_ok(key, PKCRYPT_CheckParam(objects.parameters()),
             "parameters that are not those of a group of prime order");
}

/// y is in the subgroup and not 1.
void check_public_number(const Key &key) {
  require(is_above_one(key[kY]) && is_below(key[kY], key[kP]), "a public number out of its range");
  MINT power{};
  require(MINT_ExpWin(&power, &key[kY], &key[kQ], &key[kP], kWindow) == ZEL_OK &&
              MINT_GetBitLength(&power) == 1,
          "a public number outside the subgroup");
}

/// g^x, for KCDSA g^(1/x): the inverse is x^(q - 2), since q is prime.
void complete(Key &key) {
  require(key[kX].length != 0 && is_below(key[kX], key[kQ]), "a private number out of its range");
  Wiped<MINT> exponent(key[kX]);
  int status = ZEL_OK;
  if (key.type == KeyType::kKcdsa) {
    MINT order_less_two{};
    MINT_SubInteger(&order_less_two, &key[kQ], 2);
    status = MINT_mont_exp_mod(&*exponent, &key[kX], &order_less_two, &key[kQ]);
  }
  MINT public_number{};
  if (status == ZEL_OK) {
    status = MINT_mont_exp_mod(&public_number, &key[kG], &*exponent, &key[kP]);
  }
  require(status == ZEL_OK && (key[kY].length == 0 || MINT_Compare(&key[kY], &public_number) == 0),
          "numbers that do not belong together");
  key[kY] = public_number;
}

void check_pair(const Key &key) {
  const KeyObjects objects(key, scheme_of(key.type));
  require_ok(key,
             PKCRYPT_CheckKey(objects.private_key(), objects.public_key(), objects.parameters()),
             "numbers that do not belong together");
  Bytes digest(sha256.digest_len, 0x5a);
  const SignatureMethod method{RsaPadding::kPkcs1, &sha256};
  require(verify_digest(key, method, digest, sign_digest(key, method, digest)),
          "a private key that does not fit its public key");
}

}  // namespace

void check_key(Key &key) {
  if (key.type == KeyType::kSymmetric) return;
  if (key.type == KeyType::kRsa) {
    check_rsa(key);
  } else {
    check_group(key);
    if (key.is_private()) complete(key);
    if (key.part != KeyPart::kParameters) check_public_number(key);
  }
  if (key.is_private()) check_pair(key);
}

}  // namespace zel::tool
