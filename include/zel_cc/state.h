/**
 * @file
 * The module state: one value for the whole process that decides which services run.
 *
 * The process starts in the not-verified service. Services run in states 1 to 4; in state 4 only
 * the approved algorithms do. A failed self-test leads to the error state, which nothing but a new
 * process leads out of. All functions here may be called from any thread; none of them blocks.
 */
#ifndef ZEL_CC_STATE_H
#define ZEL_CC_STATE_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

/** Values of the module state. Any other value is not operational. */
enum ZEL_STATE {
  /** A self-test failed: every gated service refuses, for the rest of the process. */
  ZEL_STATE_ERROR = -98,
  /** Operational; `SELFTEST_VerifiedAlgorithm` leads from here to the verified service. */
  ZEL_STATE_INITIALISED = 1,
  /** A self-test is running; the services that it calls accept this state. */
  ZEL_STATE_SELF_TEST = 2,
  /** Operational with all algorithms: the state at the start of a process. */
  ZEL_STATE_NOT_VERIFIED = 3,
  /** Operational with the approved algorithms only. */
  ZEL_STATE_VERIFIED = 4
};

/** A lock for the embedding application; of the size and alignment of a POSIX mutex. */
typedef union {
  uint8_t bytes[40]; /**< sizeof(pthread_mutex_t) on x86-64 Linux */
  uint64_t align;    /**< for the alignment alone */
} ZEL_STATE_LOCK;
ZEL_STATIC_ASSERT(sizeof(ZEL_STATE_LOCK) == 40, "ZEL_STATE_LOCK has the size of a POSIX mutex");

ZEL_BEGIN_DECLS

/**
 * A lock that an application may use, cast to `pthread_mutex_t *`, to serialise its own changes of
 * the state. It starts as zero bytes, which is an unlocked mutex. The library never takes it.
 */
extern ZEL_API ZEL_STATE_LOCK g_lock_zel_state;

/**
 * Reads the module state.
 *
 * @return a value of `enum ZEL_STATE`, or whatever `KZEL_CC_SetState` stored
 */
ZEL_API int32_t KZEL_CC_GetState(void);

/**
 * Reads the state to which a running self-test will return.
 *
 * @return the saved state; 0 when no self-test has run yet
 */
ZEL_API int32_t KZEL_CC_GetPreState(void);

/**
 * Stores a module state.
 *
 * The error state is final: once the state is -98, no value is stored any more.
 *
 * @param[in] state  the new state; any value
 * @return the state after the call
 */
ZEL_API int32_t KZEL_CC_SetState(int32_t state);

/**
 * Begins the use of the library. It is there for symmetry: nothing needs to be prepared, and no
 * self-test is run.
 *
 * @retval ZEL_OK  always, in every state
 */
ZEL_API int32_t KZEL_CC_Initialize(void);

/**
 * Ends the use of the library. Nothing is held, so nothing changes.
 *
 * @return the module state
 */
ZEL_API int32_t KZEL_CC_Finalize(void);

/**
 * Enters the verified service (4), in which only approved algorithms run, from the not-verified
 * service (3).
 *
 * @return the state after the call; #ZEL_ERR_STATE when the state was not 3 (nothing changed)
 */
ZEL_API int32_t KZEL_CC_SetStateVerifiedService(void);

/**
 * Leaves the verified service (4) for the not-verified service (3).
 *
 * @return the state after the call; #ZEL_ERR_STATE when the state was not 4 (nothing changed)
 */
ZEL_API int32_t KZEL_CC_SetStateNotVerifiedService(void);

/**
 * Enters the self-test state (2) from state 3 or 4 and saves that state, in one atomic step.
 *
 * The new state holds for every thread of the process.
 *
 * @return the state after the call; from any state but 3 and 4 that state, unchanged and no error
 */
ZEL_API int32_t KZEL_CC_SetStateConditionalSelfTest(void);

/**
 * Leaves the self-test state (2) for the saved state, in one atomic step.
 *
 * @return the state after the call; from any state but 2 that state, unchanged and no error
 */
ZEL_API int32_t KZEL_CC_SetPreStateConditionalSelfTest(void);

ZEL_END_DECLS

#endif
