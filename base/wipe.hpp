// Secrets leave with their scope.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "base/bytes.hpp"

namespace zel {

/// Zeroes memory in a way that the compiler cannot drop.
inline void wipe(void *from, std::size_t len) noexcept {
  std::memset(from, 0, len);
  __asm__ volatile("" : : "r"(from) : "memory");
}

/// The same for an object; small ones without a call.
template <class T>
inline void wipe_object(T &object) noexcept {
  constexpr std::size_t kSmall = 512;
  if constexpr (sizeof(T) <= kSmall) {
    zero<sizeof(T)>(&object);
    __asm__ volatile("" : : "r"(&object) : "memory");
  } else {
    wipe(&object, sizeof(T));
  }
}

/// Calls `body`, then zeroes `kDepth` bytes of the stack that it used: what the compiler kept there
/// of registers belongs to no object that could be wiped.
template <std::size_t kDepth, class Body>
inline auto with_wiped_stack(const Body &body) noexcept {
  struct Below {
    [[gnu::noinline]] static auto call(const Body &inner) noexcept { return inner(); }
    [[gnu::noinline]] static void clear() noexcept {
      unsigned char room[kDepth];
      wipe(room, sizeof room);
    }
  };
  const auto result = Below::call(body);
  Below::clear();
  return result;
}

/// An object on the stack that is zeroed when its scope ends. Not initialised unless `{}` is asked.
template <class T>
class Wiped {
 public:
  static_assert(std::is_trivially_copyable_v<T>);
  Wiped() noexcept {}  // NOLINT(modernize-use-equals-default): leaves the value uninitialised
  explicit Wiped(const T &value) noexcept : value_(value) {}
  Wiped(const Wiped &) = delete;
  Wiped &operator=(const Wiped &) = delete;
  ~Wiped() { wipe_object(value_); }

  T &operator*() noexcept { return value_; }
  const T &operator*() const noexcept { return value_; }
  T *operator->() noexcept { return &value_; }
  const T *operator->() const noexcept { return &value_; }

 private:
  union {
    T value_;
  };
};

/// A heap buffer that is zeroed and freed when its scope ends. Test it before use: null on failure.
template <class T>
class Scratch {
 public:
  static_assert(std::is_trivially_copyable_v<T>);
  explicit Scratch(std::size_t count) noexcept
      : data_(static_cast<T *>(std::calloc(count == 0 ? 1 : count, sizeof(T)))), count_(count) {}
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;
  ~Scratch() {
    if (data_ != nullptr) wipe(data_, count_ * sizeof(T));
    std::free(data_);
  }

  explicit operator bool() const noexcept { return data_ != nullptr; }
  T *data() noexcept { return data_; }
  std::size_t size() const noexcept { return count_; }
  T &operator[](std::size_t i) noexcept { return data_[i]; }

 private:
  T *data_;
  std::size_t count_;
};

}  // namespace zel
