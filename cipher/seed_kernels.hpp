// The parallel modes of SEED, in steps of 32 registers of blocks down to four, and its chains. The
// including file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "base/wipe.hpp"
#include "cipher/seed_slices.hpp"

namespace zel {
namespace {

template <class Lanes, class Boxes>
class SeedKernel {
  /// The blocks of the smallest step.
  static constexpr std::size_t kUnit = 4 * Lanes::kBlocks;

  template <class Operation>
  struct Work {
    std::uint8_t *out;
    const std::uint8_t *in;
    std::size_t count;
    SeedKeys keys;
    typename Operation::Register reg;
  };

  template <std::size_t kRegisters, class Operation>
  ZEL_KERNEL_ISA static void take(Work<Operation> &work) noexcept {
    using Slices = SeedSlices<Lanes, Boxes, kRegisters>;
    const std::size_t now = work.count < kRegisters * kUnit ? work.count : kRegisters * kUnit;
    wide::step<Lanes, Operation, Slices, Slices::kVectors>(work.out, work.in, now, work.keys,
                                                           work.reg);
    work.out += now * wide::kBlockLen;
    work.in += now * wide::kBlockLen;
    work.count -= now;
  }

  /// A step is worth it when a bit more than half filled.
  template <class Operation>
  static void take_all(Work<Operation> &work) noexcept {
    while (work.count > 6 * kUnit)
      take<8>(work);
    while (work.count > 2 * kUnit)
      take<4>(work);
    if (work.count > kUnit) take<2>(work);
    if (work.count > 0) take<1>(work);
  }

  template <class Operation>
  ZEL_KERNEL_ISA static void run(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                 const SeedKeys &keys, std::uint8_t *chain) noexcept {
    // What a step leaves in memory: blocks, and what does not fit the registers; as deep as GCC and
    // Clang go, and some more.
    constexpr std::size_t kLeft = 5632;
    constexpr std::size_t kLeftByFew = 1536;
    Work<Operation> work{out, in, count, keys, Operation::begin(chain)};
    const auto body = [&work] {
      take_all(work);
      return 0;
    };
    if (count > 2 * kUnit) {
      with_wiped_stack<kLeft>(body);
    } else {
      with_wiped_stack<kLeftByFew>(body);
    }
    Operation::end(chain, work.reg);
  }

  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<wide::Encrypt<Lanes>>(out, in, count, SeedKeys::forth(schedule), nullptr);
  }
  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    run<wide::Encrypt<Lanes>>(out, in, count, SeedKeys::back(schedule), nullptr);
  }
  static void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                  const void *schedule, std::uint8_t *counter) noexcept {
    run<wide::Count<Lanes>>(out, in, count, SeedKeys::forth(schedule), counter);
  }
  static void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *schedule, std::uint8_t *chain) noexcept {
    run<wide::CbcDecrypt<Lanes>>(out, in, count, SeedKeys::back(schedule), chain);
  }

 public:
  /// With the chains of `Chains`, or without, where tables shall do them.
  template <class Chains>
  static constexpr bulk::Ops ops() noexcept {
    return {.encrypt = encrypt,
            .decrypt = decrypt,
            .ctr = ctr,
            .cbc_decrypt = cbc_decrypt,
            .serial = Chains::kSerial,
            .counter_mac = Chains::kCounterMac};
  }
};

}  // namespace
}  // namespace zel
