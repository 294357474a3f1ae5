#include "tools/zel/der.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace zel::tool::der {
namespace {

constexpr std::uint8_t kLongForm = 0x80;
/// Octets of a length that are read: more than any key needs.
constexpr std::size_t kLengthOctets = 3;

View trimmed(View magnitude) {
  while (!magnitude.empty() && magnitude.front() == 0)
    magnitude = magnitude.subspan(1);
  return magnitude;
}

}  // namespace

bool Reader::sees(Tag tag) const noexcept {
  return !rest_.empty() && rest_.front() == static_cast<std::uint8_t>(tag);
}

void Reader::end() const {
  if (!at_end()) throw Malformed("bytes after the end of an element");
}

std::uint8_t Reader::octet() {
  if (rest_.empty()) throw Malformed("cut off");
  const std::uint8_t value = rest_.front();
  rest_ = rest_.subspan(1);
  return value;
}

/// X.690, section 10.1: the definite form with the fewest octets.
std::size_t Reader::length() {
  const std::uint8_t first = octet();
  if (first < kLongForm) return first;
  const std::size_t count = first - kLongForm;
  if (count == 0) throw Malformed("a length without an end, which DER does not have");
  if (count > kLengthOctets) throw Malformed("an element that is too long");
  std::size_t value = 0;
  for (std::size_t i = 0; i < count; ++i)
    value = value << 8 | octet();
  if (value < kLongForm || value >> (8 * (count - 1)) == 0) {
    throw Malformed("a length that is not in its shortest form");
  }
  return value;
}

View Reader::next(Tag tag) {
  if (!sees(tag)) throw Malformed(at_end() ? "cut off" : "not the element that should stand there");
  octet();
  const std::size_t len = length();
  if (len > rest_.size()) throw Malformed("cut off");
  const View content = rest_.first(len);
  rest_ = rest_.subspan(len);
  return content;
}

View Reader::integer() {
  const View content = next(Tag::kInteger);
  if (content.empty()) throw Malformed("a number without digits");
  if ((content[0] & 0x80) != 0) throw Malformed("a negative number");
  if (content[0] != 0) return content;
  if (content.size() > 1 && (content[1] & 0x80) == 0) {
    throw Malformed("a number that is not in its shortest form");
  }
  return content.subspan(1);
}

std::uint32_t Reader::small() {
  const View digits = integer();
  if (digits.size() > sizeof(std::uint32_t)) throw Malformed("a number that is too large");
  std::uint32_t value = 0;
  for (const std::uint8_t digit : digits)
    value = value << 8 | digit;
  return value;
}

View Reader::object_id() {
  const View content = next(Tag::kObjectId);
  bool starts = true;  // X.690, section 8.19.2: no leading 0x80 in a component
  for (const std::uint8_t byte : content) {
    if (starts && byte == 0x80) throw Malformed("an object identifier that is not well formed");
    starts = (byte & 0x80) == 0;
  }
  if (content.empty() || !starts) throw Malformed("an object identifier that is not well formed");
  return content;
}

View Reader::bit_string() {
  const View content = next(Tag::kBitString);
  if (content.empty() || content[0] != 0) throw Malformed("a bit string that is not of octets");
  return content.subspan(1);
}

void Reader::null() {
  if (!next(Tag::kNull).empty()) throw Malformed("a NULL with a content");
}

Reader only_sequence(View bytes) {
  Reader whole(bytes);
  const Reader content = whole.sequence();
  whole.end();
  return content;
}

void Writer::put(std::uint8_t octet) { put(View(&octet, 1)); }

void Writer::put(View octets) {
  if (octets.size() > out_.room().size()) throw std::bad_alloc();
  std::copy(octets.begin(), octets.end(), out_.room().begin());
  out_.grow(octets.size());
}

/// What was written since `start` becomes the content of an element.
void Writer::wrap(Tag tag, std::size_t start) {
  const std::size_t len = out_.bytes().size() - start;
  std::array<std::uint8_t, 2 + kLengthOctets> header{static_cast<std::uint8_t>(tag)};
  std::size_t used = 1;
  if (len < kLongForm) {
    header[used++] = static_cast<std::uint8_t>(len);
  } else {
    std::size_t count = 1;
    while (len >> (8 * count) != 0)
      ++count;
    if (count > kLengthOctets) throw std::bad_alloc();
    header[used++] = static_cast<std::uint8_t>(kLongForm + count);
    for (std::size_t i = count; i-- != 0;)
      header[used++] = static_cast<std::uint8_t>(len >> (8 * i));
  }
  put(View(header.data(), used));  // for the room
  std::uint8_t *element = out_.room().data() - (len + used);
  std::memmove(element + used, element, len);
  std::copy_n(header.data(), used, element);
}

void Writer::primitive(Tag tag, View content) {
  element(tag, [&] { put(content); });
}

void Writer::integer(View magnitude) {
  const View digits = trimmed(magnitude);
  const bool needs_zero = digits.empty() || (digits.front() & 0x80) != 0;
  element(
      Tag::kInteger, [&] { put(digits); }, needs_zero ? 1 : 0);
}

void Writer::small(std::uint32_t value) {
  const std::array<std::uint8_t, 4> digits{
      static_cast<std::uint8_t>(value >> 24), static_cast<std::uint8_t>(value >> 16),
      static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
  integer(digits);
}

}  // namespace zel::tool::der
