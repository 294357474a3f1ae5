// The block ciphers and modes that the library offers, by the names that openssl has for them.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "zel_cc/bcipher.h"

namespace zel::tool {

/// A cipher and the lengths of key, in bytes, that it takes here.
struct Cipher {
  std::string_view name;
  const BCIPHER_ALGORITHM *descriptor;  ///< null for RC4, which has no blocks and no modes
  std::size_t min_key;
  std::size_t max_key;
  std::size_t key_step;
  bool approved;
  std::string_view standard;
};

/// Every cipher, each under one name.
std::span<const Cipher> all_ciphers();

struct Mode {
  std::string_view name;
  ZEL_MODE number;
  bool pads;           ///< the last piece is padded to whole blocks
  bool whole_message;  ///< does not chain from call to call: the message goes in one piece
};

std::span<const Mode> all_modes();

/// "aria-128-cbc" taken apart. The mode is null for RC4.
struct CipherMode {
  const Cipher *cipher;
  const Mode *mode;
};

/// A `Failure` that lists what there is when the name is not one of a cipher and a mode.
CipherMode find_cipher_mode(const std::string &name);

/// A `Failure` when the cipher does not take a key of `len` bytes.
void check_key_len(const Cipher &cipher, std::size_t len);

/// A key object that is wiped before it is released.
struct KeyDeleter {
  void operator()(BCIPHER_KEY *key) const noexcept {
    BCIPHER_WipeKey(key);
    BCIPHER_DelKey(key);
  }
};
using CipherKey = std::unique_ptr<BCIPHER_KEY, KeyDeleter>;

/// Loads a key. `key_len` is what the cipher's schedule takes: RC2 packs two numbers into it.
CipherKey load_key(const Cipher &cipher, std::span<const std::uint8_t> key, std::uint32_t key_len);

}  // namespace zel::tool
