// zel selftest: every self-test of the library with its time, and the way into the verified
// service.
#include <chrono>
#include <cstdio>

#include "tools/zel/json.hpp"
#include "tools/zel/module_file.hpp"
#include "tools/zel/strong_rand.h"
#include "zel_cc.h"

namespace zel::tool {
namespace {

struct Test {
  const char *group;
  const char *name;
  int32_t (*run)();
};

/// By groups; `zel selftest` runs each of them, and then the ordered run.
constexpr Test kTests[] = {
    {"ciphers", "ARIA-128", SELFTEST_ARIA_128K},
    {"ciphers", "ARIA-192", SELFTEST_ARIA_192K},
    {"ciphers", "ARIA-256", SELFTEST_ARIA_256K},
    {"ciphers", "SEED", SELFTEST_SEED},
    {"hashes", "SHA-224", SELFTEST_SHA224},
    {"hashes", "SHA-256", SELFTEST_SHA256},
    {"hashes", "SHA-384", SELFTEST_SHA384},
    {"hashes", "SHA-512", SELFTEST_SHA512},
    {"HMAC", "HMAC-SHA-224", SELFTEST_HMAC_SHA224},
    {"HMAC", "HMAC-SHA-256", SELFTEST_HMAC_SHA256},
    {"HMAC", "HMAC-SHA-384", SELFTEST_HMAC_SHA384},
    {"HMAC", "HMAC-SHA-512", SELFTEST_HMAC_SHA512},
    {"CMAC", "CMAC ARIA-128", SELFTEST_CMAC_ARIA128},
    {"CMAC", "CMAC ARIA-192", SELFTEST_CMAC_ARIA192},
    {"CMAC", "CMAC ARIA-256", SELFTEST_CMAC_ARIA256},
    {"CMAC", "CMAC SEED", SELFTEST_CMAC_SEED},
    {"CCM", "CCM ARIA-128", SELFTEST_CCM_ARIA128},
    {"CCM", "CCM ARIA-192", SELFTEST_CCM_ARIA192},
    {"CCM", "CCM ARIA-256", SELFTEST_CCM_ARIA256},
    {"CCM", "CCM SEED", SELFTEST_CCM_SEED},
    {"GCM", "GCM ARIA-128", SELFTEST_GMAC_ARIA128},
    {"GCM", "GCM ARIA-192", SELFTEST_GMAC_ARIA192},
    {"GCM", "GCM ARIA-256", SELFTEST_GMAC_ARIA256},
    {"GCM", "GCM SEED", SELFTEST_GMAC_SEED},
    {"generators", "entropy", SELFTEST_EntropyHeathTest},
    {"generators", "Hash_DRBG SHA-224", SELFTEST_HASH_DRBG224},
    {"generators", "Hash_DRBG SHA-256", SELFTEST_HASH_DRBG256},
    {"generators", "Hash_DRBG SHA-384", SELFTEST_HASH_DRBG384},
    {"generators", "Hash_DRBG SHA-512", SELFTEST_HASH_DRBG512},
    {"generators", "HMAC_DRBG SHA-224", SELFTEST_HMAC_DRBG224},
    {"generators", "HMAC_DRBG SHA-256", SELFTEST_HMAC_DRBG256},
    {"generators", "HMAC_DRBG SHA-384", SELFTEST_HMAC_DRBG384},
    {"generators", "HMAC_DRBG SHA-512", SELFTEST_HMAC_DRBG512},
    {"KCDSA", "KCDSA", SELFTEST_KCDSA},
    {"RSA", "RSAES-OAEP", SELFTEST_RSAES_OAEP},
    {"RSA", "RSASSA-PSS", SELFTEST_RSASSA_PSS},
    {"RSA", "RSASSA-PKCS1-v1_5", SELFTEST_RSASSA_PKCS1_V15},
    {"not approved", "SHA-1", SELFTEST_SHA1},
    {"not approved", "HAS-160", SELFTEST_HAS160},
    {"not approved", "HMAC-SHA-1", SELFTEST_HMAC_SHA1},
    {"not approved", "HMAC-HAS-160", SELFTEST_HMAC_HAS160},
    {"not approved", "DSA generator", SELFTEST_DSA_RNG_SHA1},
    {"not approved", "KCDSA generator", SELFTEST_KCDSA_RNG_HAS160},
};

struct Timed {
  int code;
  double milliseconds;
};

Timed timed(int32_t (*run)()) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const int code = run();
  return {code, std::chrono::duration<double, std::milli>(Clock::now() - start).count()};
}

std::string line(const std::string &name, bool passed, double milliseconds,
                 const std::string &more = "") {
  char text[96];
  std::snprintf(text, sizeof text, "%-20s %-7s %9.3f ms", name.c_str(), passed ? "ok" : "FAILED",
                milliseconds);
  return text + (more.empty() ? "" : "  " + more) + "\n";
}

/// What is said of a code: its meaning and its number; nothing of success.
std::string meaning(int code) {
  return code == ZEL_OK ? ""
                        : std::string(zel_error_text(code)) + " (" + std::to_string(code) + ")";
}

/// The tests of one group together.
struct Group {
  std::string name;
  unsigned passed = 0;
  unsigned all = 0;
  double milliseconds = 0;
};

class Run {
 public:
  explicit Run(Session &session) : session_(session) {}

