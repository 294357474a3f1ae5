// What must not outlive the program: unfinished files and the progress bar, on Ctrl-C too.
#pragma once

#include <atomic>
#include <string>

namespace zel::tool {

/// Catches the signals that end a program, so that temporaries go first; a file that grows over the
/// limit becomes an error of the write.
void install_signal_handlers();

/// While it lives, a signal that ends the program also removes this file.
class Temporary {
 public:
  explicit Temporary(const std::string &path);
  ~Temporary();
  Temporary(const Temporary &) = delete;
  Temporary &operator=(const Temporary &) = delete;

 private:
  std::size_t slot_;
};

/// A terminal that does not show what is typed while this lives; a signal that ends the program
/// makes it show again. One at a time.
class SilentTerminal {
 public:
  explicit SilentTerminal(int number);
  ~SilentTerminal();
  SilentTerminal(const SilentTerminal &) = delete;
  SilentTerminal &operator=(const SilentTerminal &) = delete;
};

/// Whether a progress bar stands on the terminal: a signal then clears that line.
extern std::atomic<bool> g_bar_is_shown;

}  // namespace zel::tool
