/* rand() and srand() over the kernel's generator: see strong_rand.h. ISO C, section 7.22.2. */
#define _GNU_SOURCE /* RTLD_DEFAULT */
#include "strong_rand.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/random.h>

_Static_assert(RAND_MAX == 0x7fffffff, "31 bits a draw");

__attribute__((visibility("default"))) int rand(void) {
  unsigned bits = 0;
  ssize_t got;
  do {
    got = getrandom(&bits, sizeof bits, 0);
  } while (got < 0 && errno == EINTR);
  if (got != (ssize_t)sizeof bits) abort();
  return (int)(bits & RAND_MAX);
}

__attribute__((visibility("default"))) void srand(unsigned seed) { (void)seed; }

/* Whether the dynamic linker finds `ours` under that name. */
static int finds(const char *name, const void *ours) { return dlsym(RTLD_DEFAULT, name) == ours; }

int zel_strong_rand_in_force(void) {
  int (*draw)(void) = rand;
  void (*plant)(unsigned) = srand;
  const void *draw_address;
  const void *plant_address;
  memcpy(&draw_address, &draw, sizeof draw_address);
  memcpy(&plant_address, &plant, sizeof plant_address);
  return finds("rand", draw_address) && finds("srand", plant_address);
}
