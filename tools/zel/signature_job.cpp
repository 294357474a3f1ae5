#include "tools/zel/signature_job.hpp"

#include "tools/zel/digest_job.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/passphrase.hpp"
#include "tools/zel/pss.hpp"

namespace zel::tool {
namespace {

/// A DSA signature takes no digest that is longer than its subgroup.
std::string default_hash(const Key &key) {
  if (key.type != KeyType::kDsa) return "sha256";
  const std::uint32_t order_bits = MINT_GetBitLength(&key[kQ]);
  if (order_bits < 224) return "sha1";
  return order_bits < 256 ? "sha224" : "sha256";
}

RsaPadding padding_of(const SignatureOptions &options, const Key &key) {
  if (!options.padding) return RsaPadding::kPss;
  if (key.type != KeyType::kRsa) {
    throw Failure(Exit::kUsage, "--padding", std::string("not for ") + name_of(key.type) + " keys",
                  "leave it out");
  }
  if (*options.padding == "pss") return RsaPadding::kPss;
  if (*options.padding == "pkcs1") return RsaPadding::kPkcs1;
  throw Failure(Exit::kUsage, *options.padding, "no such padding", "choose pss or pkcs1");
}

}  // namespace

void add_signature_options(Command &command, SignatureOptions &options) {
  std::vector<std::string> names;
  for (const Scheme &scheme : hash_schemes())
    names.push_back(scheme.name);
  command.positionals = {{"", "", "FILE", "The data; - or none is standard input", &options.file}};
  command.options = {{"k", "key", "FILE", "The key", &options.key},
                     {"a", "algorithm", "NAME", "Hash; sha256, for small DSA keys a shorter one",
                      &options.algorithm, names},
                     {"",
                      "padding",
                      "NAME",
                      "Of RSA: pss, as when nothing is said, or pkcs1 (version 1.5)",
                      &options.padding,
                      {"pss", "pkcs1"}}};
}

std::string key_path(const Session &session, const SignatureOptions &options) {
  if (!options.key) throw Failure(Exit::kUsage, "key", "none given", "name its file with -k");
  if (*options.key == "-" && options.data() == "-") {
    throw Failure(Exit::kUsage, "-", "the key and the data cannot both be standard input",
                  "name the data FILE, or the key file");
  }
  if (passphrase_source(session).is_standard_input() && options.data() == "-") {
    throw Failure(Exit::kUsage, "-", "the passphrase and the data cannot both be standard input",
                  "name the data FILE, or give the passphrase in a file");
  }
  return *options.key;
}

SignatureJob::SignatureJob(const SignatureOptions &options, KeyPointer key_given)
    : key(std::move(key_given)),
      file(options.data()),
      hash(find_scheme(hash_schemes(), options.algorithm.value_or(default_hash(*key)))),
      method{padding_of(options, *key), hash.hash} {
  if (key->type == KeyType::kRsa && method.padding == RsaPadding::kPkcs1 &&
      !has_pkcs1_form(*method.hash)) {
    throw Failure(Exit::kUsage, hash.name, "signatures of version 1.5 have no form for it here",
                  "choose another hash, or --padding pss");
  }
}

bool SignatureJob::is_small_exponent_pss() const {
  return key->type == KeyType::kRsa && method.padding == RsaPadding::kPss &&
         !has_pss_exponent(*key);
}

Bytes SignatureJob::digest(Session &session) const {
  Scheme prefixed = hash;
  prefixed.start = [this] {
    auto stream = hash.start();
    stream->add(digest_prefix(*key, *method.hash));
    return stream;
  };
  const auto progress = session.progress(session.command(), total_size({file}));
  Bytes digest = digest_of(file, prefixed, *progress).digest;
  progress->finish();
  return digest;
}

void SignatureJob::add_result(Session &session) const {
  session.result()["type"] = name_of(key->type);
  session.result()["algorithm"] = hash.name;
  if (key->type == KeyType::kRsa) {
    session.result()["padding"] = method.padding == RsaPadding::kPss ? "pss" : "pkcs1";
  }
  set_file_name(session.result(), file);
}

}  // namespace zel::tool
