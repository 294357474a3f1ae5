// AES through the processor's AES instructions: eight blocks side by side, or one chain. FIPS 197.
#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#include "cipher/lanes_aesni.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_AESNI
#include "cipher/chain_kernel.hpp"
#include "cipher/rijndael_kernels.hpp"

namespace zel::aes {
namespace {

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

/// The rounds of one link of a chain, with `addend` in the key of the last one.
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

/// The same as chain_kernel.hpp takes it.
template <class Size>
struct Link {
  ZEL_ISA_AESNI static __m128i first(const std::uint8_t *keys) noexcept { return Xmm::load(keys); }
  ZEL_ISA_AESNI static __m128i run(__m128i x, const std::uint8_t *keys, __m128i addend) noexcept {
    return link<Size>(x, keys, addend);
  }
};

template <class Size>
ZEL_ISA_AESNI void serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in,
                          std::size_t count, const void *schedule, std::uint8_t *chain) noexcept {
  const auto *const keys = static_cast<const std::uint8_t *>(schedule);
  chain::serial<Link<Size>>(kind, out, in, count, keys, chain);
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
