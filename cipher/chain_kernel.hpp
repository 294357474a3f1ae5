// The serial modes with the register of the mode in a register of the processor. A `Link` has
// run(x, keys, addend), the cipher without the addition of its first round key and with `addend`
// added to its result, and knows where that key begins: first(keys).
//
// Whatever is to be added to the result before the next link goes into the key of the last round,
// so that a chain is nothing but rounds. The including file defines ZEL_KERNEL_ISA.
#pragma once

#include "cipher/bulk.hpp"
#include "cipher/lanes_aesni.hpp"

namespace zel::chain {
namespace {

inline constexpr std::size_t kBlockLen = 16;

/// CBC: between two links, x is the ciphertext block with the next plaintext block and the first
/// round key added.
template <class Link, bool kStore, class Keys>
ZEL_KERNEL_ISA __m128i cbc(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                           const Keys &keys, __m128i reg) noexcept {
  const __m128i first = Link::first(keys);
  __m128i x = _mm_xor_si128(reg, _mm_xor_si128(first, Xmm::load(in)));
  for (; count > 1; --count) {
    in += kBlockLen;
    const __m128i next = _mm_xor_si128(first, Xmm::load(in));
    x = Link::run(x, keys, next);
    if constexpr (kStore) {
      Xmm::store(out, _mm_xor_si128(x, next));
      out += kBlockLen;
    }
  }
  x = Link::run(x, keys, _mm_setzero_si128());
  if constexpr (kStore) Xmm::store(out, x);
  return x;
}

template <class Link, class Keys>
ZEL_KERNEL_ISA void serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in,
                           std::size_t count, const Keys &keys, std::uint8_t *chain) noexcept {
  using bulk::Chain;
  if (count == 0) return;
  const __m128i first = Link::first(keys);
  __m128i reg = Xmm::load(chain);
  switch (kind) {
    case Chain::kCbcEncrypt:
      reg = cbc<Link, true>(out, in, count, keys, reg);
      break;
    case Chain::kCbcMac:
      reg = cbc<Link, false>(nullptr, in, count, keys, reg);
      break;
    case Chain::kCfbEncrypt:
      reg = _mm_xor_si128(reg, first);
      for (; count > 0; --count, in += kBlockLen, out += kBlockLen) {
        reg = Link::run(reg, keys, _mm_xor_si128(first, Xmm::load(in)));
        Xmm::store(out, _mm_xor_si128(reg, first));
      }
      reg = _mm_xor_si128(reg, first);
      break;
    case Chain::kOfb:
      reg = _mm_xor_si128(reg, first);
      for (; count > 0; --count, in += kBlockLen, out += kBlockLen) {
        reg = Link::run(reg, keys, first);
        Xmm::store(out, _mm_xor_si128(_mm_xor_si128(reg, first), Xmm::load(in)));
      }
      reg = _mm_xor_si128(reg, first);
      break;
  }
  Xmm::store(chain, reg);
}

}  // namespace
}  // namespace zel::chain
