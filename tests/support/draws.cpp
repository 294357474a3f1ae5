// Random bytes of the schemes over discrete logarithms that a test chooses.
#include "tests/support/discrete_log.hpp"

// NOLINTBEGIN: the linker's names
extern "C" {
void __real_RANDHASH_GetRandomNum(uint8_t *out, uint32_t len, RANDHASH_CONTEXT *context);
int32_t __real_HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits);

void __wrap_RANDHASH_GetRandomNum(uint8_t *out, uint32_t len, RANDHASH_CONTEXT *context) {
  auto &draws = zel::test::g_draws;
  if (draws.empty()) return __real_RANDHASH_GetRandomNum(out, len, context);
  ASSERT_EQ(draws.front().size(), len);
  std::copy(draws.front().begin(), draws.front().end(), out);
  draws.pop_front();
}

int32_t __wrap_HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits) {
  if (zel::test::g_draws.empty()) return __real_HASHDRBG_GetRandNum(out, bits);
  std::fill_n(out, bits / 8, zel::test::kDrbgByte);
  return ZEL_OK;
}
}
// NOLINTEND
