#include "tools/zel/passphrase.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/zel/failure.hpp"
#include "tools/zel/files.hpp"
#include "tools/zel/interrupt.hpp"

namespace zel::tool {
namespace {

constexpr const char *kTerminal = "/dev/tty";

/// Byte by byte, since what follows the line may be meant for another reader.
Secret read_line(int number, const std::string &name) {
  Secret line(kPassphraseMost + 1);
  for (;;) {
    const ssize_t got = ::read(number, line.room().data(), 1);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw file_failure(name, errno);
    if (got == 0 || line.room()[0] == '\n') break;
    line.grow(1);
    if (line.room().empty()) {
      throw Failure(Exit::kMalformed, name, "a passphrase of more than 1024 bytes",
                    "give a shorter one");
    }
  }
  if (!line.bytes().empty() && line.bytes().back() == '\r') line.shrink(1);
  if (line.bytes().empty()) {
    throw Failure(Exit::kMalformed, name, "an empty passphrase", "give one of a line");
  }
  return line;
}

void show(const Descriptor &terminal, const std::string &text) {
  [[maybe_unused]] const ssize_t written = ::write(terminal.number(), text.data(), text.size());
}

Secret ask(const Descriptor &terminal, const std::string &prompt) {
  const SilentTerminal silence(terminal.number());
  show(terminal, prompt);
  Secret line = read_line(terminal.number(), "terminal");
  show(terminal, "\n");
  return line;
}

Descriptor open_terminal() {
  Descriptor terminal(::open(kTerminal, O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (terminal.number() >= 0) return terminal;
  throw Failure(Exit::kUsage, "passphrase", "there is no terminal to ask for it",
                "give it with --passphrase-fd or --passphrase-file");
}

Secret read_source(const PassphraseSource &source) {
  if (source.descriptor && source.file) {
    throw Failure(Exit::kUsage, "passphrase", "both a descriptor and a file are given",
                  "use one of them");
  }
  const std::string name =
      source.file ? *source.file : "descriptor " + std::to_string(*source.descriptor);
  if (!source.file) return read_line(static_cast<int>(*source.descriptor), name);
  if (name == "-") return read_line(STDIN_FILENO, name);
  const Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number() < 0) throw file_failure(name, errno);
  return read_line(file.number(), name);
}

}  // namespace

PassphraseSource passphrase_source(const Session &session) {
  return {session.flags().passphrase_fd, session.flags().passphrase_file};
}

Secret obtain_passphrase(const PassphraseSource &source, const std::string &what) {
  if (source.is_given()) return read_source(source);
  return ask(open_terminal(), "Passphrase for " + shown(what) + ": ");
}

Secret obtain_new_passphrase(const PassphraseSource &source, const std::string &what) {
  if (source.is_given()) return read_source(source);
  const Descriptor terminal = open_terminal();
  Secret first = ask(terminal, "New passphrase for " + shown(what) + ": ");
  const Secret second = ask(terminal, "The same again: ");
  const auto a = first.bytes();
  const auto b = second.bytes();
  if (a.size() != b.size() || std::memcmp(a.data(), b.data(), a.size()) != 0) {
    throw Failure(Exit::kUsage, "passphrase", "the two are not the same", "try again");
  }
  return first;
}

}  // namespace zel::tool
