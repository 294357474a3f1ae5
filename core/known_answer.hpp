// The one body of every known-answer test, and how such a test compares.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "core/gate.hpp"
#include "zel_cc/base.h"
#include "zel_cc/errors.h"

#ifdef ZEL_CC_FAULTS
/// Test builds alone: the self-test whose expected answer has one bit flipped; null for none.
extern "C" ZEL_API const char *zel_faulty_self_test;
#endif

namespace zel {

/// Bytes from their hexadecimal digits.
template <std::size_t kSize>
consteval auto hex(const char (&digits)[kSize]) {
  std::array<std::uint8_t, kSize / 2> bytes{};
  for (std::size_t i = 0; i + 1 < kSize; ++i) {
    const char c = digits[i];
    if (!(c >= '0' && c <= '9') && !(c >= 'a' && c <= 'f')) __builtin_trap();
    const int value = c <= '9' ? c - '0' : c - 'a' + 10;
    bytes[i / 2] = static_cast<std::uint8_t>(bytes[i / 2] << 4 | value);
  }
  return bytes;
}

/// Compares with expected answers. In a test build it may expect one bit otherwise.
class Check {
 public:
  explicit Check([[maybe_unused]] const char *self_test) noexcept {
#ifdef ZEL_CC_FAULTS
    flip_ = zel_faulty_self_test != nullptr && std::strcmp(zel_faulty_self_test, self_test) == 0;
#endif
  }

  /// Whether a service gave the answer, in its whole length.
  bool equal(const std::uint8_t *got, std::size_t got_len,
             std::span<const std::uint8_t> expected) const noexcept {
    return got_len == expected.size() && got[0] == (expected[0] ^ (flip_ ? 1 : 0)) &&
           std::memcmp(got, expected.data(), got_len) == 0;
  }
  /// The same for an answer that is yes.
  bool holds(bool got) const noexcept { return got != flip_; }

 private:
  bool flip_ = false;
};

/// Runs `body`, which tells whether all answers were right, in the self-test state.
///
/// A failure leaves the module in its error state. A test that runs inside another one, or in state
/// 1, finds nothing to save; one that passes ends the self-test state all the same.
template <class Body>
std::int32_t known_answer(const char *self_test, std::int32_t code, const Body &body) noexcept {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  KZEL_CC_SetStateConditionalSelfTest();
  if (!body(Check(self_test))) {
    KZEL_CC_SetState(ZEL_STATE_ERROR);
    return code;
  }
  KZEL_CC_SetPreStateConditionalSelfTest();
  return ZEL_OK;
}

}  // namespace zel
