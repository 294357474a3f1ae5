// ARIA with byte i of many blocks in register i: no byte is substituted twice, and the diffusion
// layer is nothing but sums of registers. The including file defines ZEL_KERNEL_ISA, as
// wide_steps.hpp asks.
//
// The AES instructions rotate rows, which here are the places of whole blocks. One kind of
// instruction undoes what the other does, so a shuffle of every second register keeps the blocks
// together, and after two rounds they are back in their places.
#pragma once

#include "cipher/aria_blocks.hpp"

namespace zel {
namespace {

/// The diffusion layer in 48 sums. Any type with ^ will do.
template <class Sum>
ZEL_KERNEL constexpr void diffuse_slices(Sum (&x)[16]) noexcept {
  const Sum t19 = x[10] ^ x[13], t21 = x[7] ^ t19, t23 = x[0] ^ x[5], t24 = x[11] ^ t23;
  const Sum t31 = x[0] ^ t21, t17 = x[9] ^ x[14], t28 = x[14] ^ t24, t22 = x[4] ^ t17;
  const Sum t62 = t21 ^ t28, t35 = x[7] ^ x[9], t36 = x[2] ^ x[12], t44 = x[9] ^ t36;
  const Sum t46 = x[7] ^ t36, t61 = t31 ^ t44, t40 = x[2] ^ t35, t55 = x[12] ^ t35;
  const Sum t16 = x[1] ^ x[12], t26 = x[11] ^ t16, t41 = x[6] ^ t16, t51 = t28 ^ t41;
  const Sum t18 = x[8] ^ x[15], t25 = x[2] ^ t18, t30 = x[5] ^ t25, t50 = t25 ^ t28;
  const Sum t60 = t30 ^ t55, t27 = x[3] ^ t22, t49 = t27 ^ t46, t53 = t24 ^ t27;
  const Sum t20 = x[3] ^ x[6], t37 = x[6] ^ t26, t29 = x[13] ^ t20, t38 = t20 ^ t31;
  const Sum t48 = x[8] ^ t38, t33 = x[8] ^ t29, t58 = t22 ^ t33, t59 = t26 ^ t33;
  const Sum t52 = t37 ^ t40, t54 = t29 ^ t30, t43 = x[15] ^ t37, t47 = x[1] ^ t30;
  const Sum t34 = x[1] ^ x[15], t42 = t27 ^ t34, t39 = t31 ^ t34, t45 = x[10] ^ t42;
  const Sum t56 = x[4] ^ t39, t32 = x[4] ^ x[10], t63 = t32 ^ t47, t57 = t32 ^ t43;
  x[0] = t58, x[1] = t60, x[2] = t57, x[3] = t62, x[4] = t50, x[5] = t45, x[6] = t61;
  x[7] = t59, x[8] = t56, x[9] = t51, x[10] = t54, x[11] = t49, x[12] = t52, x[13] = t48;
  x[14] = t53, x[15] = t63;
}

/// Whether every sum has the terms of its row.
consteval bool slices_diffuse_by_rows() {
  std::uint32_t x[16];
  for (std::size_t i = 0; i < 16; ++i)
    x[i] = 1U << i;
  diffuse_slices(x);
  for (std::size_t to = 0; to < 16; ++to) {
    for (const std::size_t term : kAriaDiffusion[to])
      x[to] ^= 1U << term;
    if (x[to] != 0) return false;
  }
  return true;
}
static_assert(slices_diffuse_by_rows());

/// The sums that have a term, as bits.
consteval std::uint32_t rows_with(std::size_t term) {
  std::uint32_t rows = 0;
  for (std::size_t row = 0; row < 16; ++row)
    for (const std::size_t each : kAriaDiffusion[row])
      if (each == term) rows |= 1U << row;
  return rows;
}

template <class Lanes>
struct AriaSlices {
  using Vector = typename Lanes::Vector;
  using Spread = typename Lanes::Spread;
  static constexpr std::size_t kVectors = 16;
  static constexpr unsigned kMostRounds = 16;

