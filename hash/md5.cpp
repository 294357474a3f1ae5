// MD5: blocks of 64 bytes, four words, four rounds of 16 steps. RFC 1321.
#include "base/ct.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/slots.hpp"
#include "hash/words.hpp"

namespace zel {
namespace {

using State = std::array<std::uint32_t, 4>;
constexpr State kInitial = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

/// floor(2^32 * |sin(i + 1)|), by the power series. RFC 1321, section 3.4.
consteval std::array<std::uint32_t, 64> make_constants() {
  constexpr long double kPi = 3.14159265358979323846264338327950288L;
  std::array<std::uint32_t, 64> constants{};
  for (std::size_t i = 0; i < constants.size(); ++i) {
    auto x = static_cast<long double>(i + 1);
    while (x > kPi / 2)
      x -= kPi;
    long double term = x;
    long double sine = 0;
    for (int k = 1; k < 30; k += 2) {
      sine += term;
      term *= -x * x / static_cast<long double>((k + 1) * (k + 2));
    }
    constants[i] = static_cast<std::uint32_t>((sine < 0 ? -sine : sine) * 0x1p32L);
  }
  return constants;
}
constexpr auto kConstants = make_constants();
static_assert(kConstants[0] == 0xd76aa478 && kConstants[63] == 0xeb86d391);

constexpr std::array<std::array<int, 4>, 4> kRotate = {
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};

constexpr std::size_t message_word(std::size_t round, std::size_t i) {
  constexpr std::array<std::size_t, 4> kFactor = {1, 5, 3, 7};
  constexpr std::array<std::size_t, 4> kFirst = {0, 1, 5, 0};
  return (kFactor[round] * i + kFirst[round]) % 16;
}

/// sum + f(b, c, d). The chain of steps runs through b, so whatever can be done without b comes
/// first; the two halves of the second function have no bit in common and are added one by one.
/// `opaque` keeps compilers from choosing another order.
template <std::size_t kRound>
[[gnu::always_inline]] inline std::uint32_t add_mix(std::uint32_t sum, std::uint32_t b,
                                                    std::uint32_t c, std::uint32_t d) noexcept {
  if constexpr (kRound == 0) return sum + (((c ^ d) & b) ^ d);
  if constexpr (kRound == 1) return ct::opaque(sum + (c & ~d)) + (b & d);
  if constexpr (kRound == 2) return sum + (ct::opaque(c ^ d) ^ b);
  return sum + (c ^ (b | ~d));
}

template <std::size_t kStep>
[[gnu::always_inline]] inline void step(State &v, const std::array<std::uint32_t, 16> &x) noexcept {
  constexpr std::size_t kRound = kStep / 16;
  const auto letter = [&v](std::size_t n) -> std::uint32_t & { return v[(n + 64 - kStep) % 4]; };
  const std::uint32_t sum =
      ct::opaque(letter(0) + x[message_word(kRound, kStep % 16)] + kConstants[kStep]);
  letter(0) = letter(1) + std::rotl(add_mix<kRound>(sum, letter(1), letter(2), letter(3)),
                                    kRotate[kRound][kStep % 4]);
}

}  // namespace

void hash::md5_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  if (gate::approved_only()) return;
  auto h = load_state<State>(state);
  for (; count != 0; --count, data += 64) {
    State v = h;
    const auto x = load_block_le(data);
    unroll<64>([&](auto i) __attribute__((always_inline)) { step<i>(v, x); });
    add_words(h, v);
  }
  store_state(state, h);
}

}  // namespace zel

using namespace zel;

void MD5_Initialize(void *state) {
  if (gate::approved_only()) return;
  hash::store_state(state, kInitial);
}

void MD5_CompressBlock(void *state, const std::uint8_t *block) {
  hash::md5_blocks(state, block, 1);
}

void MD5_PadLength(std::uint8_t *block, const void *bit_count) {
  if (gate::approved_only()) return;
  hash::pad_length_le(block, bit_count);
}

void MD5_DumpDigest(std::uint8_t *out, const void *state) {
  if (gate::approved_only()) return;
  hash::dump_le<4>(out, state);
}

constinit const HASH_ALGORITHM popmd5 = {
    .digest_len = 16,
    .Initialize = MD5_Initialize,
    .CompressBlock = MD5_CompressBlock,
    .PadLength = MD5_PadLength,
    .DumpDigest = MD5_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_popmd5 ZEL_HIDDEN_ALIAS("popmd5");
