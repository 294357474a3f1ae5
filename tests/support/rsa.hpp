// RSA keys for tests: from vectors, and made by GMP of any size.
#pragma once

#include <map>
#include <string>

#include "tests/support/hashes.hpp"
#include "tests/support/mint.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace zel::test {

inline MINT integer(const Bytes &bytes) {
  MINT a = {};
  MINT_SetByByteArray(&a, bytes.data(), static_cast<std::int32_t>(bytes.size()));
  return a;
}

/// Big-endian bytes of a fixed width.
inline Bytes octets(const MINT &a, std::size_t len) {
  Bytes bytes(len);
  MINT_WriteLSNByteInByteArray(bytes.data(), static_cast<std::uint32_t>(len), &a);
  return bytes;
}

/// A key pair with the objects of the front around it.
struct RsaKey {
  RSA_PRIVATE_KEY pri{};
  RSA_PUBLIC_KEY pub{};

  std::uint32_t bits() const { return MINT_GetBitLength(&pub.n); }
  std::uint32_t len() const { return (bits() + 7) / 8; }
  PKCRYPT_KEY pri_of(const PKCRYPT_ALGORITHM &scheme) { return {&scheme, &pri}; }
  PKCRYPT_KEY pub_of(const PKCRYPT_ALGORITHM &scheme) { return {&scheme, &pub}; }
};

/// The key of two primes; what passes a record is lost from its modulus.
inline RsaKey key_of(const mpz_class &p, const mpz_class &q, const mpz_class &e = 65537) {
  RsaKey key;
  const mpz_class p1 = p - 1, q1 = q - 1;
  mpz_class lambda, d, inverse;
  mpz_lcm(lambda.get_mpz_t(), p1.get_mpz_t(), q1.get_mpz_t());
  mpz_invert(d.get_mpz_t(), e.get_mpz_t(), lambda.get_mpz_t());
  mpz_invert(inverse.get_mpz_t(), q.get_mpz_t(), p.get_mpz_t());
  const mpz_class n = p * q % (mpz_class(1) << ZEL_MINT_BITS);
  key.pri = {record(n), record(e),      record(d),      record(p),
             record(q), record(d % p1), record(d % q1), record(inverse)};
  key.pub = {key.pri.n, key.pri.e};
  return key;
}

/// A key whose modulus has exactly `bits` bits, the same in every run.
inline const RsaKey &key_of_bits(std::uint32_t bits, unsigned long e = 65537) {
  static std::map<std::pair<std::uint32_t, unsigned long>, RsaKey> keys;
  const auto [at, is_new] = keys.try_emplace({bits, e});
  if (!is_new) return at->second;
  gmp_randclass random(gmp_randinit_mt);
  random.seed(bits);
  const auto prime = [&](std::uint32_t prime_bits) {
    mpz_class p;
    do {
      p = random.get_z_bits(prime_bits);
      mpz_setbit(p.get_mpz_t(), prime_bits - 1);
      mpz_setbit(p.get_mpz_t(), prime_bits - 2);  // the product then has all of its bits
      mpz_nextprime(p.get_mpz_t(), p.get_mpz_t());
    } while (gcd(p - 1, mpz_class(e)) != 1);
    return p;
  };
  return at->second = key_of(prime(bits - bits / 2), prime(bits / 2), e);
}

/// A key as the vector files have it; the private half where there is one.
inline RsaKey key_of(const Vector &v) {
  RsaKey key;
  const auto get = [&v](const char *name) { return v.has(name) ? integer(v.bytes(name)) : MINT{}; };
  key.pri = {get("n"), get("e"), get("d"), get("p"), get("q"), get("dp"), get("dq"), get("qi")};
  key.pub = {key.pri.n, key.pri.e};
  return key;
}

inline const HASH_ALGORITHM *hash_named(const std::string &name) {
  for (const HashRow &row : kHashes) {
    if (name == row.name) return row.descriptor;
  }
  return nullptr;
}

}  // namespace zel::test
