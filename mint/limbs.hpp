// Arithmetic on runs of 64-bit limbs, least significant first: the layer under the 32-bit record.
//
// Nothing here allocates, knows the record or looks at more than its arguments. Unless a line says
// otherwise the result may be an operand (the same place, not a shifted one), the time depends on
// the lengths alone, and a length of 0 is allowed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zel::limbs {

using Limb = std::uint64_t;
__extension__ typedef unsigned __int128 DoubleLimb;

inline constexpr std::size_t kLimbBits = 64;
/// Limbs of a full record: 130 words, 4160 bits.
inline constexpr std::size_t kMaxLimbs = 65;

inline void copy(Limb *r, const Limb *a, std::size_t n) noexcept {
  if (n != 0) std::memmove(r, a, n * sizeof(Limb));
}
inline void zero(Limb *r, std::size_t n) noexcept {
  if (n != 0) std::memset(r, 0, n * sizeof(Limb));
}

/// Limbs that hold `words` words of 32 bits.
constexpr std::size_t limbs_of_words(std::size_t words) noexcept { return (words + 1) / 2; }

/// r[n] = words[count], with zeros above. Needs count <= 2n.
void from_words(Limb *r, std::size_t n, const std::uint32_t *words, std::size_t count) noexcept;
/// words[count] = the low words of a[n], with zeros above.
void to_words(std::uint32_t *words, std::size_t count, const Limb *a, std::size_t n) noexcept;

/// Limbs of a[n] without the zero limbs at the top. The time shows the answer.
std::size_t significant(const Limb *a, std::size_t n) noexcept;
/// Bits of a[n] without the zeros at the top. The time shows the answer.
std::size_t bit_length(const Limb *a, std::size_t n) noexcept;
/// The sign of a - b: 1, 0 or -1. The time shows where they differ.
int compare(const Limb *a, const Limb *b, std::size_t n) noexcept;
/// All ones when a[n] is zero, else zero.
Limb mask_if_zero(const Limb *a, std::size_t n) noexcept;
/// All ones when a[n] < b[n], else zero.
Limb mask_if_less(const Limb *a, const Limb *b, std::size_t n) noexcept;

/// r = a + b; the carry.
Limb add_n(Limb *r, const Limb *a, const Limb *b, std::size_t n) noexcept;
/// r = a - b; the borrow.
Limb sub_n(Limb *r, const Limb *a, const Limb *b, std::size_t n) noexcept;
/// r = a + b for one limb b; the carry.
Limb add_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept;
/// r = a - b for one limb b; the borrow.
Limb sub_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept;
/// r = a + b for na >= nb; the carry.
Limb add(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept;
/// r = a - b for na >= nb; the borrow.
Limb sub(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept;

/// r = a * b for one limb b; the limb that leaves the top.
Limb mul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept;
/// r += a * b for one limb b; the limb that leaves the top.
Limb addmul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept;
/// r -= a * b for one limb b; the limb that is still to be taken.
Limb submul_1(Limb *r, const Limb *a, std::size_t n, Limb b) noexcept;

/// r[na + nb] = a[na] * b[nb]. The result must not overlap an operand; na or nb may be 0.
void mul(Limb *r, const Limb *a, std::size_t na, const Limb *b, std::size_t nb) noexcept;
/// r[2n] = a[n] squared. The result must not overlap the operand.
void sqr(Limb *r, const Limb *a, std::size_t n) noexcept;

/// r = a << bits for 0 <= bits < 64; the bits that leave the top. Runs from the top, so `r` may
/// also start above `a` inside the same run.
Limb lshift(Limb *r, const Limb *a, std::size_t n, unsigned bits) noexcept;
/// r = a >> bits for 0 <= bits < 64; the bits that leave the bottom, at the top of the limb. Runs
/// from the bottom, so `r` may also start below `a` inside the same run.
Limb rshift(Limb *r, const Limb *a, std::size_t n, unsigned bits) noexcept;

/// r = `yes` where the mask is all ones, `no` where it is zero.
void select(Limb *r, Limb mask, const Limb *yes, const Limb *no, std::size_t n) noexcept;
/// Exchanges a and b where the mask is all ones.
void swap_if(Limb mask, Limb *a, Limb *b, std::size_t n) noexcept;
/// r += b & mask; the carry.
Limb add_if(Limb *r, Limb mask, const Limb *b, std::size_t n) noexcept;
/// r -= b & mask; the borrow.
Limb sub_if(Limb *r, Limb mask, const Limb *b, std::size_t n) noexcept;

/// -1/odd modulo 2^64.
constexpr Limb negated_inverse(Limb odd) noexcept {
  Limb x = (odd * 3) ^ 2;  // 5 bits right, each step doubles them
  for (int step = 0; step < 4; ++step)
    x *= 2 - odd * x;
  return Limb{0} - x;
}

}  // namespace zel::limbs
