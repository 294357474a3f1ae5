// The questions that every service asks about the module state before it looks at its arguments.
#pragma once

#include <cstdint>

#include "zel_cc/state.h"

namespace zel::gate {

/// The module state, read once.
std::int32_t state() noexcept;

/// Service gate: whether services run at all.
inline bool serving() noexcept {
  const std::int32_t now = state();
  return now >= ZEL_STATE_INITIALISED && now <= ZEL_STATE_VERIFIED;
}

/// Approved-only gate: whether non-approved algorithms are shut out.
inline bool approved_only() noexcept { return state() == ZEL_STATE_VERIFIED; }

/// Self-test entry rule: a single self-test runs where services run.
inline bool self_test_allowed() noexcept { return serving(); }

}  // namespace zel::gate
