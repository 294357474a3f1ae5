// GCM, GMAC and the building blocks under their public names. NIST SP 800-38D.
#include "cipher/auth.hpp"

#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "cipher/ghash.hpp"
#include "zel_cc/bcipher_auth.h"

namespace zel::modes {
namespace {

using ghash::kBlockLen;

/// Bytes of the counter that inc32 changes.
constexpr std::size_t kCounterLen = 4;
/// A message passes the cipher and the hash in pieces that stay in the nearest cache.
constexpr std::size_t kPieceLen = 8192;
/// Messages of as many blocks are enciphered in one call together with H and the mask of the tag.
constexpr std::size_t kShortBlocks = 6;

constexpr std::size_t blocks_in(std::size_t len) noexcept {
  return (len + kBlockLen - 1) / kBlockLen;
}

/// The blocks that a message begins with: H, the mask of the tag, and if the message is short all
/// of its key stream. They are enciphered together.
struct Start {
  std::uint8_t blocks[(2 + kShortBlocks) * kBlockLen];
  std::uint8_t counter[kBlockLen];

  std::uint8_t *hash_key() noexcept { return blocks; }
  std::uint8_t *mask() noexcept { return blocks + kBlockLen; }
  std::uint8_t *stream() noexcept { return blocks + 2 * kBlockLen; }
};

/// Section 7.1, steps 1 to 3, for a nonce of 96 bits: the first counters are known before H is.
void begin_with_usual_nonce(const bulk::Cipher &cipher, Start &start, const std::uint8_t *nonce,
                            std::size_t stream_blocks) noexcept {
  const auto count_to = [nonce](std::uint8_t *block, std::uint32_t i) {
    std::memcpy(block, nonce, kBlockLen - kCounterLen);
    store_be32(block + kBlockLen - kCounterLen, i);
  };
  std::memset(start.hash_key(), 0, kBlockLen);
  for (std::uint32_t i = 0; i < 1 + stream_blocks; ++i)
    count_to(start.mask() + i * kBlockLen, 1 + i);
  count_to(start.counter, 2);
  cipher.encrypt(start.blocks, start.blocks, 2 + stream_blocks);
}

/// The same for any other nonce, which is hashed.
void begin_with_hashed_nonce(const bulk::Cipher &cipher, Start &start, ghash::Hash &hash,
                             Run nonce) noexcept {
  hash.absorb_padded(nonce.bytes, nonce.len);
  hash.absorb_lengths(0, nonce.len);
  std::memcpy(start.mask(), hash.value(), kBlockLen);
  std::memcpy(start.counter, hash.value(), kBlockLen);
  bulk::increment(start.counter + kBlockLen - kCounterLen, kCounterLen);
  cipher.encrypt_block(start.mask());
  hash.restart();
}

/// Hashes the ciphertext of a piece, before or after `encipher` makes the one side of the other.
template <class Encipher>
void with_hash(Way way, ghash::Hash &hash, Piece piece, Encipher encipher) noexcept {
  if (way == Way::kDecrypt) hash.absorb_padded(piece.in, piece.len);
  encipher(piece);
  if (way == Way::kEncrypt) hash.absorb_padded(piece.out, piece.len);
}

}  // namespace

void gcm(Way way, const bulk::Cipher &cipher, Piece piece, Run nonce, Run aad,
         std::uint8_t *tag) noexcept {
  constexpr std::size_t kUsualNonceLen = 12;
  // Deliberate: a nonce of zero bytes is taken, and hashed like any other; section 5.2.1.1 has none.
  const bool usual = nonce.len == kUsualNonceLen;
  const std::size_t len = piece.len;
  const bool at_once = usual && blocks_in(len) <= kShortBlocks;
  Wiped<Start> start;
  if (usual) {
    begin_with_usual_nonce(cipher, *start, nonce.bytes, at_once ? blocks_in(len) : 0);
  } else {
    std::memset(start->hash_key(), 0, kBlockLen);
    cipher.encrypt_block(start->hash_key());
  }
  ghash::Hash hash(start->hash_key(), blocks_in(aad.len) + blocks_in(len));
  if (!usual) begin_with_hashed_nonce(cipher, *start, hash, nonce);

  hash.absorb_padded(aad.bytes, aad.len);
  if (at_once) {
    with_hash(way, hash, piece,
              [&](Piece now) { xor_bytes(now.out, now.in, start->stream(), now.len); });
  } else {
    while (piece.len > 0) {
      const std::size_t now = std::min(piece.len, kPieceLen);
      with_hash(way, hash, {piece.out, piece.in, now},
                [&](Piece part) { ctr_field(cipher, part, start->counter, kCounterLen); });
      piece.skip(now);
    }
  }
  hash.absorb_lengths(aad.len, len);
  xor_bytes(tag, hash.value(), start->mask(), kMaxTagLen);
}

}  // namespace zel::modes

