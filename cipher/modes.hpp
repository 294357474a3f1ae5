// The ten confidentiality modes, each written once over a bulk::Cipher. NIST SP 800-38A.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cipher/bulk.hpp"

namespace zel::modes {

enum class Way : bool { kEncrypt, kDecrypt };

/// One call's share of a message; `out` may equal `in` and does not overlap it otherwise.
struct Piece {
  std::uint8_t *out;
  const std::uint8_t *in;
  std::size_t len;

  /// Goes on behind the first `done` bytes.
  void skip(std::size_t done) noexcept {
    out += done;
    in += done;
    len -= done;
  }
};

// Every mode fills all of `piece.out`; `chain` is the register of the context. ecb() and cbc()
// return how many trailing bytes did not fill a block and were only copied.

std::size_t ecb(Way way, const bulk::Cipher &cipher, Piece piece) noexcept;
std::size_t cbc(Way way, const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept;

/// Whether the message was longer than one block; otherwise it was only copied.
bool cbc_stealing(Way way, const bulk::Cipher &cipher, Piece piece,
                  const std::uint8_t *chain) noexcept;

void cfb_encrypt(const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept;
void cfb_decrypt(const bulk::Cipher &cipher, Piece piece, const std::uint8_t *chain) noexcept;
/// CFB in segments of 1 or 8 bits.
void cfb_segments(Way way, unsigned bits, const bulk::Cipher &cipher, Piece piece,
                  std::uint8_t *chain) noexcept;
/// CFB that stops and goes on anywhere; `used` counts the bytes of `chain` already used.
void cfb_stream(Way way, const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain,
                std::uint8_t &used) noexcept;

void ofb(const bulk::Cipher &cipher, Piece piece, std::uint8_t *chain) noexcept;
void ofb_byte(const bulk::Cipher &cipher, Piece piece, const std::uint8_t *chain) noexcept;
void ctr(const bulk::Cipher &cipher, Piece piece, std::uint8_t *counter) noexcept;
/// Counter mode whose counter is the last `field_len` bytes of the block, 1 to 4, and wraps within
/// them. A partial block uses up its key stream; a call of zero bytes does nothing.
void ctr_field(const bulk::Cipher &cipher, Piece piece, std::uint8_t *counter,
               std::size_t field_len) noexcept;

/// Whether the modes can work with a descriptor: a caller's own may hold anything.
bool is_sound(const BCIPHER_ALGORITHM &cipher) noexcept;

/// The checks that every operation with a context and a key begins with, in their order: state,
/// null objects, one descriptor for both, approved cipher in the verified service; then whether
/// the records hold what the modes can work with.
std::int32_t check_operation(const BCIPHER_CONTEXT *context, const BCIPHER_KEY *key) noexcept;

using bulk::copy;

/// What the modes can work on: where `out` and `in` overlap without being the same, everything is
/// copied to `out` first.
Piece separate(Piece piece) noexcept;

}  // namespace zel::modes
