/* A program outside of the project, C11 and C++17 alike: hashes "abc" and prints the digest. */
#include <stdio.h>
#include <zel_cc.h>
#ifdef STRONG_RAND
#include "strong_rand.h"
#endif

int main(void) {
  static const uint8_t message[] = {'a', 'b', 'c'};
  uint8_t digest[ZEL_MAX_DIGEST_LEN];
  uint32_t digest_len = 0;
  uint32_t i;
  HASH_CONTEXT context;
  const int32_t result = HASH_InitializeEx(&context, &sha256);
#ifdef STRONG_RAND
  if (!zel_strong_rand_in_force()) {
    fprintf(stderr, "rand is not the kernel's\n");
    return 1;
  }
#endif
  if (result != ZEL_OK) {
    fprintf(stderr, "%s\n", zel_error_text(result));
    return 1;
  }
  HASH_Update(&context, message, sizeof message);
  HASH_Finalize(digest, &digest_len, &context);
  for (i = 0; i < digest_len; ++i)
    printf("%02x", digest[i]);
  printf("\n");
  return 0;
}
