// Random integers from libc's rand(), draw by draw.
#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "mint/record.hpp"
#include "zel_cc/mint_rand.h"

namespace zel::mint {
namespace {

constexpr std::uint32_t kWordBits = 32;

/// Integers that MINT_RandWithinMINT tries before it gives up.
constexpr std::uint32_t kTries = 1U << 20;

std::uint32_t draw() noexcept {
  return static_cast<std::uint32_t>(std::rand());  // NOLINT: the caller's generator is the contract
}

/// rand() yields 31 bits; the halves of a word overlap in the draws.
std::uint32_t draw_word() noexcept {
  const std::uint32_t first = draw();
  const std::uint32_t high = (draw() * 2) ^ first;
  return (high << 16) | ((draw() * 2) ^ (first >> 1));
}

/// The last word, of 1 to 31 bits: its draws come in another order.
std::uint32_t draw_partial_word(std::uint32_t bits) noexcept {
  const std::uint32_t first = draw();
  std::uint32_t word = (draw() * 2) ^ first;
  if (bits > 16) word = (word << 16) | ((draw() * 2) ^ (first >> 1));
  return word & ((1U << bits) - 1);
}

constexpr std::uint32_t words_of(std::uint32_t bits) noexcept {
  return (bits + kWordBits - 1) / kWordBits;
}

}  // namespace
}  // namespace zel::mint

using namespace zel;
using namespace zel::mint;

extern "C" {

void MINT_RandInit(void) {
  const auto now = static_cast<std::uint32_t>(std::time(nullptr));
  const auto used_time = static_cast<std::uint32_t>(std::clock());
  std::srand(now + used_time + draw());
}

void MINT_Rand(MINT *r, uint32_t bits) {
  bits = std::min<std::uint32_t>(bits, ZEL_MINT_BITS);
  const std::uint32_t whole = bits / kWordBits;
  for (std::uint32_t i = 0; i < whole; ++i)
    r->words[i] = draw_word();
  if (bits % kWordBits != 0) r->words[whole] = draw_partial_word(bits % kWordBits);
  r->length = words_of(bits);
}

uint32_t MINT_RandWithinRange(MINT *r, uint32_t minBits, uint32_t maxBits) {
  maxBits = std::min<std::uint32_t>(maxBits, ZEL_MINT_BITS);
  r->length = 0;
  if (minBits > maxBits) return 0;
  const std::uint32_t whole = maxBits / kWordBits;
  std::uint32_t bits = 0;
  do {
    // Deliberate: a value that is too short keeps its lower words, and whole words lose a fourth
    // draw. Programs that seed rand() rely on the sequence.
    for (std::uint32_t i = r->length == 0 ? 0 : r->length - 1; i < whole; ++i) {
      r->words[i] = draw_word();
      draw();
    }
    if (maxBits % kWordBits != 0) r->words[whole] = draw_partial_word(maxBits % kWordBits);
    r->length = words_of(maxBits);
    trim(*r);
    bits = MINT_GetBitLength(r);
  } while (bits < minBits);
  return bits;
}

void MINT_RandWithinMINT(MINT *r, const MINT *lo, const MINT *hi) {
  const MINT low = *lo;
  const MINT high = *hi;
  const std::uint32_t bits = MINT_GetBitLength(&high);
  for (std::uint32_t tries = 0; tries < kTries; ++tries) {
    MINT_Rand(r, bits);
    if (MINT_Compare(r, &high) >= 0) continue;
    // Deliberate: not drawn again, and not compared with `hi` again.
    if (MINT_Compare(r, &low) < 0) MINT_OR(r, r, &low);
    if (MINT_Compare(r, &low) != 0) return;
  }
  r->length = 0;
}

void MINT_RandOnes(MINT *r, uint32_t bits, uint32_t ones) {
  bits = std::min<std::uint32_t>(bits, ZEL_MINT_BITS);
  MINT_Rand(r, bits);
  for (std::uint32_t bit = bits - std::min(ones, bits); bit < bits; ++bit)
    r->words[bit / kWordBits] |= 1U << (bit % kWordBits);
}

}  // extern "C"
