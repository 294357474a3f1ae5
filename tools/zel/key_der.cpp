#include "tools/zel/key_der.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace zel::tool {
namespace {

using der::Reader;
using der::Tag;
using der::View;
using der::Writer;

constexpr std::array<std::uint8_t, 9> kRsaId{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 1, 1, 1};
constexpr std::array<std::uint8_t, 7> kDsaId{0x2a, 0x86, 0x48, 0xce, 0x38, 4, 1};
/// 1.2.410.200004.1.21
constexpr std::array<std::uint8_t, 8> kKcdsaId{0x2a, 0x83, 0x1a, 0x8c, 0x9a, 0x44, 1, 0x15};
/// Octets without further meaning: RFC 5652, section 4.
constexpr std::array<std::uint8_t, 9> kDataId{0x2a, 0x86, 0x48, 0x86, 0xf7, 0x0d, 1, 7, 1};

struct Identifier {
  KeyType type;
  View object_id;
};
constexpr std::array<Identifier, 4> kIdentifiers{{{KeyType::kRsa, kRsaId},
                                                  {KeyType::kDsa, kDsaId},
                                                  {KeyType::kKcdsa, kKcdsaId},
                                                  {KeyType::kSymmetric, kDataId}}};

constexpr std::array<KeyLabel, 13> kLabels{{
    {"PRIVATE KEY", KeyForm::kPrivateKeyInfo, std::nullopt},
    {"ENCRYPTED PRIVATE KEY", KeyForm::kEncryptedPrivateKeyInfo, std::nullopt},
    {"PUBLIC KEY", KeyForm::kPublicKeyInfo, std::nullopt},
    {"RSA PRIVATE KEY", KeyForm::kPkcs1Private, KeyType::kRsa},
    {"RSA PUBLIC KEY", KeyForm::kPkcs1Public, KeyType::kRsa},
    {"DSA PRIVATE KEY", KeyForm::kDsaPrivate, KeyType::kDsa},
    {"DSA PARAMETERS", KeyForm::kParameters, KeyType::kDsa},
    {"KCDSA PRIVATE KEY", KeyForm::kPrivateKeyInfo, KeyType::kKcdsa},
    {"ENCRYPTED KCDSA PRIVATE KEY", KeyForm::kEncryptedPrivateKeyInfo, KeyType::kKcdsa},
    {"KCDSA PUBLIC KEY", KeyForm::kPublicKeyInfo, KeyType::kKcdsa},
    {"KCDSA PARAMETERS", KeyForm::kParameters, KeyType::kKcdsa},
    {"SYMMETRIC KEY", KeyForm::kPrivateKeyInfo, KeyType::kSymmetric},
    {"ENCRYPTED SYMMETRIC KEY", KeyForm::kEncryptedPrivateKeyInfo, KeyType::kSymmetric},
}};

bool has_label_of_its_own(KeyType type) {
  return type == KeyType::kKcdsa || type == KeyType::kSymmetric;
}

View object_id_of(KeyType type) {
  return std::find_if(kIdentifiers.begin(), kIdentifiers.end(),
                      [type](const Identifier &known) { return known.type == type; })
      ->object_id;
}

void read_number(Reader &reader, MINT &number) {
  const View digits = reader.integer();
  if (digits.size() > kModulusMost / 8) throw Malformed("a number of more than 4096 bits");
  MINT_SetByByteArray(&number, digits.data(), static_cast<std::int32_t>(digits.size()));
}

void read_numbers(Reader &reader, Key &key, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    read_number(reader, key[i]);
}

void write_numbers(Writer &writer, const Key &key, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    writer.integer(NumberBytes(key[i]).bytes());
}

/// AlgorithmIdentifier; the parameters of a group go into the key.
KeyPointer read_algorithm(Reader &outer, std::optional<KeyType> wanted, KeyPart part) {
  Reader reader = outer.sequence();
  const View object_id = reader.object_id();
  const auto known = std::find_if(kIdentifiers.begin(), kIdentifiers.end(),
                                  [object_id](const Identifier &identifier) {
                                    return std::ranges::equal(identifier.object_id, object_id);
                                  });
  if (known == kIdentifiers.end()) throw Malformed("a key of an algorithm that is not known here");
  const KeyType type = known->type;
  if (wanted && *wanted != type) {
    throw Malformed("a key of another algorithm than its label says");
  }
  auto key = std::make_unique<Key>(type, part);
  if (type == KeyType::kDsa || type == KeyType::kKcdsa) {
    Reader parameters = reader.sequence();
    read_numbers(parameters, *key, kY);
    parameters.end();
  } else {
    reader.null();
  }
  reader.end();
  return key;
}

void write_algorithm(Writer &writer, const Key &key) {
  writer.sequence([&] {
    writer.primitive(Tag::kObjectId, object_id_of(key.type));
    if (key.type == KeyType::kDsa || key.type == KeyType::kKcdsa) {
      writer.sequence([&] { write_numbers(writer, key, kY); });
    } else {
      writer.null();
    }
  });
}

/// RSAPrivateKey of two primes.
void read_rsa_private(Reader reader, Key &key) {
  if (reader.small() != 0) throw Malformed("an RSA key of more than two primes");
  read_numbers(reader, key, kRsaNumbers);
  reader.end();
}

void read_dsa_private(Reader reader, Key &key) {
  if (reader.small() != 0) throw Malformed("a DSA key of an unknown version");
  read_numbers(reader, key, kGroupNumbers);
  reader.end();
}

void read_rsa_public(Reader reader, Key &key) {
  read_numbers(reader, key, kE + 1);
  reader.end();
}

/// What the OCTET STRING of a PrivateKeyInfo holds.
void read_private_part(View content, Key &key) {
  if (key.type == KeyType::kSymmetric) {
    if (content.empty() || content.size() > kSymmetricMost) {
      throw Malformed("a symmetric key of a length that no cipher has");
    }
    std::copy(content.begin(), content.end(), key.octets.room().begin());
    key.octets.grow(content.size());
  } else if (key.type == KeyType::kRsa) {
    read_rsa_private(der::only_sequence(content), key);
  } else {
    Reader reader(content);
    read_number(reader, key[kX]);
    reader.end();
  }
}

void write_private_part(Writer &writer, const Key &key) {
  if (key.type == KeyType::kSymmetric) {
    writer.primitive(Tag::kOctetString, key.octets.bytes());
    return;
  }
  writer.element(Tag::kOctetString, [&] {
    if (key.type != KeyType::kRsa) {
      writer.integer(NumberBytes(key[kX]).bytes());
      return;
    }
    writer.sequence([&] {
      writer.small(0);
      write_numbers(writer, key, kRsaNumbers);
    });
  });
}

KeyPointer read_private_key_info(Reader reader, std::optional<KeyType> wanted) {
  const std::uint32_t version = reader.small();
  if (version > 1) throw Malformed("a private key of an unknown version");
  KeyPointer key = read_algorithm(reader, wanted, KeyPart::kPrivate);
  read_private_part(reader.next(Tag::kOctetString), *key);
  // Attributes, and in version 1 the public key: the private key says all that is needed.
  if (reader.sees(Tag::kContext0)) reader.next(Tag::kContext0);
  if (version == 1) reader.next(Tag::kContext1);
  reader.end();
  return key;
}

KeyPointer read_public_key_info(Reader reader, std::optional<KeyType> wanted) {
  KeyPointer key = read_algorithm(reader, wanted, KeyPart::kPublic);
  const View content = reader.bit_string();
  reader.end();
  if (key->type == KeyType::kSymmetric) throw Malformed("a symmetric key as a public key");
  if (key->type == KeyType::kRsa) {
    read_rsa_public(der::only_sequence(content), *key);
  } else {
    Reader number(content);
    read_number(number, (*key)[kY]);
    number.end();
  }
  return key;
}

void write_public_key_info(Writer &writer, const Key &key) {
  writer.sequence([&] {
    write_algorithm(writer, key);
    writer.bit_string([&] {
      if (key.type == KeyType::kRsa) {
        writer.sequence([&] { write_numbers(writer, key, kE + 1); });
      } else {
        writer.integer(NumberBytes(key[kY]).bytes());
      }
    });
  });
}

}  // namespace

