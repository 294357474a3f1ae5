// Repeated-output tests of the random generators: two successive outputs must differ.
#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "core/gate.hpp"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

std::int32_t outputs_differ(const std::uint8_t *previous, const std::uint8_t *next,
                            std::int32_t len) noexcept {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  if (len < 0 || (len > 0 && any_null(previous, next))) return ZEL_ERR_GENERIC;
  KZEL_CC_SetStateConditionalSelfTest();
  if (len > 0 && ct::equal(previous, next, static_cast<std::size_t>(len))) {
    KZEL_CC_SetState(ZEL_STATE_ERROR);
    return ZEL_ERR_GENERIC;
  }
  KZEL_CC_SetPreStateConditionalSelfTest();
  return ZEL_OK;
}

/// The form of the older generators, which set the error state themselves.
std::int32_t take_over(std::uint8_t *previous, const std::uint8_t *next,
                       std::int32_t len) noexcept {
  if (!gate::self_test_allowed()) return ZEL_ERR_STATE;
  if (len == 0) return ZEL_OK;
  if (len < 0 || any_null<const void *>(previous, next)) return ZEL_ERR_GENERIC;
  if (ct::equal(previous, next, static_cast<std::size_t>(len))) return ZEL_ERR_GENERIC;
  std::memcpy(previous, next, static_cast<std::size_t>(len));
  return ZEL_OK;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t CONDITIONAL_SELFTEST_HASHDRBG(const uint8_t *previous, const uint8_t *next, int32_t len) {
  return outputs_differ(previous, next, len);
}

int32_t CONDITIONAL_SELFTEST_HMACDRBG(const uint8_t *previous, const uint8_t *next, int32_t len) {
  return outputs_differ(previous, next, len);
}

int32_t CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160(uint8_t *previous, const uint8_t *next, int32_t len) {
  return take_over(previous, next, len);
}

int32_t CONDITIONAL_SELFTEST_DSA_RNG_SHA1(uint8_t *previous, const uint8_t *next, int32_t len) {
  return take_over(previous, next, len);
}
