// A key of any kind as the program holds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "base/wipe.hpp"
#include "tools/zel/secret.hpp"
#include "zel_cc/mint.h"

namespace zel::tool {

enum class KeyType { kRsa, kDsa, kKcdsa, kSymmetric };
/// How much of a key there is.
enum class KeyPart { kParameters, kPublic, kPrivate };

/// The numbers of an RSA key: a private one has all, a public one two. As in PKCS #1.
enum RsaNumber : std::size_t { kN, kE, kD, kRsaP, kRsaQ, kDp, kDq, kQInv, kRsaNumbers };
/// The numbers of a DSA or KCDSA key: parameters have three, a public key four, a private one all.
enum GroupNumber : std::size_t { kP, kQ, kG, kY, kX, kGroupNumbers };

/// The largest symmetric key in bytes.
inline constexpr std::size_t kSymmetricMost = 64;
/// The largest modulus in bits, and the smallest that is used at all.
inline constexpr std::uint32_t kModulusMost = 4096;
inline constexpr std::uint32_t kModulusLeast = 512;

struct Key {
  struct Numbers {
    MINT at[kRsaNumbers];
  };

  Key(KeyType key_type, KeyPart key_part);

  const MINT &operator[](std::size_t number) const noexcept { return numbers->at[number]; }
  MINT &operator[](std::size_t number) noexcept { return numbers->at[number]; }
  bool is_private() const noexcept { return part == KeyPart::kPrivate; }
  /// Of the modulus, or of a symmetric key.
  std::uint32_t bits() const noexcept;

  KeyType type;
  KeyPart part;
  Wiped<Numbers> numbers;
  Secret octets;  ///< of a symmetric key
};

using KeyPointer = std::unique_ptr<Key>;

/// "RSA", "DSA", "KCDSA", "symmetric"
const char *name_of(KeyType type);

/// "RSA private key of 3072 bits"
std::string describe(const Key &key);

/// A number as its big-endian bytes: none for zero.
class NumberBytes {
 public:
  explicit NumberBytes(const MINT &number) noexcept;
  std::span<const std::uint8_t> bytes() const noexcept;

 private:
  struct Buffer {
    std::uint8_t bytes[ZEL_MINT_BYTES];
  };
  Wiped<Buffer> buffer_;
  std::size_t len_;
};

/// The bytes of a number as exactly `len` of them; the number must fit.
void write_number(const MINT &number, std::span<std::uint8_t> out) noexcept;

}  // namespace zel::tool
