// SEED over several registers of blocks: turned so that each register holds one word of many
// blocks, where the additions of the cipher are those of the processor. RFC 4269.
//
// The including file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks. `Boxes` computes S-boxes:
//   common(x)           the part that both boxes have in common
//   first(x), second(x) what makes the one or the other of it
#pragma once

#include "cipher/bulk.hpp"
#include "cipher/seed_boxes.hpp"
#include "cipher/wide_steps.hpp"

namespace zel {
namespace {

/// The round keys from the first that is needed, and the way to the next.
struct SeedKeys {
  static constexpr std::ptrdiff_t kRoundLen = 8;
  static SeedKeys forth(const void *schedule) noexcept {
    return {static_cast<const std::uint8_t *>(schedule), kRoundLen};
  }
  static SeedKeys back(const void *schedule) noexcept {
    return {static_cast<const std::uint8_t *>(schedule) + 15 * kRoundLen, -kRoundLen};
  }
  const std::uint8_t *list;
  std::ptrdiff_t step;
};

/// `kRegisters` is 1 or even: the G function of two registers shares its substitutions.
template <class Lanes, class Boxes, std::size_t kRegisters>
class SeedSlices {
  using Vector = typename Lanes::Vector;
  using Words = Vector[kRegisters];
  static constexpr const auto &kPlaces = seed_boxes::kPlaces;

  ZEL_KERNEL static Vector table(const seed_boxes::Bytes16 &bytes) noexcept {
    return Lanes::key(bytes.data());
  }

  ZEL_KERNEL static Vector share(Vector x, std::size_t byte,
                                 const seed_boxes::Places &places) noexcept {
    return Lanes::bit_and(Lanes::lookup(x, table(places.spread[byte])), table(places.masks[byte]));
  }

  ZEL_KERNEL static void g_of_one(Vector &x) noexcept {
    const auto *places = &kPlaces;
    __asm__ volatile("" : "+r"(places));  // or they are held in registers and the block is not
    const Vector s = Boxes::common(x);
    const Vector first = Boxes::first(s);
    const Vector second = Boxes::second(s);
    x = Lanes::bit_xor(Lanes::bit_xor(share(first, 0, *places), share(first, 2, *places)),
                       Lanes::bit_xor(share(second, 1, *places), share(second, 3, *places)));
  }

  /// (a & a_mask) ^ (b & b_mask)
  ZEL_KERNEL static Vector mixed(Vector a, unsigned a_mask, Vector b, unsigned b_mask) noexcept {
    return Lanes::bit_xor(Lanes::bit_and(a, Lanes::every_byte(a_mask)),
                          Lanes::bit_and(b, Lanes::every_byte(b_mask)));
  }

