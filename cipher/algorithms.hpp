// The block ciphers as the rest of the library names them, whatever a program does to the exported
// names (base/identity.hpp), and their many-block routines.
#pragma once

#include "base/identity.hpp"
#include "cipher/bulk.hpp"
#include "zel_cc/bcipher.h"
#include "zel_cc/ciphers.h"

extern "C" {
extern __attribute__((visibility("hidden"))) const BCIPHER_ALGORITHM zel_own_aria, zel_own_aria192,
    zel_own_aria256, zel_own_seed, zel_own_rijndael, zel_own_rijndael256, zel_own_aesni,
    zel_own_aesni256, zel_own_des, zel_own_tdes, zel_own_blowfish, zel_own_cast128, zel_own_idea,
    zel_own_rc2, zel_own_rc5, zel_own_tavo, zel_own_tavoold;
}

namespace zel {

/// Whether the cipher may be used in the verified service.
inline bool is_approved(const BCIPHER_ALGORITHM *given) noexcept {
  return is_genuine(given, zel_own_aria, aria) || is_genuine(given, zel_own_aria192, aria192) ||
         is_genuine(given, zel_own_aria256, aria256) || is_genuine(given, zel_own_seed, seed);
}

namespace bulk {

/// Whether `aesni` and `aesni256` compute anything in this build.
#ifdef ZEL_CC_AESNI
inline constexpr bool kBuiltWithAesni = true;
#else
inline constexpr bool kBuiltWithAesni = false;
#endif

// Fast paths; each lives in the file of its algorithm or of its instruction set, and has a row in
// bulk.cpp.
extern const Ops aria128_vaes, aria192_vaes, aria256_vaes;
extern const Ops aria128_aesni, aria192_aesni, aria256_aesni;
extern const Ops seed_vaes, seed_aesni;
extern const Ops rijndael128_vaes, rijndael256_vaes;
extern const Ops rijndael128_aesni, rijndael256_aesni;
extern const Ops rijndael128_sliced, rijndael256_sliced;
extern const Ops des_avx2, tdes_avx2, des_interleaved, tdes_interleaved;
extern const Ops blowfish_interleaved, cast128_interleaved, idea_interleaved, rc2_interleaved,
    rc5_interleaved, tavo_interleaved, tavoold_interleaved;
extern const Ops idea_avx2, rc5_avx2;

}  // namespace bulk
}  // namespace zel
