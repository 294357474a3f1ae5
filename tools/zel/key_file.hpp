// Keys in files: found in whatever form they have, opened, checked; and written.
#pragma once

#include <optional>
#include <string>

#include "tools/zel/key_der.hpp"
#include "tools/zel/key_record.hpp"
#include "tools/zel/passphrase.hpp"
#include "tools/zel/session.hpp"

namespace zel::tool {

/// A key that was read, and how its file held it.
struct LoadedKey {
  KeyPointer key;
  KeyForm form;                      ///< of the file
  std::optional<Secret> passphrase;  ///< that opened it
};

/// Reads a key file in PEM or DER, - for standard input, asks for the passphrase of an encrypted
/// one, and checks the key. Whatever is wrong ends as a `Failure` that names the file.
LoadedKey load_key(const Session &session, const std::string &path);

/// The same for those who sign or decrypt: a private key that is not symmetric.
KeyPointer load_private_key(const Session &session, const std::string &path);

/// The same for those who verify or encrypt: a public key, or the public half of a private one.
KeyPointer load_public_key(const Session &session, const std::string &path);

/// The key in a file that 'zel keygen symmetric' wrote, whose content is given; it asks for the
/// passphrase of an encrypted one. `path` is for messages.
Secret symmetric_key_of(const Session &session, const std::string &path, Secret file);

/// How a key is written.
struct KeyEncoding {
  KeyForm form = KeyForm::kPrivateKeyInfo;  ///< one that `write_key` knows
  bool der = false;                         ///< DER instead of PEM
  const Secret *passphrase = nullptr;       ///< encrypts a kPrivateKeyInfo
};

/// Writes to the output of the session: what holds a private key is for its owner alone. With
/// --json and no -o the PEM text goes into the object.
void save_key(Session &session, const Key &key, const KeyEncoding &encoding);

/// Size, type and fingerprint for the object that --json prints.
void add_key_result(Session &session, const Key &key);

/// SHA-256 of the SubjectPublicKeyInfo in hexadecimal digits.
std::string fingerprint(const Key &key);

}  // namespace zel::tool
