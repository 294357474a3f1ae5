#include "tools/zel/pbes2.hpp"

#include <algorithm>
#include <array>

#include "tools/zel/ciphers.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/pbkdf2.hpp"
#include "zel_cc/bcipher.h"
#include "zel_cc/hash.h"

namespace zel::tool {

struct Pbes2Cipher {
  std::array<std::uint8_t, 9> object_id;
  std::size_t object_id_len;
  std::uint32_t key_len;
  const BCIPHER_ALGORITHM *algorithm;

  der::View id() const { return der::View(object_id).first(object_id_len); }
};

namespace {

using der::Reader;
using der::Tag;
using der::View;
using der::Writer;

constexpr std::array<std::uint8_t, 9> kPbes2Id{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 1, 5, 13};
constexpr std::array<std::uint8_t, 9> kPbkdf2Id{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 1, 5, 12};
constexpr std::array<std::uint8_t, 7> kHmacArc{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 2};
/// More rounds than anyone waits for: a file from outside may ask for 2^32.
constexpr std::uint32_t kMostRounds = 20'000'000;
constexpr std::size_t kSaltLen = 16;
constexpr std::size_t kMostSalt = 256;

struct Prf {
  std::uint8_t last;  ///< of its object identifier, after kHmacArc
  const HASH_ALGORITHM *hash;
};
const std::array<Prf, 5> &prfs() {
  static const std::array<Prf, 5> all{
      {{7, &popsha1}, {8, &sha224}, {9, &sha256}, {10, &sha384}, {11, &sha512}}};
  return all;
}
constexpr std::uint8_t kSha1Prf = 7;
constexpr std::uint8_t kSha256Prf = 9;

/// The first is the one that is written.
const std::array<Pbes2Cipher, 7> &ciphers() {
  static const std::array<Pbes2Cipher, 7> all{{
      {{0x2a, 0x83, 0x1a, 0x8c, 0x9a, 0x6e, 1, 1, 12}, 9, 32, &aria256},
      {{0x2a, 0x83, 0x1a, 0x8c, 0x9a, 0x6e, 1, 1, 7}, 9, 24, &aria192},
      {{0x2a, 0x83, 0x1a, 0x8c, 0x9a, 0x6e, 1, 1, 2}, 9, 16, &aria},
      {{0x2a, 0x83, 0x1a, 0x8c, 0x9a, 0x44, 1, 4}, 8, 16, &seed},
      {{0x60, 0x86, 0x48, 1, 0x65, 3, 4, 1, 42}, 9, 32, &rijndael256},
      {{0x60, 0x86, 0x48, 1, 0x65, 3, 4, 1, 2}, 9, 16, &rijndael},
      {{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 3, 7}, 8, 24, &tdes},
  }};
  return all;
}

void check(int status) {
  if (status != ZEL_OK) throw library_failure("encrypted key", status);
}

/// CBC over whole blocks under the key that the passphrase gives. NIST SP 800-38A, section 6.2.
class Cbc {
 public:
  Cbc(const Pbes2 &scheme, std::span<const std::uint8_t> passphrase)
      : key_(BCIPHER_NewKey(scheme.cipher->algorithm)) {
    if (key_ == nullptr) throw library_failure("encrypted key", ZEL_ERR_STATE);
    Secret derived(scheme.cipher->key_len);
    pbkdf2(passphrase, scheme.salt, scheme.rounds, *scheme.prf, derived.room());
    check(BCIPHER_MakeKey(key_.get(), derived.room().data(), scheme.cipher->key_len,
                          scheme.cipher->algorithm));
    check(BCIPHER_Initialize(&context_, ZEL_MODE_CBC, scheme.iv.data(), scheme.cipher->algorithm));
  }

  Secret encrypt(View plain) {
    Secret out(plain.size() + ZEL_MAX_BLOCK_LEN);
    std::uint32_t len = 0;
    check(BCIPHER_Encrypt(out.room().data(), &len, plain.data(),
                          static_cast<std::uint32_t>(plain.size()), &context_, key_.get(), 1));
    out.grow(len);
    return out;
  }
  /// Without its padding, which is checked in every byte.
  Secret decrypt(View sealed) {
    const std::size_t block_len = context_.descriptor->block_len;
    Secret out(sealed.size());
    std::uint32_t len = 0;
    check(BCIPHER_Decrypt(out.room().data(), &len, sealed.data(),
                          static_cast<std::uint32_t>(sealed.size()), &context_, key_.get(), 0));
    out.grow(len);
    const std::uint8_t padding = out.bytes().back();
    const auto end = out.bytes().last(std::min<std::size_t>(padding, out.bytes().size()));
    const auto good = [padding](std::uint8_t byte) { return byte == padding; };
    if (padding == 0 || padding > block_len || !std::all_of(end.begin(), end.end(), good)) {
      throw Failure(Exit::kVerification, "passphrase", "it does not open the key",
                    "try another; or the file is damaged");
    }
    out.shrink(padding);
    return out;
  }

