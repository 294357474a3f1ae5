// SEED: block cipher of 128-bit blocks, 128-bit keys and 16 rounds. TTAS.KO-12.0004, RFC 4269.
#include "cipher/seed.hpp"

#include <bit>

#include "base/bytes.hpp"
#include "base/cpu.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/seed_tables.hpp"

namespace zel {
namespace {

constexpr std::size_t kRounds = 16;
/// Two words a round, in host order.
constexpr std::size_t kRoundKeysLen = kRounds * 2 * sizeof(std::uint32_t);

using Tables = std::array<std::array<std::uint32_t, 256>, 4>;

/// What each byte of a word gives to the result of the G function. RFC 4269, section 2.2.
consteval Tables make_tables() {
  Tables tables{};
  for (std::size_t from = 0; from < 4; ++from)
    for (std::size_t x = 0; x < 256; ++x)
      for (std::size_t to = 0; to < 4; ++to) {
        const unsigned box = from % 2 == 0 ? kSeedS1[x] : kSeedS2[x];
        tables[from][x] |= (box & kSeedMasks[(from + to) % 4]) << (8 * to);
      }
  return tables;
}
constexpr Tables kTables = make_tables();
static_assert(kTables[0][0] == 0x2989a1a8);

/// Looks up tables by secrets: only where there is no AES unit, or where the build asked for it.
inline std::uint32_t g_tables(std::uint32_t word) noexcept {
  return kTables[0][word & 0xff] ^ kTables[1][word >> 8 & 0xff] ^ kTables[2][word >> 16 & 0xff] ^
         kTables[3][word >> 24];
}

struct Half {
  std::uint32_t high, low;
};

/// to ^= F(from, key of this round). RFC 4269, section 2.1.
inline void add_round(Half &to, const Half &from, const std::uint8_t *key) noexcept {
  std::uint32_t high = from.high ^ load_le32(key);
  std::uint32_t low = g_tables(high ^ from.low ^ load_le32(key + 4));
  high = g_tables(high + low);
  low = g_tables(low + high);
  to.high ^= high + low;
  to.low ^= low;
}

/// `keys` is the key of the first round, `step` the way to the next.
void crypt_tables(std::uint8_t *block, const std::uint8_t *keys, std::ptrdiff_t step) noexcept {
  Half left = {load_be32(block), load_be32(block + 4)};
  Half right = {load_be32(block + 8), load_be32(block + 12)};
  for (std::size_t round = 0; round < kRounds; round += 2, keys += 2 * step) {
    add_round(left, right, keys);
    add_round(right, left, keys + step);
  }
  store_be32(block, right.high);
  store_be32(block + 4, right.low);
  store_be32(block + 8, left.high);
  store_be32(block + 12, left.low);
}

void encrypt(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  if (!kSeedByTables && cpu::has(cpu::Feature::kAesni)) return seed_encrypt_aesni(block, keys);
  crypt_tables(block, keys, 8);
}

void decrypt(std::uint8_t *block, const std::uint8_t *keys) noexcept {
  if (!kSeedByTables && cpu::has(cpu::Feature::kAesni)) return seed_decrypt_aesni(block, keys);
  crypt_tables(block, keys + 8 * (kRounds - 1), -8);
}

/// The deepest that the key schedule goes on the stack, and some more.
constexpr std::size_t kStackDepth = 1024;

/// RFC 4269, section 2.3: the two halves of the key turn by a byte in turn.
template <class G>
void make_round_keys(std::uint8_t *out, const std::uint8_t *key, G g) noexcept {
  constexpr std::uint32_t kGoldenRatio = 0x9e3779b9;
  std::uint64_t left = load_be64(key);
  std::uint64_t right = load_be64(key + 8);
  for (std::size_t round = 0; round < kRounds; ++round, out += 8) {
    const std::uint32_t constant = std::rotl(kGoldenRatio, static_cast<int>(round));
    const auto high = static_cast<std::uint32_t>((left >> 32) + (right >> 32));
    const auto low = static_cast<std::uint32_t>(left - right);
    store_le32(out, g(high - constant));
    store_le32(out + 4, g(low + constant));
    if (round % 2 == 0)
      left = std::rotr(left, 8);
    else
      right = std::rotl(right, 8);
  }
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

int32_t SEED_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  auto *const out = static_cast<uint8_t *>(round_keys);
  return with_wiped_stack<kStackDepth>([&] {
    make_round_keys(out, key, cpu::has(cpu::Feature::kAesni) ? seed_g_aesni : g_tables);
    return ZEL_OK;
  });
}

void SEED_EncryptBlock(void *block, const void *round_keys) {
  encrypt(static_cast<uint8_t *>(block), static_cast<const uint8_t *>(round_keys));
}

void SEED_DecryptBlock(void *block, const void *round_keys) {
  decrypt(static_cast<uint8_t *>(block), static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM seed = {
    .block_len = 16,
    .round_keys_len = kRoundKeysLen,
    .MakeRoundKey = SEED_MakeRoundKey,
    .EncryptBlock = SEED_EncryptBlock,
    .DecryptBlock = SEED_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_seed ZEL_HIDDEN_ALIAS("seed");
}
