// Loads, stores and runs of bytes, at any alignment.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace zel {

template <class Word>
inline Word byte_swap(Word value) noexcept {
  static_assert(std::is_unsigned_v<Word>);
  if constexpr (sizeof(Word) == 2) return __builtin_bswap16(value);
  if constexpr (sizeof(Word) == 4) return __builtin_bswap32(value);
  if constexpr (sizeof(Word) == 8) return __builtin_bswap64(value);
}

/// The machine is little-endian; so are these, without a swap.
template <class Word>
inline Word load_le(const std::uint8_t *from) noexcept {
  static_assert(std::endian::native == std::endian::little);
  Word value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <class Word>
inline void store_le(std::uint8_t *to, Word value) noexcept {
  std::memcpy(to, &value, sizeof value);
}

template <class Word>
inline Word load_be(const std::uint8_t *from) noexcept {
  return byte_swap(load_le<Word>(from));
}

template <class Word>
inline void store_be(std::uint8_t *to, Word value) noexcept {
  store_le(to, byte_swap(value));
}

inline std::uint32_t load_le32(const std::uint8_t *from) noexcept {
  return load_le<std::uint32_t>(from);
}
inline std::uint64_t load_le64(const std::uint8_t *from) noexcept {
  return load_le<std::uint64_t>(from);
}
inline std::uint32_t load_be32(const std::uint8_t *from) noexcept {
  return load_be<std::uint32_t>(from);
}
inline std::uint64_t load_be64(const std::uint8_t *from) noexcept {
  return load_be<std::uint64_t>(from);
}
inline void store_le32(std::uint8_t *to, std::uint32_t value) noexcept { store_le(to, value); }
inline void store_le64(std::uint8_t *to, std::uint64_t value) noexcept { store_le(to, value); }
inline void store_be32(std::uint8_t *to, std::uint32_t value) noexcept { store_be(to, value); }
inline void store_be64(std::uint8_t *to, std::uint64_t value) noexcept { store_be(to, value); }

/// 16 bytes at any alignment, for copies and masks that every x86-64 does in one register.
typedef std::uint8_t Bytes16 __attribute__((vector_size(16)));

inline Bytes16 load_bytes16(const void *from) noexcept {
  Bytes16 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}
inline void store_bytes16(void *to, Bytes16 value) noexcept {
  std::memcpy(to, &value, sizeof value);
}

/// Zeroes a short run of bytes. For memset of a known length compilers choose string instructions,
/// whose start alone takes longer than all these stores.
template <std::size_t kLen>
inline void zero(void *to) noexcept {
  auto *const bytes = static_cast<std::uint8_t *>(to);
  constexpr std::size_t kWhole = kLen / sizeof(Bytes16);
  if constexpr (kWhole != 0) {
#pragma GCC unroll 32
    for (std::size_t i = 0; i < kWhole; ++i) {
      store_bytes16(bytes + i * sizeof(Bytes16), Bytes16{});
      __asm__("" : : "r"(bytes) : "memory");  // or the loop is taken for a memset
    }
    if constexpr (kLen % sizeof(Bytes16) != 0) {
      store_bytes16(bytes + kLen - sizeof(Bytes16), Bytes16{});
    }
  } else {
    std::memset(bytes, 0, kLen);
  }
}

/// to[i] = a[i] ^ b[i]; `to` may be `a` or `b`.
inline void xor_bytes(std::uint8_t *to, const std::uint8_t *a, const std::uint8_t *b,
                      std::size_t len) noexcept {
  std::size_t i = 0;
  for (; i + 16 <= len; i += 16)
    store_bytes16(to + i, load_bytes16(a + i) ^ load_bytes16(b + i));
  for (; i + 8 <= len; i += 8)
    store_le64(to + i, load_le64(a + i) ^ load_le64(b + i));
  for (; i < len; ++i)
    to[i] = static_cast<std::uint8_t>(a[i] ^ b[i]);
}

template <class... Pointer>
inline bool any_null(Pointer... pointer) noexcept {
  return (... || (pointer == nullptr));
}

}  // namespace zel
