// SHA-512 on four independent blocks at once, one a lane of 64 bits. FIPS 180-4, section 6.4.2.
#include <immintrin.h>

#include "base/isa.hpp"
#include "base/wipe.hpp"
#include "hash/lanes_isa.hpp"
#include "hash/sha2_constants.hpp"

namespace zel::hash {
namespace {

using State = std::array<std::uint64_t, 8>;
using Lanes = __m256i;

constexpr std::size_t kLanes = 4;
constexpr std::size_t kBlock = 128;
constexpr std::size_t kDigest = 64;

template <int kBits>
[[gnu::always_inline]] ZEL_ISA_AVX2 inline Lanes rotr(Lanes x) noexcept {
  return _mm256_xor_si256(_mm256_srli_epi64(x, kBits), _mm256_slli_epi64(x, 64 - kBits));
}

[[gnu::always_inline]] ZEL_ISA_AVX2 inline Lanes xor3(Lanes x, Lanes y, Lanes z) noexcept {
  return _mm256_xor_si256(_mm256_xor_si256(x, y), z);
}

[[gnu::always_inline]] ZEL_ISA_AVX2 inline Lanes big_endian_order() noexcept {
  return _mm256_broadcastsi128_si256(_mm_set_epi64x(0x08090a0b0c0d0e0f, 0x0001020304050607));
}

/// Four words of four lanes, from lane order to word order or back.
[[gnu::always_inline]] ZEL_ISA_AVX2 inline void transpose(Lanes *rows) noexcept {
  const Lanes low01 = _mm256_unpacklo_epi64(rows[0], rows[1]);
  const Lanes high01 = _mm256_unpackhi_epi64(rows[0], rows[1]);
  const Lanes low23 = _mm256_unpacklo_epi64(rows[2], rows[3]);
  const Lanes high23 = _mm256_unpackhi_epi64(rows[2], rows[3]);
  rows[0] = _mm256_permute2x128_si256(low01, low23, 0x20);
  rows[1] = _mm256_permute2x128_si256(high01, high23, 0x20);
  rows[2] = _mm256_permute2x128_si256(low01, low23, 0x31);
  rows[3] = _mm256_permute2x128_si256(high01, high23, 0x31);
}

/// The message words of the next sixteen rounds.
struct Schedule {
  Lanes words[16];
};

/// The words of all blocks; lanes behind the last block repeat it.
[[gnu::always_inline]] ZEL_ISA_AVX2 inline void load_words(Lanes *words, const std::uint8_t *blocks,
                                                           std::size_t count) noexcept {
  const Lanes big_endian = big_endian_order();
#pragma GCC unroll 4
  for (std::size_t four = 0; four < 16; four += 4) {
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kLanes; ++i) {
      const std::uint8_t *const from = blocks + (i < count ? i : count - 1) * kBlock + 8 * four;
      const Lanes bytes = _mm256_loadu_si256(reinterpret_cast<const Lanes *>(from));
      words[four + i] = _mm256_shuffle_epi8(bytes, big_endian);
    }
    transpose(words + four);
  }
}

/// Adds the starting state and stores the sums, most significant byte first.
[[gnu::always_inline]] ZEL_ISA_AVX2 inline void store(std::uint8_t *digests, const State &initial,
                                                      std::size_t count, Lanes *letters) noexcept {
  const Lanes big_endian = big_endian_order();
#pragma GCC unroll 2
  for (std::size_t half = 0; half < 8; half += 4) {
    transpose(letters + half);
    const Lanes start = _mm256_loadu_si256(reinterpret_cast<const Lanes *>(initial.data() + half));
    for (std::size_t i = 0; i < count; ++i) {
      auto *const to = reinterpret_cast<Lanes *>(digests + i * kDigest + 8 * half);
      const Lanes sum = _mm256_add_epi64(letters[half + i], start);
      _mm256_storeu_si256(to, _mm256_shuffle_epi8(sum, big_endian));
    }
  }
}

/// Word t + 16 in place of word t, which stands at `t` modulo 16.
[[gnu::always_inline]] ZEL_ISA_AVX2 inline void extend(Lanes *words, std::size_t t) noexcept {
  const Lanes rotate8 =
      _mm256_broadcastsi128_si256(_mm_set_epi64x(0x080f0e0d0c0b0a09, 0x0007060504030201));
  const Lanes w1 = words[(t + 1) % 16];
  const Lanes w14 = words[(t + 14) % 16];
  const Lanes s0 = xor3(rotr<1>(w1), _mm256_shuffle_epi8(w1, rotate8), _mm256_srli_epi64(w1, 7));
  const Lanes s1 = xor3(rotr<19>(w14), rotr<61>(w14), _mm256_srli_epi64(w14, 6));
  const Lanes sum = _mm256_add_epi64(words[t], words[(t + 9) % 16]);
  words[t] = _mm256_add_epi64(sum, _mm256_add_epi64(s0, s1));
}

/// One round; `t` modulo 8 says which place each letter has.
[[gnu::always_inline]] ZEL_ISA_AVX2 inline void round(Lanes *letters, std::size_t t, Lanes word,
                                                      std::uint64_t constant) noexcept {
  const Lanes a = letters[(0 - t) % 8], b = letters[(1 - t) % 8], c = letters[(2 - t) % 8];
  const Lanes e = letters[(4 - t) % 8], f = letters[(5 - t) % 8], g = letters[(6 - t) % 8];
  Lanes &d = letters[(3 - t) % 8], &h = letters[(7 - t) % 8];
  const Lanes k = _mm256_set1_epi64x(static_cast<long long>(constant));
  const Lanes choice = _mm256_xor_si256(g, _mm256_and_si256(e, _mm256_xor_si256(f, g)));
  const Lanes majority =
      _mm256_xor_si256(b, _mm256_and_si256(_mm256_xor_si256(a, b), _mm256_xor_si256(b, c)));
  const Lanes sum1 = xor3(rotr<14>(e), rotr<18>(e), rotr<41>(e));
  const Lanes sum0 = xor3(rotr<28>(a), rotr<34>(a), rotr<39>(a));
  const Lanes early = _mm256_add_epi64(_mm256_add_epi64(h, word), k);
  const Lanes t1 = _mm256_add_epi64(_mm256_add_epi64(early, choice), sum1);
  d = _mm256_add_epi64(d, t1);
  h = _mm256_add_epi64(t1, _mm256_add_epi64(sum0, majority));
}

}  // namespace

ZEL_ISA_AVX2 void sha512_lanes_avx2(std::uint8_t *digests, const State &initial,
                                    const std::uint8_t *blocks, std::size_t count) noexcept {
  constexpr const auto &kConstants = kSha2Rounds<std::uint64_t>;
  Wiped<Schedule> schedule;
  Lanes *const words = schedule->words;
  Lanes letters[8];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < 8; ++i)
    letters[i] = _mm256_set1_epi64x(static_cast<long long>(initial[i]));
  load_words(words, blocks, count);
#pragma GCC unroll 16
  for (std::size_t t = 0; t < 16; ++t)
    round(letters, t, words[t], kConstants[t]);
  for (std::size_t start = 16; start < kConstants.size(); start += 16) {
#pragma GCC unroll 16
    for (std::size_t t = 0; t < 16; ++t) {
      extend(words, t);
      round(letters, t, words[t], kConstants[start + t]);
    }
  }
  store(digests, initial, count, letters);
  _mm256_zeroupper();
}

}  // namespace zel::hash
