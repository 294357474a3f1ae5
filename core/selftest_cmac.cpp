// Known-answer tests of CMAC: a message of 6 bytes. NIST SP 800-38B; the values were computed with
// two programs that agree (tests/vectors/cmac_aria.txt and cmac_seed.txt).
#include "cipher/algorithms.hpp"
#include "core/known_answer.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/mac.h"

namespace zel {
namespace {

constexpr std::uint32_t kMessageLen = 6;
constexpr std::uint32_t kMacLen = 16;

template <std::uint32_t kKeyLen>
struct CmacAnswer {
  std::array<std::uint8_t, kKeyLen> key;
  std::array<std::uint8_t, kMessageLen> message;
  std::array<std::uint8_t, kMacLen> mac;
};

constexpr CmacAnswer<16> kAria128{hex("de012a16af6e4b40f1c6a1ba84b71062"), hex("b255e3872eaf"),
                                  hex("d14c39abbf2dd97b19e4d64c2c80efae")};
constexpr CmacAnswer<24> kAria192{hex("43303eaa390bf6aa3dd5f12ba32e1cca6c42dba38fcacf42"),
                                  hex("d2113ca8ad6a"), hex("61b63002c0b7442ca5ef7aebace620ba")};
constexpr CmacAnswer<32> kAria256{
    hex("cfc4107e0168706d61eb36cd084d82121bc1500ab6d68e5ad6ecf8295641429b"), hex("6762fdae3c51"),
    hex("7009ea9a2061679f4aa03d41b01c8c56")};
constexpr CmacAnswer<16> kSeed{hex("5b4bdfecadbe9f4786542a74538c21be"), hex("d71f767da756"),
                               hex("ccbac3ae5adad88b1f9b445ddbbd0958")};

template <std::uint32_t kKeyLen>
std::int32_t cmac_test(const char *self_test, std::int32_t code, const BCIPHER_ALGORITHM &cipher,
                       const CmacAnswer<kKeyLen> &answer) noexcept {
  return known_answer(self_test, code, [&](const Check &check) {
    CMAC_CONTEXT context;
    std::array<std::uint8_t, kMacLen> mac{};
    return CMAC_Initialize(&context, answer.key.data(), kKeyLen, &cipher) == ZEL_OK &&
           CMAC_Update(&context, answer.message.data(), kMessageLen) == ZEL_OK &&
           CMAC_Finalize(mac.data(), kMacLen, &context) == ZEL_OK &&
           check.equal(mac.data(), kMacLen, answer.mac);
  });
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_CMAC_ARIA128(void) {
  return cmac_test(__func__, ZEL_ERR_KAT_CMAC_ARIA128, zel_own_aria, kAria128);
}

int32_t SELFTEST_CMAC_ARIA192(void) {
  return cmac_test(__func__, ZEL_ERR_KAT_CMAC_ARIA192, zel_own_aria192, kAria192);
}

int32_t SELFTEST_CMAC_ARIA256(void) {
  return cmac_test(__func__, ZEL_ERR_KAT_CMAC_ARIA256, zel_own_aria256, kAria256);
}

int32_t SELFTEST_CMAC_SEED(void) {
  return cmac_test(__func__, ZEL_ERR_KAT_CMAC_SEED, zel_own_seed, kSeed);
}
