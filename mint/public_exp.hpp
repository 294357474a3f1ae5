// The product of two powers of public values, for signature verification.
#pragma once

#include <cstdint>

#include "zel_cc/mint.h"

namespace zel::mint {

/// r = a^e * b^f mod N, trimmed, for odd N and public values: the time shows them. Little slower
/// than one power with the longer exponent. r may be any operand.
///
/// ZEL_ERR_GENERIC, with r zero: N is zero or even, or there is no memory.
[[nodiscard]] std::int32_t power_product(MINT &r, const MINT &a, const MINT &e, const MINT &b,
                                         const MINT &f, const MINT &N) noexcept;

}  // namespace zel::mint
