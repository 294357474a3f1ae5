// What Hash_DRBG and HMAC_DRBG share: their hashes, byte strings, checks and the public shapes of
// instantiate, reseed, generate and the one-call services. NIST SP 800-90A, sections 8 to 10.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "base/bytes.hpp"
#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/blocks.hpp"
#include "zel_cc/rng.h"

namespace zel::drbg {

/// One of the four hashes.
struct Variant {
  const HASH_ALGORITHM *algorithm;
  std::uint32_t seed_bits;
  bool wide;  ///< 64-bit words

  std::uint32_t digest_len() const noexcept { return algorithm->digest_len; }
  std::uint32_t seed_len() const noexcept { return seed_bits / 8; }
};

/// The variant of an identifier or of a descriptor; null for any other.
const Variant *variant_of(std::uint32_t hash_id) noexcept;
const Variant *variant_of(const HASH_ALGORITHM *given) noexcept;

/// The security strength that serves a wish: 80, 112, 128, 192 or 256.
std::uint32_t rounded_strength(std::uint32_t wanted) noexcept;

/// Calls body(Word{}) with the word type of the hash.
template <class Body>
inline auto by_word(const Variant &variant, Body body) noexcept {
  return variant.wide ? body(std::uint64_t{}) : body(std::uint32_t{});
}

/// Absorbs blocks of the hash with the given word.
inline void absorb_blocks(std::array<std::uint32_t, 8> &state, const std::uint8_t *blocks,
                          std::size_t count) noexcept {
  hash::sha256_blocks(&state, blocks, count);
}
inline void absorb_blocks(std::array<std::uint64_t, 8> &state, const std::uint8_t *blocks,
                          std::size_t count) noexcept {
  hash::sha512_blocks(&state, blocks, count);
}

/// An optional byte string: a null pointer or a length of 0 is the empty one.
class Input {
 public:
  constexpr Input() noexcept = default;
  constexpr Input(const std::uint8_t *data, std::uint32_t len) noexcept
      : data_(data), len_(data == nullptr ? 0 : len) {}
  const std::uint8_t *data() const noexcept { return data_; }
  std::uint32_t size() const noexcept { return len_; }
  bool empty() const noexcept { return len_ == 0; }

 private:
  const std::uint8_t *data_ = nullptr;
  std::uint32_t len_ = 0;
};

/// 1024 bits from the collector, wiped with their scope.
class FreshSeed {
 public:
  FreshSeed() noexcept { RNGSEED_GetSeed(bytes_->data(), &len_, 8 * kLen); }
  Input input() const noexcept { return {bytes_->data(), len_}; }

 private:
  static constexpr std::uint32_t kLen = 128;
  Wiped<std::array<std::uint8_t, kLen>> bytes_;
  std::uint32_t len_ = 0;
};

/// The arguments of an instantiation besides its entropy.
struct Setup {
  std::uint32_t hash_id, strength, prediction_resistance;
  Input nonce, personalization;
};

/// The arguments of a request.
struct Request {
  std::uint8_t *out;
  std::uint32_t bits, strength;
  const std::uint8_t *entropy;
  std::uint32_t entropy_len;
  Input additional;
  bool prediction_resistance;
};

/// Bytes of a request, whole or begun.
inline std::uint32_t whole_bytes(std::uint32_t bits) noexcept { return bits / 8; }
inline std::uint32_t begun_bytes(std::uint32_t bits) noexcept {
  return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

/// Keeps the top bits % 8 bits of the last byte where a request ends inside a byte.
inline void mask_last_byte(std::uint8_t *out, std::uint32_t bits) noexcept {
  if (bits % 8 != 0) out[bits / 8] &= static_cast<std::uint8_t>(0xff << (8 - bits % 8));
}

// A Mechanism is one of the two generators:
//   Context                                 its public record
//   seed(context, variant, material)        first values from the seed material
//   reseed(context, variant, material)      new values from the old ones and fresh material
//   generate(context, variant, out, bits, additional)
//   Stream(context, variant).next(block)    the digests of the next output, one by one
//   differs(previous, next, len)            the repeated-output test
//   cleared_bytes(bits)                     what a failed one-call service zeroes

template <class Mechanism>
std::int32_t instantiate(typename Mechanism::Context *context, const Setup &setup,
                         const Input &entropy) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (context == nullptr) return ZEL_ERR_DRBG_ARGUMENT;
  const Variant *const variant = variant_of(setup.hash_id);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  context->hash = variant->algorithm;
  if (entropy.empty()) return ZEL_ERR_DRBG_ENTROPY;
  const Input material[] = {entropy, setup.nonce, setup.personalization};
  Mechanism::seed(*context, *variant, material);
  context->reseed_counter = 1;
  context->reseed_interval = ZEL_DRBG_RESEED_INTERVAL;
  context->security_strength = rounded_strength(setup.strength);
  context->prediction_resistance = setup.prediction_resistance;
  return ZEL_OK;
}

template <class Mechanism>
std::int32_t instantiate(typename Mechanism::Context *context, const Setup &setup) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (context == nullptr) return ZEL_ERR_DRBG_ARGUMENT;
  if (variant_of(setup.hash_id) == nullptr) return ZEL_ERR_DRBG_HASH;
  const FreshSeed fresh;
  return instantiate<Mechanism>(context, setup, fresh.input());
}

