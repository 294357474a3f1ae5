// A generator over triple DES. ANSI X9.17, appendix C.
#include <algorithm>
#include <array>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "rng/clock.hpp"
#include "zel_cc/ciphers.h"
#include "zel_cc/legacy_rng.h"

namespace zel {
namespace {

constexpr std::uint32_t kLen = sizeof RANDANSI_CONTEXT::V;
constexpr std::uint32_t kKeyLen = 24;
using Block = std::array<std::uint8_t, kLen>;

void step(Block &block, RANDANSI_CONTEXT &context) noexcept {
  Wiped<Block> date;
  store_le32(date->data(), clock_word());
  store_le32(date->data() + 4, 0U - clock_word());
  TDES_EncryptBlock(date->data(), context.round_keys);
  xor_bytes(block.data(), date->data(), context.V, kLen);
  TDES_EncryptBlock(block.data(), context.round_keys);
  xor_bytes(context.V, block.data(), date->data(), kLen);
  TDES_EncryptBlock(context.V, context.round_keys);
}

}  // namespace
}  // namespace zel

using namespace zel;

void RANDANSI_Initialize(RANDANSI_CONTEXT *context) {
  if (!gate::serving() || context == nullptr) return;
  Wiped<std::array<std::uint8_t, kKeyLen>> key;
  RANDANSI_GetRandomNum(key->data(), kKeyLen, context);
  TDES_MakeRoundKey(context->round_keys, key->data(), kKeyLen);
  RANDANSI_GetRandomNum(context->V, kLen, context);
}

void RANDANSI_GetRandomNum(uint8_t *out, uint32_t len, RANDANSI_CONTEXT *context) {
  if (!gate::serving() || any_null<const void *>(out, context)) return;
  // Deliberate: one step at least, so that a request of 0 bytes moves V on.
  do {
    Wiped<Block> block;
    step(*block, *context);
    const std::uint32_t part = std::min(len, kLen);
    std::copy_n(block->data(), part, out);
    out += part;
    len -= part;
  } while (len != 0);
}
