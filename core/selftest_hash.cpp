// Known-answer tests of the hash functions: the digest of "abc". FIPS 180-4; HAS-160:
// TTAS.KO-12.0011/R2.
#include "core/known_answer.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/known_answer.h"

namespace zel {
namespace {

constexpr auto kMessage = hex("616263");
constexpr auto kHas160 = hex("975e810488cf2a3d49838478124afce4b1c78804");
constexpr auto kSha1 = hex("a9993e364706816aba3e25717850c26c9cd0d89d");
constexpr auto kSha224 = hex("23097d223405d8228642a477bda255b32aadbce4bda0b3f7e36c9da7");
constexpr auto kSha256 = hex("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
constexpr auto kSha384 =
    hex("cb00753f45a35e8bb5a03d699ac65007272c32ab0eded1631a8b605a43ff5bed8086072ba1e7cc2358baeca134"
        "c825a7");
constexpr auto kSha512 =
    hex("ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a2192992a274fc1a836ba3c23a3"
        "feebbd454d4423643ce80e2a9ac94fa54ca49f");

using Initialize = decltype(HASH_Initialize);

bool answers(const Check &check, Initialize *initialize, const HASH_ALGORITHM &hash,
             std::span<const std::uint8_t> expected) noexcept {
  HASH_CONTEXT context;
  std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN> digest;
  std::uint32_t digest_len = 0;
  if (initialize(&context, &hash) != ZEL_OK) return false;
  HASH_Update_KZEL(&context, kMessage.data(), kMessage.size());
  HASH_Finalize(digest.data(), &digest_len, &context);
  return check.equal(digest.data(), digest_len, expected);
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_HAS160(void) {
  return known_answer(__func__, ZEL_ERR_KAT_HAS160, [](const Check &check) {
    return answers(check, HASH_Initialize, zel_own_pophas160, kHas160);
  });
}

int32_t SELFTEST_SHA1(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SHA1, [](const Check &check) {
    return answers(check, HASH_Initialize, zel_own_popsha1, kSha1);
  });
}

int32_t SELFTEST_SHA224(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SHA224, [](const Check &check) {
    return answers(check, HASH_InitializeEx, zel_own_sha224, kSha224);
  });
}

int32_t SELFTEST_SHA256(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SHA256, [](const Check &check) {
    return answers(check, HASH_Initialize, zel_own_sha256, kSha256);
  });
}

int32_t SELFTEST_SHA384(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SHA384, [](const Check &check) {
    return answers(check, HASH_Initialize, zel_own_sha384, kSha384);
  });
}

int32_t SELFTEST_SHA512(void) {
  return known_answer(__func__, ZEL_ERR_KAT_SHA512, [](const Check &check) {
    return answers(check, HASH_Initialize, zel_own_sha512, kSha512);
  });
}
