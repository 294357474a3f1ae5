// Big integers for the probes.
#pragma once

#include "zel_cc.h"

namespace zel::test {

/// Words that no test needs to be random; odd, and the top bit set.
inline MINT number(std::uint32_t len, std::uint32_t first) {
  MINT a = {};
  a.length = len;
  for (std::uint32_t i = 0; i < len; ++i)
    a.words[i] = first = first * 1664525 + 1013904223;
  a.words[0] |= 1;
  a.words[len - 1] |= 1U << 31;
  return a;
}

}  // namespace zel::test
