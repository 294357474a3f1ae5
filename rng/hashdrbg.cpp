// Hash_DRBG over the SHA-2 functions. NIST SP 800-90A, section 10.1.1; two departures are marked.
#include "hash/direct.hpp"
#include "rng/hashgen.hpp"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

using drbg::Input;
using drbg::Variant;

constexpr std::size_t kMaxSeedLen = sizeof HASHDRBG_CONTEXT::V;
using SeedBytes = std::array<std::uint8_t, kMaxSeedLen>;

/// Hash_df over the concatenation of the inputs. NIST SP 800-90A, section 10.3.1.
void derive(std::uint8_t *out, std::uint32_t out_bits, const Variant &variant,
            std::span<const Input> inputs) noexcept {
  Wiped<HASH_CONTEXT> context;
  Wiped<std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN>> digest;
  std::array<std::uint8_t, 5> head;
  store_be32(head.data() + 1, out_bits);
  std::uint32_t left = drbg::whole_bytes(out_bits);
  for (head[0] = 1; left != 0; ++head[0]) {
    hash::start(*context, *variant.algorithm);
    hash::absorb(*context, head.data(), head.size());
    for (const Input &input : inputs)
      hash::absorb(*context, input.data(), input.size());
    hash::finish(digest->data(), *context);
    const std::uint32_t part = std::min(left, variant.digest_len());
    std::memcpy(out, digest->data(), part);
    out += part;
    left -= part;
  }
}

/// V = V + Hash(0x02 || V || additional).
template <class Word>
void mix_additional(HASHDRBG_CONTEXT &context, const Variant &variant,
                    const Input &additional) noexcept {
  constexpr std::uint8_t kTag = 0x02;
  Wiped<HASH_CONTEXT> hashing;
  Wiped<SeedBytes> w;
  w->fill(0);
  hash::start(*hashing, *variant.algorithm);
  hash::absorb(*hashing, &kTag, 1);
  hash::absorb(*hashing, context.V, variant.seed_len());
  hash::absorb(*hashing, additional.data(), additional.size());
  hash::finish(w->data() + variant.seed_len() - variant.digest_len(), *hashing);
  drbg::SeedSum<Word> sum(context.V);
  sum.add(w->data());
  sum.store(context.V);
}

/// V = V + Hash(0x03 || V) + C + reseed counter. The message and its padding are two blocks.
template <class Word>
void advance(HASHDRBG_CONTEXT &context, const Variant &variant) noexcept {
  constexpr std::size_t kBlock = 16 * sizeof(Word);
  constexpr std::size_t kLen = 1 + drbg::kSeedLen<Word>;
  constexpr std::uint8_t kTag = 0x03;
  Wiped<std::array<std::uint8_t, 2 * kBlock>> message;
  zero<sizeof *message>(message->data());
  (*message)[0] = kTag;
  std::copy_n(context.V, kLen - 1, message->data() + 1);
  (*message)[kLen] = 0x80;
  store_be64(message->data() + sizeof *message - 8, 8 * kLen);
  Wiped<std::array<Word, 8>> state;
  variant.algorithm->Initialize(&*state);
  drbg::absorb_blocks(*state, message->data(), 2);
  drbg::SeedSum<Word> sum(context.V);
  sum.add(*state, variant.digest_len());
  sum.add(context.C);
  sum.add(context.reseed_counter);
  sum.store(context.V);
}

struct HashDrbg {
  using Context = HASHDRBG_CONTEXT;

  static void seed(Context &context, const Variant &variant,
                   std::span<const Input> material) noexcept {
    const std::uint32_t len = variant.seed_len();
    Wiped<SeedBytes> v;
    derive(v->data(), variant.seed_bits, variant, material);
    std::memcpy(context.V, v->data(), len);
    // Deliberate: the standard derives C from 0x00 || V. Here the 0x00 replaces the first byte of
    // V, and one more 0x00 follows. Existing users of the library depend on the output.
    constexpr std::uint8_t kZero = 0;
    const Input shifted[] = {{&kZero, 1}, {v->data() + 1, len - 1}, {&kZero, 1}};
    derive(context.C, variant.seed_bits, variant, shifted);
    context.seedlen = variant.seed_bits;
  }

  static void reseed(Context &context, const Variant &variant,
                     std::span<const Input, 2> material) noexcept {
    constexpr std::uint8_t kReseed = 1;
    constexpr std::uint8_t kZero = 0;
    const std::uint32_t len = variant.seed_len();
    Wiped<SeedBytes> v;
    const Input renewed[] = {{&kReseed, 1}, {context.V, len}, material[0], material[1]};
    derive(v->data(), variant.seed_bits, variant, renewed);
    std::memcpy(context.V, v->data(), len);
    const Input constant[] = {{&kZero, 1}, {v->data(), len}};
    derive(context.C, variant.seed_bits, variant, constant);
  }

  /// Hashgen, with the caller's own byte at the end where `bits` is not a multiple of 8.
  template <class Word>
  static void fill(const Context &context, const Variant &variant, std::uint8_t *out,
                   std::uint32_t bits) noexcept {
    drbg::Hashgen<Word>(variant, context.V).fill(out, drbg::whole_bytes(bits));
    // Deliberate: the last digest gives whole bytes only. What is masked is the caller's own byte.
    drbg::mask_last_byte(out, bits);
  }

