#include "tests/support/vectors.hpp"

#include <fstream>
#include <stdexcept>

namespace zel::test {

Bytes from_hex(const std::string &hex) {
  if (hex.size() % 2 != 0) throw std::invalid_argument("odd number of hexadecimal digits: " + hex);
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    std::size_t used = 0;
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(hex.substr(i, 2), &used, 16)));
    if (used != 2) throw std::invalid_argument("not hexadecimal: " + hex);
  }
  return bytes;
}

std::string to_hex(const Bytes &bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t byte : bytes) {
    hex += digits[byte >> 4];
    hex += digits[byte & 15];
  }
  return hex;
}

Bytes from_text(const std::string &text) { return {text.begin(), text.end()}; }

const std::string &Vector::word(const std::string &name) const {
  const auto found = values_.find(name);
  if (found == values_.end()) throw std::out_of_range(place + ": no value named " + name);
  return found->second;
}

std::vector<Vector> read_vectors(const std::string &name) {
  const std::string path = std::string(ZEL_VECTOR_DIR "/") + name + ".txt";
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot open " + path);
  std::vector<Vector> cases;
  bool inside = false;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.starts_with('#')) continue;
    const auto equals = line.find('=');
    if (equals == std::string::npos) {
      inside = false;
      continue;
    }
    if (!inside) {
      cases.emplace_back();
      cases.back().place = name + ".txt:" + std::to_string(number);
      inside = true;
    }
    const auto trim = [](std::string text) {
      const auto first = text.find_first_not_of(" \t\r");
      const auto last = text.find_last_not_of(" \t\r");
      return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
    };
    cases.back().set(trim(line.substr(0, equals)), trim(line.substr(equals + 1)));
  }
  if (cases.empty()) throw std::runtime_error("no case in " + path);
  return cases;
}

}  // namespace zel::test
