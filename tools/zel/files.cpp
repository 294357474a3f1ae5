#include "tools/zel/files.hpp"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "base/wipe.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/hex.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kPendingLimit = std::size_t{64} << 10;

bool write_all(int number, const char *bytes, std::size_t len) {
  while (len != 0) {
    const ssize_t written = ::write(number, bytes, len);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes += written;
    len -= static_cast<std::size_t>(written);
  }
  return true;
}

std::string folder_of(const std::string &path) {
  const auto folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

/// A name in the same folder that nobody else uses.
std::string temporary_name(const std::string &target) {
  std::array<std::uint8_t, 8> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
    throw Failure(Exit::kInternal, "getrandom", "the kernel gives no random bytes");
  }
  return folder_of(target) + "/.zel-" + to_hex(random) + ".tmp";
}

/// The file behind symbolic links, so that a link stays a link; the path itself when it is new.
std::string resolved(const std::string &path) {
  char *real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string result = real;
  std::free(real);
  return result;
}

void sync_folder(const std::string &target) {
  const Descriptor folder(::open(folder_of(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.number() >= 0) ::fsync(folder.number());
}

}  // namespace

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
  if (this != &other) {
    if (number_ >= 0) ::close(number_);
    number_ = other.release();
  }
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) ::close(number_);
}

int Descriptor::release() noexcept {
  const int number = number_;
  number_ = -1;
  return number;
}

Input::Input(const std::string &path) : path_(path), number_(STDIN_FILENO) {
  if (path != "-") {
    own_ = Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (own_.number() < 0) throw file_failure(path, errno);
    number_ = own_.number();
  }
  struct stat status {};
  if (::fstat(number_, &status) != 0) throw file_failure(path, errno);
  if (S_ISDIR(status.st_mode)) throw file_failure(path, EISDIR);
  if (S_ISREG(status.st_mode)) {
    size_ = static_cast<std::uint64_t>(status.st_size);
    ::posix_fadvise(number_, 0, 0, POSIX_FADV_SEQUENTIAL);
  }
}

std::size_t Input::read(std::span<std::uint8_t> buffer) {
  for (;;) {
    const ssize_t got = ::read(number_, buffer.data(), buffer.size());
    if (got >= 0) return static_cast<std::size_t>(got);
    if (errno != EINTR) throw file_failure(path_, errno);
  }
}

bool exists(const std::string &path) {
  struct stat status {};
  return path == "-" || ::stat(path.c_str(), &status) == 0;
}

bool are_one_file(const std::string &a, const std::string &b) {
  struct stat one {};
  struct stat other {};
  return ::stat(a.c_str(), &one) == 0 && ::stat(b.c_str(), &other) == 0 && S_ISREG(one.st_mode) &&
         one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

std::optional<std::uint64_t> size_of(const std::string &path) {
  struct stat status {};
  const bool found =
      path == "-" ? ::fstat(STDIN_FILENO, &status) == 0 : ::stat(path.c_str(), &status) == 0;
  if (!found || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

std::string read_whole(Input &input, const std::string &path, std::size_t limit) {
  std::string content;
  for (;;) {
    const std::size_t len = content.size();
    content.resize(len + kChunk);
    const std::size_t got =
        input.read({reinterpret_cast<std::uint8_t *>(content.data()) + len, kChunk});
    content.resize(len + got);
    if (content.size() > limit) {
      throw Failure(Exit::kMalformed, path,
                    "longer than " + std::to_string(limit) + " bytes, which cannot be meant",
                    "name the right file");
    }
    if (got == 0) return content;
  }
}

Output::Output(const std::string &path, bool force, mode_t mode)
    : path_(path), target_(path), force_(force), number_(STDOUT_FILENO) {
  pending_.reserve(kPendingLimit);  // growing would leave copies of it
  if (is_standard_output()) return;
  struct stat status {};
  const bool exists = ::stat(path.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) {
    throw Failure(Exit::kFile, path, "a folder, not a file", "name the file to write in it");
  }
  if (exists && !S_ISREG(status.st_mode)) {
    own_ = Descriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (own_.number() < 0) throw file_failure(path, errno);
    number_ = own_.number();
    return;
  }
  if (exists && !force) throw file_failure(path, EEXIST);
  if (exists) target_ = resolved(path);
  open_temporary(exists ? (status.st_mode & 0777 & mode) : mode);
}

/// Until it is complete the file is its owner's alone: whoever kills the command leaves no more.
void Output::open_temporary(mode_t mode) {
  constexpr mode_t kOwnerOnly = 0600;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  mode_ = mode & ~mask;
  temporary_ = temporary_name(target_);
  guard_ = std::make_unique<Temporary>(temporary_);
  own_ = Descriptor(
      ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
  if (own_.number() < 0) {
    temporary_.clear();
    throw file_failure(path_, errno);
  }
  number_ = own_.number();
}

Output::~Output() {
  wipe(pending_.data(), pending_.size());
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void Output::write(std::string_view bytes) {
  if (pending_.size() + bytes.size() <= kPendingLimit) {
    pending_ += bytes;
    return;
  }
  flush();
  if (!write_all(number_, bytes.data(), bytes.size())) fail(errno);
}

void Output::write(std::span<const std::uint8_t> bytes) {
  write(std::string_view(reinterpret_cast<const char *>(bytes.data()), bytes.size()));
}

void Output::flush() {
  const bool done = write_all(number_, pending_.data(), pending_.size());
  const int error_number = errno;
  wipe(pending_.data(), pending_.size());  // it may have been a key
  pending_.clear();
  if (!done) fail(error_number);
}

void Output::commit() {
  flush();
  if (temporary_.empty()) return;
  if (::fchmod(number_, mode_) != 0) fail(errno);
  if (::fsync(number_) != 0) fail(errno);
  if (::close(own_.release()) != 0) fail(errno);
  put_in_place();
  temporary_.clear();
  guard_.reset();
  sync_folder(target_);
}

void Output::put_in_place() {
  const char *from = temporary_.c_str();
  const char *to = target_.c_str();
  if (force_) {
    if (::rename(from, to) != 0) fail(errno);
    return;
  }
  // Without -f a file that came into being meanwhile is not overwritten either.
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return;
  if (errno != EINVAL && errno != ENOSYS) fail(errno);
  if (::link(from, to) != 0) fail(errno);
  ::unlink(from);
}

bool Output::is_terminal() const noexcept { return ::isatty(number_) == 1; }

void Output::fail(int error_number) const { throw file_failure(name(), error_number); }

}  // namespace zel::tool
