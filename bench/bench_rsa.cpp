// RSASSA-PSS over SHA-256 of a hash value, and key pairs with e = 65537. Ours are over strong
// primes, which the peers' are not.
#include "bench/bench_rsa.hpp"

#include "base/cpu.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

struct Key {
  RSA_PRIVATE_KEY pri;
  RSA_PUBLIC_KEY pub;
  RSA_SIGNATURE signature;
  PKCRYPT_KEY pri_object{&rsa21, &pri};
  PKCRYPT_KEY pub_object{&rsa21, &pub};
  std::vector<std::uint8_t> digest = message(32);

  explicit Key(std::uint32_t bits) {
    while (RSA_GenKey(&pri, &pub, bits) != ZEL_OK || MINT_GetBitLength(&pub.n) != bits) {
    }
    sign();
  }
  void sign() {
    PKCRYPT_SignHash(&signature.head, digest.data(), 32, &pri_object, nullptr, &sha256, nullptr);
  }
  void verify() {
    PKCRYPT_VerifyHash(&signature.head, digest.data(), 32, &pub_object, nullptr, &sha256, nullptr);
  }
};

template <std::uint32_t kBits>
Key &key() {
  static Key *const made = new Key(kBits);
  return *made;
}

/// The same without the features of the processor.
template <class Body>
auto portable(Body body) {
  return [body]() mutable {
    const std::uint32_t known = cpu::g_features.exchange(cpu::kAsked);
    body();
    cpu::g_features = known;
  };
}

template <std::uint32_t kBits>
void add() {
  const auto sign = [] { key<kBits>().sign(); };
  const auto verify = [] { key<kBits>().verify(); };
  operations(rsa_name("pss-sign", kBits, "zel"), sign);
  operations(rsa_name("pss-sign", kBits, "zel-portable"), portable(sign));
  operations(rsa_name("pss-verify", kBits, "zel"), verify);
  operations(rsa_name("pss-verify", kBits, "zel-portable"), portable(verify));
  if (kBits > 3072) return;
  mean(rsa_name("keygen", kBits, "zel"), kRsaKeys, [] {
    RSA_PRIVATE_KEY pri;
    RSA_PUBLIC_KEY pub;
    RSA_GenKey(&pri, &pub, kBits);
  });
}

const Registration kRsa([] {
  add<2048>();
  add<3072>();
  add<4096>();
});

}  // namespace
}  // namespace zel::bench
