// Chaining states, length fields and digests as runs of words; straight-line repetition.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "base/bytes.hpp"

namespace zel::hash {

/// The first words of a state area, by value.
template <class Words>
inline Words load_state(const void *state) noexcept {
  Words words;
  std::memcpy(&words, state, sizeof words);
  return words;
}

/// Four words of 32 bits leave in one store, so that a load of 16 bytes need not wait for four.
template <class Word, std::size_t kWords>
inline void store_state(void *state, const std::array<Word, kWords> &words) noexcept {
  if constexpr (sizeof(Word) == 4 && kWords < 8) {
    typedef Word Four __attribute__((vector_size(16)));
    const Four first = {words[0], words[1], words[2], words[3]};
    std::memcpy(state, &first, sizeof first);
    auto *const rest = static_cast<std::uint8_t *>(state) + sizeof first;
    if constexpr (kWords > 4) std::memcpy(rest, &words[4], sizeof words - sizeof first);
  } else {
    std::memcpy(state, &words, sizeof words);
  }
}

/// The 16 words of a block: most significant byte first for the SHA family.
template <class Word>
inline std::array<Word, 16> load_block_be(const std::uint8_t *block) noexcept {
  std::array<Word, 16> words;
  for (std::size_t i = 0; i < words.size(); ++i)
    words[i] = load_be<Word>(block + i * sizeof(Word));
  return words;
}

inline std::array<std::uint32_t, 16> load_block_le(const std::uint8_t *block) noexcept {
  return load_state<std::array<std::uint32_t, 16>>(block);
}

/// The length at the end of a block of 16 words: high word, then low, most significant byte first.
template <class Word>
inline void pad_length_be(std::uint8_t *block, const void *bit_count) noexcept {
  const auto count = load_state<std::array<Word, 2>>(bit_count);
  store_be<Word>(block + 14 * sizeof(Word), count[1]);
  store_be<Word>(block + 15 * sizeof(Word), count[0]);
}

/// The length at the end of a block of 64 bytes: low word, then high, least significant byte first.
inline void pad_length_le(std::uint8_t *block, const void *bit_count) noexcept {
  std::memcpy(block + 56, bit_count, 8);
}

template <class Word, std::size_t kWords>
inline void dump_be(std::uint8_t *out, const void *state) noexcept {
  const auto *const words = static_cast<const std::uint8_t *>(state);
  for (std::size_t at = 0; at < kWords * sizeof(Word); at += sizeof(Word))
    store_be<Word>(out + at, load_le<Word>(words + at));
}

template <std::size_t kWords>
inline void dump_le(std::uint8_t *out, const void *state) noexcept {
  std::memcpy(out, state, 4 * kWords);
}

/// Calls body(0), ..., body(kCount - 1) with constants, as one straight line of code.
template <std::size_t kCount, class Body>
[[gnu::always_inline]] inline void unroll(Body body) noexcept {
  [&]<std::size_t... kIndex>(std::index_sequence<kIndex...>) __attribute__((always_inline)) {
    (body(std::integral_constant<std::size_t, kIndex>{}), ...);
  }
  (std::make_index_sequence<kCount>{});
}

/// to[i] += words[i], without a loop, so that the words can stay in registers.
template <class Words>
[[gnu::always_inline]] inline void add_words(Words &to, const Words &words) noexcept {
  unroll<std::tuple_size_v<Words>>([&](auto i)
                                       __attribute__((always_inline)) { to[i] += words[i]; });
}

}  // namespace zel::hash
