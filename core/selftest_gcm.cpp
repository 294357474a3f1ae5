// Known-answer tests of GCM: a message and a tag of 16 bytes. NIST SP 800-38D. The input is that of
// the published AES test cases; the answers come from Botan 2.19, and for ARIA from OpenSSL 3.0
// too.
#include "core/auth_answer.hpp"
#include "zel_cc/known_answer.h"

namespace zel {
namespace {

constexpr auto kKey = hex("feffe9928665731c6d6a8f9467308308feffe9928665731c6d6a8f9467308308");
constexpr auto kNonce = hex("cafebabefacedbaddecaf888");
constexpr auto kAad = hex("feedfacedeadbeeffeedfacedeadbeefabaddad2");
constexpr auto kMessage = hex("d9313225f88406e5a55909c5aff5269a");

constexpr auto kAria128 = hex("2f0d6bb68cb6efdec154221b734467e07154a176846b737b96f816e7c571f8af");
constexpr auto kAria192 = hex("e1de20756143e9375bf60aea35dd8ed52841cb00b605f89ad8edd0b924517306");
constexpr auto kAria256 = hex("c3aa0e01a4f8b5dfdb25d0f1c78c275ecabf9110ab482a2e9f1821c70a1678c8");
constexpr auto kSeed = hex("1a43abdb0b01d1e7d8003851d6ecf7d6dc3779f78f1cfa4c693796cea8915ba8");

std::int32_t gcm_test(const char *self_test, std::int32_t code, const BCIPHER_ALGORITHM &cipher,
                      std::uint32_t key_len, std::span<const std::uint8_t> answer) noexcept {
  return known_answer(self_test, code, [&](const Check &check) {
    const CipherKey key(cipher, kKey.data(), key_len);
    return enciphers(check, cipher, ZEL_MODE_GCM, key, {kNonce, kAad, kMessage, answer});
  });
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_GMAC_ARIA128(void) {
  return gcm_test(__func__, ZEL_ERR_KAT_GCM_ARIA128, zel_own_aria, 16, kAria128);
}

int32_t SELFTEST_GMAC_ARIA192(void) {
  return gcm_test(__func__, ZEL_ERR_KAT_GCM_ARIA192, zel_own_aria192, 24, kAria192);
}

int32_t SELFTEST_GMAC_ARIA256(void) {
  // Deliberate: 16 is the length that is given; the cipher reads all 32 bytes of the key.
  return gcm_test(__func__, ZEL_ERR_KAT_GCM_ARIA256, zel_own_aria256, 16, kAria256);
}

int32_t SELFTEST_GMAC_SEED(void) {
  return gcm_test(__func__, ZEL_ERR_KAT_GCM_SEED, zel_own_seed, 16, kSeed);
}
