// Botan's RSA with its signer and verifier objects, which are never deleted: the measurements
// outlive Botan's allocator.
#include <botan/auto_rng.h>
#include <botan/pubkey.h>
#include <botan/rsa.h>

#include "bench/bench_rsa.hpp"

namespace zel::bench {
namespace {

constexpr char kScheme[] = "PSSR_Raw(SHA-256,MGF1,32)";

Botan::RandomNumberGenerator &generator() {
  static auto *const made = new Botan::AutoSeeded_RNG;
  return *made;
}

struct Key {
  Botan::RSA_PrivateKey key;
  Botan::PK_Signer signer;
  Botan::PK_Verifier verifier;
  std::vector<std::uint8_t> digest = message(32);
  std::vector<std::uint8_t> signature;

  explicit Key(std::uint32_t bits)
      : key(generator(), bits), signer(key, generator(), kScheme), verifier(key, kScheme) {
    sign();
  }
  void sign() { signature = signer.sign_message(digest, generator()); }
  void verify() { verifier.verify_message(digest, signature); }
};

template <std::uint32_t kBits>
Key &key() {
  static Key *const made = new Key(kBits);
  return *made;
}

template <std::uint32_t kBits>
void add() {
  operations(rsa_name("pss-sign", kBits, "botan"), [] { key<kBits>().sign(); });
  operations(rsa_name("pss-verify", kBits, "botan"), [] { key<kBits>().verify(); });
  if (kBits > 3072) return;
  mean(rsa_name("keygen", kBits, "botan"), kRsaKeys,
       [] { const Botan::RSA_PrivateKey made(generator(), kBits); });
}

const Registration kRsa([] {
  add<2048>();
  add<3072>();
  add<4096>();
});

}  // namespace
}  // namespace zel::bench
