// What is signed, in one type: a message in memory, a message in a stream, or a hash value that the
// caller has computed. A scheme is written once over it.
#pragma once

#include <cstdint>
#include <cstdio>

#include "zel_cc/hash.h"

namespace zel::pk {

class Message {
 public:
  static Message in_memory(const std::uint8_t *data, std::uint32_t len) noexcept {
    return {data, nullptr, len, false};
  }
  /// What is left of an open stream, `len` bytes at most unless it is ZEL_WHOLE_STREAM.
  static Message in_stream(std::FILE *stream, std::uint32_t len) noexcept {
    return {nullptr, stream, len, false};
  }
  static Message hashed(const std::uint8_t *value, std::uint32_t len) noexcept {
    return {value, nullptr, len, true};
  }

  bool is_null() const noexcept { return data_ == nullptr && stream_ == nullptr; }
  bool is_hashed() const noexcept { return is_hashed_; }
  /// The bytes of a message in memory or of a hash value.
  const std::uint8_t *data() const noexcept { return data_; }
  std::uint32_t len() const noexcept { return len_; }

  /// Adds the message to a running hash. ZEL_ERR_GENERIC: the stream cannot be read, or there is no
  /// memory. A stream that ends early is no error.
  [[nodiscard]] std::int32_t feed(HASH_CONTEXT &context) const noexcept;

 private:
  Message(const std::uint8_t *data, std::FILE *stream, std::uint32_t len, bool is_hashed) noexcept
      : data_(data), stream_(stream), len_(len), is_hashed_(is_hashed) {}

  const std::uint8_t *data_;
  std::FILE *stream_;
  std::uint32_t len_;
  bool is_hashed_;
};

/// The hash value of a message: the caller's own bytes, or the digest here.
struct HashValue {
  const std::uint8_t *bytes;
  std::uint32_t len;
  std::uint8_t digest[ZEL_MAX_DIGEST_LEN];
};

/// Hashes a message that is not hashed yet. ZEL_ERR_GENERIC: as of Message::feed, or hashing is
/// refused where the module is not serving.
[[nodiscard]] std::int32_t hash_value(HashValue &value, const Message &message,
                                      const HASH_ALGORITHM &hash) noexcept;

}  // namespace zel::pk
