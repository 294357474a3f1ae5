// What both versions of RSA encryption share.
#pragma once

#include "pk/oaep.hpp"
#include "pk/rsa_primitive.hpp"

namespace zel::pk {

/// The label in a record RSA_OAEP_LABEL; empty for none.
Bytes label_of(const void *record) noexcept;

/// out[k] = em[k] to the public exponent, in a time that does not depend on em, for a modulus of k
/// bytes. em starts with a zero byte, so it is below the modulus. ZEL_ERR_GENERIC, with nothing
/// written: the modulus is even, or there is no memory.
[[nodiscard]] std::int32_t encrypt_block(std::uint8_t *out, const std::uint8_t *em, std::uint32_t k,
                                         const RSA_PUBLIC_KEY &key) noexcept;

/// em[k] = in[k] to the private exponent.
[[nodiscard]] std::int32_t decrypt_block(std::uint8_t *em, const std::uint8_t *in, std::uint32_t k,
                                         const RSA_PRIVATE_KEY &key) noexcept;

}  // namespace zel::pk
