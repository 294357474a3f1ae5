// The module state: one lock-free value for the whole process.
#include "zel_cc/state.h"

#include <pthread.h>

#include <atomic>
#include <bit>

#include "core/gate.hpp"

namespace zel {

using gate::g_zel_state;

namespace {

/// The state and the state that a running self-test returns to. They share one atomic word so that
/// entering and leaving a self-test is one exchange: no thread can save 2 as the state to return
/// to.
struct Value {
  std::int32_t state;
  std::int32_t prestate;
};

using Word = std::uint64_t;
static_assert(std::atomic<Word>::is_always_lock_free);
constexpr Word kAtStart = std::bit_cast<Word>(Value{ZEL_STATE_NOT_VERIFIED, 0});
static_assert(static_cast<std::int32_t>(kAtStart) == ZEL_STATE_NOT_VERIFIED);

Value read() noexcept { return std::bit_cast<Value>(g_zel_state.load(std::memory_order_acquire)); }

/// Stores `wanted` if the value is still `seen`; otherwise refreshes `seen`.
bool exchange(Value &seen, Value wanted) noexcept {
  Word expected = std::bit_cast<Word>(seen);
  const bool done = g_zel_state.compare_exchange_strong(
      expected, std::bit_cast<Word>(wanted), std::memory_order_acq_rel, std::memory_order_acquire);
  seen = std::bit_cast<Value>(expected);
  return done;
}

/// Replaces the value by `next(value)` unless that is the same; returns the state afterwards.
template <class Next>
std::int32_t change(Next next) noexcept {
  Value seen = read();
  for (;;) {
    const Value wanted = next(seen);
    if (wanted.state == seen.state && wanted.prestate == seen.prestate) return seen.state;
    if (exchange(seen, wanted)) return wanted.state;
  }
}

/// From one service to the other, or refused.
std::int32_t switch_service(std::int32_t from, std::int32_t to) noexcept {
  Value seen = read();
  while (seen.state == from) {
    if (exchange(seen, Value{to, seen.prestate})) return to;
  }
  return ZEL_ERR_STATE;
}

}  // namespace

constinit std::atomic<std::uint64_t> gate::g_zel_state{kAtStart};

}  // namespace zel

using namespace zel;

static_assert(sizeof(ZEL_STATE_LOCK) == sizeof(pthread_mutex_t));
static_assert(alignof(ZEL_STATE_LOCK) == alignof(pthread_mutex_t));
constinit ZEL_STATE_LOCK g_lock_zel_state{};

int32_t KZEL_CC_GetState(void) { return gate::state(); }

int32_t KZEL_CC_GetPreState(void) { return read().prestate; }

int32_t KZEL_CC_SetState(int32_t state) {
  return change([state](Value seen) {
    return Value{seen.state == ZEL_STATE_ERROR ? seen.state : state, seen.prestate};
  });
}

int32_t KZEL_CC_Initialize(void) { return ZEL_OK; }

int32_t KZEL_CC_Finalize(void) { return gate::state(); }

int32_t KZEL_CC_SetStateVerifiedService(void) {
  return switch_service(ZEL_STATE_NOT_VERIFIED, ZEL_STATE_VERIFIED);
}

int32_t KZEL_CC_SetStateNotVerifiedService(void) {
  return switch_service(ZEL_STATE_VERIFIED, ZEL_STATE_NOT_VERIFIED);
}

int32_t KZEL_CC_SetStateConditionalSelfTest(void) {
  return change([](Value seen) {
    const bool service = seen.state == ZEL_STATE_NOT_VERIFIED || seen.state == ZEL_STATE_VERIFIED;
    return service ? Value{ZEL_STATE_SELF_TEST, seen.state} : seen;
  });
}

int32_t KZEL_CC_SetPreStateConditionalSelfTest(void) {
  return change([](Value seen) {
    return seen.state == ZEL_STATE_SELF_TEST ? Value{seen.prestate, seen.prestate} : seen;
  });
}
