// RC4: key schedule and key stream. RFC 6229 has test vectors.
#include "zel_cc/rc4.h"

#include <cstddef>
#include <utility>

#include "core/gate.hpp"

namespace zel {
namespace {

/// Calls put(n, byte) with the next `len` bytes of key stream.
template <class Put>
void generate(RC4_STATE &state, std::size_t len, Put put) noexcept {
  std::uint8_t *const box = state.S;
  std::uint32_t i = state.i & 0xff;
  std::uint32_t j = state.j & 0xff;
  for (std::size_t n = 0; n < len; ++n) {
    i = (i + 1) & 0xff;
    const std::uint8_t at_i = box[i];
    j = (j + at_i) & 0xff;
    const std::uint8_t at_j = box[j];
    box[i] = at_j;
    box[j] = at_i;
    put(n, box[static_cast<std::uint8_t>(at_i + at_j)]);
  }
  state.i = i;
  state.j = j;
}

}  // namespace
}  // namespace zel

using namespace zel;

void RC4_init(RC4_STATE *state, const uint8_t *key, int32_t key_bits) {
  if (gate::approved_only() || key_bits < 8) return;
  const auto key_len = static_cast<std::size_t>(key_bits / 8);
  for (std::size_t n = 0; n < 256; ++n)
    state->S[n] = static_cast<uint8_t>(n);
  std::uint8_t j = 0;
  for (std::size_t n = 0; n < 256; ++n) {
    j = static_cast<std::uint8_t>(j + state->S[n] + key[n % key_len]);
    std::swap(state->S[n], state->S[j]);
  }
  state->i = 0;
  state->j = 0;
}

void RC4_crypt(uint8_t *out, const uint8_t *in, int32_t len, RC4_STATE *state) {
  if (gate::approved_only() || len <= 0) return;
  generate(*state, static_cast<std::size_t>(len), [out, in](std::size_t n, std::uint8_t stream) {
    out[n] = static_cast<std::uint8_t>(in[n] ^ stream);
  });
}

void RC4_crypt_core(uint8_t *buffer, int32_t len, RC4_STATE *state) {
  if (gate::approved_only() || len <= 0) return;
  generate(*state, static_cast<std::size_t>(len),
           [buffer](std::size_t n, std::uint8_t stream) { buffer[n] = stream; });
}
