// Masked table reads: sixteen limbs of every row at a time, in four registers.
#include "mint/limbs_avx2.hpp"

#include <immintrin.h>

#include "base/isa.hpp"

namespace zel::limbs {
namespace {

constexpr std::size_t kLanes = 4;

/// One column of the table, kVectors registers wide.
template <std::size_t kVectors>
ZEL_ISA_AVX2 void look_up_column(Limb *r, const Limb *table, std::size_t rows, std::size_t n,
                                 __m256i index) noexcept {
  __m256i sum[kVectors];
  for (auto &lane : sum)
    lane = _mm256_setzero_si256();
  __m256i row = _mm256_setzero_si256();
  for (std::size_t i = 0; i < rows; ++i, table += n) {
    const __m256i mask = _mm256_cmpeq_epi64(row, index);
    row = _mm256_add_epi64(row, _mm256_set1_epi64x(1));
    for (std::size_t v = 0; v < kVectors; ++v) {
      const __m256i entry =
          _mm256_loadu_si256(reinterpret_cast<const __m256i *>(table + v * kLanes));
      sum[v] = _mm256_or_si256(sum[v], _mm256_and_si256(entry, mask));
    }
  }
  for (std::size_t v = 0; v < kVectors; ++v)
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(r + v * kLanes), sum[v]);
}

}  // namespace

ZEL_ISA_AVX2 void look_up_avx2(Limb *r, const Limb *table, std::size_t rows, std::size_t n,
                               std::size_t index) noexcept {
  const __m256i wanted = _mm256_set1_epi64x(static_cast<long long>(index));
  std::size_t i = 0;
  for (; i + 4 * kLanes <= n; i += 4 * kLanes)
    look_up_column<4>(r + i, table + i, rows, n, wanted);
  for (; i < n; i += kLanes)
    look_up_column<1>(r + i, table + i, rows, n, wanted);
}

}  // namespace zel::limbs
