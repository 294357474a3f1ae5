// DES and triple DES in bit slices: 256 blocks in 64 registers, S-boxes as circuits, permutations
// as wiring. Nothing is looked up by data. FIPS 46-3, SP 800-67.
#include <immintrin.h>

#include <cstring>

#include "base/isa.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/des.hpp"
#include "cipher/des_circuits_tables.hpp"

namespace zel {
namespace {

using namespace des_core;
using des_circuits::Operation;
using Vector = __m256i;

#define ZEL_KERNEL ZEL_ISA_AVX2 inline __attribute__((always_inline))

constexpr std::size_t kSlices = 64;
constexpr std::size_t kUnit = 256;  // blocks
constexpr std::size_t kUnitLen = kUnit * kBlockLen;
constexpr std::size_t kVectorLen = sizeof(Vector);
static_assert(kUnitLen == kSlices * kVectorLen);

/// From this many blocks on, a unit with empty lanes beats single blocks.
constexpr std::size_t kWorthAUnit = 72;

/// Key bits as bytes of all ones or zero, in the order in which the S-boxes take them.
constexpr std::size_t kMasksPerRound = 48;
struct Masks {
  std::uint8_t bytes[kRounds * kMasksPerRound + 2];  // stores run two bytes over
};

void spread(Masks &masks, const std::uint8_t *schedule) noexcept {
  for (std::size_t r = 0; r < kRounds; ++r) {
    for (std::size_t box = 0; box < 8; ++box) {
      constexpr std::uint64_t kEach = 0x010101010101;
      constexpr std::uint64_t kOneBit = 0x010204081020;  // the first bit into the lowest byte
      const std::uint64_t six = schedule[kRoundKeyLen * r + kPlace[box]];
      const std::uint64_t bits = six * kEach & kOneBit;
      const std::uint64_t ones = (bits + 0x7f * kEach) >> 7 & kEach;
      store_le64(masks.bytes + kMasksPerRound * r + 6 * box, ones * 0xff);
    }
  }
}

ZEL_KERNEL Vector load(const void *from) noexcept {
  return _mm256_loadu_si256(static_cast<const Vector *>(from));
}
ZEL_KERNEL void store(void *to, Vector x) noexcept {
  _mm256_storeu_si256(static_cast<Vector *>(to), x);
}

/// Swaps the high bits of `a` (those under mask << shift) with the low bits of `b`.
template <int kShift>
ZEL_KERNEL void exchange(Vector &a, Vector &b, std::uint64_t mask) noexcept {
  const Vector low = _mm256_set1_epi64x(static_cast<long long>(mask));
  const Vector t = _mm256_and_si256(_mm256_xor_si256(_mm256_srli_epi64(a, kShift), b), low);
  b = _mm256_xor_si256(b, t);
  a = _mm256_xor_si256(a, _mm256_slli_epi64(t, kShift));
}

/// Three of the six steps of the transposition, over every kStride-th of eight vectors.
template <int kStride>
ZEL_KERNEL void transpose_octet(Vector *to, const Vector *from) noexcept {
  constexpr bool kCoarse = kStride == 8;
  Vector x[8];
#pragma GCC unroll 8
  for (std::size_t i = 0; i < 8; ++i)
    x[i] = load(from + kStride * i);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < 4; ++i)
    exchange<4 * kStride>(x[i], x[i + 4], kCoarse ? 0x00000000ffffffff : 0x0f0f0f0f0f0f0f0f);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t low = i + (i & 2);  // 0, 1, 4, 5
    exchange<2 * kStride>(x[low], x[low + 2], kCoarse ? 0x0000ffff0000ffff : 0x3333333333333333);
  }
#pragma GCC unroll 4
  for (std::size_t i = 0; i < 8; i += 2)
    exchange<kStride>(x[i], x[i + 1], kCoarse ? 0x00ff00ff00ff00ff : 0x5555555555555555);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < 8; ++i)
    store(to + kStride * i, x[i]);
}

