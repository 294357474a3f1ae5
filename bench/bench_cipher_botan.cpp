// The same through Botan: block ciphers directly for ECB, its mode and stream objects for the rest.
// The objects are never deleted: the measurements outlive Botan's allocator.
#include <botan/block_cipher.h>
#include <botan/cipher_mode.h>
#include <botan/stream_cipher.h>

#include "bench/bench.hpp"
#include "bench/bench_cipher.hpp"

namespace zel::bench {
namespace {

std::vector<std::uint8_t> key_bytes(std::uint32_t len) { return message(len); }

void add(const CipherNames &cipher, const ModeNames &mode) {
  const Name name{kCipherGroup, std::string(cipher.name) + '-' + mode.name,
                  std::to_string(mode.size), "botan"};
  if (mode.mode == ZEL_MODE_ECB) {
    Botan::BlockCipher *const block = Botan::BlockCipher::create(cipher.botan).release();
    if (block == nullptr) return;
    block->set_key(key_bytes(cipher.key_len));
    throughput(name, mode.size,
               [block, decrypt = mode.decrypt, size = mode.size, in = message(mode.size),
                out = message(mode.size)]() mutable {
                 const std::size_t count = size / block->block_size();
                 if (decrypt) {
                   block->decrypt_n(in.data(), out.data(), count);
                 } else {
                   block->encrypt_n(in.data(), out.data(), count);
                 }
               });
    return;
  }
  const std::vector<std::uint8_t> iv = message(cipher.descriptor->block_len);
  if (mode.mode == ZEL_MODE_CTR) {
    Botan::StreamCipher *const stream =
        Botan::StreamCipher::create("CTR-BE(" + std::string(cipher.botan) + ")").release();
    if (stream == nullptr) return;
    stream->set_key(key_bytes(cipher.key_len));
    stream->set_iv(iv.data(), iv.size());
    throughput(
        name, mode.size,
        [stream, size = mode.size, in = message(mode.size), out = message(mode.size)]() mutable {
          stream->cipher(in.data(), out.data(), size);
        });
    return;
  }
  Botan::Cipher_Mode *const object =
      Botan::Cipher_Mode::create(std::string(cipher.botan) + "/CBC/NoPadding",
                                 mode.decrypt ? Botan::DECRYPTION : Botan::ENCRYPTION)
          .release();
  if (object == nullptr) return;
  object->set_key(key_bytes(cipher.key_len));
  object->start(iv);
  // It works in place alone.
  throughput(name, mode.size, [object, size = mode.size, data = message(mode.size)]() mutable {
    object->process(data.data(), size);
  });
}

const Registration kCipher([] {
  for (const CipherNames &cipher : kCiphers) {
    if (cipher.botan == nullptr) continue;
    for (const ModeNames &mode : kModes)
      add(cipher, mode);
  }
  Botan::StreamCipher *const rc4 = Botan::StreamCipher::create("RC4").release();
  if (rc4 == nullptr) return;
  rc4->set_key(key_bytes(16));
  throughput({kCipherGroup, "rc4", std::to_string(kCipherSize), "botan"}, kCipherSize,
             [rc4, in = message(kCipherSize), out = message(kCipherSize)]() mutable {
               rc4->cipher(in.data(), out.data(), kCipherSize);
             });
});

}  // namespace
}  // namespace zel::bench
