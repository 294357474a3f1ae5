// AES over several registers of blocks, for any width of register. The including file defines
// ZEL_KERNEL_ISA as the instruction set of its registers (base/isa.hpp): the attribute has to stand
// on each function, and a template cannot take it as a parameter.
//
// `Lanes` describes one register:
//   Vector, kBlocks      the type, and how many blocks it holds
//   load, store          of kBlocks blocks, at any alignment
//   key(from)            one round key, repeated for every block
//   counters(high, low)  kBlocks consecutive counters, each as two little-endian words
//   add(x, n), swap(x)   n onto every low word; counters to their big-endian form
//   bit_xor, enc, enc_last, dec, dec_last
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/rijndael.hpp"

namespace zel::aes {
namespace {

#define ZEL_KERNEL ZEL_KERNEL_ISA inline __attribute__((always_inline))

template <class Lanes, class Size>
class Kernel {
  static constexpr std::size_t kVectors = 8;
  static constexpr std::size_t kStride = Lanes::kBlocks * kBlockLen;
  static constexpr std::size_t kStepBlocks = kVectors * Lanes::kBlocks;
  static constexpr std::size_t kStepLen = kVectors * kStride;
  using Vector = typename Lanes::Vector;

  ZEL_KERNEL static void load(Vector (&x)[kVectors], const std::uint8_t *in) noexcept {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i)
      x[i] = Lanes::load(in + kStride * i);
  }

  ZEL_KERNEL static void store(std::uint8_t *out, const Vector (&x)[kVectors]) noexcept {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i)
      Lanes::store(out + kStride * i, x[i]);
  }

