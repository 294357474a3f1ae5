// Keys in the forms that other programs read. PKCS #8 (RFC 5208, RFC 5958), SubjectPublicKeyInfo
// (RFC 5280, section 4.1), PKCS #1 (RFC 8017, appendix A.1), DSA parameters (RFC 3279,
// section 2.3.2).
#pragma once

#include <optional>
#include <string_view>

#include "tools/zel/der.hpp"
#include "tools/zel/key_record.hpp"

namespace zel::tool {

enum class KeyForm {
  kPrivateKeyInfo,
  kEncryptedPrivateKeyInfo,
  kPublicKeyInfo,
  kPkcs1Private,
  kPkcs1Public,
  kDsaPrivate,  ///< of OpenSSL before its version 3: p, q, g, y, x
  kParameters,
};

/// What a PEM label says of its content. `type` is what the content must be; nothing when any will
/// do.
struct KeyLabel {
  std::string_view label;
  KeyForm form;
  std::optional<KeyType> type;
};

/// `Malformed` for a label that no key has.
const KeyLabel &key_label(std::string_view label);
/// The label under which a key is written.
std::string_view label_for(KeyForm form, KeyType type);

/// Which form a content without a label has.
KeyForm guess_form(der::View content);

/// Reads any form but the encrypted one; `type`, where given, is what it must hold. Private DSA and
/// KCDSA keys may have no `y` yet.
KeyPointer parse_key(KeyForm form, std::optional<KeyType> type, der::View content);

/// Writes a key, its public half or its parameters: what `form` says, which is one of
/// kPrivateKeyInfo, kPublicKeyInfo and kParameters.
void write_key(der::Writer &writer, KeyForm form, const Key &key);

/// More than the largest key takes, encrypted too.
inline constexpr std::size_t kKeyDerMost = 8192;

}  // namespace zel::tool
