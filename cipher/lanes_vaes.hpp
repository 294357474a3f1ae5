// A register of two blocks, as wide_steps.hpp takes it.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "base/isa.hpp"

namespace zel {
namespace {

struct Ymm {
  using Vector = __m256i;
  using Block = __m128i;
  static constexpr std::size_t kBlocks = 2;

  ZEL_ISA_VAES static Vector load(const std::uint8_t *from) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
  }
  ZEL_ISA_VAES static void store(std::uint8_t *to, Vector x) noexcept {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), x);
  }
  ZEL_ISA_VAES static Block load_block(const std::uint8_t *from) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
  ZEL_ISA_VAES static void store_block(std::uint8_t *to, Block x) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), x);
  }
  ZEL_ISA_VAES static Vector key(const std::uint8_t *from) noexcept {
    return _mm256_broadcastsi128_si256(load_block(from));
  }
  ZEL_ISA_VAES static Vector counters(std::uint64_t high, std::uint64_t low) noexcept {
    const auto h = static_cast<long long>(high);
    return _mm256_set_epi64x(h, static_cast<long long>(low + 1), h, static_cast<long long>(low));
  }
  ZEL_ISA_VAES static Vector add(Vector x, std::size_t n) noexcept {
    const auto more = static_cast<long long>(n);
    return _mm256_add_epi64(x, _mm256_set_epi64x(0, more, 0, more));
  }
  ZEL_ISA_VAES static Vector swap(Vector x) noexcept {
    return _mm256_shuffle_epi8(x, _mm256_broadcastsi128_si256(_mm_set_epi8(
                                      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)));
  }
  ZEL_ISA_VAES static Vector follow(Block block, const std::uint8_t *from) noexcept {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(block), load_block(from), 1);
  }
  ZEL_ISA_VAES static Vector bit_xor(Vector a, Vector b) noexcept { return _mm256_xor_si256(a, b); }
  ZEL_ISA_VAES static Vector enc(Vector x, Vector k) noexcept { return _mm256_aesenc_epi128(x, k); }
  ZEL_ISA_VAES static Vector enc_last(Vector x, Vector k) noexcept {
    return _mm256_aesenclast_epi128(x, k);
  }
  ZEL_ISA_VAES static Vector dec(Vector x, Vector k) noexcept { return _mm256_aesdec_epi128(x, k); }
  ZEL_ISA_VAES static Vector dec_last(Vector x, Vector k) noexcept {
    return _mm256_aesdeclast_epi128(x, k);
  }

  // Bytes of many blocks side by side.

  /// A byte of every block, as memory keeps it.
  struct Spread {
    std::uint32_t bytes;  // as many as one instruction repeats without a shuffle
  };
  /// The 16 bytes of `block`, each in a Spread of its own.
  ZEL_ISA_VAES static void spread(Spread (&to)[16], Block block) noexcept {
    const __m128i twice[] = {_mm_unpacklo_epi8(block, block), _mm_unpackhi_epi8(block, block)};
#pragma GCC unroll 2
    for (std::size_t i = 0; i < 2; ++i) {
      auto *const to_half = reinterpret_cast<std::uint8_t *>(to + 8 * i);
      store_block(to_half, _mm_unpacklo_epi16(twice[i], twice[i]));
      store_block(to_half + 16, _mm_unpackhi_epi16(twice[i], twice[i]));
    }
  }
  ZEL_ISA_VAES static Vector gather(const Spread &from) noexcept {
    return _mm256_set1_epi32(static_cast<int>(from.bytes));
  }
  /// The places of the blocks: a transposed array has the even blocks in its low half.
  ZEL_ISA_VAES static Vector places() noexcept {
    return _mm256_set_epi8(31, 29, 27, 25, 23, 21, 19, 17, 15, 13, 11, 9, 7, 5, 3, 1, 30, 28, 26,
                           24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
  }
  ZEL_ISA_VAES static Vector every_byte(unsigned value) noexcept {
    return _mm256_set1_epi8(static_cast<char>(value));
  }
  ZEL_ISA_VAES static Vector zero() noexcept { return _mm256_setzero_si256(); }
  ZEL_ISA_VAES static Vector bit_and(Vector a, Vector b) noexcept { return _mm256_and_si256(a, b); }
  ZEL_ISA_VAES static Vector high_nibbles(Vector x) noexcept {
    return bit_and(_mm256_srli_epi16(x, 4), every_byte(15));
  }
  ZEL_ISA_VAES static Vector lookup(Vector table, Vector at) noexcept {
    return _mm256_shuffle_epi8(table, at);
  }
  ZEL_ISA_VAES static Vector unpack_low(Vector a, Vector b) noexcept {
    return _mm256_unpacklo_epi8(a, b);
  }
  ZEL_ISA_VAES static Vector unpack_high(Vector a, Vector b) noexcept {
    return _mm256_unpackhi_epi8(a, b);
  }
  ZEL_ISA_VAES static Vector add_bytes(Vector a, Vector b) noexcept {
    return _mm256_add_epi8(a, b);
  }
  /// 1 where a byte of a is greater than that of b, both without sign.
  ZEL_ISA_VAES static Vector greater(Vector a, Vector b) noexcept {
    return _mm256_min_epu8(_mm256_subs_epu8(a, b), every_byte(1));
  }

  // Words of many blocks side by side.

  ZEL_ISA_VAES static Vector every_word(std::uint32_t value) noexcept {
    return _mm256_set1_epi32(static_cast<int>(value));
  }
  ZEL_ISA_VAES static Vector add_words(Vector a, Vector b) noexcept {
    return _mm256_add_epi32(a, b);
  }
  ZEL_ISA_VAES static Vector unpack_low32(Vector a, Vector b) noexcept {
    return _mm256_unpacklo_epi32(a, b);
  }
  ZEL_ISA_VAES static Vector unpack_high32(Vector a, Vector b) noexcept {
    return _mm256_unpackhi_epi32(a, b);
  }
  ZEL_ISA_VAES static Vector unpack_low64(Vector a, Vector b) noexcept {
    return _mm256_unpacklo_epi64(a, b);
  }
  ZEL_ISA_VAES static Vector unpack_high64(Vector a, Vector b) noexcept {
    return _mm256_unpackhi_epi64(a, b);
  }
};

}  // namespace
}  // namespace zel
