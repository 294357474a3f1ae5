// The key objects of CMAC and DAC.
#include "cipher/block_mac.hpp"

#include <cstdlib>

#include "base/wipe.hpp"

namespace zel {

BCIPHER_KEY *mac::new_key(const std::uint8_t *key, std::uint32_t key_len,
                          const BCIPHER_ALGORITHM *descriptor) noexcept {
  BCIPHER_KEY *object = BCIPHER_NewKey(descriptor);
  if (object != nullptr && BCIPHER_MakeKey(object, key, key_len, descriptor) != ZEL_OK)
    release(object);
  return object;
}

void mac::release(BCIPHER_KEY *&key) noexcept {
  if (key == nullptr) return;
  if (key->round_keys != nullptr) wipe(key->round_keys, key->descriptor->round_keys_len);
  wipe(key->key_bytes, sizeof key->key_bytes);
  std::free(key->round_keys);
  std::free(key);
  key = nullptr;
}

}  // namespace zel
