#include "tools/zel/pbkdf2.hpp"

#include <algorithm>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "tools/zel/failure.hpp"
#include "zel_cc/hmac.h"

namespace zel::tool {
namespace {

struct Block {
  std::uint8_t bytes[64];
};

void finish(const HMAC_CONTEXT &context, Block &out) {
  std::uint32_t len = 0;
  HMAC_Finalize(out.bytes, &len, &context);
  if (len == 0) throw library_failure("passphrase", ZEL_ERR_STATE);
}

}  // namespace

void pbkdf2(std::span<const std::uint8_t> passphrase, std::span<const std::uint8_t> salt,
            std::uint32_t rounds, const HASH_ALGORITHM &hash, std::span<std::uint8_t> out) {
  Wiped<HMAC_CONTEXT> keyed;
  const int status = HMAC_InitializeEx(&*keyed, passphrase.data(),
                                       static_cast<std::uint32_t>(passphrase.size()), &hash);
  if (status != ZEL_OK) throw library_failure("passphrase", status);
  const std::uint32_t block_len = hash.digest_len;
  Wiped<Block> sum;
  Wiped<Block> last;
  Wiped<HMAC_CONTEXT> context;
  for (std::uint32_t index = 1; !out.empty(); ++index) {
    std::uint8_t counter[4];
    store_be32(counter, index);
    *context = *keyed;
    __HMAC_Update(&*context, salt.data(), static_cast<std::uint32_t>(salt.size()));
    __HMAC_Update(&*context, counter, sizeof counter);
    finish(*context, *last);
    *sum = *last;
    for (std::uint32_t round = 1; round < rounds; ++round) {
      *context = *keyed;
      __HMAC_Update(&*context, last->bytes, block_len);
      finish(*context, *last);
      for (std::uint32_t i = 0; i < block_len; ++i)
        sum->bytes[i] ^= last->bytes[i];
    }
    const std::size_t len = std::min<std::size_t>(out.size(), block_len);
    std::copy_n(sum->bytes, len, out.begin());
    out = out.subspan(len);
  }
}

}  // namespace zel::tool
