// What the files bench_auth*.cpp share: a call seals or authenticates one whole message under a key
// that is loaded already.
#pragma once

#include <cstddef>

#include "bench/bench.hpp"
#include "bench/bench_cipher.hpp"

namespace zel::bench {

inline constexpr const char *kAuthGroup = "auth";
inline constexpr std::size_t kAuthSizes[] = {64, 1024, 16384};
inline constexpr std::size_t kNonceLen = 12;
inline constexpr std::size_t kTagLen = 16;

inline Name auth_name(const CipherNames &cipher, const char *mode, std::size_t len,
                      const char *implementation) {
  return {kAuthGroup, std::string(cipher.name) + '-' + mode, std::to_string(len), implementation};
}

/// Calls add(cipher, size) for the ciphers with 16-byte blocks that peers have, and every size.
template <class Add>
void each_auth_row(Add add) {
  for (const CipherNames &cipher : kCiphers) {
    if (cipher.descriptor->block_len != kTagLen || cipher.botan == nullptr) continue;
    for (const std::size_t len : kAuthSizes)
      add(cipher, len);
  }
}

}  // namespace zel::bench