/// Bit p of every 64-bit lane of vector i to bit i of the same lane of vector p.
ZEL_ISA_AVX2 void transpose(Vector *to, const Vector *from) noexcept {
  for (std::size_t i = 0; i < 8; ++i)
    transpose_octet<8>(to + i, from + i);
  for (std::size_t i = 0; i < kSlices; i += 8)
    transpose_octet<1>(to + i, to + i);
}

/// Where bit `n` of the standard (from 1) stands in a block that was loaded as a little-endian
/// word.
constexpr std::size_t place(std::size_t n) noexcept { return (n - 1) / 8 * 8 + 7 - (n - 1) % 8; }

/// The input bit behind bit `i` (from 0) of the initial permutation.
constexpr std::size_t initial(std::size_t i) noexcept {
  constexpr std::size_t kFirstOfRow[8] = {58, 60, 62, 64, 57, 59, 61, 63};
  return kFirstOfRow[i / 8] - 8 * (i % 8);
}

/// The bit of a half (from 0) that takes bit `i` (from 0) of what the S-boxes give.
constexpr std::size_t after_p(std::size_t i) noexcept {
  std::size_t to = 0;
  while (des_tables::kP[to] != i + 1)
    ++to;
  return to;
}

template <const auto &kCircuit, std::size_t kGate>
ZEL_KERNEL void evaluate(Vector *wires) noexcept {
  if constexpr (kGate < kCircuit.gates.size()) {
    constexpr des_circuits::Gate gate = kCircuit.gates[kGate];
    const Vector a = wires[gate.a];
    const Vector b = wires[gate.b];
    Vector &result = wires[6 + kGate];
    if constexpr (gate.operation == Operation::kXor) result = _mm256_xor_si256(a, b);
    if constexpr (gate.operation == Operation::kAnd) result = _mm256_and_si256(a, b);
    if constexpr (gate.operation == Operation::kOr) result = _mm256_or_si256(a, b);
    if constexpr (gate.operation == Operation::kAndNot) result = _mm256_andnot_si256(b, a);
    if constexpr (gate.operation == Operation::kNot)
      result = _mm256_xor_si256(a, _mm256_set1_epi64x(-1));
    evaluate<kCircuit, kGate + 1>(wires);
  }
}

/// One S-box with the expansion, the key and the permutation around it: left ^= P(S(E(right) ^ k)).
template <const auto &kCircuit, std::size_t kBox>
ZEL_KERNEL void substitute(Vector *left, const Vector *right, const std::uint8_t *masks) noexcept {
  Vector wires[6 + kCircuit.gates.size()];
#pragma GCC unroll 6
  for (std::size_t i = 0; i < 6; ++i) {
    const Vector key = _mm256_set1_epi8(static_cast<char>(masks[6 * kBox + i]));
    wires[i] = _mm256_xor_si256(right[(4 * kBox + i + 31) % 32], key);
  }
  evaluate<kCircuit, 0>(wires);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < 4; ++i) {
    Vector &to = left[after_p(4 * kBox + i)];
    to = _mm256_xor_si256(to, wires[kCircuit.outputs[i]]);
  }
}

ZEL_ISA_AVX2 __attribute__((noinline)) void round(Vector *__restrict left,
                                                  const Vector *__restrict right,
                                                  const std::uint8_t *masks) noexcept {
  substitute<des_circuits::kS1, 0>(left, right, masks);
  substitute<des_circuits::kS2, 1>(left, right, masks);
  substitute<des_circuits::kS3, 2>(left, right, masks);
  substitute<des_circuits::kS4, 3>(left, right, masks);
  substitute<des_circuits::kS5, 4>(left, right, masks);
  substitute<des_circuits::kS6, 5>(left, right, masks);
  substitute<des_circuits::kS7, 6>(left, right, masks);
  substitute<des_circuits::kS8, 7>(left, right, masks);
}

