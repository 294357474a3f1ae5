// Padding of whole messages. RFC 5652, section 6.3.
#include <cstring>

#include "cipher/modes.hpp"

using namespace zel;

uint32_t AddPadding(uint8_t *out, const uint8_t *in, uint32_t len, uint32_t block_len) {
  modes::copy(out, in, len);
  if (block_len == 0 || block_len > UINT8_MAX) return len;
  const uint32_t pad = block_len - len % block_len;
  if (len > UINT32_MAX - pad) return len;
  std::memset(out + len, static_cast<int>(pad), pad);
  return len + pad;
}

// Deliberate: the last byte alone decides.
uint32_t RemovePadding(uint8_t *out, const uint8_t *in, uint32_t len) {
  modes::copy(out, in, len);
  if (len == 0) return 0;
  const uint32_t pad = out[len - 1];
  return pad <= len ? len - pad : 0;
}
