// What `zel sign` and `zel verify` share: key, method and the digest of a file of any size.
#pragma once

#include <optional>
#include <string>

#include "tools/zel/command.hpp"
#include "tools/zel/key_record.hpp"
#include "tools/zel/schemes.hpp"
#include "tools/zel/signature.hpp"

namespace zel::tool {

struct SignatureOptions {
  std::optional<std::string> key;
  std::optional<std::string> algorithm;
  std::optional<std::string> padding;
  std::optional<std::string> file;

  /// The data; - when no FILE is named.
  std::string data() const { return file.value_or("-"); }
};

/// Gives a command the options that both have.
void add_signature_options(Command &command, SignatureOptions &options);

/// The key file that -k names; it cannot come from where the data come from.
std::string key_path(const Session &session, const SignatureOptions &options);

/// A key, with the hash and the padding that the options or the key choose.
struct SignatureJob {
  SignatureJob(const SignatureOptions &options, KeyPointer key_given);

  /// The digest of the data as the signature takes it, with a progress display.
  Bytes digest(Session &session) const;
  void add_result(Session &session) const;
  /// PSS under an exponent that is too small for it.
  bool is_small_exponent_pss() const;

  KeyPointer key;
  std::string file;
  Scheme hash;
  SignatureMethod method;
};

}  // namespace zel::tool
