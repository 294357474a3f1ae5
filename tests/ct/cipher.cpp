// Block ciphers: which of them neither branch on nor index by keys and blocks.
#include <algorithm>
#include <array>
#include <cstdint>

#include "base/cpu.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "cipher/bulk.hpp"
#include "cipher/seed.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

using Buffer = std::array<std::uint8_t, 5000>;

Buffer numbers() {
  Buffer bytes;
  std::uint32_t word = 1;
  for (std::uint8_t &byte : bytes)
    byte = static_cast<std::uint8_t>((word = word * 1664525 + 1013904223) >> 24);
  return bytes;
}

/// Key schedule, `count` blocks forth and back, with key and blocks secret.
void forth_and_back(const BCIPHER_ALGORITHM &cipher, std::uint32_t key_len, std::size_t count) {
  const Buffer plain = numbers();
  Buffer key = plain, round_keys, blocks = plain;
  secret(key);
  secret(blocks);
  cipher.MakeRoundKey(round_keys.data(), key.data(), key_len);
  const bulk::Cipher keyed(cipher.block_len, cipher.EncryptBlock, cipher.DecryptBlock,
                           round_keys.data());
  keyed.encrypt(blocks.data(), blocks.data(), count);
  keyed.encrypt_block(blocks.data());
  open(blocks);
  require(!std::equal(plain.begin(), plain.begin() + cipher.block_len, blocks.begin()), "cipher");
  secret(blocks);
  keyed.decrypt_block(blocks.data());
  keyed.decrypt(blocks.data(), blocks.data(), count);
  std::array<std::uint8_t, ZEL_MAX_BLOCK_LEN> forth{}, back{}, chain{};
  keyed.ctr(blocks.data(), blocks.data(), count, forth.data());
  keyed.ctr(blocks.data(), blocks.data(), count, back.data());
  open(blocks);
  require(blocks == plain, "blocks forth and back");
  keyed.serial(bulk::Chain::kCbcEncrypt, blocks.data(), blocks.data(), count, chain.data());
  secret(blocks);
  chain = {};
  keyed.cbc_decrypt(blocks.data(), blocks.data(), count, chain.data());
  open(blocks);
  require(blocks == plain, "chain forth and back");
  secret(blocks);
  std::array<std::uint8_t, ZEL_MAX_BLOCK_LEN> mac{};
  forth = back = chain = {};
  keyed.counter_mac(bulk::MacOf::kInput, blocks.data(), blocks.data(), 3, forth.data(), mac.data());
  keyed.counter_mac(bulk::MacOf::kOutput, blocks.data(), blocks.data(), 3, back.data(),
                    chain.data());
  open(blocks);
  require(blocks == plain, "counters beside a MAC");
}

void approved_ciphers() {
  forth_and_back(aria, 16, 70);
  forth_and_back(aria192, 24, 33);
  forth_and_back(aria256, 32, 5);
  if (!kSeedByTables) forth_and_back(seed, 16, 70);
}

const Probe kApproved{"ARIA and SEED with AES instructions", [] {
                        if (cpu::has(cpu::Feature::kAesni)) approved_ciphers();
                      }};
const Probe kTables{"ARIA and SEED by tables",
                    [] {
                      const std::uint32_t features = cpu::g_features.exchange(cpu::kAsked);
                      approved_ciphers();
                      cpu::g_features.store(features);
                    },
                    true};
const Probe kRc5{"RC5", [] { forth_and_back(rc5, 16, 70); }};

/// Blocks under a secret schedule, where only many at a time are in constant time: IDEA branches in
/// its key schedule and single blocks, DES looks up tables in single ones.
template <const BCIPHER_ALGORITHM &kCipher, std::size_t kCount>
void many_blocks() {
  if (!cpu::has(cpu::Feature::kAvx2)) return;
  const Buffer plain = numbers();
  Buffer blocks = plain, round_keys;
  kCipher.MakeRoundKey(round_keys.data(), plain.data(), 24);
  secret(round_keys);
  secret(blocks);
  const bulk::Cipher keyed(kCipher.block_len, kCipher.EncryptBlock, kCipher.DecryptBlock,
                           round_keys.data());
  keyed.encrypt(blocks.data(), blocks.data(), kCount);
  keyed.decrypt(blocks.data(), blocks.data(), kCount);
  open(blocks);
  require(blocks == plain, "many blocks forth and back");
}

