#include "tools/zel/pem.hpp"

#include "tools/zel/base64.hpp"
#include "tools/zel/der.hpp"

namespace zel::tool::pem {
namespace {

constexpr std::string_view kBegin = "-----BEGIN ";
constexpr std::string_view kEnd = "-----END ";
constexpr std::string_view kDashes = "-----";

/// Where a line that starts with `marker` begins.
std::size_t find_line(std::string_view text, std::string_view marker) {
  for (std::size_t at = text.find(marker); at != std::string_view::npos;
       at = text.find(marker, at + 1)) {
    if (at == 0 || text[at - 1] == '\n') return at;
  }
  return std::string_view::npos;
}

std::string_view without_return(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
    line.remove_suffix(1);
  return line;
}

}  // namespace

bool has_block(std::string_view text) { return find_line(text, kBegin) != std::string_view::npos; }

Block read(std::string_view text) {
  const std::size_t begin = find_line(text, kBegin);
  if (begin == std::string_view::npos) throw Malformed("no PEM block");
  text.remove_prefix(begin + kBegin.size());
  const std::size_t line_end = text.find('\n');
  if (line_end == std::string_view::npos) throw Malformed("cut off");
  std::string_view label = without_return(text.substr(0, line_end));
  if (!label.ends_with(kDashes)) throw Malformed("a PEM block without a proper first line");
  label.remove_suffix(kDashes.size());
  text.remove_prefix(line_end + 1);
  const std::size_t end = find_line(text, kEnd);
  if (end == std::string_view::npos) throw Malformed("cut off: the PEM block has no last line");
  const std::string_view last = text.substr(end + kEnd.size());
  if (!last.starts_with(std::string(label) + std::string(kDashes))) {
    throw Malformed("the last line of the PEM block does not fit its first");
  }
  const std::string_view body = text.substr(0, end);
  if (body.starts_with("Proc-Type:")) {
    throw Malformed(
        "encrypted in the old way of PEM; convert it with 'openssl pkcs8 -topk8' first");
  }
  Block block{std::string(label), Secret(body.size() / 4 * 3 + 3)};
  if (!from_base64(body, block.content)) throw Malformed("a PEM block that is not base64");
  return block;
}

std::string write(std::string_view label, std::span<const std::uint8_t> content) {
  std::string body = to_base64_lines(content);
  std::string text;
  text.reserve(body.size() + 2 * label.size() + 40);
  text.append(kBegin).append(label).append(kDashes).append("\n").append(body);
  text.append(kEnd).append(label).append(kDashes).append("\n");
  wipe(body.data(), body.size());
  return text;
}

}  // namespace zel::tool::pem
