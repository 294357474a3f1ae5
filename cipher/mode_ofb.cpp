// Output feedback. NIST SP 800-38A, section 6.4.
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/modes.hpp"

namespace zel::modes {
namespace {

/// Room for the longest block, whatever the caller's register has.
using Register = Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]>;

}  // namespace

// Deliberate: a call of zero bytes uses up a block of key stream, as a partial block does.
void ofb(const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept {
  const std::size_t len = cipher.block_len();
  const std::size_t count = piece.len / len;
  cipher.serial(bulk::Chain::kOfb, piece.out, piece.in, count, chain);
  piece.skip(count * len);
  if (piece.len == 0 && count > 0) return;
  Register held;
  std::memcpy(*held, chain, len);
  cipher.encrypt_block(*held);
  xor_bytes(piece.out, piece.in, *held, piece.len);
  std::memcpy(chain, *held, len);
}

// Deliberate: only a copy of the register moves, so that every call starts from the IV again.
void ofb_byte(const bulk::Cipher &cipher, Piece piece, const std::uint8_t *chain) noexcept {
  Register held;
  std::uint8_t *const reg = *held;
  std::memcpy(reg, chain, cipher.block_len());
  for (; piece.len > 0; piece.skip(1)) {
    cipher.encrypt_block(reg);
    *piece.out = static_cast<std::uint8_t>(*piece.in ^ *reg);
  }
}

}  // namespace zel::modes

using namespace zel;

uint32_t BCIPHER_EncryptOFB(uint8_t *data, uint32_t len, const void *round_keys, uint8_t *chain,
                            uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block) {
  if (!bulk::fits(block_len, encrypt_block, nullptr)) return len;
  modes::ofb(bulk::Cipher(block_len, encrypt_block, nullptr, round_keys), {data, data, len}, chain);
  return 0;
}

uint32_t BCIPHER_EncryptOFB_BYTE(uint8_t *data, uint32_t len, const void *round_keys,
                                 const uint8_t *chain, uint32_t block_len,
                                 BCIPHER_BLOCK_FN encrypt_block) {
  if (!bulk::fits(block_len, encrypt_block, nullptr)) return len;
  modes::ofb_byte(bulk::Cipher(block_len, encrypt_block, nullptr, round_keys), {data, data, len},
                  chain);
  return 0;
}
