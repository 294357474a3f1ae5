// GCM, CCM and CMAC of this library. CMAC has no state with the key loaded: it takes it each time.
#include "bench/bench_auth.hpp"

#include "base/cpu.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

void seal(const CipherNames &cipher, std::uint8_t mode, const char *name, std::size_t len) {
  BCIPHER_KEY *const key = BCIPHER_NewKey(cipher.descriptor);
  BCIPHER_MakeKey(key, message(cipher.key_len).data(), cipher.key_len, cipher.descriptor);
  BCIPHER_CONTEXT context;
  BCIPHER_Initialize(&context, mode, nullptr, cipher.descriptor);
  throughput(auth_name(cipher, name, len, "zel"), len,
             [key, context, nonce = message(kNonceLen), in = message(len),
              out = message(len + kTagLen)]() mutable {
               std::uint32_t out_len = 0;
               BCIPHER_EncryptAuth(out.data(), &out_len, in.data(),
                                   static_cast<std::uint32_t>(in.size()), nullptr, 0, nonce.data(),
                                   kNonceLen, &context, key, kTagLen);
             });
}

void authenticate(const CipherNames &cipher, std::size_t len) {
  throughput(auth_name(cipher, "cmac", len, "zel"), len,
             [&cipher, key = message(cipher.key_len), in = message(len),
              out = message(kTagLen)]() mutable {
               CMAC_CONTEXT context;
               CMAC_Initialize(&context, key.data(), cipher.key_len, cipher.descriptor);
               CMAC_Update(&context, in.data(), static_cast<std::uint32_t>(in.size()));
               CMAC_Finalize(out.data(), kTagLen, &context);
             });
}

void ghash(std::size_t len, bool portable) {
  throughput({kAuthGroup, "ghash", std::to_string(len), portable ? "zel-portable" : "zel"}, len,
             [portable, h = message(16), in = message(len), out = message(16)]() mutable {
               const std::uint32_t features = cpu::g_features;
               if (portable) cpu::g_features = cpu::kAsked;
               GMAC_GHash(out.data(), in.data(), static_cast<std::uint32_t>(in.size()), h.data(),
                          16);
               cpu::g_features = features;
             });
}

const Registration kAuth([] {
  each_auth_row([](const CipherNames &cipher, std::size_t len) {
    seal(cipher, ZEL_MODE_GCM, "gcm", len);
    seal(cipher, ZEL_MODE_CCM, "ccm", len);
    authenticate(cipher, len);
  });
  for (const bool portable : {false, true})
    ghash(kCipherSize, portable);
});

}  // namespace
}  // namespace zel::bench
