// The integers modulo an odd number, in time that depends on that number alone.
#pragma once

#include <cstdint>

#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "zel_cc/mint_mont.h"

namespace zel::keyshare {

/// Neither a truth value to branch on nor a number: all ones or zero.
using Mask = std::uint32_t;

/// Elements are records of exactly words() words, below the modulus, with zeros above; every result
/// is one. An operand that is not may have any value of so many words where a function says so.
/// Results may be operands.
class Field {
 public:
  /// The modulus is odd and has at most 130 words.
  explicit Field(const MINT &modulus) noexcept;

  std::uint32_t words() const noexcept { return words_; }

  /// r = a mod p for any `a` that fits in words().
  void reduce(MINT &r, const MINT &a) const noexcept { mul(r, a, one_); }
  void add(MINT &r, const MINT &a, const MINT &b) const noexcept;
  void sub(MINT &r, const MINT &a, const MINT &b) const noexcept;
  /// Either factor may be any number that fits in words().
  void mul(MINT &r, const MINT &a, const MINT &b) const noexcept;
  /// All ones where there is an inverse; else r is zero.
  Mask invert(MINT &r, const MINT &a) const noexcept;

  Mask is_zero(const MINT &a) const noexcept;
  /// Whether a record of at most 130 words, its words above the length aside, fits in words().
  Mask fits(const MINT &a) const noexcept;
  /// Whether it is below the modulus.
  Mask contains(const MINT &a) const noexcept;

  /// An element from a record that fits.
  void load(MINT &r, const MINT &a) const noexcept;
  /// The record of an element: trimmed.
  void store(MINT &r, const MINT &a) const noexcept;

 private:
  /// r = a, or a - p where the mask says so.
  void reduce_once(MINT &r, const MINT &a, Mask carry) const noexcept;

  MINT_MONT_CTX mont_;
  MINT one_;
  std::uint32_t words_;
};

}  // namespace zel::keyshare
