// What the AES files share: the shape of the schedule and its expansion over any S-box. FIPS 197.
//
// A schedule is the round keys w[0], w[1] ... of section 5.2, each word as its four bytes, and
// then, in the same order, the round keys of the equivalent inverse cipher (section 5.3.5).
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/bulk.hpp"

namespace zel::aes {

inline constexpr std::size_t kBlockLen = 16;

/// The key length decides everything else.
template <std::size_t kKeyLen>
struct Size {
  static constexpr std::size_t kKeyBytes = kKeyLen;
  static constexpr std::size_t kRounds = kKeyLen / 4 + 6;
  /// Bytes of one half of the schedule; the keys for decryption begin here.
  static constexpr std::size_t kHalf = kBlockLen * (kRounds + 1);
  static constexpr std::size_t kScheduleLen = 2 * kHalf;
};
using Aes128 = Size<16>;
using Aes256 = Size<32>;
static_assert(Aes128::kScheduleLen == 352 && Aes256::kScheduleLen == 480);

/// Writes a schedule. `Unit` has sub_word(word), SubWord of section 5.2, and
/// invert_mix_columns(to, from) for one round key. Words are loaded little-endian here.
template <class Size, class Unit>
inline void expand(std::uint8_t *schedule, const std::uint8_t *key) noexcept {
  constexpr std::size_t kKeyWords = Size::kKeyBytes / 4;
  constexpr std::size_t kWords = 4 * (Size::kRounds + 1);
  Wiped<std::uint32_t[kWords]> words;
  for (std::size_t i = 0; i < kKeyWords; ++i)
    (*words)[i] = load_le32(key + 4 * i);
  std::uint32_t round_constant = 1;
  for (std::size_t i = kKeyWords; i < kWords; ++i) {
    std::uint32_t word = (*words)[i - 1];
    if (i % kKeyWords == 0) {
      word = Unit::sub_word(std::rotr(word, 8)) ^ round_constant;
      round_constant = (round_constant << 1) ^ (round_constant >> 7) * 0x11b;
    } else if (kKeyWords > 6 && i % kKeyWords == 4) {
      word = Unit::sub_word(word);
    }
    (*words)[i] = (*words)[i - kKeyWords] ^ word;
  }
  for (std::size_t i = 0; i < kWords; ++i) {
    store_le32(schedule + 4 * i, (*words)[i]);
    store_le32(schedule + Size::kHalf + 4 * i, (*words)[i]);
  }
  for (std::size_t r = 1; r < Size::kRounds; ++r)
    Unit::invert_mix_columns(schedule + Size::kHalf + kBlockLen * r, schedule + kBlockLen * r);
}

/// One way to compute AES, for one key length.
struct Engine {
  void (*expand)(std::uint8_t *schedule, const std::uint8_t *key) noexcept;
  void (*encrypt_block)(std::uint8_t *block, const void *schedule) noexcept;
  void (*decrypt_block)(std::uint8_t *block, const void *schedule) noexcept;
};

/// Through the AES instructions.
extern const Engine aesni128, aesni256;
/// Their chains, for the wider routines, which cannot do better.
void serial128_aesni(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *schedule, std::uint8_t *chain) noexcept;
void serial256_aesni(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *schedule, std::uint8_t *chain) noexcept;
void counter_mac128_aesni(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *counter,
                          std::uint8_t *mac) noexcept;
void counter_mac256_aesni(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *counter,
                          std::uint8_t *mac) noexcept;

/// In bit slices: 64-bit logic alone, no table and no branch on data.
extern const Engine sliced128, sliced256;

}  // namespace zel::aes
