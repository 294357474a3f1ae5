#include "tools/zel/share_file.hpp"

#include <algorithm>
#include <charconv>

#include "tools/zel/failure.hpp"
#include "tools/zel/files.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/schemes.hpp"
#include "zel_cc/mint.h"

namespace zel::tool {
namespace {

constexpr const char *kVersion = "1";
constexpr const char *kScheme = "shamir";
constexpr std::size_t kChecksumLen = 8;
constexpr std::size_t kFileLimit = std::size_t{1} << 16;
constexpr std::size_t kTextRoom = 4096;  // more than any share has: growing would leave copies

/// Text that is zeroed with its scope.
struct WipedText {
  std::string value;
  ~WipedText() { wipe(value.data(), value.size()); }
};

std::string to_hex(const MINT &number) {
  std::array<char, ZEL_MINT_HEX_LEN> digits{};
  MINT_WriteInHexString(digits.data(), &number);
  std::string text(digits.data());
  wipe(digits.data(), digits.size());
  for (char &digit : text)
    digit = digit >= 'A' ? static_cast<char>(digit - 'A' + 'a') : digit;
  return text;
}

/// The lines that the checksum covers.
std::string body_of(const Share &share) {
  std::string text;
  text.reserve(kTextRoom);
  const auto line = [&text](const char *name, const std::string &value) {
    text.append(name).append(": ").append(value).append("\n");
  };
  line("zel-share", kVersion);
  line("scheme", kScheme);
  line("threshold", std::to_string(share.header.threshold));
  line("index", std::to_string(share.index));
  line("set", tool::to_hex(share.header.set));
  line("length", std::to_string(share.header.secret_len));
  line("prime", to_hex(share.header.prime));
  line("x", to_hex(share.point.x));
  line("y", to_hex(share.point.y));
  return text;
}

std::string checksum_of(std::string_view body) {
  const auto stream = find_scheme(hash_schemes(), "sha256").start();
  stream->add({reinterpret_cast<const std::uint8_t *>(body.data()), body.size()});
  const Bytes digest = stream->finish();
  return tool::to_hex(std::span(digest).first(kChecksumLen));
}

/// The lines of a text that are neither empty nor comments, as names and values.
class Lines {
 public:
  Lines(std::string_view text, const std::string &source) : rest_(text), source_(source) {
    advance();
  }

  bool at_end() const { return line_.empty(); }

  /// The value of the line, which must have that name.
  std::string_view take(std::string_view name) {
    const std::size_t colon = line_.find(':');
    if (line_.substr(0, colon) != name || colon == std::string_view::npos) fail(name);
    const std::string_view value = trimmed(line_.substr(colon + 1));
    if (value.empty()) fail(name);
    taken_ = number_;
    advance();
    return value;
  }

  std::uint32_t take_number(std::string_view name, std::uint32_t least, std::uint32_t most) {
    const std::string_view text = take(name);
    std::uint32_t value = 0;
    const char *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest != end || value < least || value > most) refuse(name);
    return value;
  }

