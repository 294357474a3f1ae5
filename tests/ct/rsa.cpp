// The RSA private operation.
#include <cstring>

#include "pk/oaep.hpp"
#include "pk/rsa_primitive.hpp"
#include "tests/ct/numbers.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

/// All words but the lowest of a modulus, which shows that it is odd, and the top one of anything:
/// bit lengths are public.
void secret_words(MINT &a, bool modulus) {
  const std::uint32_t first = modulus ? 1 : 0;
  if (a.length > first + 1) secret(a.words + first, 4 * (a.length - first - 1));
}

/// Any odd numbers will do for primes: nothing here asks what they divide.
void private_operation(std::uint32_t p_len, std::uint32_t q_len) {
  RSA_PRIVATE_KEY key{};
  key.p = number(p_len, 3);
  key.q = number(q_len, 4);
  MINT_Mult(&key.n, &key.p, &key.q);
  key.d = number(p_len + q_len, 5);
  key.dP = number(p_len, 6);
  key.dQ = number(q_len, 7);
  MINT_Inverse(&key.qInv, &key.q, &key.p);
  const MINT in = number(p_len + q_len, 8);
  MINT want, s;
  require(RSA_SP1(&want, &in, &key) == ZEL_OK, "status");
  secret_words(key.p, true);
  secret_words(key.q, true);
  secret(key.d.words);
  secret(key.dP.words);
  secret(key.dQ.words);
  secret(key.qInv.words);
  require(RSA_SP1(&s, &in, &key) == ZEL_OK, "status");
  std::uint8_t octets[ZEL_MINT_BYTES];
  pk::secret_to_octets(octets, sizeof octets, s);
  open(s);
  require(MINT_Compare(&s, &want) == 0, "RSA_SP1");
}

const Probe kPrivateOperation{"RSA_SP1", [] {
                                private_operation(16, 16);
                                private_operation(17, 16);
                                private_operation(8, 30);
                                private_operation(65, 65);
                              }};

constexpr const HASH_ALGORITHM *kNoHash = nullptr;

/// A message, encrypted behind either padding; what is drawn is public.
const Probe kEncryption{
    "RSA encryption", [] {
      const RSA_PUBLIC_KEY key{number(32, 3), {1, {65537}}};
      std::uint8_t message[20] = {1, 2, 3}, want[128], out[128];
      std::uint32_t len = 0;
      RSAES_OAEP_ENCRYPT21(want, &len, message, 20, &key, nullptr, &sha256, nullptr);
      secret(message);
      const bool done =
          RSAES_OAEP_ENCRYPT21(out, &len, message, 20, &key, nullptr, &sha256, nullptr) == ZEL_OK;
      open(out);
      require(done && std::memcmp(out, want, 128) == 0, "OAEP");
      for (const HASH_ALGORITHM *hash : {&sha256, kNoHash}) {
        require(RSA20_ES_E(out, &len, message, 20, &key, nullptr, hash, nullptr) == ZEL_OK,
                "RSA20");
      }
    }};

const Probe kDecoders{"the search for messages in decrypted blocks", [] {
                        std::uint8_t block[64] = {2, 7, 7, 7, 7, 7, 7, 7, 7, 7};
                        const std::uint8_t label_hash[20] = {2, 7, 7, 7, 7, 7, 7, 7, 7, 7};
                        block[30] = 1;
                        secret(block);
                        pk::Found found = pk::find_in_data_block(block, 64, label_hash, 20);
                        open(found);
                        require(found.mask == ~0U && found.at == 31, "OAEP");
                        found = pk::find_behind_padding(block, 64);
                        open(found);
                        require(found.mask == ~0U && found.at == 11, "version 1.5");
                      }};

}  // namespace
}  // namespace zel::test
