// The secret of a container: made by `zel encrypt`, found again by `zel decrypt`.
#pragma once

#include "tools/zel/command.hpp"
#include "tools/zel/container.hpp"

namespace zel::tool {

/// What the user named; at most one.
struct SecretOptions {
  bool passphrase = false;
  std::optional<std::string> key_file;
  std::optional<std::string> rsa_key;
};

/// -p, -k and -r.
std::vector<Option> secret_options(SecretOptions &options, const std::string &rsa_description);

/// Refuses a secret from standard input where the data `file` is "-", too.
void check_standard_input(const Session &session, const SecretOptions &options,
                          const std::string &file);

/// The secret for a new container; completes the header, whose salt is already there.
Secret make_secret(Session &session, const SecretOptions &options, ContainerHeader &header,
                   const std::string &file);

/// The secret of a container that has this header.
Secret find_secret(Session &session, const SecretOptions &options, const ContainerHeader &header,
                   const std::string &file);

}  // namespace zel::tool
