// The data authentication code: CBC-MAC with a zero IV and zero bytes for padding. FIPS 113.
#include "base/bytes.hpp"
#include "cipher/block_mac.hpp"
#include "core/gate.hpp"
#include "zel_cc/mac.h"

using namespace zel;

int32_t DAC_Initialize(DAC_CONTEXT *context, const uint8_t *key, uint32_t key_len,
                       const BCIPHER_ALGORITHM *descriptor) {
  // Deliberate: the state itself is the answer, where other calls have a code for it.
  if (gate::approved_only()) return ZEL_STATE_VERIFIED;
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null(context, key, descriptor)) return ZEL_ERR_GENERIC;
  if (!modes::is_sound(*descriptor)) return ZEL_ERR_GENERIC;
  BCIPHER_KEY *const object = mac::new_key(key, key_len, descriptor);
  if (object == nullptr) return ZEL_ERR_GENERIC;
  *context = {};
  context->key = object;
  return BCIPHER_Initialize(&context->cipher, ZEL_MODE_CBC, nullptr, descriptor);
}

void DAC_Update(DAC_CONTEXT *context, const uint8_t *data, uint32_t len) {
  if (gate::approved_only()) return;
  if (context == nullptr || modes::any_missing(modes::Run{data, len})) return;
  if (!mac::has_cipher(*context)) return;
  mac::absorb(
      *context, {data, len}, 0, [context] { mac::encipher_buffer(*context); },
      [context](const uint8_t *from, std::size_t count) {
        mac::encipher_blocks(*context, from, count, context->cipher.chain);
      });
}

void DAC_Finalize(uint8_t *mac, uint32_t mac_len, DAC_CONTEXT *context) {
  if (gate::approved_only()) return;
  if (context == nullptr || modes::any_missing(modes::Run{mac, mac_len})) return;
  if (mac::has_cipher(*context) && context->count > 0) {
    const std::size_t block_len = context->cipher.descriptor->block_len;
    const std::size_t held = std::min<std::size_t>(context->count, block_len);
    std::memset(context->buffer + held, 0, block_len - held);
    mac::encipher_buffer(*context);
  }
  mac::give(mac, mac_len, *context);
  mac::release(context->key);
}