  void all() {
    for (const Test &test : kTests)
      one(test);
    session_.print("\n");
    for (const Group &group : groups_)
      session_.print(line(group.name, group.passed == group.all, group.milliseconds,
                          std::to_string(group.passed) + " of " + std::to_string(group.all)));
  }

  /// What opens the verified service, and its time as a whole.
  void ordered() {
    const Timed done = timed(SELFTEST_VerifiedAlgorithm);
    session_.print(line("ordered run", done.code == ZEL_OK, done.milliseconds));
    session_.result()["ordered_run"] = {{"code", done.code}, {"milliseconds", done.milliseconds}};
    if (done.code != ZEL_OK) fails("ordered run", meaning(done.code));
  }

  void integrity() {
    const Integrity found = examine(library_path());
    fill(session_.result()["integrity"], found);
    session_.print("\nintegrity            " + std::string(found.good() ? "ok" : "FAILED") + "\n");
    if (!found.good())
      session_.complain({Exit::kSelfTest, found.library, found.problem, found.advice});
  }

 private:
  void one(const Test &test) {
    const Timed done = timed(test.run);
    const bool passed = done.code == ZEL_OK;
    if (groups_.empty() || groups_.back().name != test.group) groups_.push_back({test.group});
    Group &group = groups_.back();
    ++group.all;
    group.passed += passed ? 1 : 0;
    group.milliseconds += done.milliseconds;
    session_.print(line(test.name, passed, done.milliseconds, meaning(done.code)));
    session_.result()["tests"].push_back({{"group", test.group},
                                          {"name", test.name},
                                          {"code", done.code},
                                          {"milliseconds", done.milliseconds}});
    // What fails after that was refused for it.
    if (!passed && done.code != ZEL_ERR_STATE) fails(test.name, meaning(done.code));
  }

  void fails(const std::string &name, const std::string &problem) {
    session_.complain({Exit::kSelfTest, name, problem, "do not use this library"});
  }

  Session &session_;
  std::vector<Group> groups_;
};

void run_all(Session &session) {
  Run run(session);
  run.integrity();
  run.all();
  run.ordered();
  if (session.exit() == Exit::kDone) KZEL_CC_SetStateVerifiedService();
  const int state = KZEL_CC_GetState();
  const bool strong = zel_strong_rand_in_force() != 0;
  session.result()["state"] = {{"value", state}, {"name", state_name(state)}};
  session.result()["strong_rand"] = strong;
  session.print("\nrand and srand       " +
                std::string(strong ? "the kernel's generator" : "NOT the kernel's generator") +
                "\nmodule state         " + std::to_string(state) + ", " + state_name(state) +
                "\n");
}

}  // namespace

Command selftest_command() {
  Command command{
      "selftest",
      "Runs every self-test and shows its time",
      "Compares the library file with its companion digest, runs every self-test, and shows each "
      "with its result and its time. Then it runs those of the approved algorithms once more in "
      "their fixed order, which is what every command does first, and enters the verified "
      "service.\n"
      "A test that fails leaves the module in its error state, where it refuses everything.",
      {{"is everything in order?", "zel selftest"},
       {"the time of the run that every command begins with",
        "zel selftest --json | grep -o '\"ordered_run\":{[^}]*}'"}}};
  command.service = Service::kAsStarted;
  command.run = run_all;
  return command;
}

}  // namespace zel::tool
