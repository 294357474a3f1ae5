// A heap that runs out when a test says so, and counts what is held. For one source of a program
// that is linked with --wrap for calloc and free.
#pragma once

#include <cstddef>

namespace zel::test {

inline int g_allocations_left = -1;  ///< until memory is short; negative for never
inline int g_held = 0;               ///< blocks of memory

}  // namespace zel::test

extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void __real_free(void *block);
void *__wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void *block);
void *__wrap_calloc(std::size_t count, std::size_t size) {
  using namespace zel::test;
  if (g_allocations_left == 0) return nullptr;
  if (g_allocations_left > 0) --g_allocations_left;
  ++g_held;
  return __real_calloc(count, size);
}
void __wrap_free(void *block) {
  zel::test::g_held -= block != nullptr ? 1 : 0;
  __real_free(block);
}
}
