// CAST-128: block cipher of two 32-bit words and 16 rounds, with 128-bit keys. RFC 2144.
#include <array>
#include <bit>

#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/cast128_tables.hpp"
#include "cipher/interleave.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

constexpr std::size_t kRounds = 16;
constexpr std::size_t kKeyLen = 16;
/// Masking keys, then rotation keys.
constexpr std::size_t kRotationKeys = kRounds * sizeof(std::uint32_t);
constexpr std::size_t kRoundKeysLen = 2 * kRotationKeys;

/// The three round functions, in turn. RFC 2144, section 2.2.
template <std::size_t kRound>
inline std::uint32_t f(std::uint32_t x, std::uint32_t mask, std::uint32_t rotation) noexcept {
  constexpr std::size_t kType = kRound % 3;
  const std::uint32_t masked = kType == 0 ? mask + x : kType == 1 ? mask ^ x : mask - x;
  const std::uint32_t word = std::rotl(masked, static_cast<int>(rotation));
  const std::uint32_t a = kCast128Boxes[0][word >> 24];
  const std::uint32_t b = kCast128Boxes[1][word >> 16 & 0xff];
  const std::uint32_t c = kCast128Boxes[2][word >> 8 & 0xff];
  const std::uint32_t d = kCast128Boxes[3][word & 0xff];
  if constexpr (kType == 0) return ((a ^ b) - c) + d;
  if constexpr (kType == 1) return ((a - b) + c) ^ d;
  if constexpr (kType == 2) return ((a + b) ^ c) - d;
}

struct Kernel {
  static constexpr std::size_t kBlockLen = 8;
  static constexpr std::size_t kLanes = 5;
  enum class Order { kUp, kDown };

  template <std::size_t N, Order kOrder>
  static void crypt(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys) noexcept {
    std::uint32_t words[2][N];
    bulk::each<N>([&](auto i) {
      const std::uint64_t block = load_be64(in + 8 * i);
      words[0][i] = static_cast<std::uint32_t>(block >> 32);
      words[1][i] = static_cast<std::uint32_t>(block);
    });
    bulk::each<kRounds>([&](auto step) {
      constexpr std::size_t kRound = kOrder == Order::kUp ? step : kRounds - 1 - step;
      const std::uint32_t mask = load_le32(keys + 4 * kRound);
      const std::uint32_t rotation = load_le32(keys + kRotationKeys + 4 * kRound);
      bulk::each<N>(
          [&](auto i) { words[step % 2][i] ^= f<kRound>(words[1 - step % 2][i], mask, rotation); });
    });
    bulk::each<N>(
        [&](auto i) { store_be64(out + 8 * i, std::uint64_t{words[1][i]} << 32 | words[0][i]); });
  }

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N, Order::kUp>(out, in, keys);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N, Order::kDown>(out, in, keys);
  }
};

using Bytes = std::array<std::uint8_t, kKeyLen>;

/// The sum of S5, S6, S7 and S8 at four bytes, and of S5 + `extra_box` at a fifth.
std::uint32_t sum(const std::uint8_t *bytes, const std::array<std::uint8_t, 4> &places,
                  std::size_t extra_box, std::uint8_t extra) noexcept {
  std::uint32_t result = kCast128Boxes[4 + extra_box][extra];
  for (std::size_t i = 0; i < 4; ++i)
    result ^= kCast128Boxes[4 + i][bytes[places[i]]];
  return result;
}

/// How one half of the schedule's state makes the other, word by word.
struct Step {
  std::uint8_t from;                   ///< the word that it starts from
  std::array<std::uint8_t, 4> places;  ///< of the old half for the first word, then of the new one
  std::uint8_t extra;                  ///< place in the old half
};
/// The box of the extra byte is S7, S8, S5, S6 in turn. RFC 2144, section 2.4.
constexpr std::array<Step, 4> kXToZ = {{
    {0, {13, 15, 12, 14}, 8},
    {8, {0, 2, 1, 3}, 10},
    {12, {7, 6, 5, 4}, 9},
    {4, {10, 9, 11, 8}, 11},
}};
constexpr std::array<Step, 4> kZToX = {{
    {8, {5, 7, 4, 6}, 0},
    {0, {0, 2, 1, 3}, 2},
    {4, {7, 6, 5, 4}, 1},
    {12, {10, 9, 11, 8}, 3},
}};

void advance(Bytes &to, const Bytes &from, const std::array<Step, 4> &steps) noexcept {
  for (std::size_t i = 0; i < 4; ++i) {
    const Step &step = steps[i];
    const std::uint8_t *const bytes = i == 0 ? from.data() : to.data();
    const std::uint32_t added = sum(bytes, step.places, (i + 2) % 4, from[step.extra]);
    store_be32(to.data() + 4 * i, load_be32(from.data() + step.from) ^ added);
  }
}

/// Places of the five bytes that make a key; the box of the fifth is S5, S6, S7, S8 in turn.
struct Pick {
  std::array<std::uint8_t, 4> places;
  std::uint8_t extra;
};
constexpr std::array<std::array<Pick, 4>, 4> kPicks = {{
    {{{{8, 9, 7, 6}, 2}, {{10, 11, 5, 4}, 6}, {{12, 13, 3, 2}, 9}, {{14, 15, 1, 0}, 12}}},
    {{{{3, 2, 12, 13}, 8}, {{1, 0, 14, 15}, 13}, {{7, 6, 8, 9}, 3}, {{5, 4, 10, 11}, 7}}},
    {{{{3, 2, 12, 13}, 9}, {{1, 0, 14, 15}, 12}, {{7, 6, 8, 9}, 2}, {{5, 4, 10, 11}, 6}}},
    {{{{8, 9, 7, 6}, 3}, {{10, 11, 5, 4}, 7}, {{12, 13, 3, 2}, 8}, {{14, 15, 1, 0}, 13}}},
}};

void make_round_keys(std::uint8_t *round_keys, const std::uint8_t *key) noexcept {
  Wiped<Bytes> x, z;
  std::memcpy(x->data(), key, kKeyLen);
  for (std::size_t i = 0; i < 2 * kRounds; ++i) {
    const bool from_z = i % 8 < 4;
    if (i % 8 == 0) advance(*z, *x, kXToZ);
    if (i % 8 == 4) advance(*x, *z, kZToX);
    const Bytes &bytes = from_z ? *z : *x;
    const Pick &pick = kPicks[i / 4 % 4][i % 4];
    const std::uint32_t word = sum(bytes.data(), pick.places, i % 4, bytes[pick.extra]);
    store_le32(round_keys + 4 * i, i < kRounds ? word : word & 31);
  }
}

}  // namespace

constinit const bulk::Ops bulk::cast128_interleaved = bulk::Interleaved<Kernel>::ops();

}  // namespace zel

using namespace zel;

extern "C" {

int32_t CAST128_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  make_round_keys(static_cast<uint8_t *>(round_keys), key);
  return ZEL_OK;
}

void CAST128_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void CAST128_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM cast128 = {
    .block_len = 8,
    .round_keys_len = kRoundKeysLen,
    .MakeRoundKey = CAST128_MakeRoundKey,
    .EncryptBlock = CAST128_EncryptBlock,
    .DecryptBlock = CAST128_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_cast128 ZEL_HIDDEN_ALIAS("cast128");
}
