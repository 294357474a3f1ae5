// AES: neither the key schedule nor a block depends on key or data in its time.
#include <cstdint>
#include <cstring>

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
  for (const std::uint8_t mode : {ZEL_MODE_ECB, ZEL_MODE_CBC, ZEL_MODE_CTR, ZEL_MODE_CFB_STREAM}) {
    for (const auto call : {BCIPHER_Encrypt, BCIPHER_Decrypt}) {
      BCIPHER_CONTEXT context;
      std::uint32_t len = 0;
      BCIPHER_Initialize(&context, mode, nullptr, &descriptor);
      call(data, &len, data, sizeof data, &context, key, 0);
    }
  }
  open(data, sizeof data);
  require(std::memcmp(data, plain, sizeof data) == 0, "AES there and back");
  BCIPHER_WipeKey(key);
  BCIPHER_DelKey(key);
}

const Probe kAes{"AES", [] {
                   every_operation(rijndael, 16);
                   every_operation(rijndael256, 32);
                 }};

}  // namespace
}  // namespace zel::test
