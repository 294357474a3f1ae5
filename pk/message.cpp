// Messages in memory and in streams on their way into a hash.
#include "pk/message.hpp"

#include "base/wipe.hpp"
#include "zel_cc/pkcrypt.h"

namespace zel::pk {
namespace {

constexpr std::uint32_t kChunkLen = 65536;

/// Reads once and hashes what came; false when the stream cannot be read.
bool feed_chunk(HASH_CONTEXT &context, std::FILE *stream, Scratch<std::uint8_t> &chunk,
                std::uint32_t len) noexcept {
  const std::size_t got = std::fread(chunk.data(), 1, len, stream);
  if (std::ferror(stream) != 0) return false;
  HASH_Update_KZEL(&context, chunk.data(), static_cast<std::uint32_t>(got));
  return true;
}

}  // namespace

std::int32_t Message::feed(HASH_CONTEXT &context) const noexcept {
  if (stream_ == nullptr) {
    HASH_Update_KZEL(&context, data_, len_);
    return ZEL_OK;
  }
  Scratch<std::uint8_t> chunk(kChunkLen);
  if (!chunk) return ZEL_ERR_GENERIC;
  const bool whole = len_ == ZEL_WHOLE_STREAM;
  std::uint32_t left = len_;
  while ((whole || left > kChunkLen) && std::feof(stream_) == 0) {
    if (!feed_chunk(context, stream_, chunk, kChunkLen)) return ZEL_ERR_GENERIC;
    left -= kChunkLen;
  }
  if (whole || std::feof(stream_) != 0) return ZEL_OK;
  return feed_chunk(context, stream_, chunk, left) ? ZEL_OK : ZEL_ERR_GENERIC;
}

std::int32_t hash_value(HashValue &value, const Message &message,
                        const HASH_ALGORITHM &hash) noexcept {
  value.bytes = message.data();
  value.len = message.len();
  if (message.is_hashed()) return ZEL_OK;
  value.bytes = value.digest;
  value.len = 0;
  Wiped<HASH_CONTEXT> context;
  if (hash.digest_len > sizeof value.digest || HASH_Initialize(&*context, &hash) != ZEL_OK) {
    return ZEL_ERR_GENERIC;
  }
  if (message.feed(*context) != ZEL_OK) return ZEL_ERR_GENERIC;
  HASH_Finalize(value.digest, &value.len, &*context);
  return value.len == 0 ? ZEL_ERR_GENERIC : ZEL_OK;
}

}  // namespace zel::pk
