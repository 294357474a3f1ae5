// tavo: this library's own block cipher of 128-bit blocks, 128-bit keys and 16 rounds. Unreviewed;
// defined in docs/tavo.md.
#include "cipher/algorithms.hpp"
#include "cipher/tavo_core.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {
using Kernel = TavoKernel<TavoForm::kTavo>;
}  // namespace

constinit const bulk::Ops bulk::tavo_interleaved = bulk::Interleaved<Kernel>::ops();

}  // namespace zel

using namespace zel;

extern "C" {

int32_t TAVO_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  tavo_make_round_keys(round_keys, key, tavo_tables::kTavo);
  return ZEL_OK;
}

void TAVO_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void TAVO_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM tavo = {
    .block_len = kTavoBlockLen,
    .round_keys_len = sizeof(TavoKeys),
    .MakeRoundKey = TAVO_MakeRoundKey,
    .EncryptBlock = TAVO_EncryptBlock,
    .DecryptBlock = TAVO_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_tavo ZEL_HIDDEN_ALIAS("tavo");
}
