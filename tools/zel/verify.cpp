// zel verify: whether a signature is that of a file.
#include <algorithm>

#include "tools/zel/der.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_file.hpp"
#include "tools/zel/signature_job.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kSignatureMost = 4096;

struct VerifyOptions {
  SignatureOptions signature;
  std::optional<std::string> signature_file;
};

std::string signature_path(const VerifyOptions &options) {
  const std::string data = options.signature.data();
  const bool key_is_input = options.signature.key == "-";
  if (!options.signature_file) {
    if (data != "-") return data + ".sig";
    throw Failure(Exit::kUsage, "signature", "none given", "name its file with -s");
  }
  if (*options.signature_file == "-" && (data == "-" || key_is_input)) {
    throw Failure(Exit::kUsage, "-", "only one of key, signature and data can be standard input",
                  "name the files of the others");
  }
  return *options.signature_file;
}

Bytes read_signature(const std::string &path) {
  Input input(path);
  const std::string content = read_whole(input, path, kSignatureMost);
  return {content.begin(), content.end()};
}

/// FIPS 186-4, section 4.6: the leftmost bits of a digest that is longer than the subgroup. They
/// stand at the end, since the library takes the whole as a number.
void shorten(Bytes &digest, std::uint32_t order_bits) {
  const auto digest_bits = static_cast<std::uint32_t>(8 * digest.size());
  if (digest_bits <= order_bits) return;
  MINT number{};
  MINT_SetByByteArray(&number, digest.data(), static_cast<std::int32_t>(digest.size()));
  MINT_RightShift(&number, digest_bits - order_bits);
  write_number(number, digest);
}

const char *problem_of(const SignatureJob &job) {
  if (job.is_small_exponent_pss()) {
    return "a public exponent below 65537 is not safe for PSS";
  }
  return "the signature does not verify: changed, or another key, hash or padding";
}

void run(Session &session, const VerifyOptions &options) {
  const std::string path = key_path(session, options.signature);
  const std::string signature_file = signature_path(options);
  const SignatureJob job(options.signature, load_public_key(session, path));
  const Bytes signature = read_signature(signature_file);
  if (session.output() != "-") session.open_output();
  Bytes digest = job.digest(session);
  if (job.key->type == KeyType::kDsa) shorten(digest, MINT_GetBitLength(&(*job.key)[kQ]));
  job.add_result(session);
  bool good = false;
  try {
    good = verify_digest(*job.key, job.method, digest, signature);
  } catch (const Malformed &malformed) {
    throw Failure(Exit::kMalformed, signature_file, malformed.what(),
                  "name the signature, and the key that made it");
  }
  session.result()["verified"] = good;
  if (!good) {
    throw Failure(Exit::kVerification, job.file, problem_of(job), "do not use it");
  }
  if (!session.flags().quiet) session.print(shown(job.file) + ": OK\n");
}

}  // namespace

Command verify_command() {
  const auto options = std::make_shared<VerifyOptions>();
  Command command{
      "verify",
      "Verification of signatures",
      "Verifies that a signature (FILE.sig, or what -s names) is one of FILE under a public key, "
      "or "
      "under the public half of a private one, and says so. Exit code 1 when it is not, 6 when it "
      "does not even have the form of a signature.\n"
      "Of an RSA signature every bit of the padding counts and the length is that of the modulus; "
      "PSS "
      "wants a salt as long as the digest and a public exponent of at least 65537. Of DSA "
      "signatures "
      "with a longer hash the leftmost bits count, as FIPS 186-4 has it.",
      {{"sign and verify",
        "echo text >f; zel keygen rsa -f -o me.pem; zel sign -k me.pem -f f; zel verify -k me.pem "
        "f"},
       {"what openssl signed",
        "openssl dgst -sha384 -sign me.pem -out f.sig f; zel verify -k me.pem --padding pkcs1 -a "
        "sha384 f"},
       {"for a program", "zel verify -k me.pem --padding pkcs1 -a sha384 --json f"}}};
  add_signature_options(command, options->signature);
  command.options.insert(command.options.begin() + 1,
                         {"s", "signature", "FILE", "The signature; FILE.sig when not given",
                          &options->signature_file});
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