 private:
  CipherKey key_;
  BCIPHER_CONTEXT context_{};
};

void read_prf(Reader &outer, Pbes2 &scheme) {
  std::uint8_t wanted = kSha1Prf;  // when nothing is said
  if (!outer.at_end()) {
    Reader reader = outer.sequence();
    const View id = reader.object_id();
    if (!reader.at_end()) reader.null();
    reader.end();
    const bool known =
        id.size() == kHmacArc.size() + 1 && std::ranges::equal(id.first(kHmacArc.size()), kHmacArc);
    if (!known) throw Malformed("encrypted with an unknown pseudorandom function");
    wanted = id.back();
  }
  const auto found = std::find_if(prfs().begin(), prfs().end(),
                                  [wanted](const Prf &prf) { return prf.last == wanted; });
  if (found == prfs().end()) throw Malformed("encrypted with an unknown pseudorandom function");
  scheme.prf = found->hash;
}

/// PBKDF2-params. Gives the key length, 0 when it is not said.
std::uint32_t read_derivation(Reader outer, Pbes2 &scheme) {
  if (!std::ranges::equal(outer.object_id(), kPbkdf2Id)) {
    throw Malformed("encrypted with another key derivation than PBKDF2");
  }
  Reader reader = outer.sequence();
  outer.end();
  scheme.salt = reader.next(Tag::kOctetString);
  scheme.rounds = reader.small();
  if (scheme.salt.size() > kMostSalt) throw Malformed("a salt that is too long");
  if (scheme.rounds == 0 || scheme.rounds > kMostRounds) {
    throw Malformed("a number of rounds that cannot be meant");
  }
  const std::uint32_t key_len = reader.sees(Tag::kInteger) ? reader.small() : 0;
  read_prf(reader, scheme);
  reader.end();
  return key_len;
}

void read_cipher(Reader outer, Pbes2 &scheme) {
  const View id = outer.object_id();
  const auto found =
      std::find_if(ciphers().begin(), ciphers().end(),
                   [id](const Pbes2Cipher &known) { return std::ranges::equal(known.id(), id); });
  if (found == ciphers().end()) throw Malformed("encrypted with a cipher that is not known here");
  scheme.cipher = &*found;
  scheme.iv = outer.next(Tag::kOctetString);
  outer.end();
  if (scheme.iv.size() != found->algorithm->block_len) throw Malformed("an IV of the wrong length");
}

void read_scheme(Reader outer, Pbes2 &scheme) {
  if (!std::ranges::equal(outer.object_id(), kPbes2Id)) {
    throw Malformed("encrypted with another scheme than PBES2");
  }
  Reader reader = outer.sequence();
  outer.end();
  const std::uint32_t key_len = read_derivation(reader.sequence(), scheme);
  read_cipher(reader.sequence(), scheme);
  reader.end();
  if (key_len != 0 && key_len != scheme.cipher->key_len) {
    throw Malformed("a key length that the cipher does not have");
  }
}

void write_scheme(Writer &writer, const Pbes2 &scheme) {
  std::array<std::uint8_t, kHmacArc.size() + 1> prf_id{};
  std::copy(kHmacArc.begin(), kHmacArc.end(), prf_id.begin());
  prf_id.back() = kSha256Prf;
  writer.sequence([&] {
    writer.primitive(Tag::kObjectId, kPbes2Id);
    writer.sequence([&] {
      writer.sequence([&] {
        writer.primitive(Tag::kObjectId, kPbkdf2Id);
        writer.sequence([&] {
          writer.primitive(Tag::kOctetString, scheme.salt);
          writer.small(scheme.rounds);
          writer.sequence([&] {
            writer.primitive(Tag::kObjectId, prf_id);
            writer.null();
          });
        });
      });
      writer.sequence([&] {
        writer.primitive(Tag::kObjectId, scheme.cipher->id());
        writer.primitive(Tag::kOctetString, scheme.iv);
      });
    });
  });
}

}  // namespace

Pbes2 pbes2_read(View content) {
  Pbes2 encrypted;
  Reader reader = der::only_sequence(content);
  read_scheme(reader.sequence(), encrypted);
  encrypted.sealed = reader.next(Tag::kOctetString);
  reader.end();
  if (encrypted.sealed.empty() || encrypted.sealed.size() % encrypted.iv.size() != 0) {
    throw Malformed("cut off");
  }
  return encrypted;
}

Secret pbes2_open(const Pbes2 &encrypted, std::span<const std::uint8_t> passphrase) {
  return Cbc(encrypted, passphrase).decrypt(encrypted.sealed);
}

void pbes2_seal(Writer &writer, View plain, std::span<const std::uint8_t> passphrase) {
  std::array<std::uint8_t, kSaltLen + ZEL_MAX_BLOCK_LEN> fresh{};
  Generator().fill(fresh);
  const Pbes2 scheme{View(fresh).first(kSaltLen),
                     kPbkdf2Rounds,
                     &sha256,
                     &ciphers().front(),
                     View(fresh).subspan(kSaltLen),
                     {}};
  const Secret sealed = Cbc(scheme, passphrase).encrypt(plain);
  writer.sequence([&] {
    write_scheme(writer, scheme);
    writer.primitive(Tag::kOctetString, sealed.bytes());
  });
}

}  // namespace zel::tool
