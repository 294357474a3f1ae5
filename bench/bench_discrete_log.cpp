// DSA and KCDSA, beside OpenSSL's DSA.
//
// The hash values are given. OpenSSL keeps what it prepares for its modulus in the key; ours
// prepares it in each call, and takes a seed from the system for each nonce. Generation of
// parameters is a mean over a few calls; OpenSSL generates q and p with the seed and counter of
// FIPS 186-4.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <cstdio>
#include <cstdlib>

#include "bench/bench.hpp"
#include "zel_cc.h"

#if ZEL_BENCH_OPENSSL
#include <openssl/dsa.h>
#endif

namespace zel::bench {
namespace {

constexpr std::int64_t kSearches = 5;
constexpr std::uint32_t kQBits = 256;
constexpr std::uint32_t kDigestLen = 32;

void require(bool condition, const char *what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

/// A group, keys and signatures in it. Made when the first measurement asks for it.
struct Numbers {
  DSA_PARAM param;
  KCDSA_PARAM kcdsa_param{};
  MINT x, y, kcdsa_x, kcdsa_y;
  DSA_SIGNATURE_BODY signature;
  KCDSA_SIGNATURE_BODY kcdsa_signature;
  std::vector<std::uint8_t> digest = message(kDigestLen);

  explicit Numbers(std::uint32_t p_bits) {
    require(DSA_GenParam(&param, p_bits, kQBits) == ZEL_OK, "parameters");
    kcdsa_param.p = param.p, kcdsa_param.q = param.q, kcdsa_param.g = param.g;
    require(DSA_GenKey(&x, &y, &param) == ZEL_OK && sign() == ZEL_OK && verify() == ZEL_OK, "DSA");
    require(KCDSA_GenKey(&kcdsa_x, &kcdsa_y, &kcdsa_param) == ZEL_OK && kcdsa_sign() == ZEL_OK &&
                kcdsa_verify() == ZEL_OK,
            "KCDSA");
  }
  std::int32_t sign() {
    return DSA_SSA_S_Hash(&signature, digest.data(), kDigestLen, &x, &param, &sha256);
  }
  std::int32_t verify() {
    return DSA_SSA_V_Hash(&signature, digest.data(), kDigestLen, &y, &param, &sha256);
  }
  std::int32_t kcdsa_sign() {
    return KCDSA_SSA_S_Hash(&kcdsa_signature, digest.data(), kDigestLen, &kcdsa_x, &kcdsa_param,
                            &sha256, &kcdsa_y);
  }
  std::int32_t kcdsa_verify() {
    return KCDSA_SSA_V_Hash(&kcdsa_signature, digest.data(), kDigestLen, &kcdsa_y, &kcdsa_param,
                            &sha256);
  }
};

template <std::uint32_t kBits>
Numbers &numbers() {
  static Numbers made(kBits);
  return made;
}

#if ZEL_BENCH_OPENSSL
/// A number for OpenSSL, which the key then owns.
BIGNUM *bignum(const MINT &a) {
  std::vector<std::uint8_t> bytes(ZEL_MINT_BYTES);
  std::uint32_t len = 0;
  MINT_WriteInByteArray(bytes.data(), &len, &a);
  return BN_bin2bn(bytes.data(), static_cast<int>(len), nullptr);
}

/// The same group and key in OpenSSL, and a signature of its own.
struct Peer {
  DSA *key = DSA_new();
  std::vector<std::uint8_t> digest = message(kDigestLen);
  DSA_SIG *signature;

  explicit Peer(const Numbers &from) {
    DSA_set0_pqg(key, bignum(from.param.p), bignum(from.param.q), bignum(from.param.g));
    DSA_set0_key(key, bignum(from.y), bignum(from.x));
    signature = DSA_do_sign(digest.data(), kDigestLen, key);
    require(verify() == 1, "OpenSSL");
  }
  int verify() { return DSA_do_verify(digest.data(), kDigestLen, signature, key); }
};

template <std::uint32_t kBits>
Peer &peer() {
  static Peer made(numbers<kBits>());
  return made;
}
#endif

template <std::uint32_t kBits>
void add(const char *size) {
  operations({"dsa", "sign", size, "zel"}, [] { numbers<kBits>().sign(); });
  operations({"dsa", "verify", size, "zel"}, [] { numbers<kBits>().verify(); });
  operations({"kcdsa", "sign", size, "zel"}, [] { numbers<kBits>().kcdsa_sign(); });
  operations({"kcdsa", "verify", size, "zel"}, [] { numbers<kBits>().kcdsa_verify(); });
#if ZEL_BENCH_OPENSSL
  operations({"dsa", "sign", size, "openssl"}, [] {
    Peer &one = peer<kBits>();
    DSA_SIG_free(DSA_do_sign(one.digest.data(), kDigestLen, one.key));
  });
  operations({"dsa", "verify", size, "openssl"}, [] { peer<kBits>().verify(); });
#endif
}

const Registration kDiscreteLog{[] {
  add<2048>("2048-256");
  add<3072>("3072-256");
  mean({"dsa", "GenParam", "2048-256", "zel"}, kSearches, [] {
    DSA_PARAM param;
    DSA_GenParam(&param, 2048, kQBits);
  });
  mean({"kcdsa", "GenParam", "2048-256", "zel"}, kSearches, [] {
    KCDSA_PARAM param;
    KCDSA_GenParam(&param, 2048, kQBits);
  });
#if ZEL_BENCH_OPENSSL
  mean({"dsa", "GenParam", "2048-256", "openssl"}, kSearches, [] {
    DSA *const key = DSA_new();
    DSA_generate_parameters_ex(key, 2048, nullptr, 0, nullptr, nullptr, nullptr);
    DSA_free(key);
  });
#endif
}};

}  // namespace
}  // namespace zel::bench
