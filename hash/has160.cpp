// HAS-160: blocks of 64 bytes, five words, four rounds of 20 steps. TTAS.KO-12.0011/R2.
#include "base/ct.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/roots.hpp"
#include "hash/slots.hpp"
#include "hash/words.hpp"

namespace zel {
namespace {

using State = std::array<std::uint32_t, 5>;
constexpr State kInitial = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
constexpr std::array<std::uint32_t, 4> kConstants = {
    0, hash::scaled_root(2, 2), hash::scaled_root(3, 2), hash::scaled_root(5, 2)};

/// Left rotation of A, by the step within the round; of B, by the round.
constexpr std::array<int, 20> kRotateA = {5, 11, 7, 15, 6, 13, 8, 14, 7, 12,
                                          9, 11, 8, 15, 6, 12, 9, 14, 5, 13};
constexpr std::array<int, 4> kRotateB = {10, 17, 25, 30};

/// The i-th message word of a round. The standard lists the 64; each round is an affine map.
constexpr std::size_t message_word(std::size_t round, std::size_t i) {
  constexpr std::array<std::size_t, 4> kFactor = {1, 3, 9, 11};
  constexpr std::array<std::size_t, 4> kFirst = {0, 3, 12, 7};
  return (kFactor[round] * i + kFirst[round]) % 16;
}

/// The word of step 0 to 19 of a round: four message words follow each of the extra words 18, 19,
/// 16, 17. Extra word 16 + j is the XOR of the round's message words 4j to 4j + 3.
constexpr std::size_t step_word(std::size_t round, std::size_t step) {
  constexpr std::array<std::size_t, 4> kExtra = {18, 19, 16, 17};
  const std::size_t group = step / 5;
  return step % 5 == 0 ? kExtra[group] : message_word(round, 4 * group + step % 5 - 1);
}
static_assert(step_word(1, 1) == 3 && step_word(2, 19) == 3 && step_word(3, 10) == 16);

template <std::size_t kRound>
[[gnu::always_inline]] inline std::uint32_t mix(std::uint32_t b, std::uint32_t c,
                                                std::uint32_t d) noexcept {
  if constexpr (kRound == 0) return ((c ^ d) & b) ^ d;
  if constexpr (kRound == 2) return c ^ (b | ~d);
  return b ^ c ^ d;
}

template <std::size_t kStep>
[[gnu::always_inline]] inline void step(State &v, std::uint32_t word) noexcept {
  constexpr std::size_t kRound = kStep / 20;
  const auto letter = [&v](std::size_t n) -> std::uint32_t & { return v[(n + 80 - kStep) % 5]; };
  // The chain of steps runs through A, whose rotation is added last; `opaque` keeps that order.
  const std::uint32_t sum = ct::opaque(letter(4) + word + kConstants[kRound]);
  letter(4) = (sum + mix<kRound>(letter(1), letter(2), letter(3))) +
              std::rotl(letter(0), kRotateA[kStep % 20]);
  letter(1) = std::rotl(letter(1), kRotateB[kRound]);
}

}  // namespace

void hash::has160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  auto h = load_state<State>(state);
  for (; count != 0; --count, data += 64) {
    State v = h;
    const auto x = load_block_le(data);
    unroll<4>([&](auto round) __attribute__((always_inline)) {
      std::array<std::uint32_t, 4> extra{};
      unroll<16>([&](auto i)
                     __attribute__((always_inline)) { extra[i / 4] ^= x[message_word(round, i)]; });
      unroll<20>([&](auto i) __attribute__((always_inline)) {
        constexpr std::size_t kWord = step_word(round, i);
        step<20 * round + i>(v, kWord < 16 ? x[kWord % 16] : extra[kWord % 4]);
      });
    });
    add_words(h, v);
  }
  store_state(state, h);
}

}  // namespace zel

using namespace zel;

void HAS160_Initialize(void *state) { hash::store_state(state, kInitial); }

void HAS160_CompressBlock(void *state, const std::uint8_t *block) {
  hash::has160_blocks(state, block, 1);
}

void HAS160_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_le(block, bit_count);
}

void HAS160_DumpDigest(std::uint8_t *out, const void *state) { hash::dump_le<5>(out, state); }

constinit const HASH_ALGORITHM pophas160 = {
    .digest_len = 20,
    .Initialize = HAS160_Initialize,
    .CompressBlock = HAS160_CompressBlock,
    .PadLength = HAS160_PadLength,
    .DumpDigest = HAS160_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_pophas160 ZEL_HIDDEN_ALIAS("pophas160");
