#include "tools/zel/signature.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "tools/zel/der.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/key_objects.hpp"
#include "tools/zel/pss.hpp"
#include "zel_cc/kcdsa.h"
#include "zel_cc/rsa.h"

namespace zel::tool {
namespace {

constexpr std::size_t kDerMost = 2 * (ZEL_MINT_BYTES + 8);

/// A signature record of any of the schemes.
struct Record {
  PKCRYPT_SIGNATURE head;
  union {
    MINT numbers[2];  ///< RSA has one, DSA r and s
    KCDSA_SIGNATURE_BODY kcdsa;
  };
};

const PKCRYPT_ALGORITHM &scheme_for(const Key &key, const SignatureMethod &method) {
  if (key.type == KeyType::kRsa && method.padding == RsaPadding::kPss) return rsa21;
  return scheme_of(key.type);
}

bool is_refusal(int status) { return status == ZEL_ERR_STATE || status == ZEL_ERR_APPROVED; }

Bytes encode(const Key &key, const Record &record, const SignatureMethod &method) {
  if (key.type == KeyType::kRsa) {
    Bytes octets((key.bits() + 7) / 8);
    write_number(record.numbers[0], octets);
    return octets;
  }
  der::Writer writer(kDerMost);
  writer.sequence([&] {
    if (key.type == KeyType::kDsa) {
      writer.integer(NumberBytes(record.numbers[0]).bytes());
      writer.integer(NumberBytes(record.numbers[1]).bytes());
    } else {
      writer.primitive(der::Tag::kOctetString, {record.kcdsa.r, method.hash->digest_len});
      writer.integer(NumberBytes(record.kcdsa.s).bytes());
    }
  });
  return {writer.bytes().begin(), writer.bytes().end()};
}

void read_number(MINT &number, der::View digits) {
  if (digits.size() > ZEL_MINT_BYTES) throw Malformed("a number that is too large");
  MINT_SetByByteArray(&number, digits.data(), static_cast<std::int32_t>(digits.size()));
}

void decode(const Key &key, const SignatureMethod &method, der::View signature, Record &record) {
  if (key.type == KeyType::kRsa) {
    if (signature.size() != (key.bits() + 7) / 8) {
      throw Malformed("not of the length that signatures of this key have");
    }
    read_number(record.numbers[0], signature);
    return;
  }
  der::Reader reader = der::only_sequence(signature);
  if (key.type == KeyType::kDsa) {
    read_number(record.numbers[0], reader.integer());
    read_number(record.numbers[1], reader.integer());
  } else {
    const der::View r = reader.next(der::Tag::kOctetString);
    if (r.size() != method.hash->digest_len) {
      throw Malformed("not of the length that signatures with this hash have");
    }
    std::copy(r.begin(), r.end(), record.kcdsa.r);
    read_number(record.kcdsa.s, reader.integer());
  }
  reader.end();
}

}  // namespace

bool has_pkcs1_form(const HASH_ALGORITHM &hash) {
  const std::array known{&sha256, &sha384, &sha512, &popsha1, &popmd5, &md2};
  return std::find(known.begin(), known.end(), &hash) != known.end();
}

Bytes digest_prefix(const Key &key, const HASH_ALGORITHM &hash) {
  if (key.type != KeyType::kKcdsa) return {};
  constexpr std::size_t kBlock = 64;
  Bytes prefix(&hash == &sha384 || &hash == &sha512 ? 2 * kBlock : kBlock);
  write_number(key[kY], prefix);
  return prefix;
}

Bytes sign_digest(const Key &key, const SignatureMethod &method,
                  std::span<const std::uint8_t> digest) {
  const KeyObjects objects(key, scheme_for(key, method));
  Record record{};
  const int status = PKCRYPT_SignHash(
      &record.head, digest.data(), static_cast<std::uint32_t>(digest.size()), objects.private_key(),
      objects.parameters(), method.hash, objects.public_key());
  if (is_refusal(status)) throw library_failure(name_of(key.type), status);
  if (status != ZEL_OK) {
    throw Failure(Exit::kUsage, describe(key), zel_error_text(status),
                  "a shorter hash with -a, or a longer key");
  }
  return encode(key, record, method);
}

bool verify_digest(const Key &key, const SignatureMethod &method,
                   std::span<const std::uint8_t> digest, std::span<const std::uint8_t> signature) {
  Record record{};
  decode(key, method, signature, record);
  const PKCRYPT_ALGORITHM &scheme = scheme_for(key, method);
  const KeyObjects objects(key, scheme);
  const int status =
      PKCRYPT_VerifyHash(&record.head, digest.data(), static_cast<std::uint32_t>(digest.size()),
                         objects.public_key(), objects.parameters(), method.hash, nullptr);
  if (is_refusal(status)) throw library_failure(name_of(key.type), status);
  if (status != ZEL_OK) return false;
  return &scheme != &rsa21 || is_well_formed_pss(key, *method.hash, record.numbers[0]);
}

}  // namespace zel::tool
