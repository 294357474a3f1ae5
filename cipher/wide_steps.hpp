// The parallel modes over several registers of blocks, for any cipher and any width of register.
// The including file defines ZEL_KERNEL_ISA as the instruction set of its registers (base/isa.hpp):
// the attribute has to stand on each function, and a template cannot take it as a parameter.
//
// `Lanes` describes one register (lanes_aesni.hpp, lanes_vaes.hpp):
//   Vector, kBlocks      the type, and how many blocks it holds
//   load, store          of kBlocks blocks, at any alignment
//   Block, load_block, store_block   the same for one block
//   key(from)            one round key, repeated for every block
//   counters(high, low)  kBlocks consecutive counters, each as two little-endian words
//   add(x, n), swap(x)   n onto every low word; counters to their big-endian form
//   follow(block, from)  a block, and behind it those at `from`, as far as there is room
//   bit_xor, enc, enc_last, dec, dec_last
//
// `Rounds` has Keys, encipher(x, keys) and decipher(x, keys) for an array of Vector.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"

#define ZEL_KERNEL ZEL_KERNEL_ISA inline __attribute__((always_inline))

namespace zel::wide {
namespace {

inline constexpr std::size_t kBlockLen = 16;

/// How many blocks `kVectors` registers take.
template <class Lanes, std::size_t kVectors>
inline constexpr std::size_t kBlocksOf = kVectors *Lanes::kBlocks;
template <class Lanes>
inline constexpr std::size_t kStride = Lanes::kBlocks *kBlockLen;

template <class Lanes, std::size_t kVectors>
ZEL_KERNEL void load(typename Lanes::Vector (&x)[kVectors], const std::uint8_t *in) noexcept {
#pragma GCC unroll 16
  for (std::size_t i = 0; i < kVectors; ++i)
    x[i] = Lanes::load(in + kStride<Lanes> * i);
}

template <class Lanes, std::size_t kVectors>
ZEL_KERNEL void store(std::uint8_t *out, const typename Lanes::Vector (&x)[kVectors]) noexcept {
#pragma GCC unroll 16
  for (std::size_t i = 0; i < kVectors; ++i)
    Lanes::store(out + kStride<Lanes> * i, x[i]);
}

template <class Lanes, std::size_t kVectors>
ZEL_KERNEL void add_key(typename Lanes::Vector (&x)[kVectors], const std::uint8_t *from) noexcept {
  const typename Lanes::Vector key = Lanes::key(from);
#pragma GCC unroll 16
  for (std::size_t i = 0; i < kVectors; ++i)
    x[i] = Lanes::bit_xor(x[i], key);
}

/// out = in ^ x.
template <class Lanes, std::size_t kVectors>
ZEL_KERNEL void store_sum(std::uint8_t *out, const std::uint8_t *in,
                          const typename Lanes::Vector (&x)[kVectors]) noexcept {
#pragma GCC unroll 16
  for (std::size_t i = 0; i < kVectors; ++i) {
    const std::size_t at = kStride<Lanes> * i;
    Lanes::store(out + at, Lanes::bit_xor(x[i], Lanes::load(in + at)));
  }
}

// One step of each operation, over kBlocksOf blocks, and what becomes of its register.

template <class Lanes>
struct Encrypt {
  struct Register {};
  static Register begin(const std::uint8_t *) noexcept { return {}; }
  static void end(std::uint8_t *, Register) noexcept {}
  static Register advance(Register, const std::uint8_t *, std::size_t) noexcept { return {}; }
  template <class Rounds, std::size_t kVectors, class Keys>
  ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, Keys &keys,
                              Register) noexcept {
    typename Lanes::Vector x[kVectors];
    load<Lanes>(x, in);
    Rounds::encipher(x, keys);
    store<Lanes>(out, x);
  }
};

template <class Lanes>
struct Decrypt : Encrypt<Lanes> {
  template <class Rounds, std::size_t kVectors, class Keys>
  ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, Keys &keys,
                              typename Encrypt<Lanes>::Register) noexcept {
    typename Lanes::Vector x[kVectors];
    load<Lanes>(x, in);
    Rounds::decipher(x, keys);
    store<Lanes>(out, x);
  }
};

