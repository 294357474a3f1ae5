// MD2: blocks of 16 bytes and a running checksum; buffers for itself. RFC 1319.
#include <algorithm>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "hash/md2_tables.hpp"
#include "hash/slots.hpp"

namespace zel {
namespace {

constexpr std::uint32_t kBlock = 16;

// In the verified service a record is initialised in name only. Should the state change before the
// context is used, its words are whatever the caller's memory held: so every word that selects a
// place is cut to its range, which changes nothing in a record that was filled.

std::uint8_t substitute(std::uint32_t word) noexcept { return kMd2Substitution[word & 0xff]; }

std::uint32_t pending_len(const HASH_AREA_MD2 &area) noexcept { return area.pending_len % kBlock; }

/// One block into the checksum and the state. RFC 1319, sections 3.2 and 3.4.
void transform(HASH_AREA_MD2 &area, const std::uint8_t *block) noexcept {
  std::uint32_t x[3 * kBlock];
  std::uint32_t last = area.checksum[kBlock - 1];
  for (std::size_t i = 0; i < kBlock; ++i) {
    x[i] = area.state[i];
    x[kBlock + i] = block[i];
    x[2 * kBlock + i] = x[i] ^ block[i];
    last = area.checksum[i] ^= substitute(block[i] ^ last);
  }
  std::uint32_t t = 0;
  for (std::uint32_t round = 0; round < 18; ++round) {
    for (std::uint32_t &word : x)
      t = word ^= substitute(t);
    t = (t + round) & 0xff;
  }
  std::copy_n(x, kBlock, area.state);
}

}  // namespace
}  // namespace zel

using namespace zel;

void MD2_Initialize(void *context) {
  if (gate::approved_only()) return;
  static_cast<HASH_CONTEXT *>(context)->area_md2 = {};
}

void MD2_Update(void *context, const std::uint8_t *data, std::uint32_t len) {
  if (gate::approved_only()) return;
  HASH_AREA_MD2 &area = static_cast<HASH_CONTEXT *>(context)->area_md2;
  if (const std::uint32_t pending = pending_len(area); pending != 0) {
    const std::uint32_t taken = std::min(len, kBlock - pending);
    std::copy_n(data, taken, area.pending + pending);
    area.pending_len = pending + taken;
    data += taken;
    len -= taken;
    if (area.pending_len < kBlock) return;
    transform(area, area.pending);
    area.pending_len = 0;
  }
  for (; len >= kBlock; data += kBlock, len -= kBlock)
    transform(area, data);
  std::copy_n(data, len, area.pending);
  area.pending_len = len;
}

void MD2_Finalize(std::uint8_t *out, const void *context) {
  if (gate::approved_only()) return;
  Wiped<HASH_AREA_MD2> area(static_cast<const HASH_CONTEXT *>(context)->area_md2);
  const std::uint32_t padding = kBlock - pending_len(*area);
  std::fill_n(area->pending + kBlock - padding, padding, static_cast<std::uint8_t>(padding));
  transform(*area, area->pending);

  std::copy_n(area->checksum, kBlock, area->pending);
  transform(*area, area->pending);
  std::copy_n(area->state, kBlock, out);
}

constinit const HASH_ALGORITHM md2 = {
    .digest_len = 16,
    .Initialize = MD2_Initialize,
    .Update = MD2_Update,
    .PadLength = nullptr,
    .DumpDigest = MD2_Finalize,
};
extern "C" const HASH_ALGORITHM zel_own_md2 ZEL_HIDDEN_ALIAS("md2");
