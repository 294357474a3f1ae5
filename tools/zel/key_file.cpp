#include "tools/zel/key_file.hpp"

#include <array>

#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_check.hpp"
#include "tools/zel/pbes2.hpp"
#include "tools/zel/pem.hpp"
#include "zel_cc/hash.h"

namespace zel::tool {
namespace {

constexpr std::size_t kFileMost = std::size_t{64} << 10;
constexpr mode_t kPrivateMode = 0600;
constexpr mode_t kPublicMode = 0666;

std::string_view as_text(der::View bytes) {
  return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

Secret read_file(const std::string &path) {
  Input input(path);
  Secret content(kFileMost + 1);
  while (const std::size_t got = input.read(content.room())) {
    content.grow(got);
    if (content.room().empty()) throw Malformed("longer than 64 KiB, which no key is");
  }
  return content;
}

/// The DER of a file, and what its label says.
struct Content {
  KeyForm form;
  std::optional<KeyType> type;
  Secret der;
};

Content unwrap(Secret file) {
  const std::string_view text = as_text(file.bytes());
  if (pem::has_block(text)) {
    pem::Block block = pem::read(text);
    const KeyLabel &label = key_label(block.label);
    return {label.form, label.type, std::move(block.content)};
  }
  constexpr std::uint8_t kSequence = 0x30;
  if (file.bytes().empty() || file.bytes().front() != kSequence) {
    throw Malformed("not a key: neither PEM nor DER");
  }
  const KeyForm form = guess_form(file.bytes());
  return {form, std::nullopt, std::move(file)};
}

LoadedKey open_content(const Session &session, const std::string &path, Content content) {
  LoadedKey loaded{nullptr, content.form, std::nullopt};
  if (content.form != KeyForm::kEncryptedPrivateKeyInfo) {
    loaded.key = parse_key(content.form, content.type, content.der.bytes());
    return loaded;
  }
  const Pbes2 encrypted = pbes2_read(content.der.bytes());
  loaded.passphrase.emplace(obtain_passphrase(passphrase_source(session), path));
  const Secret plain = pbes2_open(encrypted, loaded.passphrase->bytes());
  try {
    loaded.key = parse_key(KeyForm::kPrivateKeyInfo, content.type, plain.bytes());
  } catch (const Malformed &) {
    // One wrong passphrase in 256 leaves a padding that fits.
    throw Failure(Exit::kVerification, path, "the passphrase does not open the key",
                  "try another; or the file is damaged");
  }
  return loaded;
}

Secret encoded(const Key &key, const KeyEncoding &encoding) {
  der::Writer plain(kKeyDerMost);
  write_key(plain, encoding.form, key);
  if (encoding.passphrase == nullptr) return plain.take();
  der::Writer sealed(kKeyDerMost);
  pbes2_seal(sealed, plain.bytes(), encoding.passphrase->bytes());
  return sealed.take();
}

}  // namespace

LoadedKey load_key(const Session &session, const std::string &path) {
  if (path == "-" && passphrase_source(session).is_standard_input()) {
    throw Failure(Exit::kUsage, path, "the key and its passphrase cannot both be standard input",
                  "name the key file, or give the passphrase in a file");
  }
  try {
    LoadedKey loaded = open_content(session, path, unwrap(read_file(path)));
    check_key(*loaded.key);
    return loaded;
  } catch (const Malformed &malformed) {
    throw Failure(Exit::kMalformed, path, malformed.what(), "name a file that holds a key");
  }
}

KeyPointer load_private_key(const Session &session, const std::string &path) {
  KeyPointer key = load_key(session, path).key;
  if (key->is_private() && key->type != KeyType::kSymmetric) return key;
  throw Failure(Exit::kUsage, path, describe(*key) + " where a private key is wanted",
                "name the file that 'zel keygen' wrote");
}

KeyPointer load_public_key(const Session &session, const std::string &path) {
  KeyPointer key = load_key(session, path).key;
  if (key->type != KeyType::kSymmetric && key->part != KeyPart::kParameters) return key;
  throw Failure(Exit::kUsage, path, describe(*key) + " where a public key is wanted",
                "name the file that 'zel key pub' wrote");
}

Secret symmetric_key_of(const Session &session, const std::string &path, Secret file) {
  try {
    LoadedKey loaded = open_content(session, path, unwrap(std::move(file)));
    if (loaded.key->type == KeyType::kSymmetric) return std::move(loaded.key->octets);
    throw Malformed("not a symmetric key");
  } catch (const Malformed &malformed) {
    throw Failure(Exit::kMalformed, path, malformed.what(), "make one with 'zel keygen symmetric'");
  }
}

void save_key(Session &session, const Key &key, const KeyEncoding &encoding) {
  const bool secret = encoding.form == KeyForm::kPrivateKeyInfo;
  const Secret bytes = encoded(key, encoding);
  Output &output = session.open_output(secret ? kPrivateMode : kPublicMode);
  const bool into_json = session.flags().json && output.is_standard_output();
  if (encoding.der) {
    if (into_json || (output.is_standard_output() && output.is_terminal())) {
      throw Failure(Exit::kUsage, "--der", "such bytes are not for a terminal or for JSON",
                    "write them to a file with -o");
    }
    output.write(bytes.bytes());
    return;
  }
  const KeyForm form =
      encoding.passphrase != nullptr ? KeyForm::kEncryptedPrivateKeyInfo : encoding.form;
  std::string text = pem::write(label_for(form, key.type), bytes.bytes());
  if (into_json) {
    session.result()["pem"] = text;
  } else {
    output.write(text);
  }
  wipe(text.data(), text.size());
}

std::string fingerprint(const Key &key) {
  der::Writer writer(kKeyDerMost);
  write_key(writer, KeyForm::kPublicKeyInfo, key);
  HASH_CONTEXT context;
  if (const int status = HASH_InitializeEx(&context, &sha256); status != ZEL_OK) {
    throw library_failure("fingerprint", status);
  }
  HASH_Update(&context, writer.bytes().data(), static_cast<std::uint32_t>(writer.bytes().size()));
  std::array<std::uint8_t, 32> digest{};
  std::uint32_t len = 0;
  HASH_Finalize(digest.data(), &len, &context);
  return to_hex(digest);
}

void add_key_result(Session &session, const Key &key) {
  Json &result = session.result();
  result["type"] = name_of(key.type);
  result["bits"] = key.bits();
  if (key.type == KeyType::kSymmetric) return;
  if (key.type != KeyType::kRsa) result["order_bits"] = MINT_GetBitLength(&key[kQ]);
  if (key.part == KeyPart::kParameters) return;
  result["private"] = key.is_private();
  result["fingerprint"] = fingerprint(key);
}

}  // namespace zel::tool
