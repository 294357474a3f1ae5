// Writes bytes of one of the generators to standard output, for programs that judge them.
// usage: random_bytes hash-drbg|hmac-drbg|one-call|counter COUNT
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "zel_cc.h"

namespace {

constexpr uint32_t kPiece = 1000;  // not a multiple of any digest
HASHDRBG_CONTEXT g_hash;
HMACDRBG_CONTEXT g_hmac;

bool hash_drbg(uint8_t *out) {
  return HASHDRBG_GenerateRand(out, &g_hash, 8 * kPiece, 256, nullptr, 0, 0) == ZEL_OK;
}
bool hmac_drbg(uint8_t *out) {
  return HMACDRBG_GenerateRand(out, &g_hmac, 8 * kPiece, 256, nullptr, 0, 0) == ZEL_OK;
}
bool one_call(uint8_t *out) { return HASHDRBG_GetRandNum(out, 8 * kPiece) == ZEL_OK; }

/// Nothing random: a judge that accepts it does not work.
bool counter(uint8_t *out) {
  static uint32_t next = 0;
  for (uint32_t i = 0; i + sizeof next <= kPiece; i += sizeof next, ++next)
    std::memcpy(out + i, &next, sizeof next);
  return true;
}

struct Source {
  const char *name;
  bool (*fill)(uint8_t *out);
};
constexpr Source kSources[] = {{"hash-drbg", hash_drbg},
                               {"hmac-drbg", hmac_drbg},
                               {"one-call", one_call},
                               {"counter", counter}};

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) return 2;
  HASHDRBG_Instantiate(&g_hash, ZEL_DRBG_SHA384, 256, 0, nullptr, 0, nullptr, 0);
  HMACDRBG_Instantiate(&g_hmac, ZEL_DRBG_SHA384, 256, 0, nullptr, 0, nullptr, 0);
  for (const Source &source : kSources) {
    if (std::strcmp(source.name, argv[1]) != 0) continue;
    uint8_t piece[kPiece];
    for (unsigned long left = std::strtoul(argv[2], nullptr, 10); left != 0;) {
      const auto part = std::min<unsigned long>(left, kPiece);
      if (!source.fill(piece) || std::fwrite(piece, 1, part, stdout) != part) return 1;
      left -= part;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
  }
  return 2;
}
