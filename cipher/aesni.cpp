// AES through the processor's instructions under descriptors of their own. Deliberate: unless the
// library was built with ZEL_CC_AESNI these are empty, and the processor test says no. FIPS 197.
#include "base/cpu.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/rijndael.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

bool has_instructions() noexcept { return bulk::kBuiltWithAesni && cpu::has(cpu::Feature::kAesni); }

bool computes() noexcept { return has_instructions() && !gate::approved_only(); }

int32_t make_round_key(const aes::Engine &engine, void *round_keys, const uint8_t *key) noexcept {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  if (!has_instructions()) return ZEL_ERR_GENERIC;
  engine.expand(static_cast<uint8_t *>(round_keys), key);
  return ZEL_OK;
}

}  // namespace
}  // namespace zel

using namespace zel;

int32_t Check_CPU_support_AES(void) { return has_instructions() ? 1 : 0; }

int32_t RIJNDAEL_MakeRoundKey_AESNI(void *round_keys, const uint8_t *key, uint32_t) {
  return make_round_key(aes::aesni128, round_keys, key);
}

void RIJNDAEL_EncryptBlock_AESNI(void *block, const void *round_keys) {
  if (computes()) aes::aesni128.encrypt_block(static_cast<uint8_t *>(block), round_keys);
}

void RIJNDAEL_DecryptBlock_AESNI(void *block, const void *round_keys) {
  if (computes()) aes::aesni128.decrypt_block(static_cast<uint8_t *>(block), round_keys);
}

int32_t RIJNDAEL256_MakeRoundKey_AESNI(void *round_keys, const uint8_t *key, uint32_t) {
  return make_round_key(aes::aesni256, round_keys, key);
}

void RIJNDAEL256_EncryptBlock_AESNI(void *block, const void *round_keys) {
  if (computes()) aes::aesni256.encrypt_block(static_cast<uint8_t *>(block), round_keys);
}

void RIJNDAEL256_DecryptBlock_AESNI(void *block, const void *round_keys) {
  if (computes()) aes::aesni256.decrypt_block(static_cast<uint8_t *>(block), round_keys);
}

constinit const BCIPHER_ALGORITHM aesni = {
    .block_len = aes::kBlockLen,
    .round_keys_len = aes::Aes128::kScheduleLen,
    .MakeRoundKey = RIJNDAEL_MakeRoundKey_AESNI,
    .EncryptBlock = RIJNDAEL_EncryptBlock_AESNI,
    .DecryptBlock = RIJNDAEL_DecryptBlock_AESNI,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_aesni ZEL_HIDDEN_ALIAS("aesni");

constinit const BCIPHER_ALGORITHM aesni256 = {
    .block_len = aes::kBlockLen,
    .round_keys_len = aes::Aes256::kScheduleLen,
    .MakeRoundKey = RIJNDAEL256_MakeRoundKey_AESNI,
    .EncryptBlock = RIJNDAEL256_EncryptBlock_AESNI,
    .DecryptBlock = RIJNDAEL256_DecryptBlock_AESNI,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern "C" const BCIPHER_ALGORITHM zel_own_aesni256 ZEL_HIDDEN_ALIAS("aesni256");
