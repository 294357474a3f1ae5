// HMAC over any hash descriptor. FIPS 198-1, section 4; RFC 2104.
#include <algorithm>
#include <cstring>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/hmac.h"

namespace zel {
namespace {

constexpr std::size_t kMaxBlock = 128;
constexpr std::uint8_t kInnerPad = 0x36;
constexpr std::uint8_t kOuterPad = 0x5c;

/// Digest of a key that is longer than the block; what a hash that computes nothing leaves is zero.
std::size_t hash_key(std::uint8_t *digest, const std::uint8_t *key, std::uint32_t key_len,
                     const HASH_ALGORITHM *descriptor) noexcept {
  Wiped<HASH_CONTEXT> context;
  std::uint32_t digest_len = 0;
  HASH_Initialize(&*context, descriptor);
  HASH_Update_KZEL(&*context, key, key_len);
  HASH_Finalize(digest, &digest_len, &*context);
  return digest_len;
}

/// Feeds both contexts, which are initialised, their padded key blocks.
void absorb_key(HMAC_CONTEXT *context, const std::uint8_t *key, std::uint32_t key_len,
                const HASH_ALGORITHM *descriptor) noexcept {
  struct KeyBlock {
    std::uint8_t bytes[kMaxBlock];
  };
  const std::size_t block = hash::block_len(descriptor);
  Wiped<KeyBlock> padded(KeyBlock{});
  if (key_len > block) {
    hash_key(padded->bytes, key, key_len, descriptor);
  } else if (key_len != 0) {
    std::memcpy(padded->bytes, key, key_len);
  }
  for (std::size_t i = 0; i < block; ++i)
    padded->bytes[i] ^= kInnerPad;
  HASH_Update_KZEL(&context->inner, padded->bytes, static_cast<std::uint32_t>(block));
  for (std::size_t i = 0; i < block; ++i)
    padded->bytes[i] ^= kInnerPad ^ kOuterPad;
  HASH_Update_KZEL(&context->outer, padded->bytes, static_cast<std::uint32_t>(block));
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t HMAC_InitializeEx(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                          const HASH_ALGORITHM *descriptor) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (const int32_t status = HASH_InitializeEx(&context->inner, descriptor); status != ZEL_OK) {
    return status;
  }
  if (const int32_t status = HASH_InitializeEx(&context->outer, descriptor); status != ZEL_OK) {
    return status;
  }
  absorb_key(context, key, key_len, descriptor);
  return ZEL_OK;
}

int32_t HMAC_Initialize(HMAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                        const HASH_ALGORITHM *descriptor) {
  if (!gate::serving()) return gate::state();
  HASH_Initialize(&context->inner, descriptor);
  HASH_Initialize(&context->outer, descriptor);
  absorb_key(context, key, key_len, descriptor);
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
  Wiped<HASH_CONTEXT> outer(context->outer);
  uint32_t digest_len = 0;
  HASH_Finalize(digest->bytes, &digest_len, &context->inner);
  HASH_Update_KZEL(&*outer, digest->bytes, digest_len);
  HASH_Finalize(out, out_len, &*outer);
  *out_len = context->inner.descriptor->digest_len;
}
