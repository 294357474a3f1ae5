// ARIA: block cipher of 128-bit blocks with keys of 128, 192 and 256 bits. KS X 1213, RFC 5794.
#include "cipher/aria.hpp"

#include <bit>

#include "base/bytes.hpp"
#include "base/cpu.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/aria_tables.hpp"

namespace zel {
namespace {

/// A block as big-endian words. Loose words, not an array: they are to stay in registers.
struct Words {
  std::uint32_t a, b, c, d;
};

constexpr std::uint32_t swap_in_halves(std::uint32_t w) noexcept {
  return (w << 8 & 0xff00ff00) | (w >> 8 & 0x00ff00ff);
}

constexpr std::uint32_t reversed(std::uint32_t w) noexcept {
  return std::rotl(swap_in_halves(w), 16);
}

constexpr Words sum_across(const Words &w) noexcept {
  const std::uint32_t ab = w.a ^ w.b;
  const std::uint32_t cd = w.c ^ w.d;
  return {ab ^ w.c, w.a ^ cd, ab ^ w.d, w.b ^ cd};
}

/// The diffusion layer but for its first step, which replaces each byte of a word by the sum of the
/// other three. In even rounds the words come with their halves exchanged.
template <AriaRound kKind>
constexpr Words diffuse_summed(const Words &words) noexcept {
  const Words w = sum_across(words);
  if constexpr (kKind == AriaRound::kOdd)
    return sum_across({w.a, swap_in_halves(w.b), std::rotl(w.c, 16), reversed(w.d)});
  else
    return sum_across({std::rotl(w.a, 16), reversed(w.b), w.c, swap_in_halves(w.d)});
}

constexpr std::uint32_t sum_inside(std::uint32_t w) noexcept {
  return std::rotl(w, 8) ^ std::rotl(w, 16) ^ std::rotl(w, 24);
}

constexpr Words diffuse(const Words &w) noexcept {
  return diffuse_summed<AriaRound::kOdd>(
      {sum_inside(w.a), sum_inside(w.b), sum_inside(w.c), sum_inside(w.d)});
}

/// Whether `diffuse` sends each input byte to just the output bytes whose rows name it.
consteval bool diffuses_by_rows() {
  for (std::size_t from = 0; from < 16; ++from) {
    std::array<std::uint32_t, 4> in{};
    in[from / 4] = 1U << (24 - 8 * (from % 4));
    const Words words = diffuse({in[0], in[1], in[2], in[3]});
    const std::array<std::uint32_t, 4> out = {words.a, words.b, words.c, words.d};
    for (std::size_t to = 0; to < 16; ++to) {
      std::uint32_t expected = 0;
      for (const std::size_t term : kAriaDiffusion[to])
        if (term == from) expected = 1;
      if ((out[to / 4] >> (24 - 8 * (to % 4)) & 0xff) != expected) return false;
    }
  }
  return true;
}
static_assert(diffuses_by_rows());

/// The box of byte 0 to 3 of a word in odd rounds, its value written to the other three bytes.
consteval std::array<std::array<std::uint32_t, 256>, 4> make_tables() {
  std::array<std::array<std::uint32_t, 256>, 4> tables{};
  const std::array<const gf256::Box *, 4> boxes = {&kAriaS1, &kAriaS2, &kAriaX1, &kAriaX2};
  for (std::size_t i = 0; i < 4; ++i)
    for (std::size_t x = 0; x < 256; ++x)
      tables[i][x] = (0x01010101U ^ 0x01000000U >> (8 * i)) * (*boxes[i])[x];
  return tables;
}
constexpr auto kTables = make_tables();
static_assert(kTables[0][0] == 0x00636363 && kTables[1][0] == 0xe200e2e2);

template <std::size_t kPlace>
constexpr std::size_t byte_of(std::uint32_t w) noexcept {
  return w >> (24 - 8 * kPlace) & 0xff;
}

template <AriaRound kKind>
inline std::uint32_t substituted(std::uint32_t w) noexcept {
  constexpr std::size_t kFirst = kKind == AriaRound::kOdd ? 0 : 2;
  return kTables[kFirst][byte_of<0>(w)] ^ kTables[kFirst + 1][byte_of<1>(w)] ^
         kTables[kFirst ^ 2][byte_of<2>(w)] ^ kTables[(kFirst ^ 2) + 1][byte_of<3>(w)];
}

/// Substitution and diffusion. Looks up tables by secrets: only where there is no AES unit.
template <AriaRound kKind>
inline Words round(const Words &w) noexcept {
  return diffuse_summed<kKind>({substituted<kKind>(w.a), substituted<kKind>(w.b),
                                substituted<kKind>(w.c), substituted<kKind>(w.d)});
}

/// Substitution alone, as in an even round.
inline std::uint32_t last_substituted(std::uint32_t w) noexcept {
  return std::uint32_t{kAriaX1[byte_of<0>(w)]} << 24 | std::uint32_t{kAriaX2[byte_of<1>(w)]} << 16 |
         std::uint32_t{kAriaS1[byte_of<2>(w)]} << 8 | std::uint32_t{kAriaS2[byte_of<3>(w)]};
}

inline Words load(const std::uint8_t *from) noexcept {
  return {load_be32(from), load_be32(from + 4), load_be32(from + 8), load_be32(from + 12)};
}

inline void store(std::uint8_t *to, const Words &w) noexcept {
  store_be32(to, w.a);
  store_be32(to + 4, w.b);
  store_be32(to + 8, w.c);
  store_be32(to + 12, w.d);
}

inline Words keyed(const Words &w, const std::uint8_t *key) noexcept {
  const Words k = load(key);
  return {w.a ^ k.a, w.b ^ k.b, w.c ^ k.c, w.d ^ k.d};
}

void crypt_tables(std::uint8_t *block, const std::uint8_t *keys, unsigned rounds) noexcept {
  const std::uint8_t *const last = keys + std::size_t{16} * rounds;
  Words w = round<AriaRound::kOdd>(keyed(load(block), keys));
  for (keys += 16; keys + 16 != last; keys += 32) {
    w = round<AriaRound::kEven>(keyed(w, keys));
    w = round<AriaRound::kOdd>(keyed(w, keys + 16));
  }
  w = keyed(w, keys);
  w = {last_substituted(w.a), last_substituted(w.b), last_substituted(w.c), last_substituted(w.d)};
  store(block, keyed(w, last));
}

inline void crypt(void *block, const void *keys, unsigned rounds) noexcept {
  auto *const bytes = static_cast<std::uint8_t *>(block);
  const auto *const list = static_cast<const std::uint8_t *>(keys);
  if (cpu::has(cpu::Feature::kAesni))
    aria_crypt_aesni(bytes, list, rounds);
  else
    crypt_tables(bytes, list, rounds);
}

void keyed_round(std::uint8_t *block, const std::uint8_t *key, AriaRound kind) noexcept {
  if (cpu::has(cpu::Feature::kAesni)) return aria_round_aesni(block, key, kind);
  const Words w = keyed(load(block), key);
  store(block, kind == AriaRound::kOdd ? round<AriaRound::kOdd>(w) : round<AriaRound::kEven>(w));
}

using Block = std::array<std::uint8_t, 16>;

/// to = a ^ (b rotated right by `count` bits), as 128-bit big-endian numbers.
void add_rotated(std::uint8_t *to, const Block &a, const Block &b, unsigned count) noexcept {
  std::uint64_t high = load_be64(b.data());
  std::uint64_t low = load_be64(b.data() + 8);
  if (count >= 64) std::swap(high, low);
  count %= 64;
  store_be64(to, load_be64(a.data()) ^ (high >> count | low << (64 - count)));
  store_be64(to + 8, load_be64(a.data() + 8) ^ (low >> count | high << (64 - count)));
}

/// W0 to W3 of RFC 5794, section 2.2. `first` is the index of the first constant.
void make_halves(std::array<Block, 4> &w, const Block &right, std::size_t first) noexcept {
  for (std::size_t i = 1; i < 4; ++i) {
    Block constant;
    store_be64(constant.data(), kAriaConstants[(first + i - 1) % 3][0]);
    store_be64(constant.data() + 8, kAriaConstants[(first + i - 1) % 3][1]);
    w[i] = w[i - 1];
    keyed_round(w[i].data(), constant.data(), i == 2 ? AriaRound::kEven : AriaRound::kOdd);
    xor_bytes(w[i].data(), w[i].data(), i == 1 ? right.data() : w[i - 2].data(), 16);
  }
}

template <unsigned kRounds>
std::int32_t make_round_keys(void *round_keys, const std::uint8_t *key) noexcept {
  constexpr std::array<unsigned, 5> kRotations = {19, 31, 128 - 61, 128 - 31, 128 - 19};
  constexpr std::size_t kKeyLen = 16 + 4 * (kRounds - 12);
  Wiped<std::array<Block, 4>> w;
  Wiped<Block> right{Block{}};
  std::memcpy((*w)[0].data(), key, 16);
  std::memcpy(right->data(), key + 16, kKeyLen - 16);
  make_halves(*w, *right, (kRounds - 12) / 2);

  auto *const forward = static_cast<std::uint8_t *>(round_keys);
  std::uint8_t *const backward = forward + std::size_t{16} * (kRounds + 1);
  for (std::size_t i = 0; i <= kRounds; ++i)
    add_rotated(forward + 16 * i, (*w)[i % 4], (*w)[(i + 1) % 4], kRotations[i / 4]);
  for (std::size_t i = 0; i <= kRounds; ++i) {
    const Words key_words = load(forward + 16 * (kRounds - i));
    store(backward + 16 * i, i == 0 || i == kRounds ? key_words : diffuse(key_words));
  }
  return ZEL_OK;
}

/// The deepest that a key schedule goes on the stack, and some more.
constexpr std::size_t kStackDepth = 1024;

template <unsigned kRounds>
std::int32_t wiped_round_keys(void *round_keys, const std::uint8_t *key) noexcept {
  return with_wiped_stack<kStackDepth>([&] { return make_round_keys<kRounds>(round_keys, key); });
}

/// Where the decryption keys begin.
template <unsigned kRounds>
const void *second_half(const void *round_keys) noexcept {
  return static_cast<const std::uint8_t *>(round_keys) + std::size_t{16} * (kRounds + 1);
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

void ARIA_EncryptDecryptBlock_(void *block, const void *keys) { crypt(block, keys, 12); }
void ARIA192_EncryptDecryptBlock_(void *block, const void *keys) { crypt(block, keys, 14); }
void ARIA256_EncryptDecryptBlock_(void *block, const void *keys) { crypt(block, keys, 16); }

int32_t ARIA_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  return wiped_round_keys<12>(round_keys, key);
}
void ARIA_EncryptBlock(void *block, const void *round_keys) {
  ARIA_EncryptDecryptBlock_(block, round_keys);
}
void ARIA_DecryptBlock(void *block, const void *round_keys) {
  ARIA_EncryptDecryptBlock_(block, second_half<12>(round_keys));
}

int32_t ARIA192_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  return wiped_round_keys<14>(round_keys, key);
}
void ARIA192_EncryptBlock(void *block, const void *round_keys) {
  ARIA192_EncryptDecryptBlock_(block, round_keys);
}
void ARIA192_DecryptBlock(void *block, const void *round_keys) {
  ARIA192_EncryptDecryptBlock_(block, second_half<14>(round_keys));
}

int32_t ARIA256_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t /*key_len*/) {
  return wiped_round_keys<16>(round_keys, key);
}
void ARIA256_EncryptBlock(void *block, const void *round_keys) {
  ARIA256_EncryptDecryptBlock_(block, round_keys);
}
void ARIA256_DecryptBlock(void *block, const void *round_keys) {
  ARIA256_EncryptDecryptBlock_(block, second_half<16>(round_keys));
}

constinit const BCIPHER_ALGORITHM aria = {
    .block_len = 16,
    .round_keys_len = 416,
    .MakeRoundKey = ARIA_MakeRoundKey,
    .EncryptBlock = ARIA_EncryptBlock,
    .DecryptBlock = ARIA_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_aria ZEL_HIDDEN_ALIAS("aria");

constinit const BCIPHER_ALGORITHM aria192 = {
    .block_len = 16,
    .round_keys_len = 480,
    .MakeRoundKey = ARIA192_MakeRoundKey,
    .EncryptBlock = ARIA192_EncryptBlock,
    .DecryptBlock = ARIA192_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_aria192 ZEL_HIDDEN_ALIAS("aria192");

constinit const BCIPHER_ALGORITHM aria256 = {
    .block_len = 16,
    .round_keys_len = 544,
    .MakeRoundKey = ARIA256_MakeRoundKey,
    .EncryptBlock = ARIA256_EncryptBlock,
    .DecryptBlock = ARIA256_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_aria256 ZEL_HIDDEN_ALIAS("aria256");
}
