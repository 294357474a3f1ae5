// tavoold: the older form of tavo, with a padding of its own. Unreviewed; defined in docs/tavo.md.
#include <algorithm>

#include "cipher/algorithms.hpp"
#include "cipher/modes.hpp"
#include "cipher/tavo_core.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {
using Kernel = TavoKernel<TavoForm::kTavoold>;
}  // namespace

constinit const bulk::Ops bulk::tavoold_interleaved = bulk::Interleaved<Kernel>::ops();

}  // namespace zel

using namespace zel;

extern "C" {

int32_t TAVOOLD_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  tavo_make_round_keys(round_keys, key, tavo_tables::kTavoold);
  return ZEL_OK;
}

void TAVOOLD_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void TAVOOLD_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

// Deliberate: the pad bytes hold the length of the last piece of the message, not their number, so
// a message of whole blocks ends in sixteen zero bytes, which BCIPHER_Decrypt then refuses.
uint32_t TAVOOLD_AddPadding(uint8_t *out, const uint8_t *in, uint32_t len) {
  if (gate::approved_only()) return 0;
  modes::copy(out, in, len);
  const uint32_t last = len % kTavoBlockLen;
  const auto pad = static_cast<uint32_t>(kTavoBlockLen - last);
  if (len > UINT32_MAX - pad) return len;
  std::memset(out + len, static_cast<int>(last), pad);
  return len + pad;
}

uint32_t TAVOOLD_RemovePadding(uint8_t *out, const uint8_t *in, uint32_t len) {
  if (gate::approved_only()) return 0;
  modes::copy(out, in, len);
  if (len < kTavoBlockLen) return 0;
  return std::min(len, static_cast<uint32_t>(len - kTavoBlockLen + out[len - 1]));
}

constinit const BCIPHER_ALGORITHM tavoold = {
    .block_len = kTavoBlockLen,
    .round_keys_len = sizeof(TavoKeys),
    .MakeRoundKey = TAVOOLD_MakeRoundKey,
    .EncryptBlock = TAVOOLD_EncryptBlock,
    .DecryptBlock = TAVOOLD_DecryptBlock,
    .AddPadding = TAVOOLD_AddPadding,
    .RemovePadding = TAVOOLD_RemovePadding,
};
extern const BCIPHER_ALGORITHM zel_own_tavoold ZEL_HIDDEN_ALIAS("tavoold");
}
