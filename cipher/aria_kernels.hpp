// The parallel modes of ARIA: slices where there are enough blocks, and registers of whole blocks
// for the others. The including file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "cipher/aria_slices.hpp"
#include "cipher/bulk.hpp"

namespace zel {
namespace {

/// The two lists of a schedule.
struct AriaSchedule {
  AriaSchedule(const void *schedule, unsigned round_count) noexcept
      : encryption(static_cast<const std::uint8_t *>(schedule)),
        decryption(encryption + wide::kBlockLen * (round_count + 1)),
        rounds(round_count) {}
  const std::uint8_t *encryption, *decryption;
  unsigned rounds;
};

/// `kFewest` blocks are worth a step of slices.
template <class Lanes, std::size_t kFewest>
class AriaKernel {
  using Blocks = AriaBlocks<Lanes>;
  using Slices = AriaSlices<Lanes>;
  static constexpr std::size_t kSliced = wide::kBlocksOf<Lanes, Slices::kVectors>;
  /// Most registers side by side where there are few blocks.
  static constexpr std::size_t kMostVectors = 4;
  static constexpr std::size_t kMostBlocks = wide::kBlocksOf<Lanes, kMostVectors>;
  /// What the compiler keeps of registers in memory during a step of slices.
  static constexpr std::size_t kSpilled = 1792;

  /// What is left to do.
  template <class Operation>
  struct Work {
    std::uint8_t *out;
    const std::uint8_t *in;
    std::size_t count;
    typename Operation::Register reg;

    void skip(std::size_t done) noexcept {
      out += done * wide::kBlockLen;
      in += done * wide::kBlockLen;
      count -= done;
    }
  };

  template <class Operation>
  ZEL_KERNEL_ISA static void slices(Work<Operation> &work, typename Slices::Keys &keys,
                                    const std::uint8_t *other, unsigned rounds) noexcept {
    Slices::expand(keys, other, rounds);
    while (work.count >= kFewest) {
      const std::size_t now = work.count < kSliced ? work.count : kSliced;
      wide::step<Lanes, Operation, Slices, Slices::kVectors>(work.out, work.in, now, keys,
                                                             work.reg);
      work.skip(now);
    }
  }

  template <std::size_t kVectors, class Operation, class Keys>
  ZEL_KERNEL_ISA static void few(Work<Operation> &work, std::size_t now,
                                 const Keys &keys) noexcept {
    wide::step<Lanes, Operation, Blocks, kVectors>(work.out, work.in, now, keys, work.reg);
    work.skip(now);
  }

  /// `Many` and `Few` are the same operation over slices and over blocks.
  template <class Many, class Few>
  ZEL_KERNEL_ISA static void run(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                 const std::uint8_t *list, const std::uint8_t *other,
                                 unsigned rounds, std::uint8_t *chain) noexcept {
    Work<Few> work{out, in, count, Few::begin(chain)};
    if (count >= kFewest) {
      Wiped<typename Slices::Keys> keys;
      Work<Many> sliced{out, in, count, work.reg};
      with_wiped_stack<kSpilled>([&] {
        slices(sliced, *keys, other, rounds);
        return 0;
      });
      work = {sliced.out, sliced.in, sliced.count, sliced.reg};
    }
    const typename Blocks::Keys keys{list, rounds};
    while (work.count > 0) {
      const std::size_t now = work.count < kMostBlocks ? work.count : kMostBlocks;
      if (now > 3 * Lanes::kBlocks)
        few<4>(work, now, keys);
      else if (now > 2 * Lanes::kBlocks)
        few<3>(work, now, keys);
      else if (now > Lanes::kBlocks)
        few<2>(work, now, keys);
      else
        few<1>(work, now, keys);
    }
    Few::end(chain, work.reg);
  }

 public:
  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const AriaSchedule &keys) noexcept {
    using Operation = wide::Encrypt<Lanes>;
    run<Operation, Operation>(out, in, count, keys.encryption, keys.decryption, keys.rounds,
                              nullptr);
  }
  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const AriaSchedule &keys) noexcept {
    using Operation = wide::Encrypt<Lanes>;
    run<Operation, Operation>(out, in, count, keys.decryption, keys.encryption, keys.rounds,
                              nullptr);
  }
  static void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                  const AriaSchedule &keys, std::uint8_t *counter) noexcept {
    run<typename Slices::Count, wide::Count<Lanes>>(out, in, count, keys.encryption,
                                                    keys.decryption, keys.rounds, counter);
  }
  static void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const AriaSchedule &keys, std::uint8_t *chain) noexcept {
    using Operation = wide::CbcDecrypt<Lanes>;
    run<Operation, Operation>(out, in, count, keys.decryption, keys.encryption, keys.rounds, chain);
  }
};

/// The same in the form of the seam, for one key length.
template <class Kernel, unsigned kRounds>
struct AriaPaths {
  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    Kernel::encrypt(out, in, count, {schedule, kRounds});
  }
  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
    Kernel::decrypt(out, in, count, {schedule, kRounds});
  }
  static void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                  const void *schedule, std::uint8_t *counter) noexcept {
    Kernel::ctr(out, in, count, {schedule, kRounds}, counter);
  }
  static void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *schedule, std::uint8_t *chain) noexcept {
    Kernel::cbc_decrypt(out, in, count, {schedule, kRounds}, chain);
  }
};

template <class Kernel, unsigned kRounds>
constexpr bulk::Ops aria_ops(bulk::SerialFn serial, bulk::CounterMacFn counter_mac) noexcept {
  using Paths = AriaPaths<Kernel, kRounds>;
  return {.encrypt = Paths::encrypt,
          .decrypt = Paths::decrypt,
          .ctr = Paths::ctr,
          .cbc_decrypt = Paths::cbc_decrypt,
          .serial = serial,
          .counter_mac = counter_mac};
}

}  // namespace
}  // namespace zel
