// GHASH through carry-less multiplication, for any width of register. The including file defines
// ZEL_KERNEL_ISA and has the intrinsics, as for cipher/rijndael_kernels.hpp.
//
// `Lanes` describes one register: Vector, kBlocks, load, store, bit_xor; and in each half of 128
// bits by itself
//   multiply<which>(a, b)   the product of the halves of 64 bits that `which` names
//   swap(x), up(x), down(x) the halves exchanged, or moved up or down with zero behind
//   reverse(x)              bytes in the opposite order
//   repeat(block)           a block in each of its places
//   widen(block), fold(x)   a block in the first place; the sum of all places
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "cipher/ghash.hpp"

namespace zel::ghash {
namespace {

#define ZEL_KERNEL ZEL_KERNEL_ISA inline __attribute__((always_inline))

struct Xmm {
  using Vector = __m128i;
  static constexpr std::size_t kBlocks = 1;

  ZEL_KERNEL static Vector load(const std::uint8_t *from) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
  ZEL_KERNEL static void store(std::uint8_t *to, Vector x) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), x);
  }
  ZEL_KERNEL static Vector bit_xor(Vector a, Vector b) noexcept { return _mm_xor_si128(a, b); }
  template <int kWhich>
  ZEL_KERNEL static Vector multiply(Vector a, Vector b) noexcept {
    return _mm_clmulepi64_si128(a, b, kWhich);
  }
  ZEL_KERNEL static Vector swap(Vector x) noexcept { return _mm_shuffle_epi32(x, 0x4e); }
  ZEL_KERNEL static Vector up(Vector x) noexcept { return _mm_slli_si128(x, 8); }
  ZEL_KERNEL static Vector down(Vector x) noexcept { return _mm_srli_si128(x, 8); }
  ZEL_KERNEL static Vector reverse(Vector x) noexcept {
    return _mm_shuffle_epi8(x, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  }
  ZEL_KERNEL static Vector repeat(__m128i block) noexcept { return block; }
  ZEL_KERNEL static Vector widen(__m128i block) noexcept { return block; }
  ZEL_KERNEL static __m128i fold(Vector x) noexcept { return x; }
};

template <class Lanes>
class Kernel {
  using Vector = typename Lanes::Vector;
  static constexpr std::size_t kStride = Lanes::kBlocks * kBlockLen;

  /// A sum of products of 128 bits before its reduction.
  template <class L>
  struct Sum {
    typename L::Vector low, high, cross;
  };

  template <class L>
  ZEL_KERNEL static Sum<L> product(typename L::Vector a, typename L::Vector power,
                                   typename L::Vector power_sum) noexcept {
    return {L::template multiply<0x00>(a, power), L::template multiply<0x11>(a, power),
            L::template multiply<0x00>(L::bit_xor(a, L::swap(a)), power_sum)};
  }

  ZEL_KERNEL static void add(Sum<Lanes> &to, const Sum<Lanes> &more) noexcept {
    to.low = Lanes::bit_xor(to.low, more.low);
    to.high = Lanes::bit_xor(to.high, more.high);
    to.cross = Lanes::bit_xor(to.cross, more.cross);
  }

  /// Modulo the polynomial, with a factor x: 64 bits at a time are folded up.
  template <class L>
  ZEL_KERNEL static typename L::Vector reduce(const Sum<L> &sum) noexcept {
    const auto polynomial = L::repeat(_mm_set_epi64x(0, static_cast<long long>(0xc2ULL << 56)));
    const auto cross = L::bit_xor(sum.cross, L::bit_xor(sum.low, sum.high));
    const auto high = L::bit_xor(sum.high, L::down(cross));
    auto low = L::bit_xor(sum.low, L::up(cross));
    low = L::bit_xor(L::swap(low), L::template multiply<0x00>(low, polynomial));
    low = L::bit_xor(L::swap(low), L::template multiply<0x00>(low, polynomial));
    return L::bit_xor(low, high);
  }

  template <class L>
  ZEL_KERNEL static void keep(Powers &powers, std::size_t at, typename L::Vector x) noexcept {
    L::store(powers.value[at], x);
    L::store(powers.sum[at], L::bit_xor(x, L::swap(x)));
  }

