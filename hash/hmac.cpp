// HMAC over any hash descriptor. FIPS 198-1, section 4; RFC 2104.
#include <cstring>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/direct.hpp"
#include "zel_cc/hmac.h"

namespace zel {
namespace {

struct KeyBlock {
  std::uint8_t bytes[128];
};
constexpr std::uint8_t kInnerPad = 0x36;
constexpr std::uint8_t kOuterPad = 0x5c;

void xor_all(KeyBlock &block, std::uint8_t pad) noexcept {
  for (std::size_t i = 0; i < sizeof block.bytes; i += 16)
    store_bytes16(block.bytes + i, load_bytes16(block.bytes + i) ^ pad);
}

/// Feeds both contexts, which are initialised, their padded key blocks. What a hash that computes
/// nothing leaves of a long key is zeros.
void absorb_key(HMAC_CONTEXT &context, const std::uint8_t *key, std::uint32_t key_len,
                const HASH_ALGORITHM &algorithm) noexcept {
  const auto block_len = static_cast<std::uint32_t>(hash::block_len(&algorithm));
  Wiped<KeyBlock> padded;
  zero<sizeof(KeyBlock)>(padded->bytes);
  if (key_len > block_len) {
    Wiped<HASH_CONTEXT> hashed;
    hash::start(*hashed, algorithm);
    hash::absorb(*hashed, key, key_len);
    hash::finish(padded->bytes, *hashed);
  } else if (key_len != 0) {
    std::memcpy(padded->bytes, key, key_len);
  }
  xor_all(*padded, kInnerPad);
  hash::absorb(context.inner, padded->bytes, block_len);
  xor_all(*padded, kInnerPad ^ kOuterPad);
  hash::absorb(context.outer, padded->bytes, block_len);
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t HMAC_InitializeEx(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                          const HASH_ALGORITHM *descriptor) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only() && !hash::is_approved(descriptor)) return ZEL_ERR_APPROVED;
  hash::start(context->inner, *descriptor);
  hash::start(context->outer, *descriptor);
  absorb_key(*context, key, key_len, *descriptor);
  return ZEL_OK;
}

int32_t HMAC_Initialize(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                        const HASH_ALGORITHM *descriptor) {
  if (const int32_t now = gate::state(); !gate::serves(now)) return now;
  hash::start(context->inner, *descriptor);
  hash::start(context->outer, *descriptor);
  absorb_key(*context, key, key_len, *descriptor);
  return ZEL_OK;
}

void __HMAC_Update(HMAC_CONTEXT *context, const uint8_t *data, uint32_t len) {
  HASH_Update_KZEL(&context->inner, data, len);
}

void HMAC_Finalize(uint8_t *out, uint32_t *out_len, const HMAC_CONTEXT *context) {
  if (!gate::serving()) return;
  struct Digest {
    std::uint8_t bytes[ZEL_MAX_DIGEST_LEN];
  };
  Wiped<Digest> digest(Digest{});
  const std::uint32_t digest_len = hash::finish(digest->bytes, context->inner);
  hash::finish_with(out, context->outer, digest->bytes, digest_len);
  *out_len = context->inner.descriptor->digest_len;
}
