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

template <unsigned kRounds>
constexpr bulk::Ops ops() noexcept {
  using Paths = AriaPaths<AriaKernel<Ymm, kFewest>, kRounds>;
  return {.encrypt = Paths::encrypt,
          .decrypt = Paths::decrypt,
          .ctr = Paths::ctr,
          .cbc_decrypt = Paths::cbc_decrypt,
          .serial = aria_serial<Xmm, kRounds>,
          .counter_mac = aria_counter_mac<Ymm, kRounds>};
}

}  // namespace

namespace bulk {

constinit const Ops aria128_vaes = ops<12>();
constinit const Ops aria192_vaes = ops<14>();
constinit const Ops aria256_vaes = ops<16>();

}  // namespace bulk
}  // namespace zel
