// SHA-2 for both word sizes, in plain C++. FIPS 180-4, sections 4.1, 6.2 and 6.4.
#pragma once

#include <bit>

#include "base/wipe.hpp"
#include "hash/sha2_constants.hpp"
#include "hash/words.hpp"

namespace zel::hash {

/// The four rotation functions, and the two that choose between bits.
template <class Word>
struct Sha2 {
  static constexpr bool kWide = sizeof(Word) == 8;
  using State = std::array<Word, 8>;

  static constexpr Word big_sigma0(Word x) noexcept {
    return kWide ? std::rotr(x, 28) ^ std::rotr(x, 34) ^ std::rotr(x, 39)
                 : std::rotr(x, 2) ^ std::rotr(x, 13) ^ std::rotr(x, 22);
  }
  static constexpr Word big_sigma1(Word x) noexcept {
    return kWide ? std::rotr(x, 14) ^ std::rotr(x, 18) ^ std::rotr(x, 41)
                 : std::rotr(x, 6) ^ std::rotr(x, 11) ^ std::rotr(x, 25);
  }
  static constexpr Word small_sigma0(Word x) noexcept {
    return kWide ? std::rotr(x, 1) ^ std::rotr(x, 8) ^ (x >> 7)
                 : std::rotr(x, 7) ^ std::rotr(x, 18) ^ (x >> 3);
  }
  static constexpr Word small_sigma1(Word x) noexcept {
    return kWide ? std::rotr(x, 19) ^ std::rotr(x, 61) ^ (x >> 6)
                 : std::rotr(x, 17) ^ std::rotr(x, 19) ^ (x >> 10);
  }
  static constexpr Word choose(Word x, Word y, Word z) noexcept { return ((y ^ z) & x) ^ z; }
  static constexpr Word majority(Word x, Word y, Word z) noexcept {
    return (x & y) | ((x | y) & z);
  }

  /// One round; `kRound` modulo 8 says which word of `v` plays which letter.
  template <std::size_t kRound>
  [[gnu::always_inline]] static void round(State &v, Word message_and_constant) noexcept {
    const auto letter = [&v](std::size_t n) -> Word & { return v[(n + 64 - kRound) % 8]; };
    const Word t = letter(7) + big_sigma1(letter(4)) + choose(letter(4), letter(5), letter(6)) +
                   message_and_constant;
    letter(3) += t;
    letter(7) = t + big_sigma0(letter(0)) + majority(letter(0), letter(1), letter(2));
  }
};

/// Absorbs `count` blocks.
template <class Word>
void sha2_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  using F = Sha2<Word>;
  constexpr const auto &kConstants = kSha2Rounds<Word>;
  auto h = load_state<typename F::State>(state);
  Wiped<std::array<Word, 16>> schedule;
  auto &w = *schedule;
  for (; count != 0; --count, data += sizeof w) {
    auto v = h;
    w = load_block_be<Word>(data);
    unroll<16>([&](auto i) __attribute__((always_inline)) {
      F::template round<i>(v, w[i] + kConstants[i]);
    });
    for (std::size_t start = 16; start < kConstants.size(); start += 16) {
      unroll<16>([&](auto i) __attribute__((always_inline)) {
        w[i] +=
            F::small_sigma1(w[(i + 14) % 16]) + w[(i + 9) % 16] + F::small_sigma0(w[(i + 1) % 16]);
        F::template round<i>(v, w[i] + kConstants[start + i]);
      });
    }
    add_words(h, v);
  }
  store_state(state, h);
}

}  // namespace zel::hash
