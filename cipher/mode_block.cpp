// Modes of whole blocks: ECB, CBC, and CBC with ciphertext stealing. NIST SP 800-38A, sections 6.1
// and 6.2, and its addendum.
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/modes.hpp"

namespace zel::modes {
namespace {

using Block = Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]>;

/// The last one or two blocks, the second of which has `tail` bytes, 1 to a full block. `before` is
/// the ciphertext block in front of them.
void steal_encrypt(const bulk::Cipher &cipher, Piece last, std::size_t tail,
                   std::uint8_t *before) noexcept {
  const std::size_t len = cipher.block_len();
  Block padded;
  std::memset(*padded, 0, len);
  std::memcpy(*padded, last.in + len, tail);
  cipher.serial(bulk::Chain::kCbcEncrypt, last.out, last.in, 1, before);
  std::memcpy(last.out + len, last.out, tail);
  cipher.serial(bulk::Chain::kCbcEncrypt, last.out, *padded, 1, before);
}

void steal_decrypt(const bulk::Cipher &cipher, Piece last, std::size_t tail,
                   const std::uint8_t *before) noexcept {
  const std::size_t len = cipher.block_len();
  Block masked;  // the padded last plaintext block, still under the stolen ciphertext
  Block stolen;
  cipher.decrypt(*masked, last.in, 1);
  std::memcpy(*stolen, last.in + len, tail);
  std::memcpy(*stolen + tail, *masked + tail, len - tail);
  xor_bytes(last.out + len, *masked, *stolen, tail);
  cipher.decrypt(*stolen, *stolen, 1);
  xor_bytes(last.out, *stolen, before, len);
}

}  // namespace

std::size_t ecb(Way way, const bulk::Cipher &cipher, Piece piece) noexcept {
  const std::size_t count = piece.len / cipher.block_len();
  if (way == Way::kEncrypt) {
    cipher.encrypt(piece.out, piece.in, count);
  } else {
    cipher.decrypt(piece.out, piece.in, count);
  }
  piece.skip(count * cipher.block_len());
  copy(piece.out, piece.in, piece.len);
  return piece.len;
}

std::size_t cbc(Way way, const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept {
  const std::size_t count = piece.len / cipher.block_len();
  if (way == Way::kEncrypt) {
    cipher.serial(bulk::Chain::kCbcEncrypt, piece.out, piece.in, count, chain);
  } else {
    cipher.cbc_decrypt(piece.out, piece.in, count, chain);
  }
  piece.skip(count * cipher.block_len());
  copy(piece.out, piece.in, piece.len);
  return piece.len;
}

// Deliberate: the last two blocks are swapped even when the last one is full, and the register is
// only read. (The addendum calls this CS3 but for the register.)
bool cbc_stealing(Way way, const bulk::Cipher &cipher, Piece piece,
                  const std::uint8_t *chain) noexcept {
  const std::size_t len = cipher.block_len();
  if (piece.len <= len) {
    copy(piece.out, piece.in, piece.len);
    return false;
  }
  const std::size_t before_last_two = (piece.len - 1) / len - 1;
  Block held;
  std::uint8_t *const before = *held;
  std::memcpy(before, chain, len);

  if (way == Way::kEncrypt) {
    cipher.serial(bulk::Chain::kCbcEncrypt, piece.out, piece.in, before_last_two, before);
  } else {
    cipher.cbc_decrypt(piece.out, piece.in, before_last_two, before);
  }
  piece.skip(before_last_two * len);
  const std::size_t tail = piece.len - len;
  if (way == Way::kEncrypt) {
    steal_encrypt(cipher, piece, tail, before);
  } else {
    steal_decrypt(cipher, piece, tail, before);
  }
  return true;
}

}  // namespace zel::modes
