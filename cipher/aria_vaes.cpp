// ARIA through the processor's AES instructions on 256-bit registers: 32 blocks in slices, up to
// eight side by side, or one chain. RFC 5794.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_vaes.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_VAES
#include "cipher/aria_chain.hpp"
#include "cipher/aria_counter_mac.hpp"
#include "cipher/aria_kernels.hpp"

namespace zel {
namespace {

/// From so many blocks on, 32 are done in slices.
constexpr std::size_t kFewest = 11;

using Kernel = AriaKernel<Ymm, kFewest>;

}  // namespace

namespace bulk {

constinit const Ops aria128_vaes =
    aria_ops<Kernel, 12>(aria_serial<Xmm, 12>, aria_counter_mac<Ymm, 12>);
constinit const Ops aria192_vaes =
    aria_ops<Kernel, 14>(aria_serial<Xmm, 14>, aria_counter_mac<Ymm, 14>);
constinit const Ops aria256_vaes =
    aria_ops<Kernel, 16>(aria_serial<Xmm, 16>, aria_counter_mac<Ymm, 16>);

}  // namespace bulk
}  // namespace zel
