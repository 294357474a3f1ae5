// Powers with secret exponents, and the multiplication and reduction under them.
#include "mint/secret_exp.hpp"
#include "tests/ct/numbers.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

/// All words but the top one of the exponent and the modulus: their bit lengths are public.
void power(std::uint32_t n_len, std::uint32_t a_len, std::uint32_t e_len) {
  MINT n = number(n_len, 3), a = number(a_len, 4), e = number(e_len, 5), r;
  MINT want;
  MINT_ExpWin(&want, &a, &e, &n, 4);
  secret(a.words, sizeof a.words);
  secret(e.words, 4 * (e_len - 1));
  // The lowest word of the modulus shows that it is odd.
  if (n_len > 2) secret(n.words + 1, 4 * (n_len - 2));
  require(MINT_mont_exp_mod(&r, &a, &e, &n) == ZEL_OK, "status");
  open(r);
  require(MINT_Compare(&r, &want) == 0, "MINT_mont_exp_mod");
  open(a);
  secret(e.words, sizeof e.words);
  mint::SecretPower half{&r, &a, &e, &n, 32 * e_len};
  require(mint::power_secret(half) == ZEL_OK, "status");
  open(r);
  require(MINT_Compare(&r, &want) == 0, "power_secret");
  MINT other;
  mint::SecretPower other_half{&other, &a, &e, &n, 32 * e_len};
  require(mint::power_secret_two(half, other_half) == ZEL_OK, "status");
  open(other);
  require(MINT_Compare(&other, &want) == 0, "power_secret_two");
}

/// An exponent of 20 bits is taken bit by bit. Its bytes below the top one are the secret.
void short_power(std::uint32_t n_len) {
  const MINT n = number(n_len, 3);
  MINT a = number(n_len, 4), e = {1, {0xb5a6d}}, r, want;
  MINT_ExpWin(&want, &a, &e, &n, 4);
  secret(a.words, sizeof a.words);
  secret(e.words, 2);
  require(MINT_mont_exp_mod(&r, &a, &e, &n) == ZEL_OK, "status");
  open(r);
  require(MINT_Compare(&r, &want) == 0, "MINT_mont_exp_mod, short exponent");
  open(a);
  secret(e.words, sizeof e.words);
  require(mint::power_secret(r, a, e, n, 20) == ZEL_OK, "status");
  open(r);
  require(MINT_Compare(&r, &want) == 0, "power_secret, short exponent");
}

const Probe kPowers{"powers with a secret exponent", [] {
                      short_power(5);
                      short_power(16);
                      // Whole blocks, padded ones, odd words, every window.
                      power(32, 32, 32);
                      power(30, 30, 8);
                      power(5, 11, 5);
                      power(1, 1, 1);
                      power(7, 3, 2);
                      power(64, 65, 3);
                      power(130, 130, 1);
                    }};

/// a * b / R mod N by long division, and the inverse of R.
MINT over_r(const MINT &a, const MINT &b, const MINT_MONT_CTX &mont) {
  MINT r, product;
  MINT_SetBy2ExpN(&r, static_cast<std::int32_t>(mont.ri));
  MINT_Inverse(&r, &r, &mont.N);
  MINT_KMult(&product, &a, &b, 1);
  MINT_ModClassic(&product, &mont.N);
  MINT_KMult(&product, &product, &r, 1);
  MINT_ModClassic(&product, &mont.N);
  return product;
}

/// Ni = -1/N mod R, which MINT_from_mont takes.
void negated_inverse(MINT_MONT_CTX &mont) {
  MINT r;
  MINT_SetBy2ExpN(&r, static_cast<std::int32_t>(mont.ri));
  MINT_Inverse(&mont.Ni, &mont.N, &r);
  MINT_Sub(&mont.Ni, &r, &mont.Ni);
}

const Probe kMontgomery{"Montgomery multiplication and reduction", [] {
                          for (const std::uint32_t len : {1U, 5U, 32U, 65U}) {
                            const MINT n = number(len, 7);
                            MINT_MONT_CTX mont;
                            MINT_mont_set(&mont, &n);
                            MINT a = number(len, 8), b = number(len, 9), one, results[4];
                            a.words[len - 1] >>= 1;  // below N
                            b.words[len - 1] >>= 1;
                            MINT_SetByInteger(&one, 1);
                            negated_inverse(mont);
                            const MINT want[] = {over_r(a, b, mont), over_r(a, a, mont),
                                                 over_r(b, one, mont), over_r(a, one, mont)};
                            secret(a.words, sizeof a.words);
                            secret(b.words, sizeof b.words);
                            MINT_mont_mul_mod(&results[0], &a, &b, &mont);
                            MINT_mont_mul_mod(&results[1], &a, &a, &mont);
                            MINT_from_mont(&results[2], &b, &mont);
                            MINT_from_mont_word(&results[3], &a, &mont);
                            open(results);
                            for (int i = 0; i < 4; ++i)
                              require(MINT_Compare(&results[i], &want[i]) == 0, "Montgomery");
                          }
                        }};

const Probe kPublicPower{"MINT_ExpWin, which is for public values",
                         [] {
                           MINT n = number(16, 3), a = number(16, 4), e = number(5, 5), r;
                           secret(e.words, 4 * 4);
                           MINT_ExpWin(&r, &a, &e, &n, 4);
                         },
                         true};

}  // namespace
}  // namespace zel::test
