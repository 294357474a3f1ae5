// AES through the processor's AES instructions on 256-bit registers: sixteen blocks side by side.
// FIPS 197.
#include <immintrin.h>

#include "base/isa.hpp"
#include "cipher/algorithms.hpp"
#define ZEL_KERNEL_ISA ZEL_ISA_VAES
#include "cipher/rijndael_kernels.hpp"

namespace zel::aes {
namespace {

struct Ymm {
  using Vector = __m256i;
  using Block = __m128i;
  static constexpr std::size_t kBlocks = 2;

  ZEL_ISA_VAES static Vector load(const std::uint8_t *from) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(from));
  }
  ZEL_ISA_VAES static void store(std::uint8_t *to, Vector x) noexcept {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), x);
  }
  ZEL_ISA_VAES static Block load_block(const std::uint8_t *from) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
  ZEL_ISA_VAES static void store_block(std::uint8_t *to, Block x) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), x);
  }
  ZEL_ISA_VAES static Vector key(const std::uint8_t *from) noexcept {
    return _mm256_broadcastsi128_si256(load_block(from));
  }
  ZEL_ISA_VAES static Vector counters(std::uint64_t high, std::uint64_t low) noexcept {
    const auto h = static_cast<long long>(high);
    return _mm256_set_epi64x(h, static_cast<long long>(low + 1), h, static_cast<long long>(low));
  }
  ZEL_ISA_VAES static Vector add(Vector x, std::size_t n) noexcept {
    const auto more = static_cast<long long>(n);
    return _mm256_add_epi64(x, _mm256_set_epi64x(0, more, 0, more));
  }
  ZEL_ISA_VAES static Vector swap(Vector x) noexcept {
    return _mm256_shuffle_epi8(x, _mm256_broadcastsi128_si256(_mm_set_epi8(
                                      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15)));
  }
  ZEL_ISA_VAES static Vector follow(Block block, const std::uint8_t *from) noexcept {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(block), load_block(from), 1);
  }
  ZEL_ISA_VAES static Vector bit_xor(Vector a, Vector b) noexcept { return _mm256_xor_si256(a, b); }
  ZEL_ISA_VAES static Vector enc(Vector x, Vector k) noexcept { return _mm256_aesenc_epi128(x, k); }
  ZEL_ISA_VAES static Vector enc_last(Vector x, Vector k) noexcept {
    return _mm256_aesenclast_epi128(x, k);
  }
  ZEL_ISA_VAES static Vector dec(Vector x, Vector k) noexcept { return _mm256_aesdec_epi128(x, k); }
  ZEL_ISA_VAES static Vector dec_last(Vector x, Vector k) noexcept {
    return _mm256_aesdeclast_epi128(x, k);
  }
};

template <class Size>
constexpr bulk::Ops ops() noexcept {
  using Blocks = Kernel<Ymm, Size>;
  constexpr bool kShort = Size::kRounds == Aes128::kRounds;
  return {.encrypt = Blocks::encrypt,
          .decrypt = Blocks::decrypt,
          .ctr = Blocks::ctr,
          .cbc_decrypt = Blocks::cbc_decrypt,
          .serial = kShort ? serial128_aesni : serial256_aesni,
          .counter_mac = kShort ? counter_mac128_aesni : counter_mac256_aesni};
}

}  // namespace
}  // namespace zel::aes

namespace zel::bulk {

constinit const Ops rijndael128_vaes = aes::ops<aes::Aes128>();
constinit const Ops rijndael256_vaes = aes::ops<aes::Aes256>();

}  // namespace zel::bulk
