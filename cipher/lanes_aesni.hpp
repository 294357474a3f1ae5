// A register of one block, as wide_steps.hpp takes it.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "base/isa.hpp"

namespace zel {
namespace {

struct Xmm {
  using Vector = __m128i;
  using Block = __m128i;
  static constexpr std::size_t kBlocks = 1;

  ZEL_ISA_AESNI static Vector load(const std::uint8_t *from) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
  ZEL_ISA_AESNI static void store(std::uint8_t *to, Vector x) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), x);
  }
  ZEL_ISA_AESNI static Block load_block(const std::uint8_t *from) noexcept { return load(from); }
  ZEL_ISA_AESNI static void store_block(std::uint8_t *to, Block x) noexcept { store(to, x); }
  ZEL_ISA_AESNI static Vector key(const std::uint8_t *from) noexcept { return load(from); }
  ZEL_ISA_AESNI static Vector counters(std::uint64_t high, std::uint64_t low) noexcept {
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
  }
  ZEL_ISA_AESNI static Vector add(Vector x, std::size_t n) noexcept {
    return _mm_add_epi64(x, _mm_set_epi64x(0, static_cast<long long>(n)));
  }
  ZEL_ISA_AESNI static Vector swap(Vector x) noexcept {
    return _mm_shuffle_epi8(x, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  }
  ZEL_ISA_AESNI static Vector follow(Block block, const std::uint8_t *) noexcept { return block; }
  ZEL_ISA_AESNI static Vector bit_xor(Vector a, Vector b) noexcept { return _mm_xor_si128(a, b); }
  ZEL_ISA_AESNI static Vector enc(Vector x, Vector k) noexcept { return _mm_aesenc_si128(x, k); }
  ZEL_ISA_AESNI static Vector enc_last(Vector x, Vector k) noexcept {
    return _mm_aesenclast_si128(x, k);
  }
  ZEL_ISA_AESNI static Vector dec(Vector x, Vector k) noexcept { return _mm_aesdec_si128(x, k); }
  ZEL_ISA_AESNI static Vector dec_last(Vector x, Vector k) noexcept {
    return _mm_aesdeclast_si128(x, k);
  }

  // Bytes of many blocks side by side.

  /// A byte of every block, as memory keeps it.
  struct alignas(16) Spread {
    std::uint8_t bytes[16];
  };
  /// The 16 bytes of `block`, each in a Spread of its own.
  ZEL_ISA_AESNI static void spread(Spread (&to)[16], Block block) noexcept {
#pragma GCC unroll 16
    for (std::size_t i = 0; i < 16; ++i)
      store(to[i].bytes, _mm_shuffle_epi8(block, _mm_set1_epi8(static_cast<char>(i))));
  }
  ZEL_ISA_AESNI static Vector gather(const Spread &from) noexcept { return load(from.bytes); }
  /// The places of the blocks: a transposed array has block i at place i.
  ZEL_ISA_AESNI static Vector places() noexcept {
    return _mm_set_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  }
  ZEL_ISA_AESNI static Vector every_byte(unsigned value) noexcept {
    return _mm_set1_epi8(static_cast<char>(value));
  }
  ZEL_ISA_AESNI static Vector zero() noexcept { return _mm_setzero_si128(); }
  ZEL_ISA_AESNI static Vector bit_and(Vector a, Vector b) noexcept { return _mm_and_si128(a, b); }
  ZEL_ISA_AESNI static Vector high_nibbles(Vector x) noexcept {
    return bit_and(_mm_srli_epi16(x, 4), every_byte(15));
  }
  ZEL_ISA_AESNI static Vector lookup(Vector table, Vector at) noexcept {
    return _mm_shuffle_epi8(table, at);
  }
  ZEL_ISA_AESNI static Vector unpack_low(Vector a, Vector b) noexcept {
    return _mm_unpacklo_epi8(a, b);
  }
  ZEL_ISA_AESNI static Vector unpack_high(Vector a, Vector b) noexcept {
    return _mm_unpackhi_epi8(a, b);
  }
  ZEL_ISA_AESNI static Vector add_bytes(Vector a, Vector b) noexcept { return _mm_add_epi8(a, b); }
  /// 1 where a byte of a is greater than that of b, both without sign.
  ZEL_ISA_AESNI static Vector greater(Vector a, Vector b) noexcept {
    return _mm_min_epu8(_mm_subs_epu8(a, b), every_byte(1));
  }

  // Words of many blocks side by side.

  ZEL_ISA_AESNI static Vector every_word(std::uint32_t value) noexcept {
    return _mm_set1_epi32(static_cast<int>(value));
  }
  ZEL_ISA_AESNI static Vector add_words(Vector a, Vector b) noexcept { return _mm_add_epi32(a, b); }
  ZEL_ISA_AESNI static Vector unpack_low32(Vector a, Vector b) noexcept {
    return _mm_unpacklo_epi32(a, b);
  }
  ZEL_ISA_AESNI static Vector unpack_high32(Vector a, Vector b) noexcept {
    return _mm_unpackhi_epi32(a, b);
  }
  ZEL_ISA_AESNI static Vector unpack_low64(Vector a, Vector b) noexcept {
    return _mm_unpacklo_epi64(a, b);
  }
  ZEL_ISA_AESNI static Vector unpack_high64(Vector a, Vector b) noexcept {
    return _mm_unpackhi_epi64(a, b);
  }
};

}  // namespace
}  // namespace zel
