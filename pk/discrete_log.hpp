// What the schemes over discrete logarithms share: the subgroup and its powers, random numbers, and
// the hash value that enters a signature.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "base/wipe.hpp"
#include "pk/message.hpp"
#include "zel_cc/legacy_rng.h"
#include "zel_cc/mint.h"

namespace zel::pk {

/// Draws of a nonce or key until the caller's group is given up. Of the numbers that a group asks
/// for one in 256 fits at least.
inline constexpr std::uint32_t kDraws = 1U << 16;
/// Rounds of a search whose every round is a power; with a real group the first or second ends it,
/// and with numbers that are none the powers may take long.
inline constexpr std::uint32_t kRounds = 128;

inline bool fits(const MINT &a) noexcept { return a.length <= ZEL_MINT_WORDS; }
inline std::uint32_t byte_len(std::uint32_t bits) noexcept { return (bits + 7) / 8; }

/// A prime q, a prime p with q dividing p - 1, and g of order q; that is, numbers of the caller.
struct Group {
  const MINT &p;
  const MINT &q;
  const MINT &g;

  /// Whether the arithmetic has its ground: p and q odd and above 1, q not above p, g not zero
  /// modulo p, all within a record. Nothing is tested for being prime.
  bool is_usable() const noexcept;
  std::uint32_t p_bits() const noexcept { return MINT_GetBitLength(&p); }
  std::uint32_t q_bits() const noexcept { return MINT_GetBitLength(&q); }

  /// r = g^e mod p for a secret e, of the significant length of p, not trimmed: as public as the
  /// lengths of e and q, though not its value. False: no memory.
  [[nodiscard]] bool power(MINT &r, const MINT &e) const noexcept;
  /// Whether y = g^e mod p for a secret e.
  bool is_power(const MINT &y, const MINT &e) const noexcept;
  /// Whether a^q = 1 mod p.
  bool has_order_q(const MINT &a) const noexcept;
  /// The same, and y < p.
  bool holds(const MINT &y) const noexcept;
};

/// Zero words at the top go; for public values, and for keys, whose length is public.
inline void trim(MINT &a) noexcept { MINT_RightShift(&a, 0); }

/// RANDHASH from a fresh seed. Test it before use: it does not work where the module is not
/// serving.
class RandHash {
 public:
  RandHash() noexcept;
  explicit operator bool() const noexcept { return serves_; }
  void fill(std::uint8_t *out, std::uint32_t len) noexcept {
    RANDHASH_GetRandomNum(out, len, &*context_);
  }

 private:
  Wiped<RANDHASH_CONTEXT> context_;
  bool serves_;
};

/// Random bits from Hash_DRBG in as many bytes as they begin. False where it fails.
[[nodiscard]] bool fill_from_drbg(std::uint8_t *out, std::uint32_t bits) noexcept;

/// A hash value where the scheme reads it: as long as the descriptor says, whatever was given.
using Digest = std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN>;

/// Whether the hash computes something of a length that fits.
bool is_usable(const HASH_ALGORITHM &hash) noexcept;

/// The value given by the caller, with zeros behind it, or Hash(prefix || message).
/// ZEL_ERR_GENERIC: a given value of 0 or more than 64 bytes; a hash or a stream that does not
/// work.
[[nodiscard]] std::int32_t take_digest(Digest &digest, const Message &message,
                                       const HASH_ALGORITHM &hash,
                                       std::span<const std::uint8_t> prefix = {}) noexcept;

/// The same for an EMSA1 function, which writes the digest and its length.
[[nodiscard]] std::int32_t write_digest(std::uint8_t *out, std::uint32_t *out_len,
                                        const Message &message, const HASH_ALGORITHM &hash,
                                        std::span<const std::uint8_t> prefix = {}) noexcept;

}  // namespace zel::pk
