// What the tests of DSA and KCDSA share: records from vectors, and random bytes that the test
// chooses (the linker sends the generators' calls to draws.cpp by --wrap).
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>

#include "tests/support/nulls.hpp"
#include "tests/support/own_stack.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace zel::test {

/// What the next draws from RANDHASH bring; when it is empty they are random.
inline std::deque<Bytes> g_draws;
/// How often RANDHASH was initialised with the 160 bits of a seed that was drawn right before.
inline int g_seedings = 0;
/// All that Hash_DRBG brings meanwhile.
inline constexpr uint8_t kDrbgByte = 0x5a;

inline MINT number_of(const Bytes &bytes) {
  MINT a = {};
  MINT_SetByByteArray(&a, bytes.data(), static_cast<int32_t>(bytes.size()));
  MINT_RightShift(&a, 0);
  return a;
}
inline MINT number_of(const Vector &v, const std::string &name) { return number_of(v.bytes(name)); }

inline Bytes bytes_of(const MINT &a) {
  Bytes bytes(ZEL_MINT_BYTES);
  uint32_t len = 0;
  MINT_WriteInByteArray(bytes.data(), &len, &a);
  bytes.resize(len);
  return bytes;
}
inline std::string hex_of(const MINT &a) { return to_hex(bytes_of(a)); }

/// Whether a call left a secret modulo q, or its inverse, on the stack, with one sign or the other.
inline bool left_behind(const OnOwnStack &own, const MINT &secret, const MINT &q) {
  MINT inverse;
  MINT_Inverse(&inverse, &secret, &q);
  return std::ranges::any_of(
      std::array{&secret, static_cast<const MINT *>(&inverse)}, [&](const MINT *value) {
        MINT minus;
        MINT_Sub(&minus, &q, value);
        return own.holds_number(bytes_of(*value)) || own.holds_number(bytes_of(minus));
      });
}

/// Whole bytes of hex without zeros in front.
inline std::string minimal(std::string hex) {
  while (hex.size() > 2 && hex.starts_with("00"))
    hex.erase(0, 2);
  return hex;
}

inline const HASH_ALGORITHM *hash_of(const std::string &name) {
  static const std::map<std::string, const HASH_ALGORITHM *> hashes{
      {"sha1", &popsha1},        {"sha224", &sha224}, {"sha256", &sha256},
      {"sha384", &sha384},       {"sha512", &sha512}, {"has160", &pophas160},
      {"ripemd160", &ripemd160}, {"md5", &popmd5},    {"md2", &md2}};
  return hashes.at(name);
}

inline uint32_t size_of(const Bytes &bytes) { return static_cast<uint32_t>(bytes.size()); }

/// A stream over a message, closed with its scope.
struct Stream {
  explicit Stream(Bytes &bytes) : file(fmemopen(bytes.data(), bytes.size(), "rb")) {}
  ~Stream() { fclose(file); }
  FILE *file;
};

/// Numbers that no caller should pass, in the place of a good one.
inline std::vector<MINT> hostile_numbers(const MINT &good) {
  MINT zero = {}, zero_words = {}, one = {}, even = good, wild = good, largest = {};
  zero_words.length = 3;
  MINT_SetByInteger(&one, 1);
  even.words[0] = (good.words[0] & ~1U) ^ 2;
  wild.length = 0xfffffff0;
  p_max(&largest, ZEL_MINT_BITS);
  return {zero, zero_words, one, even, wild, largest};
}

}  // namespace zel::test
