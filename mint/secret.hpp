// Arithmetic on secret operands: the time depends on the lengths alone, and nothing branches on or
// indexes by a value.
#pragma once

#include <cstdint>

#include "zel_cc/mint.h"

namespace zel::mint {

/// r = 1/a mod n for odd n, as of MINT_Inverse, except that r is not trimmed but has the
/// significant length of n, and is zero when there is no inverse. n is public, and so are all
/// lengths; the value of a, which may be above n, and the result are secret. a may be r; n may be
/// neither.
///
/// Whether there is an inverse is computed without a branch; a caller who branches on the status
/// makes it public. ZEL_ERR_GENERIC: n is zero or even, and r is zero then, or n is r or a.
[[nodiscard]] std::int32_t inverse_secret(MINT &r, const MINT &a, const MINT &n) noexcept;

/// r = a * b + c mod n for odd n. n is public, and so are all lengths; the values of a, b and c,
/// which may be above n, and the result are secret. Not trimmed: r has the significant length of n.
/// r may be an operand but n.
///
/// ZEL_ERR_GENERIC: n is zero or even, and r is zero then, or n is r.
[[nodiscard]] std::int32_t multiply_add_secret(MINT &r, const MINT &a, const MINT &b, const MINT &c,
                                               const MINT &n) noexcept;

/// Whether a < n. All lengths are public and the values secret, but for the answer.
[[nodiscard]] bool below_secret(const MINT &a, const MINT &n) noexcept;

}  // namespace zel::mint
