// Lines of digests: the forms that sha256sum and its BSD relatives write, and a reader of both.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::tool {

/// How a line is written.
struct ListForm {
  bool tagged = false;  ///< "SHA256 (file) = digest" instead of "digest  file"
  bool zero = false;    ///< lines end in NUL and names are not escaped
};

std::string list_line(const ListForm &form, std::string_view tag, std::string_view digest,
                      std::string_view file);

/// A file name in one line: a leading backslash tells that it has escapes.
struct EscapedName {
  bool escaped;
  std::string text;
};
EscapedName escape_name(std::string_view file);

struct ListEntry {
  std::size_t line;    ///< counted from 1
  std::string tag;     ///< empty when the line has none
  std::string digest;  ///< hexadecimal digits
  std::string file;
};

struct List {
  std::vector<ListEntry> entries;
  std::vector<std::size_t> malformed;  ///< line numbers
};

/// Reads both forms; empty lines and lines that begin with # are passed over.
List parse_list(std::string_view text, bool zero);

}  // namespace zel::tool
