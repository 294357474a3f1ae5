/* Arithmetic with big integers: RSA in a nutshell, with numbers that are far too small to protect
 * anything. Build: cc bigint.c $(pkg-config --cflags --libs zel_cc) -o bigint
 */
#include <stdio.h>
#include <zel_cc.h>

/* Says what went wrong; the library's codes have texts. */
static int failed(const char *what, int32_t code) {
  fprintf(stderr, "%s: %s\n", what, zel_error_text(code));
  return 1;
}

int main(void) {
  MINT p, q, n, p1, q1, common, lambda, e, d, message, cipher, again, rest;
  int32_t code;

  /* Two primes, 2^89 - 1 and 2^107 - 1: built from bits, and from digits. */
  MINT_SetBy2ExpN(&p, 89);
  MINT_SubInteger(&p, &p, 1);
  code = MINT_SetByHexString(&q, "7ffffffffffffffffffffffffff");
  if (code != ZEL_OK) return failed("reading q", code);
  MINT_Mult(&n, &p, &q);
  MINT_PrintInHexString("modulus   ", &n);
  printf("          %u bits\n", (unsigned)MINT_GetBitLength(&n));

  /* lambda = (p - 1)(q - 1) / gcd(p - 1, q - 1), and d with d * e = 1 modulo lambda. */
  MINT_SubInteger(&p1, &p, 1);
  MINT_SubInteger(&q1, &q, 1);
  MINT_BinGCD(&common, &p1, &q1);
  MINT_Mult(&lambda, &p1, &q1);
  code = MINT_Div(&lambda, &rest, &lambda, &common); /* the quotient may be the dividend */
  if (code != ZEL_OK) return failed("dividing", code);
  MINT_SetByInteger(&e, 65537);
  code = MINT_Inverse(&d, &e, &lambda);
  if (code != ZEL_OK) return failed("inverting e", code); /* ZEL_ERR_NO_INVERSE: take another e */
  MINT_PrintInHexString("exponent  ", &d);

  /* Text is a number too. Encrypt with e, decrypt with d. */
  MINT_SetByByteArray(&message, (const uint8_t *)"big integers", 12);
  code = MINT_ExpWin(&cipher, &message, &e, &n, 4);
  if (code != ZEL_OK) return failed("encrypting", code);
  MINT_PrintInHexString("encrypted ", &cipher);
  code = MINT_mont_exp_mod(&again, &cipher, &d, &n); /* constant time: d is a secret */
  if (code != ZEL_OK) return failed("decrypting", code);
  MINT_PrintInHexString("decrypted ", &again);

  /* What was secret is destroyed. Note that this reseeds rand(). */
  MINT_ClearSecurely(&d);
  if (MINT_Compare(&message, &again) != 0) {
    fprintf(stderr, "the message did not survive\n");
    return 1;
  }
  puts("the same message");
  return 0;
}
