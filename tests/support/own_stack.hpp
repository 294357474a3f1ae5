// Searches the stack for what a call left there.
#pragma once

#include <ucontext.h>

#include <algorithm>
#include <cstdlib>

#include "tests/support/vectors.hpp"

namespace zel::test {

/// A call on a stack of its own, which is searched afterwards.
class OnOwnStack {
 public:
  /// Whether a search says anything: what compilers other than GCC, or without optimisation, keep
  /// on the stack is their own affair.
#if !defined(__OPTIMIZE__) || defined(__clang__) || defined(__SANITIZE_ADDRESS__)
  static constexpr bool kCounts = false;
#else
  static constexpr bool kCounts = true;
#endif

  explicit OnOwnStack(void (*body)()) {
    ucontext_t here, there;
    if (getcontext(&there) != 0) abort();
    there.uc_stack.ss_sp = stack_.data();
    there.uc_stack.ss_size = stack_.size();
    there.uc_link = &here;
    makecontext(&there, body, 0);
    if (swapcontext(&here, &there) != 0) abort();
  }
  /// Whether eight successive bytes of `secret` stand there, in their order or as a word does.
  bool holds(const Bytes &secret) const {
    for (std::size_t at = 0; at + 8 <= secret.size(); ++at) {
      Bytes piece(secret.begin() + static_cast<long>(at),
                  secret.begin() + static_cast<long>(at + 8));
      if (std::search(stack_.begin(), stack_.end(), piece.begin(), piece.end()) != stack_.end()) {
        return true;
      }
      std::reverse(piece.begin(), piece.end());
      if (std::search(stack_.begin(), stack_.end(), piece.begin(), piece.end()) != stack_.end()) {
        return true;
      }
    }
    return false;
  }
  /// The same for a big-endian number, which may also stand there in digits to the base 2^62.
  bool holds_number(const Bytes &number) const {
    if (holds(number)) return true;
    constexpr std::size_t kDigitBits = 62;
    for (std::size_t from = 0; from < 8 * number.size(); from += kDigitBits) {
      Bytes digit(8);
      for (std::size_t i = 0; i < kDigitBits && from + i < 8 * number.size(); ++i) {
        const std::size_t at = from + i;
        const uint8_t bit = number[number.size() - 1 - at / 8] >> at % 8 & 1;
        digit[7 - i / 8] |= static_cast<uint8_t>(bit << i % 8);
      }
      // One that begins with a zero byte may stand there by chance.
      if (digit[1] != 0 && holds(digit)) return true;
    }
    return false;
  }

 private:
  Bytes stack_ = Bytes(1 << 16);
};

}  // namespace zel::test
