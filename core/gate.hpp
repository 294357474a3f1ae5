// The questions that every service asks about the module state before it looks at its arguments.
#pragma once

#include <atomic>
#include <cstdint>

#include "zel_cc/state.h"

namespace zel::gate {

/// The module state in the low half, the state that a running self-test returns to in the high one.
/// Only core/state.cpp writes it.
extern std::atomic<std::uint64_t> g_zel_state;

/// The module state, read once.
inline std::int32_t state() noexcept {
  return static_cast<std::int32_t>(g_zel_state.load(std::memory_order_acquire));
}

/// Service gate: whether services run at all in a state, and now.
inline bool serves(std::int32_t state) noexcept {
  return state >= ZEL_STATE_INITIALISED && state <= ZEL_STATE_VERIFIED;
}
inline bool serving() noexcept { return serves(state()); }

/// Approved-only gate: whether non-approved algorithms are shut out.
inline bool approved_only() noexcept { return state() == ZEL_STATE_VERIFIED; }

/// Self-test entry rule: a single self-test runs where services run.
inline bool self_test_allowed() noexcept { return serving(); }

}  // namespace zel::gate
