// SHA-256 on independent blocks with the SHA instructions. One block is a chain of instructions
// that each wait for the one before; a second block runs in the gaps. FIPS 180-4, section 6.2.2.
#include <immintrin.h>

#include "base/isa.hpp"
#include "hash/lanes_isa.hpp"
#include "hash/sha2_constants.hpp"

namespace zel::hash {
namespace {

using State = std::array<std::uint32_t, 8>;

inline const __m128i *vectors(const void *from) noexcept {
  return static_cast<const __m128i *>(from);
}

/// States and schedules of kLanes blocks, in the order that the instructions want: A B E F and
/// C D G H.
template <std::size_t kLanes>
struct Lanes {
  __m128i abef[kLanes], cdgh[kLanes];
  __m128i w[kLanes][4];
};

/// The state that all lanes start from.
struct Start {
  __m128i abef, cdgh;
};

ZEL_ISA_SHA inline Start load_state(const State &state) noexcept {
  const __m128i cdab = _mm_shuffle_epi32(_mm_loadu_si128(vectors(state.data())), 0xb1);
  const __m128i efgh = _mm_shuffle_epi32(_mm_loadu_si128(vectors(state.data()) + 1), 0x1b);
  return {_mm_alignr_epi8(cdab, efgh, 8), _mm_blend_epi16(efgh, cdab, 0xf0)};
}

template <std::size_t kLanes>
ZEL_ISA_SHA inline void load(Lanes<kLanes> &lanes, const Start &start,
                             const std::uint8_t *blocks) noexcept {
  const __m128i big_endian = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kLanes; ++i) {
    lanes.abef[i] = start.abef;
    lanes.cdgh[i] = start.cdgh;
#pragma GCC unroll 4
    for (std::size_t word = 0; word < 4; ++word) {
      const __m128i bytes = _mm_loadu_si128(vectors(blocks + 64 * i) + word);
      lanes.w[i][word] = _mm_shuffle_epi8(bytes, big_endian);
    }
  }
}

/// Adds the starting state and stores the sums, most significant byte first.
template <std::size_t kLanes>
ZEL_ISA_SHA inline void store(std::uint8_t *digests, const Start &start,
                              const Lanes<kLanes> &lanes) noexcept {
  // All bytes reversed, the registers hold A B E F and C D G H.
  const __m128i big_endian = _mm_set_epi64x(0x0001020304050607, 0x08090a0b0c0d0e0f);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kLanes; ++i) {
    auto *const to = reinterpret_cast<__m128i *>(digests + 32 * i);
    const __m128i abef = _mm_shuffle_epi8(_mm_add_epi32(lanes.abef[i], start.abef), big_endian);
    const __m128i cdgh = _mm_shuffle_epi8(_mm_add_epi32(lanes.cdgh[i], start.cdgh), big_endian);
    _mm_storeu_si128(to, _mm_unpacklo_epi64(abef, cdgh));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi64(abef, cdgh));
  }
}

template <std::size_t kLanes>
ZEL_ISA_SHA void compress(std::uint8_t *digests, const Start &start,
                          const std::uint8_t *blocks) noexcept {
  Lanes<kLanes> lanes;
  load(lanes, start, blocks);
#pragma GCC unroll 16
  for (std::size_t group = 0; group < 16; ++group) {
    const __m128i constants = _mm_load_si128(vectors(kSha2Rounds<std::uint32_t>.data()) + group);
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kLanes; ++i) {
      __m128i(&w)[4] = lanes.w[i];
      __m128i &now = w[group % 4];
      if (group >= 4) {
        const __m128i &last = w[(group + 3) % 4];
        now = _mm_add_epi32(_mm_sha256msg1_epu32(now, w[(group + 1) % 4]),
                            _mm_alignr_epi8(last, w[(group + 2) % 4], 4));
        now = _mm_sha256msg2_epu32(now, last);
      }
      const __m128i sum = _mm_add_epi32(now, constants);
      lanes.cdgh[i] = _mm_sha256rnds2_epu32(lanes.cdgh[i], lanes.abef[i], sum);
      lanes.abef[i] =
          _mm_sha256rnds2_epu32(lanes.abef[i], lanes.cdgh[i], _mm_shuffle_epi32(sum, 0x0e));
    }
  }
  store(digests, start, lanes);
}

}  // namespace

ZEL_ISA_SHA void sha256_lanes_shani(std::uint8_t *digests, const State &initial,
                                    const std::uint8_t *blocks, std::size_t count) noexcept {
  const Start start = load_state(initial);
  for (; count >= 2; count -= 2, digests += 2 * 32, blocks += 2 * 64)
    compress<2>(digests, start, blocks);
  if (count == 1) compress<1>(digests, start, blocks);
}

}  // namespace zel::hash
