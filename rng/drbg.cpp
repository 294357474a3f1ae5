// The four hashes of the DRBGs, and security strengths. NIST SP 800-90A, section 10.1, table 2.
#include "rng/drbg.hpp"

namespace zel::drbg {
namespace {

constexpr std::uint32_t kSeedBits = 440;
constexpr std::uint32_t kWideSeedBits = 888;

/// In the order of enum ZEL_DRBG_HASH.
constinit const Variant kVariants[] = {
    {&zel_own_sha224, kSeedBits, false},
    {&zel_own_sha256, kSeedBits, false},
    {&zel_own_sha384, kWideSeedBits, true},
    {&zel_own_sha512, kWideSeedBits, true},
};
const HASH_ALGORITHM *const kExported[] = {&sha224, &sha256, &sha384, &sha512};

}  // namespace

const Variant *variant_of(std::uint32_t hash_id) noexcept {
  return hash_id < std::size(kVariants) ? &kVariants[hash_id] : nullptr;
}

const Variant *variant_of(const HASH_ALGORITHM *given) noexcept {
  for (std::size_t i = 0; i < std::size(kVariants); ++i) {
    if (is_same(given, *kVariants[i].algorithm, *kExported[i])) return &kVariants[i];
  }
  return nullptr;
}

std::uint32_t rounded_strength(std::uint32_t wanted) noexcept {
  for (const std::uint32_t strength : {80U, 112U, 128U, 192U}) {
    if (wanted <= strength) return strength;
  }
  return 256;
}

}  // namespace zel::drbg
