// GHASH with carry-less multiplication on 256-bit registers. NIST SP 800-38D, section 6.4.
#include <immintrin.h>

#include "base/isa.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_VAES
#include "cipher/ghash_kernels.hpp"

namespace zel::ghash {
namespace {

struct Ymm {
  using Vector = __m256i;
  static constexpr std::size_t kBlocks = 2;

  ZEL_ISA_VAES static Vector load(const std::uint8_t *from) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
  }
  ZEL_ISA_VAES static void store(std::uint8_t *to, Vector x) noexcept {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), x);
  }
  ZEL_ISA_VAES static Vector bit_xor(Vector a, Vector b) noexcept { return _mm256_xor_si256(a, b); }
  template <int kWhich>
  ZEL_ISA_VAES static Vector multiply(Vector a, Vector b) noexcept {
    return _mm256_clmulepi64_epi128(a, b, kWhich);
  }
  ZEL_ISA_VAES static Vector swap(Vector x) noexcept { return _mm256_shuffle_epi32(x, 0x4e); }
  ZEL_ISA_VAES static Vector up(Vector x) noexcept { return _mm256_slli_si256(x, 8); }
  ZEL_ISA_VAES static Vector down(Vector x) noexcept { return _mm256_srli_si256(x, 8); }
  ZEL_ISA_VAES static Vector reverse(Vector x) noexcept {
    return _mm256_shuffle_epi8(
        x, repeat(_mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)));
  }
  ZEL_ISA_VAES static Vector repeat(__m128i block) noexcept {
    return _mm256_broadcastsi128_si256(block);
  }
  ZEL_ISA_VAES static Vector widen(__m128i block) noexcept {
    return _mm256_inserti128_si256(_mm256_setzero_si256(), block, 0);
  }
  ZEL_ISA_VAES static __m128i fold(Vector x) noexcept {
    return _mm_xor_si128(_mm256_castsi256_si128(x), _mm256_extracti128_si256(x, 1));
  }
};

}  // namespace

constinit const Engine vaes{Kernel<Ymm>::fill, Kernel<Ymm>::absorb};

}  // namespace zel::ghash
