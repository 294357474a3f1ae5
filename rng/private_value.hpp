// What the two generators of private values share: their integers and their checks.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "zel_cc/legacy_rng.h"
#include "zel_cc/mint_arith.h"

namespace zel::private_value {

/// Bytes between two values in the caller's buffer, and of what the repeated-output test compares.
inline constexpr std::uint32_t kStride = 20;
using Value = std::array<std::uint8_t, kStride>;

/// Room for one more word in every sum.
inline constexpr std::uint32_t kMaxBytes = ZEL_MINT_BYTES - 4;

inline void set_bytes(MINT &a, const std::uint8_t *bytes, std::uint32_t len) noexcept {
  MINT_SetByByteArray(&a, bytes, static_cast<std::int32_t>(len));
}

/// a = a mod 2^(8 len).
inline void keep_low_bytes(MINT &a, std::uint32_t len) noexcept {
  const std::uint32_t words = (len + 3) / 4;
  if (a.length < words) return;
  a.length = words;
  if (len % 4 != 0) a.words[words - 1] &= (1U << (8 * (len % 4))) - 1;
}

/// r = (a + b) mod 2^(8 len).
inline void add_low_bytes(MINT &r, const MINT &a, const MINT &b, std::uint32_t len) noexcept {
  MINT_Add(&r, &a, &b);
  keep_low_bytes(r, len);
}

/// A seed that is its own key: the same bytes, or none at all.
inline bool are_same(const std::uint8_t *seed_bytes, std::uint32_t seed_len,
                     const std::uint8_t *key, std::uint32_t key_len) noexcept {
  return seed_len == key_len && ct::equal(seed_bytes, key, seed_len);
}

inline bool is_zero(const std::uint8_t *bytes, std::uint32_t len) noexcept {
  return std::all_of(bytes, bytes + len, [](std::uint8_t byte) { return byte == 0; });
}

/// Enters the error state.
inline std::int32_t fail(std::int32_t status) noexcept {
  KZEL_CC_SetState(ZEL_STATE_ERROR);
  return status;
}

/// A repeated-output test of zel_cc/selftest.h.
using RepeatTest = std::int32_t (*)(std::uint8_t *previous, const std::uint8_t *next,
                                    std::int32_t len);

/// Whether a value may follow `previous`, which it then replaces.
inline bool may_follow(Value &previous, const Value &next, RepeatTest test) noexcept {
  return gate::state() == ZEL_STATE_INITIALISED ||
         test(previous.data(), next.data(), kStride) == ZEL_OK;
}

}  // namespace zel::private_value
