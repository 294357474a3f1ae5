// CCM: a CBC-MAC over nonce, associated data and message, and counter mode. NIST SP 800-38C.
#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "cipher/auth.hpp"
#include "zel_cc/bcipher_auth.h"

namespace zel::modes {
namespace {

constexpr std::size_t kBlockLen = kAuthBlockLen;
/// A message passes the two halves of the mode in pieces that stay in the nearest cache.
constexpr std::size_t kPieceLen = 4096;
/// The counter and the length of the message are numbers of 32 bits, whatever their fields hold.
constexpr std::size_t kNumberLen = 4;
constexpr unsigned kBitsPerByte = 8;

/// Bytes of the fields for the length and the counter.
constexpr std::size_t field_len(std::size_t nonce_len) noexcept {
  return kBlockLen - 1 - nonce_len;
}
constexpr bool is_tag_len(std::size_t len) noexcept {
  return len % 2 == 0 && len >= 4 && len <= 16;
}
constexpr bool is_nonce_len(std::size_t len) noexcept { return len >= 7 && len <= 13; }

/// The low bytes of a number, big-endian, and zero in front of its four.
void write_number(std::uint8_t *to, std::size_t len, std::uint32_t value) noexcept {
  for (; len > 0; value >>= kBitsPerByte)
    to[--len] = static_cast<std::uint8_t>(value);
}

/// B0. Appendix A.2.1. Deliberate: a length that its field cannot hold loses its upper bytes.
void first_block(std::uint8_t *block, Run nonce, bool has_aad, std::uint32_t len,
                 std::size_t tag_len) noexcept {
  constexpr std::size_t kHasAad = 0x40, kThreeBits = 7;
  const std::size_t flags = (has_aad ? kHasAad : 0) | (((tag_len - 2) / 2) & kThreeBits) << 3 |
                            ((field_len(nonce.len) - 1) & kThreeBits);
  block[0] = static_cast<std::uint8_t>(flags);
  if (nonce.len > 0) std::memcpy(block + 1, nonce.bytes, nonce.len);
  write_number(block + 1 + nonce.len, field_len(nonce.len), len);
}

/// The encoded length of the associated data, in up to 6 bytes. Appendix A.2.2.
std::size_t encode_aad_len(std::uint8_t *to, std::uint32_t len) noexcept {
  constexpr std::uint32_t kMostInTwoBytes = 0xfeff;
  if (len <= kMostInTwoBytes) {
    write_number(to, 2, len);
    return 2;
  }
  to[0] = 0xff;
  to[1] = 0xfe;
  store_be32(to + 2, len);
  return 6;
}

/// A counter block. Appendix A.3.
void counter_block(std::uint8_t *block, Run nonce, std::size_t counter_len,
                   std::uint32_t i) noexcept {
  block[0] = static_cast<std::uint8_t>((counter_len - 1) & 7);
  if (nonce.len > 0) std::memcpy(block + 1, nonce.bytes, nonce.len);
  write_number(block + 1 + nonce.len, counter_len, i);
}

bool is_block_of_ccm(std::size_t block_len, BCIPHER_BLOCK_FN encrypt_block) noexcept {
  return block_len == kBlockLen && bulk::fits(block_len, encrypt_block, nullptr);
}

/// Both halves of the mode over one message. Appendix A.2 and sections 6.1 and 6.2.
class Ccm {
 public:
  Ccm(const bulk::Cipher &cipher, Run nonce, Run aad, std::size_t len, std::size_t tag_len) noexcept
      : cipher_(cipher), counter_len_(std::min(field_len(nonce.len), kNumberLen)) {
    counter_block(mask_->bytes, nonce, field_len(nonce.len), 0);
    counter_block(counter_->bytes, nonce, field_len(nonce.len), 1);
    cipher_.encrypt_block(mask_->bytes);
    Block block;
    first_block(block.bytes, nonce, aad.len > 0, static_cast<std::uint32_t>(len), tag_len);
    absorb_padded({block.bytes, kBlockLen});
    if (aad.len == 0) return;
    const std::size_t used = encode_aad_len(block.bytes, static_cast<std::uint32_t>(aad.len));
    const std::size_t first = std::min(aad.len, kBlockLen - used);
    std::memcpy(block.bytes + used, aad.bytes, first);
    absorb_padded({block.bytes, used + first});
    absorb_padded({aad.bytes + first, aad.len - first});
  }

