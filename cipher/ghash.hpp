// GHASH, the universal hash of GCM. NIST SP 800-38D, section 6.4.
//
// Inside, a block is the 128-bit number of its bytes read from the last to the first, so that bit i
// is the coefficient of x^(127-i). The product of two such numbers lacks a factor x; the powers of
// H are kept divided by x, which makes up for it once and for all.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/wipe.hpp"

namespace zel::ghash {

inline constexpr std::size_t kBlockLen = 16;
/// How many blocks are reduced together at most.
inline constexpr std::size_t kMaxPowers = 16;

/// Powers of H, each divided by x, as little-endian numbers: H^k stands at [kMaxPowers - k], so
/// that the factors of a run of blocks stand in the order of the blocks.
struct Powers {
  alignas(32) std::uint8_t value[kMaxPowers][kBlockLen];
  /// The sum of the two halves of each, in both halves: Karatsuba's middle factor.
  alignas(32) std::uint8_t sum[kMaxPowers][kBlockLen];
  std::size_t count;
};

/// One way to multiply.
struct Engine {
  /// Fills powers for messages of about `blocks` blocks; `h` is the hash key.
  void (*fill)(Powers &powers, const std::uint8_t *h, std::size_t blocks) noexcept;
  /// y = (y ^ block) * H for each of `count` blocks.
  void (*absorb)(const Powers &powers, std::uint8_t *y, const std::uint8_t *in,
                 std::size_t count) noexcept;
};
extern const Engine portable, pclmul, vaes;

/// The best engine that this processor has.
const Engine &engine() noexcept;

/// How many powers pay for themselves, a power of two.
constexpr std::size_t powers_for(std::size_t blocks) noexcept {
  if (blocks >= 64) return kMaxPowers;
  if (blocks >= 8) return 8;
  if (blocks >= 4) return 4;
  return blocks >= 2 ? 2 : 1;
}

/// A running hash.
class Hash {
 public:
  /// `blocks` says about how long the message is; it decides over speed alone.
  Hash(const std::uint8_t *h, std::size_t blocks) noexcept : engine_(engine()), y_(Block{}) {
    engine_.fill(*powers_, h, blocks);
  }

  /// Whole blocks; a partial one behind them is filled up with zero bytes.
  void absorb_padded(const std::uint8_t *in, std::size_t len) noexcept;
  /// The last block: two bit lengths.
  void absorb_lengths(std::uint64_t first_bytes, std::uint64_t second_bytes) noexcept;
  /// Forgets the message and keeps the key.
  void restart() noexcept { *y_ = {}; }

  const std::uint8_t *value() const noexcept { return y_->bytes; }

 private:
  struct Block {
    std::uint8_t bytes[kBlockLen];
  };
  const Engine &engine_;
  Wiped<Powers> powers_;
  Wiped<Block> y_;
};

}  // namespace zel::ghash
