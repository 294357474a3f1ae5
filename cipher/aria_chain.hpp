// ARIA in the serial modes. The including file defines ZEL_KERNEL_ISA, as wide_steps.hpp asks.
#pragma once

#include "cipher/aria_blocks.hpp"
#include "cipher/chain_kernel.hpp"

namespace zel {
namespace {

template <class Lanes>
struct AriaLink {
  using Blocks = AriaBlocks<Lanes>;
  using Keys = typename Blocks::Keys;
  ZEL_KERNEL static __m128i first(const Keys &keys) noexcept { return load128(keys.list); }
  ZEL_KERNEL static __m128i run(__m128i x, const Keys &keys, __m128i addend) noexcept {
    __m128i one[] = {x};
    Blocks::all_rounds(one, keys, addend);
    return one[0];
  }
};

template <class Lanes, unsigned kRounds>
ZEL_KERNEL_ISA void aria_serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in,
                                std::size_t count, const void *schedule,
                                std::uint8_t *chain) noexcept {
  const typename AriaLink<Lanes>::Keys keys{static_cast<const std::uint8_t *>(schedule), kRounds};
  chain::serial<AriaLink<Lanes>>(kind, out, in, count, keys, chain);
}

}  // namespace
}  // namespace zel
