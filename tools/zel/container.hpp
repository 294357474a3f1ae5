// The container of `zel encrypt`: header, key and chunks. docs/container.md defines the bytes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/zel/ciphers.hpp"
#include "tools/zel/files.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/secret.hpp"

namespace zel::tool {

/// Bytes of a secret that is not the content of a key file.
inline constexpr std::size_t kSecretLen = 32;

/// Where the secret comes from, as the header numbers it.
enum class SecretSource : std::uint8_t { kPassphrase = 1, kKeyFile = 2, kRsa = 3 };

struct ContainerHeader {
  static constexpr std::size_t kSaltLen = 16;
  static constexpr std::size_t kPrefixLen = 7;
  static constexpr std::size_t kKeyIdLen = 32;

  const Cipher *cipher = nullptr;
  SecretSource source = SecretSource::kPassphrase;
  std::uint32_t rounds = 0;
  std::array<std::uint8_t, kSaltLen> salt{};
  std::array<std::uint8_t, kPrefixLen> prefix{};
  Bytes recipient;  ///< identifier of the RSA key, then the secret that was enciphered to it

  Bytes encode() const;
};

/// The ciphers that a container may name, the default first: names such as "aria-256-gcm".
std::vector<std::string> container_ciphers();
/// One of them, or a `Failure`.
const Cipher &find_container_cipher(const std::string &name);

/// Reads a header off the front of an input; `Failure` when it is none, or one that is not known.
ContainerHeader read_header(Input &input, const std::string &path);

/// Seals or opens the chunks of one container, in their order.
class ChunkCipher {
 public:
  static constexpr std::size_t kChunkLen = 65536;
  static constexpr std::size_t kTagLen = 16;

  ChunkCipher(const ContainerHeader &header, std::span<const std::uint8_t> secret);

  /// The next chunk with its tag. `out` has room for 16 bytes more than `plain`.
  std::span<const std::uint8_t> seal(std::span<const std::uint8_t> plain, bool last,
                                     std::span<std::uint8_t> out);
  /// The content of the next chunk; nothing when its tag does not match.
  std::optional<std::span<const std::uint8_t>> open(std::span<const std::uint8_t> sealed, bool last,
                                                    std::span<std::uint8_t> out);
  /// Bytes of the message that were sealed, or opened and found good.
  std::uint64_t message_len() const noexcept { return message_len_; }

 private:
  std::array<std::uint8_t, 12> next_nonce(bool last);
  std::int32_t run(bool sealing, std::span<const std::uint8_t> in, bool last,
                   std::span<std::uint8_t> out, std::uint32_t &len);

  const ContainerHeader header_;
  const Bytes associated_;
  CipherKey key_;
  std::uint64_t number_ = 0;
  std::uint64_t message_len_ = 0;
};

}  // namespace zel::tool
