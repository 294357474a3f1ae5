// Counter mode, over a counter as wide as the block or narrower. NIST SP 800-38A, section 6.5.
#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/modes.hpp"

namespace zel::modes {

// Deliberate: a call of zero bytes uses up a block of key stream, as a partial block does.
void ctr(const bulk::Cipher &cipher, Piece piece, std::uint8_t *counter) noexcept {
  const std::size_t len = cipher.block_len();
  const std::size_t count = piece.len / len;
  cipher.ctr(piece.out, piece.in, count, counter);
  piece.skip(count * len);
  if (piece.len == 0 && count > 0) return;
  Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]> stream;
  std::memcpy(*stream, counter, len);
  cipher.encrypt_block(*stream);
  xor_bytes(piece.out, piece.in, *stream, piece.len);
  bulk::increment(counter, len);
}

void ctr_field(const bulk::Cipher &cipher, Piece piece, std::uint8_t *counter,
               std::size_t field_len) noexcept {
  constexpr unsigned kBitsPerByte = 8;
  const std::size_t len = cipher.block_len();
  const std::size_t fixed_len = len - field_len;
  std::uint8_t *const field = counter + fixed_len;
  std::uint8_t fixed[ZEL_MAX_BLOCK_LEN];
  std::memcpy(fixed, counter, fixed_len);
  while (piece.len >= len) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < field_len; ++i)
      value = (value << kBitsPerByte) | field[i];
    const std::uint64_t to_wrap = (std::uint64_t{1} << (kBitsPerByte * field_len)) - value;
    const std::size_t now = std::min<std::size_t>(piece.len / len, to_wrap);
    cipher.ctr(piece.out, piece.in, now, counter);
    std::memcpy(counter, fixed, fixed_len);  // where the carry went when the field wrapped
    piece.skip(now * len);
  }
  if (piece.len == 0) return;
  Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]> stream;
  std::memcpy(*stream, counter, len);
  cipher.encrypt_block(*stream);
  xor_bytes(piece.out, piece.in, *stream, piece.len);
  bulk::increment(field, field_len);
}

}  // namespace zel::modes

using namespace zel;

uint32_t BCIPHER_EncryptCTR(uint8_t *data, uint32_t len, const void *round_keys, uint8_t *counter,
                            uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block) {
  if (!bulk::fits(block_len, encrypt_block, nullptr)) return len;
  modes::ctr(bulk::Cipher(block_len, encrypt_block, nullptr, round_keys), {data, data, len},
             counter);
  return 0;
}
