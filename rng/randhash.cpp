// A generator of the shape of ANSI X9.17 with SHA-1 in the place of triple DES.
#include <algorithm>
#include <array>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/direct.hpp"
#include "rng/clock.hpp"
#include "zel_cc/legacy_rng.h"

namespace zel {
namespace {

constexpr std::uint32_t kLen = sizeof RANDHASH_CONTEXT::X;
using Block = std::array<std::uint8_t, kLen>;

void digest(std::uint8_t *out, const std::uint8_t *data, std::uint32_t len) noexcept {
  Wiped<HASH_CONTEXT> context;
  hash::start(*context, zel_own_popsha1);
  hash::absorb(*context, data, len);
  hash::finish(out, *context);
}

/// out = SHA-1(outer || inner || outer).
void sandwich(std::uint8_t *out, const std::uint8_t *outer, const std::uint8_t *inner) noexcept {
  Wiped<std::array<std::uint8_t, 3 * kLen>> data;
  std::copy_n(outer, kLen, data->data());
  std::copy_n(inner, kLen, data->data() + kLen);
  std::copy_n(outer, kLen, data->data() + 2 * kLen);
  digest(out, data->data(), 3 * kLen);
}

void step(Block &block, RANDHASH_CONTEXT &context) noexcept {
  std::array<std::uint8_t, sizeof(std::uint32_t)> now;
  Wiped<Block> t;
  store_le32(now.data(), clock_word());
  digest(t->data(), now.data(), now.size());
  sandwich(block.data(), context.X, t->data());
  sandwich(context.X, t->data(), block.data());
}

}  // namespace
}  // namespace zel

using namespace zel;

void RANDHASH_Initialize(RANDHASH_CONTEXT *context) {
  if (!gate::serving() || context == nullptr) return;
  // Deliberate: the output goes over the new state, which nobody sees.
  RANDHASH_GetRandomNum(context->X, kLen, context);
}

void RANDHASH_GetRandomNum(uint8_t *out, uint32_t len, RANDHASH_CONTEXT *context) {
  if (!gate::serving() || any_null<const void *>(out, context)) return;
  while (len != 0) {
    Wiped<Block> block;
    step(*block, *context);
    const std::uint32_t part = std::min(len, kLen);
    std::copy_n(block->data(), part, out);
    out += part;
    len -= part;
  }
}
