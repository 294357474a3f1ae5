// GHASH with carry-less multiplication on 128-bit registers. NIST SP 800-38D, section 6.4.
#include <immintrin.h>

#include "base/isa.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_AESNI
#include "cipher/ghash_kernels.hpp"

namespace zel::ghash {

constinit const Engine pclmul{Kernel<Xmm>::fill, Kernel<Xmm>::absorb};

}  // namespace zel::ghash
