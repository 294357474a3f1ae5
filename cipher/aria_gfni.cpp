// ARIA through the processor's AES instructions and its affine maps of bytes: 32 blocks in slices,
// up to eight side by side, or one chain. RFC 5794.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_vaes.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_GFNI
#include "cipher/aria_chain.hpp"
#include "cipher/aria_counter_mac.hpp"
#include "cipher/aria_kernels.hpp"

namespace zel {
namespace {

struct YmmAffine : Ymm {
  static constexpr bool kHasAffine = true;
  template <std::uint64_t kMatrix, std::uint8_t kConstant>
  ZEL_ISA_GFNI static Vector affine(Vector x) noexcept {
    return _mm256_gf2p8affine_epi64_epi8(x, _mm256_set1_epi64x(static_cast<long long>(kMatrix)),
                                         kConstant);
  }
};

struct XmmAffine : Xmm {
  static constexpr bool kHasAffine = true;
  template <std::uint64_t kMatrix, std::uint8_t kConstant>
  ZEL_ISA_GFNI static Vector affine(Vector x) noexcept {
    return _mm_gf2p8affine_epi64_epi8(x, _mm_set1_epi64x(static_cast<long long>(kMatrix)),
                                      kConstant);
  }
};

/// From so many blocks on, 32 are done in slices.
constexpr std::size_t kFewest = 11;

using Kernel = AriaKernel<YmmAffine, kFewest>;

}  // namespace

namespace bulk {

constinit const Ops aria128_gfni =
    aria_ops<Kernel, 12>(aria_serial<XmmAffine, 12>, aria_counter_mac<YmmAffine, 12>);
constinit const Ops aria192_gfni =
    aria_ops<Kernel, 14>(aria_serial<XmmAffine, 14>, aria_counter_mac<YmmAffine, 14>);
constinit const Ops aria256_gfni =
    aria_ops<Kernel, 16>(aria_serial<XmmAffine, 16>, aria_counter_mac<YmmAffine, 16>);

}  // namespace bulk
}  // namespace zel
