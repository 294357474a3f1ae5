// zel combine: the secret of some shares.
#include <algorithm>

#include "tools/zel/command.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/sharing.hpp"

namespace zel::tool {
namespace {

using Files = std::vector<std::string>;

bool is_text(std::span<const std::uint8_t> bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) {
    return (byte < ' ' && byte != '\n' && byte != '\t') || byte == 0x7f;
  });
}

void run(Session &session, const Files &files) {
  require_key_sharing();
  if (session.flags().json && session.output() == "-") {
    throw Failure(Exit::kUsage, "--json", "the secret does not belong into the object",
                  "write it to a file with -o");
  }
  const std::vector<Share> shares = read_shares(files.empty() ? Files{"-"} : files);
  const Secret secret = combine_shares(shares);
  constexpr mode_t kPrivate = 0600;
  Output &output = session.open_output(kPrivate);
  if (output.is_terminal() && !is_text(secret.bytes())) {
    throw Failure(Exit::kUsage, "secret", "not text: its bytes would garble the terminal",
                  "write them to a file with -o");
  }
  output.write(secret.bytes());
  output.flush();
  session.result()["set"] = to_hex(shares.front().header.set);
  session.result()["threshold"] = shares.front().header.threshold;
  session.result()["bytes"] = secret.bytes().size();
}

}  // namespace

Command combine_command() {
  const auto files = std::make_shared<Files>();
  Command command{
      "combine",
      "The secret of some shares",
      "Reads shares that 'zel split' and 'zel reissue' made, and writes the secret: exactly the "
      "bytes that were split. A FILE may hold several shares one after another. Shares beyond the "
      "threshold must agree with the others.\n"
      "The exit code is 2 when there are too few shares, 6 when a file is damaged or the shares "
      "are of different secrets, and 1 when a share was altered with care; nothing is written "
      "then. A file that -o names is readable by its owner alone.\n"
      "Key sharing is not an approved service and wants --legacy.",
      {{"split a key, and get it back from two of three shares",
        "head -c 32 /dev/urandom > box.key; zel split --legacy -f box.key; zel combine --legacy "
        "box.key.share1 box.key.share3 | cmp - box.key"},
       {"shares from paper",
        "cat box.key.share2 box.key.share1 | zel combine --legacy -f -o again.key"}}};
  command.positionals = {{"", "", "FILE", "Shares; - or none is standard input", files.get()}};
  command.run = [files](Session &session) { run(session, *files); };
  return command;
}

}  // namespace zel::tool
