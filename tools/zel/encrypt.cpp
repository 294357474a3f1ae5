// zel encrypt: files into authenticated containers.
#include "tools/zel/container.hpp"
#include "tools/zel/container_secret.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/stdio_stream.hpp"
#include "zel_cc/errors.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

struct EncryptOptions {
  std::optional<std::string> cipher;
  std::optional<std::string> file;
  SecretOptions secret;
};

const Cipher &chosen_cipher(const EncryptOptions &options) {
  const std::string name = options.cipher.value_or(container_ciphers().front());
  const Cipher &cipher = find_container_cipher(name);
  if (!cipher.approved && KZEL_CC_GetState() == ZEL_STATE_VERIFIED) {
    throw library_failure(name, ZEL_ERR_APPROVED);
  }
  return cipher;
}

void write_chunks(Input &input, ChunkCipher &cipher, Output &output, Progress &progress) {
  PieceReader reader(input, ChunkCipher::kChunkLen);
  Bytes sealed(ChunkCipher::kChunkLen + ChunkCipher::kTagLen);
  for (PieceReader::Piece piece{}; !piece.last;) {
    piece = reader.next();
    output.write(cipher.seal(reader.bytes(), piece.last, sealed));
    progress.add(piece.len);
  }
}

void run(Session &session, const EncryptOptions &options) {
  const std::string file = options.file.value_or("-");
  check_standard_input(session, options.secret, file);
  ContainerHeader header;
  header.cipher = &chosen_cipher(options);
  Input input(file);
  Output &output = session.open_data(file == "-" ? "-" : file + ".zel", false);
  Generator generator;
  generator.fill(header.salt);
  generator.fill(header.prefix);
  const Secret secret = make_secret(session, options.secret, header, file);
  ChunkCipher cipher(header, secret.bytes());
  output.write(header.encode());
  const auto progress = session.progress("encrypt", input.size());
  write_chunks(input, cipher, output, *progress);
  session.note(progress->summary());
  progress->finish();
  session.result()["cipher"] = std::string(header.cipher->name) + "-gcm";
  session.result()["bytes"] = cipher.message_len();
  set_file_name(session.result(), file);
}

}  // namespace

Command encrypt_command() {
  const auto options = std::make_shared<EncryptOptions>();
  Command command{
      "encrypt",
      "Encrypts a file so that every change is found out",
      "Writes FILE.zel, or what -o names: a container of chunks under ARIA-256-GCM, each of which "
      "is checked before 'zel decrypt' gives it out. Memory does not grow with the file. Standard "
      "input goes to standard output.\n"
      "The secret is a passphrase (-p; PBKDF2-HMAC-SHA-256 with 600,000 rounds), a file of at "
      "least "
      "16 random bytes (-k), or made anew and enciphered to the RSA key of a recipient (-r; OAEP "
      "with SHA-256). A passphrase is asked for twice on the terminal, or read from "
      "--passphrase-fd or --passphrase-file.\n"
      "The name and the size of the file are not hidden.",
      {{"with a key file",
        "zel rand --raw 32 -f -o my.key; zel encrypt -k my.key -f -o passwd.zel "
        "/etc/passwd"},
       {"under a passphrase, without a terminal",
        "printf 'correct horse' | zel encrypt --passphrase-fd 0 -f -o passwd.zel /etc/passwd"},
       {"a folder, on the way to another machine",
        "zel rand --raw 32 -f -o my.key; tar -c /etc/hosts 2>/dev/null | zel encrypt -k my.key > "
        "etc.tar.zel"}}};
  command.positionals = {{"", "", "FILE", "Input; standard input when not given", &options->file}};
  command.options = secret_options(options->secret, "To the RSA public key in FILE");
  command.options.push_back({"c", "cipher", "CIPHER", "aria-256-gcm when not given",
                             &options->cipher, container_ciphers()});
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