const Probe kIdea{"IDEA, many blocks with AVX2", many_blocks<idea, 70>};
// A whole unit, and a rest that fills another.
const Probe kDes{"DES in slices with AVX2", many_blocks<des, 256 + 72>};
const Probe kTdes{"triple DES in slices with AVX2", many_blocks<tdes, 256 + 255>};
const Probe kBlowfish{"Blowfish", [] { forth_and_back(blowfish, 16, 9); }, true};

/// Key, message and tag are secret. The nonce has 12 bytes: where a hashed one makes the counter
/// wrap may show. The result of a comparison is not, so GCM is deciphered without one; CCM shows
/// on the way back, where nothing is secret any more, that it did something.
void authenticated(std::uint8_t mode) {
  constexpr std::uint32_t kNonceLen = 12;
  const Buffer plain = numbers();
  Buffer key_bytes = plain, text = plain;
  const std::uint32_t len = 3000;
  std::uint32_t out_len = 0;
  std::uint8_t tag[16] = {};
  secret(key_bytes);
  secret(text);
  BCIPHER_KEY *const key = BCIPHER_NewKey(&rijndael);
  BCIPHER_MakeKey(key, key_bytes.data(), 16, &rijndael);
  BCIPHER_CONTEXT context;
  BCIPHER_Initialize(&context, mode, nullptr, &rijndael);
  std::int32_t code = BCIPHER_EncryptAuth(text.data(), &out_len, text.data(), len, plain.data(),
                                          100, plain.data(), kNonceLen, &context, key, 16);
  require(code == ZEL_OK && out_len == len + sizeof tag, "authenticated encryption");
  if (mode == ZEL_MODE_GCM) {
    GMAC_Decrypt(text.data(), len, tag, plain.data(), 100, key->round_keys, plain.data(), kNonceLen,
                 16, RIJNDAEL_EncryptBlock);
    bool same = ct::equal(tag, text.data() + len, sizeof tag);
    open(same);
    open(text);
    require(same && std::equal(plain.begin(), plain.begin() + len, text.begin()), "GCM");
  }
  if (mode == ZEL_MODE_CCM) {
    open(text);
    open(key->round_keys, rijndael.round_keys_len);
    require(!std::equal(plain.begin(), plain.begin() + len, text.begin()), "CCM");
    code = BCIPHER_DecryptAuth(text.data(), &out_len, text.data(), len + sizeof tag, plain.data(),
                               100, plain.data(), kNonceLen, &context, key, 16);
    require(code == ZEL_OK && std::equal(plain.begin(), plain.begin() + len, text.begin()), "CCM");
  }
  secret(text);
  GMAC_Mult(text.data(), text.data(), text.data() + 16, 16);
  GMAC_Mult(text.data(), text.data(), text.data() + 16, 8);
  BCIPHER_DelKey(key);
}

/// The parts that hash as they go: CMAC, and counter mode with a CBC-MAC in one pass over what it
/// reads and then over what it makes.
template <const BCIPHER_ALGORITHM &kCipher>
void codes() {
  const auto run = [](bool is_secret, std::uint8_t *out) {
    Buffer key = numbers(), text = key, round_keys;
    if (is_secret) secret(key);
    if (is_secret) secret(text);
    Wiped<CMAC_CONTEXT> cmac;
    CMAC_Initialize(&*cmac, key.data(), 16, &kCipher);
    CMAC_Update(&*cmac, text.data(), 1000);
    CMAC_Finalize(out, 16, &*cmac);
    kCipher.MakeRoundKey(round_keys.data(), key.data(), 16);
    const bulk::Cipher keyed(16, kCipher.EncryptBlock, kCipher.DecryptBlock, round_keys.data());
    std::uint8_t counter[16] = {1};
    keyed.counter_mac(bulk::MacOf::kInput, text.data(), text.data(), 70, counter, out + 16);
    counter[15] = 0;
    keyed.counter_mac(bulk::MacOf::kOutput, text.data(), text.data(), 70, counter, out + 32);
    open(out, 48);
  };
  std::array<std::uint8_t, 48> watched{}, plain{};
  run(true, watched.data());
  run(false, plain.data());
  require(watched == plain && plain != decltype(plain){}, "codes");
}

const Probe kAesCodes{"CMAC and the pass of CCM over AES", codes<rijndael>};
const Probe kAriaCodes{"CMAC and the pass of CCM over ARIA", [] {
                         if (cpu::has(cpu::Feature::kAesni)) codes<aria>();
                       }};
const Probe kGcm{"GCM and GHASH", [] { authenticated(ZEL_MODE_GCM); }};
const Probe kCcm{"CCM", [] { authenticated(ZEL_MODE_CCM); }};

}  // namespace
}  // namespace zel::test
