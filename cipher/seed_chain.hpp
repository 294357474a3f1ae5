// SEED one block after the other: the serial modes, and counter mode beside a MAC. The including
// file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "base/wipe.hpp"
#include "cipher/chain_kernel.hpp"
#include "cipher/seed.hpp"
#include "cipher/seed_slices.hpp"

namespace zel {
namespace {

/// The words of four blocks fill a register; a single block is one of four that are alike.
template <class Boxes>
struct SeedChain {
  using Slices = SeedSlices<Xmm, Boxes, 1>;

  ZEL_KERNEL_ISA __attribute__((noinline)) static __m128i one(__m128i x, SeedKeys keys) noexcept {
    __m128i same[] = {x, x, x, x};
    Slices::crypt(same, keys);
    return same[0];
  }

  ZEL_KERNEL static void block(std::uint8_t *block, const SeedKeys &keys) noexcept {
    Xmm::store(block, one(Xmm::load(block), keys));
  }

  struct Link {
    ZEL_KERNEL static __m128i first(const SeedKeys &) noexcept { return _mm_setzero_si128(); }
    ZEL_KERNEL static __m128i run(__m128i x, const SeedKeys &keys, __m128i addend) noexcept {
      return _mm_xor_si128(one(x, keys), addend);
    }
  };

  static void serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *schedule, std::uint8_t *chain) noexcept {
    chain::serial<Link>(kind, out, in, count, SeedKeys::forth(schedule), chain);
  }

  /// A link of the MAC and the next block of key stream go side by side, at the price of one.
  ZEL_KERNEL_ISA static void both(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                                  std::size_t count, const SeedKeys &keys, std::uint8_t *counter,
                                  std::uint8_t *mac) noexcept {
    using Counter = wide::Count<Xmm>;
    auto value = Counter::begin(counter);
    const auto next = [&value]() ZEL_KERNEL_ISA {
      const __m128i block = Xmm::swap(Xmm::counters(value.high, value.low));
      value = Counter::advance(value, nullptr, 1);
      return block;
    };
    __m128i stream = one(next(), keys);
    __m128i tag = Xmm::load(mac);
    for (; count > 0; --count, in += wide::kBlockLen, out += wide::kBlockLen) {
      const __m128i from = Xmm::load(in);
      const __m128i to = _mm_xor_si128(from, stream);
      Xmm::store(out, to);
      tag = _mm_xor_si128(tag, what == bulk::MacOf::kInput ? from : to);
      if (count == 1) break;
      const __m128i counted = next();
      __m128i x[] = {tag, counted, counted, counted};
      Slices::crypt(x, keys);
      tag = x[0];
      stream = x[1];
    }
    Xmm::store(mac, one(tag, keys));
    Counter::end(counter, value);
  }

  static void counter_mac(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *counter,
                          std::uint8_t *mac) noexcept {
    if (count == 0) return;
    constexpr std::size_t kSpilled = 512;
    with_wiped_stack<kSpilled>([&] {
      both(what, out, in, count, SeedKeys::forth(schedule), counter, mac);
      return 0;
    });
  }

  // Tables are for who asked for them, and need no other lane.
  static constexpr bulk::SerialFn kSerial = kSeedByTables ? nullptr : serial;
  static constexpr bulk::CounterMacFn kCounterMac = kSeedByTables ? nullptr : counter_mac;
};

}  // namespace
}  // namespace zel
