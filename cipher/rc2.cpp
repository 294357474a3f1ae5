// RC2: block cipher of four 16-bit words, with keys of 1 to 128 bytes and an effective key length
// of its own. RFC 2268.
#include <algorithm>
#include <array>
#include <bit>

#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/interleave.hpp"
#include "cipher/rc2_tables.hpp"
#include "cipher/words16.hpp"
#include "core/gate.hpp"

namespace zel {
namespace {

constexpr std::size_t kMaxKeyLen = 128;
constexpr unsigned kMaxEffectiveBits = 1024;
constexpr std::array<int, 4> kRotations = {1, 2, 3, 5};
/// A mashing round comes after this many mixing rounds, and again before as many from the end.
constexpr std::size_t kOuterMixes = 5;
constexpr std::size_t kMixes = 16;

inline std::uint16_t round_key(const std::uint8_t *keys, std::size_t i) noexcept {
  return load_le<std::uint16_t>(keys + 2 * i);
}

/// One block at a time.
struct Scalar {
  std::uint16_t w[4];

  void load(const std::uint8_t *in) noexcept { std::memcpy(w, in, sizeof w); }
  void store(std::uint8_t *out) const noexcept { std::memcpy(out, w, sizeof w); }

  std::uint16_t chosen(std::size_t i) const noexcept {
    const unsigned mask = w[(i + 3) % 4];
    return static_cast<std::uint16_t>((w[(i + 2) % 4] & mask) + (w[(i + 1) % 4] & ~mask));
  }
  template <std::size_t i>
  void mix(std::uint16_t key) noexcept {
    w[i] = std::rotl(static_cast<std::uint16_t>(w[i] + key + chosen(i)), kRotations[i]);
  }
  template <std::size_t i>
  void unmix(std::uint16_t key) noexcept {
    w[i] = static_cast<std::uint16_t>(std::rotr(w[i], kRotations[i]) - key - chosen(i));
  }
  std::uint16_t looked_up(std::size_t i, const std::uint8_t *keys) const noexcept {
    return round_key(keys, w[(i + 3) % 4] & 63);
  }
  template <std::size_t i>
  void mash(const std::uint8_t *keys) noexcept {
    w[i] = static_cast<std::uint16_t>(w[i] + looked_up(i, keys));
  }
  template <std::size_t i>
  void unmash(const std::uint8_t *keys) noexcept {
    w[i] = static_cast<std::uint16_t>(w[i] - looked_up(i, keys));
  }
};

/// Eight blocks side by side; only the words that the mashing rounds look up leave their registers.
struct Vector {
  Words16 words;

  void load(const std::uint8_t *in) noexcept { words = load_words16(in); }
  void store(std::uint8_t *out) const noexcept { store_words16(out, words); }

  __m128i chosen(std::size_t i) const noexcept {
    const __m128i mask = words.w[(i + 3) % 4];
    return _mm_add_epi16(_mm_and_si128(mask, words.w[(i + 2) % 4]),
                         _mm_andnot_si128(mask, words.w[(i + 1) % 4]));
  }
  template <std::size_t i>
  void mix(std::uint16_t key) noexcept {
    const __m128i keyed = _mm_add_epi16(words.w[i], _mm_set1_epi16(static_cast<short>(key)));
    const __m128i sum = _mm_add_epi16(keyed, chosen(i));
    words.w[i] =
        _mm_or_si128(_mm_slli_epi16(sum, kRotations[i]), _mm_srli_epi16(sum, 16 - kRotations[i]));
  }
  template <std::size_t i>
  void unmix(std::uint16_t key) noexcept {
    const __m128i turned = _mm_or_si128(_mm_srli_epi16(words.w[i], kRotations[i]),
                                        _mm_slli_epi16(words.w[i], 16 - kRotations[i]));
    words.w[i] =
        _mm_sub_epi16(_mm_sub_epi16(turned, _mm_set1_epi16(static_cast<short>(key))), chosen(i));
  }
  __m128i looked_up(std::size_t i, const std::uint8_t *keys) const noexcept {
    const __m128i index = _mm_and_si128(words.w[(i + 3) % 4], _mm_set1_epi16(63));
    __m128i found = _mm_setzero_si128();
    bulk::each<8>([&](auto lane) {
      const auto at = static_cast<std::size_t>(_mm_extract_epi16(index, lane));
      found = _mm_insert_epi16(found, round_key(keys, at), lane);
    });
    return found;
  }
  template <std::size_t i>
  void mash(const std::uint8_t *keys) noexcept {
    words.w[i] = _mm_add_epi16(words.w[i], looked_up(i, keys));
  }
  template <std::size_t i>
  void unmash(const std::uint8_t *keys) noexcept {
    words.w[i] = _mm_sub_epi16(words.w[i], looked_up(i, keys));
  }
};

struct Kernel {
  static constexpr std::size_t kBlockLen = 8;
  static constexpr std::size_t kLanes = 16;

