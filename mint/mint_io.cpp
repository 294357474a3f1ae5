// Big integers from and to digits, bytes and the serialised form.
#include <cstdio>

#include "base/bytes.hpp"
#include "mint/record.hpp"

namespace zel {
namespace {

constexpr std::size_t kDigitsPerWord = 8;
constexpr std::uint32_t kBytesPerWord = 4;
constexpr char kDigits[] = "0123456789ABCDEF";

/// The value of a hexadecimal digit, or 16.
std::uint32_t digit_value(char c) noexcept {
  if (c >= '0' && c <= '9') return static_cast<std::uint32_t>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<std::uint32_t>(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return static_cast<std::uint32_t>(c - 'a' + 10);
  return 16;
}

/// Writes all eight digits of a word; returns the place behind them.
char *write_word(char *out, std::uint32_t word) noexcept {
  for (int shift = 28; shift >= 0; shift -= 4)
    *out++ = kDigits[(word >> shift) & 15];
  return out;
}

char *write_text(char *out, const char *text) noexcept {
  while (*text != '\0')
    *out++ = *text++;
  return out;
}

/// Byte `i` of the magnitude, counted from the least significant.
std::uint8_t byte_at(const MINT &a, std::size_t i) noexcept {
  return static_cast<std::uint8_t>(a.words[i / kBytesPerWord] >> (8 * (i % kBytesPerWord)));
}

/// Formats into a buffer that is zeroed afterwards, and prints.
template <std::size_t kSize>
void print(const char *title, const MINT *a, void (*write)(char *, const MINT *)) noexcept {
  Wiped<char[kSize]> text;
  write(*text, a);
  std::printf("%s%s\n", title, *text);
}

}  // namespace
}  // namespace zel

using namespace zel;

extern "C" {

void MINT_SetByInteger(MINT *a, uint32_t v) { mint::set_word(*a, v); }

int32_t MINT_SetByHexString(MINT *a, const char *hex) {
  if (any_null(a, hex)) return ZEL_ERR_GENERIC;
  a->length = 0;
  const std::size_t digits = std::strlen(hex);
  if (digits == 0 || (digits == 1 && hex[0] == '0')) return ZEL_OK;
  if (digits > kDigitsPerWord * mint::kWords) return mint::refuse(*a);

  const std::size_t len = (digits + kDigitsPerWord - 1) / kDigitsPerWord;
  std::uint32_t word = 0;
  for (std::size_t left = digits; left > 0; --left) {
    const std::uint32_t value = digit_value(hex[digits - left]);
    if (value > 15) return ZEL_ERR_GENERIC;
    word = (word << 4) | value;
    if ((left - 1) % kDigitsPerWord == 0) a->words[(left - 1) / kDigitsPerWord] = word;
  }
  a->length = static_cast<std::uint32_t>(len);
  return ZEL_OK;
}

void MINT_SetByByteArray(MINT *a, const uint8_t *bytes, int32_t n) {
  a->length = 0;
  if (n <= 0) return;
  auto left = static_cast<std::size_t>(n);
  if (left > ZEL_MINT_BYTES) {
    bytes += left - ZEL_MINT_BYTES;
    left = ZEL_MINT_BYTES;
  }
  const std::uint8_t *end = bytes + left;
  std::uint32_t len = 0;
  for (; left >= kBytesPerWord; left -= kBytesPerWord) {
    end -= kBytesPerWord;
    a->words[len++] = load_be32(end);
  }
  if (left > 0) {
    std::uint32_t top = 0;
    for (std::size_t i = 0; i < left; ++i)
      top = (top << 8) | bytes[i];
    a->words[len++] = top;
  }
  a->length = len;
}

void MINT_SetBy2ExpN(MINT *a, int32_t n) {
  a->length = 0;
  // Deliberate: 2^0 gives zero, not one; callers count on it.
  if (n <= 0 || n >= ZEL_MINT_BITS) return;
  const std::uint32_t top = static_cast<std::uint32_t>(n) / 32;
  std::fill_n(a->words, top, 0U);
  a->words[top] = 1U << (n % 32);
  a->length = top + 1;
}

int32_t MINT_ReadFromBuffer(MINT *a, const uint8_t *in, uint32_t in_len) {
  if (any_null(a, in)) return ZEL_ERR_GENERIC;
  const std::uint32_t count = in_len < kBytesPerWord ? 0 : load_be32(in);
  if (in_len < kBytesPerWord || count > mint::kWords) return mint::refuse(*a);
  a->length = count;
  if (kBytesPerWord * (count + std::size_t{1}) > in_len) {
    // Deliberate: zero in value, but as long as was announced.
    std::fill_n(a->words, count, 0U);
    return ZEL_ERR_GENERIC;
  }
  for (std::uint32_t i = 0; i < count; ++i)
    a->words[i] = load_be32(in + std::size_t{kBytesPerWord} * (count - i));
  return ZEL_OK;
}

void MINT_WriteInHexString(char *out, const MINT *a) {
  if (a->length == 0) {
    *write_text(out, "0") = '\0';
    return;
  }
  std::uint32_t len = mint::significant(*a);
  if (len > 0) {
    char top[kDigitsPerWord];
    write_word(top, a->words[--len]);
    std::size_t skip = 0;
    while (top[skip] == '0')
      ++skip;
    std::memcpy(out, top + skip, kDigitsPerWord - skip);
    out += kDigitsPerWord - skip;
  }
  while (len > 0)
    out = write_word(out, a->words[--len]);
  *out = '\0';
}

void MINT_WriteInHexStringBWT(char *out, const MINT *a) {
  if (a->length == 0) out = write_text(out, "00000000");
  for (std::uint32_t i = mint::used(*a); i > 0; --i) {
    out = write_word(out, a->words[i - 1]);
    *out++ = ' ';
  }
  *out = '\0';
}

void MINT_WriteInStructForm(char *out, const MINT *a) {
  const std::uint32_t len = mint::used(*a);
  if (len == 0) {
    *write_text(out, "{{0}}") = '\0';
    return;
  }
  out = write_word(write_text(out, "{{0x"), len);
  out = write_text(out, "}, {");
  for (std::uint32_t i = 0; i < len; ++i) {
    if (i > 0) out = write_text(out, ", ");
    out = write_word(write_text(out, "0x"), a->words[i]);
  }
  *write_text(out, "}}") = '\0';
}

void MINT_WriteInByteArray(uint8_t *out, uint32_t *out_len, const MINT *a) {
  if (a->length == 0) {
    out[0] = 0;
    *out_len = 1;
    return;
  }
  const std::uint32_t bytes = (MINT_GetBitLength(a) + 7) / 8;
  *out_len = bytes;
  MINT_WriteLSNByteInByteArray(out, bytes, a);
}

void MINT_WriteLSNByteInByteArray(uint8_t *out, uint32_t n, const MINT *a) {
  const std::uint32_t have = std::min<std::uint32_t>(n, kBytesPerWord * mint::used(*a));
  for (std::uint32_t i = have; i < n; ++i)
    *out++ = 0;
  std::uint32_t left = have;
  while (left % kBytesPerWord != 0)
    *out++ = byte_at(*a, --left);
  for (; left > 0; left -= kBytesPerWord, out += kBytesPerWord)
    store_be32(out, a->words[left / kBytesPerWord - 1]);
}

void MINT_WriteToBuffer(uint8_t *out, uint32_t *out_len, const MINT *a) {
  const std::uint32_t len = mint::used(*a);
  *out_len = kBytesPerWord * (1 + len);
  store_be32(out, len);
  MINT_WriteLSNByteInByteArray(out + kBytesPerWord, kBytesPerWord * len, a);
}

void MINT_PrintInHexString(const char *title, const MINT *a) {
  print<ZEL_MINT_HEX_LEN>(title, a, MINT_WriteInHexString);
}

void MINT_PrintInHexStringBWT(const char *title, const MINT *a) {
  print<ZEL_MINT_BWT_LEN>(title, a, MINT_WriteInHexStringBWT);
}

void MINT_PrintInStructForm(const char *title, const MINT *a) {
  print<ZEL_MINT_STRUCT_LEN>(title, a, MINT_WriteInStructForm);
}

}  // extern "C"
