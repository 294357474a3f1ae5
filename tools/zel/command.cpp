#include "tools/zel/command.hpp"

namespace zel::tool {

std::vector<std::string> Option::spellings() const {
  std::vector<std::string> names;
  if (!short_name.empty()) names.push_back("-" + short_name);
  if (!long_name.empty()) names.push_back("--" + long_name);
  return names;
}

std::vector<Option> shared_options(SharedFlags &flags) {
  return {
      {"o", "output", "FILE", "Write to FILE; - is standard output", &flags.output},
      {"f", "force", "", "Overwrite the output file if it exists", &flags.force},
      {"q", "quiet", "", "Say nothing but results and errors", &flags.quiet},
      {"v", "verbose", "", "Say more about what is done", &flags.verbose},
      {"", "json", "", "Print one JSON object on standard output", &flags.json},
      {"", "legacy", "", "Open algorithms that are not approved", &flags.legacy},
      {"", "passphrase-fd", "N", "Passphrase: a line from descriptor N", &flags.passphrase_fd},
      {"", "passphrase-file", "FILE", "Passphrase: the first line of FILE", &flags.passphrase_file},
      {"",
       "progress",
       "WHEN",
       "auto, always, never, or json: an event a line",
       &flags.progress,
       {"auto", "always", "never", "json"}},
      {"h", "help", "", "Print this help and end", &flags.help},
  };
}

const std::vector<Option> &shared_options() {
  static SharedFlags nowhere;
  static const std::vector<Option> options = shared_options(nowhere);
  return options;
}

}  // namespace zel::tool
