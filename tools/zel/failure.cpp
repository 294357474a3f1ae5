#include "tools/zel/failure.hpp"

#include <cerrno>
#include <cstring>

#include "zel_cc/errors.h"

namespace zel::tool {
namespace {

const char *advice_for(int error_number) {
  switch (error_number) {
    case ENOENT:
      return "check the name";
    case EACCES:
    case EPERM:
      return "check its permissions";
    case EBADF:
      return "check the number";
    case EISDIR:
      return "name the files in it, for example with find";
    case EEXIST:
      return "add -f to overwrite it";
    case ENOSPC:
    case EDQUOT:
      return "free some space, or write elsewhere";
    case EFBIG:
      return "the limit on file sizes (ulimit -f) is in the way";
    case EROFS:
      return "write elsewhere";
    default:
      return "";
  }
}

Exit exit_for(int code) {
  if (code == ZEL_ERR_STATE || code == ZEL_ERR_APPROVED) return Exit::kState;
  if (code == ZEL_ERR_ERROR_STATE) return Exit::kSelfTest;
  return Exit::kInternal;
}

const char *advice_for_code(int code) {
  if (code == ZEL_ERR_APPROVED) return "add --legacy to use it all the same";
  if (code == ZEL_ERR_STATE) return "see 'zel info' for the state";
  return "";
}

}  // namespace

Failure::Failure(Exit exit, const std::string &subject, const std::string &problem,
                 const std::string &advice)
    : exit_(exit) {
  if (!subject.empty()) line_ = shown(subject) + ": ";
  line_ += problem;
  if (!advice.empty()) line_ += "; " + advice;
}

Failure file_failure(const std::string &path, int error_number) {
  return {Exit::kFile, path.empty() ? "''" : path, std::strerror(error_number),
          advice_for(error_number)};
}

Failure library_failure(const std::string &subject, int code) {
  return {exit_for(code), subject,
          std::string(zel_error_text(code)) + " (" + std::to_string(code) + ")",
          advice_for_code(code)};
}

std::string shown(std::string_view path) {
  if (path == "-") return "standard input";
  std::string text;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7f) {
      text += c;
    } else if (c == '\n') {
      text += "\\n";
    } else {
      constexpr const char *kDigits = "0123456789abcdef";
      text += "\\x";
      text += kDigits[byte >> 4];
      text += kDigits[byte & 15];
    }
  }
  return text;
}

}  // namespace zel::tool
