// The schedule and the block function of tavo and tavoold. docs/tavo.md defines both.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/interleave.hpp"
#include "cipher/mul65537.hpp"
#include "cipher/tavo_tables.hpp"

namespace zel {

inline constexpr std::size_t kTavoBlockLen = 16;
inline constexpr std::size_t kTavoRounds = 16;

/// The round keys, in host order.
struct TavoKeys {
  std::array<std::uint32_t, 8> q;
  std::array<std::uint16_t, 16> e;
  std::array<std::uint32_t, 3 * kTavoRounds> w;
};
static_assert(sizeof(TavoKeys) == 256);

inline void tavo_mix_q(TavoKeys &keys, const tavo_tables::Constants &constants) noexcept {
  auto &q = keys.q;
  for (std::size_t pass = 0; pass < 4; ++pass)
    for (std::size_t i = 0; i < 8; ++i)
      q[i] = std::rotl(q[i] * constants.a[pass % 2] + q[(i + 7) % 8], 11) ^ q[(i + 3) % 8];
}

inline void tavo_mix_e(TavoKeys &keys, const tavo_tables::Constants &constants) noexcept {
  const auto &q = keys.q;
  auto &e = keys.e;
  for (std::size_t i = 0; i < 8; ++i) {
    e[2 * i] = static_cast<std::uint16_t>((constants.q16[i] >> 16) + (q[i] >> 16));
    e[2 * i + 1] = static_cast<std::uint16_t>(constants.q16[i] + q[i]);
  }
  for (std::size_t stage = 0; stage < 4; ++stage) {
    const std::size_t distance = std::size_t{8} >> stage;
    for (std::size_t i = 0, j = stage; i < 16; ++i) {
      if ((i & distance) != 0) continue;
      const std::uint32_t product = q[j++ % 8] * constants.a[2];
      const std::uint32_t mask = std::rotl(product, static_cast<int>(8 * stage)) >> 16;
      const auto swapped = static_cast<std::uint16_t>((e[i] ^ e[i + distance]) & mask);
      e[i] ^= swapped;
      e[i + distance] ^= swapped;
    }
  }
}

inline void tavo_make_w(TavoKeys &keys, const tavo_tables::Constants &constants) noexcept {
  Wiped<std::array<std::uint32_t, 8>> state(keys.q);
  auto &c = *state;
  for (std::size_t n = 0; n < keys.w.size(); ++n) {
    const std::size_t i = n % 8;
    const std::uint32_t sum = c[i] * constants.a[3 + n % 3] + c[(i + 1) % 8];
    const std::uint32_t pair = std::uint32_t{keys.e[n % 16]} << 16 | keys.e[(n + 5) % 16];
    keys.w[n] = c[i] = std::rotl(sum, 7) ^ c[(i + 5) % 8] ^ pair;
  }
}

inline void tavo_make_round_keys(void *round_keys, const std::uint8_t *key,
                                 const tavo_tables::Constants &constants) noexcept {
  Wiped<TavoKeys> keys;
  for (std::size_t i = 0; i < 8; ++i)
    keys->q[i] = constants.q32[i] ^ load_be32(key + 4 * (i % 4));
  tavo_mix_q(*keys, constants);
  tavo_mix_e(*keys, constants);
  tavo_make_w(*keys, constants);
  std::memcpy(round_keys, &*keys, sizeof *keys);
}

/// What tells the two ciphers apart in a block.
enum class TavoForm { kTavo, kTavoold };

template <TavoForm kForm>
struct TavoKernel {
  static constexpr std::size_t kBlockLen = kTavoBlockLen;
  static constexpr std::size_t kLanes = 4;
  using Word = std::uint16_t;

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys, 0, 1);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys, kTavoRounds - 1, -1);
  }

 private:
  /// Combines a word with the entry that the top bits of `chooser` choose.
  static Word mixed(std::uint32_t word, const std::uint8_t *keys, Word chooser) noexcept {
    const Word entry =
        load_le<Word>(keys + offsetof(TavoKeys, e) + 2 * static_cast<std::size_t>(chooser >> 12));
    if constexpr (kForm == TavoForm::kTavo) return static_cast<Word>(word + entry);
    return static_cast<Word>(word ^ entry);
  }

  /// F of a half block under three long words of key.
  static std::uint64_t f(std::uint64_t half, const std::uint8_t *keys,
                         const std::uint8_t *w) noexcept {
    const auto &box = tavo_tables::kBox;
    const auto word = [half](int i) { return static_cast<Word>(half >> (48 - 16 * i)); };
    // The upper word of a long word of key is the second of the two in memory.
    const auto k = [w](std::size_t i) { return load_le<Word>(w + 2 * (i ^ 1)); };
    const Word t0 = box[mul65537(word(0), k(0))];
    const Word t2 = box[static_cast<Word>(word(2) + k(1))];
    const Word t1 = box[mixed(static_cast<Word>(word(1) + k(2)), keys, t0)];
    const Word t3 = box[mixed(mul65537(word(3), k(3)), keys, t2)];
    const Word x0 = mixed(t0, keys, t3);
    const Word x2 = mixed(t2, keys, t1);
    const Word m = mul65537(static_cast<Word>(x0 ^ x2), k(4));
    const Word v = mul65537(static_cast<Word>((t1 ^ t3) + m), k(5));
    const auto u = static_cast<Word>(m + v);
    return std::uint64_t(x0 ^ v) << 48 | std::uint64_t(t1 ^ u) << 32 | std::uint64_t(x2 ^ v) << 16 |
           std::uint64_t(t3 ^ u);
  }

  /// q[2 i] and q[2 i + 1] as half a block; nothing in the older form.
  static std::uint64_t whitening(const std::uint8_t *keys, std::size_t i) noexcept {
    if constexpr (kForm == TavoForm::kTavoold) return 0;
    return std::rotl(load_le64(keys + 8 * i), 32);
  }

  /// The rounds run from `first` in the direction of `step`.
  template <std::size_t N>
  static void crypt(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                    std::size_t first, std::ptrdiff_t step) noexcept {
    const std::size_t before = step > 0 ? 0 : 2;
    const std::size_t after = 2 - before;
    const std::uint8_t *w = keys + offsetof(TavoKeys, w) + 12 * first;
    std::uint64_t left[N], right[N];
    bulk::each<N>([&](auto i) {
      left[i] = load_be64(in + 16 * i) ^ whitening(keys, before);
      right[i] = load_be64(in + 16 * i + 8) ^ whitening(keys, before + 1);
    });
    for (std::size_t round = 0; round < kTavoRounds; round += 2, w += 24 * step) {
      bulk::each<N>([&](auto i) { left[i] ^= f(right[i], keys, w); });
      bulk::each<N>([&](auto i) { right[i] ^= f(left[i], keys, w + 12 * step); });
    }
    bulk::each<N>([&](auto i) {
      store_be64(out + 16 * i, right[i] ^ whitening(keys, after));
      store_be64(out + 16 * i + 8, left[i] ^ whitening(keys, after + 1));
    });
  }
};

}  // namespace zel
