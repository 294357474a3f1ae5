/**
 * @file
 * What every part of the interface shares: linkage, layout assertions, version.
 */
#ifndef ZEL_CC_BASE_H
#define ZEL_CC_BASE_H

#include <stddef.h>
#include <stdint.h>

/**
 * @def ZEL_BEGIN_DECLS
 * Opens declarations of C functions, for C++ too.
 *
 * @def ZEL_END_DECLS
 * Closes what #ZEL_BEGIN_DECLS opened.
 *
 * @def ZEL_STATIC_ASSERT
 * Fails the compilation with `text` unless `condition` holds.
 */
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
