#include "tools/zel/interrupt.hpp"

#include <fcntl.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstring>

namespace zel::tool {

constinit std::atomic<bool> g_bar_is_shown{false};

namespace {

/// The paths lie in memory that the handler may read at any time.
struct Slot {
  std::atomic<bool> taken{false};
  std::atomic<bool> armed{false};
  std::array<char, PATH_MAX> path{};
};

constexpr std::size_t kSlots = 8;
constinit std::array<Slot, kSlots> g_slots{};

/// The terminal that is silent, or -1, and how it was before.
constinit std::atomic<int> g_silent{-1};
struct termios g_before {};

void restore_terminal() {
  const int number = g_silent.exchange(-1);
  if (number >= 0) ::tcsetattr(number, TCSANOW, &g_before);
}

void end(int signal_number) {
  restore_terminal();
  for (const Slot &slot : g_slots) {
    if (slot.armed.load()) ::unlink(slot.path.data());
  }
  if (g_bar_is_shown.load()) {
    constexpr char kClear[] = "\r\033[K";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kClear, sizeof kClear - 1);
  }
  // The handler was reset to the default when it was entered: this ends the program as the caller
  // expects it, with the signal in its wait status.
  static_cast<void>(::raise(signal_number));
}

}  // namespace

void install_signal_handlers() {
  struct sigaction action {};
  action.sa_handler = end;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  ::sigfillset(&action.sa_mask);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGQUIT, SIGALRM}) {
    struct sigaction now {};
    // What a parent told us to ignore (nohup) stays ignored.
    if (::sigaction(number, nullptr, &now) == 0 && now.sa_handler == SIG_IGN) continue;
    ::sigaction(number, &action, nullptr);
  }
  static_cast<void>(::signal(SIGXFSZ, SIG_IGN));
}

SilentTerminal::SilentTerminal(int number) {
  if (::tcgetattr(number, &g_before) != 0) return;  // not a terminal: nothing is shown
  struct termios silent = g_before;
  silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  g_silent.store(number);
  ::tcsetattr(number, TCSAFLUSH, &silent);
}

SilentTerminal::~SilentTerminal() { restore_terminal(); }

Temporary::Temporary(const std::string &path) : slot_(kSlots) {
  if (path.size() >= PATH_MAX) return;  // no file can have that name
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (g_slots[i].taken.exchange(true)) continue;
    std::memcpy(g_slots[i].path.data(), path.c_str(), path.size() + 1);
    g_slots[i].armed.store(true);
    slot_ = i;
    return;
  }
}

Temporary::~Temporary() {
  if (slot_ == kSlots) return;
  g_slots[slot_].armed.store(false);
  g_slots[slot_].taken.store(false);
}

}  // namespace zel::tool
