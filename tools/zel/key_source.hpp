// Where a secret key comes from: a file, hexadecimal digits, an open descriptor.
#pragma once

#include <vector>

#include "tools/zel/command.hpp"
#include "tools/zel/secret.hpp"

namespace zel::tool {

/// What the user said; exactly one is to be given.
struct KeySource {
  std::optional<std::string> file;
  std::optional<std::string> hex_file;
  std::optional<std::uint64_t> fd;
  std::optional<std::string> hex;

  bool is_standard_input() const { return file == "-" || hex_file == "-" || fd == 0U; }
};

/// --key-file, --key-hex-file, --key-fd and --key-hex; the last has a short name in some commands.
std::vector<Option> key_source_options(KeySource &source, const std::string &hex_letter = "");

/// The bytes of a file, at most 1 MiB.
Secret read_key(const std::string &path);

/// The key, or a `Failure` when none, several, or no key at all is named. `data_is_standard_input`
/// says whether the command reads its data from there.
Secret obtain_key(Session &session, const KeySource &source, bool data_is_standard_input);

}  // namespace zel::tool
