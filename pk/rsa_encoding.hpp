// EMSA-PKCS1-v1_5 in its two versions, and the signatures that are made of it.
// RFC 8017, sections 8.2 and 9.2; RFC 2437, sections 8.1 and 9.2.1.
#pragma once

#include <cstdint>

#include "pk/message.hpp"
#include "pk/rsa_primitive.hpp"

namespace zel::pk {

/// The encoded message of version 2.0 lacks the leading zero byte, so it is the same number.
struct EmsaVersion {
  std::uint32_t leading_zeros;
  std::int32_t too_short;  ///< result when the encoded message has no room
};
inline constexpr EmsaVersion kVersion21{1, ZEL_ERR_PKCS1_ENCODE};
inline constexpr EmsaVersion kVersion20{0, ZEL_ERR_GENERIC};

/// Encodes a message into em[em_len]. The hash may be null. On failure nothing is written.
[[nodiscard]] std::int32_t encode_emsa(std::uint8_t *em, std::uint32_t em_len,
                                       const Message &message, const HASH_ALGORITHM *hash,
                                       const EmsaVersion &version) noexcept;

/// Signs, all checks of the arguments included: pointers may be null.
[[nodiscard]] std::int32_t sign_emsa(MINT *signature, const Message &message,
                                     const RSA_PRIVATE_KEY *key, const HASH_ALGORITHM *hash,
                                     const EmsaVersion &version) noexcept;

/// Verifies likewise.
[[nodiscard]] std::int32_t verify_emsa(const MINT *signature, const Message &message,
                                       const RSA_PUBLIC_KEY *key, const HASH_ALGORITHM *hash,
                                       const EmsaVersion &version) noexcept;

}  // namespace zel::pk
