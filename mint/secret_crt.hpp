// Chinese remaindering of secret residues, for RSA.
#pragma once

#include <cstdint>

#include "zel_cc/mint.h"

namespace zel::mint {

/// A number by its residues: a modulo p and b modulo q. Of `a` and `b` all words count that p and q
/// have room for, whatever their lengths, as power_secret leaves them.
struct Residues {
  const MINT *a;
  const MINT *p;
  const MINT *b;
  const MINT *q;
  const MINT *q_inverse;  ///< 1/q mod p
};

/// r = b + q ((a - b) q_inverse mod p), trimmed, in a time that the lengths of p, q and q_inverse
/// decide. r may be any operand; all of its words are set. H. L. Garner, "The residue number
/// system", IRE Transactions on Electronic Computers 8 (1959).
///
/// ZEL_ERR_GENERIC, with r zero: p is zero or even, or p q has more than 4160 bits.
[[nodiscard]] std::int32_t combine_secret(MINT &r, const Residues &residues) noexcept;

/// Whether a record holds the product of two secrets, that is whether it has 4160 bits at most. The
/// bit lengths of both show, and the answer.
[[nodiscard]] bool product_fits(const MINT &a, const MINT &b) noexcept;

}  // namespace zel::mint
