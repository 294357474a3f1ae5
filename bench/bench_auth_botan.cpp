// The same through Botan, keyed once; a call sets the nonce. Its modes work in place alone.
#include <botan/aead.h>
#include <botan/mac.h>

#include "bench/bench_auth.hpp"

namespace zel::bench {
namespace {

void seal(const CipherNames &cipher, const char *mode, const char *name, std::size_t len) {
  Botan::AEAD_Mode *const object =
      Botan::AEAD_Mode::create(std::string(cipher.botan) + '/' + mode, Botan::ENCRYPTION).release();
  if (object == nullptr) return;
  object->set_key(message(cipher.key_len));
  Botan::secure_vector<std::uint8_t> data(len);
  data.reserve(len + kTagLen);
  throughput(auth_name(cipher, name, len, "botan"), len,
             [object, len, nonce = message(kNonceLen), data]() mutable {
               object->start(nonce);
               object->finish(data);
               data.resize(len);
             });
}

void authenticate(const CipherNames &cipher, std::size_t len) {
  Botan::MessageAuthenticationCode *const mac =
      Botan::MessageAuthenticationCode::create("CMAC(" + std::string(cipher.botan) + ')').release();
  if (mac == nullptr) return;
  mac->set_key(message(cipher.key_len));
  throughput(auth_name(cipher, "cmac", len, "botan"), len,
             [mac, in = message(len), out = message(kTagLen)]() mutable {
               mac->update(in.data(), in.size());
               mac->final(out.data());
             });
}

const Registration kAuth([] {
  each_auth_row([](const CipherNames &cipher, std::size_t len) {
    seal(cipher, "GCM", "gcm", len);
    seal(cipher, "CCM", "ccm", len);
    authenticate(cipher, len);
  });
});

}  // namespace
}  // namespace zel::bench
