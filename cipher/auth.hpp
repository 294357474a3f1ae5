// The authenticated modes over a message in memory, below the gates. NIST SP 800-38C and SP
// 800-38D. The cipher has blocks of 16 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cipher/modes.hpp"

namespace zel::modes {

/// What an authenticated mode takes besides the message.
struct Run {
  const std::uint8_t *bytes;
  std::size_t len;
};

/// Whether bytes are announced where there are none.
template <class... Runs>
inline bool any_missing(Runs... runs) noexcept {
  return (... || (runs.bytes == nullptr && runs.len > 0));
}

inline constexpr std::size_t kAuthBlockLen = 16;
inline constexpr std::size_t kMaxTagLen = 16;

/// GCM: enciphers or deciphers, and writes a tag of 16 bytes. It is for the caller to compare it
/// with the one that came with a message.
void gcm(Way way, const bulk::Cipher &cipher, Piece piece, Run nonce, Run aad,
         std::uint8_t *tag) noexcept;

/// The lengths of tags that SP 800-38D allows.
constexpr bool is_gcm_tag_len(std::size_t len) noexcept {
  return len == 4 || len == 8 || (len >= 12 && len <= kMaxTagLen);
}

/// CCM: enciphers, and writes the tag. #ZEL_OK, or the code for a length that SP 800-38C does not
/// allow, with nothing touched.
std::int32_t ccm_encrypt(const bulk::Cipher &cipher, Piece piece, Run nonce, Run aad,
                         std::uint8_t *tag, std::size_t tag_len) noexcept;

/// CCM: deciphers `data` of `len` bytes in place if the tag behind them is theirs. Otherwise
/// nothing is touched and the result is #ZEL_ERR_TAG, or #ZEL_ERR_GENERIC when memory for a copy is
/// short.
std::int32_t ccm_decrypt(const bulk::Cipher &cipher, std::uint8_t *data, std::size_t len, Run nonce,
                         Run aad, const std::uint8_t *tag, std::size_t tag_len) noexcept;

}  // namespace zel::modes
