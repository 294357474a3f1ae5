// RC4: key schedule and key stream. RFC 6229 has test vectors.
#include "zel_cc/rc4.h"

#include <cstddef>
#include <utility>

#include "base/bytes.hpp"
#include "cipher/interleave.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

/// One step: j moves on by box[i], the two entries change places, and the entry at their sum is the
/// byte of key stream. `at_i` is the address of entry i, `x` its value; both indices are bytes in
/// whole registers. Written out because compilers mask each sum again, and because this order of
/// the two stores is the one that processors forward to the loads behind them.
inline std::uint64_t step(std::uint8_t *box, std::uint8_t *at_i, std::uint64_t x,
                          std::uint64_t &j) noexcept {
  std::uint64_t y;
  __asm__ volatile(
      "addb %b[x], %b[j]\n\t"
      "movzbl (%[box],%[j]), %k[y]\n\t"
      "movb %b[x], (%[box],%[j])\n\t"
      "movb %b[y], %[entry]\n\t"
      "addb %b[x], %b[y]"
      : [y] "=&q"(y), [j] "+q"(j), [entry] "=m"(*at_i)
      : [x] "q"(x), [box] "r"(box)
      : "cc", "memory");
  return box[y];
}

/// Writes the next bytes of key stream, exclusive or with `in` unless that is null.
void generate(RC4_STATE &state, std::uint8_t *out, const std::uint8_t *in,
              std::size_t len) noexcept {
  std::uint8_t *const box = state.S;
  std::uint64_t i = state.i & 0xff;
  std::uint64_t j = state.j & 0xff;
  std::size_t n = 0;
  while (n < len) {
    std::uint8_t *const at = box + ((i + 1) & 0xff);
    if ((i + 1) % 8 == 0 && len - n >= 8) {
      std::uint64_t stream = 0;
      std::uint64_t x = at[0];
      bulk::each<8>([&](auto k) {
        const std::uint64_t byte = step(box, at + k, x, j);
        if constexpr (k < 7) x = at[k + 1];
        stream |= byte << (8 * k);
      });
      store_le64(out + n, stream ^ (in == nullptr ? 0 : load_le64(in + n)));
      i = (i + 8) & 0xff;
      n += 8;
    } else {
      const std::uint64_t byte = step(box, at, *at, j);
      out[n] = static_cast<std::uint8_t>(byte ^ (in == nullptr ? 0U : in[n]));
      i = (i + 1) & 0xff;
      ++n;
    }
  }
  state.i = static_cast<std::uint32_t>(i);
  state.j = static_cast<std::uint32_t>(j);
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
  generate(*state, out, in, static_cast<std::size_t>(len));
}

void RC4_crypt_core(uint8_t *buffer, int32_t len, RC4_STATE *state) {
  if (gate::approved_only() || len <= 0) return;
  generate(*state, buffer, nullptr, static_cast<std::size_t>(len));
}
