// RSA key pairs over strong primes. RFC 8017, section 3; X9.31 for the shape of the primes.
#include "pk/rsa_key.hpp"

#include <algorithm>
#include <cstdio>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "mint/secret.hpp"
#include "mint/secret_crt.hpp"
#include "pk/rsa_primitive.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_rand.h"
#include "zel_cc/prime.h"
#include "zel_cc/rsa_key.h"
#include "zel_cc/selftest.h"

namespace zel::pk {
namespace {

/// Moduli that RSA_GenKey_Exact makes before it gives up.
constexpr int kExactTries = 1000;

std::uint32_t used(const MINT &a) noexcept {
  return std::min<std::uint32_t>(a.length, ZEL_MINT_WORDS);
}

/// Zeroes the words above the length: of what a generator leaves there nothing may get into a key.
void clear_above(MINT &a) noexcept { std::fill(a.words + used(a), a.words + ZEL_MINT_WORDS, 0U); }

/// Whether two secrets are equal; their lengths show.
bool equal_secret(const MINT &a, const MINT &b) noexcept {
  std::uint32_t difference = 0;
  for (std::uint32_t i = 0; i < ZEL_MINT_WORDS; ++i)
    difference |= (i < used(a) ? a.words[i] : 0) ^ (i < used(b) ? b.words[i] : 0);
  return ct::opaque(difference) == 0;
}

bool are_equal(const MINT &a, const MINT &b) noexcept { return MINT_Compare(&a, &b) == 0; }

bool is_coprime(const MINT &a, const MINT &b) noexcept {
  Wiped<MINT> gcd;
  MINT_BinGCD(&*gcd, &a, &b);
  MINT one;
  MINT_SetByInteger(&one, 1);
  return are_equal(*gcd, one);
}

/// p - 1, q - 1 and their least common multiple.
struct Orders {
  MINT p1, q1, lambda;
};

void take_orders(Orders &orders, const MINT &p, const MINT &q) noexcept {
  Wiped<MINT> gcd;
  Wiped<MINT> rest;
  MINT_SubInteger(&orders.p1, &p, 1);
  MINT_SubInteger(&orders.q1, &q, 1);
  MINT_BinGCD(&*gcd, &orders.p1, &orders.q1);
  MINT_Mult(&orders.lambda, &orders.p1, &orders.q1);
  MINT_Div(&orders.lambda, &*rest, &orders.lambda, &*gcd);
}

/// d mod (prime - 1), of the exponents of the halves.
void reduce_exponent(MINT &r, const MINT &d, const MINT &order) noexcept {
  r = d;
  r.length = used(d);
  MINT_ModClassic(&r, &order);
}

/// 1/q mod p, trimmed.
std::int32_t invert(MINT &r, const MINT &q, const MINT &p) noexcept {
  const std::int32_t status = mint::inverse_secret(r, q, p);
  if (status == ZEL_OK) MINT_RightShift(&r, 0);
  return status;
}

/// Fills in what follows from p, q and e. False when they do not make a key.
bool complete(RSA_PRIVATE_KEY &key) noexcept {
  Wiped<Orders> orders;
  MINT_Mult(&key.n, &key.p, &key.q);
  MINT_RightShift(&key.n, 0);
  take_orders(*orders, key.p, key.q);
  if (MINT_Inverse(&key.d, &key.e, &orders->lambda) != ZEL_OK) return false;
  reduce_exponent(key.dP, key.d, orders->p1);
  reduce_exponent(key.dQ, key.d, orders->q1);
  return invert(key.qInv, key.q, key.p) == ZEL_OK;
}

bool find_prime(MINT &prime, const MINT &e, std::uint32_t modulus_bits) noexcept {
  const std::uint32_t bits = modulus_bits / 2;
  const std::uint32_t factor_bits = modulus_bits / 4 - modulus_bits / 32;
  PRIME_GenerateStrongPrime(&prime, bits, bits, &e, factor_bits, factor_bits,
                            factor_bits - modulus_bits / 16);
  return prime.length != 0;
}

/// A key pair for the exponent in `key`. On failure nothing is left of it.
std::int32_t make_pair(RSA_PRIVATE_KEY &private_key, RSA_PUBLIC_KEY &public_key, const MINT &e,
                       std::uint32_t bits) noexcept {
  Wiped<RSA_PRIVATE_KEY> key;
  *key = {};
  key->e = e;
  if (!find_prime(key->p, e, bits) || !find_prime(key->q, e, bits) || !complete(*key)) {
    return ZEL_ERR_GENERIC;
  }
  for (MINT *const field : {&key->n, &key->d, &key->p, &key->q, &key->dP, &key->dQ, &key->qInv})
    clear_above(*field);
  private_key = *key;
  public_key = {key->n, key->e};
  return ZEL_OK;
}

/// Whether a modulus of this size fits a record.
bool is_possible(std::uint32_t bits) noexcept { return bits <= ZEL_MINT_BITS; }

std::int32_t generate_for(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key,
                          std::uint32_t bits, std::uint32_t e) noexcept {
  if (private_key == nullptr || public_key == nullptr || !is_possible(bits)) {
    return ZEL_ERR_GENERIC;
  }
  MINT exponent{};
  MINT_SetByInteger(&exponent, e);
  return with_wiped_stack<kStackDepth>(
      [&] { return make_pair(*private_key, *public_key, exponent, bits); });
}

bool has_prime_factors(const RSA_PRIVATE_KEY &key) noexcept {
  for (const MINT *const prime : {&key.p, &key.q}) {
    const std::uint32_t rounds = PRIME_SelectMRIter(MINT_GetBitLength(prime));
    if (PRIME_MRTest(prime, rounds) != 1) return false;
  }
  if (!mint::product_fits(key.p, key.q)) return false;
  Wiped<MINT> product;
  MINT_Mult(&*product, &key.p, &key.q);
  return are_equal(*product, key.n);
}

/// Whether the halves are those of d and of the primes.
bool has_matching_halves(const RSA_PRIVATE_KEY &key, const Orders &orders) noexcept {
  Wiped<MINT> x;
  reduce_exponent(*x, key.d, orders.p1);
  if (!equal_secret(*x, key.dP)) return false;
  reduce_exponent(*x, key.d, orders.q1);
  if (!equal_secret(*x, key.dQ)) return false;
  return invert(*x, key.q, key.p) == ZEL_OK && equal_secret(*x, key.qInv);
}

bool is_pair(const RSA_PRIVATE_KEY &key, const RSA_PUBLIC_KEY &open) noexcept {
  return are_equal(key.n, open.n) && are_equal(key.e, open.e);
}

bool is_valid(const RSA_PRIVATE_KEY &key, const RSA_PUBLIC_KEY &open) noexcept {
  if (!has_prime_factors(key)) return false;
  Wiped<Orders> orders;
  take_orders(*orders, key.p, key.q);
  if (!is_coprime(key.e, orders->p1) || !is_coprime(key.e, orders->q1) ||
      !is_coprime(key.e, orders->lambda)) {
    return false;
  }
  // Deliberate: d is compared with the exponents of the halves alone, not with e.
  return is_pair(key, open) && has_matching_halves(key, *orders);
}

}  // namespace

std::int32_t generate_default(void *private_key, void *public_key, std::uint32_t bits) noexcept {
  if (any_null(private_key, public_key) || !is_possible(bits)) return ZEL_ERR_GENERIC;
  // Deliberate: an exponent is drawn and thrown away; programs that seed rand() rely on the
  // sequence.
  Wiped<MINT> e;
  MINT_RandInit();
  MINT_Rand(&*e, bits / 4);
  constexpr std::uint32_t kFermat4 = 65537;
  return generate_for(static_cast<RSA_PRIVATE_KEY *>(private_key),
                      static_cast<RSA_PUBLIC_KEY *>(public_key), bits, kFermat4);
}

std::int32_t check_key(const void *private_key, const void *public_key) noexcept {
  if (any_null(private_key, public_key)) return ZEL_ERR_GENERIC;
  const auto &key = *static_cast<const RSA_PRIVATE_KEY *>(private_key);
  const auto &open = *static_cast<const RSA_PUBLIC_KEY *>(public_key);
  return with_wiped_stack<kStackDepth>([&] { return is_valid(key, open); }) ? ZEL_OK
                                                                            : ZEL_ERR_GENERIC;
}

std::int32_t check_pair(const void *private_key, const void *public_key) noexcept {
  if (any_null(private_key, public_key)) return ZEL_ERR_GENERIC;
  return is_pair(*static_cast<const RSA_PRIVATE_KEY *>(private_key),
                 *static_cast<const RSA_PUBLIC_KEY *>(public_key))
             ? ZEL_OK
             : ZEL_ERR_GENERIC;
}

}  // namespace zel::pk

