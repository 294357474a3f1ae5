/* An application that links the strong rand object: what the library draws cannot be seeded. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zel_cc.h>

#include "strong_rand.h"

static int fail(const char *what) {
  fprintf(stderr, "strong rand: %s\n", what);
  return 1;
}

int main(void) {
  MINT first, second;
  int i, all = 0, any = 0;
  if (!zel_strong_rand_in_force()) return fail("not in force");
  srand(1);
  MINT_Rand(&first, 128);
  srand(1);
  MINT_Rand(&second, 128);
  if (memcmp(first.words, second.words, 16) == 0) return fail("the library's draws repeat");
  for (i = 0, all = RAND_MAX; i < 200; ++i) {
    const int draw = rand();
    if (draw < 0) return fail("negative");
    all &= draw;
    any |= draw;
  }
  if (all != 0 || any != RAND_MAX) return fail("some bit never changes");
  return 0;
}
