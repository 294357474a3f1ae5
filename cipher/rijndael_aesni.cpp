// AES through the processor's AES instructions: eight blocks side by side, or one chain. FIPS 197.
#include <immintrin.h>

#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_AESNI
#include "cipher/rijndael_kernels.hpp"

namespace zel::aes {
namespace {

struct Xmm {
  using Vector = __m128i;
  using Block = __m128i;
  static constexpr std::size_t kBlocks = 1;

  ZEL_ISA_AESNI static Vector load(const std::uint8_t *from) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
  ZEL_ISA_AESNI static void store(std::uint8_t *to, Vector x) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), x);
  }
  ZEL_ISA_AESNI static Block load_block(const std::uint8_t *from) noexcept { return load(from); }
  ZEL_ISA_AESNI static void store_block(std::uint8_t *to, Block x) noexcept { store(to, x); }
  ZEL_ISA_AESNI static Vector key(const std::uint8_t *from) noexcept { return load(from); }
  ZEL_ISA_AESNI static Vector counters(std::uint64_t high, std::uint64_t low) noexcept {
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
  }
  ZEL_ISA_AESNI static Vector add(Vector x, std::size_t n) noexcept {
    return _mm_add_epi64(x, _mm_set_epi64x(0, static_cast<long long>(n)));
  }
  ZEL_ISA_AESNI static Vector swap(Vector x) noexcept {
    return _mm_shuffle_epi8(x, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  }
  ZEL_ISA_AESNI static Vector follow(Block block, const std::uint8_t *) noexcept { return block; }
  ZEL_ISA_AESNI static Vector bit_xor(Vector a, Vector b) noexcept { return _mm_xor_si128(a, b); }
  ZEL_ISA_AESNI static Vector enc(Vector x, Vector k) noexcept { return _mm_aesenc_si128(x, k); }
  ZEL_ISA_AESNI static Vector enc_last(Vector x, Vector k) noexcept {
    return _mm_aesenclast_si128(x, k);
  }
  ZEL_ISA_AESNI static Vector dec(Vector x, Vector k) noexcept { return _mm_aesdec_si128(x, k); }
  ZEL_ISA_AESNI static Vector dec_last(Vector x, Vector k) noexcept {
    return _mm_aesdeclast_si128(x, k);
  }
};

struct Unit {
  /// With the word in every column the row shift of the instruction changes nothing.
  ZEL_ISA_AESNI static std::uint32_t sub_word(std::uint32_t word) noexcept {
    const __m128i columns = _mm_set1_epi32(static_cast<int>(word));
    return static_cast<std::uint32_t>(
        _mm_cvtsi128_si32(_mm_aesenclast_si128(columns, _mm_setzero_si128())));
  }
  ZEL_ISA_AESNI static void invert_mix_columns(std::uint8_t *to,
                                               const std::uint8_t *from) noexcept {
    Xmm::store(to, _mm_aesimc_si128(Xmm::load(from)));
  }
};

/// The rounds of one link of a chain. Whatever is to be added to the result before the next link
/// goes into the key of the last round, so that a chain is nothing but rounds.
template <class Size>
ZEL_ISA_AESNI inline __m128i link(__m128i x, const std::uint8_t *keys, __m128i addend) noexcept {
  const __m128i last = _mm_xor_si128(Xmm::load(keys + kBlockLen * Size::kRounds), addend);
#pragma GCC unroll 13
  for (std::size_t r = 1; r < Size::kRounds; ++r)
    x = _mm_aesenc_si128(x, Xmm::load(keys + kBlockLen * r));
  return _mm_aesenclast_si128(x, last);
}

template <class Size>
ZEL_ISA_AESNI void encrypt_block(std::uint8_t *block, const void *schedule) noexcept {
  const auto *const keys = static_cast<const std::uint8_t *>(schedule);
  const __m128i x = _mm_xor_si128(Xmm::load(block), Xmm::load(keys));
  Xmm::store(block, link<Size>(x, keys, _mm_setzero_si128()));
}

template <class Size>
ZEL_ISA_AESNI void decrypt_block(std::uint8_t *block, const void *schedule) noexcept {
  const auto *const keys = static_cast<const std::uint8_t *>(schedule) + Size::kHalf;
  __m128i x = _mm_xor_si128(Xmm::load(block), Xmm::load(keys + kBlockLen * Size::kRounds));
#pragma GCC unroll 13
  for (std::size_t r = Size::kRounds - 1; r > 0; --r)
    x = _mm_aesdec_si128(x, Xmm::load(keys + kBlockLen * r));
  Xmm::store(block, _mm_aesdeclast_si128(x, Xmm::load(keys)));
}

/// CBC: between two links, x is the ciphertext block with the next plaintext block and the first
/// round key added.
template <class Size, bool kStore>
ZEL_ISA_AESNI __m128i cbc_chain(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                                const std::uint8_t *keys, __m128i reg) noexcept {
  const __m128i first = Xmm::load(keys);
  __m128i x = _mm_xor_si128(reg, _mm_xor_si128(first, Xmm::load(in)));
  for (; count > 1; --count) {
    in += kBlockLen;
    const __m128i next = _mm_xor_si128(first, Xmm::load(in));
    x = link<Size>(x, keys, next);
    if constexpr (kStore) {
      Xmm::store(out, _mm_xor_si128(x, next));
      out += kBlockLen;
    }
  }
  x = link<Size>(x, keys, _mm_setzero_si128());
  if constexpr (kStore) Xmm::store(out, x);
  return x;
}

