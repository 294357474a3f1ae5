// DES: block cipher with 64-bit blocks, 56 key bits and 16 rounds. FIPS 46-3.
#include "cipher/des.hpp"

#include "cipher/algorithms.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

using des_core::Blocks;
using des_core::kBlockLen;

struct Kernel {
  static constexpr std::size_t kBlockLen = des_core::kBlockLen;
  static constexpr std::size_t kLanes = 3;

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    Blocks<N> blocks(in);
    blocks.encipher(keys);
    blocks.store(out);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    Blocks<N> blocks(in);
    blocks.decipher(keys);
    blocks.store(out);
  }
};

}  // namespace

void des_core::expand(std::uint8_t *schedule, const std::uint8_t *key) noexcept {
  Wiped<std::uint8_t[56]> halves;  // one bit a byte: C, then D
  for (std::size_t i = 0; i < 56; ++i) {
    const std::size_t bit = des_tables::kPc1[i] - std::size_t{1};
    (*halves)[i] = key[bit / 8] >> (7 - bit % 8) & 1;
  }
  for (std::size_t r = 0; r < kRounds; ++r) {
    for (std::size_t box = 0; box < 8; ++box) {
      unsigned six = 0;
      for (std::size_t i = 6 * box; i < 6 * (box + 1); ++i) {
        const std::size_t from = des_tables::kPc2[i] - std::size_t{1};
        const std::size_t half = from / 28 * 28;
        six = six << 1 | (*halves)[half + (from - half + des_tables::kRotations[r]) % 28];
      }
      schedule[kRoundKeyLen * r + kPlace[box]] = static_cast<std::uint8_t>(six);
    }
  }
}

constinit const bulk::Ops bulk::des_interleaved = bulk::Interleaved<Kernel>::ops();
constinit const bulk::Ops bulk::des_avx2 = {.encrypt = des_encrypt_avx2,
                                            .decrypt = des_decrypt_avx2,
                                            .serial = bulk::Interleaved<Kernel>::serial};

}  // namespace zel

using namespace zel;

int32_t DES_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  des_core::expand(static_cast<uint8_t *>(round_keys), key);
  return ZEL_OK;
}

void DES_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void DES_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM des = {
    .block_len = kBlockLen,
    .round_keys_len = des_core::kScheduleLen,
    .MakeRoundKey = DES_MakeRoundKey,
    .EncryptBlock = DES_EncryptBlock,
    .DecryptBlock = DES_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_des ZEL_HIDDEN_ALIAS("des");