  /// All of the message.
  void run(Way way, Piece piece) noexcept {
    const auto what = way == Way::kEncrypt ? bulk::MacOf::kInput : bulk::MacOf::kOutput;
    // Where the counter stays inside its field no wrap has to be watched for.
    const std::size_t count = piece.len / kBlockLen;
    if ((count + 1) >> (kBitsPerByte * counter_len_) == 0) {
      cipher_.counter_mac(what, piece.out, piece.in, count, counter_->bytes, mac_->bytes);
      piece.skip(count * kBlockLen);
    }
    while (piece.len > 0) {
      const std::size_t now = std::min(piece.len, kPieceLen);
      if (way == Way::kEncrypt) absorb_padded({piece.in, now});
      ctr_field(cipher_, {piece.out, piece.in, now}, counter_->bytes, counter_len_);
      if (way == Way::kDecrypt) absorb_padded({piece.out, now});
      piece.skip(now);
    }
  }

  void give_tag(std::uint8_t *tag, std::size_t len) const noexcept {
    xor_bytes(tag, mac_->bytes, mask_->bytes, len);
  }

 private:
  struct Block {
    std::uint8_t bytes[kBlockLen];
  };

  /// Whole blocks; a partial one behind them is filled up with zero bytes.
  void absorb_padded(Run run) noexcept {
    const std::size_t count = run.len / kBlockLen;
    const std::size_t rest = run.len % kBlockLen;
    cipher_.serial(bulk::Chain::kCbcMac, nullptr, run.bytes, count, mac_->bytes);
    if (rest == 0) return;
    Wiped<Block> last(Block{});
    std::memcpy(last->bytes, run.bytes + count * kBlockLen, rest);
    cipher_.serial(bulk::Chain::kCbcMac, nullptr, last->bytes, 1, mac_->bytes);
  }

  const bulk::Cipher &cipher_;
  std::size_t counter_len_;
  Wiped<Block> mac_{Block{}};
  Wiped<Block> mask_;  ///< the key stream's first block, which is the tag's
  Wiped<Block> counter_;
};

}  // namespace

std::int32_t ccm_encrypt(const bulk::Cipher &cipher, Piece piece, Run nonce, Run aad,
                         std::uint8_t *tag, std::size_t tag_len) noexcept {
  if (!is_tag_len(tag_len)) return ZEL_ERR_CCM_TAG_LEN;
  if (!is_nonce_len(nonce.len)) return ZEL_ERR_CCM_NONCE_LEN;
  Ccm ccm(cipher, nonce, aad, piece.len, tag_len);
  ccm.run(Way::kEncrypt, piece);
  ccm.give_tag(tag, tag_len);
  return ZEL_OK;
}

std::int32_t ccm_decrypt(const bulk::Cipher &cipher, std::uint8_t *data, std::size_t len, Run nonce,
                         Run aad, const std::uint8_t *tag, std::size_t tag_len) noexcept {
  // Deliberate: a message without payload never passes, although encryption makes one.
  if (len == 0 || !is_tag_len(tag_len) || !is_nonce_len(nonce.len)) return ZEL_ERR_TAG;
  Scratch<std::uint8_t> plain(len);
  if (!plain) return ZEL_ERR_GENERIC;
  Ccm ccm(cipher, nonce, aad, len, tag_len);
  ccm.run(Way::kDecrypt, {plain.data(), data, len});
  Wiped<std::uint8_t[kMaxTagLen]> own;
  ccm.give_tag(*own, tag_len);
  if (!ct::equal(*own, tag, tag_len)) return ZEL_ERR_TAG;
  std::memcpy(data, plain.data(), len);
  return ZEL_OK;
}

}  // namespace zel::modes

using namespace zel;

