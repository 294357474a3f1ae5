// Masked table reads: sixteen limbs of every row at a time, in four registers.
#include "mint/limbs_avx2.hpp"

#include <immintrin.h>

#include "base/isa.hpp"

namespace zel::limbs {
namespace {

constexpr std::size_t kLanes = 4;

ZEL_ISA_AVX2 inline __m256i load(const Limb *from) noexcept {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
}
ZEL_ISA_AVX2 inline void store(Limb *to, __m256i lanes) noexcept {
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), lanes);
}
ZEL_ISA_AVX2 inline __m256i add_masked(__m256i sum, const Limb *from, __m256i mask) noexcept {
  return _mm256_or_si256(sum, _mm256_and_si256(load(from), mask));
}

}  // namespace

ZEL_ISA_AVX2 void look_up_avx2(Limb *r, const Limb *table, std::size_t rows, std::size_t n,
                               std::size_t index) noexcept {
  const __m256i wanted = _mm256_set1_epi64x(static_cast<long long>(index));
  const __m256i one = _mm256_set1_epi64x(1);
  std::size_t i = 0;
  for (; i + 4 * kLanes <= n; i += 4 * kLanes) {
    __m256i sum0 = _mm256_setzero_si256(), sum1 = sum0, sum2 = sum0, sum3 = sum0, row = sum0;
    const Limb *from = table + i;
    for (std::size_t left = rows; left != 0; --left, from += n) {
      const __m256i mask = _mm256_cmpeq_epi64(row, wanted);
      row = _mm256_add_epi64(row, one);
      sum0 = add_masked(sum0, from, mask);
      sum1 = add_masked(sum1, from + kLanes, mask);
      sum2 = add_masked(sum2, from + 2 * kLanes, mask);
      sum3 = add_masked(sum3, from + 3 * kLanes, mask);
    }
    store(r + i, sum0);
    store(r + i + kLanes, sum1);
    store(r + i + 2 * kLanes, sum2);
    store(r + i + 3 * kLanes, sum3);
  }
  for (; i < n; i += kLanes) {
    __m256i sum = _mm256_setzero_si256(), row = sum;
    const Limb *from = table + i;
    for (std::size_t left = rows; left != 0; --left, from += n) {
      sum = add_masked(sum, from, _mm256_cmpeq_epi64(row, wanted));
      row = _mm256_add_epi64(row, one);
    }
    store(r + i, sum);
  }
}

}  // namespace zel::limbs
