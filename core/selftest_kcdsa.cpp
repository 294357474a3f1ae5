// Known-answer test of KCDSA: the signature of its standard verifies, and so does a new one. A
// signature is random, so a new one has no known answer. TTAK.KO-12.0001.
#include "core/selftest_kcdsa_tables.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/kcdsa.h"
#include "zel_cc/known_answer.h"
#include "zel_cc/mint.h"

namespace zel {
namespace {

template <class Bytes>
void set(MINT &a, const Bytes &bytes) noexcept {
  MINT_SetByByteArray(&a, bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_KCDSA(void) {
  return known_answer(__func__, ZEL_ERR_KCDSA_TEST, [](const Check &check) {
    constexpr std::uint32_t kLen = kKcdsaMsg.size();
    const HASH_ALGORITHM &hash = zel_own_sha256;
    KCDSA_PARAM param = {};
    KCDSA_SIGNATURE_BODY signature = {};
    MINT x;
    MINT y;
    set(param.p, kKcdsaP);
    set(param.q, kKcdsaQ);
    set(param.g, kKcdsaG);
    set(x, kKcdsaX);
    set(y, kKcdsaY);
    std::memcpy(signature.r, kKcdsaR.data(), kKcdsaR.size());
    set(signature.s, kKcdsaS);
    const auto verifies = [&] {
      return check.holds(KCDSA_SSA_V(&signature, kKcdsaMsg.data(), kLen, &y, &param, &hash) ==
                         ZEL_OK);
    };
    return verifies() &&
           KCDSA_SSA_S(&signature, kKcdsaMsg.data(), kLen, &x, &param, &hash, &y) == ZEL_OK &&
           verifies();
  });
}
