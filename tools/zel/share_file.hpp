// Share files: one share of a secret as a few lines of text. docs/shares.md defines the format.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/wipe.hpp"
#include "zel_cc/keyshare.h"

namespace zel::tool {

using SetIdentifier = std::array<std::uint8_t, 16>;

/// What shares of one secret have in common.
struct ShareHeader {
  std::uint32_t threshold;
  SetIdentifier set;
  std::uint32_t secret_len;
  MINT prime;
};

/// Zeroes its point when it goes.
struct Share {
  std::string source;  ///< the file that it came from
  ShareHeader header{};
  std::uint32_t index;  ///< a label for people
  KEYSHAREFS_SHARE point{};

  Share(std::string from, const ShareHeader &head, std::uint32_t label)
      : source(std::move(from)), header(head), index(label) {}
  Share(const Share &) = default;
  Share &operator=(const Share &) = default;
  ~Share() { wipe_object(point); }
};

inline constexpr std::uint32_t kMaxIndex = 255;
/// What is shared: a secret, and in front of it one byte 01, a salt and a digest.
inline constexpr std::uint32_t kSaltLen = 16;
inline constexpr std::uint32_t kTagLen = 16;
inline constexpr std::uint32_t kOverhead = 1 + kSaltLen + kTagLen;
inline constexpr std::uint32_t kMaxSecretLen = ZEL_KEYSHARE_MAX_SECRET_LEN - kOverhead;

std::string to_text(const Share &share);

/// All shares in a text, one after another; `Failure`s name the source and the line.
std::vector<Share> parse_shares(std::string_view text, const std::string &source);

/// All shares in those files, in their order.
std::vector<Share> read_shares(const std::vector<std::string> &files);

}  // namespace zel::tool
