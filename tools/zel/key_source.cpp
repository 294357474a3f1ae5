#include "tools/zel/key_source.hpp"

#include "tools/zel/hex.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kKeyLimit = std::size_t{1} << 20;

bool is_space(std::uint8_t byte) { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

/// Digits with or without white space between them.
Secret decode_key(std::span<const std::uint8_t> digits, const std::string &source) {
  Secret key(digits.size() / 2 + 1);
  char pair[2];
  std::size_t count = 0;
  const auto fail = [&source](const char *problem) {
    throw Failure(Exit::kMalformed, source, problem, "write the key as pairs of digits 0-9 a-f");
  };
  for (const std::uint8_t byte : digits) {
    if (is_space(byte)) continue;
    pair[count++ % 2] = static_cast<char>(byte);
    if (count % 2 != 0) continue;
    const auto value = from_hex({pair, 2});
    if (!value) fail("not a hexadecimal key");
    key.room()[0] = value->front();
    key.grow(1);
  }
  if (count % 2 != 0) fail("an odd number of hexadecimal digits");
  return key;
}

Secret read_hex_key(const std::string &path) {
  const Secret digits = read_key(path);
  return decode_key(digits.bytes(), path);
}

}  // namespace

Secret read_key(const std::string &path) {
  Input input(path);
  Secret key(kKeyLimit + 1);
  while (const std::size_t got = input.read(key.room())) {
    key.grow(got);
    if (key.bytes().size() > kKeyLimit) {
      throw Failure(Exit::kMalformed, path, "longer than 1 MiB, which no key is",
                    "name the key file");
    }
  }
  return key;
}

std::vector<Option> key_source_options(KeySource &source, const std::string &hex_letter) {
  return {{"", "key-file", "FILE", "Key: the bytes of FILE", &source.file},
          {"", "key-hex-file", "FILE", "Key: hexadecimal digits in FILE", &source.hex_file},
          {"", "key-fd", "N", "Key: bytes from the open descriptor N", &source.fd},
          {hex_letter, "key-hex", "HEX", "Key: hexadecimal digits, for all to see", &source.hex}};
}

Secret obtain_key(Session &session, const KeySource &source, bool data_is_standard_input) {
  const int given = source.file.has_value() + source.hex_file.has_value() + source.fd.has_value() +
                    source.hex.has_value();
  if (given != 1) {
    throw Failure(Exit::kUsage, "key", given == 0 ? "none given" : "more than one given",
                  "use one of --key-file, --key-hex-file, --key-fd and --key-hex");
  }
  if (source.is_standard_input() && data_is_standard_input) {
    throw Failure(Exit::kUsage, "-", "the key and the data cannot both be standard input",
                  "name the data FILE, or give the key with --key-fd 3");
  }
  if (source.file) return read_key(*source.file);
  if (source.hex_file) return read_hex_key(*source.hex_file);
  if (source.fd) return read_key("/dev/fd/" + std::to_string(*source.fd));
  session.warn("--key-hex shows the key to everyone who lists processes; prefer --key-hex-file");
  return decode_key(
      {reinterpret_cast<const std::uint8_t *>(source.hex->data()), source.hex->size()},
      "--key-hex");
}

}  // namespace zel::tool
