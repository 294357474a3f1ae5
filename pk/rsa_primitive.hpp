// The RSA primitives for the schemes: operations on numbers, and numbers as octets of a fixed
// width. RFC 8017, sections 4 and 5.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zel_cc/rsa.h"

namespace zel::pk {

/// Bytes of the longest modulus.
inline constexpr std::uint32_t kMaxModulusLen = ZEL_MINT_BYTES;
/// Room for an encoded message.
using Octets = std::uint8_t[kMaxModulusLen];

/// Stack below an operation on secrets where compilers leave limbs.
inline constexpr std::size_t kStackDepth = 16384;

/// Bytes of a modulus.
inline std::uint32_t modulus_len(const MINT &n) noexcept { return (MINT_GetBitLength(&n) + 7) / 8; }

/// s = m^d mod n, as of RSA_SP1; every word of s is set. On failure nothing is touched.
[[nodiscard]] std::int32_t private_operation(MINT &s, const MINT &m,
                                             const RSA_PRIVATE_KEY &key) noexcept;

/// m = s^e mod n, as of RSA_VP1.
[[nodiscard]] std::int32_t public_operation(MINT &m, const MINT &s,
                                            const RSA_PUBLIC_KEY &key) noexcept;

/// a = the big-endian number bytes[len]; every word of a is set.
void octets_to_integer(MINT &a, const std::uint8_t *bytes, std::uint32_t len) noexcept;

/// The low `len` bytes of a secret of which every word is set, big-endian, len <= kMaxModulusLen.
void secret_to_octets(std::uint8_t *bytes, std::uint32_t len, const MINT &a) noexcept;

/// data ^= MGF1(seed). False, with the data as far as it came, where hashing is refused.
/// RFC 8017, appendix B.2.1.
[[nodiscard]] bool apply_mask(std::uint8_t *data, std::uint32_t len, const std::uint8_t *seed,
                              std::uint32_t seed_len, const HASH_ALGORITHM &hash) noexcept;

/// Draws a number of `len` bytes, at its full width, from libc's generator.
void draw_octets(std::uint8_t *bytes, std::uint32_t len) noexcept;

}  // namespace zel::pk
