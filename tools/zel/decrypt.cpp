// zel decrypt: what `zel encrypt` made, checked chunk by chunk.
#include <filesystem>

#include "tools/zel/container.hpp"
#include "tools/zel/container_secret.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/stdio_stream.hpp"
#include "zel_cc/errors.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

constexpr std::string_view kSuffix = ".zel";

struct DecryptOptions {
  std::optional<std::string> file;
  SecretOptions secret;
};

/// FILE.zel becomes FILE.
std::string output_name(const Session &session, const std::string &file) {
  if (file == "-" || session.flags().output) return "-";
  const std::string name = std::filesystem::path(file).filename();
  if (name != kSuffix && name.ends_with(kSuffix)) {
    return file.substr(0, file.size() - kSuffix.size());
  }
  throw Failure(
      Exit::kUsage, file,
      name == kSuffix ? "its name has nothing before .zel" : "its name does not end in .zel",
      "name the output with -o");
}

[[noreturn]] void reject(const std::string &file, const ChunkCipher &cipher, const Output &output) {
  const std::uint64_t good = cipher.message_len();
  if (good == 0) {
    throw Failure(Exit::kVerification, file,
                  "wrong passphrase or key, or the container was changed", "nothing was written");
  }
  throw Failure(Exit::kVerification, file,
                "changed or cut behind the first " + std::to_string(good) + " bytes of the message",
                output.is_in_place() ? "do not use what was written to " + output.name()
                                     : "nothing was written");
}

void write_chunks(Input &input, const std::string &file, ChunkCipher &cipher, Output &output,
                  Progress &progress) {
  PieceReader reader(input, ChunkCipher::kChunkLen + ChunkCipher::kTagLen);
  Secret plain(ChunkCipher::kChunkLen + ChunkCipher::kTagLen);
  for (PieceReader::Piece piece{}; !piece.last;) {
    piece = reader.next();
    const bool is_empty = piece.len == ChunkCipher::kTagLen;
    if (piece.len < ChunkCipher::kTagLen || (is_empty && cipher.message_len() != 0)) {
      reject(file, cipher, output);
    }
    const auto opened = cipher.open(reader.bytes(), piece.last, plain.room());
    if (!opened) reject(file, cipher, output);
    output.write(*opened);
    if (output.is_in_place()) output.flush();
    progress.add(piece.len);
  }
}

void run(Session &session, const DecryptOptions &options) {
  const std::string file = options.file.value_or("-");
  check_standard_input(session, options.secret, file);
  Input input(file);
  const ContainerHeader header = read_header(input, file);
  const std::string name = std::string(header.cipher->name) + "-gcm";
  if (!header.cipher->approved && KZEL_CC_GetState() == ZEL_STATE_VERIFIED) {
    throw library_failure(name, ZEL_ERR_APPROVED);
  }
  Output &output = session.open_data(output_name(session, file), true);
  const Secret secret = find_secret(session, options.secret, header, file);
  ChunkCipher cipher(header, secret.bytes());
  const auto progress = session.progress("decrypt", input.size());
  progress->add(header.encode().size());
  write_chunks(input, file, cipher, output, *progress);
  session.note(progress->summary());
  progress->finish();
  session.result()["cipher"] = name;
  session.result()["bytes"] = cipher.message_len();
  set_file_name(session.result(), file);
}

}  // namespace

Command decrypt_command() {
  const auto options = std::make_shared<DecryptOptions>();
  Command command{
      "decrypt",
      "Decrypts what 'zel encrypt' made",
      "Writes FILE without its ending .zel, or what -o names, when every chunk was found "
      "unchanged; "
      "otherwise nothing, and the exit code is 1. On standard output each chunk appears as soon as "
      "it was checked: look at the exit code before using any of it.\n"
      "The container says what it needs: a passphrase is asked for, a key file is named with -k, "
      "an RSA private key with -r.",
      {{"round trip with a key file",
        "zel rand --raw 32 -f -o my.key; zel encrypt -k my.key -f -o passwd.zel /etc/passwd && zel "
        "decrypt -k my.key passwd.zel -o -"},
       {"under a passphrase, without a terminal",
        "printf 'correct horse' > pass; zel encrypt --passphrase-file pass -f -o passwd.zel "
        "/etc/passwd && zel decrypt --passphrase-file pass -f -o copy passwd.zel"}}};
  command.positionals = {
      {"", "", "FILE", "Container; standard input when not given", &options->file}};
  command.options = secret_options(options->secret, "The RSA private key in FILE");
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