  template <class L>
  ZEL_KERNEL static typename L::Vector multiply(typename L::Vector a,
                                                typename L::Vector b) noexcept {
    return reduce<L>(product<L>(a, b, L::bit_xor(b, L::swap(b))));
  }

  /// H divided by x: up by one bit, and the polynomial where a bit falls out.
  ZEL_KERNEL static __m128i divide_by_x(__m128i h) noexcept {
    const __m128i tops = _mm_srli_epi64(h, 63);
    const __m128i fell_out = _mm_sub_epi64(_mm_setzero_si128(), _mm_unpackhi_epi64(tops, tops));
    const __m128i doubled = _mm_or_si128(_mm_slli_epi64(h, 1), _mm_slli_si128(tops, 8));
    const __m128i inverse = _mm_set_epi64x(static_cast<long long>(0xc2ULL << 56), 1);
    return _mm_xor_si128(doubled, _mm_and_si128(fell_out, inverse));
  }

  /// The product of the blocks and the powers that end at `entry`, for one register of each.
  ZEL_KERNEL static Sum<Lanes> term(const Powers &powers, std::size_t entry, Vector x) noexcept {
    return product<Lanes>(x, Lanes::load(powers.value[entry]), Lanes::load(powers.sum[entry]));
  }

  ZEL_KERNEL static Vector blocks(const std::uint8_t *in) noexcept {
    return Lanes::reverse(Lanes::load(in));
  }

  /// Reduces `vectors` registers of blocks together. The first, which has to wait for `y`, comes
  /// last.
  ZEL_KERNEL static __m128i together(const Powers &powers, __m128i y, const std::uint8_t *in,
                                     std::size_t vectors) noexcept {
    const std::size_t first = kMaxPowers - vectors * Lanes::kBlocks;
    Sum<Lanes> sum{};
#pragma GCC unroll 16
    for (std::size_t i = 1; i < vectors; ++i)
      add(sum, term(powers, first + i * Lanes::kBlocks, blocks(in + i * kStride)));
    add(sum, term(powers, first, Lanes::bit_xor(blocks(in), Lanes::widen(y))));
    return reduce<Xmm>({Lanes::fold(sum.low), Lanes::fold(sum.high), Lanes::fold(sum.cross)});
  }

 public:
  ZEL_KERNEL_ISA static void fill(Powers &powers, const std::uint8_t *h,
                                  std::size_t blocks) noexcept {
    const __m128i first = divide_by_x(Xmm::reverse(Xmm::load(h)));
    keep<Xmm>(powers, kMaxPowers - 1, first);
    std::size_t have = 1;
    if (Lanes::kBlocks == 2) {
      keep<Xmm>(powers, kMaxPowers - 2, multiply<Xmm>(first, first));
      have = 2;
    }
    for (const std::size_t want = powers_for(blocks); have < want; have *= 2) {
      const Vector factor = Lanes::repeat(Xmm::load(powers.value[kMaxPowers - have]));
      for (std::size_t i = 0; i < have; i += Lanes::kBlocks) {
        const Vector x = Lanes::load(powers.value[kMaxPowers - have + i]);
        keep<Lanes>(powers, kMaxPowers - 2 * have + i, multiply<Lanes>(x, factor));
      }
    }
    powers.count = have;
  }

  ZEL_KERNEL_ISA static void absorb(const Powers &powers, std::uint8_t *y, const std::uint8_t *in,
                                    std::size_t count) noexcept {
    __m128i sum = Xmm::reverse(Xmm::load(y));
    if (powers.count == kMaxPowers) {
      for (; count >= kMaxPowers; count -= kMaxPowers, in += kMaxPowers * kBlockLen)
        sum = together(powers, sum, in, kMaxPowers / Lanes::kBlocks);
    }
    if (count % Lanes::kBlocks != 0) {
      sum = multiply<Xmm>(Xmm::bit_xor(sum, Xmm::reverse(Xmm::load(in))),
                          Xmm::load(powers.value[kMaxPowers - 1]));
      --count;
      in += kBlockLen;
    }
    while (count > 0) {
      const std::size_t now = std::min(count, powers.count);
      sum = together(powers, sum, in, now / Lanes::kBlocks);
      count -= now;
      in += now * kBlockLen;
    }
    Xmm::store(y, Xmm::reverse(sum));
  }
};

#undef ZEL_KERNEL

}  // namespace
}  // namespace zel::ghash
