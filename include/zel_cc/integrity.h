/**
 * @file
 * The integrity of the library file: a keyed digest in a companion file beside it.
 *
 * The companion has the name of the library file with ".hmac" behind it, and begins with the
 * HMAC-SHA-1 of that file under #g_hmac_key as 40 lowercase hexadecimal digits. The build and the
 * installation write it. Whoever changes the library file afterwards (a packager who strips it)
 * writes it again: `zel integrity --stamp`.
 *
 * The key is in the library for everybody to read: the test finds damage and mistakes. It does not
 * stop those who can write the library file, for they can write its companion.
 */
#ifndef ZEL_CC_INTEGRITY_H
#define ZEL_CC_INTEGRITY_H

#include "zel_cc/base.h"
#include "zel_cc/errors.h"

ZEL_BEGIN_DECLS

/** Key of the companion files; used for nothing else. */
extern ZEL_API const uint8_t g_hmac_key[16];

/**
 * Compares a library file with its companion. Also works in the verified service.
 *
 * @param[in] path  the library file
 * @retval ZEL_OK           the companion matches
 * @retval ZEL_ERR_GENERIC  it does not, or has fewer than 40 bytes; null path; a file that cannot
 * be read; a library whose length is 0 or another multiple of 65,536 bytes; module not serving
 */
ZEL_API int32_t SELFTEST_VerifyModuleHMAC(const char *path);

/**
 * Looks for a library file that matches its companion, and ends with the first.
 *
 * The directories are the value of `ZEL_CC_HMAC_PATH`, then the elements of `LD_LIBRARY_PATH`,
 * `SHLIB_PATH`, `LIB_PATH`, `LIBPATH` and `DYLD_LIBRARY_PATH`, each split at colons. In each,
 * `libzel_cc-3.2` is tried with the endings `.so`, `.a`, `.sl`, `.dylib` and `_static.a`. A path of
 * more than 255 bytes and a list of more than 1023 are passed over. Which file the process has
 * loaded is not asked.
 *
 * @retval ZEL_OK             one matches
 * @retval ZEL_ERR_INTEGRITY  none does, no variable is set, or the module is not serving; the state
 *                            is not changed
 */
ZEL_API int32_t SELFTEST_DoModuleIntegrityTest(void);

ZEL_END_DECLS

#endif
