#include "tools/zel/console.hpp"

#include <sys/ioctl.h>
#include <unistd.h>

#include <mutex>
#include <string>

#include "tools/zel/interrupt.hpp"

namespace zel::tool::console {
namespace {

std::mutex g_mutex;

void put(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    if (written <= 0) return;  // there is nowhere left to complain
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string_view clearing() {
  return g_bar_is_shown.exchange(false) ? std::string_view("\r\033[K") : std::string_view();
}

}  // namespace

void line(std::string_view text) {
  const std::lock_guard lock(g_mutex);
  put(std::string(clearing()).append(text).append("\n"));
}

void status(std::string_view text) {
  const std::lock_guard lock(g_mutex);
  if (text.empty()) {
    put(clearing());
    return;
  }
  g_bar_is_shown.store(true);
  put(std::string("\r").append(text).append("\033[K"));
}

void make_room() { status({}); }

bool is_terminal() { return ::isatty(STDERR_FILENO) == 1; }

unsigned columns() {
  struct winsize size {};
  if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

}  // namespace zel::tool::console
