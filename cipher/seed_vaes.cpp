// SEED through the processor's AES instructions on 256-bit registers: 64 blocks down to eight in
// slices, or one chain. RFC 4269.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_vaes.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_VAES
#include "cipher/seed_chain.hpp"
#include "cipher/seed_kernels.hpp"

namespace zel::bulk {

constinit const Ops seed_vaes =
    SeedKernel<Ymm, SeedAesBoxes<Ymm>>::ops<SeedChain<SeedAesBoxes<Xmm>>>();

}  // namespace zel::bulk
