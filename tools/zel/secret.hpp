// Bytes that must not stay in memory.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/wipe.hpp"

namespace zel::tool {

/// A buffer of fixed capacity, so that growing leaves no copies, which is zeroed with its scope.
class Secret {
 public:
  explicit Secret(std::size_t capacity) { bytes_.resize(capacity); }
  Secret(const Secret &) = delete;
  Secret &operator=(const Secret &) = delete;
  Secret(Secret &&) noexcept = default;
  Secret &operator=(Secret &&) = delete;
  ~Secret() {
    if (!bytes_.empty()) wipe(bytes_.data(), bytes_.size());  // empty once it was moved from
  }

  std::span<const std::uint8_t> bytes() const noexcept { return {bytes_.data(), len_}; }
  std::span<std::uint8_t> room() noexcept { return std::span(bytes_).subspan(len_); }
  /// Takes in the first `len` bytes of the room.
  void grow(std::size_t len) noexcept { len_ += len; }
  /// Gives the last `len` bytes back to the room.
  void shrink(std::size_t len) noexcept { len_ -= len; }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t len_ = 0;
};

}  // namespace zel::tool
