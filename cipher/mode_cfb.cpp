// Cipher feedback: full blocks, segments of one byte or one bit, and the streaming form. NIST SP
// 800-38A, section 6.3.
#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/modes.hpp"

namespace zel::modes {
namespace {

using Block = Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]>;

/// The register moves up by `bits`, 1 or 8, and takes in the low bits of `segment`.
void shift_in(std::uint8_t *reg, std::size_t len, unsigned bits, unsigned segment) noexcept {
  for (std::size_t i = 0; i < len; ++i) {
    const unsigned next = i + 1 < len ? reg[i + 1] : segment << (8 - bits);
    reg[i] = static_cast<std::uint8_t>((unsigned{reg[i]} << bits) | (next >> (8 - bits)));
  }
}

void encrypt_segments(unsigned bits, const bulk::Cipher &cipher, Piece piece,
                      std::uint8_t *chain) noexcept {
  const std::size_t len = cipher.block_len();
  const unsigned mask = (1U << bits) - 1;
  Block stream;
  for (; piece.len > 0; piece.skip(1)) {
    const unsigned plain = *piece.in;
    unsigned result = 0;
    for (unsigned at = 8; at > 0;) {
      at -= bits;
      std::memcpy(*stream, chain, len);
      cipher.encrypt_block(*stream);
      const unsigned segment = (plain >> at & mask) ^ (unsigned{**stream} >> (8 - bits));
      shift_in(chain, len, bits, segment);
      result |= segment << at;
    }
    *piece.out = static_cast<std::uint8_t>(result);
  }
}

/// Every state of the register is a window of known ciphertext, so many are enciphered at once.
void decrypt_segments(unsigned bits, const bulk::Cipher &cipher, Piece piece,
                      std::uint8_t *chain) noexcept {
  constexpr std::size_t kWindows = 128;
  const std::size_t len = cipher.block_len();
  const std::size_t per_byte = 8 / bits;
  Wiped<std::uint8_t[kWindows * ZEL_MAX_BLOCK_LEN]> windows;
  std::uint8_t line[ZEL_MAX_BLOCK_LEN + kWindows + 1];  // register and ciphertext
  while (piece.len > 0) {
    const std::size_t now = std::min(piece.len, kWindows / per_byte);
    std::memcpy(line, chain, len);
    std::memcpy(line + len, piece.in, now);
    line[len + now] = 0;
    for (std::size_t w = 0; w < now * per_byte; ++w) {
      const std::uint8_t *const from = line + w / per_byte;
      const std::size_t shift = w % per_byte * bits;
      for (std::size_t i = 0; i < len; ++i)
        (*windows)[w * len + i] =
            static_cast<std::uint8_t>(((from[i] << 8 | from[i + 1]) << shift) >> 8);
    }
    cipher.encrypt(*windows, *windows, now * per_byte);
    for (std::size_t b = 0; b < now; ++b) {
      unsigned stream = 0;
      for (std::size_t w = b * per_byte; w < (b + 1) * per_byte; ++w)
        stream = stream << bits | unsigned{(*windows)[w * len]} >> (8 - bits);
      piece.out[b] = static_cast<std::uint8_t>(line[len + b] ^ stream);
    }
    std::memcpy(chain, line + now, len);
    piece.skip(now);
  }
}

}  // namespace

// Deliberate: after a partial segment the register takes in key stream where the standard would
// have ciphertext.
void cfb_encrypt(const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept {
  const std::size_t len = cipher.block_len();
  const std::size_t count = piece.len / len;
  cipher.serial(bulk::Chain::kCfbEncrypt, piece.out, piece.in, count, chain);
  piece.skip(count * len);
  if (piece.len == 0) return;
  Block stream;
  std::memcpy(*stream, chain, len);
  cipher.encrypt_block(*stream);
  xor_bytes(piece.out, piece.in, *stream, piece.len);
  std::memmove(chain, chain + piece.len, len - piece.len);
  std::memcpy(chain + len - piece.len, *stream, piece.len);
}

// Deliberate: the register of the context stays as it was.
void cfb_decrypt(const bulk::Cipher &cipher, Piece piece, const std::uint8_t *chain) noexcept {
  const std::size_t len = cipher.block_len();
  const std::size_t count = piece.len / len;
  Block reg;
  std::memcpy(*reg, chain, len);
  cipher.cfb_decrypt(piece.out, piece.in, count, *reg);
  piece.skip(count * len);
  if (piece.len == 0) return;
  cipher.encrypt_block(*reg);
  xor_bytes(piece.out, piece.in, *reg, piece.len);
}

void cfb_segments(Way way, unsigned bits, const bulk::Cipher &cipher, Piece piece,
                  std::uint8_t *chain) noexcept {
  if (way == Way::kEncrypt) {
    encrypt_segments(bits, cipher, piece, chain);
  } else {
    decrypt_segments(bits, cipher, piece, chain);
  }
}

void cfb_stream(Way way, const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain,
                std::uint8_t &used) noexcept {
  const std::size_t len = cipher.block_len();
  std::size_t pos = used % len;
  const auto bytes = [&](std::size_t upto) {
    for (; pos < upto && piece.len > 0; ++pos, piece.skip(1)) {
      const std::uint8_t given = *piece.in;
      const auto result = static_cast<std::uint8_t>(given ^ chain[pos]);
      *piece.out = result;
      chain[pos] = way == Way::kEncrypt ? result : given;
    }
  };
  if (pos > 0) bytes(len);
  const std::size_t count = piece.len / len;
  if (way == Way::kEncrypt) {
    cipher.serial(bulk::Chain::kCfbEncrypt, piece.out, piece.in, count, chain);
  } else {
    cipher.cfb_decrypt(piece.out, piece.in, count, chain);
  }
  piece.skip(count * len);
  if (piece.len > 0) {
    cipher.encrypt_block(chain);
    pos = 0;
    bytes(len);
  }
  used = static_cast<std::uint8_t>(pos % len);
}

}  // namespace zel::modes
