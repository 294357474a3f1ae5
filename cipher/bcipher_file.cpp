// Enciphering what a file holds: one chunk loop under the forms with streams and with paths.
#include "zel_cc/bcipher_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "base/bytes.hpp"
#include "base/stream.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

using Operation = decltype(&BCIPHER_Encrypt);

constexpr std::int64_t kWholeFile = -1;
constexpr std::uint32_t kWholePath = UINT32_MAX;
constexpr std::uint32_t kSmallChunkLen = 49152;

/// What every form hands down.
struct Job {
  Operation operation;
  std::uint32_t *out_total;
  BCIPHER_CONTEXT *context;
  const BCIPHER_KEY *key;
  std::uint8_t final;
};

/// Memory of which no more is wiped than was written to: a chunk may be far longer than its file.
class Chunk {
 public:
  explicit Chunk(std::size_t room) noexcept
      : bytes_(static_cast<std::uint8_t *>(std::calloc(1, room))), used_(room) {}
  Chunk(const Chunk &) = delete;
  Chunk &operator=(const Chunk &) = delete;
  ~Chunk() {
    if (bytes_ != nullptr) wipe(bytes_, used_);
    std::free(bytes_);
  }

  std::uint8_t *data() noexcept { return bytes_; }
  /// What is behind these bytes was never written to.
  void ends_at(std::size_t used) noexcept { used_ = used; }

 private:
  std::uint8_t *bytes_;
  std::size_t used_;
};

/// The length of a stream, which is left at its beginning; negative when it has none.
std::int64_t rewound_len(std::FILE *in) noexcept {
  if (fseeko(in, 0, SEEK_END) != 0) return -1;
  const std::int64_t len = ftello(in);
  return fseeko(in, 0, SEEK_SET) == 0 ? len : -1;
}

std::int32_t run(const Job &job, std::FILE *out, std::FILE *in, std::int64_t len,
                 std::uint32_t chunk_len) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null(out, in, job.out_total, job.context)) return ZEL_ERR_GENERIC;
  const BCIPHER_ALGORITHM *const descriptor = job.context->descriptor;
  if (descriptor == nullptr || chunk_len == 0 || len < kWholeFile) return ZEL_ERR_GENERIC;
  if (len == kWholeFile) len = rewound_len(in);
  // No more than the file needs, whatever the caller calls a chunk.
  const auto most = std::min<std::int64_t>(std::max<std::int64_t>(len, 0), chunk_len);
  Chunk chunk(static_cast<std::size_t>(most) + descriptor->block_len);
  if (chunk.data() == nullptr) return ZEL_ERR_GENERIC;
  *job.out_total = 0;
  if (len < 0) return ZEL_ERR_GENERIC;
  std::size_t longest = 0;

  const std::int32_t result = stream::for_each_chunk(
      in, static_cast<std::uint64_t>(len), chunk.data(), chunk_len, ZEL_ERR_GENERIC,
      [&](std::size_t read, bool last) -> std::int32_t {
        longest = std::max(longest, read);
        chunk.ends_at(longest + descriptor->block_len);
        std::uint32_t made = 0;
        const std::int32_t code =
            job.operation(chunk.data(), &made, chunk.data(), static_cast<std::uint32_t>(read),
                          job.context, job.key, last ? job.final : 0);
        if (code != ZEL_OK) return code;
        const std::size_t written = std::fwrite(chunk.data(), 1, made, out);
        *job.out_total += static_cast<std::uint32_t>(written);
        return written == made ? ZEL_OK : ZEL_ERR_GENERIC;
      });
  // What waits in the stream's buffer may still find the disk full.
  return std::fflush(out) == 0 ? result : result == ZEL_OK ? ZEL_ERR_GENERIC : result;
}

