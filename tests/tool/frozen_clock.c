/* Preloaded: a system on which no time passes and every process has the same number. */
#define _GNU_SOURCE
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

time_t time(time_t *out) {
  if (out != NULL) *out = 1700000000;
  return 1700000000;
}

int gettimeofday(struct timeval *restrict out, void *restrict zone) {
  (void)zone;
  out->tv_sec = 1700000000;
  out->tv_usec = 0;
  return 0;
}

clock_t clock(void) { return 1; }

int clock_gettime(clockid_t which, struct timespec *out) {
  (void)which;
  out->tv_sec = 1700000000;
  out->tv_nsec = 0;
  return 0;
}

pid_t getpid(void) { return 4711; }
