// Big integers: what the private operations compute with secrets.
#include "mint/secret.hpp"
#include "tests/ct/numbers.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

void inverse(std::uint32_t n_len, std::uint32_t a_len) {
  MINT n = number(n_len, 3), a = number(a_len, 4), r;
  const MINT plain = a;
  MINT want;
  const std::int32_t exists = MINT_Inverse(&want, &plain, &n);
  secret(a.words, sizeof a.words);
  std::int32_t status = mint::inverse_secret(r, a, n);
  open(status);
  open(r);
  require(status == exists, "whether there is an inverse");
  require(status != ZEL_OK || MINT_Compare(&r, &want) == 0, "inverse of a secret");
}

const Probe kInverse{"inverse_secret", [] {
                       for (const std::uint32_t len : {1U, 2U, 5U, 8U, 64U, 128U, 130U})
                         inverse(len, len);
                       inverse(5, 8);
                       inverse(8, 5);
                     }};
const Probe kPublicInverse{"MINT_Inverse, which is for public values",
                           [] {
                             MINT n = number(8, 3), a = number(8, 4), r;
                             secret(a.words, sizeof a.words);
                             MINT_Inverse(&r, &a, &n);
                           },
                           true};

void divides(const MINT &product, const MINT &divisor, const MINT &want) {
  MINT q, rest;
  MINT_Div(&q, &rest, &product, &divisor);
  require(MINT_Compare(&q, &want) == 0 && MINT_GetBitLength(&rest) == 0, "a product");
}

const Probe kProducts{"MINT_Mult and MINT_Square", [] {
                        for (const std::uint32_t len : {1U, 5U, 16U, 64U, 65U}) {
                          MINT a = number(len, 5), b = number(len, 6), product, square;
                          const MINT x = a, y = b;
                          secret(a.words, sizeof a.words);
                          secret(b.words, sizeof b.words);
                          MINT_Mult(&product, &a, &b);
                          MINT_Square(&square, &b);
                          MINT_Mult(&a, &a, &b);
                          open(a);
                          open(product);
                          open(square);
                          require(MINT_Compare(&a, &product) == 0, "MINT_Mult in place");
                          divides(product, x, y);
                          divides(square, y, y);
                        }
                      }};

}  // namespace
}  // namespace zel::test