/// The reseed itself: every question has been asked.
template <class Mechanism>
void reseed_with(typename Mechanism::Context &context, const Variant &variant, const Input &entropy,
                 const Input &additional) noexcept {
  const Input material[] = {entropy, additional};
  Mechanism::reseed(context, variant, material);
  context.reseed_counter = 1;
}

template <class Mechanism>
std::int32_t reseed(typename Mechanism::Context *context, const Input &entropy,
                    const Input &additional) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (context == nullptr) return ZEL_ERR_DRBG_ARGUMENT;
  if (entropy.empty()) return ZEL_ERR_DRBG_ENTROPY;
  const Variant *const variant = variant_of(context->hash);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  reseed_with<Mechanism>(*context, *variant, entropy, additional);
  return ZEL_OK;
}

template <class Mechanism>
std::int32_t reseed(typename Mechanism::Context *context, const Input &additional) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (context == nullptr) return ZEL_ERR_DRBG_ARGUMENT;
  const FreshSeed fresh;
  return reseed<Mechanism>(context, fresh.input(), additional);
}

/// A request, of which something may stay on the stack.
template <class Mechanism>
std::int32_t serve(typename Mechanism::Context *context, Request request) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null(context, request.out)) return ZEL_ERR_DRBG_ARGUMENT;
  if (context->security_strength < request.strength ||
      (request.prediction_resistance && context->prediction_resistance == 0)) {
    return ZEL_ERR_DRBG_STRENGTH;
  }
  const Variant *const variant = variant_of(context->hash);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  if (request.prediction_resistance || context->reseed_counter >= context->reseed_interval) {
    const Input given(request.entropy, request.entropy_len);
    if (request.entropy_len != 0) {
      if (given.empty()) return ZEL_ERR_DRBG_ENTROPY;
      reseed_with<Mechanism>(*context, *variant, given, request.additional);
    } else {
      const FreshSeed fresh;
      reseed_with<Mechanism>(*context, *variant, fresh.input(), request.additional);
    }
    request.additional = Input();
  }
  Mechanism::generate(*context, *variant, request.out, request.bits, request.additional);
  ++context->reseed_counter;
  return ZEL_OK;
}

/// The deepest that a request goes on the stack, and some more.
inline constexpr std::size_t kStackDepth = 3072;

template <class Mechanism>
std::int32_t generate(typename Mechanism::Context *context, const Request &request) noexcept {
  return with_wiped_stack<kStackDepth>([&] { return serve<Mechanism>(context, request); });
}

/// Whether a second output of the generator differs from `out`. Two outputs are equal when all
/// their digests are, so the first pair that differs, else the last one, decides; it goes to the
/// test.
template <class Mechanism>
bool second_output_differs(const typename Mechanism::Context &context, const Variant &variant,
                           const std::uint8_t *out, std::uint32_t len) noexcept {
  Wiped<std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN>> digest;
  typename Mechanism::Stream stream(context, variant);
  for (;;) {
    const std::uint32_t part = std::min(len, variant.digest_len());
    stream.next(digest->data());
    if (part == len || !ct::equal(out, digest->data(), part)) {
      return Mechanism::differs(out, digest->data(), static_cast<std::int32_t>(part)) == ZEL_OK;
    }
    out += part;
    len -= part;
  }
}

/// A one-call service. `entropy` is the caller's, or nothing: then a seed is collected.
template <class Mechanism, class... Entropy>
std::int32_t one_call(std::uint8_t *out, std::uint32_t bits, const Entropy &...entropy) noexcept {
  constexpr std::uint32_t kStrength = 128;
  constexpr Setup kSetup{ZEL_DRBG_SHA224, kStrength, 0, {}, {}};
  if (out == nullptr) return ZEL_ERR_DRBG_TEST;
  Wiped<typename Mechanism::Context> context;
  if (instantiate<Mechanism>(&*context, kSetup, entropy...) == ZEL_OK) {
    const Variant &variant = *variant_of(kSetup.hash_id);
    Mechanism::generate(*context, variant, out, bits, Input());
    ++context->reseed_counter;
    if (second_output_differs<Mechanism>(*context, variant, out, whole_bytes(bits))) return ZEL_OK;
  }
  wipe(out, Mechanism::cleared_bytes(bits));
  return ZEL_ERR_DRBG_TEST;
}

}  // namespace zel::drbg