template <class Size>
ZEL_ISA_AESNI void serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *chain) noexcept {
  using bulk::Chain;
  if (count == 0) return;
  const auto *const keys = static_cast<const std::uint8_t *>(schedule);
  const __m128i first = Xmm::load(keys);
  __m128i reg = Xmm::load(chain);
  switch (kind) {
    case Chain::kCbcEncrypt:
      reg = cbc_chain<Size, true>(out, in, count, keys, reg);
      break;
    case Chain::kCbcMac:
      reg = cbc_chain<Size, false>(nullptr, in, count, keys, reg);
      break;
    case Chain::kCfbEncrypt:
      reg = _mm_xor_si128(reg, first);
      for (; count > 0; --count, in += kBlockLen, out += kBlockLen) {
        reg = link<Size>(reg, keys, _mm_xor_si128(first, Xmm::load(in)));
        Xmm::store(out, _mm_xor_si128(reg, first));
      }
      reg = _mm_xor_si128(reg, first);
      break;
    case Chain::kOfb:
      reg = _mm_xor_si128(reg, first);
      for (; count > 0; --count, in += kBlockLen, out += kBlockLen) {
        reg = link<Size>(reg, keys, first);
        Xmm::store(out, _mm_xor_si128(_mm_xor_si128(reg, first), Xmm::load(in)));
      }
      reg = _mm_xor_si128(reg, first);
      break;
  }
  Xmm::store(chain, reg);
}

struct Counter {
  std::uint64_t high, low;
};

/// One block of counter mode; the result is the block of which a MAC is to be made.
template <class Size>
ZEL_ISA_AESNI inline __m128i counter_block(bulk::MacOf what, std::uint8_t *out,
                                           const std::uint8_t *in, const std::uint8_t *keys,
                                           Counter &counter) noexcept {
  const __m128i block = Xmm::swap(Xmm::counters(counter.high, counter.low));
  const __m128i from = Xmm::load(in);
  const __m128i to = link<Size>(_mm_xor_si128(block, Xmm::load(keys)), keys, from);
  Xmm::store(out, to);
  if (++counter.low == 0) ++counter.high;
  return what == bulk::MacOf::kInput ? from : to;
}

/// Two chains. The counter's has no link to wait for, so it runs ahead of the other and costs
/// nothing.
template <class Size>
ZEL_ISA_AESNI void counter_mac(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                               std::size_t count, const void *schedule, std::uint8_t *counter,
                               std::uint8_t *mac) noexcept {
  if (count == 0) return;
  const auto *keys = static_cast<const std::uint8_t *>(schedule);
  Counter value{load_be64(counter), load_be64(counter + 8)};
  __m128i x = _mm_xor_si128(_mm_xor_si128(Xmm::load(mac), Xmm::load(keys)),
                            counter_block<Size>(what, out, in, keys, value));
  for (std::size_t at = kBlockLen; at < count * kBlockLen; at += kBlockLen) {
    const __m128i text = counter_block<Size>(what, out + at, in + at, keys, value);
    __asm__("" : "+r"(keys));  // or the keys of both links are held in registers and x is not
    x = link<Size>(x, keys, _mm_xor_si128(Xmm::load(keys), text));
  }
  Xmm::store(mac, link<Size>(x, keys, _mm_setzero_si128()));
  store_be64(counter, value.high);
  store_be64(counter + 8, value.low);
}

template <class Size>
constexpr bulk::Ops ops() noexcept {
  using Blocks = Kernel<Xmm, Size>;
  return {.encrypt = Blocks::encrypt,
          .decrypt = Blocks::decrypt,
          .ctr = Blocks::ctr,
          .cbc_decrypt = Blocks::cbc_decrypt,
          .serial = serial<Size>,
          .counter_mac = counter_mac<Size>};
}

}  // namespace

void serial128_aesni(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *schedule, std::uint8_t *chain) noexcept {
  serial<Aes128>(kind, out, in, count, schedule, chain);
}

void serial256_aesni(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *schedule, std::uint8_t *chain) noexcept {
  serial<Aes256>(kind, out, in, count, schedule, chain);
}

void counter_mac128_aesni(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *counter,
                          std::uint8_t *mac) noexcept {
  counter_mac<Aes128>(what, out, in, count, schedule, counter, mac);
}

void counter_mac256_aesni(bulk::MacOf what, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *counter,
                          std::uint8_t *mac) noexcept {
  counter_mac<Aes256>(what, out, in, count, schedule, counter, mac);
}

const Engine aesni128{expand<Aes128, Unit>, encrypt_block<Aes128>, decrypt_block<Aes128>};
const Engine aesni256{expand<Aes256, Unit>, encrypt_block<Aes256>, decrypt_block<Aes256>};

}  // namespace zel::aes

namespace zel::bulk {

constinit const Ops rijndael128_aesni = aes::ops<aes::Aes128>();
constinit const Ops rijndael256_aesni = aes::ops<aes::Aes256>();

}  // namespace zel::bulk
