/*
 * rand() and srand() over the kernel's generator.
 *
 * The library draws from the process's rand() where its interface says so, and leaves the strength
 * of that source to the program. A program that links strong_rand.o has these two instead of
 * libc's, for itself and for every shared library that it uses: each draw is 31 fresh bits of
 * getrandom(2), and seeding changes nothing. When the kernel gives no random bytes the process is
 * aborted: it never goes on with weaker ones. Both may be called from any thread, and after fork.
 *
 * Link with -Wl,--export-dynamic-symbol=rand,--export-dynamic-symbol=srand when no shared library
 * of the link uses them yet.
 */
#ifndef ZEL_STRONG_RAND_H
#define ZEL_STRONG_RAND_H

#ifdef __cplusplus
extern "C" {
#endif

/* 1 when the names rand and srand of this process mean these functions, else 0. */
int zel_strong_rand_in_force(void);

#ifdef __cplusplus
}
#endif

#endif
