// Signing with DSA and KCDSA: the key and the nonce are secret.
#include "mint/secret.hpp"
#include "pk/dsa.hpp"
#include "pk/kcdsa.hpp"
#include "tests/ct/numbers.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

/// A nonce as signing draws it.
MINT drawn(const MINT &q, std::uint32_t first) {
  std::uint8_t bytes[32];
  for (std::uint8_t &byte : bytes)
    byte = static_cast<std::uint8_t>(first = first * 1664525 + 1013904223);
  bytes[0] = 1;
  secret(bytes);
  MINT k = {};
  MINT_SetByByteArray(&k, bytes, sizeof bytes);
  bool below = mint::below_secret(k, q);
  open(below);
  require(below, "a nonce below q");
  return k;
}

/// The order of the group need not be prime, nor divide anything, for its steps to be the steps.
struct Numbers {
  MINT p = number(64, 3), q = number(8, 4), g = number(64, 5), x = number(8, 6);
  pk::Group group{p, q, g};
};

const Probe kDsa{"DSA signing", [] {
                   Numbers n;
                   secret(n.x.words, sizeof n.x.words);
                   const MINT k = drawn(n.q, 7), h = number(8, 8);
                   MINT r, s, zero = {};
                   require(pk::dsa::commit(r, k, n.group), "memory");
                   open(r);
                   pk::dsa::respond(s, k, n.x, r, h, n.q);
                   open(s);
                   // s k = h + x r
                   MINT left, right;
                   require(mint::multiply_add_secret(left, s, k, zero, n.q) == ZEL_OK, "status");
                   require(mint::multiply_add_secret(right, n.x, r, h, n.q) == ZEL_OK, "status");
                   open(left);
                   open(right);
                   require(MINT_GetBitLength(&s) == 0 || MINT_Compare(&left, &right) == 0, "s");
                 }};

const Probe kKcdsa{
    "KCDSA signing", [] {
      Numbers n;
      secret(n.x.words, sizeof n.x.words);
      const MINT k = drawn(n.q, 7), e = number(8, 8);
      MINT e_below = e, w, s;
      MINT_ModClassic(&e_below, &n.q);
      require(n.group.power(w, k), "memory");
      std::uint8_t bytes[256];
      MINT_WriteLSNByteInByteArray(bytes, sizeof bytes, &w);
      bool is_zero = pk::kcdsa::respond(s, k, n.x, e_below, n.q);
      open(is_zero);
      require(!is_zero, "a nonce other than e");
      // s = x (k - e), so s + x e = x k
      MINT left, right, zero = {};
      require(mint::multiply_add_secret(left, n.x, e_below, s, n.q) == ZEL_OK, "status");
      require(mint::multiply_add_secret(right, n.x, k, zero, n.q) == ZEL_OK, "status");
      open(left);
      open(right);
      require(MINT_Compare(&left, &right) == 0, "s");
    }};

const Probe kKcdsaKey{"the public key of KCDSA", [] {
                        Numbers n;
                        secret(n.x.words, sizeof n.x.words);
                        MINT y;
                        std::int32_t status = pk::kcdsa::public_key(y, n.x, n.group);
                        open(status);
                        require(status == ZEL_OK || status == ZEL_ERR_NO_INVERSE, "memory");
                      }};

}  // namespace
}  // namespace zel::test
