// RC4: key schedule and key stream. RFC 6229 has test vectors.
#include "zel_cc/rc4.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "cipher/interleave.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

/// Below this a copy of the box costs more than it saves.
constexpr std::size_t kWorthACopy = 512;
constexpr std::size_t kGroup = sizeof(std::uint64_t);

/// Writes the next bytes of key stream, exclusive or with `in` unless that is null.
void byte_by_byte(RC4_STATE &state, std::uint8_t *out, const std::uint8_t *in,
                  std::size_t len) noexcept {
  std::uint8_t *const box = state.S;
  auto i = static_cast<std::uint8_t>(state.i);
  auto j = static_cast<std::uint8_t>(state.j);
  for (std::size_t n = 0; n < len; ++n) {
    const std::uint8_t x = box[++i];
    j = static_cast<std::uint8_t>(j + x);
    const std::uint8_t y = box[j];
    box[i] = y;
    box[j] = x;
    const std::uint8_t stream = box[static_cast<std::uint8_t>(x + y)];
    out[n] = static_cast<std::uint8_t>(stream ^ (in == nullptr ? 0 : in[n]));
  }
  state.i = i;
  state.j = j;
}

/// The same for whole groups, on a copy of the box in words. The entry of the next step is loaded
/// before the two stores of this one, which would otherwise hold it up; now and then the first of
/// them was to that entry.
void by_groups(RC4_STATE &state, std::uint8_t *out, const std::uint8_t *in,
               std::size_t groups) noexcept {
  Wiped<std::uint32_t[256]> copy;
  std::uint32_t *const box = *copy;
  std::copy_n(state.S, 256, box);
  std::size_t i = (state.i + 1) & 0xff;
  std::size_t j = state.j & 0xff;
  std::uint32_t x = box[i];
  for (; groups > 0; --groups, out += kGroup) {
    std::uint64_t stream = 0;
    bulk::each<kGroup>([&](auto k) {
      const std::size_t next = (i + 1) & 0xff;
      std::uint32_t next_x = box[next];
      j = (j + x) & 0xff;
      const std::uint32_t y = box[j];
      box[j] = x;
      box[i] = y;
      if (next == j) [[unlikely]]
        next_x = x;
      stream |= std::uint64_t{box[(x + y) & 0xff]} << (8 * k);
      x = next_x;
      i = next;
    });
    if (in != nullptr) {
      stream ^= load_le64(in);
      in += kGroup;
    }
    store_le64(out, stream);
  }
  for (std::size_t n = 0; n < 256; ++n)
    state.S[n] = static_cast<std::uint8_t>(box[n]);
  state.i = static_cast<std::uint32_t>((i - 1) & 0xff);
  state.j = static_cast<std::uint32_t>(j);
}

void generate(RC4_STATE &state, std::uint8_t *out, const std::uint8_t *in,
              std::size_t len) noexcept {
  std::size_t done = 0;
  if (len >= kWorthACopy) {
    by_groups(state, out, in, len / kGroup);
    done = len / kGroup * kGroup;
  }
  byte_by_byte(state, out + done, in == nullptr ? nullptr : in + done, len - done);
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
