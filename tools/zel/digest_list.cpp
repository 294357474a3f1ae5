#include "tools/zel/digest_list.hpp"

#include <algorithm>

#include "tools/zel/hex.hpp"

namespace zel::tool {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

bool is_digest(std::string_view text) {
  return text.size() >= 2 && text.size() % 2 == 0 &&
         text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

std::optional<std::string> unescape(std::string_view text) {
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      name += text[i];
      continue;
    }
    if (++i == text.size()) return std::nullopt;
    if (text[i] == 'n') {
      name += '\n';
    } else if (text[i] == 'r') {
      name += '\r';
    } else if (text[i] == '\\') {
      name += '\\';
    } else {
      return std::nullopt;
    }
  }
  return name;
}

/// "SHA256 (name) = digest", as openssl writes it without the spaces too. The last bracket counts:
/// names may contain the rest.
std::optional<ListEntry> parse_tagged(std::string_view line) {
  const std::size_t open = line.find('(');
  const std::size_t close = line.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open + 2) {
    return std::nullopt;
  }
  std::string_view tag = line.substr(0, open);
  if (tag.ends_with(' ')) tag.remove_suffix(1);
  std::string_view rest = line.substr(close + 1);
  if (rest.starts_with(' ')) rest.remove_prefix(1);
  if (!rest.starts_with('=')) return std::nullopt;
  rest.remove_prefix(1);
  if (rest.starts_with(' ')) rest.remove_prefix(1);
  if (tag.empty() || tag.find(' ') != std::string_view::npos || !is_digest(rest)) {
    return std::nullopt;
  }
  const std::string_view file = line.substr(open + 1, close - open - 1);
  return ListEntry{0, std::string(tag), std::string(rest), std::string(file)};
}

/// "digest  name" or "digest *name": text and binary are the same here.
std::optional<ListEntry> parse_plain(std::string_view line) {
  const std::size_t space = line.find(' ');
  if (space == std::string_view::npos || space + 2 >= line.size()) return std::nullopt;
  const char mark = line[space + 1];
  if ((mark != ' ' && mark != '*') || !is_digest(line.substr(0, space))) return std::nullopt;
  return ListEntry{0, "", std::string(line.substr(0, space)), std::string(line.substr(space + 2))};
}

std::optional<ListEntry> parse_line(std::string_view line, bool zero) {
  const bool escaped = !zero && line.starts_with('\\');
  if (escaped) line.remove_prefix(1);
  auto entry = parse_plain(line);
  if (!entry) entry = parse_tagged(line);
  if (!entry || !escaped) return entry;
  auto name = unescape(entry->file);
  if (!name) return std::nullopt;
  entry->file = *std::move(name);
  return entry;
}

}  // namespace

EscapedName escape_name(std::string_view file) {
  EscapedName name{false, ""};
  for (const char c : file) {
    if (c == '\\' || c == '\n' || c == '\r') {
      name.escaped = true;
      name.text += '\\';
      name.text += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
    } else {
      name.text += c;
    }
  }
  return name;
}

std::string list_line(const ListForm &form, std::string_view tag, std::string_view digest,
                      std::string_view file) {
  const EscapedName name = form.zero ? EscapedName{false, std::string(file)} : escape_name(file);
  std::string line = name.escaped ? "\\" : "";
  if (form.tagged) {
    line.append(tag).append(" (").append(name.text).append(") = ").append(digest);
  } else {
    line.append(digest).append("  ").append(name.text);
  }
  line += form.zero ? '\0' : '\n';
  return line;
}

List parse_list(std::string_view text, bool zero) {
  const char end = zero ? '\0' : '\n';
  List list;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t len = std::min(text.find(end), text.size());
    std::string_view line = text.substr(0, len);
    text.remove_prefix(std::min(len + 1, text.size()));
    if (!zero && line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) continue;
    if (auto entry = parse_line(line, zero)) {
      entry->line = number;
      list.entries.push_back(*std::move(entry));
    } else {
      list.malformed.push_back(number);
    }
  }
  return list;
}

}  // namespace zel::tool
