// The digests and authentication codes that the library offers, by name.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zel/hex.hpp"
#include "tools/zel/secret.hpp"
#include "zel_cc/hash.h"

namespace zel::tool {

/// A running digest of one message of any length.
class Stream {
 public:
  virtual ~Stream() = default;
  virtual void add(std::span<const std::uint8_t> bytes) = 0;
  virtual Bytes finish() = 0;
};

/// The library counts one update in 32 bits.
template <class Update>
void in_pieces(std::span<const std::uint8_t> bytes, Update update) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  while (!bytes.empty()) {
    const auto piece = bytes.first(std::min(bytes.size(), kMost));
    update(piece.data(), static_cast<std::uint32_t>(piece.size()));
    bytes = bytes.subspan(piece.size());
  }
}

/// One way to make a digest. Starting fails as a `Failure` when the module refuses.
struct Scheme {
  std::string name;                  ///< as -a takes it and --json prints it
  std::string tag;                   ///< in the lines of BSD form
  std::vector<std::string> aliases;  ///< other tags that are read, and other names
  std::size_t digest_len;
  bool approved;
  const HASH_ALGORITHM *hash;  ///< null for codes over block ciphers
  std::function<std::unique_ptr<Stream>()> start;

  /// Whether a name or a tag means this scheme: case, hyphens and underscores do not matter.
  bool answers_to(std::string_view name) const;
};

/// The nine hashes.
std::vector<Scheme> hash_schemes();

/// HMAC over each of them under one key, which must outlive the schemes.
std::vector<Scheme> hmac_schemes(std::span<const std::uint8_t> key);

/// CMAC over each block cipher, and GMAC over those with blocks of 16 bytes, under one key.
/// Starting one fails when the length of the key is not the cipher's. A nonce of GMAC has 12 bytes.
std::vector<Scheme> cmac_schemes(std::span<const std::uint8_t> key);
std::vector<Scheme> gmac_schemes(std::span<const std::uint8_t> key,
                                 std::span<const std::uint8_t> nonce);

/// The scheme of that name, or a `Failure` that lists the names there are.
const Scheme &find_scheme(const std::vector<Scheme> &schemes, std::string_view name);

}  // namespace zel::tool
