// The steps of a DSA signature on secrets, none of which branches on or indexes by a value.
#pragma once

#include "pk/discrete_log.hpp"
#include "zel_cc/dsa.h"

namespace zel::pk::dsa {

inline Group group_of(const DSA_PARAM &param) noexcept { return {param.p, param.q, param.g}; }

/// r = (g^k mod p) mod q, which is public once the signature is. False: no memory.
[[nodiscard]] bool commit(MINT &r, const MINT &k, const Group &group) noexcept;

/// s = (h + x r) / k mod q; zero where k has no inverse. s may be any operand.
void respond(MINT &s, const MINT &k, const MINT &x, const MINT &r, const MINT &h,
             const MINT &q) noexcept;

}  // namespace zel::pk::dsa
