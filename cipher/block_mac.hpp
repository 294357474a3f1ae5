// What CMAC and DAC share: a key object of their own, and a message that is cut into blocks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cipher/auth.hpp"
#include "zel_cc/bcipher.h"

namespace zel::mac {

/// A loaded key object; null when there is no memory or the key does not fit.
BCIPHER_KEY *new_key(const std::uint8_t *key, std::uint32_t key_len,
                     const BCIPHER_ALGORITHM *descriptor) noexcept;

/// Wipes and frees a key object, whatever the module state, and forgets it. It may be null.
void release(BCIPHER_KEY *&key) noexcept;

/// Whether a record names a cipher that can be worked with: a caller's own may hold anything.
template <class Context>
bool has_cipher(const Context &context) noexcept {
  const BCIPHER_ALGORITHM *const cipher = context.cipher.descriptor;
  return cipher != nullptr && modes::is_sound(*cipher);
}

/// Enciphers the buffer of a record into its state, which stays as it was when that is refused.
template <class Context>
void encipher_buffer(Context &context) noexcept {
  std::uint32_t len = 0;
  (void)BCIPHER_Encrypt(context.state, &len, context.buffer, context.cipher.descriptor->block_len,
                        &context.cipher, context.key, 0);
}

/// Enciphers `count` blocks straight from the message on top of `chain`, unless that is refused.
template <class Context>
void encipher_blocks(const Context &context, const std::uint8_t *from, std::size_t count,
                     std::uint8_t *chain) noexcept {
  if (modes::check_operation(&context.cipher, context.key) != ZEL_OK) return;
  bulk::Cipher(*context.key).serial(bulk::Chain::kCbcMac, nullptr, from, count, chain);
}

/// Takes a piece of the message in. A block is enciphered once it is whole and `behind` bytes more
/// are there: `one()` does it with the buffer, `many(from, count)` with blocks whose contents
/// nobody sees later. The last of them passes the buffer, which so holds what it always did.
template <class Context, class One, class Many>
void absorb(Context &context, modes::Run run, std::size_t behind, One one, Many many) noexcept {
  const std::size_t block_len = context.cipher.descriptor->block_len;
  std::size_t have = std::min<std::size_t>(context.count, block_len);
  const auto skip = [&run](std::size_t len) {
    run.bytes += len;
    run.len -= len;
  };
  while (have + run.len >= block_len + behind) {
    std::memcpy(context.buffer + have, run.bytes, block_len - have);
    skip(block_len - have);
    have = 0;
    one();
    if (run.len < 2 * block_len + behind) continue;
    const std::size_t count = (run.len - behind) / block_len - 1;
    many(run.bytes, count);
    skip(count * block_len);
  }
  if (run.len > 0) std::memcpy(context.buffer + have, run.bytes, run.len);
  context.count = static_cast<std::uint32_t>(have + run.len);
}

/// As much of the result as there is.
template <class Context>
void give(std::uint8_t *mac, std::size_t mac_len, const Context &context) noexcept {
  const std::size_t most = has_cipher(context) ? std::size_t{context.cipher.descriptor->block_len}
                                               : sizeof context.state;
  if (mac_len > 0) std::memcpy(mac, context.state, std::min(mac_len, most));
}

}  // namespace zel::mac