/// One pass: DES under one key, forwards or backwards.
struct Pass {
  Masks masks;
  bool forwards;
};

struct Work {
  Vector slices[kSlices];
  Vector halves[kSlices];
};

/// One unit of 256 blocks. Between two passes the permutations cancel out, and the halves change
/// places.
ZEL_ISA_AVX2 void unit(std::uint8_t *out, const std::uint8_t *in, const Pass *passes,
                       std::size_t count, Work &work) noexcept {
  transpose(work.slices, reinterpret_cast<const Vector *>(in));
  for (std::size_t i = 0; i < kSlices; ++i)
    work.halves[i] = work.slices[place(initial(i))];
  Vector *left = work.halves;
  Vector *right = work.halves + 32;
  for (const Pass *pass = passes; pass != passes + count; ++pass) {
    for (std::size_t r = 0; r < kRounds; ++r) {
      const std::size_t key = pass->forwards ? r : kRounds - 1 - r;
      round(left, right, pass->masks.bytes + kMasksPerRound * key);
      std::swap(left, right);
    }
    std::swap(left, right);
  }
  for (std::size_t i = 0; i < kSlices; ++i)
    work.slices[place(initial(i))] = i < 32 ? left[i] : right[i - 32];
  transpose(reinterpret_cast<Vector *>(out), work.slices);
}

/// Which schedules are passed through, in which order and direction.
enum class Form : std::uint8_t { kEncrypt, kDecrypt, kTripleEncrypt, kTripleDecrypt };

constexpr bool is_triple(Form form) noexcept { return form >= Form::kTripleEncrypt; }
constexpr bool encrypts(Form form) noexcept {
  return form == Form::kEncrypt || form == Form::kTripleEncrypt;
}

/// The scalar routine for what does not make a unit.
template <Form kForm>
bulk::BlocksFn scalar() noexcept {
  const bulk::Ops &ops = is_triple(kForm) ? bulk::tdes_interleaved : bulk::des_interleaved;
  return encrypts(kForm) ? ops.encrypt : ops.decrypt;
}

template <Form kForm>
void blocks(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
            const void *schedule) noexcept {
  if (count < kWorthAUnit) return scalar<kForm>()(out, in, count, schedule);
  constexpr std::size_t kPasses = is_triple(kForm) ? 3 : 1;
  Wiped<Pass[kPasses]> passes;
  Wiped<Work> work;
  for (std::size_t i = 0; i < kPasses; ++i) {
    const std::size_t key = encrypts(kForm) ? i : kPasses - 1 - i;
    spread((*passes)[i].masks, static_cast<const std::uint8_t *>(schedule) + kScheduleLen * key);
    (*passes)[i].forwards = encrypts(kForm) == (i % 2 == 0);
  }
  for (; count >= kUnit; count -= kUnit, in += kUnitLen, out += kUnitLen)
    unit(out, in, *passes, kPasses, *work);
  if (count < kWorthAUnit) return scalar<kForm>()(out, in, count, schedule);
  Wiped<std::uint8_t[kUnitLen]> rest;
  std::memset(*rest, 0, kUnitLen);
  std::memcpy(*rest, in, count * kBlockLen);
  unit(*rest, *rest, *passes, kPasses, *work);
  std::memcpy(out, *rest, count * kBlockLen);
}

#undef ZEL_KERNEL

}  // namespace

void des_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
  blocks<Form::kEncrypt>(out, in, count, schedule);
}

void des_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *schedule) noexcept {
  blocks<Form::kDecrypt>(out, in, count, schedule);
}

void tdes_encrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *schedule) noexcept {
  blocks<Form::kTripleEncrypt>(out, in, count, schedule);
}

void tdes_decrypt_avx2(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                       const void *schedule) noexcept {
  blocks<Form::kTripleDecrypt>(out, in, count, schedule);
}

}  // namespace zel
