// What the files bench_cipher*.cpp share: which ciphers and modes are measured, under which names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zel_cc/bcipher.h"

namespace zel::bench {

inline constexpr const char *kCipherGroup = "cipher";
inline constexpr std::size_t kCipherSize = 16384;

/// One cipher under everybody's names; null where a peer does not have it.
struct CipherNames {
  const char *name;
  const BCIPHER_ALGORITHM *descriptor;
  std::uint32_t key_len;
  const char *openssl;  ///< without the mode
  const char *botan;    ///< of the block cipher
};

inline const CipherNames kCiphers[] = {
    {"aes128", &rijndael, 16, "AES-128", "AES-128"},
    {"aes256", &rijndael256, 32, "AES-256", "AES-256"},
    {"aria128", &aria, 16, "ARIA-128", "ARIA-128"},
    {"aria192", &aria192, 24, "ARIA-192", "ARIA-192"},
    {"aria256", &aria256, 32, "ARIA-256", "ARIA-256"},
    {"seed", &seed, 16, "SEED", "SEED"},
    {"des", &des, 8, "DES", "DES"},
    {"tdes", &tdes, 24, "DES-EDE3", "TripleDES"},
    {"blowfish", &blowfish, 16, "BF", "Blowfish"},
    {"cast128", &cast128, 16, "CAST5", "CAST-128"},
    {"idea", &idea, 16, "IDEA", "IDEA"},
    {"rc2", &rc2, 16, "RC2", nullptr},
    {"rc5", &rc5, 16, nullptr, nullptr},
    {"tavo", &tavo, 16, nullptr, nullptr},
};

struct ModeNames {
  const char *name;
  std::uint8_t mode;
  bool decrypt;
  const char *openssl;
  std::size_t size = kCipherSize;  ///< of a message
};

inline constexpr ModeNames kModes[] = {
    {"ecb", ZEL_MODE_ECB, false, "ECB"},     {"ecb-dec", ZEL_MODE_ECB, true, "ECB"},
    {"cbc", ZEL_MODE_CBC, false, "CBC"},     {"cbc-dec", ZEL_MODE_CBC, true, "CBC"},
    {"ctr", ZEL_MODE_CTR, false, "CTR"},     {"ctr", ZEL_MODE_CTR, false, "CTR", 1024},
    {"ctr", ZEL_MODE_CTR, false, "CTR", 64},
};

}  // namespace zel::bench
