// What the known-answer tests of the authenticated modes share.
#pragma once

#include "core/cipher_key.hpp"
#include "core/known_answer.hpp"
#include "zel_cc/bcipher_auth.h"

namespace zel {

/// One message, and its ciphertext with the tag behind it.
struct AuthAnswer {
  std::span<const std::uint8_t> nonce;
  std::span<const std::uint8_t> aad;
  std::span<const std::uint8_t> message;
  std::span<const std::uint8_t> answer;
};

/// Whether a message enciphers to its answer.
inline bool enciphers(const Check &check, const BCIPHER_ALGORITHM &cipher, std::uint8_t mode,
                      const CipherKey &key, const AuthAnswer &data) noexcept {
  constexpr std::uint32_t kRoom = 64;
  const auto len = [](std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(bytes.size());
  };
  BCIPHER_CONTEXT context;
  std::array<std::uint8_t, kRoom> out;
  std::uint32_t out_len = 0;
  return key.loaded() && data.answer.size() <= kRoom &&
         BCIPHER_Initialize(&context, mode, nullptr, &cipher) == ZEL_OK &&
         BCIPHER_EncryptAuth(out.data(), &out_len, data.message.data(), len(data.message),
                             data.aad.data(), len(data.aad), data.nonce.data(), len(data.nonce),
                             &context, key.get(), len(data.answer) - len(data.message)) == ZEL_OK &&
         check.equal(out.data(), out_len, data.answer);
}

}  // namespace zel
