// How the arithmetic sees a record, and the limbs that it works on instead.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "mint/limbs.hpp"
#include "zel_cc/mint.h"
#include "zel_cc/mint_arith.h"
#include "zel_cc/mint_mont.h"

namespace zel::mint {

inline constexpr std::uint32_t kWords = ZEL_MINT_WORDS;

/// Words that count: a length above the capacity counts as the capacity.
inline std::uint32_t used(const MINT &a) noexcept { return std::min(a.length, kWords); }

/// Words up to the highest that is not zero.
inline std::uint32_t significant(const std::uint32_t *words, std::uint32_t len) noexcept {
  while (len > 0 && words[len - 1] == 0)
    --len;
  return len;
}
inline std::uint32_t significant(const MINT &a) noexcept { return significant(a.words, used(a)); }

inline void trim(MINT &a) noexcept { a.length = significant(a); }

/// The same for a secret of which all 130 words are set: no branch asks where it ends.
inline void trim_secret(MINT &a) noexcept {
  std::uint32_t len = 0;
  for (std::uint32_t i = 0; i < kWords; ++i)
    len = ct::select(ct::mask_if_zero(a.words[i]), len, i + 1);
  a.length = len;
}

inline void set_word(MINT &a, std::uint32_t value) noexcept {
  a.words[0] = value;
  a.length = value == 0 ? 0 : 1;
}

/// The whole record, words above the length too; `to` may be `from`.
inline void copy(MINT &to, const MINT &from) noexcept {
  to = from;
  to.length = used(from);
}

inline bool is_one(const MINT &a) noexcept { return significant(a) == 1 && a.words[0] == 1; }
inline bool is_odd(const MINT &a) noexcept { return used(a) != 0 && a.words[0] % 2 != 0; }

/// What a refusal leaves of a result: zero.
[[nodiscard]] inline std::int32_t refuse(MINT &r) noexcept {
  r.length = 0;
  return ZEL_ERR_GENERIC;
}

/// A number on the stack as limbs, of which the first `count` are zeroed when its scope ends.
template <std::size_t kCapacity>
class Limbs {
 public:
  explicit Limbs(std::size_t count) noexcept : count_(count) {}
  /// The words, in as many limbs as they need.
  Limbs(const std::uint32_t *words, std::size_t len) noexcept : count_(limbs::limbs_of_words(len)) {
    limbs::from_words(data_, count_, words, len);
  }
  explicit Limbs(const MINT &a) noexcept : Limbs(a.words, used(a)) {}
  Limbs(const Limbs &) = delete;
  Limbs &operator=(const Limbs &) = delete;
  ~Limbs() { wipe(data_, count_ * sizeof data_[0]); }

  limbs::Limb *data() noexcept { return data_; }
  const limbs::Limb *data() const noexcept { return data_; }
  std::size_t size() const noexcept { return count_; }
  limbs::Limb &operator[](std::size_t i) noexcept { return data_[i]; }

 private:
  limbs::Limb data_[kCapacity];
  std::size_t count_;
};

}  // namespace zel::mint
