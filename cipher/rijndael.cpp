// AES with 128-bit and 256-bit keys, through the processor's instructions where it has them. FIPS
// 197.
#include "cipher/rijndael.hpp"

#include "base/cpu.hpp"
#include "cipher/algorithms.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

const aes::Engine &engine128() noexcept {
  return cpu::has(cpu::Feature::kAesni) ? aes::aesni128 : aes::sliced128;
}

const aes::Engine &engine256() noexcept {
  return cpu::has(cpu::Feature::kAesni) ? aes::aesni256 : aes::sliced256;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t RIJNDAEL_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  engine128().expand(static_cast<uint8_t *>(round_keys), key);
  return ZEL_OK;
}

void RIJNDAEL_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  engine128().encrypt_block(static_cast<uint8_t *>(block), round_keys);
}

void RIJNDAEL_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  engine128().decrypt_block(static_cast<uint8_t *>(block), round_keys);
}

int32_t RIJNDAEL256_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  engine256().expand(static_cast<uint8_t *>(round_keys), key);
  return ZEL_OK;
}

void RIJNDAEL256_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  engine256().encrypt_block(static_cast<uint8_t *>(block), round_keys);
}

void RIJNDAEL256_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  engine256().decrypt_block(static_cast<uint8_t *>(block), round_keys);
}

constinit const BCIPHER_ALGORITHM rijndael = {
    .block_len = aes::kBlockLen,
    .round_keys_len = aes::Aes128::kScheduleLen,
    .MakeRoundKey = RIJNDAEL_MakeRoundKey,
    .EncryptBlock = RIJNDAEL_EncryptBlock,
    .DecryptBlock = RIJNDAEL_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_rijndael ZEL_HIDDEN_ALIAS("rijndael");

constinit const BCIPHER_ALGORITHM rijndael256 = {
    .block_len = aes::kBlockLen,
    .round_keys_len = aes::Aes256::kScheduleLen,
    .MakeRoundKey = RIJNDAEL256_MakeRoundKey,
    .EncryptBlock = RIJNDAEL256_EncryptBlock,
    .DecryptBlock = RIJNDAEL256_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_rijndael256 ZEL_HIDDEN_ALIAS("rijndael256");
