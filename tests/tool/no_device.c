/* Preloaded: a system whose random device cannot be opened. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

static int refused(const char *path) {
  errno = EACCES;
  return strcmp(path, "/dev/urandom") == 0;
}

int open(const char *path, int flags, ...) {
  int (*next)(const char *, int, ...);
  void *found = dlsym(RTLD_NEXT, "open");
  va_list rest;
  int mode;
  va_start(rest, flags);
  mode = va_arg(rest, int);
  va_end(rest);
  memcpy(&next, &found, sizeof next);
  return refused(path) ? -1 : next(path, flags, mode);
}

FILE *fopen(const char *path, const char *mode) {
  FILE *(*next)(const char *, const char *);
  void *found = dlsym(RTLD_NEXT, "fopen");
  memcpy(&next, &found, sizeof next);
  return refused(path) ? NULL : next(path, mode);
}