/// Whether a path names the very file that is open, which opening for output would empty.
bool is_same_file(std::FILE *open_file, const char *path) noexcept {
  struct stat one, other;
  if (fstat(fileno(open_file), &one) != 0 || stat(path, &other) != 0) return false;
  return S_ISREG(one.st_mode) && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

std::int32_t run_open(const Job &job, std::FILE *out, std::FILE *in, std::int64_t offset,
                      std::uint32_t len) noexcept {
  const bool whole = len == kWholePath;
  // Deliberate: the output that a refused offset leaves behind, empty, is not removed: it may have
  // been there before, under rights and links of its own.
  if (offset != 0 && (whole || fseeko(in, offset, SEEK_SET) != 0)) return ZEL_ERR_GENERIC;
  return run(job, out, in, whole ? kWholeFile : std::int64_t{len}, stream::kChunkLen);
}

std::int32_t run_paths(const Job &job, const char *out_path, const char *in_path,
                       std::int64_t offset, std::uint32_t len) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (offset < 0) return ZEL_ERR_FILE_OFFSET;
  if (any_null(out_path, in_path)) return ZEL_ERR_GENERIC;
  std::FILE *const in = std::fopen(in_path, "rb");
  if (in == nullptr) return ZEL_ERR_FILE_OPEN;
  std::FILE *const out = is_same_file(in, out_path) ? nullptr : std::fopen(out_path, "wb");
  if (out == nullptr) {
    (void)std::fclose(in);
    return ZEL_ERR_FILE_OPEN;
  }
  const std::int32_t result = run_open(job, out, in, offset, len);
  (void)std::fclose(in);
  const bool closed = std::fclose(out) == 0;
  return result == ZEL_OK && !closed ? ZEL_ERR_GENERIC : result;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t BCIPHER_EncryptFile_BSize(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                  BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final,
                                  uint32_t chunk_len) {
  return run({BCIPHER_Encrypt, out_total, context, key, final}, out, in, len, chunk_len);
}

int32_t BCIPHER_DecryptFile_BSize(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                  BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final,
                                  uint32_t chunk_len) {
  return run({BCIPHER_Decrypt, out_total, context, key, final}, out, in, len, chunk_len);
}

int32_t BCIPHER_EncryptFile(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                            BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final) {
  return BCIPHER_EncryptFile_BSize(out, out_total, in, len, context, key, final, stream::kChunkLen);
}

int32_t BCIPHER_DecryptFile(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                            BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final) {
  return BCIPHER_DecryptFile_BSize(out, out_total, in, len, context, key, final, stream::kChunkLen);
}

int32_t BCIPHER_DecryptFile_S(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                              BCIPHER_CONTEXT *context, const BCIPHER_KEY *key, uint8_t final) {
  return BCIPHER_DecryptFile_BSize(out, out_total, in, len, context, key, final, kSmallChunkLen);
}

int32_t BCIPHER_EncryptFilePath_Offset(const char *out_path, uint32_t *out_total,
                                       const char *in_path, int64_t offset, uint32_t len,
                                       BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                       uint8_t final) {
  return run_paths({BCIPHER_Encrypt, out_total, context, key, final}, out_path, in_path, offset,
                   len);
}

int32_t BCIPHER_DecryptFilePath_Offset(const char *out_path, uint32_t *out_total,
                                       const char *in_path, int64_t offset, uint32_t len,
                                       BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                       uint8_t final) {
  return run_paths({BCIPHER_Decrypt, out_total, context, key, final}, out_path, in_path, offset,
                   len);
}

int32_t BCIPHER_EncryptFilePath(const char *out_path, uint32_t *out_total, const char *in_path,
                                uint32_t len, BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                uint8_t final) {
  return BCIPHER_EncryptFilePath_Offset(out_path, out_total, in_path, 0, len, context, key, final);
}

int32_t BCIPHER_DecryptFilePath(const char *out_path, uint32_t *out_total, const char *in_path,
                                uint32_t len, BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                uint8_t final) {
  return BCIPHER_DecryptFilePath_Offset(out_path, out_total, in_path, 0, len, context, key, final);
}
