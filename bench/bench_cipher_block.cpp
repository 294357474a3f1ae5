// One block after the other, as the serial modes need it: ARIA and SEED in constant time, which is
// what the library runs, beside their table versions.
#include "base/cpu.hpp"
#include "bench/bench.hpp"
#include "bench/bench_cipher.hpp"

namespace zel::bench {
namespace {

constexpr std::size_t kChain = 64;

void chain(const CipherNames &cipher, bool tables) {
  std::vector<std::uint8_t> round_keys(cipher.descriptor->round_keys_len);
  cipher.descriptor->MakeRoundKey(round_keys.data(), message(32).data(), cipher.key_len);
  throughput({kCipherGroup, std::string(cipher.name) + "-chain", "1024", tables ? "tables" : "zel"},
             kChain * cipher.descriptor->block_len,
             [&cipher, tables, keys = std::move(round_keys), block = message(16)]() mutable {
               const std::uint32_t features = cpu::g_features;
               if (tables) cpu::g_features = cpu::kAsked;
               for (std::size_t i = 0; i < kChain; ++i)
                 cipher.descriptor->EncryptBlock(block.data(), keys.data());
               cpu::g_features = features;
             });
}

const Registration kBlocks([] {
  for (const CipherNames &cipher : kCiphers) {
    if (cipher.descriptor != &aria && cipher.descriptor != &aria256 && cipher.descriptor != &seed)
      continue;
    chain(cipher, false);
    chain(cipher, true);
  }
});

}  // namespace
}  // namespace zel::bench
