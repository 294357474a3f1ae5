#include "tools/zel/key_record.hpp"

#include <cstring>

namespace zel::tool {

Key::Key(KeyType key_type, KeyPart key_part)
    : type(key_type), part(key_part), octets(kSymmetricMost) {
  std::memset(&*numbers, 0, sizeof(Numbers));
}

std::uint32_t Key::bits() const noexcept {
  if (type == KeyType::kSymmetric) return static_cast<std::uint32_t>(8 * octets.bytes().size());
  static_assert(kN == 0 && kP == 0);
  return MINT_GetBitLength(&numbers->at[0]);
}

const char *name_of(KeyType type) {
  switch (type) {
    case KeyType::kRsa:
      return "RSA";
    case KeyType::kDsa:
      return "DSA";
    case KeyType::kKcdsa:
      return "KCDSA";
    case KeyType::kSymmetric:
      break;
  }
  return "symmetric";
}

std::string describe(const Key &key) {
  std::string text = name_of(key.type);
  if (key.type == KeyType::kSymmetric) {
    text += " key of ";
  } else if (key.part == KeyPart::kParameters) {
    text += " parameters of ";
  } else {
    text += key.is_private() ? " private key of " : " public key of ";
  }
  text += std::to_string(key.bits());
  if (key.type == KeyType::kDsa || key.type == KeyType::kKcdsa) {
    text += "/" + std::to_string(MINT_GetBitLength(&key[kQ]));
  }
  return text + " bits";
}

NumberBytes::NumberBytes(const MINT &number) noexcept : len_((MINT_GetBitLength(&number) + 7) / 8) {
  write_number(number, {buffer_->bytes, len_});
}

std::span<const std::uint8_t> NumberBytes::bytes() const noexcept { return {buffer_->bytes, len_}; }

void write_number(const MINT &number, std::span<std::uint8_t> out) noexcept {
  MINT_WriteLSNByteInByteArray(out.data(), static_cast<std::uint32_t>(out.size()), &number);
}

}  // namespace zel::tool
