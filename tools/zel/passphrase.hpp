// Passphrases: from a descriptor, from a file, or asked for on the terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/zel/secret.hpp"
#include "tools/zel/session.hpp"

namespace zel::tool {

/// More than anyone types; a longer one is refused rather than cut.
inline constexpr std::size_t kPassphraseMost = 1024;

struct PassphraseSource {
  std::optional<std::uint64_t> descriptor;
  std::optional<std::string> file;

  bool is_given() const noexcept { return descriptor || file; }
  bool is_standard_input() const noexcept { return descriptor == 0U || file == "-"; }
};

/// What --passphrase-fd and --passphrase-file say.
PassphraseSource passphrase_source(const Session &session);

/// The first line of what the source names, or of what is typed at the prompt "Passphrase for
/// `what`: ". Without a line end; never empty. From a descriptor no byte beyond the line is taken.
Secret obtain_passphrase(const PassphraseSource &source, const std::string &what);

/// The same for encrypting: typed twice when it is typed.
Secret obtain_new_passphrase(const PassphraseSource &source, const std::string &what);

}  // namespace zel::tool
