// Random bytes of the schemes over discrete logarithms that a test chooses.
#include "tests/support/discrete_log.hpp"

namespace {
using zel::test::Bytes;
Bytes g_last_seed;
}  // namespace

// NOLINTBEGIN: the linker's names
extern "C" {
void __real_RANDHASH_GetRandomNum(uint8_t *out, uint32_t len, RANDHASH_CONTEXT *context);
int32_t __real_HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits);
int32_t __real_RNGSEED_GetSeed(uint8_t *out, uint32_t *out_len, uint32_t bits);
void __real_RANDHASH_Initialize(RANDHASH_CONTEXT *context);

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

int32_t __wrap_RNGSEED_GetSeed(uint8_t *out, uint32_t *out_len, uint32_t bits) {
  const int32_t status = __real_RNGSEED_GetSeed(out, out_len, bits);
  g_last_seed = Bytes(out, out + bits / 8);
  return status;
}

void __wrap_RANDHASH_Initialize(RANDHASH_CONTEXT *context) {
  if (g_last_seed == Bytes(context->X, context->X + 20)) ++zel::test::g_seedings;
  g_last_seed.clear();
  __real_RANDHASH_Initialize(context);
}
}
// NOLINTEND
