// The RSA primitives. RFC 8017, sections 4, 5 and appendix B.2.1.
#include "pk/rsa_primitive.hpp"

#include <algorithm>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "mint/secret_crt.hpp"
#include "mint/secret_exp.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"
#include "zel_cc/mint_rand.h"

namespace zel::pk {
namespace {

constexpr std::uint32_t kWordBits = 32;

std::uint32_t used(const MINT &a) noexcept {
  return std::min<std::uint32_t>(a.length, ZEL_MINT_WORDS);
}

bool is_odd(const MINT &a) noexcept { return used(a) != 0 && a.words[0] % 2 != 0; }

/// Whether a number is odd and not one.
bool is_modulus(const MINT &a) noexcept { return is_odd(a) && MINT_GetBitLength(&a) > 1; }

/// The power modulo one prime. The exponent counts in full even where it is longer than the prime.
mint::SecretPower half_of(MINT &r, const MINT &m, const MINT &exponent,
                          const MINT &prime) noexcept {
  return {&r, &m, &exponent, &prime, kWordBits * std::max(used(prime), used(exponent))};
}

std::int32_t raise_private(MINT &s, const MINT &m, const RSA_PRIVATE_KEY &key) noexcept {
  if (!is_odd(key.n) || !is_modulus(key.p) || !is_modulus(key.q)) return ZEL_ERR_GENERIC;
  if (!mint::product_fits(key.p, key.q)) return ZEL_ERR_GENERIC;
  if (MINT_GetBitLength(&m) == 0) {
    s = MINT{};
    return ZEL_OK;
  }
  Wiped<MINT> a;
  Wiped<MINT> b;
  if (mint::power_secret_two(half_of(*a, m, key.dP, key.p), half_of(*b, m, key.dQ, key.q)) !=
      ZEL_OK) {
    return ZEL_ERR_GENERIC;
  }
  if (mint::combine_secret(*a, {&*a, &key.p, &*b, &key.q, &key.qInv}) != ZEL_OK) {
    return ZEL_ERR_GENERIC;
  }
  s = *a;
  return ZEL_OK;
}

}  // namespace

std::int32_t private_operation(MINT &s, const MINT &m, const RSA_PRIVATE_KEY &key) noexcept {
  return with_wiped_stack<kStackDepth>([&] { return raise_private(s, m, key); });
}

std::int32_t public_operation(MINT &m, const MINT &s, const RSA_PUBLIC_KEY &key) noexcept {
  if (MINT_Compare(&s, &key.n) >= 0) return ZEL_ERR_RSA_REPRESENTATIVE;
  if (!is_odd(key.n)) return ZEL_ERR_GENERIC;
  constexpr std::uint32_t kWindow = 4;
  return MINT_ExpWin(&m, &s, &key.e, &key.n, kWindow);
}

void octets_to_integer(MINT &a, const std::uint8_t *bytes, std::uint32_t len) noexcept {
  a = MINT{};
  MINT_SetByByteArray(&a, bytes, static_cast<std::int32_t>(len));
}

void secret_to_octets(std::uint8_t *bytes, std::uint32_t len, const MINT &a) noexcept {
  constexpr std::uint32_t kWordLen = 4;
  for (std::uint32_t i = 0; i < len; ++i) {
    const std::uint32_t word = a.words[i / kWordLen];
    bytes[len - 1 - i] = static_cast<std::uint8_t>(word >> (8 * (i % kWordLen)));
  }
}

bool apply_mask(std::uint8_t *data, std::uint32_t len, const std::uint8_t *seed,
                std::uint32_t seed_len, const HASH_ALGORITHM &hash) noexcept {
  Wiped<HASH_CONTEXT> seeded;
  if (hash.digest_len > ZEL_MAX_DIGEST_LEN || HASH_Initialize(&*seeded, &hash) != ZEL_OK) {
    return false;
  }
  HASH_Update_KZEL(&*seeded, seed, seed_len);
  Wiped<HASH_CONTEXT> context;
  Wiped<std::uint8_t[ZEL_MAX_DIGEST_LEN]> block;
  zero<ZEL_MAX_DIGEST_LEN>(&*block);
  for (std::uint32_t counter = 0; len != 0; ++counter) {
    std::uint8_t counter_bytes[4];
    store_be32(counter_bytes, counter);
    *context = *seeded;
    HASH_Update_KZEL(&*context, counter_bytes, sizeof counter_bytes);
    std::uint32_t block_len = 0;
    HASH_Finalize(*block, &block_len, &*context);
    if (block_len == 0) return false;
    const std::uint32_t part = std::min(len, block_len);
    xor_bytes(data, data, *block, part);
    data += part;
    len -= part;
  }
  return true;
}

void draw_octets(std::uint8_t *bytes, std::uint32_t len) noexcept {
  Wiped<MINT> number;
  *number = MINT{};
  MINT_RandInit();
  MINT_Rand(&*number, 8 * len);
  secret_to_octets(bytes, len, *number);
}

}  // namespace zel::pk

using namespace zel;
using namespace zel::pk;

extern "C" {

int32_t RSA_SP1(MINT *out, const MINT *in, const RSA_PRIVATE_KEY *key) {
  if (any_null(out, in) || key == nullptr) return ZEL_ERR_GENERIC;
  return private_operation(*out, *in, *key);
}

int32_t RSA_VP1(MINT *out, const MINT *in, const RSA_PUBLIC_KEY *key) {
  if (any_null(out, in) || key == nullptr) return ZEL_ERR_GENERIC;
  return public_operation(*out, *in, *key);
}

int32_t RSA_I2OSP(uint8_t *out, uint32_t *out_len, const MINT *a) {
  if (any_null(out) || any_null(out_len) || a == nullptr) return ZEL_ERR_GENERIC;
  const std::uint32_t words = std::min<std::uint32_t>(a->length, ZEL_MINT_WORDS);
  *out_len = 4 * words;
  for (std::uint32_t i = 0; i < words; ++i)
    store_be32(out + std::size_t{4} * i, a->words[words - 1 - i]);
  return words == 0 ? ZEL_ERR_GENERIC : ZEL_OK;
}

int32_t RSA_MGF1(uint8_t *mask, uint32_t mask_len, const uint8_t *seed, uint32_t seed_len,
                 const HASH_ALGORITHM *hash) {
  if ((mask == nullptr && mask_len != 0) || (seed == nullptr && seed_len != 0) || hash == nullptr) {
    return ZEL_ERR_GENERIC;
  }
  if (mask_len == 0) return ZEL_OK;
  std::memset(mask, 0, mask_len);
  // The mask stays zero where hashing is refused: there is no other answer than success.
  static_cast<void>(apply_mask(mask, mask_len, seed, seed_len, *hash));
  return ZEL_OK;
}

}  // extern "C"
