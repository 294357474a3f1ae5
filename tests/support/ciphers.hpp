// The block ciphers for tests that run over all of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace zel::test {

struct CipherRow {
  const char *name;
  const BCIPHER_ALGORITHM *descriptor;
  std::uint32_t key_len;  ///< the cipher's own, or one that suits it
  std::uint32_t block_len, round_keys_len;
  bool approved;
  /// False for the descriptors that this build, or this processor, leaves empty.
  bool computes() const {
    return (descriptor != &aesni && descriptor != &aesni256) || Check_CPU_support_AES() == 1;
  }
};

/// The catalogue: every descriptor and what it must hold.
inline const CipherRow kCiphers[] = {
    {"aria", &aria, 16, 16, 416, true},
    {"aria192", &aria192, 24, 16, 480, true},
    {"aria256", &aria256, 32, 16, 544, true},
    {"seed", &seed, 16, 16, 128, true},
    {"rijndael", &rijndael, 16, 16, 352, false},
    {"rijndael256", &rijndael256, 32, 16, 480, false},
    {"aesni", &aesni, 16, 16, 352, false},
    {"aesni256", &aesni256, 32, 16, 480, false},
    {"des", &des, 8, 8, 128, false},
    {"tdes", &tdes, 24, 8, 384, false},
    {"blowfish", &blowfish, 16, 8, 4168, false},
    {"cast128", &cast128, 16, 8, 128, false},
    {"idea", &idea, 16, 8, 224, false},
    {"rc2", &rc2, 16, 8, 128, false},
    {"rc5", &rc5, 16, 8, 104, false},
    {"tavo", &tavo, 16, 16, 256, false},
    {"tavoold", &tavoold, 16, 16, 256, false},
};

using Key = std::unique_ptr<BCIPHER_KEY, decltype(&BCIPHER_DelKey)>;

inline Key new_key(const BCIPHER_ALGORITHM &descriptor) {
  return {BCIPHER_NewKey(&descriptor), &BCIPHER_DelKey};
}

inline Key load_key(const BCIPHER_ALGORITHM &descriptor, const Bytes &bytes) {
  Key key = new_key(descriptor);
  const auto len = static_cast<std::uint32_t>(bytes.size());
  if (BCIPHER_MakeKey(key.get(), bytes.data(), len, &descriptor) != ZEL_OK) key.reset();
  return key;
}

/// What one call gave.
struct Result {
  std::int32_t code;
  Bytes data;  ///< as many bytes as the call reported
};

/// One call of BCIPHER_Encrypt or BCIPHER_Decrypt, in place or from one buffer to another. Behind
/// the message, or the padded one, nothing may be written.
inline Result operate(bool decrypt, BCIPHER_CONTEXT &context, const BCIPHER_KEY *key,
                      const Bytes &in, bool last = false, bool in_place = false) {
  Bytes out(in.size() + 2 * ZEL_MAX_BLOCK_LEN, 0xcc);
  if (in_place) std::copy(in.begin(), in.end(), out.begin());
  std::uint32_t len = 0xffffffff;
  const auto call = decrypt ? BCIPHER_Decrypt : BCIPHER_Encrypt;
  const std::int32_t code =
      call(out.data(), &len, in_place ? out.data() : in.data(),
           static_cast<std::uint32_t>(in.size()), &context, key, last ? 1 : 0);
  if (len == 0xffffffff) len = 0;
  const bool padded = last && !decrypt && context.mode <= ZEL_MODE_CBC;
  const std::size_t end = padded && code == ZEL_OK ? len : in.size();
  EXPECT_LE(len, end);
  EXPECT_TRUE(std::all_of(out.begin() + static_cast<std::ptrdiff_t>(end), out.end(),
                          [](int byte) { return byte == 0xcc; }));
  out.resize(len);
  return {code, out};
}

inline BCIPHER_CONTEXT start(std::uint8_t mode, const BCIPHER_ALGORITHM &descriptor,
                             const Bytes &iv) {
  BCIPHER_CONTEXT context{};
  BCIPHER_Initialize(&context, mode, iv.empty() ? nullptr : iv.data(), &descriptor);
  return context;
}

}  // namespace zel::test