  /// Round keys byte by byte, as the AES instructions take them in: added after the boxes and
  /// before the diffusion layer. Diffusion is its own inverse and the other direction's list has
  /// its inner keys diffused, so they are that list from its end.
  struct Keys {
    Spread bytes[kMostRounds][16];
    const std::uint8_t *whitening;
    unsigned rounds;
    // Counter mode: the diffused first round of the bytes that all counters have in common.
    bool has_first;
    std::uint64_t high, low;
    Vector first[16];
  };

  /// `other` is the list of the other direction.
  ZEL_KERNEL static void expand(Keys &keys, const std::uint8_t *other, unsigned rounds) noexcept {
    keys.whitening = other + wide::kBlockLen * rounds;
    keys.rounds = rounds;
    keys.has_first = false;
    for (unsigned r = 1; r <= rounds; ++r) {
      // S2 has a map behind the instruction, and its key goes before that.
      const __m128i s2 = _mm_set1_epi32(r % 2 == 1 ? 0x0000ff00 : static_cast<int>(0xff000000));
      const __m128i key = load128(other + wide::kBlockLen * (rounds - r));
      const __m128i before = mapped(aria_boxes::kKeyBefore, _mm_and_si128(key, s2));
      Lanes::spread(keys.bytes[r - 1], _mm_xor_si128(_mm_andnot_si128(s2, key), before));
    }
  }

  ZEL_KERNEL static Vector realigned(Vector x) noexcept {
    return Lanes::lookup(x, Lanes::key(aria_boxes::kRealign.data()));
  }

  /// Substitution and key of round r.
  template <AriaRound kKind>
  ZEL_KERNEL static void substitute(Vector (&x)[16], const Keys &keys, unsigned r) noexcept {
    using namespace aria_boxes;
    constexpr bool kOdd = kKind == AriaRound::kOdd;
    constexpr std::size_t kS = kOdd ? 0 : 2;
    constexpr std::size_t kX = kOdd ? 2 : 0;
    const Spread(&key)[16] = keys.bytes[r - 1];
#pragma GCC unroll 4
    for (std::size_t c = 0; c < 16; c += 4) {
      Vector &s1 = x[c + kS], &s2 = x[c + kS + 1], &x1 = x[c + kX], &x2 = x[c + kX + 1];
      s2 = Lanes::enc_last(s2, Lanes::gather(key[c + kS + 1]));
      x2 = map_bytes<Lanes, kBefore>(x2);
      s1 = Lanes::enc_last(s1, Lanes::gather(key[c + kS]));
      x1 = Lanes::dec_last(x1, Lanes::gather(key[c + kX]));
      x2 = Lanes::dec_last(x2, Lanes::gather(key[c + kX + 1]));
      s2 = map_bytes<Lanes, kAfter>(s2);
      Vector &first = kOdd ? x1 : s1, &second = kOdd ? x2 : s2;
      first = realigned(first);
      second = realigned(second);
    }
  }

  /// From blocks to slices, and back again.
  ZEL_KERNEL static void transpose(Vector (&x)[16]) noexcept {
#pragma GCC unroll 4
    for (int stage = 0; stage < 4; ++stage) {
      Vector y[16];
#pragma GCC unroll 8
      for (std::size_t i = 0; i < 8; ++i) {
        y[2 * i] = Lanes::unpack_low(x[i], x[i + 8]);
        y[2 * i + 1] = Lanes::unpack_high(x[i], x[i + 8]);
      }
#pragma GCC unroll 16
      for (std::size_t i = 0; i < 16; ++i)
        x[i] = y[i];
    }
  }

  ZEL_KERNEL static void whiten_and_begin(Vector (&x)[16], const Keys &keys) noexcept {
    wide::add_key<Lanes>(x, keys.whitening);
    transpose(x);
    substitute<AriaRound::kOdd>(x, keys, 1);
    diffuse_slices(x);
  }