  ZEL_KERNEL static void add_key(Vector (&x)[kVectors], const std::uint8_t *from) noexcept {
    const Vector key = Lanes::key(from);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i)
      x[i] = Lanes::bit_xor(x[i], key);
  }

  ZEL_KERNEL static void encipher(Vector (&x)[kVectors], const std::uint8_t *keys) noexcept {
    add_key(x, keys);
    for (std::size_t r = 1; r < Size::kRounds; ++r) {
      const Vector key = Lanes::key(keys + kBlockLen * r);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = Lanes::enc(x[i], key);
    }
    const Vector key = Lanes::key(keys + kBlockLen * Size::kRounds);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i)
      x[i] = Lanes::enc_last(x[i], key);
  }

  /// Takes the second half of the schedule from its end.
  ZEL_KERNEL static void decipher(Vector (&x)[kVectors], const std::uint8_t *schedule) noexcept {
    const std::uint8_t *const keys = schedule + Size::kHalf;
    add_key(x, keys + kBlockLen * Size::kRounds);
    for (std::size_t r = Size::kRounds - 1; r > 0; --r) {
      const Vector key = Lanes::key(keys + kBlockLen * r);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = Lanes::dec(x[i], key);
    }
    const Vector key = Lanes::key(keys);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kVectors; ++i)
      x[i] = Lanes::dec_last(x[i], key);
  }

  /// The counters of one step. Only where the low half wraps are they made one by one.
  ZEL_KERNEL static void count_up(Vector (&x)[kVectors], const std::uint8_t *counter) noexcept {
    const std::uint64_t high = load_be64(counter);
    const std::uint64_t low = load_be64(counter + 8);
    if (low <= UINT64_MAX - kStepBlocks) {
      const Vector first = Lanes::counters(high, low);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = Lanes::swap(Lanes::add(first, i * Lanes::kBlocks));
      return;
    }
    std::uint8_t each[kStepLen];
    for (std::size_t i = 0; i < kStepBlocks; ++i) {
      store_be64(each + kBlockLen * i, high + (low + i < low ? 1 : 0));
      store_be64(each + kBlockLen * i + 8, low + i);
    }
    load(x, each);
  }

  // One step of each operation, over kStepBlocks blocks, and what becomes of the register.
  // advance() is asked before the step, which may overwrite `in`.

  struct Encrypt {
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                const std::uint8_t *) noexcept {
      Vector x[kVectors];
      load(x, in);
      encipher(x, keys);
      store(out, x);
    }
    static void advance(std::uint8_t *, const std::uint8_t *, const std::uint8_t *,
                        std::size_t) noexcept {}
  };

  struct Decrypt : Encrypt {
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                const std::uint8_t *) noexcept {
      Vector x[kVectors];
      load(x, in);
      decipher(x, keys);
      store(out, x);
    }
  };

  struct CbcDecrypt {
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                const std::uint8_t *chain) noexcept {
      Vector x[kVectors];
      Vector before[kVectors];
      std::uint8_t seam[kStride];  // the register and the blocks that share its vector
      std::memcpy(seam, chain, kBlockLen);
      std::memcpy(seam + kBlockLen, in, kStride - kBlockLen);
      before[0] = Lanes::load(seam);
#pragma GCC unroll 8
      for (std::size_t i = 1; i < kVectors; ++i)
        before[i] = Lanes::load(in + kStride * i - kBlockLen);
      load(x, in);
      decipher(x, keys);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        x[i] = Lanes::bit_xor(x[i], before[i]);
      store(out, x);
    }
    static void advance(std::uint8_t *next, const std::uint8_t *, const std::uint8_t *in,
                        std::size_t count) noexcept {
      std::memcpy(next, in + kBlockLen * (count - 1), kBlockLen);
    }
  };

  struct Count {
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                const std::uint8_t *counter) noexcept {
      Vector x[kVectors];
      count_up(x, counter);
      encipher(x, keys);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        Lanes::store(out + kStride * i, Lanes::bit_xor(x[i], Lanes::load(in + kStride * i)));
    }
    static void advance(std::uint8_t *next, const std::uint8_t *counter, const std::uint8_t *,
                        std::size_t count) noexcept {
      const std::uint64_t low = load_be64(counter + 8);
      store_be64(next, load_be64(counter) + (low + count < low ? 1 : 0));
      store_be64(next + 8, low + count);
    }
  };

  /// Step by step; a rest that does not fill a step is done in a buffer that does.
  template <class Operation>
  ZEL_KERNEL_ISA static void run(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                 const void *schedule, std::uint8_t *chain) noexcept {
    const auto *const keys = static_cast<const std::uint8_t *>(schedule);
    std::uint8_t reg[2][kBlockLen] = {};
    if (chain != nullptr) std::memcpy(reg[0], chain, kBlockLen);
    for (; count >= kStepBlocks; count -= kStepBlocks, in += kStepLen, out += kStepLen) {
      Operation::advance(reg[1], reg[0], in, kStepBlocks);
      Operation::step(out, in, keys, reg[0]);
      std::memcpy(reg[0], reg[1], kBlockLen);
    }
    if (count > 0) {
      std::uint8_t rest[kStepLen] = {};
      std::memcpy(rest, in, count * kBlockLen);
      Operation::advance(reg[1], reg[0], in, count);
      Operation::step(rest, rest, keys, reg[0]);
      std::memcpy(reg[0], reg[1], kBlockLen);
      std::memcpy(out, rest, count * kBlockLen);
      wipe(rest, sizeof rest);
    }
    if (chain != nullptr) std::memcpy(chain, reg[0], kBlockLen);
  }

 public:
  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<Encrypt>(out, in, count, schedule, nullptr);
  }
  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<Decrypt>(out, in, count, schedule, nullptr);
  }
  static void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                  const void *schedule, std::uint8_t *counter) noexcept {
    run<Count>(out, in, count, schedule, counter);
  }
  static void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *schedule, std::uint8_t *chain) noexcept {
    run<CbcDecrypt>(out, in, count, schedule, chain);
  }
};

#undef ZEL_KERNEL

}  // namespace
}  // namespace zel::aes
