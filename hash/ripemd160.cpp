// RIPEMD-160: blocks of 64 bytes, five words, two parallel lines of five rounds of 16 steps.
// ISO/IEC 10118-3; Dobbertin, Bosselaers, Preneel: RIPEMD-160, a strengthened version of RIPEMD.
#include "base/ct.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/roots.hpp"
#include "hash/slots.hpp"
#include "hash/words.hpp"

namespace zel {
namespace {

using State = std::array<std::uint32_t, 5>;
constexpr State kInitial = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};

/// Added constants: square roots in the left line, cube roots in the right one.
constexpr std::array<std::uint32_t, 5> kLeft = {0, hash::scaled_root(2, 2), hash::scaled_root(3, 2),
                                                hash::scaled_root(5, 2), hash::scaled_root(7, 2)};
constexpr std::array<std::uint32_t, 5> kRight = {hash::scaled_root(2, 3), hash::scaled_root(3, 3),
                                                 hash::scaled_root(5, 3), hash::scaled_root(7, 3),
                                                 0};

/// The i-th message word of a round: rho once a round, and pi first of all in the right line.
constexpr std::size_t message_word(bool right, std::size_t round, std::size_t i) {
  constexpr std::array<std::size_t, 16> kRho = {7,  4, 13, 1, 10, 6,  15, 3,
                                                12, 0, 9,  5, 2,  14, 11, 8};
  std::size_t word = right ? (9 * i + 5) % 16 : i;
  for (std::size_t n = 0; n < round; ++n)
    word = kRho[word];
  return word;
}

/// Left rotations, by round and message word; the same in both lines.
constexpr std::array<std::array<int, 16>, 5> kRotate = {
    {{11, 14, 15, 12, 5, 8, 7, 9, 11, 13, 14, 15, 6, 7, 9, 8},
     {12, 13, 11, 15, 6, 9, 9, 7, 12, 15, 11, 13, 7, 8, 7, 7},
     {13, 15, 14, 11, 7, 7, 6, 8, 13, 14, 13, 12, 5, 5, 6, 9},
     {14, 11, 12, 14, 8, 6, 5, 5, 15, 12, 15, 14, 9, 9, 8, 6},
     {15, 12, 13, 13, 9, 5, 8, 6, 14, 11, 12, 11, 8, 6, 5, 5}}};

/// sum + f(b, c, d). The chain of steps runs through b, so whatever can be done without b comes
/// first; the two halves of the fourth function have no bit in common and are added one by one.
/// `opaque` keeps compilers from choosing another order.
template <std::size_t kFunction>
[[gnu::always_inline]] inline std::uint32_t add_mix(std::uint32_t sum, std::uint32_t b,
                                                    std::uint32_t c, std::uint32_t d) noexcept {
  if constexpr (kFunction == 0) return sum + (ct::opaque(c ^ d) ^ b);
  if constexpr (kFunction == 1) return sum + (((c ^ d) & b) ^ d);
  if constexpr (kFunction == 2) return sum + ((b | ~c) ^ d);
  if constexpr (kFunction == 3) return ct::opaque(sum + (c & ~d)) + (b & d);
  return sum + (b ^ (c | ~d));
}

template <bool kIsRight, std::size_t kStep>
[[gnu::always_inline]] inline void step(State &v, const std::array<std::uint32_t, 16> &x) noexcept {
  constexpr std::size_t kRound = kStep / 16;
  constexpr std::size_t kWord = message_word(kIsRight, kRound, kStep % 16);
  constexpr std::size_t kFunction = kIsRight ? 4 - kRound : kRound;
  const auto letter = [&v](std::size_t n) -> std::uint32_t & { return v[(n + 80 - kStep) % 5]; };
  const std::uint32_t sum = ct::opaque(letter(0) + x[kWord] + (kIsRight ? kRight : kLeft)[kRound]);
  const std::uint32_t mixed = add_mix<kFunction>(sum, letter(1), letter(2), letter(3));
  letter(0) = std::rotl(mixed, kRotate[kRound][kWord]) + letter(4);
  letter(2) = std::rotl(letter(2), 10);
}

}  // namespace

void hash::ripemd160_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  if (gate::approved_only()) return;
  auto h = load_state<State>(state);
  for (; count != 0; --count, data += 64) {
    State left = h;
    State right = h;
    const auto x = load_block_le(data);
    unroll<80>([&](auto i) __attribute__((always_inline)) {
      step<false, i>(left, x);
      step<true, i>(right, x);
    });
    h = {h[1] + left[2] + right[3], h[2] + left[3] + right[4], h[3] + left[4] + right[0],
         h[4] + left[0] + right[1], h[0] + left[1] + right[2]};
  }
  store_state(state, h);
}

}  // namespace zel

using namespace zel;

void RIPEMD160_Initialize(void *state) {
  if (gate::approved_only()) return;
  hash::store_state(state, kInitial);
}

void RIPEMD160_CompressBlock(void *state, const std::uint8_t *block) {
  hash::ripemd160_blocks(state, block, 1);
}

void RIPEMD160_PadLength(std::uint8_t *block, const void *bit_count) {
  if (gate::approved_only()) return;
  hash::pad_length_le(block, bit_count);
}

void RIPEMD160_DumpDigest(std::uint8_t *out, const void *state) {
  if (gate::approved_only()) return;
  hash::dump_le<5>(out, state);
}

constinit const HASH_ALGORITHM ripemd160 = {
    .digest_len = 20,
    .Initialize = RIPEMD160_Initialize,
    .CompressBlock = RIPEMD160_CompressBlock,
    .PadLength = RIPEMD160_PadLength,
    .DumpDigest = RIPEMD160_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_ripemd160 ZEL_HIDDEN_ALIAS("ripemd160");
