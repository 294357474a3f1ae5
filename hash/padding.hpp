// The end of a message: 0x80, zeros, the length in bits. FIPS 180-4, section 5.1; RFC 1321,
// sections 3.1 and 3.2.
#pragma once

#include "base/bytes.hpp"
#include "hash/blocks.hpp"

namespace zel::hash {

template <class Area>
using WordOf = decltype(Area::count_low);

/// Bytes of one block, and where in the last block the length begins.
template <class Area>
inline constexpr std::size_t kBlockLen = 16 * sizeof(WordOf<Area>);
template <class Area>
inline constexpr std::size_t kPaddedTo = kBlockLen<Area> - 2 * sizeof(WordOf<Area>);

template <class Word>
struct BitCount {
  Word low, high;
};

template <class Area>
constexpr BitCount<WordOf<Area>> bit_count(WordOf<Area> bytes_low,
                                           WordOf<Area> bytes_high) noexcept {
  // Deliberate: 29 is the shift for 32-bit counters and is used for 64-bit ones too, where 61 would
  // be the standard's. SHA-384 and SHA-512 of 512 MiB and more so have digests of their own, which
  // existing users of the library depend on.
  constexpr int kCarryShift = 29;
  return {bytes_low << 3, (bytes_high << 3) | (bytes_low >> kCarryShift)};
}

/// A message at its end, but for the padding.
template <class Area>
struct End {
  const WordOf<Area> *state;
  const std::uint8_t *rest;  ///< [one block], of which the first `rest_len` bytes count
  std::size_t rest_len;
  WordOf<Area> count_low, count_high;  ///< bytes of the whole message
};

typedef std::uint64_t Words2 __attribute__((vector_size(16)));

/// The 16 bytes at the end of the last block: the length, and zeros before it.
inline Bytes16 length_piece(const End<HASH_AREA32> &end, ByteOrder order) noexcept {
  const auto bits = bit_count<HASH_AREA32>(end.count_low, end.count_high);
  const std::uint64_t value = (std::uint64_t{bits.high} << 32) | bits.low;
  const Words2 words = {0, order == ByteOrder::kBig ? byte_swap(value) : value};
  return reinterpret_cast<Bytes16>(words);
}

inline Bytes16 length_piece(const End<HASH_AREA64> &end, ByteOrder /*order*/) noexcept {
  const auto bits = bit_count<HASH_AREA64>(end.count_low, end.count_high);
  const Words2 words = {byte_swap(bits.high), byte_swap(bits.low)};
  return reinterpret_cast<Bytes16>(words);
}

/// Writes the last one or two blocks and returns how many. Every 16 bytes are one store, so that
/// the loads of the block routines need not wait for several.
template <class Area>
std::size_t pad(std::uint8_t *blocks, const End<Area> &end, ByteOrder order) noexcept {
  constexpr std::size_t kBlock = kBlockLen<Area>;
  using Index = signed char __attribute__((vector_size(16)));
  const auto stop = static_cast<signed char>(end.rest_len);
  const bool fits = end.rest_len < kPaddedTo<Area>;
  const Bytes16 length = length_piece(end, order);
  Index index = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  Bytes16 piece{};
#pragma GCC unroll 8
  for (std::size_t at = 0; at < kBlock; at += 16) {
    if (at != 0) index += static_cast<signed char>(16);
    const auto before = reinterpret_cast<Bytes16>(index < stop);
    const auto first_after = reinterpret_cast<Bytes16>(index == stop);
    piece = (load_bytes16(end.rest + at) & before) | (first_after & std::uint8_t{0x80});
    if (at + 16 == kBlock && fits) piece |= length;
    store_bytes16(blocks + at, piece);
  }
  if (fits) return 1;
  zero<kBlock - 16>(blocks + kBlock);
  store_bytes16(blocks + 2 * kBlock - 16, length);
  return 2;
}

}  // namespace zel::hash
