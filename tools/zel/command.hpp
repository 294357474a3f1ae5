// A command as it describes itself: the parser, the help, the manual pages and the completions all
// read this.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/zel/session.hpp"

namespace zel::tool {

/// Where the value of an option goes; what kind of value it takes follows from the type.
using Target = std::variant<bool *, std::optional<std::string> *, std::optional<std::uint64_t> *,
                            std::vector<std::string> *>;

/// An option, or a positional argument when it has no names. The target must outlive the command.
struct Option {
  std::string short_name;  ///< one letter, or empty
  std::string long_name;
  std::string type;  ///< the argument as the help names it: FILE and LIST complete as files
  std::string description;
  Target target;
  std::vector<std::string> suggestions{};  ///< values to complete

  bool is_flag() const { return std::holds_alternative<bool *>(target); }
  bool is_many() const { return std::holds_alternative<std::vector<std::string> *>(target); }
  bool is_file() const { return type == "FILE" || type == "LIST"; }
  /// "-o", "--output"
  std::vector<std::string> spellings() const;
};

struct Example {
  std::string purpose;
  std::string line;  ///< works when pasted
};

/// What a command needs of the module.
enum class Service {
  kApproved,   ///< the verified service; with --legacy everything
  kAsStarted,  ///< the module as it is at the start of the process
};

struct Command {
  std::string name;
  std::string summary;      ///< one line, no full stop
  std::string description;  ///< paragraphs, a line each
  std::vector<Example> examples;
  std::vector<Option> positionals{};
  std::vector<Option> options{};
  std::function<void(Session &)> run{};
  bool hidden = false;
  Service service = Service::kApproved;
};

/// The options of every command.
std::vector<Option> shared_options(SharedFlags &flags);

/// The shared options for those who only describe them.
const std::vector<Option> &shared_options();

using Commands = std::vector<Command>;

Command hash_command();
Command mac_command();
Command encrypt_command();
Command decrypt_command();
Command raw_command();
Command rand_command();
Command prime_command();
Command split_command();
Command combine_command();
Command reissue_command();
Command selftest_command();
Command integrity_command();
Command keygen_command();
Command key_command();
Command sign_command();
Command verify_command();
Command info_command();
/// These two describe the other commands.
Command completion_command(const Commands &commands);
Command manual_command(const Commands &commands);

}  // namespace zel::tool
