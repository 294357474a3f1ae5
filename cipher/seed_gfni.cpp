// SEED through the processor's Galois field instructions: an S-box is two of them, one that maps
// into the field of AES and one that inverts and maps back. 64 blocks down to eight in slices, or
// one chain. RFC 4269.
#include <bit>

#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_vaes.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_GFNI
#include "cipher/seed_chain.hpp"
#include "cipher/seed_kernels.hpp"

namespace zel {
namespace {

/// An affine map of bytes in the form of the instructions: the rows of its matrix, that of bit 7
/// first, and the constant, which is part of the instruction.
struct Affine {
  alignas(16) seed_boxes::Bytes16 rows;  ///< twice
  std::uint8_t constant;
};

consteval Affine affine_of(const gf256::Box &map) {
  Affine result{{}, map[0]};
  for (unsigned column = 0; column < 8; ++column)
    for (unsigned row = 0; row < 8; ++row) {
      const unsigned bit = (map[1U << column] ^ map[0]) >> row & 1;
      for (const unsigned half : {0U, 8U})
        result.rows[half + 7 - row] |= static_cast<std::uint8_t>(bit << column);
    }
  return result;
}

consteval bool is_affine(const Affine &map, const gf256::Box &box) {
  for (unsigned x = 0; x < 256; ++x)
    for (unsigned row = 0; row < 8; ++row) {
      const unsigned bit = (static_cast<unsigned>(std::popcount(map.rows[7 - row] & x)) & 1) ^
                           (map.constant >> row & 1U);
      if (bit != (box[x] >> row & 1U)) return false;
    }
  return true;
}

constexpr gf256::Box kInverse = gf256::power_box(254, {1, 2, 4, 8, 16, 32, 64, 128}, 0);
constexpr gf256::Box kBox1 = seed_boxes::after(kInverse, kSeedS1);
constexpr gf256::Box kBox2 = seed_boxes::after(kInverse, kSeedS2);
constexpr Affine kBefore = affine_of(seed_boxes::into_aes_field());
constexpr Affine kFirst = affine_of(kBox1);
constexpr Affine kSecond = affine_of(kBox2);
static_assert(is_affine(kBefore, seed_boxes::into_aes_field()));
static_assert(is_affine(kFirst, kBox1) && is_affine(kSecond, kBox2));

template <int kConstant>
ZEL_KERNEL __m128i mapped(__m128i x, __m128i rows) noexcept {
  return _mm_gf2p8affine_epi64_epi8(x, rows, kConstant);
}
template <int kConstant>
ZEL_KERNEL __m256i mapped(__m256i x, __m256i rows) noexcept {
  return _mm256_gf2p8affine_epi64_epi8(x, rows, kConstant);
}
template <int kConstant>
ZEL_KERNEL __m128i inverse_mapped(__m128i x, __m128i rows) noexcept {
  return _mm_gf2p8affineinv_epi64_epi8(x, rows, kConstant);
}
template <int kConstant>
ZEL_KERNEL __m256i inverse_mapped(__m256i x, __m256i rows) noexcept {
  return _mm256_gf2p8affineinv_epi64_epi8(x, rows, kConstant);
}

/// The inversion is in the second instruction: only the map before it is common.
template <class Lanes>
struct Boxes {
  static constexpr bool kRotated = false;
  using Vector = typename Lanes::Vector;
  ZEL_KERNEL static Vector common(Vector x) noexcept {
    return mapped<kBefore.constant>(x, Lanes::key(kBefore.rows.data()));
  }
  ZEL_KERNEL static Vector first(Vector x) noexcept {
    return inverse_mapped<kFirst.constant>(x, Lanes::key(kFirst.rows.data()));
  }
  ZEL_KERNEL static Vector second(Vector x) noexcept {
    return inverse_mapped<kSecond.constant>(x, Lanes::key(kSecond.rows.data()));
  }
};

using Single = SeedChain<Boxes<Xmm>>;

}  // namespace

ZEL_ISA_GFNI void seed_encrypt_gfni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  Single::block(block, SeedKeys::forth(keys));
}

ZEL_ISA_GFNI void seed_decrypt_gfni(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  Single::block(block, SeedKeys::back(keys));
}

namespace bulk {

constinit const Ops seed_gfni = SeedKernel<Ymm, Boxes<Ymm>>::ops<Single>();

}  // namespace bulk
}  // namespace zel