namespace zel {
namespace {

std::int32_t gmac(modes::Way way, std::uint8_t *data, std::uint32_t len, std::uint8_t *tag,
                  modes::Run aad, const void *round_keys, modes::Run iv, std::uint32_t block_len,
                  BCIPHER_BLOCK_FN encrypt_block) noexcept {
  if (block_len != ghash::kBlockLen || any_null(tag, round_keys)) return ZEL_ERR_GENERIC;
  if (!bulk::fits(block_len, encrypt_block, nullptr)) return ZEL_ERR_GENERIC;
  if (modes::any_missing(modes::Run{data, len}, aad, iv)) return ZEL_ERR_GENERIC;
  const bulk::Cipher cipher(block_len, encrypt_block, nullptr, round_keys);
  modes::gcm(way, cipher, {data, data, len}, iv, aad, tag);
  return ZEL_OK;
}

/// z = x * y in the field of 8 * len bits with the polynomial's bits 11100001 on top, bit by bit.
/// SP 800-38D, algorithm 1.
void multiply_by_bits(std::uint8_t *z, const std::uint8_t *x, const std::uint8_t *y,
                      std::size_t len) noexcept {
  constexpr unsigned kBitsPerByte = 8;
  constexpr unsigned kReduction = 0xe1;
  Wiped<std::uint8_t[ZEL_MAX_BLOCK_LEN]> product, shifted;
  std::memset(*product, 0, len);
  std::memcpy(*shifted, y, len);
  for (std::size_t i = 0; i < len * kBitsPerByte; ++i) {
    const unsigned bit =
        (unsigned{x[i / kBitsPerByte]} >> (kBitsPerByte - 1 - i % kBitsPerByte)) & 1U;
    const unsigned take = ct::mask_of_bit(bit);
    unsigned fell_out = 0;
    for (std::size_t j = 0; j < len; ++j) {
      const unsigned byte = (*shifted)[j];
      (*product)[j] = static_cast<std::uint8_t>((*product)[j] ^ (byte & take));
      (*shifted)[j] = static_cast<std::uint8_t>((byte >> 1) | (fell_out << (kBitsPerByte - 1)));
      fell_out = byte & 1U;
    }
    (*shifted)[0] =
        static_cast<std::uint8_t>((*shifted)[0] ^ (kReduction & ct::mask_of_bit(fell_out)));
  }
  std::memcpy(z, *product, len);
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t GMAC_Encrypt(uint8_t *data, uint32_t len, uint8_t *tag, const uint8_t *aad,
                     uint32_t aad_len, const void *round_keys, const uint8_t *iv, uint32_t iv_len,
                     uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block) {
  return gmac(modes::Way::kEncrypt, data, len, tag, {aad, aad_len}, round_keys, {iv, iv_len},
              block_len, encrypt_block);
}

int32_t GMAC_Decrypt(uint8_t *data, uint32_t len, uint8_t *tag, const uint8_t *aad,
                     uint32_t aad_len, const void *round_keys, const uint8_t *iv, uint32_t iv_len,
                     uint32_t block_len, BCIPHER_BLOCK_FN encrypt_block) {
  return gmac(modes::Way::kDecrypt, data, len, tag, {aad, aad_len}, round_keys, {iv, iv_len},
              block_len, encrypt_block);
}

int32_t GMAC_GHash(uint8_t *y, const uint8_t *x, uint32_t len, const uint8_t *h,
                   uint32_t block_len) {
  if (!bulk::is_block_len(block_len) || any_null(y, h) || modes::any_missing(modes::Run{x, len}))
    return ZEL_ERR_GENERIC;
  const std::size_t count = len / block_len;
  if (block_len == ghash::kBlockLen) {
    ghash::Hash hash(h, count);
    hash.absorb_padded(x, count * block_len);
    std::memcpy(y, hash.value(), block_len);
    return ZEL_OK;
  }
  Wiped<uint8_t[ZEL_MAX_BLOCK_LEN]> sum;
  std::memset(*sum, 0, block_len);
  for (std::size_t i = 0; i < count; ++i) {
    xor_bytes(*sum, *sum, x + i * block_len, block_len);
    multiply_by_bits(*sum, *sum, h, block_len);
  }
  std::memcpy(y, *sum, block_len);
  return ZEL_OK;
}

int32_t GMAC_Mult(uint8_t *z, const uint8_t *x, const uint8_t *y, uint32_t block_len) {
  if (!bulk::is_block_len(block_len) || any_null(z, x, y)) return ZEL_ERR_GENERIC;
  if (block_len == ghash::kBlockLen) return GMAC_GHash(z, x, block_len, y, block_len);
  multiply_by_bits(z, x, y, block_len);
  return ZEL_OK;
}

int32_t GMAC_GCTR(uint8_t *out, uint8_t *counter, const uint8_t *in, uint32_t len,
                  uint32_t block_len, const void *round_keys, BCIPHER_BLOCK_FN encrypt_block) {
  if (len == 0) return ZEL_OK;
  if (!bulk::fits(block_len, encrypt_block, nullptr) || block_len < modes::kCounterLen)
    return ZEL_ERR_GENERIC;
  if (any_null(out, counter, in, round_keys)) return ZEL_ERR_GENERIC;
  const bulk::Cipher cipher(block_len, encrypt_block, nullptr, round_keys);
  const std::size_t but_last = (len - 1) / block_len * block_len;
  modes::Piece piece = modes::separate({out, in, len});
  modes::ctr_field(cipher, {out, piece.in, but_last}, counter, modes::kCounterLen);
  piece.skip(but_last);
  // The counter is left at the last block, not behind it.
  Wiped<uint8_t[ZEL_MAX_BLOCK_LEN]> stream;
  std::memcpy(*stream, counter, block_len);
  cipher.encrypt_block(*stream);
  xor_bytes(piece.out, piece.in, *stream, piece.len);
  return ZEL_OK;
}

int32_t GMAC_Inc(uint8_t *block, uint32_t block_len, uint32_t s) {
  if (block == nullptr || s > block_len) return ZEL_ERR_GENERIC;
  bulk::increment(block + (block_len - s), s);
  return ZEL_OK;
}
