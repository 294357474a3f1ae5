// How a command fails: an exit code and one line that says what, why and what to do.
#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace zel::tool {

/// Exit codes of the program.
enum class Exit : int {
  kDone = 0,
  kVerification = 1,  ///< a digest, a code or a signature does not match
  kUsage = 2,
  kFile = 3,
  kState = 4,  ///< refused by the module's state
  kSelfTest = 5,
  kMalformed = 6,
  kEntropy = 7,
  kInternal = 70,
};

/// The subject is a file or an argument; the advice may be empty.
class Failure : public std::exception {
 public:
  Failure(Exit exit, const std::string &subject, const std::string &problem,
          const std::string &advice = "");

  Exit exit() const noexcept { return exit_; }
  /// One line without a line end, whatever the subject contains.
  const std::string &line() const noexcept { return line_; }
  const char *what() const noexcept override { return line_.c_str(); }

 private:
  Exit exit_;
  std::string line_;
};

/// A failed system call on a file, with the advice that suits the error number.
Failure file_failure(const std::string &path, int error_number);

/// A result code of the library on something named `subject`.
Failure library_failure(const std::string &subject, int code);

/// A path as a message shows it: control characters escaped, and "-" in words.
std::string shown(std::string_view path);

}  // namespace zel::tool
