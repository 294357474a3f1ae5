// The clock that the older generators mix in.
#pragma once

#include <cstdint>
#include <ctime>

namespace zel {

/// Seconds since the epoch and processor time in one word.
inline std::uint32_t clock_word() noexcept {
  return static_cast<std::uint32_t>(std::time(nullptr)) + static_cast<std::uint32_t>(std::clock());
}

}  // namespace zel
