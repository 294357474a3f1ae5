// KCDSA keys. TTAK.KO-12.0001; departures are marked.
#include "base/bytes.hpp"
#include "hash/algorithms.hpp"
#include "mint/secret.hpp"
#include "pk/kcdsa.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_rand.h"
#include "zel_cc/selftest.h"

namespace zel {
namespace pk::kcdsa {

std::int32_t public_key(MINT &r, const MINT &x, const Group &group) noexcept {
  Wiped<MINT> inverse;
  const std::int32_t status = mint::inverse_secret(*inverse, x, group.q);
  return group.power(r, *inverse) ? status : std::int32_t{ZEL_ERR_GENERIC};
}

}  // namespace pk::kcdsa

namespace {

using pk::Group;
using pk::kcdsa::group_of;

/// Bytes of q, big-endian.
using Bytes = std::array<std::uint8_t, ZEL_MINT_BYTES>;

/// x = bytes mod q, for a secret.
void reduce(MINT &x, const Bytes &bytes, std::uint32_t len, const MINT &q) noexcept {
  MINT one;
  MINT zero;
  MINT_SetByInteger(&one, 1);
  MINT_SetByInteger(&zero, 0);
  MINT_SetByByteArray(&x, bytes.data(), static_cast<std::int32_t>(len));
  static_cast<void>(mint::multiply_add_secret(x, x, one, zero, q));
}

/// A pair in the making. It is handed over whole.
struct Pair {
  MINT x, y;

  void hand_over(void *private_key, void *public_key) noexcept {
    pk::trim(x);
    pk::trim(y);
    *static_cast<MINT *>(private_key) = x;
    *static_cast<MINT *>(public_key) = y;
  }
};

/// XVAL = (XKEY + the generator's output for XSEED) mod 2^bits, and x from it. XVAL is hashed in its
/// full length; `KCDSARNGHAS160_GenerateX` drops leading zero bytes.
bool derive(MINT &x, const std::uint8_t *xkey, const std::uint8_t *xseed, const Group &group) {
  const pk::kcdsa::Prng prng = pk::kcdsa::prng_for(group.q_bits());
  const std::uint32_t bits = group.q_bits();
  const std::uint32_t len = pk::byte_len(bits);
  Wiped<Bytes> xval;
  Wiped<Bytes> derived;
  if (prng(xval->data(), bits, xseed, 8 * len) != ZEL_OK) return false;
  std::uint32_t carry = 0;
  for (std::uint32_t i = len; i-- != 0; carry >>= 8) {
    carry += std::uint32_t{(*xval)[i]} + xkey[i];
    (*xval)[i] = static_cast<std::uint8_t>(carry);
  }
  if (bits % 8 != 0) (*xval)[0] &= static_cast<std::uint8_t>(0xff >> (8 - bits % 8));
  if (prng(derived->data(), bits, xval->data(), 8 * len) != ZEL_OK) return false;
  reduce(x, *derived, len, group.q);
  return true;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t KCDSA_GenKey(void *private_key, void *public_key, const void *param) {
  if (any_null<const void *>(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  const auto *const given = static_cast<const KCDSA_PARAM *>(param);
  const Group group = group_of(*given);
  if (!group.is_usable()) return ZEL_ERR_GENERIC;
  Wiped<Pair> pair(Pair{});
  Wiped<Bytes> bytes;
  pk::RandHash random;
  // Deliberate: these bits are all overwritten; the draw stays in its place.
  if (!random || !pk::fill_from_drbg(bytes->data(), group.q_bits())) return ZEL_ERR_GENERIC;
  const std::uint32_t len = pk::byte_len(group.q_bits());
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    random.fill(bytes->data(), len);
    reduce(pair->x, *bytes, len, group.q);
    if (pk::kcdsa::public_key(pair->y, pair->x, group) != ZEL_OK) continue;
    pair->hand_over(private_key, public_key);
    return CONDITIONAL_SELFTEST_KEYPAIR_KCDSA(static_cast<const MINT *>(private_key),
                                              static_cast<const MINT *>(public_key), given);
  }
  return ZEL_ERR_GENERIC;
}

int32_t KCDSA_GenKeyEx(void *private_key, void *public_key, void *param) {
  if (any_null<const void *>(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  auto *const record = static_cast<KCDSA_PARAM_EX *>(param);
  const Group group{record->p, record->q, record->g};
  if (!group.is_usable() || group.q_bits() > 8 * sizeof record->XKEY) return ZEL_ERR_GENERIC;
  const std::uint32_t len = pk::byte_len(group.q_bits());
  Wiped<Pair> pair(Pair{});
  for (std::uint32_t rounds = pk::kRounds; rounds != 0; --rounds) {
    Wiped<MINT> number;
    Wiped<Bytes> xkey;
    Wiped<Bytes> xseed;
    MINT_Rand(&*number, group.q_bits());
    MINT_WriteLSNByteInByteArray(xkey->data(), len, &*number);
    if (!pk::fill_from_drbg(xseed->data(), 8 * len) ||
        !derive(pair->x, xkey->data(), xseed->data(), group)) {
      break;
    }
    if (pk::kcdsa::public_key(pair->y, pair->x, group) != ZEL_OK) continue;
    std::memcpy(record->XKEY, xkey->data(), len);
    std::memcpy(record->XSEED, xseed->data(), len);
    pair->hand_over(private_key, public_key);
    return ZEL_OK;
  }
  return ZEL_ERR_GENERIC;
}

int32_t KCDSA_GenKey_UDK(void *private_key, void *public_key, const void *param,
                         const uint8_t *user_data, uint32_t len) {
  if (any_null<const void *>(private_key, public_key, param, user_data) || len == 0)
    return ZEL_ERR_GENERIC;
  const Group group = group_of(*static_cast<const KCDSA_PARAM *>(param));
  if (!group.is_usable()) return ZEL_ERR_GENERIC;
  Wiped<Pair> pair(Pair{});
  Wiped<Bytes> digest;
  std::uint32_t digest_len = 0;
  // Deliberate: HAS-160 whatever the size of q, and no test whether x has an inverse.
  if (KCDSA_EMSA1(digest->data(), &digest_len, user_data, len, nullptr, 0, &zel_own_pophas160) !=
      ZEL_OK)
    return ZEL_ERR_GENERIC;
  reduce(pair->x, *digest, digest_len, group.q);
  if (pk::kcdsa::public_key(pair->y, pair->x, group) == ZEL_ERR_GENERIC) return ZEL_ERR_GENERIC;
  pair->hand_over(private_key, public_key);
  return ZEL_OK;
}

int32_t KCDSA_CheckKeyPair(const void *private_key, const void *public_key, const void *param) {
  if (any_null(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*static_cast<const KCDSA_PARAM *>(param));
  const auto &x = *static_cast<const MINT *>(private_key);
  MINT y;
  const bool valid = group.is_usable() && pk::fits(x) &&
                     pk::kcdsa::public_key(y, x, group) == ZEL_OK &&
                     MINT_Compare(&y, static_cast<const MINT *>(public_key)) == 0;
  return valid ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t KCDSA_CheckKey(const void *private_key, const void *public_key, const void *param) {
  if (any_null(private_key, public_key, param)) return ZEL_ERR_GENERIC;
  const Group group = group_of(*static_cast<const KCDSA_PARAM *>(param));
  if (!group.is_usable() || !group.holds(*static_cast<const MINT *>(public_key)))
    return ZEL_ERR_GENERIC;
  return KCDSA_CheckKeyPair(private_key, public_key, param);
}
