// Known-answer tests of HMAC. SHA-2: RFC 4231, test case 1. SHA-1: FIPS 198, example A.2. HAS-160:
// the case of RFC 4231, from two programs of others that agree (tests/vectors/hmac_has160.txt).
#include "core/known_answer.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/hmac.h"
#include "zel_cc/known_answer.h"

namespace zel {
namespace {

constexpr std::uint32_t kKeyLen = 20;

struct Input {
  std::array<std::uint8_t, kKeyLen> key;
  std::span<const std::uint8_t> message;
};

constexpr auto kHiThere = hex("4869205468657265");
constexpr Input kInput{hex("0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b"), kHiThere};

constexpr auto kSampleTwo = hex("53616d706c65202332");
constexpr Input kSha1Input{hex("303132333435363738393a3b3c3d3e3f40414243"), kSampleTwo};

constexpr auto kHas160 = hex("f5b44115a53f716b6f488de1098ee7c251418623");
constexpr auto kSha1 = hex("0922d3405faa3d194f82a45830737d5cc6c75d24");
constexpr auto kSha224 = hex("896fb1128abbdf196832107cd49df33f47b4b1169912ba4f53684b22");
constexpr auto kSha256 = hex("b0344c61d8db38535ca8afceaf0bf12b881dc200c9833da726e9376c2e32cff7");
constexpr auto kSha384 =
    hex("afd03944d84895626b0825f4ab46907f15f9dadbe4101ec682aa034c7cebc59cfaea9ea9076ede7f4af152e8b2"
        "fa9cb6");
constexpr auto kSha512 =
    hex("87aa7cdea5ef619d4ff0b4241a1d6cb02379f4e2ce4ec2787ad0b30545e17cdedaa833b7d6b8a702038b274eae"
        "a3f4e4be9d914eeb61f1702e696c203a126854");

bool answers(const Check &check, const HASH_ALGORITHM &hash, std::span<const std::uint8_t> expected,
             const Input &input = kInput) noexcept {
  HMAC_CONTEXT context;
  std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN> code;
  std::uint32_t code_len = 0;
  if (HMAC_Initialize(&context, input.key.data(), kKeyLen, &hash) != ZEL_OK) return false;
  __HMAC_Update(&context, input.message.data(), static_cast<std::uint32_t>(input.message.size()));
  HMAC_Finalize(code.data(), &code_len, &context);
  return check.equal(code.data(), code_len, expected);
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_HMAC_HAS160(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_HAS160, [](const Check &check) {
    return answers(check, zel_own_pophas160, kHas160);
  });
}

int32_t SELFTEST_HMAC_SHA1(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_SHA1, [](const Check &check) {
    return answers(check, zel_own_popsha1, kSha1, kSha1Input);
  });
}

int32_t SELFTEST_HMAC_SHA224(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_SHA224,
                      [](const Check &check) { return answers(check, zel_own_sha224, kSha224); });
}

int32_t SELFTEST_HMAC_SHA256(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_SHA256,
                      [](const Check &check) { return answers(check, zel_own_sha256, kSha256); });
}

int32_t SELFTEST_HMAC_SHA384(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_SHA384,
                      [](const Check &check) { return answers(check, zel_own_sha384, kSha384); });
}

int32_t SELFTEST_HMAC_SHA512(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HMAC_SHA512,
                      [](const Check &check) { return answers(check, zel_own_sha512, kSha512); });
}