  void take_hex(std::string_view name, MINT &number) {
    std::string_view text = take(name);
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size() - 1));
    const WipedText digits{std::string(text)};
    const bool good = text.size() <= ZEL_MINT_BITS / 4 &&
                      MINT_SetByHexString(&number, digits.value.c_str()) == ZEL_OK;
    if (!good) refuse(name);
  }

  /// The checksum, the last value of a share.
  std::string_view take_checksum() {
    const std::string_view value = take("checksum");
    if (value.find("zel-share") == std::string_view::npos) return value;
    throw Failure(
        Exit::kMalformed, source_,
        "line " + std::to_string(taken_) + ": the line end behind the checksum is missing",
        "put one there, so that the next share begins on a line of its own");
  }

  void take_exactly(std::string_view name, std::string_view value) {
    if (take(name) != value) refuse(name);
  }

  [[noreturn]] void refuse(std::string_view name) const {
    throw Failure(Exit::kMalformed, source_,
                  "line " + std::to_string(taken_) + ": the value of '" + std::string(name) +
                      "' is none that a share can have",
                  "use another copy of it, or another share");
  }

 private:
  static std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
  }

  void advance() {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";  // of some editors
    do {
      const std::size_t len = std::min(rest_.find('\n'), rest_.size());
      const bool marked = rest_.starts_with(kByteOrderMark);
      line_ = trimmed(rest_.substr(0, len).substr(marked ? kByteOrderMark.size() : 0));
      rest_.remove_prefix(std::min(len + 1, rest_.size()));
      ++number_;
    } while ((line_.empty() || line_.starts_with('#')) && !rest_.empty());
    if (line_.starts_with('#')) line_ = {};
  }

  [[noreturn]] void fail(std::string_view name) const {
    throw Failure(Exit::kMalformed, source_,
                  "line " + std::to_string(number_) + ": not the line '" + std::string(name) +
                      ": ...' of a share file",
                  "name files that 'zel split' wrote, in whole");
  }

  std::string_view rest_;
  const std::string &source_;
  std::string_view line_;
  std::size_t number_ = 0;
  std::size_t taken_ = 0;
};

/// What the checksum does not say: whether such a share can come from `zel split` at all.
void check_values(const Share &share) {
  const MINT &prime = share.header.prime;
  const bool good = MINT_GetBitLength(&prime) == 8 * (kOverhead + share.header.secret_len) + 1 &&
                    prime.words[0] % 2 != 0 && share.point.x.length != 0 &&
                    share.point.x.length <= prime.length &&
                    MINT_Compare(&share.point.y, &prime) < 0;
  if (good) return;
  throw Failure(Exit::kMalformed, share.source, "its numbers do not belong together",
                "use another copy of it, or another share");
}

Share parse_share(Lines &lines, const std::string &source) {
  lines.take_exactly("zel-share", kVersion);
  lines.take_exactly("scheme", kScheme);
  ShareHeader header{};
  header.threshold = lines.take_number("threshold", 2, 3);
  const std::uint32_t index = lines.take_number("index", 1, kMaxIndex);
  const auto set = from_hex(lines.take("set"));
  if (!set || set->size() != header.set.size()) lines.refuse("set");
  std::copy(set->begin(), set->end(), header.set.begin());
  header.secret_len = lines.take_number("length", 1, kMaxSecretLen);
  lines.take_hex("prime", header.prime);
  Share share(source, header, index);
  lines.take_hex("x", share.point.x);
  lines.take_hex("y", share.point.y);
  const auto checksum = from_hex(lines.take_checksum());
  const WipedText body{body_of(share)};
  const bool good = checksum && tool::to_hex(*checksum) == checksum_of(body.value);
  if (!good) {
    throw Failure(Exit::kMalformed, source, "the checksum does not match: damaged or mistyped",
                  "use another copy of it, or another share");
  }
  check_values(share);
  return share;
}

}  // namespace

std::string to_text(const Share &share) {
  std::string text = body_of(share);
  const std::string checksum = checksum_of(text);
  text.append("checksum: ").append(checksum).append("\n");
  return text;
}

std::vector<Share> parse_shares(std::string_view text, const std::string &source) {
  Lines lines(text, source);
  std::vector<Share> shares;
  do {
    shares.push_back(parse_share(lines, source));
  } while (!lines.at_end());
  return shares;
}

std::vector<Share> read_shares(const std::vector<std::string> &files) {
  std::vector<Share> shares;
  for (const std::string &file : files) {
    Input input(file);
    const WipedText text{read_whole(input, file, kFileLimit)};
    const std::vector<Share> found = parse_shares(text.value, file);
    shares.insert(shares.end(), found.begin(), found.end());
  }
  return shares;
}

}  // namespace zel::tool
