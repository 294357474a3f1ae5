// Distinguished encoding: reading what others wrote, strictly, and writing it. ITU-T X.690.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <utility>

#include "tools/zel/secret.hpp"

namespace zel::tool {

/// Input that does not have the form it should have; the text says in which way.
class Malformed : public std::exception {
 public:
  explicit Malformed(const char *problem) noexcept : problem_(problem) {}
  const char *what() const noexcept override { return problem_; }

 private:
  const char *problem_;
};

}  // namespace zel::tool

namespace zel::tool::der {

using View = std::span<const std::uint8_t>;

enum class Tag : std::uint8_t {
  kInteger = 0x02,
  kBitString = 0x03,
  kOctetString = 0x04,
  kNull = 0x05,
  kObjectId = 0x06,
  kSequence = 0x30,
  kContext0 = 0xa0,  ///< [0], constructed
  kContext1 = 0x81,  ///< [1], primitive
};

/// Walks over the elements of one content. It copies nothing, and whatever is not DER, or not the
/// element that was asked for, ends as `Malformed`.
class Reader {
 public:
  explicit Reader(View bytes) noexcept : rest_(bytes) {}

  bool at_end() const noexcept { return rest_.empty(); }
  /// Whether the next element has this tag.
  bool sees(Tag tag) const noexcept;
  void end() const;

  /// The content of the next element.
  View next(Tag tag);
  Reader enter(Tag tag) { return Reader(next(tag)); }
  Reader sequence() { return enter(Tag::kSequence); }
  /// A number that is not negative: its bytes without a leading zero byte, none at all for zero.
  View integer();
  /// A number below 2^32.
  std::uint32_t small();
  /// The content of an object identifier.
  View object_id();
  /// The octets of a bit string that has whole octets.
  View bit_string();
  void null();

 private:
  std::size_t length();
  std::uint8_t octet();

  View rest_;
};

/// One element alone, which a file or an octet string holds.
Reader only_sequence(View bytes);

/// Writes elements one after the other into memory of fixed size that is wiped.
class Writer {
 public:
  explicit Writer(std::size_t capacity) : out_(capacity) {}

  View bytes() const noexcept { return out_.bytes(); }
  /// Gives up what was written.
  Secret take() { return std::move(out_); }

  void primitive(Tag tag, View content);
  /// A number from its bytes; leading zero bytes do not matter.
  void integer(View magnitude);
  void small(std::uint32_t value);
  void null() { primitive(Tag::kNull, {}); }
  /// An element whose content `body` writes; `prefix` zero bytes stand before it.
  template <class Body>
  void element(Tag tag, const Body &body, std::size_t prefix = 0) {
    const std::size_t start = out_.bytes().size();
    for (std::size_t i = 0; i < prefix; ++i)
      put(0);
    body();
    wrap(tag, start);
  }
  template <class Body>
  void sequence(const Body &body) {
    element(Tag::kSequence, body);
  }
  /// A bit string of whole octets that `body` writes.
  template <class Body>
  void bit_string(const Body &body) {
    element(Tag::kBitString, body, 1);
  }

 private:
  void put(std::uint8_t octet);
  void put(View octets);
  void wrap(Tag tag, std::size_t start);

  Secret out_;
};

}  // namespace zel::tool::der
