// AES over several registers of blocks, for any width of register. The including file defines
// ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "cipher/rijndael.hpp"
#include "cipher/wide_steps.hpp"

namespace zel::aes {
namespace {

template <class Lanes, class Size>
struct WideRounds {
  using Vector = typename Lanes::Vector;

  template <std::size_t kVectors>
  ZEL_KERNEL static void encipher(Vector (&x)[kVectors], const std::uint8_t *keys) noexcept {
    wide::add_key<Lanes>(x, keys);
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
  template <std::size_t kVectors>
  ZEL_KERNEL static void decipher(Vector (&x)[kVectors], const std::uint8_t *schedule) noexcept {
    const std::uint8_t *const keys = schedule + Size::kHalf;
    wide::add_key<Lanes>(x, keys + kBlockLen * Size::kRounds);
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
};

template <class Lanes, class Size>
class Kernel {
  static constexpr std::size_t kVectors = 8;
  static constexpr std::size_t kStepBlocks = wide::kBlocksOf<Lanes, kVectors>;

  template <class Operation>
  ZEL_KERNEL_ISA static void run(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                 const void *schedule, std::uint8_t *chain) noexcept {
    using Rounds = WideRounds<Lanes, Size>;
    const auto *const keys = static_cast<const std::uint8_t *>(schedule);
    auto reg = Operation::begin(chain);
    for (; count >= kStepBlocks; count -= kStepBlocks) {
      wide::step<Lanes, Operation, Rounds, kVectors>(out, in, kStepBlocks, keys, reg);
      in += kStepBlocks * kBlockLen;
      out += kStepBlocks * kBlockLen;
    }
    if (count > 0) wide::step<Lanes, Operation, Rounds, kVectors>(out, in, count, keys, reg);
    Operation::end(chain, reg);
  }

 public:
  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<wide::Encrypt<Lanes>>(out, in, count, schedule, nullptr);
  }
  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<wide::Decrypt<Lanes>>(out, in, count, schedule, nullptr);
  }
  static void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                  const void *schedule, std::uint8_t *counter) noexcept {
    run<wide::Count<Lanes>>(out, in, count, schedule, counter);
  }
  static void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *schedule, std::uint8_t *chain) noexcept {
    run<wide::CbcDecrypt<Lanes>>(out, in, count, schedule, chain);
  }
};

}  // namespace
}  // namespace zel::aes
