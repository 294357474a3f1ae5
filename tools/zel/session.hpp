// One run of a command: its shared flags, its messages and its JSON object.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zel/failure.hpp"
#include "tools/zel/files.hpp"
#include "tools/zel/progress.hpp"

namespace zel::tool {

using Json = nlohmann::ordered_json;

/// The flags that every command has.
struct SharedFlags {
  std::optional<std::string> output;
  std::optional<std::string> progress;
  bool force = false;
  bool quiet = false;
  bool verbose = false;
  bool json = false;
  bool legacy = false;
  std::optional<std::uint64_t> passphrase_fd;
  std::optional<std::string> passphrase_file;
  bool help = false;
};

class Session {
 public:
  Session(std::string command, const SharedFlags &flags);
  ~Session();
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  const std::string &command() const noexcept { return command_; }
  const SharedFlags &flags() const noexcept { return flags_; }
  /// The object that --json prints; `command` and `exit` are set by the program.
  Json &result() noexcept { return *result_; }

  /// Where data goes: - is standard output.
  std::string output() const { return flags_.output.value_or("-"); }
  /// Where data goes when -o is not given.
  void set_default_output(const std::string &path) {
    if (!flags_.output) flags_.output = path;
  }
  void set_progress_mode(ProgressMode mode) noexcept { progress_mode_ = mode; }

  /// Enters the approved service by way of the self-tests, or opens the rest with one warning line.
  void choose_service();

  void note(std::string_view text);     ///< with -v
  void warn(std::string_view text);     ///< without -q
  void complain(const Failure &cause);  ///< always
  /// Remembers how the run ends: the gravest of what was reported.
  void ends(Exit exit) noexcept;
  Exit exit() const noexcept { return exit_; }

  /// A progress display for one long task.
  std::unique_ptr<Progress> progress(std::string task, std::optional<std::uint64_t> total,
                                     Unit unit = Unit::kBytes);

  /// Opens the output that -o names. Text on standard output gives way to the JSON object.
  Output &open_output(mode_t mode = 0666);
  /// The output for data, at `path` when no -o is given. Bytes do not mix with the object of
  /// --json, and only what people may read goes to a terminal.
  Output &open_data(const std::string &path, bool readable, mode_t mode = 0666);
  /// Text for the output; shown at once when it is standard output.
  void print(std::string_view text);
  /// Gives up the output: a run that was broken off leaves no file, whatever it had found out.
  void abandon_output() noexcept { output_.reset(); }
  /// Completes the output and prints the JSON object.
  void close();

 private:
  std::string command_;
  SharedFlags flags_;
  std::unique_ptr<Json> result_;
  std::unique_ptr<Output> output_;
  Exit exit_ = Exit::kDone;
  ProgressMode progress_mode_ = ProgressMode::kAuto;
};

}  // namespace zel::tool
