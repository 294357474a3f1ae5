// The modes, over AES, and over ARIA and SEED with AES instructions: neither the key schedule nor a
// message depends on key or data in its time.
#include <cstdint>
#include <cstring>

#include "base/cpu.hpp"
#include "tests/ct/probe.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

void every_operation(const BCIPHER_ALGORITHM &descriptor, std::uint32_t key_len) {
  std::uint8_t key_bytes[32] = {1, 2, 3};
  std::uint8_t data[320] = {4, 5, 6};
  const std::uint8_t plain[320] = {4, 5, 6};
  secret(key_bytes, sizeof key_bytes);
  secret(data, sizeof data);
  BCIPHER_KEY *const key = BCIPHER_NewKey(&descriptor);
  BCIPHER_MakeKey(key, key_bytes, key_len, &descriptor);
  for (std::uint8_t mode = ZEL_MODE_ECB; mode <= ZEL_MODE_CFB_STREAM; ++mode) {
    for (const auto call : {BCIPHER_Encrypt, BCIPHER_Decrypt}) {
      BCIPHER_CONTEXT context;
      std::uint32_t len = 0;
      BCIPHER_Initialize(&context, mode, nullptr, &descriptor);
      call(data, &len, data, sizeof data, &context, key, 0);
    }
  }
  open(data, sizeof data);
  require(std::memcmp(data, plain, sizeof data) == 0, "a message there and back");
  BCIPHER_WipeKey(key);
  BCIPHER_DelKey(key);
}

const Probe kAes{"the modes over AES", [] {
                   every_operation(rijndael, 16);
                   every_operation(rijndael256, 32);
                 }};
const Probe kApproved{"the modes over ARIA and SEED with AES instructions", [] {
                        if (!cpu::has(cpu::Feature::kAesni)) return;
                        every_operation(aria, 16);
                        every_operation(aria256, 32);
                        every_operation(seed, 16);
                      }};

}  // namespace
}  // namespace zel::test
