// Many blocks at once: the seam between the modes, which know no algorithm, and the fast paths of
// the algorithms, which know no mode.
//
// An algorithm that has a faster way for several blocks exports an Ops and gets a row in bulk.cpp,
// keyed by the address of its encryption function: some callers have nothing but that address. The
// modes go through Cipher, which takes whatever there is and falls back to the block functions, so
// that a caller's own cipher works alike.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "zel_cc/bcipher.h"

namespace zel::bulk {

/// Whether a cipher with blocks of `len` bytes fits the registers.
constexpr bool is_block_len(std::size_t len) noexcept {
  return len >= 1 && len <= ZEL_MAX_BLOCK_LEN;
}

/// What a serial mode does with each block; `chain` is its register.
enum class Chain : std::uint8_t {
  kCbcEncrypt,  ///< chain = E(chain ^ in), out = chain
  kCbcMac,      ///< chain = E(chain ^ in); `out` is not used
  kCfbEncrypt,  ///< chain = E(chain) ^ in, out = chain
  kOfb,         ///< chain = E(chain), out = chain ^ in
};

/// `count` whole blocks; `out` may equal `in` and does not overlap it otherwise. Nothing has an
/// alignment.
using BlocksFn = void (*)(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *round_keys);
/// The same with a register, which is left as the mode's next call needs it.
using ChainedFn = void (*)(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                           const void *round_keys, std::uint8_t *chain);
using SerialFn = void (*)(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                          const void *round_keys, std::uint8_t *chain);

/// to ^= from, one block, by words of four bytes: the scalar ciphers store such words, and a wider
/// load would have to wait for them.
inline void add_block(std::uint8_t *to, const std::uint8_t *from, std::size_t len) noexcept {
  std::size_t i = 0;
  for (; i + 4 <= len; i += 4)
    store_le32(to + i, load_le32(to + i) ^ load_le32(from + i));
  for (; i < len; ++i)
    to[i] = static_cast<std::uint8_t>(to[i] ^ from[i]);
}

/// The serial modes over `encipher(block)`, which enciphers one block of `len` bytes in place.
/// `len` is a number, or a std::integral_constant where the caller knows it.
template <class Len, class Encipher>
void serial_blocks(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                   std::uint8_t *chain, Len len, Encipher encipher) noexcept {
  Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]> held;
  std::uint8_t *const reg = *held;
  std::memcpy(reg, chain, len);
  for (; count > 0; --count, in += len) {
    if (kind == Chain::kCbcEncrypt || kind == Chain::kCbcMac) add_block(reg, in, len);
    encipher(reg);
    if (kind == Chain::kCbcMac) continue;
    if (kind == Chain::kCfbEncrypt) add_block(reg, in, len);
    if (kind == Chain::kOfb) {
      xor_bytes(out, reg, in, len);
    } else {
      std::memcpy(out, reg, len);
    }
    out += len;
  }
  std::memcpy(chain, reg, len);
}

/// Counter mode, and a CBC-MAC of what goes in or of what comes out, as CCM needs them for each
/// way. Both chains are independent of each other, so one hides behind the other.
enum class MacOf : bool { kInput, kOutput };
using CounterMacFn = void (*)(MacOf what, std::uint8_t *out, const std::uint8_t *in,
                              std::size_t count, const void *round_keys, std::uint8_t *counter,
                              std::uint8_t *mac);

/// The fast paths of one algorithm. Any of them may be null: Cipher then makes do with the others.
struct Ops {
  BlocksFn encrypt = nullptr;
  BlocksFn decrypt = nullptr;
  ChainedFn ctr = nullptr;          ///< `chain` is the counter, big-endian over the whole block
  ChainedFn cbc_decrypt = nullptr;  ///< `chain` becomes the last ciphertext block
  SerialFn serial = nullptr;
  CounterMacFn counter_mac = nullptr;  ///< `counter` as for `ctr`
};

/// Whether blocks of `block_len` bytes can go through these block functions. Those of this library
/// take their own length and no other; of a caller's own, nothing but the limits is known.
/// `decryption` may be null.
bool fits(std::size_t block_len, BCIPHER_BLOCK_FN encryption, BCIPHER_BLOCK_FN decryption) noexcept;

/// Copies between buffers that may be the same one, or overlap.
inline void copy(std::uint8_t *out, const std::uint8_t *in, std::size_t len) noexcept {
  if (out != in && len != 0) std::memmove(out, in, len);
}

/// A keyed cipher as the modes use it. Every operation takes whole blocks. It takes the fast paths
/// of the encryption function if the block length is that function's own, and those for decryption
/// if the decryption function is of the same cipher; in the verified service, if it is approved.
class Cipher {
 public:
  /// fits() must have said so. `decryption` may be null where nothing is deciphered.
  Cipher(std::size_t len, BCIPHER_BLOCK_FN encryption, BCIPHER_BLOCK_FN decryption,
         const void *keys) noexcept;

  explicit Cipher(const BCIPHER_KEY &key) noexcept
      : Cipher(key.descriptor->block_len, key.descriptor->EncryptBlock,
               key.descriptor->DecryptBlock, key.round_keys) {}

  std::size_t block_len() const noexcept { return block_len_; }

  /// Enciphers one block in place.
  void encrypt_block(std::uint8_t *block) const noexcept { encrypt_block_(block, round_keys_); }
  /// Deciphers one block in place.
  void decrypt_block(std::uint8_t *block) const noexcept { decrypt_block_(block, round_keys_); }

  void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept;
  void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept;
  /// out = in ^ E(counter), E(counter + 1), ...; the counter is advanced by `count`.
  void ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
           std::uint8_t *counter) const noexcept;
  /// out = D(in) ^ the block before; the register becomes the last block of `in`.
  void cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                   std::uint8_t *chain) const noexcept;
  /// out = in ^ E(the block before); the register becomes the last block of `in`.
  void cfb_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                   std::uint8_t *chain) const noexcept;
  /// ctr() with a CBC-MAC of one of its sides; `out` may equal `in`.
  void counter_mac(MacOf what, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                   std::uint8_t *counter, std::uint8_t *mac) const noexcept;
  /// Block after block, as `kind` says.
  void serial(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
              std::uint8_t *chain) const noexcept;

 private:
  std::size_t block_len_;
  BCIPHER_BLOCK_FN encrypt_block_;
  BCIPHER_BLOCK_FN decrypt_block_;
  const void *round_keys_;
  const Ops *forth_;  ///< for all that enciphers
  const Ops *back_;
};

/// Adds 1 to a big-endian number that wraps to zero.
inline void increment(std::uint8_t *counter, std::size_t len) noexcept {
  while (len > 0 && ++counter[--len] == 0) {
  }
}

}  // namespace zel::bulk
