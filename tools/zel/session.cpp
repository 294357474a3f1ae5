#include "tools/zel/session.hpp"

#include <array>

#include "tools/zel/console.hpp"
#include "tools/zel/json.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

/// From harmless to grave: a digest that does not match outweighs a file that cannot be read.
std::size_t gravity(Exit exit) {
  constexpr std::array kOrder{Exit::kDone,     Exit::kMalformed, Exit::kFile,
                              Exit::kUsage,    Exit::kState,     Exit::kVerification,
                              Exit::kSelfTest, Exit::kEntropy,   Exit::kInternal};
  std::size_t place = 0;
  while (place + 1 < kOrder.size() && kOrder[place] != exit)
    ++place;
  return place;
}

}  // namespace

Session::Session(std::string command, const SharedFlags &flags)
    : command_(std::move(command)),
      flags_(flags),
      result_(std::make_unique<Json>(Json::object())) {}

Session::~Session() = default;

void Session::choose_service() {
  if (const int code = SELFTEST_VerifiedAlgorithm(); code != ZEL_OK) {
    throw Failure(Exit::kSelfTest, "self-test",
                  std::string(zel_error_text(code)) + " (" + std::to_string(code) + ")",
                  "do not use this library; 'zel selftest' shows all tests");
  }
  const int state = KZEL_CC_SetStateVerifiedService();
  if (state != ZEL_STATE_VERIFIED) throw library_failure("approved service", state);
  if (!flags_.legacy) return;
  const int opened = KZEL_CC_SetStateNotVerifiedService();
  if (opened != ZEL_STATE_NOT_VERIFIED) throw library_failure("--legacy", opened);
  warn("--legacy opens algorithms that are not approved");
}

void Session::note(std::string_view text) {
  if (flags_.verbose) console::line("zel " + command_ + ": " + std::string(text));
}

void Session::warn(std::string_view text) {
  if (!flags_.quiet) console::line("zel " + command_ + ": warning: " + std::string(text));
}

void Session::complain(const Failure &cause) {
  console::line("zel " + command_ + ": " + cause.line());
  ends(cause.exit());
  if (flags_.json) result()["errors"].push_back(cause.line());
}

void Session::ends(Exit exit) noexcept {
  if (gravity(exit) > gravity(exit_)) exit_ = exit;
}

std::unique_ptr<Progress> Session::progress(std::string task, std::optional<std::uint64_t> total,
                                            Unit unit) {
  const bool silent = flags_.quiet && progress_mode_ == ProgressMode::kAuto;
  return std::make_unique<Progress>(silent ? ProgressMode::kNever : progress_mode_, std::move(task),
                                    total, unit);
}

Output &Session::open_output(mode_t mode) {
  output_ = std::make_unique<Output>(output(), flags_.force, mode);
  return *output_;
}

Output &Session::open_data(const std::string &path, bool readable, mode_t mode) {
  output_ = std::make_unique<Output>(flags_.output.value_or(path), flags_.force, mode);
  if (!output_->is_standard_output()) return *output_;
  if (flags_.json) {
    throw Failure(Exit::kUsage, "--json", "the data would mix with the object",
                  "write the data to a file with -o");
  }
  if (!readable && output_->is_terminal()) {
    throw Failure(Exit::kUsage, "standard output", "a terminal, where such bytes do harm",
                  "write them to a file with -o, or into a pipe");
  }
  return *output_;
}

void Session::print(std::string_view text) {
  if (!output_) open_output();
  if (output_->is_standard_output() && flags_.json) return;
  output_->write(text);
  if (!output_->is_standard_output()) return;
  if (output_->is_terminal()) console::make_room();
  output_->flush();
}

void Session::close() {
  // An output that is a file is only put in place by a run that did all it was asked to.
  const bool complete = exit_ == Exit::kDone || exit_ == Exit::kVerification;
  if (output_ && complete) output_->commit();
  output_.reset();
  if (!flags_.json) return;
  Json object = {{"command", command_}, {"exit", static_cast<int>(exit_)}};
  object.update(result());
  Output standard("-", false);
  standard.write(to_text(object) + "\n");
  standard.commit();
}

}  // namespace zel::tool
