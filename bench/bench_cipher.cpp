// Block ciphers and RC4 of this library: one call over 16 KiB from one buffer to another, and the
// expansion of a key.
#include "bench/bench_cipher.hpp"

#include "base/cpu.hpp"
#include "bench/bench.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

/// While it lives, the library sees a processor without any feature.
class Portable {
 public:
  explicit Portable(bool on) {
    if (on) cpu::g_features = cpu::kAsked;
  }
  ~Portable() { cpu::g_features = features_; }

 private:
  std::uint32_t features_ = cpu::g_features;
};

void modes(const CipherNames &cipher, bool portable) {
  for (const ModeNames &mode : kModes) {
    BCIPHER_KEY *const key = BCIPHER_NewKey(cipher.descriptor);
    BCIPHER_MakeKey(key, message(cipher.key_len).data(), cipher.key_len, cipher.descriptor);
    BCIPHER_CONTEXT context;
    BCIPHER_Initialize(&context, mode.mode, nullptr, cipher.descriptor);
    const std::string operation = std::string(cipher.name) + '-' + mode.name;
    throughput(
        {kCipherGroup, operation, std::to_string(mode.size), portable ? "zel-portable" : "zel"},
        mode.size,
        [key, context, portable, decrypt = mode.decrypt, size = mode.size, in = message(mode.size),
         out = message(mode.size)]() mutable {
          const Portable masked(portable);
          std::uint32_t len = 0;
          (decrypt ? BCIPHER_Decrypt : BCIPHER_Encrypt)(
              out.data(), &len, in.data(), static_cast<std::uint32_t>(size), &context, key, 0);
        });
  }
}

const Registration kCipher([] {
  for (const CipherNames &cipher : kCiphers) {
    modes(cipher, false);
    if (cipher.descriptor == &rijndael) modes(cipher, true);
    operations({kCipherGroup, std::string(cipher.name) + "-key", "-", "zel"},
               [&cipher, key = BCIPHER_NewKey(cipher.descriptor), bytes = message(32)] {
                 BCIPHER_MakeKey(key, bytes.data(), cipher.key_len, cipher.descriptor);
               });
  }
  RC4_STATE state;
  RC4_init(&state, message(16).data(), 128);
  throughput({kCipherGroup, "rc4", std::to_string(kCipherSize), "zel"}, kCipherSize,
             [state, in = message(kCipherSize), out = message(kCipherSize)]() mutable {
               RC4_crypt(out.data(), in.data(), kCipherSize, &state);
             });
});

}  // namespace
}  // namespace zel::bench
