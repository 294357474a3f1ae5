// zel mac: authentication codes of files and streams.
#include <algorithm>

#include "base/ct.hpp"
#include "tools/zel/digest_job.hpp"
#include "tools/zel/json.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kKeyLimit = std::size_t{1} << 20;
constexpr std::size_t kSafeKeyLen = 14;  // 112 bits: NIST SP 800-131A

struct MacOptions {
  DigestOptions digest;
  std::optional<std::string> key_file;
  std::optional<std::string> key_hex_file;
  std::optional<std::uint64_t> key_fd;
  std::optional<std::string> key_hex;
  std::optional<std::string> verify;
};

Secret read_key(const std::string &path) {
  Input input(path);
  Secret key(kKeyLimit + 1);
  while (const std::size_t got = input.read(key.room())) {
    key.grow(got);
    if (key.bytes().size() > kKeyLimit) {
      throw Failure(Exit::kMalformed, path, "longer than 1 MiB, which no key is",
                    "name the key file");
    }
  }
  return key;
}

bool is_space(std::uint8_t byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

/// Digits with or without white space between them.
Secret decode_key(std::span<const std::uint8_t> digits, const std::string &source) {
  Secret key(digits.size() / 2 + 1);
  char pair[2];
  std::size_t count = 0;
  const auto fail = [&source](const char *problem) {
    throw Failure(Exit::kMalformed, source, problem, "write the key as pairs of digits 0-9 a-f");
  };
  for (const std::uint8_t byte : digits) {
    if (is_space(byte)) continue;
    pair[count++ % 2] = static_cast<char>(byte);
    if (count % 2 != 0) continue;
    const auto value = from_hex({pair, 2});
    if (!value) fail("not a hexadecimal key");
    key.room()[0] = value->front();
    key.grow(1);
  }
  if (count % 2 != 0) fail("an odd number of hexadecimal digits");
  return key;
}

Secret read_hex_key(const std::string &path) {
  const Secret digits = read_key(path);
  return decode_key(digits.bytes(), path);
}

bool reads_standard_input(const MacOptions &options) {
  const DigestOptions &digest = options.digest;
  if (digest.files.empty() && digest.lists.empty()) return true;
  const auto is_dash = [](const std::string &file) { return file == "-"; };
  return std::any_of(digest.files.begin(), digest.files.end(), is_dash) ||
         std::any_of(digest.lists.begin(), digest.lists.end(), is_dash);
}

Secret obtain_key(Session &session, const MacOptions &options) {
  const int given = options.key_file.has_value() + options.key_hex_file.has_value() +
                    options.key_fd.has_value() + options.key_hex.has_value();
  if (given != 1) {
    throw Failure(Exit::kUsage, "key", given == 0 ? "none given" : "more than one given",
                  "use one of --key-file, --key-hex-file, --key-fd and --key-hex");
  }
  const bool from_stdin =
      options.key_file == "-" || options.key_hex_file == "-" || options.key_fd == 0U;
  if (from_stdin && reads_standard_input(options)) {
    throw Failure(Exit::kUsage, "-", "the key and the data cannot both be standard input",
                  "name the data FILE, or give the key with --key-fd 3");
  }
  if (options.key_file) return read_key(*options.key_file);
  if (options.key_hex_file) return read_hex_key(*options.key_hex_file);
  if (options.key_fd) return read_key("/dev/fd/" + std::to_string(*options.key_fd));
  session.warn("--key-hex shows the key to everyone who lists processes; prefer --key-hex-file");
  const std::string &digits = *options.key_hex;
  return decode_key({reinterpret_cast<const std::uint8_t *>(digits.data()), digits.size()},
                    "--key-hex");
}

void check_key(Session &session, const Secret &key) {
  if (key.bytes().empty()) {
    throw Failure(Exit::kMalformed, "key", "empty", "give a key of at least 16 random bytes");
  }
  if (key.bytes().size() < kSafeKeyLen) {
    session.warn("a key of " + std::to_string(8 * key.bytes().size()) +
                 " bits is shorter than the 112 that NIST SP 800-131A asks for");
  }
}

/// One file against one code.
void verify(Session &session, const MacOptions &options, const Scheme &scheme) {
  const auto expected = from_hex(*options.verify);
  if (!expected || expected->size() != scheme.digest_len) {
    throw Failure(Exit::kMalformed, "--verify",
                  "not a code of " + std::to_string(2 * scheme.digest_len) +
                      " hexadecimal digits, as " + scheme.name + " makes them",
                  "give the whole code, or the algorithm with -a");
  }
  const std::vector<std::string> &files = options.digest.files;
  if (files.size() > 1) {
    throw Failure(Exit::kUsage, "--verify", "one code but several files", "use -c LIST");
  }
  const std::string file = files.empty() ? "-" : files.front();
  const auto progress = session.progress("verify", total_size({file}));
  const FileDigest digest = digest_of(file, scheme, *progress);
  progress->finish();
  const bool good = ct::equal(digest.digest.data(), expected->data(), expected->size());
  session.result()["algorithm"] = scheme.name;
  set_file_name(session.result(), file);
  session.result()["verified"] = good;
  if (!good) {
    throw Failure(Exit::kVerification, file, "the code does not match: changed, or another key",
                  "do not use it");
  }
  if (!session.flags().quiet) session.print(shown(file) + ": OK\n");
}

void run(Session &session, const MacOptions &options) {
  const Secret key = obtain_key(session, options);
  check_key(session, key);
  const auto schemes = hmac_schemes(key.bytes());
  if (!options.verify) {
    run_digest_job(session, options.digest, schemes);
    return;
  }
  if (!options.digest.lists.empty()) {
    throw Failure(Exit::kUsage, "--verify", "cannot stand beside -c", "use one of them");
  }
  verify(session, options, chosen_scheme(options.digest, schemes));
}

}  // namespace

Command mac_command() {
  const auto options = std::make_shared<MacOptions>();
  Command command{
      "mac",
      "Authentication codes (HMAC) of files and streams, and their verification",
      "Prints a line for each FILE: its HMAC under the key, and its name. With --verify it "
      "compares "
      "the code of one FILE with a given one, in constant time; with -c it checks lists that it "
      "wrote before.\n"
      "The bytes of a key file count as they are, a final line end included. A key on the command "
      "line can be read by every user of the machine and stays in the history of the shell: prefer "
      "a file of mode 0600, or a descriptor, as in --key-fd 3 3<key.\n"
      "Algorithms: as those of 'zel hash', here also called hmac-sha256 and so on.",
      {{"make a key, then the code of a file",
        "(umask 077; head -c 32 /dev/urandom > mac.key); zel mac --key-file mac.key /etc/passwd"},
       {"write a list, then check it",
        "zel mac --key-file mac.key -o list.txt -f /etc/passwd && zel mac --key-file mac.key -c "
        "list.txt"},
       {"verify one code (test case 2 of RFC 4231)",
        "printf 'what do ya want for nothing?' | zel mac --key-hex 4a656665 --verify "
        "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"}}};
  command.options = {
      {"", "key-file", "FILE", "Key: the bytes of FILE", &options->key_file},
      {"", "key-hex-file", "FILE", "Key: hexadecimal digits in FILE", &options->key_hex_file},
      {"", "key-fd", "N", "Key: bytes from the open descriptor N", &options->key_fd},
      {"", "key-hex", "HEX", "Key: hexadecimal digits, for all to see", &options->key_hex},
      {"", "verify", "TAG", "Compare the code of FILE with TAG", &options->verify}};
  add_digest_options(command, options->digest);
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
