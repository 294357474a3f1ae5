// Powers with a secret exponent, for the signature schemes.
#pragma once

#include <cstdint>

#include "zel_cc/mint.h"

namespace zel::mint {

/// r = a^e mod N. The exponent is taken as a number of `bits` bits, a public bound such as the
/// length of the group order; bits above it do not count. r may be any operand.
struct SecretPower {
  MINT *r;
  const MINT *a;
  const MINT *e;
  const MINT *N;
  std::uint32_t bits;
};

/// What MINT_ExpWin gives, in a time that depends on the lengths of a and N and on `bits` alone.
///
/// ZEL_ERR_GENERIC, with r zero: N is zero or even, or there is no memory.
[[nodiscard]] std::int32_t power_secret(const SecretPower &power) noexcept;

[[nodiscard]] inline std::int32_t power_secret(MINT &r, const MINT &a, const MINT &e, const MINT &N,
                                               std::uint32_t bits) noexcept {
  return power_secret({&r, &a, &e, &N, bits});
}

/// Two independent powers, such as the halves of an RSA private operation, each with the result
/// that it has alone. ZEL_ERR_GENERIC when one of them has it.
[[nodiscard]] std::int32_t power_secret_two(const SecretPower &first,
                                            const SecretPower &second) noexcept;

}  // namespace zel::mint
