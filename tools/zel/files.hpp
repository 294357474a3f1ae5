// Files in and out. An output that is a file appears under its name only when it is complete.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/zel/interrupt.hpp"

namespace zel::tool {

/// A descriptor that is closed with its scope.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) noexcept : number_(number) {}
  Descriptor(Descriptor &&other) noexcept : number_(other.release()) {}
  Descriptor &operator=(Descriptor &&other) noexcept;
  ~Descriptor();

  int number() const noexcept { return number_; }
  int release() noexcept;

 private:
  int number_;
};

/// A file, or standard input under the name "-", read from the front. Failures are `Failure`s.
class Input {
 public:
  explicit Input(const std::string &path);

  /// At most `buffer.size()` bytes; none at the end, and only there.
  std::size_t read(std::span<std::uint8_t> buffer);
  /// The size of a regular file.
  std::optional<std::uint64_t> size() const noexcept { return size_; }

 private:
  std::string path_;
  Descriptor own_;
  int number_;
  std::optional<std::uint64_t> size_;
};

/// Bytes that suit one read: large enough to be cheap, small enough to stay in the cache.
inline constexpr std::size_t kChunk = std::size_t{256} << 10;

/// Whether there is something under that name; standard input always is.
bool exists(const std::string &path);

/// Whether there is one regular file under both names.
bool are_one_file(const std::string &a, const std::string &b);

/// The size of a regular file, without opening it.
std::optional<std::uint64_t> size_of(const std::string &path);

/// A whole input of at most `limit` bytes; `Failure` when there are more.
std::string read_whole(Input &input, const std::string &path, std::size_t limit);

/// Standard output, or a file that is put in place by `commit` and otherwise leaves nothing behind.
class Output {
 public:
  /// Refuses an existing regular file unless `force`; devices and pipes are written as they are.
  Output(const std::string &path, bool force, mode_t mode = 0666);
  ~Output();
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;

  void write(std::string_view bytes);
  void write(std::span<const std::uint8_t> bytes);
  /// Hands on what was written so far.
  void flush();
  /// Makes the output complete: flushed, and a file synced and renamed.
  void commit();

  bool is_standard_output() const noexcept { return path_ == "-"; }
  bool is_terminal() const noexcept;
  /// Whether what is written is there at once, on standard output or a device.
  bool is_in_place() const noexcept { return temporary_.empty(); }
  /// For messages.
  std::string name() const { return is_standard_output() ? "standard output" : path_; }

 private:
  void open_temporary(mode_t mode);
  void put_in_place();
  [[noreturn]] void fail(int error_number) const;

  std::string path_;       ///< as given
  std::string target_;     ///< where the file goes, links followed
  std::string temporary_;  ///< empty when written in place
  mode_t mode_ = 0;        ///< of the complete file
  bool force_;
  Descriptor own_;
  int number_;
  std::string pending_;
  std::unique_ptr<Temporary> guard_;
};

}  // namespace zel::tool
