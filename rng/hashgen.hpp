// Hashgen and the arithmetic on V of Hash_DRBG. NIST SP 800-90A, section 10.1.1.
#pragma once

#include "hash/lanes.hpp"
#include "rng/drbg.hpp"

namespace zel::drbg {

/// A number of seedlen bits, kept eight bits further up: V || one byte, in words of 64 bits, least
/// significant first. With the byte 0x80 behind it, V is a message with its padding.
template <class Word>
class SeedNumber {
 public:
  static constexpr std::size_t kLen = sizeof(Word) == 4 ? 55 : 111;
  static constexpr std::size_t kStored = kLen + 1;

  /// The number whose big-endian bytes end with `digits`.
  SeedNumber(const std::uint8_t *digits, std::size_t len, std::uint8_t last) noexcept {
    Wiped<std::array<std::uint8_t, kStored>> bytes(std::array<std::uint8_t, kStored>{});
    std::memcpy(bytes->data() + kLen - len, digits, len);
    (*bytes)[kLen] = last;
    for (std::size_t i = 0; i < kLimbs; ++i)
      limbs_[i] = load_be64(bytes->data() + 8 * (kLimbs - 1 - i));
  }
  explicit SeedNumber(std::uint64_t small) noexcept : limbs_{small << 8, small >> 56} {}
  SeedNumber(const SeedNumber &) = default;
  SeedNumber &operator=(const SeedNumber &) = delete;
  ~SeedNumber() { wipe(limbs_.data(), sizeof limbs_); }

  /// Adds modulo 2^seedlen.
  void add(const SeedNumber &other) noexcept { add(other.limbs_); }

  /// Goes `low` + 2^56 `high` messages of Hashgen further, fewer than 2^56 times each.
  void step(std::uint64_t low, std::uint64_t high = 0) noexcept {
    const std::uint64_t carry = add(Limbs{low << 8, high});
    // Deliberate: stepping past the top does not lead to 0. The 32-bit word at the top, of which 24
    // bits are in use, is then 2^24 and is reduced modulo 24 rather than modulo 2^24: 16 remains.
    // Existing users of the library depend on the output.
    constexpr int kTopBits = 24;
    constexpr std::uint64_t kRemainder = (1U << kTopBits) % kTopBits;
    limbs_[kLimbs - 1] |= (carry * kRemainder) << (64 - kTopBits);
  }

  /// The last 56 bits of V and the byte behind it.
  std::uint64_t lowest() const noexcept { return limbs_[0]; }

  /// Writes V || the byte behind it.
  void store(void *out) const noexcept {
    for (std::size_t i = 0; i < kLimbs; ++i)
      store_be64(static_cast<std::uint8_t *>(out) + 8 * (kLimbs - 1 - i), limbs_[i]);
  }

 private:
  static constexpr std::size_t kLimbs = kStored / 8;
  using Limbs = std::array<std::uint64_t, kLimbs>;

  /// Adds and returns the carry out of the top.
  std::uint64_t add(const Limbs &other) noexcept {
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < kLimbs; ++i) {
      const std::uint64_t sum = limbs_[i] + other[i];
      const std::uint64_t next = static_cast<std::uint64_t>(sum < other[i]);
      limbs_[i] = sum + carry;
      carry = next | static_cast<std::uint64_t>(limbs_[i] < carry);
    }
    return carry;
  }

  Limbs limbs_;
};

/// The messages that Hashgen hashes, padded: one block each, V and a step more each time.
template <class Word>
class Messages {
 public:
  static constexpr std::size_t kBlock = 16 * sizeof(Word);
  static constexpr std::size_t kMost = 8;

  explicit Messages(const std::uint8_t *v) noexcept
      : next_(v, Number::kLen, 0x80), blocks_(Blocks{}) {
    for (std::size_t end = kBlock; end <= kMost * kBlock; end += kBlock)
      store_be<Word>(blocks_->data() + end - sizeof(Word), 8 * Number::kLen);
  }

  /// The next `count` blocks, at most kMost. They differ in their last 64 bits, and where these
  /// carry, in all bits alike: both forms of the upper part are made once, and a mask chooses.
  const std::uint8_t *next(std::size_t count) noexcept {
    Wiped<std::array<std::uint64_t, Number::kStored / 8>> upper, carried;
    const std::uint64_t first = next_.lowest();
    next_.store(upper->data());
    {
      Number after(next_);
      after.step(0, 1);
      after.store(carried->data());
    }
    for (std::size_t i = 0; i < upper->size(); ++i)
      (*carried)[i] ^= (*upper)[i];
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t lowest = first + (i << 8);
      const std::uint64_t mask = ct::mask_of_bit<std::uint64_t>(lowest < first);
      std::uint8_t *const block = blocks_->data() + i * kBlock;
      for (std::size_t at = 0; at < upper->size() - 1; ++at)
        store_le64(block + 8 * at, (*upper)[at] ^ (mask & (*carried)[at]));
      store_be64(block + Number::kStored - 8, lowest);
    }
    next_.step(count);
    return blocks_->data();
  }

 private:
  using Number = SeedNumber<Word>;
  using Blocks = std::array<std::uint8_t, kMost * kBlock>;

  Number next_;
  Wiped<Blocks> blocks_;
};

/// The output that follows from V: the digests of its messages.
template <class Word>
class Hashgen {
 public:
  Hashgen(const Variant &variant, const std::uint8_t *v) noexcept
      : messages_(v), digest_len_(variant.digest_len()) {
    variant.algorithm->Initialize(&initial_);
  }

  /// Writes the next `len` bytes; a last digest that is not needed whole is lost.
  void fill(std::uint8_t *out, std::size_t len) noexcept {
    constexpr std::size_t kWhole = sizeof initial_;
    Wiped<std::array<std::uint8_t, Messages<Word>::kMost * kWhole>> digests;
    while (len != 0) {
      const std::size_t needed = (len + digest_len_ - 1) / digest_len_;
      const std::size_t count = std::min(Messages<Word>::kMost, needed);
      const std::uint8_t *const blocks = messages_.next(count);
      if (digest_len_ == kWhole && len >= count * kWhole) {
        hash_lanes(out, initial_, blocks, count);
        out += count * kWhole;
        len -= count * kWhole;
        continue;
      }
      hash_lanes(digests->data(), initial_, blocks, count);
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t part = std::min(digest_len_, len);
        out = std::copy_n(digests->data() + i * kWhole, part, out);
        len -= part;
      }
    }
  }

 private:
  static void hash_lanes(std::uint8_t *digests, const std::array<std::uint32_t, 8> &initial,
                         const std::uint8_t *blocks, std::size_t count) noexcept {
    hash::sha256_lanes(digests, initial, blocks, count);
  }
  static void hash_lanes(std::uint8_t *digests, const std::array<std::uint64_t, 8> &initial,
                         const std::uint8_t *blocks, std::size_t count) noexcept {
    hash::sha512_lanes(digests, initial, blocks, count);
  }

  Messages<Word> messages_;
  std::array<Word, 8> initial_;
  std::size_t digest_len_;
};

}  // namespace zel::drbg
