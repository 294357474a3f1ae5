// RC5-32/12: block cipher of two 32-bit words and 12 rounds, with keys of any length. RFC 2040.
#include <algorithm>
#include <array>
#include <bit>

#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/interleave.hpp"
#include "cipher/rc5.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

constexpr std::size_t kWords = 2 * (kRc5Rounds + 1);

inline std::uint32_t rotl(std::uint32_t x, std::uint32_t count) noexcept {
  return std::rotl(x, static_cast<int>(count & 31));
}

inline std::uint32_t rotr(std::uint32_t x, std::uint32_t count) noexcept {
  return std::rotr(x, static_cast<int>(count & 31));
}

struct Kernel {
  static constexpr std::size_t kBlockLen = 8;
  static constexpr std::size_t kLanes = 4;

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    std::uint32_t a[N], b[N];
    bulk::each<N>([&](auto i) {
      a[i] = load_le32(in + 8 * i) + load_le32(keys);
      b[i] = load_le32(in + 8 * i + 4) + load_le32(keys + 4);
    });
    for (std::size_t round = 1; round <= kRc5Rounds; ++round) {
      const std::uint32_t key_a = load_le32(keys + 8 * round);
      const std::uint32_t key_b = load_le32(keys + 8 * round + 4);
      bulk::each<N>([&](auto i) { a[i] = rotl(a[i] ^ b[i], b[i]) + key_a; });
      bulk::each<N>([&](auto i) { b[i] = rotl(b[i] ^ a[i], a[i]) + key_b; });
    }
    bulk::each<N>([&](auto i) {
      store_le32(out + 8 * i, a[i]);
      store_le32(out + 8 * i + 4, b[i]);
    });
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    std::uint32_t a[N], b[N];
    bulk::each<N>([&](auto i) {
      a[i] = load_le32(in + 8 * i);
      b[i] = load_le32(in + 8 * i + 4);
    });
    for (std::size_t round = kRc5Rounds; round >= 1; --round) {
      const std::uint32_t key_a = load_le32(keys + 8 * round);
      const std::uint32_t key_b = load_le32(keys + 8 * round + 4);
      bulk::each<N>([&](auto i) { b[i] = rotr(b[i] - key_b, a[i]) ^ a[i]; });
      bulk::each<N>([&](auto i) { a[i] = rotr(a[i] - key_a, b[i]) ^ b[i]; });
    }
    bulk::each<N>([&](auto i) {
      store_le32(out + 8 * i, a[i] - load_le32(keys));
      store_le32(out + 8 * i + 4, b[i] - load_le32(keys + 4));
    });
  }
};

/// Mixes the key into the words of the schedule. `key_words` is changed and at least one.
void mix(std::uint8_t *round_keys, std::uint32_t *key_words, std::size_t count) noexcept {
  constexpr std::uint32_t kE = 0xb7e15163;       // (e - 2) 2^32, odd
  constexpr std::uint32_t kGolden = 0x9e3779b9;  // (golden ratio - 1) 2^32, odd
  Wiped<std::array<std::uint32_t, kWords>> words;
  for (std::uint32_t i = 0; i < kWords; ++i)
    (*words)[i] = kE + i * kGolden;
  std::uint32_t a = 0;
  std::uint32_t b = 0;
  const std::size_t steps = 3 * std::max(kWords, count);
  for (std::size_t step = 0, i = 0, j = 0; step < steps; ++step) {
    a = (*words)[i] = rotl((*words)[i] + a + b, 3);
    b = key_words[j] = rotl(key_words[j] + a + b, a + b);
    i = i + 1 == kWords ? 0 : i + 1;
    j = j + 1 == count ? 0 : j + 1;
  }
  std::memcpy(round_keys, words->data(), sizeof *words);
}

/// The standard goes up to 255 bytes; those keys need no memory.
constexpr std::size_t kUsualKeyWords = 64;

std::int32_t make_round_keys(std::uint8_t *round_keys, const std::uint8_t *key,
                             std::size_t key_len) noexcept {
  const std::size_t count = std::max<std::size_t>(1, (key_len + 3) / 4);
  if (count <= kUsualKeyWords) {
    Wiped<std::array<std::uint32_t, kUsualKeyWords>> words{{}};
    if (key_len != 0) std::memcpy(words->data(), key, key_len);
    mix(round_keys, words->data(), count);
  } else {
    Scratch<std::uint32_t> words(count);
    if (!words) return ZEL_ERR_GENERIC;
    std::memcpy(words.data(), key, key_len);
    mix(round_keys, words.data(), count);
  }
  return ZEL_OK;
}

}  // namespace

constinit const bulk::Ops bulk::rc5_interleaved = bulk::Interleaved<Kernel>::ops();

constinit const bulk::Ops bulk::rc5_avx2 = {
    .encrypt = rc5_encrypt_avx2,
    .decrypt = rc5_decrypt_avx2,
    .serial = bulk::Interleaved<Kernel>::serial,
};

}  // namespace zel

using namespace zel;

extern "C" {

int32_t RC5_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return make_round_keys(static_cast<uint8_t *>(round_keys), key, key_len);
}

void RC5_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void RC5_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM rc5 = {
    .block_len = 8,
    .round_keys_len = kWords * sizeof(std::uint32_t),
    .MakeRoundKey = RC5_MakeRoundKey,
    .EncryptBlock = RC5_EncryptBlock,
    .DecryptBlock = RC5_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_rc5 ZEL_HIDDEN_ALIAS("rc5");
}
