// ARIA in CCM: the chain of the MAC in one half of a register, counter mode in the other. The chain
// waits for itself, so the counters cost nothing. The including file defines ZEL_KERNEL_ISA, as
// wide_steps.hpp asks.
#pragma once

#include "cipher/aria_blocks.hpp"
#include "cipher/bulk.hpp"
#include "cipher/lanes_aesni.hpp"

namespace zel {
namespace {

/// `Lanes` has two blocks. The counter is one block ahead: what comes out may be what the MAC is
/// of.
template <class Lanes, unsigned kRounds>
ZEL_KERNEL_ISA void aria_counter_mac(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                                     std::size_t count, const void *schedule, std::uint8_t *counter,
                                     std::uint8_t *mac) noexcept {
  using Blocks = AriaBlocks<Lanes>;
  using Count = wide::Count<Lanes>;
  const typename Blocks::Keys keys{static_cast<const std::uint8_t *>(schedule), kRounds};
  const __m256i first = Lanes::key(keys.list);
  const __m256i low_half = _mm256_set_epi64x(0, 0, -1, -1);
  auto value = Count::begin(counter);
  const auto beside_counter = [&](__m128i block) ZEL_KERNEL_ISA {
    const __m128i low_first = Xmm::swap(Xmm::counters(value.high, value.low));
    return Lanes::bit_xor(first, _mm256_set_m128i(low_first, block));
  };
  __m256i x[] = {beside_counter(_mm_setzero_si128())};
  Blocks::all_rounds(x, keys, Lanes::zero());
  __m256i chain = _mm256_zextsi128_si256(Xmm::load(mac));
  for (; count > 0; --count, in += wide::kBlockLen, out += wide::kBlockLen) {
    const __m128i from = Xmm::load(in);
    const __m128i to = _mm_xor_si128(from, _mm256_extracti128_si256(x[0], 1));
    Xmm::store(out, to);
    value = Count::advance(value, nullptr, 1);
    x[0] = Lanes::bit_xor(chain, beside_counter(what == bulk::MacOf::kInput ? from : to));
    Blocks::all_rounds(x, keys, Lanes::zero());
    chain = Lanes::bit_and(x[0], low_half);
  }
  Xmm::store(mac, _mm256_castsi256_si128(chain));
  Count::end(counter, value);
}

}  // namespace
}  // namespace zel
