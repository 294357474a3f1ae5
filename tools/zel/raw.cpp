// zel raw: the bare modes of operation, key and IV as given, as `openssl enc -K -iv` has them.
#include <algorithm>

#include "tools/zel/ciphers.hpp"
#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/key_source.hpp"
#include "tools/zel/stdio_stream.hpp"
#include "zel_cc/bcipher_file.h"
#include "zel_cc/ciphers.h"
#include "zel_cc/errors.h"
#include "zel_cc/rc4.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;
constexpr std::size_t kWholeLimit = std::size_t{1} << 30;  ///< of a message that goes in one piece

struct RawOptions {
  std::optional<std::string> cipher;
  std::optional<std::string> file;
  KeySource key;
  std::optional<std::string> iv;
  std::optional<std::uint64_t> effective_bits;
  bool decrypt = false;
  bool no_padding = false;

  std::string input() const { return file.value_or("-"); }
};

/// One run: what the options mean.
struct Job {
  const RawOptions &options;
  std::string name;
  CipherMode algorithm;
  Input &input;
  Output &output;
  Progress &progress;
};

Bytes obtain_iv(const RawOptions &options, const CipherMode &algorithm) {
  const bool takes_iv = algorithm.mode && algorithm.mode->number != ZEL_MODE_ECB;
  if (!takes_iv) {
    if (!options.iv) return {};
    throw Failure(Exit::kUsage, "--iv", "has no meaning for " + *options.cipher, "leave it out");
  }
  const std::size_t len = algorithm.cipher->descriptor->block_len;
  const std::string wanted = "give " + std::to_string(2 * len) + " hexadecimal digits";
  if (!options.iv) throw Failure(Exit::kUsage, "--iv", "missing", wanted);
  auto iv = from_hex(*options.iv);
  if (!iv || iv->size() != len) throw Failure(Exit::kMalformed, "--iv", "not a block", wanted);
  return std::move(*iv);
}

/// RC2 packs the effective key bits beside the length. RFC 2268, section 2.
std::uint32_t schedule_len(const RawOptions &options, const Cipher &cipher, std::size_t key_len) {
  if (!options.effective_bits) return static_cast<std::uint32_t>(key_len);
  if (cipher.descriptor != &rc2 || *options.effective_bits - 1 >= 1024) {
    throw Failure(Exit::kUsage, "--effective-bits", "1 to 1024, and for rc2 alone",
                  "leave it out for 8 bits a key byte");
  }
  return static_cast<std::uint32_t>(*options.effective_bits << 16 | key_len);
}

[[noreturn]] void fail(const Job &job, int code) {
  const std::string file = job.options.input();
  if (code == ZEL_ERR_PADDING) {
    throw Failure(Exit::kMalformed, file, "the padding is wrong: another key, or damaged data",
                  "check cipher, key and IV; --no-padding shows what came out");
  }
  if (code == ZEL_ERR_GENERIC && job.algorithm.mode->pads) {
    throw Failure(Exit::kMalformed, file, "its length is not a multiple of the block length",
                  job.options.decrypt ? "it was cut, or is not of this cipher and mode"
                                      : "leave out --no-padding");
  }
  if (code == ZEL_ERR_GENERIC && job.algorithm.mode->number == ZEL_MODE_CBC_CTS) {
    throw Failure(Exit::kMalformed, file, "not longer than one block",
                  "ciphertext stealing needs more; choose another mode");
  }
  throw library_failure(job.name, code);
}

/// The whole input as one message through the library's functions on streams.
std::uint64_t run_blocks(const Job &job, const BCIPHER_KEY *key, BCIPHER_CONTEXT &context) {
  const Mode &mode = *job.algorithm.mode;
  const std::size_t piece_len = mode.whole_message ? kWholeLimit : kPiece;
  PieceReader reader(job.input, piece_len);
  OutputStream writer(job.output);
  std::uint64_t total = 0;
  for (PieceReader::Piece piece{}; !piece.last;) {
    piece = reader.next();
    if (mode.whole_message && !piece.last) {
      throw Failure(Exit::kMalformed, job.options.input(), "longer than 1 GiB",
                    std::string(mode.name) + " works on a message in memory; choose another mode");
    }
    const std::uint8_t final = piece.last && !job.options.no_padding;
    const auto chunk = static_cast<std::uint32_t>(
        mode.whole_message ? std::max<std::size_t>(piece.len, 1) : 1U << 16);
    const auto transform =
        job.options.decrypt ? BCIPHER_DecryptFile_BSize : BCIPHER_EncryptFile_BSize;
    std::uint32_t written = 0;
    const int code = transform(writer.stream(), &written, reader.stream(),
                               static_cast<std::int32_t>(piece.len), &context, key, final, chunk);
    writer.rethrow();
    if (code != ZEL_OK) fail(job, code);
    total += written;
    job.progress.add(piece.len);
  }
  return total;
}

std::uint64_t run_rc4(const Job &job, const Secret &key) {
  // In the verified service its functions do nothing, and say nothing.
  if (KZEL_CC_GetState() == ZEL_STATE_VERIFIED) throw library_failure(job.name, ZEL_ERR_APPROVED);
  Wiped<RC4_STATE> state;
  RC4_init(&*state, key.bytes().data(), static_cast<std::int32_t>(8 * key.bytes().size()));
  PieceReader reader(job.input, kPiece);
  std::uint64_t total = 0;
  for (PieceReader::Piece piece{}; !piece.last;) {
    piece = reader.next();
    const auto bytes = reader.bytes();
    RC4_crypt(bytes.data(), bytes.data(), static_cast<std::int32_t>(bytes.size()), &*state);
    job.output.write(bytes);
    total += bytes.size();
    job.progress.add(bytes.size());
  }
  return total;
}

