// zel sign: signatures of files, each in a file of its own.
#include "tools/zel/json.hpp"
#include "tools/zel/key_file.hpp"
#include "tools/zel/signature_job.hpp"

namespace zel::tool {
namespace {

void check_digest_fits(const SignatureJob &job) {
  const Key &key = *job.key;
  if (key.type != KeyType::kDsa || 8 * job.hash.digest_len <= MINT_GetBitLength(&key[kQ])) return;
  throw Failure(Exit::kUsage, job.hash.name, "its digest is longer than the subgroup of the key",
                "choose a shorter hash, or a key with a larger subgroup");
}

/// 'zel verify' takes PSS with no smaller exponent; nor is a signature made that it would refuse.
void check_exponent(const SignatureJob &job, const std::string &path) {
  if (!job.is_small_exponent_pss()) return;
  throw Failure(Exit::kUsage, path, "its public exponent is below 65537, too small for PSS",
                "use --padding pkcs1, or another key");
}

void run(Session &session, const SignatureOptions &options) {
  const std::string path = key_path(session, options);
  const SignatureJob job(options, load_private_key(session, path));
  check_digest_fits(job);
  check_exponent(job, path);
  job.hash.start();  // a hash that the module refuses does so before an output exists
  if (job.file != "-") session.set_default_output(job.file + ".sig");
  Output &output = session.open_output();
  const bool into_json = session.flags().json && output.is_standard_output();
  if (output.is_standard_output() && output.is_terminal() && !into_json) {
    throw Failure(Exit::kUsage, "signature", "its bytes would garble the terminal",
                  "write them to a file with -o");
  }
  const Bytes signature = sign_digest(*job.key, job.method, job.digest(session));
  job.add_result(session);
  if (into_json) {
    session.result()["signature"] = to_hex(signature);
  } else {
    output.write(signature);
    session.result()["output"] = session.output();
  }
}

}  // namespace

Command sign_command() {
  const auto options = std::make_shared<SignatureOptions>();
  Command command{
      "sign",
      "Signatures of files with RSA, DSA or KCDSA keys",
      "Signs FILE with a private key. The signature goes to FILE.sig, or where -o says; of "
      "standard "
      "input to standard output.\n"
      "RSA: PSS with a salt as long as the digest, or PKCS #1 version 1.5; the octets of the "
      "modulus "
      "length. DSA: the DER form that other programs use; wants --legacy, and a hash that is not "
      "longer than the subgroup. KCDSA: DER, SEQUENCE { OCTET STRING r, INTEGER s }.\n"
      "A file may have any size. Hashes: those of 'zel hash'; for version 1.5 neither sha224, "
      "has160 "
      "nor ripemd160.",
      {{"sign, and let openssl verify",
        "echo text >f; zel keygen rsa -f -o me.pem; zel key pub me.pem -f -o me.pub; zel sign -k "
        "me.pem -f f; openssl dgst -sha256 -verify me.pub -sigopt rsa_padding_mode:pss -sigopt "
        "rsa_pss_saltlen:digest -signature f.sig f"},
       {"version 1.5 with SHA-512", "zel sign -k me.pem --padding pkcs1 -a sha512 -f f"},
       {"a stream", "cat f | zel sign -k me.pem -f -o f.sig"}}};
  add_signature_options(command, *options);
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
