// zel key: what is in a key file, and the same in another form.
#include "tools/zel/command.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_file.hpp"

namespace zel::tool {
namespace {

struct KeyOptions {
  std::optional<std::string> action;
  std::optional<std::string> file;
  bool der = false;
  bool encrypt = false;
  bool plain = false;
  std::optional<std::uint64_t> new_passphrase_fd;
  std::optional<std::string> new_passphrase_file;
};

struct NamedNumber {
  const char *name;
  std::size_t number;
};
constexpr std::array<NamedNumber, 2> kRsaPublicNumbers{{{"n", kN}, {"e", kE}}};
constexpr std::array<NamedNumber, 4> kGroupNumberNames{
    {{"p", kP}, {"q", kQ}, {"g", kG}, {"y", kY}}};

/// What everybody may see of a key.
std::span<const NamedNumber> public_numbers(const Key &key) {
  if (key.type == KeyType::kSymmetric) return {};
  if (key.type == KeyType::kRsa) return kRsaPublicNumbers;
  return std::span(kGroupNumberNames).first(key.part == KeyPart::kParameters ? kY : kX);
}

void show(Session &session, const Key &key) {
  add_key_result(session, key);
  std::string text = describe(key) + "\n";
  for (const auto &[name, number] : public_numbers(key)) {
    const std::string digits = to_hex(NumberBytes(key[number]).bytes());
    session.result()[name] = digits;
    text += std::string(name) + " " + digits + "\n";
  }
  if (key.type != KeyType::kSymmetric && key.part != KeyPart::kParameters) {
    text += "fingerprint " + fingerprint(key) + "\n";
  }
  session.print(text);
}

void write_public(Session &session, const Key &key, const KeyOptions &options) {
  if (key.type == KeyType::kSymmetric || key.part == KeyPart::kParameters) {
    throw Failure(Exit::kUsage, *options.file, describe(key) + ", which has no public half",
                  "name a private or a public key");
  }
  save_key(session, key, {KeyForm::kPublicKeyInfo, options.der, nullptr});
}

void write_parameters(Session &session, const Key &key, const KeyOptions &options) {
  if (key.type != KeyType::kDsa && key.type != KeyType::kKcdsa) {
    throw Failure(Exit::kUsage, *options.file, describe(key) + ", which has no parameters",
                  "name a DSA or KCDSA key");
  }
  save_key(session, key, {KeyForm::kParameters, options.der, nullptr});
}

/// A private key stays encrypted, under the same passphrase, unless the options say otherwise.
void convert(Session &session, LoadedKey &loaded, const KeyOptions &options) {
  const Key &key = *loaded.key;
  const PassphraseSource fresh{options.new_passphrase_fd, options.new_passphrase_file};
  const bool change = options.encrypt || fresh.is_given();
  if (change && options.plain) {
    throw Failure(Exit::kUsage, "--plain", "cannot stand beside a new passphrase",
                  "choose one of them");
  }
  if (!key.is_private()) {
    if (change) throw Failure(Exit::kUsage, *options.file, "not private", "leave out -p");
    if (key.part == KeyPart::kParameters) return write_parameters(session, key, options);
    return write_public(session, key, options);
  }
  std::optional<Secret> passphrase;
  if (change) {
    passphrase.emplace(obtain_new_passphrase(fresh, "the new file"));
  } else if (!options.plain && loaded.passphrase) {
    passphrase.emplace(std::move(*loaded.passphrase));
  }
  save_key(session, key,
           {KeyForm::kPrivateKeyInfo, options.der, passphrase ? &*passphrase : nullptr});
}

void run(Session &session, const KeyOptions &options) {
  const std::string action = options.action.value_or("");
  if (action != "show" && action != "check" && action != "pub" && action != "params" &&
      action != "convert") {
    throw Failure(Exit::kUsage, action.empty() ? "ACTION" : action,
                  action.empty() ? "not given" : "no such action",
                  "choose show, check, pub, params or convert");
  }
  if (!options.file) {
    throw Failure(Exit::kUsage, "FILE", "not given", "name the key file; - is standard input");
  }
  LoadedKey loaded = load_key(session, *options.file);
  const Key &key = *loaded.key;
  if (action == "show") return show(session, key);
  add_key_result(session, key);
  if (action == "pub") return write_public(session, key, options);
  if (action == "params") return write_parameters(session, key, options);
  if (action == "convert") return convert(session, loaded, options);
  session.result()["good"] = true;
  if (!session.flags().quiet) {
    session.print(shown(*options.file) + ": " + describe(key) + ": OK\n");
  }
}

}  // namespace

Command key_command() {
  const auto options = std::make_shared<KeyOptions>();
  Command command{
      "key",
      "Keys in files: show, check, public half, other forms",
      "Reads a key FILE, whatever form it has (PKCS #8, encrypted or not, SubjectPublicKeyInfo, "
      "PKCS "
      "#1, DSA parameters; PEM or DER), and checks it. Then ACTION:\n"
      "show prints its type, its public numbers and its fingerprint (SHA-256 of the DER form of "
      "the "
      "public key);\n"
      "check says that it is good: primes, orders, relations, and a signature that verifies;\n"
      "pub writes the public half, params the parameters of DSA and KCDSA;\n"
      "convert writes the key itself. An encrypted one stays so unless --plain is given; -p, "
      "--new-passphrase-fd and --new-passphrase-file encrypt it anew.\n"
      "Keys that openssl encrypted with AES or SHA-1 want --legacy.",
      {{"make a key and look at it",
        "zel keygen rsa --bits 2048 -f -o me.pem && zel key show me.pem"},
       {"the public half for others",
        "zel key pub me.pem -f -o me.pub && openssl rsa -pubin -in me.pub "
        "-noout"},
       {"under a passphrase from now on",
        "printf 'correct horse' >pass && zel key convert me.pem --new-passphrase-file pass -f -o "
        "locked.pem"},
       {"and without again, as DER",
        "zel key convert locked.pem --passphrase-file pass --plain --der -f -o me.der"}}};
  command.positionals = {{"",
                          "",
                          "ACTION",
                          "show, check, pub, params or convert",
                          &options->action,
                          {"show", "check", "pub", "params", "convert"}},
                         {"", "", "FILE", "The key; - is standard input", &options->file}};
  command.options = {
      {"", "der", "", "Write DER instead of PEM", &options->der},
      {"p", "passphrase", "", "convert: encrypt; ask for the new passphrase", &options->encrypt},
      {"", "new-passphrase-fd", "N", "convert: encrypt under a line from descriptor N",
       &options->new_passphrase_fd},
      {"", "new-passphrase-file", "FILE", "convert: encrypt under the first line of FILE",
       &options->new_passphrase_file},
      {"", "plain", "", "convert: write the key without encryption", &options->plain}};
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
