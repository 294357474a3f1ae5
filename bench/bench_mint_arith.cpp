// Products, quotients, divisors and inverses of big integers, beside GMP at both of its levels: mpz
// with records like ours, mpn with bare limbs and no room to find.
#include <memory>

#include "bench/bench.hpp"
#include "zel_cc.h"

#if ZEL_BENCH_GMP
#include "bench/gmp_number.hpp"
#endif

namespace zel::bench {
namespace {

constexpr std::size_t kBits[] = {256, 1024, 2048, 4096};

/// An odd number of exactly `bits` bits; another one for another salt.
MINT odd_number(std::size_t bits, std::uint8_t salt) {
  std::vector<std::uint8_t> bytes = message(bits / 8);
  for (std::uint8_t &byte : bytes)
    byte = static_cast<std::uint8_t>(byte * 31 + salt);
  bytes.front() |= 0x80;
  bytes.back() |= 1;
  MINT a;
  MINT_SetByByteArray(&a, bytes.data(), static_cast<std::int32_t>(bytes.size()));
  return a;
}

#if ZEL_BENCH_GMP
std::shared_ptr<GmpNumber> number(const MINT &a) { return std::make_shared<GmpNumber>(a); }
#endif

void products(std::size_t bits) {
  const std::string size = std::to_string(bits);
  const MINT a = odd_number(bits, 3);
  const MINT b = odd_number(bits, 5);
  operations({"mint", "Mult", size, "zel"},
             [a, b, r = MINT{}]() mutable { MINT_Mult(&r, &a, &b); });
  operations({"mint", "Square", size, "zel"}, [a, r = MINT{}]() mutable { MINT_Square(&r, &a); });
#if ZEL_BENCH_GMP
  const auto x = number(a);
  const auto y = number(b);
  const auto r = number(a);
  operations({"mint", "Mult", size, "gmp"}, [=] { mpz_mul(r->z, x->z, y->z); });
  operations({"mint", "Square", size, "gmp"}, [=] { mpz_mul(r->z, x->z, x->z); });
  operations({"mint", "Mult", size, "gmp-mpn"}, [=, room = std::vector<mp_limb_t>(128)]() mutable {
    mpn_mul_n(room.data(), x->limbs(), y->limbs(), x->size());
  });
  operations({"mint", "Square", size, "gmp-mpn"},
             [=, room = std::vector<mp_limb_t>(128)]() mutable {
               mpn_sqr(room.data(), x->limbs(), x->size());
             });
#endif
}

/// A dividend twice as long as the divisor.
void quotients(std::size_t bits) {
  const std::string size = std::to_string(2 * bits) + ":" + std::to_string(bits);
  const MINT a = odd_number(2 * bits, 3);
  const MINT b = odd_number(bits, 5);
  operations({"mint", "Div", size, "zel"},
             [a, b, q = MINT{}, r = MINT{}]() mutable { MINT_Div(&q, &r, &a, &b); });
  operations({"mint", "ModClassic", size, "zel"}, [a, b, r = MINT{}]() mutable {
    r = a;
    MINT_ModClassic(&r, &b);
  });
#if ZEL_BENCH_GMP
  const auto x = number(a);
  const auto y = number(b);
  const auto q = number(a);
  const auto r = number(a);
  operations({"mint", "Div", size, "gmp"}, [=] { mpz_tdiv_qr(q->z, r->z, x->z, y->z); });
  operations({"mint", "ModClassic", size, "gmp"}, [=] { mpz_tdiv_r(r->z, x->z, y->z); });
  operations({"mint", "Div", size, "gmp-mpn"}, [=, room = std::vector<mp_limb_t>(256)]() mutable {
    mpn_tdiv_qr(room.data(), room.data() + 128, 0, x->limbs(), x->size(), y->limbs(), y->size());
  });
#endif
}

void divisors(std::size_t bits) {
  const std::string size = std::to_string(bits);
  const MINT a = odd_number(bits, 3);
  MINT n = odd_number(bits, 5);
  MINT r;
  while (MINT_Inverse(&r, &a, &n) != ZEL_OK)
    MINT_AddInteger(&n, &n, 2);
  operations({"mint", "BinGCD", size, "zel"},
             [a, n, g = MINT{}]() mutable { MINT_BinGCD(&g, &a, &n); });
  operations({"mint", "Inverse", size, "zel"},
             [a, n, g = MINT{}]() mutable { MINT_Inverse(&g, &a, &n); });
#if ZEL_BENCH_GMP
  const auto x = number(a);
  const auto y = number(n);
  const auto g = number(a);
  operations({"mint", "BinGCD", size, "gmp"}, [=] { mpz_gcd(g->z, x->z, y->z); });
  operations({"mint", "Inverse", size, "gmp"}, [=] { mpz_invert(g->z, x->z, y->z); });
#endif
}

const Registration kArithmetic([] {
  for (const std::size_t bits : kBits)
    products(bits);
  for (const std::size_t bits : {256, 512, 1024, 2048})
    quotients(bits);
  for (const std::size_t bits : kBits)
    divisors(bits);
});

}  // namespace
}  // namespace zel::bench
