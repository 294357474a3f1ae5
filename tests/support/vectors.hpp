// Reads the vector files: blocks of `name = value` lines, separated by blank lines; `#` comments.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zel::test {

using Bytes = std::vector<std::uint8_t>;

Bytes from_hex(const std::string &hex);
std::string to_hex(const Bytes &bytes);
Bytes from_text(const std::string &text);

/// One case. Asking for a name that the case does not have fails the test with the case's place.
class Vector {
 public:
  std::string place;  ///< file:line of the first line

  bool has(const std::string &name) const { return values_.contains(name); }
  const std::string &word(const std::string &name) const;
  Bytes bytes(const std::string &name) const { return from_hex(word(name)); }
  long number(const std::string &name) const { return std::stol(word(name)); }
  long number_or(const std::string &name, long otherwise) const {
    return has(name) ? number(name) : otherwise;
  }
  void set(const std::string &name, const std::string &value) { values_[name] = value; }

 private:
  std::map<std::string, std::string> values_;
};

/// Every case of tests/vectors/<name>.txt; throws when there is none.
std::vector<Vector> read_vectors(const std::string &name);

}  // namespace zel::test
