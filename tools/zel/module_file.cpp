#include "tools/zel/module_file.hpp"

#include <dlfcn.h>

#include <cstring>
#include <vector>

#include "tools/zel/hex.hpp"
#include "tools/zel/json.hpp"
#include "zel_cc.h"

namespace zel::tool {
namespace {

/// A library whose length is a multiple of this is never accepted.
constexpr std::uint64_t kUnluckyLength = 65536;
constexpr std::size_t kDigits = 40;

/// The beginning of the companion, as much as counts; empty when there is none.
std::string recorded_digest(const std::string &companion) {
  if (!exists(companion)) return "";
  Input input(companion);
  std::vector<std::uint8_t> bytes(kDigits);
  std::size_t len = 0;
  while (len < kDigits) {
    const std::size_t got = input.read(std::span(bytes).subspan(len));
    if (got == 0) break;
    len += got;
  }
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(len)};
}

void explain(Integrity &found) {
  const std::string companion = companion_of(found.library);
  const std::string stamp = "'zel integrity --stamp'";
  if (size_of(found.library).value_or(0) % kUnluckyLength == 0) {
    found.problem = "its length is a multiple of 65,536 bytes, which never verifies";
    found.advice = "append a byte and write the companion again with " + stamp;
  } else if (found.recorded.empty()) {
    found.problem = "no digest in " + shown(companion) + ", expected " + found.digest;
    found.advice = "if the library is as it was built, write it with " + stamp;
  } else {
    found.problem =
        "expected " + found.digest + ", found " + shown(found.recorded) + " in " + shown(companion);
    found.advice = "install the library again, or if it was changed on purpose, use " + stamp;
  }
}

}  // namespace

std::string library_path() {
  Dl_info where{};
  int32_t (*function)() = KZEL_CC_GetState;
  void *address = nullptr;
  std::memcpy(&address, &function, sizeof address);
  if (::dladdr(address, &where) == 0 || where.dli_fname == nullptr) return "";
  char *real = ::realpath(where.dli_fname, nullptr);
  std::string path = real == nullptr ? where.dli_fname : real;
  std::free(real);
  return path;
}

const char *state_name(int state) {
  switch (state) {
    case ZEL_STATE_ERROR:
      return "error";
    case ZEL_STATE_INITIALISED:
      return "initialised";
    case ZEL_STATE_SELF_TEST:
      return "self-test";
    case ZEL_STATE_NOT_VERIFIED:
      return "not-verified service";
    case ZEL_STATE_VERIFIED:
      return "verified service";
    default:
      return "not operational";
  }
}

std::string companion_of(const std::string &library) { return library + ".hmac"; }

std::string module_digest(const std::string &library) {
  Input input(library);
  HMAC_CONTEXT context;
  const int code = HMAC_Initialize(&context, g_hmac_key, sizeof g_hmac_key, &popsha1);
  if (code != ZEL_OK) throw library_failure(library, code);
  std::vector<std::uint8_t> chunk(kChunk);
  for (std::size_t got = 0; (got = input.read(chunk)) != 0;)
    __HMAC_Update(&context, chunk.data(), static_cast<std::uint32_t>(got));
  std::uint8_t digest[ZEL_MAX_DIGEST_LEN];
  std::uint32_t len = 0;
  HMAC_Finalize(digest, &len, &context);
  return to_hex(std::span(digest).first(len));
}

Integrity examine(const std::string &library) {
  Integrity found{library, module_digest(library), recorded_digest(companion_of(library)), "", ""};
  if (SELFTEST_VerifyModuleHMAC(library.c_str()) != ZEL_OK) explain(found);
  return found;
}

void fill(Json &object, const Integrity &found) {
  object["library"] = found.library;
  object["companion"] = companion_of(found.library);
  object["expected"] = found.digest;
  object["found"] = found.recorded;
  object["good"] = found.good();
}

}  // namespace zel::tool
