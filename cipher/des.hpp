// DES as DES and triple DES share it: the schedule, and sixteen rounds over several blocks side by
// side. FIPS 46-3.
//
// A schedule is 16 round keys of 8 bytes, six key bits in each: those for S7, S5, S3, S1, S8, S6,
// S4, S2.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/bytes.hpp"
#include "cipher/des_tables.hpp"
#include "cipher/interleave.hpp"

namespace zel::des_core {

inline constexpr std::size_t kBlockLen = 8;
inline constexpr std::size_t kKeyLen = 8;
inline constexpr std::size_t kRounds = 16;
inline constexpr std::size_t kRoundKeyLen = 8;
inline constexpr std::size_t kScheduleLen = kRounds * kRoundKeyLen;

/// Where in a round key the six bits for S1 to S8 are.
inline constexpr std::size_t kPlace[8] = {3, 7, 2, 6, 1, 5, 0, 4};

void expand(std::uint8_t *schedule, const std::uint8_t *key) noexcept;

/// The halves of N blocks between the initial and the final permutation.
template <std::size_t N>
class Blocks {
 public:
  explicit Blocks(const std::uint8_t *in) noexcept {
    bulk::each<N>([&](auto i) {
      left_[i] = load_be32(in + kBlockLen * i);
      right_[i] = load_be32(in + kBlockLen * i + 4);
      exchange(left_[i], right_[i], 4, 0x0f0f0f0f);
      exchange(left_[i], right_[i], 16, 0x0000ffff);
      exchange(right_[i], left_[i], 2, 0x33333333);
      exchange(right_[i], left_[i], 8, 0x00ff00ff);
      exchange(left_[i], right_[i], 1, 0x55555555);
      left_[i] = std::rotr(left_[i], des_tables::kTurn);
      right_[i] = std::rotr(right_[i], des_tables::kTurn);
    });
  }

  void store(std::uint8_t *out) noexcept {
    bulk::each<N>([&](auto i) {
      std::uint32_t left = std::rotl(left_[i], des_tables::kTurn);
      std::uint32_t right = std::rotl(right_[i], des_tables::kTurn);
      exchange(left, right, 1, 0x55555555);
      exchange(right, left, 8, 0x00ff00ff);
      exchange(right, left, 2, 0x33333333);
      exchange(left, right, 16, 0x0000ffff);
      exchange(left, right, 4, 0x0f0f0f0f);
      store_be32(out + kBlockLen * i, left);
      store_be32(out + kBlockLen * i + 4, right);
    });
  }

  /// Sixteen rounds and the swap behind them.
  void encipher(const std::uint8_t *schedule) noexcept {
    for (std::size_t r = 0; r < kRounds; r += 2)
      two_rounds(schedule + kRoundKeyLen * r, schedule + kRoundKeyLen * (r + 1));
    swap();
  }

  void decipher(const std::uint8_t *schedule) noexcept {
    for (std::size_t r = kRounds; r > 0; r -= 2)
      two_rounds(schedule + kRoundKeyLen * (r - 1), schedule + kRoundKeyLen * (r - 2));
    swap();
  }

 private:
  using Half = std::uint32_t;

  /// Swaps the bits of `high` under mask << shift with those of `low` under mask.
  static void exchange(Half &high, Half &low, int shift, Half mask) noexcept {
    const Half difference = (high >> shift ^ low) & mask;
    low ^= difference;
    high ^= difference << shift;
  }

  /// The cipher function f: expansion, key, S-boxes and P.
  static Half f(Half half, const std::uint8_t *key) noexcept {
    using des_tables::kSp;
    constexpr Half kSixBits = 0x3f3f3f3f;
    const Half odd = (half ^ load_le32(key)) & kSixBits;
    const Half even = (std::rotl(half, 4) ^ load_le32(key + 4)) & kSixBits;
    return kSp[6][odd & 0xff] ^ kSp[4][odd >> 8 & 0xff] ^ kSp[2][odd >> 16 & 0xff] ^
           kSp[0][odd >> 24] ^ kSp[7][even & 0xff] ^ kSp[5][even >> 8 & 0xff] ^
           kSp[3][even >> 16 & 0xff] ^ kSp[1][even >> 24];
  }

  void two_rounds(const std::uint8_t *first, const std::uint8_t *second) noexcept {
    bulk::each<N>([&](auto i) { left_[i] ^= f(right_[i], first); });
    bulk::each<N>([&](auto i) { right_[i] ^= f(left_[i], second); });
  }

  void swap() noexcept {
    bulk::each<N>([&](auto i) { std::swap(left_[i], right_[i]); });
  }

  Half left_[N];
  Half right_[N];
};

}  // namespace zel::des_core

namespace zel {

// Bit slices of 256 blocks; they hand short rests to the scalar routines.
void des_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept;
void des_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept;
void tdes_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *schedule) noexcept;
void tdes_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *schedule) noexcept;

}  // namespace zel
