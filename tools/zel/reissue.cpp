// zel reissue: one more share for a set of threshold two.
#include <algorithm>

#include "tools/zel/command.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/sharing.hpp"

namespace zel::tool {
namespace {

struct ReissueOptions {
  std::optional<std::uint64_t> index;
  std::vector<std::string> files;
};

/// As given, but not that of another share, or one after the highest.
std::uint32_t index_for(const std::vector<Share> &shares, std::optional<std::uint64_t> given) {
  const auto lower = [](const Share &a, const Share &b) { return a.index < b.index; };
  const std::uint64_t highest = std::max_element(shares.begin(), shares.end(), lower)->index;
  const std::uint64_t index = given.value_or(highest + 1);
  const auto twin = std::find_if(shares.begin(), shares.end(),
                                 [index](const Share &share) { return share.index == index; });
  if (twin != shares.end()) {
    throw Failure(Exit::kUsage, "--index " + std::to_string(index),
                  "the number of " + shown(twin->source), "choose one that no share has");
  }
  if (index >= 1 && index <= kMaxIndex) return static_cast<std::uint32_t>(index);
  throw Failure(Exit::kUsage, "--index " + std::to_string(index), "out of range",
                "choose from 1 to " + std::to_string(kMaxIndex));
}

void run(Session &session, const ReissueOptions &options) {
  require_key_sharing();
  if (session.flags().json && session.output() == "-") {
    throw Failure(Exit::kUsage, "--json", "the share does not fit into the object",
                  "write it to a file with -o");
  }
  const std::vector<std::string> standard_input{"-"};
  const auto shares = read_shares(options.files.empty() ? standard_input : options.files);
  const Share share = reissue_share(shares, index_for(shares, options.index));
  constexpr mode_t kPrivate = 0600;
  session.open_output(kPrivate);
  std::string text = to_text(share);
  session.print(text);
  wipe(text.data(), text.size());
  session.result()["set"] = to_hex(share.header.set);
  session.result()["index"] = share.index;
}

}  // namespace

Command reissue_command() {
  const auto options = std::make_shared<ReissueOptions>();
  Command command{
      "reissue",
      "One more share of a secret, from two of its shares",
      "Makes a new share from two or more of a set with threshold 2, without writing the secret "
      "anywhere. It works with every share of the set. The lost one that it stands in for works "
      "too, should it be found: to shut it out, combine the shares and split the secret anew.\n"
      "The failures and their exit codes are those of 'zel combine'. A file that -o names is "
      "readable by its owner alone.\n"
      "Key sharing is not an approved service and wants --legacy.",
      {{"a new share for the lost second",
        "head -c 32 /dev/urandom > box.key; zel split --legacy -f box.key; rm box.key.share2; zel "
        "reissue --legacy --index 2 -o box.key.share2 box.key.share1 box.key.share3"},
       {"it works", "zel combine --legacy box.key.share2 box.key.share1 | cmp - box.key"}}};
  command.positionals = {{"", "", "FILE", "Shares; - or none is standard input", &options->files}};
  command.options = {{"", "index", "N",
                      "Number of the new share; one after the highest when not given",
                      &options->index}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
