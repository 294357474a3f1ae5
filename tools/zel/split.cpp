// zel split: a secret into share files.
#include <unistd.h>

#include "tools/zel/command.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/sharing.hpp"

namespace zel::tool {
namespace {

constexpr mode_t kPrivate = 0600;

struct SplitOptions {
  std::optional<std::uint64_t> threshold;
  std::optional<std::uint64_t> count;
  std::optional<std::string> file;
};

std::uint32_t in_range(std::optional<std::uint64_t> given, std::uint32_t usual, const char *option,
                       std::uint32_t least, std::uint32_t most) {
  const std::uint64_t value = given.value_or(usual);
  if (value >= least && value <= most) return static_cast<std::uint32_t>(value);
  throw Failure(Exit::kUsage, option + (" " + std::to_string(value)), "out of range",
                "choose from " + std::to_string(least) + " to " + std::to_string(most));
}

Secret read_secret(const std::string &file) {
  Input input(file);
  Secret secret(kMaxSecretLen + 1);
  while (const std::size_t got = input.read(secret.room())) {
    secret.grow(got);
    if (secret.bytes().size() > kMaxSecretLen) {
      throw Failure(
          Exit::kMalformed, file,
          "longer than the " + std::to_string(kMaxSecretLen) + " bytes that can be shared",
          "encrypt it under a random key, and share the key");
    }
  }
  if (secret.bytes().empty()) {
    throw Failure(Exit::kMalformed, file, "empty: there is nothing to share", "name the secret");
  }
  return secret;
}

using Names = std::vector<std::string>;
using Outputs = std::vector<std::unique_ptr<Output>>;

/// Puts all files in place, or none. What -f has replaced before a failure is a share already.
void write_files(const Outputs &outputs, const Names &names, const std::vector<Share> &shares) {
  std::vector<bool> is_new;
  for (const std::string &name : names)
    is_new.push_back(!exists(name));
  for (std::size_t i = 0; i < shares.size(); ++i) {
    std::string text = to_text(shares[i]);
    outputs[i]->write(text);
    wipe(text.data(), text.size());
  }
  std::size_t done = 0;
  try {
    for (; done < outputs.size(); ++done)
      outputs[done]->commit();
  } catch (const Failure &) {
    for (std::size_t i = 0; i < done; ++i) {
      if (is_new[i]) ::unlink(names[i].c_str());
    }
    throw;
  }
}

void print(Session &session, const std::vector<Share> &shares) {
  for (const Share &share : shares) {
    std::string text = (share.index == 1 ? "" : "\n") + to_text(share);
    session.print(text);
    wipe(text.data(), text.size());
  }
}

/// Two shares in one file would be one.
void require_own_files(const Names &names) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (!are_one_file(names[j], names[i])) continue;
      throw Failure(Exit::kFile, names[i], "leads to the same file as " + shown(names[j]),
                    "remove the link, or choose another name with -o");
    }
  }
}

/// Standard output, or the name that the numbers of the shares are put behind.
std::string base_name(const Session &session, const std::string &file) {
  if (!session.flags().output && file == "-") {
    throw Failure(Exit::kUsage, "-o", "not given, and standard input has no name for the shares",
                  "choose one, as in -o key for key.share1 and so on");
  }
  const std::string base = session.flags().output.value_or(file);
  if (base == "-" && session.flags().json) {
    throw Failure(Exit::kUsage, "--json", "the shares do not fit into the object",
                  "write them to files with -o");
  }
  return base;
}

void run(Session &session, const SplitOptions &options) {
  require_key_sharing();
  const std::uint32_t threshold = in_range(options.threshold, 2, "--threshold", 2, 3);
  const std::uint32_t count =
      in_range(options.count, 3, "--shares", threshold, ZEL_KEYSHARE_MAX_SHARES);
  const std::string file = options.file.value_or("-");
  const std::string base = base_name(session, file);
  const Secret secret = read_secret(file);
  Names names;
  Outputs outputs;  // opened before the work begins, which may take seconds
  for (std::uint32_t i = 1; i <= count && base != "-"; ++i)
    names.push_back(base + ".share" + std::to_string(i));
  require_own_files(names);
  for (const std::string &name : names)
    outputs.push_back(std::make_unique<Output>(name, session.flags().force, kPrivate));
  const std::vector<Share> shares = split_secret(secret.bytes(), threshold, count);
  base == "-" ? print(session, shares) : write_files(outputs, names, shares);
  const std::string set = to_hex(shares.front().header.set);
  session.note("set " + set + ", threshold " + std::to_string(threshold));
  session.result()["threshold"] = threshold;
  session.result()["set"] = set;
  session.result()["shares"] = names;
}

}  // namespace

Command split_command() {
  const auto options = std::make_shared<SplitOptions>();
  Command command{
      "split",
      "A secret into shares, of which some give it back",
      "Splits the bytes of FILE, 1 to " + std::to_string(kMaxSecretLen) +
          ", into two to five shares by Shamir's scheme. Any two of them, or any three, give "
          "exactly those bytes back; fewer say nothing about them but their number. The shares go "
          "to FILE.share1, FILE.share2 and so on, or NAME.share1 with -o NAME, text files that "
          "their owner alone can read; with -o - all go to standard output. Give each to another "
          "person, and delete FILE when you have tried 'zel combine'.\n"
          "The bytes of FILE count as they are, a final line end included. To share more, encrypt "
          "it under a random key and share the key.\n"
          "Key sharing is not an approved service and wants --legacy.",
      {{"a key into three shares, of which two are enough",
        "head -c 32 /dev/urandom > box.key; zel split --legacy -f box.key"},
       {"a password, three of five",
        "printf %s 'correct horse' | zel split --legacy -t 3 -n 5 -f -o pw"},
       {"on paper", "printf %s 'correct horse' | zel split --legacy -o - | pr -h 'cut here'"}}};
  command.positionals = {
      {"", "", "FILE", "The secret; - or none is standard input", &options->file}};
  command.options = {{"t",
                      "threshold",
                      "T",
                      "How many shares give it back: 2, as when not given, or 3",
                      &options->threshold,
                      {"2", "3"}},
                     {"n", "shares", "N", "How many shares to make, at most 5; 3 when not given",
                      &options->count}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
