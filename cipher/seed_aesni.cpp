// SEED through the processor's AES instructions, in constant time: both S-boxes are the inversion
// of AES between affine maps. 32 blocks down to four in slices, or one chain. RFC 4269.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_aesni.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_AESNI
#include "cipher/seed_chain.hpp"
#include "cipher/seed_kernels.hpp"

namespace zel {
namespace {

using Boxes = SeedAesBoxes<Xmm>;
using Single = SeedChain<Boxes>;

}  // namespace

ZEL_ISA_AESNI std::uint32_t seed_g_aesni(std::uint32_t word) noexcept {
  return static_cast<std::uint32_t>(_mm_cvtsi128_si32(Single::Slices::g(Xmm::every_word(word))));
}

ZEL_ISA_AESNI void seed_encrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  Single::block(block, SeedKeys::forth(keys));
}

ZEL_ISA_AESNI void seed_decrypt_aesni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  Single::block(block, SeedKeys::back(keys));
}

namespace bulk {

constinit const Ops seed_aesni = SeedKernel<Xmm, Boxes>::ops<Single>();

}  // namespace bulk
}  // namespace zel
