// Blowfish: block cipher of two 32-bit words and 16 rounds, with keys of any number of words.
// B. Schneier, "Description of a New Variable-Length Key, 64-Bit Block Cipher", 1993.
#include <array>

#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/blowfish_tables.hpp"
#include "cipher/interleave.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

constexpr std::size_t kRounds = 16;
constexpr std::size_t kPLen = (kRounds + 2) * sizeof(std::uint32_t);
constexpr std::size_t kBoxLen = 256 * sizeof(std::uint32_t);
constexpr std::size_t kRoundKeysLen = kPLen + 4 * kBoxLen;

inline std::uint32_t looked_up(const std::uint8_t *keys, std::size_t box,
                               std::uint32_t index) noexcept {
  return load_le32(keys + kPLen + kBoxLen * box + sizeof(std::uint32_t) * index);
}

inline std::uint32_t f(const std::uint8_t *keys, std::uint32_t x) noexcept {
  const std::uint32_t sum = looked_up(keys, 0, x >> 24) + looked_up(keys, 1, x >> 16 & 0xff);
  return (sum ^ looked_up(keys, 2, x >> 8 & 0xff)) + looked_up(keys, 3, x & 0xff);
}

/// Keeps the compiler from adding the key behind the tables, where a single block waits for it.
template <std::size_t N>
inline std::uint32_t early(std::uint32_t word) noexcept {
  return N == 1 ? ct::opaque(word) : word;
}

struct Kernel {
  static constexpr std::size_t kBlockLen = 8;
  static constexpr std::size_t kLanes = 8;

  /// The P-array is used from word `first` on, upwards or downwards.
  template <std::size_t N>
  static void crypt(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                    std::size_t first, std::ptrdiff_t step) noexcept {
    const std::uint8_t *p = keys + sizeof(std::uint32_t) * first;
    const std::ptrdiff_t stride = step * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t));
    std::uint32_t left[N], right[N];
    bulk::each<N>([&](auto i) {
      const std::uint64_t block = load_be64(in + 8 * i);
      left[i] = static_cast<std::uint32_t>(block >> 32) ^ load_le32(p);
      right[i] = static_cast<std::uint32_t>(block);
    });
    for (std::size_t round = 0; round < kRounds; round += 2) {
      const std::uint32_t odd = load_le32(p += stride);
      const std::uint32_t even = load_le32(p += stride);
      bulk::each<N>([&](auto i) { right[i] = early<N>(right[i] ^ odd) ^ f(keys, left[i]); });
      bulk::each<N>([&](auto i) { left[i] = early<N>(left[i] ^ even) ^ f(keys, right[i]); });
    }
    const std::uint32_t last = load_le32(p + stride);
    bulk::each<N>(
        [&](auto i) { store_be64(out + 8 * i, std::uint64_t{right[i] ^ last} << 32 | left[i]); });
  }

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys, 0, 1);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys, kRounds + 1, -1);
  }
};

/// `words` 32-bit big-endian words of key, over and over; none leaves the digits of pi as they are.
void make_round_keys(std::uint8_t *round_keys, const std::uint8_t *key,
                     std::size_t words) noexcept {
  std::memcpy(round_keys, kBlowfishPi.data(), kRoundKeysLen);
  if (words != 0)
    for (std::size_t i = 0; i < kRounds + 2; ++i)
      store_le32(round_keys + 4 * i, kBlowfishPi[i] ^ load_be32(key + 4 * (i % words)));
  Wiped<std::array<std::uint8_t, 8>> held{std::array<std::uint8_t, 8>{}};
  std::uint8_t *const block = held->data();
  for (std::size_t at = 0; at < kRoundKeysLen; at += 8) {
    Kernel::encrypt<1>(block, block, round_keys);
    store_le32(round_keys + at, load_be32(block));
    store_le32(round_keys + at + 4, load_be32(block + 4));
  }
}

}  // namespace

constinit const bulk::Ops bulk::blowfish_interleaved = bulk::Interleaved<Kernel>::ops();

}  // namespace zel

using namespace zel;

extern "C" {

int32_t BLOWFISH_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  make_round_keys(static_cast<uint8_t *>(round_keys), key, key_len / 4);
  return ZEL_OK;
}

void BLOWFISH_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void BLOWFISH_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM blowfish = {
    .block_len = 8,
    .round_keys_len = kRoundKeysLen,
    .MakeRoundKey = BLOWFISH_MakeRoundKey,
    .EncryptBlock = BLOWFISH_EncryptBlock,
    .DecryptBlock = BLOWFISH_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_blowfish ZEL_HIDDEN_ALIAS("blowfish");
}
