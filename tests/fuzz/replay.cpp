// Runs a fuzz target without a fuzzer: on every file of a corpus, on everything that is cut off
// from it, and on it with every byte changed in several ways.
// usage: replay FOLDER
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t len);

namespace {

using Bytes = std::vector<std::uint8_t>;

/// In memory of its exact size, so that the address sanitizer sees a byte too far.
bool is_accepted(const Bytes &input) {
  const Bytes exact(input);
  return LLVMFuzzerTestOneInput(exact.data(), exact.size()) == 0;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) return 2;
  unsigned files = 0;
  unsigned bad = 0;
  unsigned long runs = 0;
  for (const auto &entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream stream(entry.path(), std::ios::binary);
    Bytes input{std::istreambuf_iterator<char>(stream), {}};
    const bool text = !input.empty() && input.back() == '\n';
    ++files;
    if (!is_accepted(input)) {
      std::printf("refused: %s\n", entry.path().c_str());
      ++bad;
    }
    for (std::size_t len = 0; len < input.size(); ++len, ++runs) {
      const bool accepted =
          is_accepted(Bytes(input.begin(), input.begin() + static_cast<long>(len)));
      // A text may lose its last line end.
      if (accepted && !(text && len + 1 == input.size())) {
        std::printf("accepted: %s cut off after %zu bytes\n", entry.path().c_str(), len);
        ++bad;
      }
    }
    for (std::uint8_t &byte : input) {
      for (const std::uint8_t change : {0x01, 0x02, 0x10, 0x80, 0xff}) {
        byte ^= change;
        static_cast<void>(is_accepted(input));
        byte ^= change;
        ++runs;
      }
    }
  }
  std::printf("%u files, %lu altered inputs\n", files, runs);
  return files == 0 || bad != 0 ? 1 : 0;
}
