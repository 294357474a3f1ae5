// ARIA with a block in every 128 bits of a register, in constant time: all four S-boxes are
// inversions of AES between affine maps, and every byte goes through each of them. RFC 5794,
// section 2.4. The including file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "cipher/aria_boxes.hpp"
#include "cipher/wide_steps.hpp"

namespace zel {
namespace {

/// The map of each byte.
template <class Lanes, const NibbleMap &kMap>
ZEL_KERNEL typename Lanes::Vector map_bytes(typename Lanes::Vector x) noexcept {
  const auto low = Lanes::bit_and(x, Lanes::every_byte(15));
  return Lanes::bit_xor(Lanes::lookup(Lanes::key(kMap.low.data()), low),
                        Lanes::lookup(Lanes::key(kMap.high.data()), Lanes::high_nibbles(x)));
}

/// Any number of registers side by side, each step for all of them before the next.
template <class Lanes>
struct AriaBlocks {
  using Vector = typename Lanes::Vector;
  using Shuffle = aria_boxes::Shuffle;

  /// A list of round keys; in the second half of a schedule for decryption.
  struct Keys {
    const std::uint8_t *list;
    unsigned rounds;
  };

  ZEL_KERNEL static Vector shuffled(Vector x, const Shuffle &shuffle) noexcept {
    return Lanes::lookup(x, Lanes::key(shuffle.data()));
  }
  ZEL_KERNEL static Vector both(Vector x, const std::array<Shuffle, 2> &pair) noexcept {
    return Lanes::bit_xor(shuffled(x, pair[0]), shuffled(x, pair[1]));
  }

  /// Substitution and diffusion of x, which has its key already, and addition of the next key.
  template <std::size_t kVectors>
  ZEL_KERNEL static void round(Vector (&x)[kVectors], const aria_boxes::Gather &gather,
                               Vector next_key) noexcept {
    using namespace aria_boxes;
    Vector s1[kVectors], x2[kVectors];
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i) {
      s1[i] = Lanes::enc_last(x[i], Lanes::zero());
      x2[i] = Lanes::dec_last(map_bytes<Lanes, kBefore>(x[i]), Lanes::zero());
      x[i] = Lanes::dec_last(x[i], Lanes::zero());
    }
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i) {
      x[i] = Lanes::bit_xor(both(x[i], gather.shuffles[kBoxX1]), next_key);
      x[i] = Lanes::bit_xor(x[i], both(s1[i], gather.shuffles[kBoxS1]));
      s1[i] = map_bytes<Lanes, kAfter>(s1[i]);
    }
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i) {
      x2[i] = both(x2[i], gather.shuffles[kBoxX2]);
      x[i] = Lanes::bit_xor(Lanes::bit_xor(x[i], x2[i]), both(s1[i], gather.shuffles[kBoxS2]));
    }
  }

  template <std::size_t kVectors>
  ZEL_KERNEL static void last_round(Vector (&x)[kVectors], Vector last_key) noexcept {
    using namespace aria_boxes;
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i) {
      const Vector s1 = Lanes::enc_last(x[i], Lanes::zero());
      const Vector x1 = Lanes::dec_last(x[i], Lanes::zero());
      const Vector x2 = Lanes::dec_last(map_bytes<Lanes, kBefore>(x[i]), Lanes::zero());
      const Vector s2 = map_bytes<Lanes, kAfter>(s1);
      const Vector s =
          Lanes::bit_xor(shuffled(s1, kLastGather[kBoxS1]), shuffled(s2, kLastGather[kBoxS2]));
      const Vector t =
          Lanes::bit_xor(shuffled(x1, kLastGather[kBoxX1]), shuffled(x2, kLastGather[kBoxX2]));
      x[i] = Lanes::bit_xor(Lanes::bit_xor(s, t), last_key);
    }
  }

  /// The rounds of x, which has the first key already; `addend` is added to the result.
  template <std::size_t kVectors>
  ZEL_KERNEL static void all_rounds(Vector (&x)[kVectors], const Keys &keys,
                                    Vector addend) noexcept {
    using namespace aria_boxes;
    const std::uint8_t *const last = keys.list + wide::kBlockLen * keys.rounds;
    const Vector last_key = Lanes::bit_xor(Lanes::key(last), addend);
    round(x, kOddGather, Lanes::key(keys.list + 16));
    for (const std::uint8_t *key = keys.list + 32; key != last; key += 32) {
      round(x, kEvenGather, Lanes::key(key));
      round(x, kOddGather, Lanes::key(key + 16));
    }
    last_round(x, last_key);
  }

  template <std::size_t kVectors>
  ZEL_KERNEL static void encipher(Vector (&x)[kVectors], const Keys &keys) noexcept {
    wide::add_key<Lanes>(x, keys.list);
    all_rounds(x, keys, Lanes::zero());
  }
  template <std::size_t kVectors>
  ZEL_KERNEL static void decipher(Vector (&x)[kVectors], const Keys &keys) noexcept {
    encipher(x, keys);
  }
};

}  // namespace
}  // namespace zel
