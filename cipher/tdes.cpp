// Triple DES in the order encrypt, decrypt, encrypt, with two or three keys. SP 800-67.
#include <cstring>

#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/des.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

using des_core::Blocks;
using des_core::kBlockLen;
using des_core::kKeyLen;
using des_core::kScheduleLen;

struct Kernel {
  static constexpr std::size_t kBlockLen = des_core::kBlockLen;
  static constexpr std::size_t kLanes = 3;

  /// The permutations between two passes cancel out.
  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    Blocks<N> blocks(in);
    blocks.encipher(keys);
    blocks.decipher(keys + kScheduleLen);
    blocks.encipher(keys + 2 * kScheduleLen);
    blocks.store(out);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    Blocks<N> blocks(in);
    blocks.decipher(keys + 2 * kScheduleLen);
    blocks.encipher(keys + kScheduleLen);
    blocks.decipher(keys);
    blocks.store(out);
  }
};

}  // namespace

constinit const bulk::Ops bulk::tdes_interleaved = bulk::Interleaved<Kernel>::ops();
constinit const bulk::Ops bulk::tdes_avx2 = {.encrypt = tdes_encrypt_avx2,
                                             .decrypt = tdes_decrypt_avx2,
                                             .serial = bulk::Interleaved<Kernel>::serial};

}  // namespace zel

using namespace zel;

// Deliberate: a length that is neither 16 nor 24 gives the schedule of 24 zero bytes, silently.
int32_t TDES_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  Wiped<uint8_t[3 * kKeyLen]> keys;
  std::memset(*keys, 0, 3 * kKeyLen);
  if (key_len == 2 * kKeyLen || key_len == 3 * kKeyLen) {
    std::memcpy(*keys, key, key_len);
    if (key_len == 2 * kKeyLen) std::memcpy(*keys + 2 * kKeyLen, key, kKeyLen);
  }
  for (std::size_t i = 0; i < 3; ++i)
    des_core::expand(static_cast<uint8_t *>(round_keys) + kScheduleLen * i, *keys + kKeyLen * i);
  return ZEL_OK;
}

void TDES_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void TDES_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM tdes = {
    .block_len = kBlockLen,
    .round_keys_len = 3 * kScheduleLen,
    .MakeRoundKey = TDES_MakeRoundKey,
    .EncryptBlock = TDES_EncryptBlock,
    .DecryptBlock = TDES_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_tdes ZEL_HIDDEN_ALIAS("tdes");
