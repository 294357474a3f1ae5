// KCDSA domain parameters. TTAK.KO-12.0001, appendix; departures are marked.
#include <algorithm>

#include "base/bytes.hpp"
#include "pk/kcdsa.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"
#include "zel_cc/mint_rand.h"
#include "zel_cc/prime.h"

namespace zel {
namespace pk::kcdsa {

Prng prng_for(std::uint32_t q_bits) noexcept {
  if (q_bits == 224) return KCDSARNGSHA224_PRNG;
  if (q_bits == 256) return KCDSARNGSHA256_PRNG;
  return KCDSARNGHAS160_PRNG;
}

}  // namespace pk::kcdsa

namespace {

using pk::kcdsa::Prng;

constexpr std::uint32_t kWordBits = 32;
constexpr std::uint32_t kWindow = 4;
constexpr std::uint32_t kMaxBits = 4096;
constexpr std::uint32_t kMaxSeedLen = sizeof KCDSA_PARAM::seed;
/// p has so many bits more than its factors J and q were asked to have.
constexpr std::uint32_t kSlack = 4;
constexpr std::uint32_t kLastCount = 1U << 24;
/// Seeds until a search is given up: one in some hundred gives a prime J.
constexpr std::uint32_t kSeeds = 1U << 17;

constexpr std::uint32_t words_of(std::uint32_t bits) noexcept {
  return (bits + kWordBits - 1) / kWordBits;
}

using Seed = std::array<std::uint8_t, kMaxSeedLen + 4>;

/// r = the generator's output with the top bit of its top word and its lowest bit set.
bool derive(MINT &r, Prng prng, std::uint32_t bits, const std::uint8_t *seed_bytes,
            std::uint32_t seed_len) noexcept {
  std::array<std::uint8_t, ZEL_MINT_BYTES> bytes;
  if (prng(bytes.data(), bits, seed_bytes, 8 * seed_len) != ZEL_OK) return false;
  MINT_SetByByteArray(&r, bytes.data(), static_cast<std::int32_t>(pk::byte_len(bits)));
  r.words[r.length - 1] |= 1U << (kWordBits - 1);
  r.words[0] |= 1;
  return true;
}

/// q from the seed and a counter behind it.
bool derive_q(MINT &q, Prng prng, std::uint32_t bits, Seed &seed_bytes, std::uint32_t seed_len,
              std::uint32_t count) noexcept {
  store_be32(seed_bytes.data() + seed_len, count);
  return derive(q, prng, bits, seed_bytes.data(), seed_len + 4);
}

/// p = 2 J q + 1.
void compose(MINT &p, const MINT &j, const MINT &q) noexcept {
  MINT_Mult(&p, &j, &q);
  MINT_LeftShift(&p, 1);
  MINT_AddInteger(&p, &p, 1);
}

bool is_prime(const MINT &a, std::uint32_t bits) noexcept {
  return PRIME_MRTest(&a, PRIME_SelectMRIter(bits)) == 1;
}

/// What a search finds, intermediate values included.
struct Found {
  MINT p, q, g, j, h;
  Seed seed_bytes;
  std::uint32_t seed_len;
  std::uint32_t count;
};

/// A search for parameters of two sizes.
class Search {
 public:
  Search(std::uint32_t p_bits, std::uint32_t q_bits) noexcept
      : p_bits_(p_bits), q_bits_(q_bits), prng_(pk::kcdsa::prng_for(q_bits)) {}

  /// Whether the seed fits its field and a product that has the top bits set fits in p.
  bool may_succeed() const noexcept {
    return q_bits_ != 0 && q_bits_ <= 8 * kMaxSeedLen && p_bits_ <= kMaxBits &&
           p_bits_ > q_bits_ + kSlack &&
           kWordBits * (words_of(j_bits()) + words_of(q_bits_)) <= p_bits_;
  }

  bool run(Found &found) noexcept {
    pk::RandHash random;
    found.seed_len = pk::byte_len(q_bits_);
    if (!random || !pk::fill_from_drbg(found.seed_bytes.data(), 8 * found.seed_len)) return false;
    for (std::uint32_t seeds = kSeeds; seeds != 0; --seeds) {
      if (!derive(found.j, prng_, j_bits(), found.seed_bytes.data(), found.seed_len)) return false;
      if (is_prime(found.j, p_bits_ - q_bits_) && find_primes(found)) return find_generator(found);
      std::array<std::uint8_t, kMaxSeedLen> fresh;
      random.fill(fresh.data(), found.seed_len);
      xor_bytes(found.seed_bytes.data(), found.seed_bytes.data(), fresh.data(), found.seed_len);
    }
    return false;
  }

 private:
  std::uint32_t j_bits() const noexcept { return p_bits_ - q_bits_ - kSlack; }

  bool find_primes(Found &found) const noexcept {
    for (found.count = 1; found.count <= kLastCount; ++found.count) {
      if (!derive_q(found.q, prng_, q_bits_, found.seed_bytes, found.seed_len, found.count))
        return false;
      if (!is_prime(found.q, q_bits_)) continue;
      compose(found.p, found.j, found.q);
      if (MINT_GetBitLength(&found.p) <= p_bits_ && is_prime(found.p, p_bits_)) return true;
    }
    return false;
  }

