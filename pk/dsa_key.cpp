// DSA domain parameters and keys. FIPS 186-2, sections 4 and 5; departures are marked.
#include <algorithm>
#include <array>

#include "base/bytes.hpp"
#include "core/gate.hpp"
#include "mint/secret.hpp"
#include "pk/dsa.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"
#include "zel_cc/mint_rand.h"
#include "zel_cc/prime.h"

namespace zel {
namespace {

using pk::Group;
using pk::dsa::group_of;

constexpr std::uint32_t kWindow = 4;

/// less = p - 1, cofactor = (p - 1) / q, and whether the cofactor is not a multiple of q.
bool split(MINT &less, MINT &cofactor, const DSA_PARAM &param) noexcept {
  MINT rest;
  MINT_SubInteger(&less, &param.p, 1);
  if (MINT_Div(&cofactor, &rest, &less, &param.q) != ZEL_OK) return false;
  rest = cofactor;
  return MINT_ModClassic(&rest, &param.q) == ZEL_OK && MINT_GetBitLength(&rest) != 0;
}

/// p and q of the sizes asked for. False where there are none, or none are found.
bool generate_primes(DSA_PARAM &param, MINT &less, MINT &cofactor, std::uint32_t p_bits,
                     std::uint32_t q_bits) noexcept {
  MINT one;
  MINT_SetByInteger(&one, 1);
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    PRIME_GeneratePrime(&param.q, q_bits, q_bits, nullptr);
    if (param.q.length == 0) return false;
    PRIME_GeneratePrimeCongruence(&param.p, &one, &param.q, p_bits, p_bits, nullptr);
    if (param.p.length == 0) return false;
    if (split(less, cofactor, param)) return true;
  }
  return false;
}

bool is_prime(const MINT &a) noexcept {
  return pk::fits(a) && PRIME_MRTest(&a, PRIME_SelectMRIter(MINT_GetBitLength(&a))) == 1;
}

/// What every function on a key pair asks first.
std::int32_t refusal(const void *private_key, const void *public_key, const void *param) noexcept {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return any_null(private_key, public_key, param) ? ZEL_ERR_GENERIC : ZEL_OK;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t DSA_GenParam(void *param, uint32_t pBits, uint32_t qBits) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (param == nullptr || pBits > ZEL_MINT_BITS || qBits >= pBits) return ZEL_ERR_GENERIC;
  DSA_PARAM made = {};
  MINT less;
  MINT cofactor;
  MINT one;
  MINT_SetByInteger(&one, 1);
  // Deliberate: the seed and counter of FIPS 186-2, appendix 2 are not used.
  if (!generate_primes(made, less, cofactor, pBits, qBits)) return ZEL_ERR_GENERIC;
  MINT_RandInit();
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    MINT h;
    MINT_Rand(&h, pBits);
    MINT_ModClassic(&h, &less);
    if (MINT_ExpWin(&made.g, &h, &cofactor, &made.p, kWindow) != ZEL_OK) break;
    if (MINT_Compare(&made.g, &one) <= 0) continue;
    *static_cast<DSA_PARAM *>(param) = made;
    return ZEL_OK;
  }
  return ZEL_ERR_GENERIC;
}

int32_t DSA_CheckParam(const void *param) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (param == nullptr) return ZEL_ERR_GENERIC;
  const auto &given = *static_cast<const DSA_PARAM *>(param);
  MINT less;
  MINT cofactor;
  const bool valid = is_prime(given.p) && is_prime(given.q) && group_of(given).holds(given.g) &&
                     split(less, cofactor, given);
  return valid ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t DSA_GenKey(void *private_key, void *public_key, const void *param) {
  if (const std::int32_t status = refusal(private_key, public_key, param); status != ZEL_OK)
    return status;
  const Group group = group_of(*static_cast<const DSA_PARAM *>(param));
  if (!group.is_usable()) return ZEL_ERR_GENERIC;
  pk::RandHash random;
  if (!random) return ZEL_ERR_GENERIC;
  Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> bytes;
  Wiped<MINT> x(MINT{});
  MINT y = {};
  MINT one;
  MINT zero;
  MINT_SetByInteger(&one, 1);
  MINT_SetByInteger(&zero, 0);
  // Deliberate: no more bytes than q has, so that small keys come twice as often as others where q
  // is half of a power of 256; and x may be zero.
  const std::uint32_t len = pk::byte_len(group.q_bits());
  random.fill(bytes->data(), len);
  MINT_SetByByteArray(&*x, bytes->data(), static_cast<std::int32_t>(len));
  if (mint::multiply_add_secret(*x, *x, one, zero, group.q) != ZEL_OK || !group.power(y, *x))
    return ZEL_ERR_GENERIC;
  pk::trim(*x);
  pk::trim(y);
  *static_cast<MINT *>(private_key) = *x;
  *static_cast<MINT *>(public_key) = y;
  return ZEL_OK;
}

int32_t DSA_CheckKey(const void *private_key, const void *public_key, const void *param) {
  if (const std::int32_t status = refusal(private_key, public_key, param); status != ZEL_OK)
    return status;
  const Group group = group_of(*static_cast<const DSA_PARAM *>(param));
  const auto &y = *static_cast<const MINT *>(public_key);
  const bool valid = group.is_usable() && group.holds(y) &&
                     group.is_power(y, *static_cast<const MINT *>(private_key));
  return valid ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t DSA_CheckKeyPair(const void *private_key, const void *public_key, const void *param) {
  if (const std::int32_t status = refusal(private_key, public_key, param); status != ZEL_OK)
    return status;
  const Group group = group_of(*static_cast<const DSA_PARAM *>(param));
  const bool valid = group.is_usable() && group.is_power(*static_cast<const MINT *>(public_key),
                                                         *static_cast<const MINT *>(private_key));
  return valid ? ZEL_OK : ZEL_ERR_GENERIC;
}
