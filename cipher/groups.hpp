// Work in units of many blocks, for routines that cannot do less than one unit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/wipe.hpp"

namespace zel {

/// Enciphers or deciphers one unit; `out` may equal `in`.
using GroupFn = void (*)(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys);

/// `len` bytes, which need not be whole units: the last one is filled up in a buffer.
template <std::size_t kUnitLen>
inline void in_groups(GroupFn work, std::uint8_t *out, const std::uint8_t *in, std::size_t len,
                      const void *round_keys) noexcept {
  const auto *const keys = static_cast<const std::uint8_t *>(round_keys);
  for (; len >= kUnitLen; len -= kUnitLen, in += kUnitLen, out += kUnitLen)
    work(out, in, keys);
  if (len == 0) return;
  Wiped<std::uint8_t[kUnitLen]> unit;
  std::memset(*unit, 0, kUnitLen);
  std::memcpy(*unit, in, len);
  work(*unit, *unit, keys);
  std::memcpy(out, *unit, len);
}

}  // namespace zel