  /// h below p. False when none of very many draws is.
  bool draw_base(Found &found) const noexcept {
    for (std::uint32_t draws = pk::kDraws; draws != 0; --draws) {
      MINT_Rand(&found.h, p_bits_);
      if (MINT_Compare(&found.h, &found.p) < 0) return true;
    }
    return false;
  }

  bool find_generator(Found &found) const noexcept {
    MINT exponent = found.j;
    MINT one;
    MINT_SetByInteger(&one, 1);
    MINT_RandInit();
    for (std::uint32_t rounds = kWordBits; rounds != 0; --rounds) {
      if (!draw_base(found)) return false;
      // Deliberate: doubled in every round, so that a second one raises to 4 J.
      MINT_LeftShift(&exponent, 1);
      if (MINT_ExpWin(&found.g, &found.h, &exponent, &found.p, kWindow) != ZEL_OK) return false;
      if (MINT_Compare(&found.g, &one) > 0) return true;
    }
    return false;
  }

  std::uint32_t p_bits_;
  std::uint32_t q_bits_;
  Prng prng_;
};

/// Generates and hands over what both records have: p, q, g and the seed.
template <class Record, class Rest>
std::int32_t generate(void *param, std::uint32_t p_bits, std::uint32_t q_bits,
                      const Rest &store_rest) noexcept {
  if (param == nullptr) return ZEL_ERR_GENERIC;
  Search search(p_bits, q_bits);
  Found found = {};
  if (!search.may_succeed() || !search.run(found)) return ZEL_ERR_GENERIC;
  Record record = {};
  record.p = found.p;
  record.q = found.q;
  record.g = found.g;
  std::memcpy(record.seed, found.seed_bytes.data(), found.seed_len);
  record.seed_len = found.seed_len;
  record.count = found.count;
  store_rest(record, found);
  *static_cast<Record *>(param) = record;
  return ZEL_OK;
}

/// Whether J comes from the seed. True when there is none.
bool seed_gives_cofactor(const KCDSA_PARAM &param, const MINT &j, std::uint32_t p_bits,
                         std::uint32_t q_bits) noexcept {
  if (param.seed_len == 0) return true;
  if (param.seed_len > kMaxSeedLen || p_bits <= q_bits + kSlack) return false;
  MINT derived;
  return derive(derived, KCDSARNGHAS160_PRNG, p_bits - q_bits - kSlack, param.seed,
                param.seed_len) &&
         MINT_Compare(&derived, &j) == 0;
}

/// The same for q.
bool seed_gives_q(const KCDSA_PARAM &param, std::uint32_t q_bits) noexcept {
  if (param.seed_len == 0) return true;
  Seed seed_bytes;
  std::memcpy(seed_bytes.data(), param.seed, param.seed_len);
  MINT derived;
  return derive_q(derived, KCDSARNGHAS160_PRNG, q_bits, seed_bytes, param.seed_len, param.count) &&
         MINT_Compare(&derived, &param.q) == 0;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t KCDSA_GenParam(void *param, uint32_t pBits, uint32_t qBits) {
  return generate<KCDSA_PARAM>(param, pBits, qBits, [](KCDSA_PARAM &, const Found &) {});
}

int32_t KCDSA_GenParamEx(void *param, uint32_t pBits, uint32_t qBits) {
  constexpr std::uint32_t kMaxLen = sizeof KCDSA_PARAM_EX::h;
  if (pBits > 8 * kMaxLen || qBits >= pBits ||
      4 * words_of(pBits - qBits - kSlack) > sizeof KCDSA_PARAM_EX::J) {
    return ZEL_ERR_GENERIC;
  }
  return generate<KCDSA_PARAM_EX>(
      param, pBits, qBits, [pBits](KCDSA_PARAM_EX &record, const Found &found) {
        MINT_WriteInByteArray(record.J, &record.J_len, &found.j);
        MINT_WriteLSNByteInByteArray(record.h, pk::byte_len(pBits), &found.h);
      });
}

int32_t KCDSA_CheckParam(const void *param) {
  if (param == nullptr) return ZEL_ERR_GENERIC;
  const auto &given = *static_cast<const KCDSA_PARAM *>(param);
  const pk::Group group = pk::kcdsa::group_of(given);
  if (!group.is_usable()) return ZEL_ERR_GENERIC;
  const std::uint32_t p_bits = group.p_bits();
  const std::uint32_t q_bits = group.q_bits();
  MINT half;
  MINT j;
  MINT rest;
  MINT_SubInteger(&half, &given.p, 1);
  MINT_RightShift(&half, 1);
  if (MINT_Div(&j, &rest, &half, &given.q) != ZEL_OK) return ZEL_ERR_GENERIC;
  // Deliberate: always the generator over HAS-160, so that longer q with a seed do not pass.
  if (!seed_gives_cofactor(given, j, p_bits, q_bits)) return ZEL_ERR_GENERIC;
  if (!is_prime(j, MINT_GetBitLength(&j))) return ZEL_ERR_GENERIC;
  if (!seed_gives_q(given, q_bits) || MINT_GetBitLength(&rest) != 0) return ZEL_ERR_GENERIC;
  const bool valid =
      is_prime(given.q, q_bits) && is_prime(given.p, p_bits) && group.has_order_q(given.g);
  return valid ? ZEL_OK : ZEL_ERR_GENERIC;
}
