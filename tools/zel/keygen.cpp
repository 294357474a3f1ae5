// zel keygen: new keys.
#include <algorithm>
#include <array>

#include "tools/zel/command.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_check.hpp"
#include "tools/zel/key_file.hpp"
#include "tools/zel/key_objects.hpp"
#include "zel_cc/rsa_key.h"

namespace zel::tool {
namespace {

constexpr std::uint32_t kRsaExponent = 65537;
constexpr std::uint32_t kRsaLeast = 1024;
/// What is smaller is disallowed since 2014: NIST SP 800-131A.
constexpr std::uint32_t kSafeModulus = 2048;

struct KeygenOptions {
  std::optional<std::string> type;
  std::optional<std::uint64_t> bits;
  std::optional<std::uint64_t> order_bits;
  std::optional<std::string> parameters;
  bool encrypt = false;
  bool der = false;
  bool raw = false;
  bool hex = false;
};

struct GroupSize {
  std::uint32_t bits;
  std::uint32_t order_bits;
};
/// FIPS 186-4, section 4.2; TTAK.KO-12.0001.
constexpr std::array<GroupSize, 4> kGroupSizes{
    {{1024, 160}, {2048, 224}, {2048, 256}, {3072, 256}}};

KeyType type_of(const KeygenOptions &options) {
  const std::string name = options.type.value_or("");
  if (name == "rsa") return KeyType::kRsa;
  if (name == "dsa") return KeyType::kDsa;
  if (name == "kcdsa") return KeyType::kKcdsa;
  if (name == "symmetric") return KeyType::kSymmetric;
  throw Failure(Exit::kUsage, name.empty() ? "TYPE" : name,
                name.empty() ? "not given" : "no such type of key",
                "choose rsa, dsa, kcdsa or symmetric");
}

void require_legacy(const Session &session, std::uint32_t bits) {
  if (bits >= kSafeModulus || session.flags().legacy) return;
  throw Failure(Exit::kState, std::to_string(bits) + " bits", "too short to be approved",
                "choose 2048 or more, or add --legacy");
}

void check(KeyType type, int status) {
  if (status != ZEL_OK) throw library_failure(name_of(type), status);
}

/// Modulus lengths other than whole bytes serve nobody.
KeyPointer generate_rsa(const Session &session, const KeygenOptions &options) {
  const std::uint64_t bits = options.bits.value_or(3072);
  if (bits < kRsaLeast || bits > kModulusMost || bits % 8 != 0) {
    throw Failure(Exit::kUsage, std::to_string(bits) + " bits", "no size of an RSA key here",
                  "choose a multiple of 8 from 2048 to 4096");
  }
  const auto wanted = static_cast<std::uint32_t>(bits);
  require_legacy(session, wanted);
  auto key = std::make_unique<Key>(KeyType::kRsa, KeyPart::kPrivate);
  const KeyObjects objects(rsa);
  do {
    check(KeyType::kRsa, RSA_GenKeyEx(static_cast<RSA_PRIVATE_KEY *>(objects.private_key()->buf),
                                      static_cast<RSA_PUBLIC_KEY *>(objects.public_key()->buf),
                                      wanted, kRsaExponent));
    objects.store(*key);
  } while (key->bits() != wanted);
  return key;
}

GroupSize group_size(const Session &session, const KeygenOptions &options) {
  const std::uint64_t bits = options.bits.value_or(2048);
  const auto fits = [&](const GroupSize &size) {
    return size.bits == bits && size.order_bits == options.order_bits.value_or(size.order_bits);
  };
  // The last of a size is the strongest.
  const auto found = std::find_if(kGroupSizes.rbegin(), kGroupSizes.rend(), fits);
  if (found == kGroupSizes.rend()) {
    throw Failure(Exit::kUsage, std::to_string(bits) + " bits", "no size of such a key",
                  "choose 2048/224, 2048/256 or 3072/256 with --bits and --order");
  }
  require_legacy(session, found->bits);
  return *found;
}

void take_parameters(const Session &session, const std::string &path, Key &key) {
  const KeyPointer given = load_key(session, path).key;
  if (given->type != key.type) {
    throw Failure(Exit::kUsage, path, describe(*given),
                  std::string("name a file with ") + name_of(key.type) + " parameters or a key");
  }
  std::copy_n(&(*given)[kP], kY, &key[kP]);
}

KeyPointer generate_in_group(const Session &session, const KeygenOptions &options, KeyType type) {
  auto key = std::make_unique<Key>(type, KeyPart::kPrivate);
  if (options.parameters) {
    if (options.bits || options.order_bits) {
      throw Failure(Exit::kUsage, "--bits", "the parameters have a size already",
                    "leave out --bits and --order");
    }
    take_parameters(session, *options.parameters, *key);
    require_legacy(session, key->bits());
  }
  const KeyObjects objects(*key, scheme_of(type));
  if (!options.parameters) {
    const GroupSize size = group_size(session, options);
    check(type, PKCRYPT_GenParam(objects.parameters(), size.bits, size.order_bits));
  }
  check(type, PKCRYPT_GenKey(objects.private_key(), objects.public_key(), objects.parameters(), 0));
  objects.store(*key);
  return key;
}

KeyPointer generate_symmetric(const KeygenOptions &options) {
  const std::uint64_t bits = options.bits.value_or(256);
  if (bits < 128 || bits > 8 * kSymmetricMost || bits % 8 != 0) {
    throw Failure(Exit::kUsage, std::to_string(bits) + " bits", "no size of a symmetric key here",
                  "choose a multiple of 8 from 128 to 512");
  }
  auto key = std::make_unique<Key>(KeyType::kSymmetric, KeyPart::kPrivate);
  const auto len = static_cast<std::size_t>(bits / 8);
  Generator().fill(key->octets.room().first(len));
  key->octets.grow(len);
  return key;
}

KeyPointer generate(const Session &session, const KeygenOptions &options, KeyType type) {
  if (type == KeyType::kSymmetric) return generate_symmetric(options);
  if (type == KeyType::kRsa) return generate_rsa(session, options);
  return generate_in_group(session, options, type);
}

/// The bytes of a symmetric key for programs that know no other form.
void save_bare(Session &session, const Key &key, bool hex) {
  Output &output = session.open_output(0600);
  if (output.is_standard_output() && (session.flags().json || (!hex && output.is_terminal()))) {
    throw Failure(Exit::kUsage, hex ? "--hex" : "--raw", "such a key is not for standard output",
                  "write it to a file with -o");
  }
  if (!hex) return output.write(key.octets.bytes());
  std::string digits = to_hex(key.octets.bytes()) + "\n";
  output.write(digits);
  wipe(digits.data(), digits.size());
}

void check_options(const KeygenOptions &options, KeyType type, bool encrypt) {
  const bool symmetric = type == KeyType::kSymmetric;
  const bool group = type == KeyType::kDsa || type == KeyType::kKcdsa;
  const auto refuse = [](const char *option, const char *problem, const char *advice) {
    throw Failure(Exit::kUsage, option, problem, advice);
  };
  const bool bare = options.raw || options.hex;
  if (bare && !symmetric) refuse("--raw", "only for symmetric keys", "leave it out");
  if (bare && (encrypt || options.der || (options.raw && options.hex))) {
    refuse("--raw", "cannot stand beside another form", "choose one of them");
  }
  if (options.parameters && !group) refuse("--parameters", "not for such keys", "leave it out");
  if (options.order_bits && !group) refuse("--order", "not for such keys", "leave it out");
}

void run(Session &session, const KeygenOptions &options) {
  const KeyType type = type_of(options);
  const PassphraseSource source = passphrase_source(session);
  const bool encrypt = options.encrypt || source.is_given();
  check_options(options, type, encrypt);
  require_entropy();
  if (session.output() != "-") session.open_output(0600);  // a name that is taken is known at once
  std::optional<Secret> passphrase;
  if (encrypt) passphrase.emplace(obtain_new_passphrase(source, "the new key"));

  const auto progress = session.progress("keygen", 1, Unit::kKeys);
  const KeyPointer key = generate(session, options, type);
  try {
    check_key(*key);
  } catch (const Malformed &malformed) {
    throw Failure(Exit::kInternal, describe(*key), malformed.what(), "report this");
  }
  progress->add(1);
  progress->finish();
  session.note("made: " + describe(*key));
  add_key_result(session, *key);
  if (options.raw || options.hex) return save_bare(session, *key, options.hex);
  save_key(session, *key,
           {KeyForm::kPrivateKeyInfo, options.der, passphrase ? &*passphrase : nullptr});
}

}  // namespace

Command keygen_command() {
  const auto options = std::make_shared<KeygenOptions>();
  Command command{
      "keygen",
      "New keys: RSA, DSA, KCDSA, symmetric",
      "Makes a key of TYPE and prints it, or writes it to a file that only its owner can read: RSA "
      "of "
      "3072 bits, DSA and KCDSA of 2048 bits over a subgroup of 256, symmetric of 256. DSA is not "
      "approved and wants --legacy.\n"
      "RSA and DSA keys are PKCS #8, as other programs read it; KCDSA and symmetric keys have the "
      "same "
      "shape under PEM labels of their own. With -p, or a passphrase from elsewhere, the key is "
      "encrypted: PBES2 with PBKDF2-HMAC-SHA-256, 600,000 rounds, and ARIA-256-CBC.\n"
      "No key is made unless the entropy of the system is reported in full. Every key is checked, "
      "and "
      "a signature made and verified with it, before it is written.",
      {{"an RSA key, and its public half", "zel keygen rsa -f -o me.pem && zel key pub me.pem"},
       {"one under a passphrase",
        "printf 'correct horse' >pass && zel keygen rsa --bits 2048 --passphrase-file pass -f -o "
        "locked.pem"},
       {"a key for 'zel encrypt -k'", "zel keygen symmetric -f -o file.key"},
       {"a DSA key with the parameters of another",
        "zel keygen dsa --legacy -f -o one.pem && zel keygen dsa --legacy --parameters one.pem -f "
        "-o "
        "two.pem"}}};
  command.positionals = {{"",
                          "",
                          "TYPE",
                          "rsa, dsa, kcdsa or symmetric",
                          &options->type,
                          {"rsa", "dsa", "kcdsa", "symmetric"}}};
  command.options = {
      {"b", "bits", "BITS", "Size of the modulus, or of a symmetric key", &options->bits},
      {"", "order", "BITS", "Size of the subgroup of DSA and KCDSA", &options->order_bits},
      {"", "parameters", "FILE", "Parameters of DSA and KCDSA from FILE", &options->parameters},
      {"p", "passphrase", "", "Encrypt the key; ask for the passphrase", &options->encrypt},
      {"", "der", "", "DER instead of PEM", &options->der},
      {"", "raw", "", "A symmetric key as its bytes alone", &options->raw},
      {"", "hex", "", "A symmetric key as hexadecimal digits", &options->hex}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