std::uint64_t run_job(const Job &job, const Secret &key, const Bytes &iv) {
  const Cipher &cipher = *job.algorithm.cipher;
  if (!cipher.descriptor) return run_rc4(job, key);
  if ((cipher.descriptor == &aesni || cipher.descriptor == &aesni256) &&
      Check_CPU_support_AES() == 0) {
    throw Failure(Exit::kUsage, job.name, "not built in, or not in this processor",
                  "use aes-128 and aes-256, which use the instructions where there are some");
  }
  if (!cipher.approved && KZEL_CC_GetState() == ZEL_STATE_VERIFIED) {
    throw library_failure(job.name, ZEL_ERR_APPROVED);
  }
  const auto len = schedule_len(job.options, cipher, key.bytes().size());
  const CipherKey object = load_key(cipher, key.bytes(), len);
  Wiped<BCIPHER_CONTEXT> context;
  const int code =
      BCIPHER_Initialize(&*context, static_cast<std::uint8_t>(job.algorithm.mode->number),
                         iv.empty() ? nullptr : iv.data(), cipher.descriptor);
  if (code != ZEL_OK) throw library_failure(job.name, code);
  return run_blocks(job, object.get(), *context);
}

void run(Session &session, const RawOptions &options) {
  if (!options.cipher) {
    throw Failure(Exit::kUsage, "CIPHER", "missing", "name one such as aria-256-ctr");
  }
  const CipherMode algorithm = find_cipher_mode(*options.cipher);
  if (options.no_padding && !(algorithm.mode && algorithm.mode->pads)) {
    throw Failure(Exit::kUsage, "--no-padding", *options.cipher + " never pads", "leave it out");
  }
  const Bytes iv = obtain_iv(options, algorithm);
  const Secret key = obtain_key(session, options.key, options.input() == "-");
  check_key_len(*algorithm.cipher, key.bytes().size());

  Input input(options.input());
  Output &output = session.open_data("-", options.decrypt);
  const auto progress = session.progress(options.decrypt ? "decrypt" : "encrypt", input.size());
  const Job job{options, *options.cipher, algorithm, input, output, *progress};
  const std::uint64_t written = run_job(job, key, iv);
  session.note(progress->summary());
  progress->finish();
  session.result()["cipher"] = *options.cipher;
  session.result()["direction"] = options.decrypt ? "decrypt" : "encrypt";
  session.result()["bytes"] = written;
}

std::vector<std::string> cipher_names() {
  std::vector<std::string> names;
  for (const Cipher &cipher : all_ciphers()) {
    if (!cipher.descriptor) names.emplace_back(cipher.name);
    for (const Mode &mode : all_modes()) {
      if (cipher.descriptor)
        names.push_back(std::string(cipher.name) + "-" + std::string(mode.name));
    }
  }
  return names;
}

}  // namespace

Command raw_command() {
  const auto options = std::make_shared<RawOptions>();
  Command command{
      "raw",
      "Bare modes of operation with a given key and IV",
      "Enciphers FILE, or standard input, with CIPHER: the name of a cipher and of a mode, joined "
      "as in aria-256-ctr. The output is the ciphertext and nothing else, byte for byte what "
      "'openssl enc -K -iv' gives for the ciphers that both have.\n"
      "Nothing shows whether the data was changed on the way, and an IV that is used twice with a "
      "key gives plaintext away: this is for protocols and formats that already exist, and for "
      "comparing implementations.\n"
      "Ciphers: aria-128, aria-192, aria-256, seed; with --legacy also aes-128, aes-256, des, "
      "des-ede, des-ede3, bf, cast5, idea, rc2, rc5, rc4 (without a mode), tavo, tavoold.\n"
      "Modes: ecb, cbc (both padded to whole blocks), cfb, cfb8, cfb1, ofb, ctr; cts is CBC with "
      "ciphertext stealing, its last two blocks always swapped; ofb8 uses the first byte of each "
      "output block; cfb-block is cfb as the library has it for whole messages. The last three "
      "hold the message in memory, at most 1 GiB.",
      {{"encipher, and decipher again",
        "printf 000102030405060708090a0b0c0d0e0f > k.hex; zel raw aria-128-ctr --key-hex-file "
        "k.hex "
        "--iv 00000000000000000000000000000000 /etc/passwd -f -o c && zel raw -d aria-128-ctr "
        "--key-hex-file k.hex --iv 00000000000000000000000000000000 c"},
       {"the example of RFC 5794, appendix A.1",
        "printf 00112233445566778899aabbccddeeff | xxd -r -p | zel raw aria-128-ecb --no-padding "
        "-K "
        "000102030405060708090a0b0c0d0e0f | xxd -p"}}};
  command.positionals = {{"", "", "CIPHER", "Cipher and mode", &options->cipher, cipher_names()},
                         {"", "", "FILE", "Input; standard input when not given", &options->file}};
  command.options = key_source_options(options->key, "K");
  for (Option &option : std::vector<Option>{
           {"", "iv", "HEX", "IV or first counter block", &options->iv},
           {"d", "decrypt", "", "Decipher", &options->decrypt},
           {"", "no-padding", "", "ECB and CBC: whole blocks as they are", &options->no_padding},
           {"", "effective-bits", "N", "RC2: effective key bits", &options->effective_bits}}) {
    command.options.push_back(std::move(option));
  }
  command.run = [options](Session &session) { run(session, *options); };
  return command;
}

}  // namespace zel::tool
