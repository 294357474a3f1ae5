// Known-answer tests of CCM, with tags of 4 and of 14 bytes. NIST SP 800-38C; values of Wycheproof
// (tests/vectors/aria_ccm.txt and seed_ccm.txt).
#include "core/auth_answer.hpp"
#include "zel_cc/known_answer.h"

namespace zel {
namespace {

/// One message of 17 bytes under a key.
template <std::uint32_t kKeyLen, std::size_t kTagLen>
struct CcmAnswer {
  static constexpr std::size_t kLen = 17;
  std::array<std::uint8_t, kKeyLen> key;
  std::array<std::uint8_t, 12> nonce;
  std::array<std::uint8_t, 16> aad;
  std::array<std::uint8_t, kLen> message;
  std::array<std::uint8_t, kLen + kTagLen> answer;
};

constexpr CcmAnswer<16, 4> kAria128Tag4{
    hex("c01b915d2d2112288ed04d2cdd389bd7"), hex("98aced4674faebe3fd4881cc"),
    hex("2090bd5934b20e26c704af9f85c9c410"), hex("63dab2e2a22a63a7e5504667634555934d"),
    hex("8124e7383c53bc40e0ff663207e4ea17cc8d31b99c")};
constexpr CcmAnswer<16, 14> kAria128Tag14{
    hex("21f84c57b6d4a2d2d30d4c37ecf11030"), hex("d3ce63a1af0bef6c9e0bbd81"),
    hex("0f78dd2b4e566c9d15d052b01f6f85ba"), hex("3358543c39c10025e01ce89006ba004326"),
    hex("5cf80f919659200670688e73472cb5b784d56cc2fcab45a97b746d0907be2d")};
constexpr CcmAnswer<24, 4> kAria192Tag4{
    hex("1240f2455c1ef9a7e76fe93f6179d9bd6a249b66ba26bb0a"), hex("c4f3a072f20fc22a9feb74c8"),
    hex("41da67ad5737cd4d601b378d312f8740"), hex("b4f3a029076a1bce99e8365b1b12705f17"),
    hex("ee886a97adaf3e564d81376fedaae1161e321d4bfe")};
constexpr CcmAnswer<24, 14> kAria192Tag14{
    hex("44def02b19d8b74b25801ec25273b68f50dea126ec4a3666"), hex("215dbc072f698ba96f855048"),
    hex("202829927e08e40aed3696ffdedd107d"), hex("4925d7f70c12a6b8487d0c9f16f48e8e8d"),
    hex("8ef43a83005b5fef5b662fa37365f2ae52644cd91c1a648803f3ca15639771")};
constexpr CcmAnswer<32, 4> kAria256Tag4{
    hex("e261314c540aef81145ac223ffc7bde01165679357e786cd2f8815e23f1d69df"),
    hex("fd69f4b939e3bb09006f2d2b"), hex("ae205a7acc945716f752f09542b78c5a"),
    hex("90648b56d35bf1ca990ea25950354ff1a3"), hex("9f9598195ba9694f10e26ae58955b882854527c37e")};
constexpr CcmAnswer<32, 14> kAria256Tag14{
    hex("01fcbc4a3b2ee32109cd0f27d829e20d1d9203d6ff812ed9841ef908904d74a8"),
    hex("ae9ee7f9f52878215838f5cb"), hex("1be177d6e88651c40f6a1b533817c279"),
    hex("268a75fb890e8af7c24b63cfb87080e028"),
    hex("a5518b9783d165f1a1ebba4b5e802821ab3873bd7945549de5081b59134b33")};
constexpr CcmAnswer<16, 4> kSeedTag4{
    hex("c01b915d2d2112288ed04d2cdd389bd7"), hex("98aced4674faebe3fd4881cc"),
    hex("2090bd5934b20e26c704af9f85c9c410"), hex("63dab2e2a22a63a7e5504667634555934d"),
    hex("40c47bffaba492e43d17adf7cdc4d0ac2cbaa62f5f")};
constexpr CcmAnswer<16, 14> kSeedTag14{
    hex("21f84c57b6d4a2d2d30d4c37ecf11030"), hex("d3ce63a1af0bef6c9e0bbd81"),
    hex("0f78dd2b4e566c9d15d052b01f6f85ba"), hex("3358543c39c10025e01ce89006ba004326"),
    hex("cc1bf5df8ae9ebd62c68f3e730758a32f654b00f1616a544f5984e7d7d933e")};

template <std::uint32_t kKeyLen, std::size_t kTagLen>
bool answers(const Check &check, const BCIPHER_ALGORITHM &cipher,
             const CcmAnswer<kKeyLen, kTagLen> &data) noexcept {
  const CipherKey key(cipher, data.key.data(), kKeyLen);
  return enciphers(check, cipher, ZEL_MODE_CCM, key,
                   {data.nonce, data.aad, data.message, data.answer});
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_CCM_ARIA128(void) {
  return known_answer(__func__, ZEL_ERR_KAT_CCM_ARIA128, [](const Check &check) {
    return answers(check, zel_own_aria, kAria128Tag4) &&
           answers(check, zel_own_aria, kAria128Tag14);
  });
}

int32_t SELFTEST_CCM_ARIA192(void) {
  return known_answer(__func__, ZEL_ERR_KAT_CCM_ARIA192, [](const Check &check) {
    return answers(check, zel_own_aria192, kAria192Tag4) &&
           answers(check, zel_own_aria192, kAria192Tag14);
  });
}

int32_t SELFTEST_CCM_ARIA256(void) {
  return known_answer(__func__, ZEL_ERR_KAT_CCM_ARIA256, [](const Check &check) {
    return answers(check, zel_own_aria256, kAria256Tag4) &&
           answers(check, zel_own_aria256, kAria256Tag14);
  });
}

int32_t SELFTEST_CCM_SEED(void) {
  return known_answer(__func__, ZEL_ERR_KAT_CCM_SEED, [](const Check &check) {
    return answers(check, zel_own_seed, kSeedTag4) && answers(check, zel_own_seed, kSeedTag14);
  });
}
