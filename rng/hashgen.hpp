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
  SeedNumber(const SeedNumber &) = delete;
  SeedNumber &operator=(const SeedNumber &) = delete;
  ~SeedNumber() { wipe(limbs_.data(), sizeof limbs_); }

  /// Adds modulo 2^seedlen.
  void add(const SeedNumber &other) noexcept { add(other.limbs_); }

  /// The next message of Hashgen.
  void step() noexcept {
    const std::uint64_t carry = add(std::array<std::uint64_t, kLimbs>{1U << 8});
    // Deliberate: stepping past the top does not lead to 0. The 32-bit word at the top, of which 24
    // bits are in use, is then 2^24 and is reduced modulo 24 rather than modulo 2^24: 16 remains.
    // Existing users of the library depend on the output.
    constexpr int kTopBits = 24;
    constexpr std::uint64_t kRemainder = (1U << kTopBits) % kTopBits;
    limbs_[kLimbs - 1] |= (carry * kRemainder) << (64 - kTopBits);
  }

  /// Writes V || the byte behind it.
  void store(std::uint8_t *out) const noexcept {
    for (std::size_t i = 0; i < kLimbs; ++i)
      store_be64(out + 8 * (kLimbs - 1 - i), limbs_[i]);
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

/// The output that follows from V, in digests: each step hashes V and steps it. Every message is
/// one block, V with its padding.
template <class Word>
class Hashgen {
 public:
  Hashgen(const Variant &variant, const std::uint8_t *v) noexcept
      : data_(v, SeedNumber<Word>::kLen, 0x80), digest_len_(variant.digest_len()) {
    variant.algorithm->Initialize(&initial_);
  }

  /// Writes the next `len` bytes; a last digest that is not needed whole is lost.
  void fill(std::uint8_t *out, std::size_t len) noexcept {
    Wiped<Batch> batch;
    std::memset(batch->blocks, 0, sizeof batch->blocks);
    for (std::size_t i = 0; i < kLanes; ++i)
      store_be<Word>(batch->blocks + (i + 1) * kBlock - sizeof(Word), 8 * SeedNumber<Word>::kLen);
    while (len != 0) {
      const std::size_t count = std::min(kLanes, (len + digest_len_ - 1) / digest_len_);
      for (std::size_t i = 0; i < count; ++i) {
        data_.store(batch->blocks + i * kBlock);
        data_.step();
        batch->states[i] = initial_;
      }
      absorb_lanes(batch->states, batch->blocks, count);
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t part = std::min<std::size_t>(digest_len_, len);
        write_digest(out, part, batch->states[i]);
        out += part;
        len -= part;
      }
    }
  }

 private:
  using State = std::array<Word, 8>;
  static constexpr std::size_t kBlock = 16 * sizeof(Word);
  static constexpr std::size_t kLanes = 16;
  struct Batch {
    State states[kLanes];
    std::uint8_t blocks[kLanes * kBlock];
  };

  static void absorb_lanes(std::array<std::uint32_t, 8> *states, const std::uint8_t *blocks,
                           std::size_t count) noexcept {
    hash::sha256_lanes(states, blocks, count);
  }
  static void absorb_lanes(std::array<std::uint64_t, 8> *states, const std::uint8_t *blocks,
                           std::size_t count) noexcept {
    hash::sha512_lanes(states, blocks, count);
  }

  static void write_digest(std::uint8_t *out, std::size_t len, State &state) noexcept {
    for (Word &word : state)
      word = byte_swap(word);
    std::memcpy(out, state.data(), len);
  }

  SeedNumber<Word> data_;
  State initial_;
  std::size_t digest_len_;
};

}  // namespace zel::drbg
