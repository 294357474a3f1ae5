// The subgroup and its powers, random numbers, and the hash value that enters a signature.
#include "pk/discrete_log.hpp"

#include <algorithm>

#include "base/bytes.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "mint/secret_exp.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"
#include "zel_cc/rng.h"

namespace zel::pk {
namespace {

bool is_odd_above_one(const MINT &a) noexcept {
  return fits(a) && MINT_GetBitLength(&a) > 1 && a.words[0] % 2 != 0;
}

/// Whether the algorithm computes nothing in the verified service.
bool is_inert(const HASH_ALGORITHM &hash) noexcept {
  return gate::approved_only() &&
         (is_same(&hash, zel_own_popmd5, popmd5) || is_same(&hash, zel_own_md2, md2) ||
          is_same(&hash, zel_own_ripemd160, ripemd160));
}

/// Whether p divides a.
bool is_multiple(const MINT &a, const MINT &p) noexcept {
  MINT rest = a;
  if (MINT_Compare(&a, &p) >= 0) MINT_ModClassic(&rest, &p);
  return MINT_GetBitLength(&rest) == 0;
}

}  // namespace

bool Group::is_usable() const noexcept {
  return is_odd_above_one(p) && is_odd_above_one(q) && MINT_Compare(&q, &p) <= 0 && fits(g) &&
         !is_multiple(g, p);
}

bool Group::power(MINT &r, const MINT &e) const noexcept {
  const std::uint32_t bits = std::max(q_bits(), 32 * e.length);
  if (mint::power_secret(r, g, e, p, bits) != ZEL_OK) return false;
  r.length = (p_bits() + 31) / 32;
  return true;
}

bool Group::is_power(const MINT &y, const MINT &e) const noexcept {
  MINT power_of_e;
  return fits(e) && power(power_of_e, e) && MINT_Compare(&y, &power_of_e) == 0;
}

bool Group::has_order_q(const MINT &a) const noexcept {
  constexpr std::uint32_t kWindow = 4;
  MINT power_of_q;
  MINT one;
  MINT_SetByInteger(&one, 1);
  return fits(a) && MINT_ExpWin(&power_of_q, &a, &q, &p, kWindow) == ZEL_OK &&
         MINT_Compare(&power_of_q, &one) == 0;
}

bool Group::holds(const MINT &y) const noexcept {
  return MINT_Compare(&y, &p) < 0 && has_order_q(y);
}

RandHash::RandHash() noexcept : serves_(gate::serving()) {
  std::uint32_t len = 0;
  RNGSEED_GetSeed(context_->X, &len, 8 * sizeof context_->X);
  RANDHASH_Initialize(&*context_);
}

bool fill_from_drbg(std::uint8_t *out, std::uint32_t bits) noexcept {
  // Outputs of few bytes repeat by chance, which would put the module in its error state.
  constexpr std::uint32_t kFewest = 128;
  Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> bytes;
  bytes->fill(0);
  const bool done = HASHDRBG_GetRandNum(bytes->data(), std::max(bits, kFewest)) == ZEL_OK;
  std::memcpy(out, bytes->data(), byte_len(bits));
  return done;
}

bool is_usable(const HASH_ALGORITHM &hash) noexcept {
  return hash.digest_len != 0 && hash.digest_len <= ZEL_MAX_DIGEST_LEN && !is_inert(hash);
}

std::int32_t take_digest(Digest &digest, const Message &message, const HASH_ALGORITHM &hash,
                         std::span<const std::uint8_t> prefix) noexcept {
  if (!is_usable(hash)) return ZEL_ERR_GENERIC;
  if (message.is_hashed()) {
    if (message.len() == 0 || message.len() > digest.size()) return ZEL_ERR_GENERIC;
    digest.fill(0);
    std::memcpy(digest.data(), message.data(), message.len());
    return ZEL_OK;
  }
  Wiped<HASH_CONTEXT> context;
  std::uint32_t len = 0;
  if (HASH_Initialize(&*context, &hash) != ZEL_OK) return ZEL_ERR_GENERIC;
  HASH_Update_clone(&*context, prefix.data(), static_cast<std::uint32_t>(prefix.size()));
  if (message.feed(*context) != ZEL_OK) return ZEL_ERR_GENERIC;
  HASH_Finalize(digest.data(), &len, &*context);
  return len == 0 ? ZEL_ERR_GENERIC : ZEL_OK;
}

std::int32_t write_digest(std::uint8_t *out, std::uint32_t *out_len, const Message &message,
                          const HASH_ALGORITHM &hash,
                          std::span<const std::uint8_t> prefix) noexcept {
  Wiped<Digest> digest;
  const std::int32_t status = take_digest(*digest, message, hash, prefix);
  if (status != ZEL_OK) return status;
  std::memcpy(out, digest->data(), hash.digest_len);
  *out_len = hash.digest_len;
  return ZEL_OK;
}

}  // namespace zel::pk
