#include "tools/zel/recipient.hpp"

#include <algorithm>

#include "tools/zel/container.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/key_file.hpp"
#include "tools/zel/key_objects.hpp"
#include "tools/zel/pss.hpp"
#include "zel_cc/errors.h"
#include "zel_cc/rsa.h"

namespace zel::tool {
namespace {

constexpr std::uint32_t kLeastBits = 2048;

void require_rsa(const Key &key, const std::string &path) {
  if (key.type != KeyType::kRsa) {
    throw Failure(Exit::kMalformed, path, std::string("a ") + name_of(key.type) + " key",
                  "encryption wants an RSA key");
  }
  if (key.bits() < kLeastBits) {
    throw Failure(Exit::kMalformed, path,
                  "an RSA key of " + std::to_string(key.bits()) + " bits, too short to encrypt to",
                  "use one of 2048 bits or more");
  }
}

Bytes key_id(const Key &key) { return from_hex(fingerprint(key)).value(); }

std::size_t modulus_len(const Key &key) { return (key.bits() + 7) / 8; }

}  // namespace

Bytes wrap_for_recipient(const Session &session, const std::string &path,
                         std::span<const std::uint8_t> secret) {
  const KeyPointer key = load_public_key(session, path);
  require_rsa(*key, path);
  if (!has_pss_exponent(*key)) {
    throw Failure(Exit::kMalformed, path,
                  "its public exponent is below 65537, too small to encrypt to",
                  "use a key with 65537");
  }
  const KeyObjects objects(*key, rsa);
  Bytes recipient = key_id(*key);
  const std::size_t id_len = recipient.size();
  recipient.resize(id_len + modulus_len(*key));
  std::uint32_t len = 0;
  // The library's seed for OAEP is zero: fine for a secret that is drawn anew each time, under an
  // exponent that is not small. With e = 3 so much of the block is known that the rest can be
  // found.
  const int code = PKCRYPT_Encrypt(recipient.data() + id_len, &len, secret.data(),
                                   static_cast<std::uint32_t>(secret.size()), objects.public_key(),
                                   nullptr, &sha256, nullptr);
  if (code != ZEL_OK || len != modulus_len(*key)) throw library_failure(path, code);
  return recipient;
}

Secret unwrap_as_recipient(const Session &session, const std::string &path,
                           const std::string &container, std::span<const std::uint8_t> recipient) {
  const KeyPointer key = load_private_key(session, path);
  require_rsa(*key, path);
  const Bytes id = key_id(*key);
  const auto sealed = recipient.subspan(id.size());
  if (!std::ranges::equal(id, recipient.first(id.size())) || sealed.size() != modulus_len(*key)) {
    throw Failure(Exit::kVerification, container, "encrypted to another key than " + path,
                  "use the private key of the recipient");
  }
  const KeyObjects objects(*key, rsa);
  Secret secret(sealed.size());
  std::uint32_t len = 0;
  const int code = PKCRYPT_Decrypt(secret.room().data(), &len, sealed.data(),
                                   static_cast<std::uint32_t>(sealed.size()), objects.private_key(),
                                   nullptr, &sha256, nullptr);
  if (code == ZEL_OK) secret.grow(len);
  if (secret.bytes().size() != kSecretLen) {
    throw Failure(Exit::kVerification, container, "its header was changed", "do not use it");
  }
  return secret;
}

}  // namespace zel::tool
