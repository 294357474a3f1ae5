// Whatever bytes claim to be the header of a container: the reader either refuses them or reads
// what it writes back with the same bytes.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "tools/zel/container.hpp"
#include "tools/zel/failure.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t len) {
  using namespace zel::tool;
  const Descriptor file(::memfd_create("container", MFD_CLOEXEC));
  if (::write(file.number(), data, len) != static_cast<ssize_t>(len)) std::abort();
  try {
    const std::string path = "/proc/self/fd/" + std::to_string(file.number());
    Input input(path);
    const Bytes written = read_header(input, path).encode();
    if (written.size() > len || !std::ranges::equal(written, std::span(data, written.size()))) {
      std::abort();
    }
  } catch (const Failure &) {
    return -1;  // not worth keeping in a corpus; the replay counts it
  }
  return 0;
}
