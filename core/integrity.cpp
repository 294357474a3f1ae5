// The library file against its companion: HMAC-SHA-1 under a key of the module, as 40 hexadecimal
// digits in a file beside it. FIPS 198-1.
#include "zel_cc/integrity.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/identity.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/algorithms.hpp"
#include "zel_cc/hmac.h"

extern "C" {
extern __attribute__((visibility("hidden"))) const std::uint8_t zel_own_hmac_key[16];
}

constinit const uint8_t g_hmac_key[16] = {0x06, 0x7f, 0x81, 0x36, 0x44, 0x3f, 0x45, 0x09,
                                          0xd5, 0x2d, 0x09, 0x87, 0x43, 0xac, 0x03, 0x74};
extern "C" ZEL_HIDDEN_ALIAS("g_hmac_key") const std::uint8_t zel_own_hmac_key[16];

namespace zel {
namespace {

constexpr std::size_t kChunk = 65536;
constexpr std::uint32_t kMacLen = 20;
/// Of a candidate, and of a list of directories, with the byte that ends them.
constexpr std::size_t kPathSize = 256;
constexpr std::size_t kListSize = 1024;
/// More than the system opens.
constexpr std::size_t kCompanionSize = 4096 + 8;

constexpr const char *kNames[] = {"libzel_cc-3.2.so", "libzel_cc-3.2.a", "libzel_cc-3.2.sl",
                                  "libzel_cc-3.2.dylib", "libzel_cc-3.2_static.a"};
constexpr const char *kLists[] = {"LD_LIBRARY_PATH", "SHLIB_PATH", "LIB_PATH", "LIBPATH",
                                  "DYLD_LIBRARY_PATH"};

using Mac = std::array<std::uint8_t, kMacLen>;
using Digits = std::array<char, 2 * kMacLen>;

/// Text in a buffer of fixed size; what does not fit is refused, never cut.
template <std::size_t kSize>
class Text {
 public:
  bool append(std::string_view piece) noexcept {
    if (piece.size() >= kSize - len_) return false;
    std::memcpy(text_ + len_, piece.data(), piece.size());
    len_ += piece.size();
    return true;
  }
  const char *get() const noexcept { return text_; }

 private:
  char text_[kSize] = {};
  std::size_t len_ = 0;
};

/// A file for reading, closed with its scope.
class File {
 public:
  explicit File(const char *path) noexcept : file_(std::fopen(path, "rb")) {}
  ~File() {
    if (file_ != nullptr) std::fclose(file_);
  }
  File(const File &) = delete;
  File &operator=(const File &) = delete;
  std::FILE *get() const noexcept { return file_; }

 private:
  std::FILE *file_;
};

/// The code of a whole file.
bool authenticate(Mac &mac, std::FILE *file) noexcept {
  Scratch<std::uint8_t> chunk(kChunk);
  HMAC_CONTEXT context;
  if (!chunk || HMAC_Initialize(&context, zel_own_hmac_key, sizeof zel_own_hmac_key,
                                &zel_own_popsha1) != ZEL_OK) {
    return false;
  }
  std::size_t got = 0;
  while (std::feof(file) == 0) {
    got = std::fread(chunk.data(), 1, kChunk, file);
    if (std::ferror(file) != 0) return false;
    __HMAC_Update(&context, chunk.data(), static_cast<std::uint32_t>(got));
  }
  // Deliberate: a length that is a multiple of the chunk is refused, not only an empty file. Users
  // of the companion file agree on that; the build makes such a library longer.
  if (got == 0) return false;
  std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN> code;
  std::uint32_t len = 0;
  HMAC_Finalize(code.data(), &len, &context);
  if (len != kMacLen) return false;
  std::memcpy(mac.data(), code.data(), kMacLen);
  return true;
}

Digits digits_of(const Mac &mac) noexcept {
  constexpr char kDigits[] = "0123456789abcdef";
  Digits digits;
  for (std::size_t i = 0; i < kMacLen; ++i) {
    digits[2 * i] = kDigits[mac[i] >> 4];
    digits[2 * i + 1] = kDigits[mac[i] & 15];
  }
  return digits;
}

/// Whether the file is the one that its companion speaks of.
bool verifies(const char *path) noexcept {
  Mac mac;
  {
    const File library(path);
    if (library.get() == nullptr || !authenticate(mac, library.get())) return false;
  }
  Text<kCompanionSize> companion;
  if (!companion.append(path) || !companion.append(".hmac")) return false;
  const File file(companion.get());
  if (file.get() == nullptr) return false;
  Digits found{};
  return std::fread(found.data(), 1, found.size(), file.get()) == found.size() &&
         found == digits_of(mac);
}

/// Whether a library file in the directory verifies, under any of its names.
bool verifies_in(std::string_view directory) noexcept {
  for (const char *name : kNames) {
    Text<kPathSize> path;
    if (path.append(directory) && path.append("/") && path.append(name) &&
        SELFTEST_VerifyModuleHMAC(path.get()) == ZEL_OK) {
      return true;
    }
  }
  return false;
}

/// The same for the directories of a list, whose empty elements count for nothing.
bool verifies_in_list(std::string_view list) noexcept {
  if (list.size() >= kListSize) return false;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(':'), list.size());
    if (end != 0 && verifies_in(list.substr(0, end))) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t SELFTEST_VerifyModuleHMAC(const char *path) {
  return gate::serving() && path != nullptr && verifies(path) ? ZEL_OK : ZEL_ERR_GENERIC;
}

int32_t SELFTEST_DoModuleIntegrityTest(void) {
  const char *const directory = std::getenv("ZEL_CC_HMAC_PATH");
  if (directory != nullptr && verifies_in(directory)) return ZEL_OK;
  for (const char *name : kLists) {
    const char *const list = std::getenv(name);
    if (list != nullptr && verifies_in_list(list)) return ZEL_OK;
  }
  return ZEL_ERR_INTEGRITY;
}
