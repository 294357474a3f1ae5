#include "tools/zel/ciphers.hpp"

#include <algorithm>
#include <array>

#include "tools/zel/failure.hpp"
#include "zel_cc/ciphers.h"

namespace zel::tool {
namespace {

const std::array kCiphers{
    Cipher{"aria-128", &aria, 16, 16, 1, true, "RFC 5794"},
    Cipher{"aria-192", &aria192, 24, 24, 1, true, "RFC 5794"},
    Cipher{"aria-256", &aria256, 32, 32, 1, true, "RFC 5794"},
    Cipher{"seed", &seed, 16, 16, 1, true, "RFC 4269"},
    Cipher{"aes-128", &rijndael, 16, 16, 1, false, "FIPS 197"},
    Cipher{"aes-256", &rijndael256, 32, 32, 1, false, "FIPS 197"},
    Cipher{"des", &des, 8, 8, 1, false, "FIPS 46-3"},
    Cipher{"des-ede", &tdes, 16, 16, 1, false, "SP 800-67"},
    Cipher{"des-ede3", &tdes, 24, 24, 1, false, "SP 800-67"},
    Cipher{"bf", &blowfish, 4, 32, 4, false, "Schneier, 1993"},
    Cipher{"cast5", &cast128, 16, 16, 1, false, "RFC 2144"},
    Cipher{"idea", &idea, 16, 16, 1, false, "Lai and Massey, 1991"},
    Cipher{"rc2", &rc2, 1, 32, 1, false, "RFC 2268"},
    Cipher{"rc5", &rc5, 1, 32, 1, false, "RFC 2040"},
    Cipher{"tavo", &tavo, 16, 16, 1, false, "docs/tavo.md"},
    Cipher{"tavoold", &tavoold, 16, 16, 1, false, "docs/tavo.md"},
    Cipher{"aesni-128", &aesni, 16, 16, 1, false, "FIPS 197, instructions"},
    Cipher{"aesni-256", &aesni256, 32, 32, 1, false, "FIPS 197, instructions"},
    Cipher{"rc4", nullptr, 1, 256, 1, false, "Rivest, 1987"},
};

// Full-block feedback under the name "cfb" is the streaming mode: the same bytes, in any pieces.
constexpr std::array kModes{
    Mode{"ecb", ZEL_MODE_ECB, true, false},         Mode{"cbc", ZEL_MODE_CBC, true, false},
    Mode{"cfb", ZEL_MODE_CFB_STREAM, false, false}, Mode{"cfb8", ZEL_MODE_CFB8, false, false},
    Mode{"cfb1", ZEL_MODE_CFB1, false, false},      Mode{"ofb", ZEL_MODE_OFB, false, false},
    Mode{"ctr", ZEL_MODE_CTR, false, false},        Mode{"cts", ZEL_MODE_CBC_CTS, false, true},
    Mode{"cfb-block", ZEL_MODE_CFB, false, true},   Mode{"ofb8", ZEL_MODE_OFB_BYTE, false, true},
};

template <typename Items>
std::string names_of(const Items &items) {
  std::string names;
  for (const auto &item : items) {
    if (!names.empty()) names += ' ';
    names += item.name;
  }
  return names;
}

template <typename Items>
const auto *find_by_name(const Items &items, std::string_view name) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [name](const auto &item) { return item.name == name; });
  return found == items.end() ? nullptr : &*found;
}

}  // namespace

std::span<const Cipher> all_ciphers() { return kCiphers; }
std::span<const Mode> all_modes() { return kModes; }

CipherMode find_cipher_mode(const std::string &name) {
  if (const Cipher *stream = find_by_name(kCiphers, name); stream && !stream->descriptor) {
    return {stream, nullptr};
  }
  // The longest name of a cipher that a mode follows.
  for (const Mode &mode : kModes) {
    const std::string ending = "-" + std::string(mode.name);
    if (!name.ends_with(ending)) continue;
    const Cipher *cipher = find_by_name(kCiphers, name.substr(0, name.size() - ending.size()));
    if (cipher && cipher->descriptor) return {cipher, &mode};
  }
  throw Failure(Exit::kUsage, name, "not a cipher and a mode such as aria-256-ctr",
                "ciphers: " + names_of(kCiphers) + "; modes: " + names_of(kModes));
}

void check_key_len(const Cipher &cipher, std::size_t len) {
  const bool fits = len >= cipher.min_key && len <= cipher.max_key && len % cipher.key_step == 0;
  if (fits) return;
  std::string wanted = std::to_string(cipher.min_key);
  if (cipher.max_key != cipher.min_key) wanted += " to " + std::to_string(cipher.max_key);
  if (cipher.key_step != 1) wanted += ", a multiple of " + std::to_string(cipher.key_step);
  throw Failure(Exit::kMalformed, "key", std::to_string(len) + " bytes long",
                std::string(cipher.name) + " takes " + wanted);
}

CipherKey load_key(const Cipher &cipher, std::span<const std::uint8_t> key, std::uint32_t key_len) {
  const std::string name(cipher.name);
  CipherKey object(BCIPHER_NewKey(cipher.descriptor));
  if (!object) throw library_failure(name, ZEL_ERR_GENERIC);
  const int code = BCIPHER_MakeKey(object.get(), key.data(), key_len, cipher.descriptor);
  if (code != ZEL_OK) throw library_failure(name, code);
  return object;
}

}  // namespace zel::tool
