// IDEA: block cipher of four 16-bit words, 128-bit keys and 8.5 rounds. X. Lai, "On the Design and
// Security of Block Ciphers", 1992.
#include "cipher/idea.hpp"

#include <array>

#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/interleave.hpp"
#include "cipher/mul65537.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

using Word = std::uint16_t;

inline Word add(unsigned a, unsigned b) noexcept { return static_cast<Word>(a + b); }

/// The inverse modulo 65537: the power 65535, as the group has 65536 elements.
inline Word mul_inverse(Word a) noexcept {
  Word power = a;
  for (int bit = 1; bit < 16; ++bit)
    power = mul65537(mul65537(power, power), a);
  return power;
}

struct Kernel {
  static constexpr std::size_t kBlockLen = 8;
  static constexpr std::size_t kLanes = 3;

  template <std::size_t N>
  static void crypt(std::uint8_t *out, const std::uint8_t *in, const std::uint8_t *keys) noexcept {
    const auto key = [keys](std::size_t i) { return load_le<Word>(keys + 2 * i); };
    Word w[4][N];
    bulk::each<N>([&](auto i) {
      bulk::each<4>([&](auto j) { w[j][i] = load_be<Word>(in + 8 * i + 2 * j); });
    });
    for (std::size_t round = 0; round < kIdeaRounds; ++round) {
      const std::size_t k = 6 * round;
      bulk::each<N>([&](auto i) {
        const Word a = mul65537(w[0][i], key(k));
        const Word b = add(w[1][i], key(k + 1));
        const Word c = add(w[2][i], key(k + 2));
        const Word d = mul65537(w[3][i], key(k + 3));
        const Word s = mul65537(a ^ c, key(k + 4));
        const Word t = mul65537(add(s, b ^ d), key(k + 5));
        const Word u = add(s, t);
        w[0][i] = a ^ t;
        w[1][i] = c ^ t;
        w[2][i] = b ^ u;
        w[3][i] = d ^ u;
      });
    }
    constexpr std::size_t k = 6 * kIdeaRounds;
    bulk::each<N>([&](auto i) {
      store_be(out + 8 * i, mul65537(w[0][i], key(k)));
      store_be(out + 8 * i + 2, add(w[2][i], key(k + 1)));
      store_be(out + 8 * i + 4, add(w[1][i], key(k + 2)));
      store_be(out + 8 * i + 6, mul65537(w[3][i], key(k + 3)));
    });
  }

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys);
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    crypt<N>(out, in, keys + kIdeaHalfLen);
  }
};

using Subkeys = std::array<Word, kIdeaHalfWords>;

/// The key, turned left by 25 bits after every eight words.
void expand(Subkeys &subkeys, const std::uint8_t *key) noexcept {
  std::uint64_t high = load_be64(key);
  std::uint64_t low = load_be64(key + 8);
  for (std::size_t i = 0; i < kIdeaSubkeys; ++i) {
    const std::uint64_t half = i % 8 < 4 ? high : low;
    subkeys[i] = static_cast<Word>(half >> (48 - 16 * (i % 4)));
    if (i % 8 != 7) continue;
    const std::uint64_t carry = high >> 39;
    high = high << 25 | low >> 39;
    low = low << 25 | carry;
  }
}

/// The keys of the inverse cipher, which undoes the last step first. The middle words of the inner
/// rounds change places because the rounds exchange them.
void invert(Subkeys &inverse, const Subkeys &subkeys) noexcept {
  for (std::size_t round = 0; round <= kIdeaRounds; ++round) {
    const Word *const from = &subkeys[6 * (kIdeaRounds - round)];
    Word *const to = &inverse[6 * round];
    const bool outer = round == 0 || round == kIdeaRounds;
    to[0] = mul_inverse(from[0]);
    to[1] = add(0, 0U - from[outer ? 1 : 2]);
    to[2] = add(0, 0U - from[outer ? 2 : 1]);
    to[3] = mul_inverse(from[3]);
    if (round == kIdeaRounds) continue;
    to[4] = from[-2];
    to[5] = from[-1];
  }
}

}  // namespace

constinit const bulk::Ops bulk::idea_interleaved = bulk::Interleaved<Kernel>::ops();

constinit const bulk::Ops bulk::idea_avx2 = {
    .encrypt = idea_encrypt_avx2,
    .decrypt = idea_decrypt_avx2,
    .serial = bulk::Interleaved<Kernel>::serial,
};

}  // namespace zel

using namespace zel;

extern "C" {

int32_t IDEA_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  Wiped<std::array<Subkeys, 2>> subkeys{{}};
  expand((*subkeys)[0], key);
  invert((*subkeys)[1], (*subkeys)[0]);
  std::memcpy(round_keys, subkeys->data(), sizeof *subkeys);
  return ZEL_OK;
}

void IDEA_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void IDEA_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM idea = {
    .block_len = 8,
    .round_keys_len = 2 * kIdeaHalfLen,
    .MakeRoundKey = IDEA_MakeRoundKey,
    .EncryptBlock = IDEA_EncryptBlock,
    .DecryptBlock = IDEA_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_idea ZEL_HIDDEN_ALIAS("idea");
}