  /// Bytes that go through one box are brought together. Step by step for all registers: the
  /// processor does not look far enough ahead to find the next pair by itself.
  ZEL_KERNEL static void g_of_pairs(Words &x) noexcept {
    constexpr std::size_t kPairs = kRegisters / 2;
    constexpr auto &kMasks = kSeedMasks;
    Vector first[kPairs], second[kPairs];
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i)
      x[i] = Boxes::common(x[i]);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i)
      x[i] = Lanes::lookup(x[i], table(kPlaces.by_box));
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kPairs; ++i) {
      first[i] = Boxes::first(Lanes::unpack_low64(x[2 * i], x[2 * i + 1]));
      second[i] = Boxes::second(Lanes::unpack_high64(x[2 * i], x[2 * i + 1]));
    }
    // Each 16 bits hold bytes 0 and 2, or 1 and 3: they make bytes 0 and 2, or 1 and 3, of a sum.
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kPairs; ++i) {
      const Vector crossed02 = mixed(first[i], kMasks[2], second[i], kMasks[3]);
      const Vector crossed13 = mixed(first[i], kMasks[3], second[i], kMasks[0]);
      const Vector z02 = Lanes::bit_xor(mixed(first[i], kMasks[0], second[i], kMasks[1]),
                                        Lanes::lookup(crossed02, table(seed_boxes::kSwapPairs)));
      const Vector z13 = Lanes::bit_xor(mixed(first[i], kMasks[1], second[i], kMasks[2]),
                                        Lanes::lookup(crossed13, table(seed_boxes::kSwapPairs)));
      x[2 * i] = Lanes::unpack_low(z02, z13);
      x[2 * i + 1] = Lanes::unpack_high(z02, z13);
    }
  }

  ZEL_KERNEL static void g_of_all(Words &x) noexcept {
    if constexpr (kRegisters == 1) {
      g_of_one(x[0]);
    } else {
      g_of_pairs(x);
    }
  }

  ZEL_KERNEL static void add_to(Words &x, const Words &y) noexcept {
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i)
      x[i] = Lanes::add_words(x[i], y[i]);
  }

  /// to ^= F(from, key). RFC 4269, section 2.1.
  ZEL_KERNEL static void round(Words &to_high, Words &to_low, const Words &from_high,
                               const Words &from_low, const std::uint8_t *key) noexcept {
    const Vector high_key = Lanes::every_word(load_le32(key));
    const Vector low_key = Lanes::every_word(load_le32(key + 4));
    Words high, low;
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i) {
      high[i] = Lanes::bit_xor(from_high[i], high_key);
      low[i] = Lanes::bit_xor(high[i], Lanes::bit_xor(from_low[i], low_key));
    }
    g_of_all(low);
    add_to(high, low);
    g_of_all(high);
    add_to(low, high);
    g_of_all(low);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i) {
      to_high[i] = Lanes::bit_xor(to_high[i], Lanes::add_words(high[i], low[i]));
      to_low[i] = Lanes::bit_xor(to_low[i], low[i]);
    }
  }

  /// The words of four registers, one from each block, and the way back.
  ZEL_KERNEL static void transpose(Vector &a, Vector &b, Vector &c, Vector &d) noexcept {
    const Vector low_ab = Lanes::unpack_low32(a, b), high_ab = Lanes::unpack_high32(a, b);
    const Vector low_cd = Lanes::unpack_low32(c, d), high_cd = Lanes::unpack_high32(c, d);
    a = Lanes::unpack_low64(low_ab, low_cd);
    b = Lanes::unpack_high64(low_ab, low_cd);
    c = Lanes::unpack_low64(high_ab, high_cd);
    d = Lanes::unpack_high64(high_ab, high_cd);
  }

 public:
  static constexpr std::size_t kVectors = 4 * kRegisters;
  using Keys = SeedKeys;

  /// The G function of each word in one register.
  ZEL_KERNEL static Vector g(Vector x) noexcept {
    g_of_one(x);
    return x;
  }

  /// Registers of whole blocks.
  ZEL_KERNEL static void crypt(Vector (&x)[kVectors], SeedKeys keys) noexcept {
    Words a, b, c, d;
    const Vector swap = table(seed_boxes::kSwapWords);
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i) {
      a[i] = Lanes::lookup(x[4 * i], swap);
      b[i] = Lanes::lookup(x[4 * i + 1], swap);
      c[i] = Lanes::lookup(x[4 * i + 2], swap);
      d[i] = Lanes::lookup(x[4 * i + 3], swap);
      transpose(a[i], b[i], c[i], d[i]);
    }
    for (std::size_t i = 0; i < 8; ++i, keys.list += 2 * keys.step) {
      round(a, b, c, d, keys.list);
      round(c, d, a, b, keys.list + keys.step);
    }
#pragma GCC unroll 16
    for (std::size_t i = 0; i < kRegisters; ++i) {
      transpose(c[i], d[i], a[i], b[i]);
      x[4 * i] = Lanes::lookup(c[i], swap);
      x[4 * i + 1] = Lanes::lookup(d[i], swap);
      x[4 * i + 2] = Lanes::lookup(a[i], swap);
      x[4 * i + 3] = Lanes::lookup(b[i], swap);
    }
  }

  /// Which direction it is lies in the keys. Not inline: one body serves every mode.
  ZEL_KERNEL_ISA __attribute__((noinline)) static void encipher(Vector (&x)[kVectors],
                                                                const SeedKeys &keys) noexcept {
    crypt(x, keys);
  }
  ZEL_KERNEL static void decipher(Vector (&x)[kVectors], const SeedKeys &keys) noexcept {
    encipher(x, keys);
  }
};

/// The boxes through the AES instructions.
template <class Lanes>
struct SeedAesBoxes {
  static constexpr NibbleMap kBefore = nibble_map(seed_boxes::into_aes_field());
  static constexpr gf256::Box kBox1 = seed_boxes::after(gf256::aes_box(), kSeedS1);
  static constexpr gf256::Box kBox2 = seed_boxes::after(gf256::aes_box(), kSeedS2);
  static constexpr NibbleMap kFirst = nibble_map(kBox1);
  static constexpr NibbleMap kSecond = nibble_map(kBox2);
  static_assert(is_map(kBefore, seed_boxes::into_aes_field()));
  static_assert(is_map(kFirst, kBox1) && is_map(kSecond, kBox2));
  using Vector = typename Lanes::Vector;

  ZEL_KERNEL static Vector map(const NibbleMap &by, Vector x) noexcept {
    const Vector low = Lanes::bit_and(x, Lanes::every_byte(15));
    return Lanes::bit_xor(Lanes::lookup(Lanes::key(by.low.data()), low),
                          Lanes::lookup(Lanes::key(by.high.data()), Lanes::high_nibbles(x)));
  }
  ZEL_KERNEL static Vector common(Vector x) noexcept {
    return Lanes::enc_last(map(kBefore, x), Lanes::zero());
  }
  ZEL_KERNEL static Vector first(Vector x) noexcept { return map(kFirst, x); }
  ZEL_KERNEL static Vector second(Vector x) noexcept { return map(kSecond, x); }
};

}  // namespace
}  // namespace zel
