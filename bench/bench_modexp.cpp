// Modular exponentiation and primes, beside OpenSSL's BIGNUM and GMP.
//
// MINT_mont_exp_mod prepares its modulus in each call; OpenSSL is given a prepared one. The peers'
// functions are those for secret exponents where ours is, and those for public ones where ours is
// that. Rows of primes are means over so many calls and not the best of several: the number of
// candidates is chance.
#include <memory>

#include "base/cpu.hpp"
#include "bench/bench.hpp"
#include "zel_cc.h"

#if ZEL_BENCH_OPENSSL
#include <openssl/bn.h>
#endif
#if ZEL_BENCH_GMP
#include "bench/gmp_number.hpp"
#endif

namespace zel::bench {
namespace {

constexpr std::int64_t kPrimes = 100;

/// A number of exactly `bits` bits; another one for another salt.
MINT number(std::size_t bits, std::uint8_t salt, bool odd) {
  std::vector<std::uint8_t> bytes = message(bits / 8);
  for (std::uint8_t &byte : bytes)
    byte = static_cast<std::uint8_t>(byte * 29 + salt);
  bytes.front() |= 0x80;
  if (odd) bytes.back() |= 1;
  MINT a;
  MINT_SetByByteArray(&a, bytes.data(), static_cast<std::int32_t>(bytes.size()));
  return a;
}

struct Task {
  std::string operation, size;
  bool secret;
  MINT a, e, N;
};

void ours(const Task &task) {
  auto run = [task, r = MINT{}]() mutable {
    if (task.secret)
      MINT_mont_exp_mod(&r, &task.a, &task.e, &task.N);
    else
      MINT_ExpWin(&r, &task.a, &task.e, &task.N, 4);
  };
  operations({"modexp", task.operation, task.size, "zel"}, run);
  operations({"modexp", task.operation, task.size, "zel-portable"}, [run]() mutable {
    const std::uint32_t known = cpu::g_features.exchange(cpu::kAsked);
    run();
    cpu::g_features = known;
  });
}

#if ZEL_BENCH_OPENSSL
/// A number for OpenSSL, never freed: measurements live as long as the program.
BIGNUM *bignum(const MINT &a) {
  std::vector<std::uint8_t> bytes(ZEL_MINT_BYTES);
  std::uint32_t len = 0;
  MINT_WriteInByteArray(bytes.data(), &len, &a);
  return BN_bin2bn(bytes.data(), static_cast<int>(len), nullptr);
}

void openssl(const Task &task) {
  BN_CTX *const context = BN_CTX_new();
  BN_MONT_CTX *const mont = BN_MONT_CTX_new();
  BIGNUM *const a = bignum(task.a), *const e = bignum(task.e), *const N = bignum(task.N);
  BIGNUM *const r = BN_new();
  BN_MONT_CTX_set(mont, N, context);
  operations({"modexp", task.operation, task.size, "openssl"}, [=] {
    if (task.secret)
      BN_mod_exp_mont_consttime(r, a, e, N, context, mont);
    else
      BN_mod_exp_mont(r, a, e, N, context, mont);
  });
}
#endif

#if ZEL_BENCH_GMP
void gmp(const Task &task) {
  const auto a = std::make_shared<GmpNumber>(task.a), e = std::make_shared<GmpNumber>(task.e),
             N = std::make_shared<GmpNumber>(task.N), r = std::make_shared<GmpNumber>(task.N);
  operations({"modexp", task.operation, task.size, "gmp"}, [=] {
    if (task.secret)
      mpz_powm_sec(r->z, a->z, e->z, N->z);
    else
      mpz_powm(r->z, a->z, e->z, N->z);
  });
}
#endif

void powers(const Task &task) {
  ours(task);
#if ZEL_BENCH_OPENSSL
  openssl(task);
#endif
#if ZEL_BENCH_GMP
  gmp(task);
#endif
}

void primes() {
  mean({"prime", "GeneratePrime", "1024", "zel"}, kPrimes, [] {
    MINT p;
    PRIME_GeneratePrime(&p, 1024, 1024, nullptr);
  });
  mean({"prime", "GenerateStrongPrime", "1024", "zel"}, kPrimes, [] {
    MINT p;
    PRIME_GenerateStrongPrime(&p, 1024, 1024, nullptr, 448, 448, 320);
  });
  MINT prime;
  PRIME_GeneratePrime(&prime, 1024, 1024, nullptr);
  operations({"prime", "MRTest", "1024x4", "zel"}, [prime] { PRIME_MRTest(&prime, 4); });
  operations({"prime", "MRTest", "1024x64", "zel"}, [prime] { PRIME_MRTest(&prime, 64); });
#if ZEL_BENCH_OPENSSL
  // OpenSSL takes 64 iterations for 1024 bits, whoever asks.
  for (const char *const operation : {"GeneratePrime", "GenerateStrongPrime"}) {
    mean({"prime", operation, "1024", "openssl"}, kPrimes,
         [p = BN_new()] { BN_generate_prime_ex(p, 1024, 0, nullptr, nullptr, nullptr); });
  }
  for (const char *const size : {"1024x4", "1024x64"}) {
    operations({"prime", "MRTest", size, "openssl"}, [p = bignum(prime), context = BN_CTX_new()] {
      BN_check_prime(p, context, nullptr);
    });
  }
#endif
}

const Registration kModexp{[] {
  for (const std::size_t bits : {1024U, 2048U, 3072U, 4096U}) {
    const std::string size = std::to_string(bits);
    const MINT a = number(bits - 8, 3, false);
    const MINT N = number(bits, 5, true);
    powers({"mont_exp_mod", size, true, a, number(bits, 7, false), N});
    powers({"ExpWin", size + "e256", false, a, number(256, 7, false), N});
    powers({"ExpWin", size + "e17", false, a, {1, {65537}}, N});
  }
  primes();
}};

}  // namespace
}  // namespace zel::bench
