/**
 * @file
 * What every part of the interface shares: linkage, layout assertions, version.
 */
#ifndef ZEL_CC_BASE_H
#define ZEL_CC_BASE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define ZEL_BEGIN_DECLS extern "C" {
#define ZEL_END_DECLS }
#define ZEL_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define ZEL_BEGIN_DECLS
#define ZEL_END_DECLS
#define ZEL_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

/** Marks a name that the shared library exports. */
#define ZEL_API __attribute__((visibility("default")))

/** Version of the interface, as in the name of the library file. */
#define ZEL_CC_VERSION "3.2"

#endif
