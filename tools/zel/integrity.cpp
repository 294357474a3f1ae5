// zel integrity: the library file against its companion, and how the companion is written.
#include "tools/zel/json.hpp"
#include "tools/zel/module_file.hpp"

namespace zel::tool {
namespace {

struct Options {
  std::optional<std::string> check;
  std::optional<std::string> stamp;
};

void check(Session &session, const std::string &library) {
  const Integrity found = examine(library);
  fill(session.result(), found);
  session.print(shown(library) + (found.good() ? ": OK\n" : ": FAILED\n"));
  if (!found.good())
    session.complain(Failure(Exit::kSelfTest, library, found.problem, found.advice));
}

void stamp(Session &session, const std::string &library) {
  const std::string companion = companion_of(library);
  Output output(companion, session.flags().force);
  output.write(module_digest(library) + "\n");
  output.commit();
  session.note(shown(companion) + " written");
  check(session, library);
}

}  // namespace

Command integrity_command() {
  const auto options = std::make_shared<Options>();
  Command command{
      "integrity",
      "The library file against its companion digest",
      "Compares a library file with the digest in its companion, the file of the same name with "
      ".hmac behind it, and says why they do not match. Without an option it takes the library "
      "that "
      "the command itself uses.\n"
      "The companion holds an HMAC-SHA-1 under a key that everybody can read from the library: it "
      "shows damage and mistakes, not the work of someone who can write both files. The build and "
      "the installation write it; --stamp is for those who change the file afterwards.",
      {{"the library that is in use", "zel integrity"},
       {"a library that was stripped",
        "cp /bin/true lib.so && zel integrity --stamp lib.so -f && zel integrity --check lib.so"}}};
  command.options = {
      {"", "check", "FILE", "Compare FILE with its companion", &options->check},
      {"", "stamp", "FILE", "Write the companion of FILE, then compare", &options->stamp},
  };
  command.service = Service::kAsStarted;
  command.run = [options](Session &session) {
    if (options->check && options->stamp) {
      throw Failure(Exit::kUsage, "--check and --stamp", "not both",
                    "--stamp checks what it wrote");
    }
    if (options->stamp) return stamp(session, *options->stamp);
    check(session, options->check.value_or(library_path()));
  };
  return command;
}

}  // namespace zel::tool
