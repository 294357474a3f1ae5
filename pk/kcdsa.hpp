// What the files of KCDSA share: the steps of a signature on secrets, none of which branches on or
// indexes by a value, and the generators of the standard.
#pragma once

#include "pk/discrete_log.hpp"
#include "zel_cc/kcdsa.h"

namespace zel::pk::kcdsa {

inline Group group_of(const KCDSA_PARAM &param) noexcept { return {param.p, param.q, param.g}; }

/// s = x (k - e) mod q, and whether k = e, when the signature gives the nonce away. s may be any
/// operand.
bool respond(MINT &s, const MINT &k, const MINT &x, const MINT &e, const MINT &q) noexcept;

/// r = g^(1/x mod q) mod p, of the significant length of p; a missing inverse counts as zero.
/// Whether there is one is known without a branch. ZEL_ERR_NO_INVERSE, or ZEL_ERR_GENERIC: no
/// memory.
[[nodiscard]] std::int32_t public_key(MINT &r, const MINT &x, const Group &group) noexcept;

/// The hash-counter generator for a q of so many bits.
using Prng = std::int32_t (*)(std::uint8_t *out, std::uint32_t out_bits,
                              const std::uint8_t *seed_bytes, std::uint32_t seed_bits);
Prng prng_for(std::uint32_t q_bits) noexcept;

}  // namespace zel::pk::kcdsa