int32_t CCM_FormatNAP(uint8_t *out, uint32_t *out_len, const uint8_t *nonce, uint32_t nonce_len,
                      const uint8_t *aad, uint32_t aad_len, const uint8_t *payload,
                      uint32_t payload_len, uint32_t tag_len) {
  constexpr std::uint64_t kBlockLen = modes::kBlockLen;
  const modes::Run runs[] = {{nonce, nonce_len}, {aad, aad_len}, {payload, payload_len}};
  if (any_null(out, out_len) || modes::any_missing(runs[0], runs[1], runs[2]))
    return ZEL_ERR_GENERIC;
  if (nonce_len >= kBlockLen) return ZEL_ERR_GENERIC;
  std::uint8_t encoded[6];
  const std::size_t encoded_len = aad_len == 0 ? 0 : modes::encode_aad_len(encoded, aad_len);
  const auto padded = [](std::uint64_t len) {
    return (len + kBlockLen - 1) / kBlockLen * kBlockLen;
  };
  const std::uint64_t aad_end = kBlockLen + padded(encoded_len + std::uint64_t{aad_len});
  const std::uint64_t end = aad_end + padded(payload_len);
  if (end > UINT32_MAX) return ZEL_ERR_GENERIC;

  modes::first_block(out, runs[0], aad_len > 0, payload_len, tag_len);
  std::memset(out + kBlockLen, 0, end - kBlockLen);
  if (aad_len > 0) {
    std::memcpy(out + kBlockLen, encoded, encoded_len);
    std::memcpy(out + kBlockLen + encoded_len, aad, aad_len);
  }
  if (payload_len > 0) std::memcpy(out + aad_end, payload, payload_len);
  *out_len = static_cast<uint32_t>(end);
  return ZEL_OK;
}

int32_t CCM_FormatCNT(uint8_t *out, uint32_t total, const uint8_t *nonce, uint32_t nonce_len,
                      uint32_t block_len, uint32_t q) {
  const modes::Run runs[] = {{out, total}, {nonce, nonce_len}};
  if (modes::any_missing(runs[0], runs[1]) || !bulk::is_block_len(block_len))
    return ZEL_ERR_GENERIC;
  if (std::uint64_t{1} + nonce_len + q != block_len) return ZEL_ERR_GENERIC;
  std::uint8_t block[modes::kBlockLen];
  std::uint32_t i = 0;
  for (std::uint32_t done = 0; done < total; ++i) {
    const std::uint32_t now = std::min(total - done, block_len);
    modes::counter_block(block, runs[1], q, i);
    std::memcpy(out + done, block, now);
    done += now;
  }
  return ZEL_OK;
}

int32_t BCIPHER_EncryptCCM(uint8_t *data, uint32_t len, uint32_t tag_len, const uint8_t *nonce,
                           uint32_t nonce_len, const uint8_t *aad, uint32_t aad_len,
                           const void *round_keys, uint32_t block_len,
                           BCIPHER_BLOCK_FN encrypt_block) {
  const modes::Run runs[] = {{nonce, nonce_len}, {aad, aad_len}};
  if (any_null(data, round_keys) || modes::any_missing(runs[0], runs[1])) return ZEL_ERR_GENERIC;
  if (!modes::is_block_of_ccm(block_len, encrypt_block)) return ZEL_ERR_GENERIC;
  const bulk::Cipher cipher(block_len, encrypt_block, nullptr, round_keys);
  return modes::ccm_encrypt(cipher, {data, data, len}, runs[0], runs[1], data + len, tag_len);
}

int32_t BCIPHER_DecryptCCM(uint8_t *data, uint32_t len, uint32_t tag_len, const uint8_t *nonce,
                           uint32_t nonce_len, const uint8_t *aad, uint32_t aad_len,
                           const void *round_keys, uint32_t block_len,
                           BCIPHER_BLOCK_FN encrypt_block) {
  const modes::Run runs[] = {{nonce, nonce_len}, {aad, aad_len}};
  if (any_null(data, round_keys) || modes::any_missing(runs[0], runs[1])) return ZEL_ERR_GENERIC;
  if (!modes::is_block_of_ccm(block_len, encrypt_block)) return ZEL_ERR_GENERIC;
  if (len <= tag_len) return ZEL_ERR_TAG;
  const bulk::Cipher cipher(block_len, encrypt_block, nullptr, round_keys);
  return modes::ccm_decrypt(cipher, data, len - tag_len, runs[0], runs[1], data + len - tag_len,
                            tag_len);
}
