#include "tools/zel/container_secret.hpp"

#include <string_view>

#include "tools/zel/failure.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/key_file.hpp"
#include "tools/zel/key_source.hpp"
#include "tools/zel/passphrase.hpp"
#include "tools/zel/pbkdf2.hpp"
#include "tools/zel/recipient.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kLeastKeyFile = 16;

/// The one source that was named. A passphrase that is given needs no -p.
std::optional<SecretSource> source_of(const Session &session, const SecretOptions &options) {
  const bool by_passphrase = options.passphrase || (passphrase_source(session).is_given() &&
                                                    !options.rsa_key && !options.key_file);
  const int named = by_passphrase + options.key_file.has_value() + options.rsa_key.has_value();
  if (named == 0) return std::nullopt;
  if (named > 1) {
    throw Failure(Exit::kUsage, "-p, -k, -r", "more than one given", "use one of them");
  }
  if (by_passphrase) return SecretSource::kPassphrase;
  return options.key_file ? SecretSource::kKeyFile : SecretSource::kRsa;
}

Secret from_passphrase(const Secret &passphrase, const ContainerHeader &header) {
  Secret secret(kSecretLen);
  pbkdf2(passphrase.bytes(), header.salt, header.rounds, sha256, secret.room());
  secret.grow(kSecretLen);
  return secret;
}

/// The bytes of a file; what 'zel keygen symmetric' wrote is the same key in whatever form.
Secret from_key_file(const Session &session, const std::string &path) {
  Secret secret = read_key(path);
  const auto bytes = secret.bytes();
  const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
  if (text.starts_with("-----BEGIN") && text.substr(0, 40).find("PUBLIC KEY") != text.npos) {
    throw Failure(Exit::kUsage, path, "a public key, which is no secret", "use -r with it");
  }
  if (text.starts_with("-----BEGIN") && text.substr(0, 40).find("SYMMETRIC KEY") != text.npos) {
    return symmetric_key_of(session, path, std::move(secret));
  }
  if (passphrase_source(session).is_given()) {
    throw Failure(Exit::kUsage, path, "a key that is not encrypted, and a passphrase",
                  "leave out one of them");
  }
  if (bytes.size() < kLeastKeyFile) {
    throw Failure(Exit::kMalformed, path, "shorter than 16 bytes",
                  "make one with 'zel rand --raw 32 -o FILE'");
  }
  return secret;
}

const char *option_for(SecretSource source) {
  switch (source) {
    case SecretSource::kPassphrase:
      return "it was encrypted under a passphrase; use -p";
    case SecretSource::kKeyFile:
      return "it was encrypted with a key file; use -k FILE";
    case SecretSource::kRsa:
      return "it was encrypted to an RSA key; use -r with the private key";
  }
  return "";
}

}  // namespace

std::vector<Option> secret_options(SecretOptions &options, const std::string &rsa_description) {
  return {{"p", "passphrase", "", "Under a passphrase", &options.passphrase},
          {"k", "key-file", "FILE", "With the bytes of FILE as the key", &options.key_file},
          {"r", "recipient", "FILE", rsa_description, &options.rsa_key}};
}

void check_standard_input(const Session &session, const SecretOptions &options,
                          const std::string &file) {
  const PassphraseSource passphrase = passphrase_source(session);
  const bool is_secret =
      options.key_file == "-" || options.rsa_key == "-" || passphrase.is_standard_input();
  if (is_secret && file == "-") {
    throw Failure(Exit::kUsage, "-", "the secret and the data cannot both be standard input",
                  "name the data FILE, or give the secret in a file");
  }
}

Secret make_secret(Session &session, const SecretOptions &options, ContainerHeader &header,
                   const std::string &file) {
  const auto source = source_of(session, options);
  if (!source) {
    throw Failure(Exit::kUsage, "key", "none given",
                  "use -p for a passphrase, -k for a key file or -r for an RSA recipient");
  }
  header.source = *source;
  if (*source == SecretSource::kKeyFile) return from_key_file(session, *options.key_file);
  if (*source == SecretSource::kRsa) {
    Secret secret(kSecretLen);
    Generator().fill(secret.room());
    secret.grow(kSecretLen);
    header.recipient = wrap_for_recipient(session, *options.rsa_key, secret.bytes());
    return secret;
  }
  header.rounds = kPbkdf2Rounds;
  return from_passphrase(obtain_new_passphrase(passphrase_source(session), file), header);
}

Secret find_secret(Session &session, const SecretOptions &options, const ContainerHeader &header,
                   const std::string &file) {
  const auto source = source_of(session, options);
  // A passphrase is asked for without being told.
  const bool suits = source ? *source == header.source : header.source == SecretSource::kPassphrase;
  if (!suits) throw Failure(Exit::kUsage, file, option_for(header.source), "");
  if (header.source == SecretSource::kKeyFile) return from_key_file(session, *options.key_file);
  if (header.source == SecretSource::kRsa) {
    return unwrap_as_recipient(session, *options.rsa_key, file, header.recipient);
  }
  return from_passphrase(obtain_passphrase(passphrase_source(session), file), header);
}

}  // namespace zel::tool
