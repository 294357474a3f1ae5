// What both halves of the hash group measure: names and message sizes.
#pragma once

#include <cstddef>

namespace zel::bench {

/// A message that fits one block, and one that is many.
inline constexpr std::size_t kHashSizes[] = {64, 16384};

/// Groups: against the peer's recommended interface with everything reusable reused, and against
/// the fastest calls that the peer has at all (deprecated ones, without dispatch).
inline constexpr char kHashGroup[] = "hash";
inline constexpr char kRawGroup[] = "hash-raw";

}  // namespace zel::bench