using namespace zel;

extern "C" {

int32_t RSA_GenKey(void *private_key, void *public_key, uint32_t bits) {
  return pk::generate_default(private_key, public_key, bits);
}

int32_t RSA_GenKeyE(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key, uint32_t bits,
                    uint32_t e) {
  return pk::generate_for(private_key, public_key, bits, e);
}

int32_t RSA_GenKeyEx(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key, uint32_t bits,
                     uint32_t e) {
  int32_t status = pk::generate_for(private_key, public_key, bits, e);
  if (status != ZEL_OK) return status;
  status = CONDITIONAL_SELFTEST_KEYPAIR_RSAES_OAEP(private_key, public_key);
  if (status != ZEL_OK) return status;
  return CONDITIONAL_SELFTEST_KEYPAIR_RSASSA_PSS(private_key, public_key);
}

int32_t RSA_GenKey_Exact(RSA_PRIVATE_KEY *private_key, RSA_PUBLIC_KEY *public_key, uint32_t bits,
                         uint32_t e) {
  // Both primes have bits / 2 bits, rounded down: their product falls short of an odd number.
  if (bits % 2 != 0) return ZEL_ERR_GENERIC;
  for (int tries = 0; tries < pk::kExactTries; ++tries) {
    const int32_t status = RSA_GenKeyEx(private_key, public_key, bits, e);
    if (status != ZEL_OK) {
      std::printf("RSA_GenKeyEx failed!!  Error code = %d\n", status);
      return status;
    }
    if (MINT_GetBitLength(&private_key->n) == bits) return ZEL_OK;
  }
  wipe_object(*private_key);
  wipe_object(*public_key);
  return ZEL_ERR_GENERIC;
}

int32_t RSA_CheckKey(const void *private_key, const void *public_key) {
  return pk::check_key(private_key, public_key);
}

int32_t RSA_CheckKeyPair(const void *private_key, const void *public_key) {
  return pk::check_pair(private_key, public_key);
}

}  // extern "C"