template <class Lanes>
struct CbcDecrypt {
  using Register = typename Lanes::Block;
  ZEL_KERNEL static Register begin(const std::uint8_t *chain) noexcept {
    return Lanes::load_block(chain);
  }
  ZEL_KERNEL static void end(std::uint8_t *chain, Register last) noexcept {
    Lanes::store_block(chain, last);
  }
  ZEL_KERNEL static Register advance(Register, const std::uint8_t *in, std::size_t count) noexcept {
    return begin(in + kBlockLen * (count - 1));
  }
  template <class Rounds, std::size_t kVectors, class Keys>
  ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, Keys &keys,
                              Register before) noexcept {
    typename Lanes::Vector x[kVectors];
    load<Lanes>(x, in);
    Rounds::decipher(x, keys);
    x[0] = Lanes::bit_xor(x[0], Lanes::follow(before, in));
#pragma GCC unroll 16
    for (std::size_t i = 1; i < kVectors; ++i)
      x[i] = Lanes::bit_xor(x[i], Lanes::load(in + kStride<Lanes> * i - kBlockLen));
    store<Lanes>(out, x);
  }
};

template <class Lanes>
struct Count {
  struct Register {
    std::uint64_t high, low;
  };
  static Register begin(const std::uint8_t *counter) noexcept {
    return {load_be64(counter), load_be64(counter + 8)};
  }
  static void end(std::uint8_t *counter, Register value) noexcept {
    store_be64(counter, value.high);
    store_be64(counter + 8, value.low);
  }
  static Register advance(Register value, const std::uint8_t *, std::size_t count) noexcept {
    const std::uint64_t low = value.low + count;
    return {value.high + (low < count ? 1 : 0), low};
  }
  /// Only where the low half wraps are the counters made one by one.
  template <std::size_t kVectors>
  ZEL_KERNEL static void counters(typename Lanes::Vector (&x)[kVectors], Register value) noexcept {
    constexpr std::size_t kBlocks = kBlocksOf<Lanes, kVectors>;
    if (value.low <= UINT64_MAX - kBlocks) {
      const typename Lanes::Vector first = Lanes::counters(value.high, value.low);
#pragma GCC unroll 16
      for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = Lanes::swap(Lanes::add(first, i * Lanes::kBlocks));
      return;
    }
    std::uint8_t each[kBlocks * kBlockLen];
    for (std::size_t i = 0; i < kBlocks; ++i)
      end(each + kBlockLen * i, advance(value, nullptr, i));
    load<Lanes>(x, each);
  }
  template <class Rounds, std::size_t kVectors, class Keys>
  ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, Keys &keys,
                              Register value) noexcept {
    typename Lanes::Vector x[kVectors];
    counters(x, value);
    Rounds::encipher(x, keys);
    store_sum<Lanes>(out, in, x);
  }
};

/// One step over `count` blocks, which are filled up in a buffer where they are fewer than the
/// step takes.
template <class Lanes, class Operation, class Rounds, std::size_t kVectors, class Keys>
ZEL_KERNEL void step(std::uint8_t *out, const std::uint8_t *in, std::size_t count, Keys &keys,
                     typename Operation::Register &reg) noexcept {
  constexpr std::size_t kBlocks = kBlocksOf<Lanes, kVectors>;
  std::uint8_t rest[kBlocks * kBlockLen];
  const bool whole = count == kBlocks;
  const auto next = Operation::advance(reg, in, count);
  if (!whole) {
    std::memset(rest + count * kBlockLen, 0, sizeof rest - count * kBlockLen);
    std::memcpy(rest, in, count * kBlockLen);
  }
  Operation::template step<Rounds, kVectors>(whole ? out : rest, whole ? in : rest, keys, reg);
  reg = next;
  if (!whole) {
    std::memcpy(out, rest, count * kBlockLen);
    wipe(rest, sizeof rest);
  }
}

}  // namespace
}  // namespace zel::wide