  /// One block, or two groups of eight.
  template <std::size_t N>
  using Groups = std::conditional_t<N == 1, Scalar[1], Vector[2]>;
  static constexpr std::size_t kGroupLen = 64;

  template <std::size_t N>
  static void encrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    constexpr std::size_t kGroups = std::extent_v<Groups<N>>;
    Groups<N> x;
    bulk::each<kGroups>([&](auto g) { x[g].load(in + kGroupLen * g); });
    for (std::size_t round = 0; round < kMixes; ++round) {
      bulk::each<4>([&](auto i) {
        const std::uint16_t key = round_key(keys, 4 * round + i);
        bulk::each<kGroups>([&](auto g) { x[g].template mix<i>(key); });
      });
      if (round != kOuterMixes - 1 && round != kMixes - kOuterMixes - 1) continue;
      bulk::each<4>(
          [&](auto i) { bulk::each<kGroups>([&](auto g) { x[g].template mash<i>(keys); }); });
    }
    bulk::each<kGroups>([&](auto g) { x[g].store(out + kGroupLen * g); });
  }

  template <std::size_t N>
  static void decrypt(std::uint8_t *out, const std::uint8_t *in,
                      const std::uint8_t *keys) noexcept {
    constexpr std::size_t kGroups = std::extent_v<Groups<N>>;
    Groups<N> x;
    bulk::each<kGroups>([&](auto g) { x[g].load(in + kGroupLen * g); });
    for (std::size_t round = kMixes; round-- > 0;) {
      bulk::each<4>([&](auto last) {
        constexpr std::size_t i = 3 - last;
        const std::uint16_t key = round_key(keys, 4 * round + i);
        bulk::each<kGroups>([&](auto g) { x[g].template unmix<i>(key); });
      });
      if (round != kOuterMixes && round != kMixes - kOuterMixes) continue;
      bulk::each<4>([&](auto last) {
        bulk::each<kGroups>([&](auto g) { x[g].template unmash<3 - last>(keys); });
      });
    }
    bulk::each<kGroups>([&](auto g) { x[g].store(out + kGroupLen * g); });
  }
};

/// RFC 2268, section 2. `bits` is the effective key length, 1 to 1024.
void make_round_keys(std::uint8_t *round_keys, const std::uint8_t *key, std::size_t len,
                     unsigned bits) noexcept {
  Wiped<std::array<std::uint8_t, kMaxKeyLen>> buffer;
  std::uint8_t *const bytes = buffer->data();
  std::memcpy(bytes, key, len);
  for (std::size_t i = len; i < kMaxKeyLen; ++i)
    bytes[i] = kRc2PiTable[(bytes[i - 1] + bytes[i - len]) & 0xff];
  const std::size_t effective = (bits + 7) / 8;
  const unsigned mask = 0xffU >> (8 * effective - bits);
  std::uint8_t *const first = bytes + kMaxKeyLen - effective;
  *first = kRc2PiTable[*first & mask];
  for (std::size_t i = kMaxKeyLen - effective; i-- > 0;)
    bytes[i] = kRc2PiTable[bytes[i + 1] ^ bytes[i + effective]];
  std::memcpy(round_keys, bytes, kMaxKeyLen);
}

}  // namespace

constinit const bulk::Ops bulk::rc2_interleaved = bulk::Interleaved<Kernel>::ops();

}  // namespace zel

using namespace zel;

extern "C" {

int32_t RC2_MakeRoundKey(void *round_keys, const uint8_t *key, uint32_t key_len) {
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  const uint32_t given_len = key_len & 0xffff;
  const uint32_t given_bits = key_len >> 16;
  const std::size_t len =
      given_len == 0 ? kMaxKeyLen : std::min<std::size_t>(given_len, kMaxKeyLen);
  const std::size_t bits = given_bits == 0 ? 8 * len : given_bits;
  make_round_keys(static_cast<uint8_t *>(round_keys), key, len,
                  std::min(static_cast<unsigned>(bits), kMaxEffectiveBits));
  return ZEL_OK;
}

void RC2_EncryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::encrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

void RC2_DecryptBlock(void *block, const void *round_keys) {
  if (gate::approved_only()) return;
  auto *const bytes = static_cast<uint8_t *>(block);
  Kernel::decrypt<1>(bytes, bytes, static_cast<const uint8_t *>(round_keys));
}

constinit const BCIPHER_ALGORITHM rc2 = {
    .block_len = 8,
    .round_keys_len = kMaxKeyLen,
    .MakeRoundKey = RC2_MakeRoundKey,
    .EncryptBlock = RC2_EncryptBlock,
    .DecryptBlock = RC2_DecryptBlock,
    .AddPadding = nullptr,
    .RemovePadding = nullptr,
};
extern const BCIPHER_ALGORITHM zel_own_rc2 ZEL_HIDDEN_ALIAS("rc2");
}
