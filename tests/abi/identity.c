/* Descriptors are compared by address, and a program may hold the copies or take the names. This
 * program is built in every way that matters for that; see CMakeLists.txt. It hashes and
 * authenticates in the verified service, where a descriptor that is not recognised is refused. */
#define _GNU_SOURCE /* RTLD_NOLOAD */
#include <stdio.h>
#include <string.h>

#include "zel_cc.h"

/* Defined in own_names.c when the program has globals of those names; the library's own object is
 * then out of the linker's reach. */
#ifdef OWN_NAMES
#include <dlfcn.h>
int own_names_intact(void);
static const HASH_ALGORITHM *find_sha512(void) {
  return dlsym(dlopen("libzel_cc-3.2.so", RTLD_LAZY | RTLD_NOLOAD), "sha512");
}
#else
static const HASH_ALGORITHM *find_sha512(void) { return &sha512; }
#endif
#ifdef LIBCRYPTO_FIRST
#include <openssl/evp.h>
#endif

/* FIPS 180-4 example: 112 bytes, so that a block of 64 bytes instead of 128 would show. */
static const char kMessage[] =
    "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrlmnop"
    "qrsmnopqrstnopqrstu";

static int failures;

static void check(int ok, const char *what) {
  if (!ok) {
    printf("FAIL: %s\n", what);
    ++failures;
  }
}

static int is_hex(const uint8_t *bytes, uint32_t len, const char *hex) {
  char text[2 * ZEL_MAX_DIGEST_LEN + 1];
  uint32_t i;
  for (i = 0; i < len; ++i)
    snprintf(text + 2 * i, 3, "%02x", bytes[i]);
  return strcmp(text, hex) == 0;
}

static void hashes(const HASH_ALGORITHM *descriptor, const char *expected, const char *what) {
  HASH_CONTEXT context;
  uint8_t digest[ZEL_MAX_DIGEST_LEN];
  uint32_t len = 0;
  check(HASH_InitializeEx(&context, descriptor) == ZEL_OK, what);
  HASH_Update(&context, (const uint8_t *)kMessage, 7);
  HASH_Update(&context, (const uint8_t *)kMessage + 7, (uint32_t)strlen(kMessage) - 7);
  HASH_Finalize(digest, &len, &context);
  check(len == descriptor->digest_len && is_hex(digest, len, expected), what);
}

static void authenticates(const HASH_ALGORITHM *descriptor, const char *expected,
                          const char *what) {
  HMAC_CONTEXT context;
  uint8_t key[20]; /* RFC 4231, test case 1 */
  uint8_t code[ZEL_MAX_DIGEST_LEN];
  uint32_t len = 0;
  memset(key, 0x0b, sizeof key);
  check(HMAC_InitializeEx(&context, key, sizeof key, descriptor) == ZEL_OK, what);
  __HMAC_Update(&context, (const uint8_t *)"Hi There", 8);
  HMAC_Finalize(code, &len, &context);
  check(len == descriptor->digest_len && is_hex(code, len, expected), what);
}

static void refuses(const HASH_ALGORITHM *descriptor, const char *what) {
  HASH_CONTEXT context;
  check(HASH_InitializeEx(&context, descriptor) == ZEL_ERR_APPROVED, what);
}

int main(void) {
  check(KZEL_CC_SetStateVerifiedService() == ZEL_STATE_VERIFIED, "verified service");
  hashes(&sha384,
         "09330c33f71147e83d192fc782cd1b4753111b173b3b05d22fa08086e3b0f712"
         "fcc7c71a557e2db966c3e9fa91746039",
         "SHA-384");
  hashes(&sha256, "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1", "SHA-256");
  authenticates(&sha384,
                "afd03944d84895626b0825f4ab46907f15f9dadbe4101ec682aa034c7cebc59c"
                "faea9ea9076ede7f4af152e8b2fa9cb6",
                "HMAC-SHA-384");
  hashes(find_sha512(),
         "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
         "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909",
         "SHA-512");
  authenticates(find_sha512(),
                "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cde"
                "daa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a126854",
                "HMAC-SHA-512");
#ifdef OWN_NAMES
  check(own_names_intact(), "the program's own globals");
#endif
  refuses(&popsha1, "SHA-1 is refused");
  refuses(&popmd5, "MD5 is refused");
#ifdef LIBCRYPTO_FIRST
  {
    uint8_t digest[EVP_MAX_MD_SIZE];
    unsigned len = 0;
    check(
        EVP_Digest(kMessage, strlen(kMessage), digest, &len, EVP_sha256(), NULL) == 1 &&
            is_hex(digest, len, "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"),
        "libcrypto beside the library");
  }
#endif
  printf("%d failures\n", failures);
  return failures != 0;
}
