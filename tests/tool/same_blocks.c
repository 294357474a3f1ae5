/* Preloaded: a generator whose successive blocks are told equal. */
#include <stdint.h>

int32_t CONDITIONAL_SELFTEST_HASHDRBG(const uint8_t *previous, const uint8_t *next, int32_t len);

int32_t CONDITIONAL_SELFTEST_HASHDRBG(const uint8_t *previous, const uint8_t *next, int32_t len) {
  (void)previous;
  (void)next;
  (void)len;
  return -1;
}
