// Multiplication and squaring of big integers: schoolbook on limbs, and Karatsuba's method.
#include "mint/record.hpp"
#include "mint/rows.hpp"

namespace zel {
namespace {

using limbs::Limb;
using mint::kWords;
using Product = mint::Limbs<2 * limbs::kMaxLimbs>;

/// Words as limbs: where they are when the words pair up and only assembly looks at them, else as a
/// copy.
class Factor {
 public:
  Factor(const std::uint32_t *words, std::uint32_t len, bool in_place) noexcept
      : size_(limbs::limbs_of_words(len)) {
    if (in_place && len % 2 == 0) {
      data_ = reinterpret_cast<const Limb *>(words);
    } else {
      limbs::from_words(copy_, size_, words, len);
      data_ = copy_;
    }
  }
  Factor(const Factor &) = delete;
  Factor &operator=(const Factor &) = delete;
  ~Factor() {
    if (data_ == copy_) wipe(copy_, size_ * sizeof copy_[0]);
  }

  const Limb *data() const noexcept { return data_; }
  std::size_t size() const noexcept { return size_; }

 private:
  Limb copy_[limbs::kMaxLimbs];
  const Limb *data_;
  std::size_t size_;
};

/// r[keep] = the low words of a * b, both of at most 130 words; r may be an operand.
void multiply(std::uint32_t *r, std::uint32_t keep, std::uint32_t a_len, const std::uint32_t *a,
              std::uint32_t b_len, const std::uint32_t *b) noexcept {
  const bool adx = limbs::has_adx();
  const Factor x(a, a_len, adx);
  const Factor y(b, b_len, adx);
  const bool in_place = adx && keep == 2 * (x.size() + y.size()) && r != a && r != b;
  Product product(in_place ? 0 : x.size() + y.size());
  Limb *to = in_place ? reinterpret_cast<Limb *>(r) : product.data();
  if (!adx)
    limbs::mul(to, x.data(), x.size(), y.data(), y.size());
  else if (a == b && x.size() == y.size() && x.size() % 8 == 0 && x.size() != 0)
    zel_adx_sqr(to, x.data(), x.size() / 8);
  else
    limbs::multiply_adx(to, x.data(), x.size(), y.data(), y.size());
  if (!in_place) limbs::to_words(r, keep, product.data(), product.size());
}

/// r[keep] = the low words of a * a, of at most 130 words; r may be a.
void square(std::uint32_t *r, std::uint32_t keep, std::uint32_t a_len,
            const std::uint32_t *a) noexcept {
  if (limbs::has_adx()) {
    multiply(r, keep, a_len, a, a_len, a);
    return;
  }
  const Factor x(a, a_len, false);
  Product product(2 * x.size());
  limbs::sqr(product.data(), x.data(), x.size());
  limbs::to_words(r, keep, product.data(), product.size());
}

/// r += a * b over the words of a; the word that leaves the top.
std::uint32_t add_row(std::uint32_t *r, std::uint32_t len, const std::uint32_t *a,
                      std::uint32_t b) noexcept {
  std::uint64_t sum = 0;
  for (std::uint32_t i = 0; i < len; ++i) {
    sum = std::uint64_t{a[i]} * b + r[i] + (sum >> 32);
    r[i] = static_cast<std::uint32_t>(sum);
  }
  return static_cast<std::uint32_t>(sum >> 32);
}

/// The product of arrays that no work area holds.
void multiply_long(std::uint32_t *r, std::uint32_t a_len, const std::uint32_t *a,
                   std::uint32_t b_len, const std::uint32_t *b) noexcept {
  std::fill_n(r, a_len, 0U);
  for (std::uint32_t i = 0; i < b_len; ++i)
    r[i + a_len] = add_row(r + i, a_len, a, b[i]);
}

/// What one level of Karatsuba's method holds: the factors have at most kWords / 2 words.
struct Level {
  std::uint32_t a_difference[kWords / 2];
  std::uint32_t b_difference[kWords / 2];
  std::uint32_t product[kWords];
  std::uint32_t middle[kWords + 2];
};

/// r[a_len + b_len] = a * b, for a_len >= b_len. `base` multiplies what is not split; given equal
/// factors it only ever sees equal factors. Every level halves the length, whatever the depth.
template <class Base>
// NOLINTNEXTLINE(misc-no-recursion): eight levels at most, for kWords words
void karatsuba(std::uint32_t *r, std::uint32_t a_len, const std::uint32_t *a, std::uint32_t b_len,
               const std::uint32_t *b, std::uint32_t depth, const Base &base) noexcept {
  if (depth == 0 || b_len <= 1 || a_len > kWords) {
    std::uint32_t len = 0;
    base(&len, r, a_len, a, b_len, b);
    for (; len < a_len + b_len; ++len)
      r[len] = 0;
    return;
  }
  const std::uint32_t high = a_len / 2;
  const std::uint32_t low = a_len - high;
  Wiped<Level> level;
  if (b_len <= low) {  // b has no high part: two products, one above the other
    karatsuba(r, low, a, b_len, b, depth - 1, base);
    std::fill_n(r + low + b_len, high, 0U);
    if (high >= b_len)
      karatsuba(level->product, high, a + low, b_len, b, depth - 1, base);
    else
      karatsuba(level->product, b_len, b, high, a + low, depth - 1, base);
    std::uint32_t len = 0;
    MINT_Add_Core(&len, r + low, high + b_len, r + low,
                  mint::significant(level->product, high + b_len), level->product);
    return;
  }

  const std::uint32_t b_high = b_len - low;
  karatsuba(r, low, a, low, b, depth - 1, base);
  karatsuba(r + std::size_t{2} * low, high, a + low, b_high, b + low, depth - 1, base);

  // Without top zero words the longer array is the greater one.
  const auto difference = [low](std::uint32_t *to, const std::uint32_t *x, std::uint32_t x_high) {
    std::uint32_t len = 0;
    const std::int32_t sign = MINT_Sub_Core(&len, to, mint::significant(x + low, x_high), x + low,
                                            mint::significant(x, low), x);
    std::fill_n(to + len, low - len, 0U);
    return sign;
  };
  const std::int32_t sign =
      difference(level->a_difference, a, high) * difference(level->b_difference, b, b_high);
  karatsuba(level->product, low, level->a_difference, low, level->b_difference, depth - 1, base);

  std::uint32_t len = 0;
  MINT_Add_Core(&len, level->middle, 2 * low, r, high + b_high, r + std::size_t{2} * low);
  const std::uint32_t product_len = mint::significant(level->product, 2 * low);
  if (sign > 0)
    MINT_Sub_Core(&len, level->middle, mint::significant(level->middle, len), level->middle,
                  product_len, level->product);
  else
    MINT_Add_Core(&len, level->middle, len, level->middle, product_len, level->product);
  MINT_Add_Core(&len, r + low, a_len + b_len - low, r + low, mint::significant(level->middle, len),
                level->middle);
}

/// The low words of a product that was computed in full.
void keep_low(MINT &r, const std::uint32_t *product, std::uint32_t len) noexcept {
  r.length = std::min(len, kWords);
  std::copy_n(product, r.length, r.words);
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

void MINT_Mult(MINT *r, const MINT *a, const MINT *b) {
  const std::uint32_t a_len = mint::used(*a);
  const std::uint32_t b_len = mint::used(*b);
  const std::uint32_t len = a_len == 0 || b_len == 0 ? 0 : std::min(a_len + b_len, kWords);
  multiply(r->words, len, a_len, a->words, b_len, b->words);
  r->length = len;
}

void MINT_MultInteger(MINT *r, const MINT *a, uint32_t w) {
  const std::uint32_t a_len = w == 0 ? 0 : mint::used(*a);
  std::uint64_t product = 0;
  for (std::uint32_t i = 0; i < a_len; ++i) {
    product = std::uint64_t{a->words[i]} * w + (product >> 32);
    r->words[i] = static_cast<std::uint32_t>(product);
  }
  const auto carry = static_cast<std::uint32_t>(product >> 32);
  r->length = a_len;
  if (carry != 0 && a_len < kWords) r->words[r->length++] = carry;
}

void MINT_Square(MINT *r, const MINT *a) {
  const std::uint32_t a_len = mint::used(*a);
  const std::uint32_t len = std::min(2 * a_len, kWords);
  square(r->words, len, a_len, a->words);
  r->length = len;
}

void MINT_KMult(MINT *r, const MINT *a, const MINT *b, uint32_t depth) {
  if (a->length == 0 || b->length == 0) {
    r->length = 0;
    return;
  }
  Wiped<std::uint32_t[2 * kWords]> product;
  std::uint32_t len = 0;
  MINT_KMult_Core(&len, *product, mint::used(*a), a->words, mint::used(*b), b->words, depth,
                  MINT_Mult_Core);
  keep_low(*r, *product, len);
}

void MINT_KSquare(MINT *r, const MINT *a, uint32_t depth) {
  Wiped<std::uint32_t[2 * kWords]> product;
  std::uint32_t len = 0;
  MINT_KSquare_Core(&len, *product, mint::used(*a), a->words, depth, MINT_Square_Core);
  keep_low(*r, *product, len);
}

void MINT_Mult_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a, uint32_t b_len,
                    const uint32_t *b) {
  *r_len = a_len + b_len;
  if (a_len <= kWords && b_len <= kWords)
    multiply(r, a_len + b_len, a_len, a, b_len, b);
  else
    multiply_long(r, a_len, a, b_len, b);
}

void MINT_Square_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a) {
  *r_len = 2 * a_len;
  if (a_len <= kWords)
    square(r, 2 * a_len, a_len, a);
  else
    multiply_long(r, a_len, a, a_len, a);
}

void MINT_KMult_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                     uint32_t b_len, const uint32_t *b, uint32_t depth, MINT_MULT_FN mult) {
  if (a_len < b_len) {
    std::swap(a_len, b_len);
    std::swap(a, b);
  }
  karatsuba(r, a_len, a, b_len, b, depth, mult);
  *r_len = a_len + b_len;
}

void MINT_KSquare_Core(uint32_t *r_len, uint32_t *r, uint32_t a_len, const uint32_t *a,
                       uint32_t depth, MINT_SQUARE_FN square) {
  const auto base = [square](std::uint32_t *len, std::uint32_t *to, std::uint32_t x_len,
                             const std::uint32_t *x, std::uint32_t,
                             const std::uint32_t *) { square(len, to, x_len, x); };
  karatsuba(r, a_len, a, a_len, a, depth, base);
  *r_len = 2 * a_len;
}

}  // extern "C"
