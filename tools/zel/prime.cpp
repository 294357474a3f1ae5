// zel prime: random primes.
#include <array>
#include <charconv>

#include "base/wipe.hpp"
#include "tools/zel/command.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "zel_cc/mint_arith.h"
#include "zel_cc/prime.h"

namespace zel::tool {
namespace {

constexpr std::uint32_t kFewestBits = 16;
constexpr std::uint32_t kFewestBitsOfStrong = 256;
constexpr std::uint32_t kMostBits = 4096;
/// For the test of the finished prime: 2^-128 even for numbers made to deceive.
constexpr std::uint32_t kIterations = 64;

struct PrimeOptions {
  std::optional<std::uint64_t> bits;
  std::optional<std::string> e;
  std::optional<std::uint64_t> count;
  bool strong = false;
  bool decimal = false;
};

/// An odd number from 3 on, decimal or hexadecimal after 0x.
std::uint64_t parse_e(const std::string &text) {
  const bool hex = text.starts_with("0x") || text.starts_with("0X");
  const char *begin = text.data() + (hex ? 2 : 0);
  const char *end = text.data() + text.size();
  std::uint64_t value = 0;
  const auto [rest, error] = std::from_chars(begin, end, value, hex ? 16 : 10);
  if (error != std::errc() || rest != end || value < 3 || value % 2 == 0) {
    throw Failure(Exit::kUsage, "--e " + text, "not an odd number from 3 to 2^64 - 1",
                  "65537 and 0x10001 are usual");
  }
  return value;
}

MINT number_of(std::uint64_t value) {
  MINT number{};
  number.words[0] = static_cast<std::uint32_t>(value);
  number.words[1] = static_cast<std::uint32_t>(value >> 32);
  number.length = number.words[1] != 0 ? 2 : 1;
  return number;
}

/// The hexadecimal digits of a number above zero, lower case, without leading zeros.
std::string hex_text(const MINT &number) {
  std::array<std::uint8_t, ZEL_MINT_BYTES> bytes{};
  std::uint32_t len = 0;
  MINT_WriteInByteArray(bytes.data(), &len, &number);
  std::string text = to_hex({bytes.data(), len});
  wipe(bytes.data(), bytes.size());
  return text.starts_with('0') ? text.substr(1) : text;
}

/// Division by 10^9 until nothing is left.
std::string decimal_text(const MINT &number) {
  constexpr std::uint64_t kBase = 1000000000;
  constexpr std::size_t kDigits = 9;
  Wiped<MINT> left(number);
  std::string text;
  while (left->length != 0) {
    std::uint64_t remainder = 0;
    for (std::uint32_t i = left->length; i-- != 0;) {
      const std::uint64_t part = remainder << 32 | left->words[i];
      left->words[i] = static_cast<std::uint32_t>(part / kBase);
      remainder = part % kBase;
    }
    while (left->length != 0 && left->words[left->length - 1] == 0)
      --left->length;
    const std::string digits = std::to_string(remainder);
    const std::size_t zeros = left->length == 0 ? 0 : kDigits - digits.size();
    text.insert(0, std::string(zeros, '0') + digits);
  }
  return text;
}

/// The three sizes of Gordon's construction in the proportions of an RSA key.
void generate(MINT &prime, const PrimeOptions &options, std::uint32_t bits, const MINT *e) {
  if (!options.strong) return PRIME_GeneratePrime(&prime, bits, bits, e);
  const std::uint32_t side = bits / 2 - bits / 16;
  PRIME_GenerateStrongPrime(&prime, bits, bits, e, side, side, side - bits / 8);
}

/// Whether the number passes once more. The test draws its bases from 0 on, and 0 fails a prime:
/// for small ones that happens, so that one failure says nothing yet.
bool passes(const MINT &prime) {
  constexpr int kAttempts = 5;
  for (int i = 0; i < kAttempts; ++i) {
    if (PRIME_MRTest(&prime, kIterations) == 1) return true;
  }
  return false;
}

std::uint32_t checked_bits(const PrimeOptions &options) {
  const std::uint32_t fewest = options.strong ? kFewestBitsOfStrong : kFewestBits;
  if (!options.bits) {
    throw Failure(Exit::kUsage, "BITS", "not given", "name the size, as in 'zel prime 2048'");
  }
  if (*options.bits < fewest || *options.bits > kMostBits) {
    throw Failure(Exit::kUsage, std::to_string(*options.bits) + " bits", "out of range",
                  "choose from " + std::to_string(fewest) + " to " + std::to_string(kMostBits));
  }
  return static_cast<std::uint32_t>(*options.bits);
}

void run(Session &session, const PrimeOptions &options) {
  const std::uint32_t bits = checked_bits(options);
  const std::uint64_t count = options.count.value_or(1);
  MINT e{};
  if (options.e) e = number_of(parse_e(*options.e));
  require_strong_rand();
  constexpr mode_t kPrivate = 0600;
  session.open_output(kPrivate);
  session.result()["bits"] = bits;
  session.result()["strong"] = options.strong;
  session.result()["primes"] = Json::array();
  const auto progress = session.progress("prime", count, Unit::kPrimes);
  for (std::uint64_t i = 0; i < count; ++i) {
    Wiped<MINT> prime(MINT{});
    generate(*prime, options, bits, options.e ? &e : nullptr);
    if (MINT_GetBitLength(&*prime) != bits || !passes(*prime)) {
      throw Failure(Exit::kInternal, "prime", "what was generated is none", "report this");
    }
    const std::string text = options.decimal ? decimal_text(*prime) : hex_text(*prime);
    session.print(text + "\n");
    if (session.flags().json) session.result()["primes"].push_back(text);
    progress->add(1);
  }
  session.note(progress->summary());
  progress->finish();
}

}  // namespace

Command prime_command() {
  const auto options = std::make_shared<PrimeOptions>();
  Command command{
      "prime",
      "Random primes",
      "Prints a random prime of exactly BITS bits, 16 to 4096, in hexadecimal digits. With "
      "--strong, "
      "of 256 bits and more, p - 1 and p + 1 have large prime factors, and so has one of those "
      "less "
      "one (Gordon's construction). With --e, p - 1 has no factor in common with E, as the primes "
      "of "
      "an RSA key need it.\n"
      "The randomness is the kernel's, and every prime passes 64 more rounds of the Miller-Rabin "
      "test "
      "before it is printed. A file that -o names is readable by its owner alone.",
      {{"a prime of 512 bits, and openssl's opinion", "openssl prime -hex $(zel prime 512)"},
       {"a strong prime for an RSA key", "zel prime 1024 --strong --e 65537"},
       {"five small ones in decimal", "zel prime 64 --count 5 --decimal"}}};
  command.positionals = {{"", "", "BITS", "Size of the prime", &options->bits}};
  command.options = {
      {"n", "count", "N", "How many; 1 when not given", &options->count},
      {"", "strong", "", "Strong primes", &options->strong},
      {"e", "e", "E", "gcd(E, p - 1) is 1; decimal, or hexadecimal after 0x", &options->e},
      {"", "decimal", "", "Decimal digits", &options->decimal}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
