#include "tools/zel/stdio_stream.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "base/wipe.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kFirstRoom = std::size_t{1} << 20;

StdioStream open_stream(void *cookie, const char *mode, cookie_io_functions_t functions) {
  StdioStream stream(::fopencookie(cookie, mode, functions));
  if (!stream) throw std::bad_alloc();
  return stream;
}

}  // namespace

PieceReader::PieceReader(Input &input, std::size_t piece_len)
    : input_(input), piece_len_(piece_len), buffer_(std::min(piece_len, kFirstRoom) + 1) {
  cookie_io_functions_t functions{};
  functions.read = [](void *self, char *to, std::size_t len) {
    return static_cast<ssize_t>(static_cast<PieceReader *>(self)->take(to, len));
  };
  stream_ = open_stream(this, "rb", functions);
  // Without a buffer libc would read such a stream byte by byte.
  std::setvbuf(stream_.get(), reinterpret_cast<char *>(window_.data()), _IOFBF, window_.size());
}

PieceReader::~PieceReader() {
  wipe(buffer_.data(), buffer_.size());
  wipe(window_.data(), window_.size());
}

PieceReader::Piece PieceReader::next() {
  if (piece_ != 0) {
    buffer_[0] = buffer_[piece_];
    filled_ -= piece_;
  }
  bool ended = false;
  while (!ended && filled_ <= piece_len_) {
    if (filled_ == buffer_.size()) make_room();
    const std::size_t got = input_.read(std::span(buffer_).subspan(filled_));
    ended = got == 0;
    filled_ += got;
  }
  piece_ = ended ? filled_ : piece_len_;
  read_ = 0;
  std::clearerr(stream_.get());  // the end of a piece is not that of the stream
  return {piece_, ended};
}

/// Twice the buffer; the old one is cleared.
void PieceReader::make_room() {
  std::vector<std::uint8_t> larger(std::min(piece_len_, 2 * buffer_.size()) + 1);
  std::memcpy(larger.data(), buffer_.data(), filled_);
  wipe(buffer_.data(), buffer_.size());
  buffer_ = std::move(larger);
}

std::size_t PieceReader::take(char *to, std::size_t len) noexcept {
  const std::size_t count = std::min(len, piece_ - read_);
  if (count != 0) std::memcpy(to, buffer_.data() + read_, count);
  read_ += count;
  return count;
}

OutputStream::OutputStream(Output &output) : output_(output) {
  cookie_io_functions_t functions{};
  functions.write = [](void *self, const char *from, std::size_t len) {
    return static_cast<ssize_t>(static_cast<OutputStream *>(self)->put(from, len));
  };
  stream_ = open_stream(this, "wb", functions);
  // Whole chunks go straight from the library's buffer, and no copy stays behind.
  std::setvbuf(stream_.get(), nullptr, _IONBF, 0);
}

void OutputStream::rethrow() const {
  if (failure_) std::rethrow_exception(failure_);
}

std::size_t OutputStream::put(const char *from, std::size_t len) noexcept {
  try {
    output_.write(std::string_view(from, len));
    return len;
  } catch (...) {
    failure_ = std::current_exception();
    return 0;  // libc's sign for an error of the write
  }
}

}  // namespace zel::tool
