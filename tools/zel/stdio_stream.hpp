// The command's inputs and outputs as stdio streams, for library functions that take those.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

#include "tools/zel/files.hpp"

namespace zel::tool {

struct StreamCloser {
  void operator()(std::FILE *stream) const noexcept { std::fclose(stream); }
};
using StdioStream = std::unique_ptr<std::FILE, StreamCloser>;

/// A stream whose pieces are announced before they are read, the last one as such, whatever the
/// input is: a file, a pipe, or a terminal.
class PieceReader {
 public:
  /// A piece has `piece_len` bytes, the last one 1 to `piece_len`; an empty input is one of none.
  PieceReader(Input &input, std::size_t piece_len);
  PieceReader(const PieceReader &) = delete;
  PieceReader &operator=(const PieceReader &) = delete;

  struct Piece {
    std::size_t len;
    bool last;
  };
  /// Makes the next piece ready to be read from `stream`; call again when it was.
  Piece next();
  /// The same bytes, for those who read no stream.
  std::span<std::uint8_t> bytes() noexcept { return {buffer_.data(), piece_}; }
  std::FILE *stream() noexcept { return stream_.get(); }

  ~PieceReader();

 private:
  std::size_t take(char *to, std::size_t len) noexcept;
  void make_room();

  Input &input_;
  const std::size_t piece_len_;
  std::vector<std::uint8_t> buffer_;  ///< a piece and one byte, which tells whether more follows
  std::size_t filled_ = 0;            ///< bytes in the buffer, the first of the next piece included
  std::size_t piece_ = 0;
  std::size_t read_ = 0;
  std::array<std::uint8_t, std::size_t{64} << 10> window_{};  ///< the buffer of the stream
  StdioStream stream_;
};

/// A stream that hands on to an output. A failure of the output is kept, since nothing may be
/// thrown through libc, and is thrown by `rethrow`.
class OutputStream {
 public:
  explicit OutputStream(Output &output);
  std::FILE *stream() noexcept { return stream_.get(); }
  void rethrow() const;

 private:
  std::size_t put(const char *from, std::size_t len) noexcept;

  Output &output_;
  std::exception_ptr failure_;
  StdioStream stream_;
};

}  // namespace zel::tool
