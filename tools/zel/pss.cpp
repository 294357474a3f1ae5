#include "tools/zel/pss.hpp"

#include <algorithm>

#include "tools/zel/hex.hpp"
#include "zel_cc/rsa.h"

namespace zel::tool {
namespace {

constexpr std::uint8_t kTrailer = 0xbc;
constexpr std::uint8_t kSeparator = 0x01;
constexpr std::uint32_t kLeastExponentBits = 17;  // exponents are odd
/// Where a modulus of 1024 bits meets a hash of 512, the library's salt is two bytes shorter.
constexpr std::uint32_t kTightModulus = 1024;
constexpr std::size_t kTightHash = 64;
constexpr std::size_t kTightSalt = 62;

}  // namespace

bool has_pss_exponent(const Key &key) { return MINT_GetBitLength(&key[kE]) >= kLeastExponentBits; }

bool is_well_formed_pss(const Key &key, const HASH_ALGORITHM &hash, const MINT &signature) {
  if (!has_pss_exponent(key)) return false;
  RSA_PUBLIC_KEY public_key{key[kN], key[kE]};
  MINT representative{};
  if (RSA_VP1(&representative, &signature, &public_key) != ZEL_OK) return false;

  const std::uint32_t em_bits = key.bits() - 1;
  const std::size_t em_len = (em_bits + 7) / 8;
  const std::size_t hash_len = hash.digest_len;
  const bool tight = key.bits() == kTightModulus && hash_len == kTightHash;
  const std::size_t salt_len = tight ? kTightSalt : hash_len;
  if (em_len < hash_len + salt_len + 2 || MINT_GetBitLength(&representative) > em_bits) {
    return false;  // section 9.1.2, steps 3 and 6
  }
  Bytes em(em_len);
  write_number(representative, em);
  const std::size_t db_len = em_len - hash_len - 1;
  Bytes db(db_len);
  RSA_MGF1(db.data(), static_cast<std::uint32_t>(db_len), em.data() + db_len,
           static_cast<std::uint32_t>(hash_len), &hash);
  for (std::size_t i = 0; i < db_len; ++i)
    db[i] ^= em[i];
  db[0] &= static_cast<std::uint8_t>(0xff >> (8 * em_len - em_bits));
  const auto separator = db.end() - static_cast<std::ptrdiff_t>(salt_len) - 1;
  return em.back() == kTrailer && *separator == kSeparator &&
         std::all_of(db.begin(), separator, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace zel::tool
