// Known-answer tests of RSA: RSAES-OAEP, RSASSA-PSS and RSASSA-PKCS1-v1_5 with one key pair of 2048
// bits. RFC 8017.
#include "base/wipe.hpp"
#include "core/selftest_rsa_tables.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/known_answer.h"
#include "zel_cc/mint.h"
#include "zel_cc/rsa.h"
#include "zel_cc/rsa_oaep.h"

namespace zel {
namespace {

constexpr std::uint32_t kMessageLen = kRsaMessage.size();

struct RsaPair {
  RSA_PRIVATE_KEY private_key;
  RSA_PUBLIC_KEY public_key;

  RsaPair() noexcept {
    const auto set = [](MINT &a, const auto &bytes) {
      MINT_SetByByteArray(&a, bytes.data(), static_cast<std::int32_t>(bytes.size()));
    };
    set(private_key.n, kRsaN);
    MINT_SetByInteger(&private_key.e, kRsaE);
    set(private_key.d, kRsaD);
    set(private_key.p, kRsaP);
    set(private_key.q, kRsaQ);
    set(private_key.dP, kRsaDp);
    set(private_key.dQ, kRsaDq);
    set(private_key.qInv, kRsaQinv);
    public_key.n = private_key.n;
    public_key.e = private_key.e;
  }
};

bool crypts(const Check &check, const RsaPair &pair, const HASH_ALGORITHM &hash,
            const RSA_OAEP_LABEL *label, const RsaValue &expected) noexcept {
  std::array<std::uint8_t, kRsaLen> out;
  std::uint32_t out_len = 0;
  if (RSAES_OAEP_ENCRYPT21(out.data(), &out_len, kRsaMessage.data(), kMessageLen, &pair.public_key,
                           label, &hash, nullptr) != ZEL_OK ||
      !check.equal(out.data(), out_len, expected)) {
    return false;
  }
  return RSAES_OAEP_DECRYPT21(out.data(), &out_len, expected.data(), kRsaLen, &pair.private_key,
                              label, &hash, nullptr) == ZEL_OK &&
         check.equal(out.data(), out_len, kRsaMessage);
}

/// What the signature schemes have in common.
struct Scheme {
  decltype(RSA_SSA_S) *sign;
  decltype(RSA_SSA_V) *verify;
};

/// Whether a new signature verifies, and one that another program made.
bool signs(const Check &check, const RsaPair &pair, const Scheme &scheme,
           const HASH_ALGORITHM &hash, const RsaValue &known, MINT &signature) noexcept {
  const auto verifies = [&] {
    return check.holds(scheme.verify(&signature, kRsaMessage.data(), kMessageLen, &pair.public_key,
                                     nullptr, &hash) == ZEL_OK);
  };
  MINT_SetByByteArray(&signature, known.data(), kRsaLen);
  return verifies() &&
         scheme.sign(&signature, kRsaMessage.data(), kMessageLen, &pair.private_key, nullptr,
                     &hash) == ZEL_OK &&
         verifies();
}

constexpr Scheme kPss{RSA_SSA_PSS_S, RSA_SSA_PSS_V};
constexpr Scheme kPkcs1{RSA_SSA_S, RSA_SSA_V};

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_RSAES_OAEP(void) {
  return known_answer(__func__, ZEL_ERR_RSAES_OAEP_TEST, [](const Check &check) {
    const RsaPair pair;
    const RSA_OAEP_LABEL label = {kRsaLabel.data(), kRsaLabel.size()};
    return crypts(check, pair, zel_own_sha224, nullptr, kOaepSha224) &&
           crypts(check, pair, zel_own_sha256, &label, kOaepSha256);
  });
}

int32_t SELFTEST_RSASSA_PSS(void) {
  return known_answer(__func__, ZEL_ERR_RSASSA_PSS_TEST, [](const Check &check) {
    const RsaPair pair;
    MINT signature;
    return signs(check, pair, kPss, zel_own_sha224, kPssSha224, signature) &&
           signs(check, pair, kPss, zel_own_sha256, kPssSha256, signature);
  });
}

int32_t SELFTEST_RSASSA_PKCS1_V15(void) {
  return known_answer(__func__, ZEL_ERR_RSASSA_PKCS1_TEST, [](const Check &check) {
    const RsaPair pair;
    MINT signature;
    std::array<std::uint8_t, kRsaLen> out;
    if (!signs(check, pair, kPkcs1, zel_own_sha256, kPkcs1Sha256, signature)) return false;
    MINT_WriteLSNByteInByteArray(out.data(), kRsaLen, &signature);
    return check.equal(out.data(), kRsaLen, kPkcs1Sha256);
  });
}
