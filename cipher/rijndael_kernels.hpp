// AES over several registers of blocks, for any width of register. The including file defines
// ZEL_KERNEL_ISA as the instruction set of its registers (base/isa.hpp): the attribute has to stand
// on each function, and a template cannot take it as a parameter.
//
// `Lanes` describes one register:
//   Vector, kBlocks      the type, and how many blocks it holds
//   load, store          of kBlocks blocks, at any alignment
//   Block, load_block, store_block   the same for one block
//   key(from)            one round key, repeated for every block
//   counters(high, low)  kBlocks consecutive counters, each as two little-endian words
//   add(x, n), swap(x)   n onto every low word; counters to their big-endian form
//   follow(block, from)  a block, and behind it those at `from`, as far as there is room
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

  // One step of each operation, over kStepBlocks blocks, and what becomes of its register.

  struct Encrypt {
    struct Register {};
    static Register begin(const std::uint8_t *) noexcept { return {}; }
    static void end(std::uint8_t *, Register) noexcept {}
    static Register advance(Register, const std::uint8_t *, std::size_t) noexcept { return {}; }
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                Register) noexcept {
      Vector x[kVectors];
      load(x, in);
      encipher(x, keys);
      store(out, x);
    }
  };

  struct Decrypt : Encrypt {
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                typename Encrypt::Register) noexcept {
      Vector x[kVectors];
      load(x, in);
      decipher(x, keys);
      store(out, x);
    }
  };

  struct CbcDecrypt {
    using Register = typename Lanes::Block;
    static Register begin(const std::uint8_t *chain) noexcept { return Lanes::load_block(chain); }
    static void end(std::uint8_t *chain, Register last) noexcept {
      Lanes::store_block(chain, last);
    }
    static Register advance(Register, const std::uint8_t *in, std::size_t count) noexcept {
      return begin(in + kBlockLen * (count - 1));
    }
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                Register before) noexcept {
      Vector x[kVectors];
      load(x, in);
      decipher(x, keys);
      x[0] = Lanes::bit_xor(x[0], Lanes::follow(before, in));
#pragma GCC unroll 8
      for (std::size_t i = 1; i < kVectors; ++i)
        x[i] = Lanes::bit_xor(x[i], Lanes::load(in + kStride * i - kBlockLen));
      store(out, x);
    }
  };

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
    ZEL_KERNEL static void counters(Vector (&x)[kVectors], Register value) noexcept {
      if (value.low <= UINT64_MAX - kStepBlocks) {
        const Vector first = Lanes::counters(value.high, value.low);
#pragma GCC unroll 8
        for (std::size_t i = 0; i < kVectors; ++i)
          x[i] = Lanes::swap(Lanes::add(first, i * Lanes::kBlocks));
        return;
      }
      std::uint8_t each[kStepLen];
      for (std::size_t i = 0; i < kStepBlocks; ++i)
        end(each + kBlockLen * i, advance(value, nullptr, i));
      load(x, each);
    }
    ZEL_KERNEL static void step(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys,
                                Register value) noexcept {
      Vector x[kVectors];
      counters(x, value);
      encipher(x, keys);
#pragma GCC unroll 8
      for (std::size_t i = 0; i < kVectors; ++i)
        Lanes::store(out + kStride * i, Lanes::bit_xor(x[i], Lanes::load(in + kStride * i)));
    }
  };

  /// Step by step; a rest that does not fill a step is done in a buffer that does.
  template <class Operation>
  ZEL_KERNEL_ISA static void run(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                 const void *schedule, std::uint8_t *chain) noexcept {
    const auto *const keys = static_cast<const std::uint8_t *>(schedule);
    auto reg = Operation::begin(chain);
    for (; count >= kStepBlocks; count -= kStepBlocks, in += kStepLen, out += kStepLen) {
      const auto next = Operation::advance(reg, in, kStepBlocks);
      Operation::step(out, in, keys, reg);
      reg = next;
    }
    if (count > 0) {
      std::uint8_t rest[kStepLen] = {};
      std::memcpy(rest, in, count * kBlockLen);
      const auto next = Operation::advance(reg, rest, count);
      Operation::step(rest, rest, keys, reg);
      reg = next;
      std::memcpy(out, rest, count * kBlockLen);
      wipe(rest, sizeof rest);
    }
    Operation::end(chain, reg);
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