  ZEL_KERNEL static void finish(Vector (&x)[16], const Keys &keys) noexcept {
    for (unsigned r = 2; r < keys.rounds; r += 2) {
      substitute<AriaRound::kEven>(x, keys, r);
      diffuse_slices(x);
      substitute<AriaRound::kOdd>(x, keys, r + 1);
      diffuse_slices(x);
    }
    substitute<AriaRound::kEven>(x, keys, keys.rounds);
    transpose(x);
  }

  ZEL_KERNEL static void encipher(Vector (&x)[16], const Keys &keys) noexcept {
    whiten_and_begin(x, keys);
    finish(x, keys);
  }
  ZEL_KERNEL static void decipher(Vector (&x)[16], const Keys &keys) noexcept { encipher(x, keys); }

  /// Counter mode. As long as the low 16 bits do not wrap, the counters differ in their last two
  /// bytes alone.
  struct Count : wide::Count<Lanes> {
    using Register = typename wide::Count<Lanes>::Register;

    ZEL_KERNEL static void remember_first(Keys &keys, Register value) noexcept {
      Spread bytes[16];
      std::uint8_t counter[wide::kBlockLen];
      wide::Count<Lanes>::end(counter, value);
      Lanes::spread(bytes, _mm_xor_si128(load128(counter), load128(keys.whitening)));
      Vector x[16];
#pragma GCC unroll 16
      for (std::size_t i = 0; i < 16; ++i)
        x[i] = Lanes::gather(bytes[i]);
      substitute<AriaRound::kOdd>(x, keys, 1);
      x[14] = x[15] = Lanes::zero();
      diffuse_slices(x);
#pragma GCC unroll 16
      for (std::size_t i = 0; i < 16; ++i)
        keys.first[i] = x[i];
      keys.has_first = true;
      keys.high = value.high;
      keys.low = value.low >> 16;
      wipe(bytes, sizeof bytes);
    }

    /// The first round of the two bytes, and what is remembered of the others.
    ZEL_KERNEL static void begin_counters(Vector (&x)[16], const Keys &keys,
                                          std::uint64_t low) noexcept {
      using namespace aria_boxes;
      constexpr std::uint32_t k14 = rows_with(14), k15 = rows_with(15);
      const Vector last = Lanes::add_bytes(Lanes::every_byte(low & 255), Lanes::places());
      const Vector carry = Lanes::greater(Lanes::places(), last);
      const Vector before_last = Lanes::add_bytes(Lanes::every_byte(low >> 8 & 255), carry);
      const Vector at14 = Lanes::bit_xor(before_last, Lanes::every_byte(keys.whitening[14]));
      const Vector at15 = Lanes::bit_xor(last, Lanes::every_byte(keys.whitening[15]));
      const Vector u14 = realigned(Lanes::dec_last(at14, Lanes::gather(keys.bytes[0][14])));
      const Vector u15 = realigned(
          Lanes::dec_last(map_bytes<Lanes, kBefore>(at15), Lanes::gather(keys.bytes[0][15])));
#pragma GCC unroll 16
      for (std::size_t i = 0; i < 16; ++i) {
        x[i] = keys.first[i];
        if (k14 >> i & 1) x[i] = Lanes::bit_xor(x[i], u14);
        if (k15 >> i & 1) x[i] = Lanes::bit_xor(x[i], u15);
      }
    }

    template <class Rounds, std::size_t kVectors>
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, Keys &keys,
                                Register value) noexcept {
      constexpr std::size_t kBlocks = wide::kBlocksOf<Lanes, kVectors>;
      Vector x[kVectors];
      if ((value.low & 0xffff) > 0x10000 - kBlocks) {
        wide::Count<Lanes>::counters(x, value);
        whiten_and_begin(x, keys);
      } else {
        if (!keys.has_first || keys.high != value.high || keys.low != value.low >> 16)
          remember_first(keys, value);
        begin_counters(x, keys, value.low);
      }
      finish(x, keys);
      wide::store_sum<Lanes>(out, in, x);
    }
  };
};

}  // namespace
}  // namespace zel