const KeyLabel &key_label(std::string_view label) {
  const auto found = std::find_if(kLabels.begin(), kLabels.end(),
                                  [label](const KeyLabel &known) { return known.label == label; });
  if (found == kLabels.end()) throw Malformed("not a PEM block of a key that is known here");
  return *found;
}

std::string_view label_for(KeyForm form, KeyType type) {
  const bool own = has_label_of_its_own(type) || form == KeyForm::kParameters;
  return std::find_if(kLabels.begin(), kLabels.end(),
                      [=](const KeyLabel &known) {
                        return known.form == form && (own ? known.type == type : !known.type);
                      })
      ->label;
}

KeyForm guess_form(View content) {
  Reader reader = der::only_sequence(content);
  if (reader.sees(Tag::kSequence)) {
    reader.sequence();
    return reader.sees(Tag::kOctetString) ? KeyForm::kEncryptedPrivateKeyInfo
                                          : KeyForm::kPublicKeyInfo;
  }
  reader.integer();
  if (reader.sees(Tag::kSequence)) return KeyForm::kPrivateKeyInfo;
  std::size_t count = 1;
  for (; reader.sees(Tag::kInteger); ++count)
    reader.integer();
  if (count == kE + 1) return KeyForm::kPkcs1Public;
  if (count == 1 + kGroupNumbers) return KeyForm::kDsaPrivate;
  return count == kY ? KeyForm::kParameters : KeyForm::kPkcs1Private;
}

KeyPointer parse_key(KeyForm form, std::optional<KeyType> type, View content) {
  const Reader reader = der::only_sequence(content);
  switch (form) {
    case KeyForm::kPrivateKeyInfo:
      return read_private_key_info(reader, type);
    case KeyForm::kPublicKeyInfo:
      return read_public_key_info(reader, type);
    case KeyForm::kPkcs1Private: {
      auto key = std::make_unique<Key>(KeyType::kRsa, KeyPart::kPrivate);
      read_rsa_private(reader, *key);
      return key;
    }
    case KeyForm::kPkcs1Public: {
      auto key = std::make_unique<Key>(KeyType::kRsa, KeyPart::kPublic);
      read_rsa_public(reader, *key);
      return key;
    }
    case KeyForm::kDsaPrivate: {
      auto key = std::make_unique<Key>(KeyType::kDsa, KeyPart::kPrivate);
      read_dsa_private(reader, *key);
      return key;
    }
    case KeyForm::kParameters: {
      auto key = std::make_unique<Key>(type.value_or(KeyType::kDsa), KeyPart::kParameters);
      Reader parameters = reader;
      read_numbers(parameters, *key, kY);
      parameters.end();
      return key;
    }
    case KeyForm::kEncryptedPrivateKeyInfo:
      break;
  }
  throw Malformed("encrypted");
}

void write_key(Writer &writer, KeyForm form, const Key &key) {
  if (form == KeyForm::kPublicKeyInfo) return write_public_key_info(writer, key);
  writer.sequence([&] {
    if (form == KeyForm::kParameters) return write_numbers(writer, key, kY);
    writer.small(0);
    write_algorithm(writer, key);
    write_private_part(writer, key);
  });
}

}  // namespace zel::tool
