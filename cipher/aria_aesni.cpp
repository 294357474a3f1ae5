// ARIA through the processor's AES instructions: sixteen blocks in slices, up to four side by side,
// or one chain. RFC 5794.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_aesni.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_AESNI
#include "cipher/aria_chain.hpp"
#include "cipher/aria_kernels.hpp"

namespace zel {
namespace {

using Blocks = AriaBlocks<Xmm>;

/// From so many blocks on, sixteen are done in slices.
constexpr std::size_t kFewest = 7;

using Kernel = AriaKernel<Xmm, kFewest>;

}  // namespace

ZEL_ISA_AESNI void aria_round_aesni(std::uint8_t *block, const std::uint8_t *key,
                                    AriaRound kind) noexcept {
  __m128i x[] = {_mm_xor_si128(load128(block), load128(key))};
  const auto &gather = kind == AriaRound::kOdd ? aria_boxes::kOddGather : aria_boxes::kEvenGather;
  Blocks::round(x, gather, _mm_setzero_si128());
  store128(block, x[0]);
}

ZEL_ISA_AESNI void aria_crypt_aesni(std::uint8_t *block, const std::uint8_t *keys,
                                    unsigned rounds) noexcept {
  __m128i x[] = {load128(block)};
  Blocks::encipher(x, {keys, rounds});
  store128(block, x[0]);
}

namespace bulk {

constinit const Ops aria128_aesni = aria_ops<Kernel, 12>(aria_serial<Xmm, 12>, nullptr);
constinit const Ops aria192_aesni = aria_ops<Kernel, 14>(aria_serial<Xmm, 14>, nullptr);
constinit const Ops aria256_aesni = aria_ops<Kernel, 16>(aria_serial<Xmm, 16>, nullptr);

}  // namespace bulk
}  // namespace zel
