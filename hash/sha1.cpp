// SHA-1: blocks of 64 bytes, five words, 80 rounds. FIPS 180-4, section 6.1.
#include "base/cpu.hpp"
#include "base/wipe.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/isa_blocks.hpp"
#include "hash/roots.hpp"
#include "hash/slots.hpp"
#include "hash/words.hpp"

namespace zel {
namespace {

using State = std::array<std::uint32_t, 5>;
constexpr State kInitial = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
constexpr std::array<std::uint32_t, 4> kConstants = {
    hash::scaled_root(2, 2), hash::scaled_root(3, 2), hash::scaled_root(5, 2),
    hash::scaled_root(10, 2)};
static_assert(kConstants[0] == 0x5a827999 && kConstants[3] == 0xca62c1d6);

/// The function of twenty rounds: choose, parity, majority, parity.
template <std::size_t kPhase>
[[gnu::always_inline]] inline std::uint32_t mix(std::uint32_t b, std::uint32_t c,
                                                std::uint32_t d) noexcept {
  if constexpr (kPhase == 0) return ((c ^ d) & b) ^ d;
  if constexpr (kPhase == 2) return (b & c) + ((b ^ c) & d);
  return b ^ c ^ d;
}

template <std::size_t kRound>
[[gnu::always_inline]] inline void round(State &v, std::uint32_t word) noexcept {
  const auto letter = [&v](std::size_t n) -> std::uint32_t & { return v[(n + 80 - kRound) % 5]; };
  letter(4) += std::rotl(letter(0), 5) + mix<kRound / 20>(letter(1), letter(2), letter(3)) +
               kConstants[kRound / 20] + word;
  letter(1) = std::rotl(letter(1), 30);
}

void blocks_portable(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  auto h = hash::load_state<State>(state);
  Wiped<std::array<std::uint32_t, 16>> schedule;
  auto &w = *schedule;
  for (; count != 0; --count, data += sizeof w) {
    State v = h;
    w = hash::load_block_be<std::uint32_t>(data);
    hash::unroll<80>([&](auto i) __attribute__((always_inline)) {
      if constexpr (i >= 16) {
        w[i % 16] = std::rotl(w[(i - 3) % 16] ^ w[(i - 8) % 16] ^ w[(i - 14) % 16] ^ w[i % 16], 1);
      }
      round<i>(v, w[i % 16]);
    });
    hash::add_words(h, v);
  }
  hash::store_state(state, h);
}

}  // namespace

void hash::sha1_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  if (cpu::has(cpu::Feature::kSha)) return sha1_blocks_shani(state, data, count);
  blocks_portable(state, data, count);
}

}  // namespace zel

using namespace zel;

void SHA1_Initialize(void *state) { hash::store_state(state, kInitial); }

void SHA1_CompressBlock(void *state, const std::uint8_t *block) {
  hash::sha1_blocks(state, block, 1);
}

void SHA1_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_be<std::uint32_t>(block, bit_count);
}

void SHA1_DumpDigest(std::uint8_t *out, const void *state) {
  hash::dump_be<std::uint32_t, 5>(out, state);
}

constinit const HASH_ALGORITHM popsha1 = {
    .digest_len = 20,
    .Initialize = SHA1_Initialize,
    .CompressBlock = SHA1_CompressBlock,
    .PadLength = SHA1_PadLength,
    .DumpDigest = SHA1_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_popsha1 ZEL_HIDDEN_ALIAS("popsha1");
