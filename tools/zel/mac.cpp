// zel mac: authentication codes of files and streams.
#include <algorithm>
#include <iterator>

#include "base/ct.hpp"
#include "tools/zel/digest_job.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_source.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kSafeKeyLen = 14;  // 112 bits: NIST SP 800-131A

struct MacOptions {
  DigestOptions digest;
  KeySource key;
  std::optional<std::string> nonce;
  std::optional<std::string> verify;
};

bool reads_standard_input(const MacOptions &options) {
  const DigestOptions &digest = options.digest;
  if (digest.files.empty() && digest.lists.empty()) return true;
  const auto is_dash = [](const std::string &file) { return file == "-"; };
  return std::any_of(digest.files.begin(), digest.files.end(), is_dash) ||
         std::any_of(digest.lists.begin(), digest.lists.end(), is_dash);
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

constexpr std::size_t kNonceLen = 12;

/// The nonce of GMAC. One that serves two messages gives the hash key away.
Bytes obtain_nonce(const MacOptions &options) {
  if (!options.nonce) return {};
  if (!options.digest.algorithm || !options.digest.algorithm->starts_with("gmac")) {
    throw Failure(Exit::kUsage, "--nonce", "is for gmac-* alone",
                  "name the algorithm, as in '-a gmac-aria-256'");
  }
  auto nonce = from_hex(*options.nonce);
  if (!nonce || nonce->size() != kNonceLen) {
    throw Failure(Exit::kMalformed, "--nonce", "not 24 hexadecimal digits",
                  "draw it with 'zel rand 12'");
  }
  if (options.digest.form.tagged || !options.digest.lists.empty()) {
    throw Failure(Exit::kUsage, "--nonce", "serves one message, and GMAC has no lists",
                  "leave out --tag and -c, and check one file with --verify");
  }
  if (options.digest.files.size() > 1) {
    throw Failure(Exit::kUsage, "--nonce", "serves one message, and several files are named",
                  "give each file a nonce of its own");
  }
  return std::move(*nonce);
}

/// All there is: without a nonce no GMAC, with one nothing else.
std::vector<Scheme> mac_schemes(const MacOptions &options, const Secret &key, const Bytes &nonce) {
  if (options.nonce) return gmac_schemes(key.bytes(), nonce);
  if (options.digest.algorithm && options.digest.algorithm->starts_with("gmac")) {
    throw Failure(Exit::kUsage, *options.digest.algorithm, "needs a nonce",
                  "add --nonce with 24 hexadecimal digits that were never used with this key");
  }
  auto schemes = hmac_schemes(key.bytes());
  std::ranges::move(cmac_schemes(key.bytes()), std::back_inserter(schemes));
  return schemes;
}

void run(Session &session, const MacOptions &options) {
  const Bytes nonce = obtain_nonce(options);
  const Secret key = obtain_key(session, options.key, reads_standard_input(options));
  check_key(session, key);
  const auto schemes = mac_schemes(options, key, nonce);
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
      "Authentication codes (HMAC, CMAC, GMAC) of files and streams, and their verification",
      "Prints a line for each FILE: its HMAC under the key, and its name. With --verify it "
      "compares "
      "the code of one FILE with a given one, in constant time; with -c it checks lists that it "
      "wrote before.\n"
      "The bytes of a key file count as they are, a final line end included. A key on the command "
      "line can be read by every user of the machine and stays in the history of the shell: prefer "
      "a file of mode 0600, or a descriptor, as in --key-fd 3 3<key.\n"
      "Algorithms: those of 'zel hash', here also called hmac-sha256 and so on; cmac-aria-256 and "
      "the "
      "like for every block cipher of 'zel raw'; with --nonce, gmac-aria-256 and the like for "
      "those "
      "with blocks of 16 bytes. CMAC over ciphers with blocks of 8 bytes has a constant of this "
      "library's own, and agrees with no other program.",
      {{"make a key, then the code of a file",
        "(umask 077; head -c 32 /dev/urandom > mac.key); zel mac --key-file mac.key /etc/passwd"},
       {"write a list, then check it",
        "zel mac --key-file mac.key -o list.txt -f /etc/passwd && zel mac --key-file mac.key -c "
        "list.txt"},
       {"CMAC with ARIA under a key of 32 bytes",
        "zel rand --raw 32 -f -o aria.key; zel mac -a cmac-aria-256 --key-file aria.key "
        "/etc/passwd"},
       {"GMAC with ARIA",
        "zel rand --raw 32 -f -o aria.key; zel mac -a gmac-aria-256 --key-file aria.key --nonce "
        "$(zel rand 12) /etc/passwd"},
       {"verify one code (test case 2 of RFC 4231)",
        "printf 'what do ya want for nothing?' | zel mac --key-hex 4a656665 --verify "
        "5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"}}};
  command.options = key_source_options(options->key);
  command.options.push_back(
      {"", "nonce", "HEX", "GMAC: 12 bytes, new for each message", &options->nonce});
  command.options.push_back(
      {"", "verify", "TAG", "Compare the code of FILE with TAG", &options->verify});
  add_digest_options(command, options->digest);
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
