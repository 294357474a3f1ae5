// Several independent blocks side by side through one scalar cipher, so that the processor always
// has another block to work on while one waits for a table or a multiplication.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "cipher/bulk.hpp"

namespace zel::bulk {

/// Calls f(0) ... f(N - 1), written out: the index is a constant in each.
template <std::size_t N, class F>
inline __attribute__((always_inline)) void each(F &&f) noexcept {
  [&f]<std::size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
    (f(std::integral_constant<std::size_t, I>{}), ...);
  }
  (std::make_index_sequence<N>{});
}

/// Fast paths made of a kernel:
///
///   static constexpr std::size_t kBlockLen;  // bytes
///   static constexpr std::size_t kLanes;     // blocks that suit the processor best
///   // N consecutive blocks; every block is read before the first is written; no alignment.
///   template <std::size_t N> static void encrypt(uint8_t *out, const uint8_t *in,
///                                                const uint8_t *round_keys) noexcept;
///   template <std::size_t N> static void decrypt(...) noexcept;
///
/// The kernel's lanes are best written as arrays of N words and loops over each<N>.
template <class Kernel>
struct Interleaved {
  static constexpr std::size_t kBlockLen = Kernel::kBlockLen;
  static constexpr std::size_t kStep = Kernel::kLanes * kBlockLen;

  static void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *round_keys) noexcept {
    const auto *keys = static_cast<const std::uint8_t *>(round_keys);
    for (; count >= Kernel::kLanes; count -= Kernel::kLanes, in += kStep, out += kStep)
      Kernel::template encrypt<Kernel::kLanes>(out, in, keys);
    for (; count > 0; --count, in += kBlockLen, out += kBlockLen)
      Kernel::template encrypt<1>(out, in, keys);
  }

  static void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                      const void *round_keys) noexcept {
    const auto *keys = static_cast<const std::uint8_t *>(round_keys);
    for (; count >= Kernel::kLanes; count -= Kernel::kLanes, in += kStep, out += kStep)
      Kernel::template decrypt<Kernel::kLanes>(out, in, keys);
    for (; count > 0; --count, in += kBlockLen, out += kBlockLen)
      Kernel::template decrypt<1>(out, in, keys);
  }

  static void serial(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                     const void *round_keys, std::uint8_t *chain) noexcept {
    const auto *keys = static_cast<const std::uint8_t *>(round_keys);
    constexpr std::integral_constant<std::size_t, kBlockLen> kLen;
    serial_blocks(kind, out, in, count, chain, kLen,
                  [keys](std::uint8_t *block) { Kernel::template encrypt<1>(block, block, keys); });
  }

  static constexpr Ops ops() noexcept {
    Ops result;
    result.encrypt = encrypt;
    result.decrypt = decrypt;
    result.serial = serial;
    return result;
  }
};

}  // namespace zel::bulk
