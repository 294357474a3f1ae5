// The nine hashes as tests see them.
#pragma once

#include <cstddef>

#include "tests/support/vectors.hpp"
#include "zel_cc/hash.h"

namespace zel::test {

enum class HashKind { kApproved, kGated, kInert };  ///< in the verified service

struct HashRow {
  const char *name;
  const HASH_ALGORITHM *descriptor;
  std::size_t block;
  HashKind kind;
  const char *openssl;  ///< its name there, or empty
};

inline constexpr HashRow kHashes[] = {
    {"sha1", &popsha1, 64, HashKind::kGated, "SHA1"},
    {"sha224", &sha224, 64, HashKind::kApproved, "SHA224"},
    {"sha256", &sha256, 64, HashKind::kApproved, "SHA256"},
    {"sha384", &sha384, 128, HashKind::kApproved, "SHA384"},
    {"sha512", &sha512, 128, HashKind::kApproved, "SHA512"},
    {"has160", &pophas160, 64, HashKind::kGated, ""},
    {"md5", &popmd5, 64, HashKind::kInert, "MD5"},
    {"ripemd160", &ripemd160, 64, HashKind::kInert, "RIPEMD160"},
    {"md2", &md2, 16, HashKind::kInert, ""},
};

/// Bytes without a pattern, the same in every run.
inline Bytes noise(std::size_t len) {
  Bytes bytes(len);
  uint32_t word = 1;
  for (uint8_t &byte : bytes)
    byte = static_cast<uint8_t>((word = word * 1664525 + 1013904223) >> 24);
  return bytes;
}

inline Bytes joined(Bytes first, const Bytes &second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

inline Bytes digest_of(const HASH_CONTEXT &context) {
  Bytes out(ZEL_MAX_DIGEST_LEN);
  uint32_t len = 0;
  HASH_Finalize(out.data(), &len, &context);
  out.resize(len);
  return out;
}

inline Bytes hash(const HASH_ALGORITHM *descriptor, const Bytes &message, long repeat = 1) {
  HASH_CONTEXT context;
  HASH_Initialize(&context, descriptor);
  for (long i = 0; i < repeat; ++i)
    HASH_Update_KZEL(&context, message.data(), static_cast<uint32_t>(message.size()));
  return digest_of(context);
}

}  // namespace zel::test
