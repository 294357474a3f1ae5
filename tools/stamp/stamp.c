/* zel_stamp LIBRARY: writes the companion file that SELFTEST_VerifyModuleHMAC compares a library
 * with. The build and the installation run it. A file whose length is a multiple of 65,536 bytes
 * could never verify: it is made longer by a byte, which no loader looks at. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zel_cc.h"

enum { kChunk = 65536 };

static int fail(const char *path) {
  fprintf(stderr, "zel_stamp: ");
  perror(path);
  return EXIT_FAILURE;
}

/* Makes an unlucky length longer; returns 0 when that was not possible. */
static int set_length(const char *path) {
  FILE *file = fopen(path, "r+b");
  int done = file != NULL && fseek(file, 0, SEEK_END) == 0;
  if (done && ftell(file) % kChunk == 0) done = fputc(0, file) != EOF;
  if (file != NULL && fclose(file) != 0) done = 0;
  return done;
}

static int digest(const char *path, uint8_t *mac, uint32_t *len) {
  static uint8_t chunk[kChunk];
  HMAC_CONTEXT context;
  size_t got;
  int done;
  FILE *file = fopen(path, "rb");
  if (file == NULL) return 0;
  HMAC_Initialize(&context, g_hmac_key, sizeof g_hmac_key, &popsha1);
  while ((got = fread(chunk, 1, kChunk, file)) != 0)
    __HMAC_Update(&context, chunk, (uint32_t)got);
  done = !ferror(file);
  fclose(file);
  HMAC_Finalize(mac, len, &context);
  return done;
}

int main(int argc, char **argv) {
  char companion[4096 + 8];
  uint8_t mac[ZEL_MAX_DIGEST_LEN];
  uint32_t len = 0, i;
  FILE *file;
  if (argc != 2 || strlen(argv[1]) > 4096) {
    fputs("usage: zel_stamp LIBRARY\n", stderr);
    return EXIT_FAILURE;
  }
  if (!set_length(argv[1]) || !digest(argv[1], mac, &len)) return fail(argv[1]);
  snprintf(companion, sizeof companion, "%s.hmac", argv[1]);
  file = fopen(companion, "wb");
  if (file == NULL) return fail(companion);
  for (i = 0; i < len; ++i)
    fprintf(file, "%02x", mac[i]);
  fputc('\n', file);
  if (fclose(file) != 0) return fail(companion);
  if (SELFTEST_VerifyModuleHMAC(argv[1]) != ZEL_OK) {
    fprintf(stderr, "zel_stamp: %s does not verify\n", argv[1]);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
