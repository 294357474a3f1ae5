// zel rand: random bytes from the approved generator.
#include <array>
#include <charconv>
#include <cstring>

#include "tools/zel/base64.hpp"
#include "tools/zel/command.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"

namespace zel::tool {
namespace {

struct RandOptions {
  std::optional<std::string> amount;
  bool hex = false;
  bool base64 = false;
  bool raw = false;
};

enum class Encoding { kHex, kBase64, kRaw };

/// A multiple of 48, so that base64 pieces are whole lines of 64.
constexpr std::size_t kPiece = std::size_t{48} << 10;
constexpr std::uint64_t kJsonLimit = std::uint64_t{1} << 20;

/// "32", "4K", "2G"
std::uint64_t parse_amount(const std::string &text) {
  std::uint64_t value = 0;
  const char *end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  unsigned shift = 0;
  bool good = error == std::errc() && rest != text.data();
  if (good && rest != end) {
    constexpr std::string_view kUnits = "KMGT";
    const std::size_t unit = kUnits.find(*rest);
    good = unit != std::string_view::npos && rest + 1 == end;
    shift = static_cast<unsigned>(10 * (unit + 1));
  }
  if (!good || (shift != 0 && value >> (64 - shift) != 0)) {
    throw Failure(Exit::kUsage, text, "not a number of bytes", "write it like 32, 4K, 10M or 2G");
  }
  return value << shift;
}

Encoding encoding_of(const RandOptions &options) {
  if (options.hex + options.base64 + options.raw > 1) {
    throw Failure(Exit::kUsage, "encoding", "more than one given",
                  "use one of --hex, --base64 and --raw");
  }
  if (options.raw) return Encoding::kRaw;
  return options.base64 ? Encoding::kBase64 : Encoding::kHex;
}

std::string encode(Encoding encoding, std::span<const std::uint8_t> bytes) {
  return encoding == Encoding::kBase64 ? to_base64_lines(bytes) : to_hex(bytes);
}

void check_destination(const Session &session, const Output &output, Encoding encoding,
                       std::uint64_t amount) {
  if (!output.is_standard_output()) return;
  if (encoding == Encoding::kRaw && output.is_terminal()) {
    throw Failure(Exit::kUsage, "--raw", "raw bytes would garble the terminal",
                  "write them to a file with -o, or use --hex");
  }
  if (session.flags().json && (encoding == Encoding::kRaw || amount > kJsonLimit)) {
    throw Failure(Exit::kUsage, "--json", "such bytes do not fit into the object",
                  "write them to a file with -o");
  }
}

void run(Session &session, const RandOptions &options) {
  const std::uint64_t amount = parse_amount(options.amount.value_or("32"));
  const Encoding encoding = encoding_of(options);
  constexpr mode_t kPrivate = 0600;
  Output &output = session.open_output(kPrivate);
  check_destination(session, output, encoding, amount);
  const bool into_json = session.flags().json && output.is_standard_output();

  Generator generator;
  const auto progress = session.progress("rand", amount);
  struct Piece {
    std::uint8_t bytes[kPiece];
  };
  Wiped<Piece> piece;
  std::string collected;
  for (std::uint64_t left = amount; left != 0;) {
    const auto len = static_cast<std::size_t>(std::min<std::uint64_t>(left, kPiece));
    const std::span<std::uint8_t> bytes(piece->bytes, len);
    generator.fill(bytes);
    if (encoding == Encoding::kRaw) {
      output.write(bytes);
    } else {
      std::string text = encode(encoding, bytes);
      into_json ? static_cast<void>(collected += text) : output.write(text);
      wipe(text.data(), text.size());
    }
    progress->add(len);
    left -= len;
  }
  if (encoding == Encoding::kHex && !into_json) output.write("\n");
  session.note(progress->summary());
  progress->finish();
  constexpr std::array kNames{"hex", "base64", "raw"};
  session.result()["bytes"] = amount;
  session.result()["encoding"] = kNames[static_cast<std::size_t>(encoding)];
  if (into_json) session.result()["data"] = collected;
}

}  // namespace

Command rand_command() {
  const auto options = std::make_shared<RandOptions>();
  Command command{
      "rand",
      "Random bytes from the approved generator",
      "Prints BYTES random bytes, 32 when not given, from one Hash_DRBG with SHA-256 at strength "
      "256. It is seeded from the whole entropy of the collector and again every 64 MiB; every "
      "block "
      "is compared with the one before. Should a test fail, or the collector not report its full "
      "entropy count, the exit code is 7 and nothing that was printed may be used.\n"
      "BYTES may end in K, M, G or T, for powers of 1024. A file that -o names is readable by its "
      "owner alone.",
      {{"256 bits as hexadecimal digits", "zel rand"},
       {"a password of 18 bytes", "zel rand --base64 18"},
       {"a key file for 'zel mac'", "zel rand --raw 32 -f -o mac.key"},
       {"a mebibyte for another program", "zel rand --raw 1M | wc -c"}}};
  command.positionals = {{"", "", "BYTES", "How many; 32 when not given", &options->amount}};
  command.options = {
      {"", "hex", "", "Hexadecimal digits in one line, as when nothing is said", &options->hex},
      {"", "base64", "", "Base64 in lines of 64 characters", &options->base64},
      {"", "raw", "", "The bytes themselves; not to a terminal", &options->raw}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
