// Whatever text claims to be shares: the reader either refuses it or reads what it can write back.
#include <cstdlib>

#include "tools/zel/failure.hpp"
#include "tools/zel/share_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t len) {
  using namespace zel::tool;
  const std::string_view text(reinterpret_cast<const char *>(data), len);
  try {
    std::string written;
    for (const Share &share : parse_shares(text, "input"))
      written += to_text(share);
    std::string again;
    for (const Share &share : parse_shares(written, "what was written"))
      again += to_text(share);
    if (again != written) std::abort();
  } catch (const Failure &) {
    return -1;  // not worth keeping in a corpus; the replay counts it
  }
  return 0;
}
