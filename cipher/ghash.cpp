// GHASH: the choice of an engine, and the one for processors without carry-less multiplication,
// which multiplies integers with holes. NIST SP 800-38D, section 6.4.
#include "cipher/ghash.hpp"

#include <cstring>

#include "base/bytes.hpp"
#include "base/cpu.hpp"
#include "base/ct.hpp"

namespace zel::ghash {
namespace {

/// A number of 128 bits.
struct Wide {
  std::uint64_t low, high;
};

Wide load_number(const std::uint8_t *block) noexcept {
  return {load_be64(block + 8), load_be64(block)};
}

std::uint64_t reverse_bits(std::uint64_t x) noexcept {
  constexpr std::uint64_t kOnes = 0x5555555555555555, kPairs = 0x3333333333333333,
                          kNibbles = 0x0f0f0f0f0f0f0f0f;
  x = ((x >> 1) & kOnes) | ((x & kOnes) << 1);
  x = ((x >> 2) & kPairs) | ((x & kPairs) << 2);
  x = ((x >> 4) & kNibbles) | ((x & kNibbles) << 4);
  return byte_swap(x);
}

/// The low 64 bits of the carry-less product. Each factor is split into four numbers that have
/// every fourth bit alone; in their integer products at most 16 bits meet in one place, whose
/// carries stay between the places or fall out at the top.
std::uint64_t multiply_low(std::uint64_t a, std::uint64_t b) noexcept {
  constexpr std::uint64_t kFourth = 0x1111111111111111;
  std::uint64_t product = 0;
#pragma GCC unroll 4
  for (unsigned place = 0; place < 4; ++place) {
    std::uint64_t sum = 0;
#pragma GCC unroll 4
    for (unsigned i = 0; i < 4; ++i)
      sum ^= (a & (kFourth << i)) * (b & (kFourth << ((place - i) % 4)));
    product |= sum & (kFourth << place);
  }
  return product;
}

/// The whole product; the upper half is the lower one of the mirror images.
Wide multiply(std::uint64_t a, std::uint64_t b) noexcept {
  return {multiply_low(a, b), reverse_bits(multiply_low(reverse_bits(a), reverse_bits(b))) >> 1};
}

/// a * b * x modulo the polynomial of the field, by Karatsuba's method.
Wide multiply(Wide a, Wide b) noexcept {
  const Wide low = multiply(a.low, b.low);
  const Wide high = multiply(a.high, b.high);
  const Wide cross = multiply(a.low ^ a.high, b.low ^ b.high);
  std::uint64_t word[4] = {low.low, low.high ^ cross.low ^ low.low ^ high.low,
                           high.low ^ cross.high ^ low.high ^ high.high, high.high};
  // x^128 = x^7 + x^2 + x + 1: the lower words go up by 128 bits and by 127, 126 and 121.
  for (unsigned i = 0; i < 2; ++i) {
    const std::uint64_t w = word[i];
    word[i + 1] ^= (w << 63) ^ (w << 62) ^ (w << 57);
    word[i + 2] ^= w ^ (w >> 1) ^ (w >> 2) ^ (w >> 7);
  }
  return {word[2], word[3]};
}

void fill(Powers &powers, const std::uint8_t *h, std::size_t) noexcept {
  const Wide key = load_number(h);
  const std::uint64_t carry = ct::mask_of_bit(key.high >> 63);
  std::uint8_t *const first = powers.value[kMaxPowers - 1];
  store_le64(first, (key.low << 1) ^ (carry & 1));
  store_le64(first + 8, ((key.high << 1) | (key.low >> 63)) ^ (carry & 0xc200000000000000));
  powers.count = 1;
}

void absorb(const Powers &powers, std::uint8_t *y, const std::uint8_t *in,
            std::size_t count) noexcept {
  const std::uint8_t *const first = powers.value[kMaxPowers - 1];
  const Wide h{load_le64(first), load_le64(first + 8)};
  Wide sum = load_number(y);
  for (; count > 0; --count, in += kBlockLen) {
    const Wide block = load_number(in);
    sum = multiply({sum.low ^ block.low, sum.high ^ block.high}, h);
  }
  store_be64(y, sum.high);
  store_be64(y + 8, sum.low);
}

}  // namespace

constinit const Engine portable{fill, absorb};

const Engine &engine() noexcept {
  if (cpu::has(cpu::Feature::kAesni, cpu::Feature::kVaes)) return vaes;
  return cpu::has(cpu::Feature::kAesni) ? pclmul : portable;
}

void Hash::absorb_padded(const std::uint8_t *in, std::size_t len) noexcept {
  const std::size_t count = len / kBlockLen;
  const std::size_t rest = len % kBlockLen;
  if (count > 0) engine_.absorb(*powers_, y_->bytes, in, count);
  if (rest == 0) return;
  Wiped<Block> last(Block{});
  std::memcpy(last->bytes, in + count * kBlockLen, rest);
  engine_.absorb(*powers_, y_->bytes, last->bytes, 1);
}

void Hash::absorb_lengths(std::uint64_t first_bytes, std::uint64_t second_bytes) noexcept {
  constexpr unsigned kBitsPerByte = 8;
  std::uint8_t lengths[kBlockLen];
  store_be64(lengths, first_bytes * kBitsPerByte);
  store_be64(lengths + 8, second_bytes * kBitsPerByte);
  engine_.absorb(*powers_, y_->bytes, lengths, 1);
}

}  // namespace zel::ghash
