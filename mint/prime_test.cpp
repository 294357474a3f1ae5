// Primality: trial division and the Miller-Rabin test. Handbook of Applied Cryptography, 4.24.
#include <algorithm>

#include "base/wipe.hpp"
#include "mint/montgomery.hpp"
#include "mint/record.hpp"
#include "mint/small_primes.hpp"
#include "zel_cc/prime.h"

namespace zel::mint {
namespace {

using limbs::DoubleLimb;
using limbs::kLimbBits;
using limbs::kMaxLimbs;
using Narrow = Limbs<kMaxLimbs>;

/// Iterations that make a wrong verdict on a random candidate rarer than 2^-80. Handbook of Applied
/// Cryptography, table 4.4; the first rows hold for themselves alone.
struct Iterations {
  std::uint32_t bits;
  std::uint32_t count;
};
constexpr Iterations kExactly[] = {{1024, 4}, {512, 8}, {160, 34}};
constexpr Iterations kFrom[] = {{1854, 2}, {1233, 3}, {927, 4},  {747, 5},  {627, 6}, {543, 7},
                                {480, 8},  {253, 17}, {191, 25}, {160, 34}, {0, 50}};

/// Residues of n modulo the products of `kLanes` groups, times a power of 2 that no prime sees:
/// division from the low end, side by side since each step waits for the last.
template <std::size_t kLanes>
bool has_divisor_in(const Limb *n, std::size_t len, const PrimeGroup *groups) noexcept {
  Limb rest[kLanes] = {};
  for (std::size_t i = 0; i < len; ++i) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const Limb difference = n[i] - rest[lane];
      const Limb borrow = n[i] < rest[lane];
      const Limb quotient = difference * groups[lane].inverse;
      rest[lane] =
          static_cast<Limb>((DoubleLimb{quotient} * groups[lane].product) >> kLimbBits) + borrow;
    }
  }
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    for (std::size_t p = groups[lane].first; p < groups[lane].end; ++p) {
      if (rest[lane] * kDivisors[p].inverse <= kDivisors[p].most) return true;
    }
  }
  return false;
}

bool has_small_divisor(const Limb *n, std::size_t len) noexcept {
  constexpr std::size_t kLanes = 6;
  static_assert(kPrimeGroups % kLanes == 0);
  for (std::size_t group = 0; group < kPrimeGroups; group += kLanes) {
    if (has_divisor_in<kLanes>(n, len, &kPrimeGroupTable[group])) return true;
  }
  return false;
}

/// An odd n above 1 as the test sees it: n - 1 = 2^twos * d.
class MillerRabin {
 public:
  explicit MillerRabin(const Narrow &n) noexcept : len_(n.size()), less_one_(len_), d_(len_) {
    prepare(*modulus_, n.data(), len_);
    limbs::sub_1(less_one_.data(), n.data(), len_, 1);
    while ((less_one_[twos_ / kLimbBits] >> (twos_ % kLimbBits) & 1) == 0)
      ++twos_;
    const std::size_t skip = twos_ / kLimbBits;
    limbs::zero(d_.data(), len_);
    limbs::rshift(d_.data(), less_one_.data() + skip, len_ - skip,
                  static_cast<unsigned>(twos_ % kLimbBits));
    bits_ = limbs::bit_length(n.data(), len_) - twos_;
  }

  /// Whether n passes with this base.
  bool passes(const Narrow &base) const noexcept {
    Wiped<Limb[kMontgomeryLimbs]> power;
    Wiped<Limb[kMontgomeryLimbs]> plain;
    enter(*modulus_, *power, base.data(), base.size());
    if (!raise({&*modulus_, *power, *power, d_.data(), bits_})) return false;
    leave(*modulus_, *plain, *power);
    if (is_one(*plain) || is_less_one(*plain)) return true;
    for (std::size_t i = 1; i < twos_; ++i) {
      square(*modulus_, *power, *power);
      leave(*modulus_, *plain, *power);
      if (is_less_one(*plain)) return true;
      if (is_one(*plain)) return false;
    }
    return false;
  }

 private:
  bool is_one(const Limb *x) const noexcept {
    return x[0] == 1 && limbs::significant(x, len_) == 1;
  }
  bool is_less_one(const Limb *x) const noexcept {
    return limbs::compare(x, less_one_.data(), len_) == 0;
  }

  Wiped<Modulus> modulus_;
  std::size_t len_;
  std::size_t twos_ = 0;
  std::size_t bits_ = 0;
  Narrow less_one_;
  Narrow d_;
};

}  // namespace
}  // namespace zel::mint

using namespace zel;
using namespace zel::mint;

extern "C" {

uint32_t PRIME_SelectMRIter(uint32_t bits) {
  for (const Iterations &row : kExactly) {
    if (bits == row.bits) return row.count;
  }
  return std::find_if(std::begin(kFrom), std::end(kFrom),
                      [bits](const Iterations &row) { return bits >= row.bits; })
      ->count;
}

int32_t PRIME_MRTest(const MINT *n, uint32_t iterations) {
  if (n == nullptr) return ZEL_ERR_GENERIC;
  const std::uint32_t words = significant(*n);
  if (words == 0 || n->words[0] % 2 == 0 || is_one(*n)) return 0;
  const Narrow value(n->words, words);
  // Deliberate: a prime of the table divides itself and is told composite.
  if (has_small_divisor(value.data(), value.size())) return 0;
  if (iterations == 0) return 1;
  const MillerRabin test(value);
  const std::uint32_t bits = MINT_GetBitLength(n);
  for (std::uint32_t i = 0; i < iterations; ++i) {
    // Deliberate: the bases 0 and 1 count, since each base is one set of draws.
    Wiped<MINT> base;
    do
      MINT_Rand(&*base, bits);
    while (MINT_Compare(&*base, n) >= 0);
    if (!test.passes(Narrow(*base))) return 0;
  }
  return 1;
}

}  // extern "C"
