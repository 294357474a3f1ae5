/* Descriptors are compared by address, and a program may hold the copies or take the names. This
 * program is built in every way that matters for that; see CMakeLists.txt. It hashes and
 * authenticates in the verified service, where a descriptor that is not recognised is refused. */
#define _GNU_SOURCE /* RTLD_NOLOAD */
#include <stdio.h>
#include <string.h>

#include "zel_cc.h"

/* With OWN_NAMES, own_names.c has globals of these names. The library's own objects are then out of
 * the linker's reach, and asked of the library itself. */
#if defined(OWN_NAMES) || defined(LIBCRYPTO_FIRST)
#include <dlfcn.h>
#define IN_LIBRARY(name) dlsym(dlopen("libzel_cc-3.2.so", RTLD_LAZY | RTLD_NOLOAD), #name)
#endif
#ifdef OWN_NAMES
int own_names_intact(void);
#define OBJECT(name) IN_LIBRARY(name)
#else
#define OBJECT(name) (&(name))
#endif
/* Both libraries have a function of this name. Where libcrypto stands first the program means
 * libcrypto's, and asks for ours by the library. */
typedef int32_t (*UPDATE_FN)(CMAC_CONTEXT *context, const uint8_t *data, uint32_t len);
static UPDATE_FN our_update(void) {
#ifdef LIBCRYPTO_FIRST
  UPDATE_FN function;
  *(void **)&function = IN_LIBRARY(CMAC_Update);
  return function;
#else
  return CMAC_Update;
#endif
}
#ifdef LIBCRYPTO
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

/* One block in ECB under the key 00, 01, ..., 0f. */
static int32_t encipher(const BCIPHER_ALGORITHM *descriptor, uint8_t *block, uint32_t len) {
  static const uint8_t iv[16] = {0};
  uint8_t key_bytes[16];
  BCIPHER_CONTEXT context;
  BCIPHER_KEY *key = BCIPHER_NewKey(descriptor);
  uint8_t in[16];
  uint8_t i;
  int32_t result;
  for (i = 0; i < sizeof key_bytes; ++i)
    key_bytes[i] = i;
  memcpy(in, block, len);
  BCIPHER_MakeKey(key, key_bytes, sizeof key_bytes, descriptor);
  BCIPHER_Initialize(&context, ZEL_MODE_ECB, iv, descriptor);
  result = BCIPHER_Encrypt(block, &len, in, len, &context, key, 0);
  BCIPHER_DelKey(key);
  return result;
}

static void enciphers(const BCIPHER_ALGORITHM *descriptor, const uint8_t *in, const char *expected,
                      const char *what) {
  uint8_t block[16];
  memcpy(block, in, sizeof block);
  check(encipher(descriptor, block, sizeof block) == ZEL_OK && is_hex(block, 16, expected), what);
}

static void authenticates_blocks(void) {
  static const uint8_t key[16] = {0x32, 0xb9, 0xc5, 0xc7, 0x8c, 0x3a, 0x06, 0x89,
                                  0xa8, 0x60, 0x52, 0x42, 0x0f, 0xa1, 0xe8, 0xfc};
  static const uint8_t message[4] = {0x0b, 0x92, 0x62, 0xec};
  CMAC_CONTEXT context;
  uint8_t mac[16];
  check(CMAC_Initialize(&context, key, sizeof key, &aria) == ZEL_OK, "CMAC");
  our_update()(&context, message, sizeof message);
  CMAC_Finalize(mac, sizeof mac, &context);
  check(is_hex(mac, 16, "779f54b19a10495767ee549557159cd0"), "CMAC");
}

#ifdef LIBCRYPTO
static void libcrypto_hashes(void) {
  uint8_t digest[EVP_MAX_MD_SIZE];
  unsigned len = 0;
  check(EVP_Digest(kMessage, strlen(kMessage), digest, &len, EVP_sha256(), NULL) == 1 &&
            is_hex(digest, len, "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"),
        "libcrypto's hash");
}
#endif

#ifdef LIBCRYPTO_FIRST
/* SP 800-38B, an example for AES-128. Behind the library libcrypto would take ours: it calls its
 * CMAC_Update by name. */
static void libcrypto_authenticates(void) {
  static const unsigned char key[16] = {0x2b, 0x7e, 0x15, 0x16, 0x28, 0xae, 0xd2, 0xa6,
                                        0xab, 0xf7, 0x15, 0x88, 0x09, 0xcf, 0x4f, 0x3c};
  static const unsigned char block[16] = {0x6b, 0xc1, 0xbe, 0xe2, 0x2e, 0x40, 0x9f, 0x96,
                                          0xe9, 0x3d, 0x7e, 0x11, 0x73, 0x93, 0x17, 0x2a};
  uint8_t mac[16];
  size_t len = 0;
  check(EVP_Q_mac(NULL, "CMAC", NULL, "AES-128-CBC", NULL, key, sizeof key, block, sizeof block,
                  mac, sizeof mac, &len) != NULL &&
            is_hex(mac, (uint32_t)len, "070a16b46b4d4144f79bdd9dd04a287c"),
        "libcrypto's CMAC");
}
#endif

static void refuses(const HASH_ALGORITHM *descriptor, const char *what) {
  HASH_CONTEXT context;
  check(HASH_InitializeEx(&context, descriptor) == ZEL_ERR_APPROVED, what);
}

#ifdef OWN_NAMES
/* A cipher that is the program's, under the name of one that is approved. */
static int32_t no_schedule(void *round_keys, const uint8_t *key, uint32_t key_len) {
  (void)round_keys, (void)key, (void)key_len;
  return 0;
}
static void no_cipher(void *block, const void *round_keys) { (void)block, (void)round_keys; }
const BCIPHER_ALGORITHM aria192 = {16, 480, no_schedule, no_cipher, no_cipher, NULL, NULL};
#endif

static const uint8_t kAriaIn[16] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                                    0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
static const uint8_t kSeedIn[16] = {0};

int main(void) {
  uint8_t not_approved[16] = {0};
  check(SELFTEST_VerifiedAlgorithm() == ZEL_OK, "self-tests");
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
  hashes(OBJECT(sha512),
         "8e959b75dae313da8cf4f72814fc143f8f7779c6eb9f7fa17299aeadb6889018"
         "501d289e4900f7e4331b99dec4b5433ac7d329eeb6dd26545e96e55b874be909",
         "SHA-512");
  authenticates(OBJECT(sha512),
                "87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cde"
                "daa833b7d6b8a702038b274eaea3f4e4be9d914eeb61f1702e696c203a126854",
                "HMAC-SHA-512");
#ifdef OWN_NAMES
  check(own_names_intact(), "the program's own globals");
#endif
  /* RFC 5794, appendix A.1; RFC 4269, appendix B.2 */
  enciphers(&aria, kAriaIn, "d718fbd6ab644c739da95f3be6451778", "ARIA");
  enciphers(OBJECT(seed), kSeedIn, "c11f22f20140505084483597e4370f43", "SEED");
  check(encipher(OBJECT(des), not_approved, 8) == ZEL_ERR_APPROVED, "DES is refused");
#ifdef OWN_NAMES
  check(encipher(&aria192, not_approved, 16) == ZEL_ERR_APPROVED, "the program's own cipher");
#endif
  authenticates_blocks();
  refuses(&popsha1, "SHA-1 is refused");
  refuses(&popmd5, "MD5 is refused");
#ifdef LIBCRYPTO
  libcrypto_hashes();
#endif
#ifdef LIBCRYPTO_FIRST
  libcrypto_authenticates();
#endif
  printf("%d failures\n", failures);
  return failures != 0;
}
