// A caller's FILE* in chunks, each given to a callable.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace zel::stream {

/// The usual length of a chunk.
inline constexpr std::size_t kChunkLen = 65536;

/// Reads `len` bytes, or what there is, into `chunk` again and again, and calls body(read, last)
/// each time, at least once. The chunk in which the stream ends is the last. Gives the first result
/// of `body` that is not 0, or `read_failed`.
template <class Body>
std::int32_t for_each_chunk(std::FILE *from, std::uint64_t len, std::uint8_t *chunk,
                            std::size_t chunk_len, std::int32_t read_failed, Body body) noexcept {
  for (;;) {
    const auto want = static_cast<std::size_t>(std::min<std::uint64_t>(len, chunk_len));
    const std::size_t got = std::fread(chunk, 1, want, from);
    // The error flag may be one from before the call; the end always has its own.
    if (got < want && std::feof(from) == 0) return read_failed;
    const bool last = len <= chunk_len || got < want;
    const std::int32_t result = body(got, last);
    if (result != 0 || last) return result;
    len -= got;
  }
}

}  // namespace zel::stream
