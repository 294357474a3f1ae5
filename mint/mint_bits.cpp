// Size, order, shifts and bitwise operations of big integers.
#include <bit>
#include <cstdlib>
#include <ctime>

#include "base/bytes.hpp"
#include "mint/record.hpp"

namespace zel {
namespace {

constexpr std::uint32_t kWordBits = 32;

/// Bits `shift` and up of the pair high:low.
std::uint32_t funnel(std::uint32_t high, std::uint32_t low, std::uint32_t shift) noexcept {
  return static_cast<std::uint32_t>(((std::uint64_t{high} << kWordBits) | low) >> shift);
}

/// Combines word by word; the shorter operand counts as zero above its length.
template <class Combine>
void combine_words(MINT &r, const MINT &a, const MINT &b, Combine combine) noexcept {
  const bool a_longer = mint::used(a) >= mint::used(b);
  const MINT &longer = a_longer ? a : b;
  const std::uint32_t len = mint::used(longer);
  const std::uint32_t common = mint::used(a_longer ? b : a);
  for (std::uint32_t i = 0; i < common; ++i)
    r.words[i] = combine(a.words[i], b.words[i]);
  for (std::uint32_t i = common; i < len; ++i)
    r.words[i] = combine(longer.words[i], 0U);
  r.length = len;
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

uint32_t MINT_GetBitLength(const MINT *a) {
  const std::uint32_t len = mint::significant(*a);
  if (len == 0) return 0;
  return kWordBits * len - static_cast<std::uint32_t>(std::countl_zero(a->words[len - 1]));
}

int32_t MINT_Compare(const MINT *a, const MINT *b) {
  if (any_null(a, b)) return ZEL_ERR_GENERIC;
  const std::uint32_t a_len = mint::significant(*a);
  const std::uint32_t b_len = mint::significant(*b);
  if (a_len != b_len) return a_len > b_len ? 1 : -1;
  for (std::uint32_t i = a_len; i > 0; --i) {
    if (a->words[i - 1] != b->words[i - 1]) return a->words[i - 1] > b->words[i - 1] ? 1 : -1;
  }
  return 0;
}

void MINT_ClearSecurely(MINT *a) {
  // Deliberate: callers may count on the reseeding and on the draws; the values protect nothing.
  std::srand(static_cast<unsigned>(std::time(nullptr)));  // NOLINT(cert-msc32-c,cert-msc51-cpp)
  for (std::uint32_t &word : a->words)
    word = static_cast<std::uint32_t>(std::rand());  // NOLINT(cert-msc30-c,cert-msc50-cpp)
  __asm__ volatile("" : : "r"(a) : "memory");
  wipe(a, sizeof *a);
}

void MINT_LeftShift(MINT *a, uint32_t n) { MINT_LeftShift2(a, a, n); }

void MINT_RightShift(MINT *a, uint32_t n) { MINT_RightShift2(a, a, n); }

void MINT_LeftShift2(MINT *r, const MINT *a, uint32_t n) {
  const std::uint32_t len = mint::used(*a);
  const std::uint32_t whole = n / kWordBits;
  const std::uint32_t bits = n % kWordBits;
  if (len == 0 || whole >= mint::kWords) {
    r->length = 0;
    return;
  }
  // From the top down, so that the result may be the operand.
  const std::uint32_t r_len = std::min(len + whole + (bits != 0 ? 1 : 0), mint::kWords);
  for (std::uint32_t i = r_len; i-- > whole;) {
    const std::uint32_t high = i - whole < len ? a->words[i - whole] : 0;
    const std::uint32_t low = i > whole ? a->words[i - whole - 1] : 0;
    r->words[i] = bits == 0 ? high : funnel(high, low, kWordBits - bits);
  }
  std::fill_n(r->words, whole, 0U);
  r->length = r_len;
  mint::trim(*r);
}

void MINT_RightShift2(MINT *r, const MINT *a, uint32_t n) {
  const std::uint32_t len = mint::used(*a);
  const std::uint32_t whole = n / kWordBits;
  const std::uint32_t bits = n % kWordBits;
  if (whole >= len) {
    r->length = 0;
    return;
  }
  const std::uint32_t r_len = len - whole;
  for (std::uint32_t i = 0; i < r_len; ++i) {
    const std::uint32_t high = i + 1 < r_len ? a->words[i + whole + 1] : 0;
    r->words[i] = funnel(high, a->words[i + whole], bits);
  }
  r->length = r_len;
  mint::trim(*r);
}

void MINT_XOR(MINT *r, const MINT *a, const MINT *b) {
  combine_words(*r, *a, *b, [](std::uint32_t x, std::uint32_t y) { return x ^ y; });
}

void MINT_AND(MINT *r, const MINT *a, const MINT *b) {
  if (a->length == 0 || b->length == 0) {
    r->length = 0;
    return;
  }
  combine_words(*r, *a, *b, [](std::uint32_t x, std::uint32_t y) { return x & y; });
}

void MINT_OR(MINT *r, const MINT *a, const MINT *b) {
  combine_words(*r, *a, *b, [](std::uint32_t x, std::uint32_t y) { return x | y; });
}

void MINT_Mod2ExpN(MINT *a, uint32_t n) {
  const std::uint32_t old_len = mint::used(*a);
  const std::uint32_t whole = n / kWordBits;
  const std::uint32_t bits = n % kWordBits;
  const std::uint32_t len = std::min(whole + (bits != 0 ? 1 : 0), mint::kWords);
  // Deliberate: a remainder modulo the number of bits, not a mask of that many bits.
  if (bits != 0 && whole < old_len) a->words[whole] %= bits;
  if (len > old_len) std::fill_n(a->words + old_len, len - old_len, 0U);
  a->length = len;
}

}  // extern "C"