  static void generate(Context &context, const Variant &variant, std::uint8_t *out,
                       std::uint32_t bits, const Input &additional) noexcept {
    drbg::by_word(variant, [&]<class Word>(Word) {
      if (!additional.empty()) mix_additional<Word>(context, variant, additional);
      fill<Word>(context, variant, out, bits);
      advance<Word>(context, variant);
    });
  }

  /// Of SHA-224, the one hash of the one-call services.
  class Stream {
   public:
    Stream(const Context &context, const Variant &variant) noexcept
        : hashgen_(variant, context.V), digest_len_(variant.digest_len()) {}
    void next(std::uint8_t *digest) noexcept { hashgen_.fill(digest, digest_len_); }

   private:
    drbg::Hashgen<std::uint32_t> hashgen_;
    std::size_t digest_len_;
  };

  static std::int32_t differs(const std::uint8_t *previous, const std::uint8_t *next,
                              std::int32_t len) noexcept {
    return CONDITIONAL_SELFTEST_HASHDRBG(previous, next, len);
  }

  /// A last partial byte is the caller's own.
  static std::uint32_t cleared_bytes(std::uint32_t bits) noexcept {
    return drbg::whole_bytes(bits);
  }
};

}  // namespace
}  // namespace zel

using namespace zel;

int32_t HASHDRBG_DerivateFunction(uint8_t *out, const uint8_t *in, uint32_t in_len,
                                  uint32_t out_bits, const HASH_ALGORITHM *hash) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  const Variant *const variant = drbg::variant_of(hash);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  if (out == nullptr || (in == nullptr && in_len != 0)) return ZEL_ERR_DRBG_ARGUMENT;
  const Input inputs[] = {{in, in_len}};
  derive(out, out_bits, *variant, inputs);
  return ZEL_OK;
}

int32_t HASHDRBG_InstantiateEntIn(HASHDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                                  uint32_t prediction_resistance, const uint8_t *entropy,
                                  uint32_t entropy_len, const uint8_t *nonce, uint32_t nonce_len,
                                  const uint8_t *personalization, uint32_t personalization_len) {
  return drbg::instantiate<HashDrbg>(context,
                                     {hash_id,
                                      strength,
                                      prediction_resistance,
                                      {nonce, nonce_len},
                                      {personalization, personalization_len}},
                                     {entropy, entropy_len});
}

int32_t HASHDRBG_Instantiate(HASHDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                             uint32_t prediction_resistance, const uint8_t *nonce,
                             uint32_t nonce_len, const uint8_t *personalization,
                             uint32_t personalization_len) {
  return drbg::instantiate<HashDrbg>(context, {hash_id,
                                               strength,
                                               prediction_resistance,
                                               {nonce, nonce_len},
                                               {personalization, personalization_len}});
}

int32_t HASHDRBG_ReseedEntIn(HASHDRBG_CONTEXT *context, const uint8_t *entropy,
                             uint32_t entropy_len, const uint8_t *additional,
                             uint32_t additional_len) {
  return drbg::reseed<HashDrbg>(context, {entropy, entropy_len}, {additional, additional_len});
}

int32_t HASHDRBG_Reseed(HASHDRBG_CONTEXT *context, const uint8_t *additional,
                        uint32_t additional_len) {
  return drbg::reseed<HashDrbg>(context, {additional, additional_len});
}

int32_t HASHDRBG_GenerateRandBit(uint8_t *out, uint32_t bits, const HASHDRBG_CONTEXT *context) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null<const void *>(out, context)) return ZEL_ERR_DRBG_ARGUMENT;
  const Variant *const variant = drbg::variant_of(context->hash);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  return with_wiped_stack<drbg::kStackDepth>([&] {
    drbg::by_word(*variant,
                  [&]<class Word>(Word) { HashDrbg::fill<Word>(*context, *variant, out, bits); });
    return int32_t{ZEL_OK};
  });
}

int32_t HASHDRBG_GenerateRandEntIn(uint8_t *out, HASHDRBG_CONTEXT *context, uint32_t bits,
                                   uint32_t strength, const uint8_t *entropy, uint32_t entropy_len,
                                   const uint8_t *additional, uint32_t additional_len,
                                   int32_t prediction_resistance) {
  return drbg::generate<HashDrbg>(context, {out,
                                            bits,
                                            strength,
                                            entropy,
                                            entropy_len,
                                            {additional, additional_len},
                                            prediction_resistance != 0});
}

int32_t HASHDRBG_GenerateRand(uint8_t *out, HASHDRBG_CONTEXT *context, uint32_t bits,
                              uint32_t strength, const uint8_t *additional, uint32_t additional_len,
                              int32_t prediction_resistance) {
  return drbg::generate<HashDrbg>(
      context,
      {out, bits, strength, nullptr, 0, {additional, additional_len}, prediction_resistance != 0});
}

int32_t HASHDRBG_RNG(uint8_t *out, uint32_t bits, const uint8_t *entropy, uint32_t entropy_len) {
  return drbg::one_call<HashDrbg>(out, bits, Input(entropy, entropy_len));
}

int32_t HASHDRBG_GetRandNum(uint8_t *out, uint32_t bits) {
  return drbg::one_call<HashDrbg>(out, bits);
}
