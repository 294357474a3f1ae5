// HMAC_DRBG over the SHA-2 functions. NIST SP 800-90A, section 10.1.2; one departure is marked.
#include "hash/direct.hpp"
#include "rng/drbg.hpp"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

using drbg::Input;
using drbg::Variant;

/// HMAC under keys of the digest's length: the blocks of the key are absorbed once a key. FIPS
/// 198-1, section 4.
template <class Word>
class Mac {
 public:
  Mac(const Variant &variant, const std::uint8_t *key) noexcept
      : algorithm_(*variant.algorithm), len_(variant.digest_len()) {
    set_key(key);
  }
  Mac(const Mac &) = delete;
  Mac &operator=(const Mac &) = delete;
  ~Mac() {
    wipe(&inner_, sizeof inner_);
    wipe(&outer_, sizeof outer_);
    wipe(block_, sizeof block_);
  }

  void set_key(const std::uint8_t *key) noexcept {
    absorb_key(inner_, key, 0x36);
    absorb_key(outer_, key, 0x5c);
  }

  std::size_t len() const noexcept { return len_; }

  /// out = HMAC(key, head || inputs); `out` may be `head`, and the key may be `out` later on.
  void sign(std::uint8_t *out, const std::uint8_t *head, std::size_t head_len,
            std::span<const Input> inputs = {}) noexcept {
    std::uint64_t total = head_len;
    for (const Input &input : inputs)
      total += input.size();
    if (total < kBlock - kLengthField) {
      std::uint8_t *end = std::copy_n(head, head_len, block_);
      for (const Input &input : inputs)
        end = std::copy_n(input.data(), input.size(), end);
      sign_block(inner_, total);
      algorithm_.DumpDigest(block_, &state_);
    } else {
      digest_stream(head, head_len, inputs);
    }
    sign_block(outer_, len_);
    algorithm_.DumpDigest(out, &state_);
    wipe(&state_, sizeof state_);
  }

 private:
  using State = std::array<Word, 8>;
  static constexpr std::size_t kBlock = 16 * sizeof(Word);
  static constexpr std::size_t kLengthField = 2 * sizeof(Word);

  void absorb_key(State &state, const std::uint8_t *key, std::uint8_t pad) noexcept {
    std::memset(block_, pad, kBlock);
    xor_bytes(block_, block_, key, len_);
    algorithm_.Initialize(&state);
    drbg::absorb_blocks(state, block_, 1);
  }

  /// Pads the message in the block, which comes after the block of the key, and absorbs it.
  void sign_block(const State &key_state, std::uint64_t len) noexcept {
    block_[len] = 0x80;
    std::memset(block_ + len + 1, 0, kBlock - len - 1);
    store_be<Word>(block_ + kBlock - sizeof(Word), static_cast<Word>(8 * (kBlock + len)));
    state_ = key_state;
    drbg::absorb_blocks(state_, block_, 1);
  }

  /// The inner digest of a message of any length, into the block.
  void digest_stream(const std::uint8_t *head, std::size_t head_len,
                     std::span<const Input> inputs) noexcept {
    Wiped<HASH_CONTEXT> context;
    hash::start(*context, algorithm_);
    resume(*context, inner_);
    hash::absorb(*context, head, static_cast<std::uint32_t>(head_len));
    for (const Input &input : inputs)
      hash::absorb(*context, input.data(), input.size());
    hash::finish(block_, *context);
  }

  /// A context that has absorbed one block.
  static void resume(HASH_CONTEXT &context, const State &state) noexcept {
    if constexpr (sizeof(Word) == 8) {
      std::copy(state.begin(), state.end(), context.area64.state);
      context.area64.count_low = kBlock;
    } else {
      std::copy(state.begin(), state.end(), context.area32.state);
      context.area32.count_low = kBlock;
    }
  }

  const HASH_ALGORITHM &algorithm_;
  std::size_t len_;
  State inner_, outer_, state_;
  std::uint8_t block_[kBlock];
};

/// Updates K and V; `mac` holds K before and after. NIST SP 800-90A, section 10.1.2.2.
template <class Word>
void update(HMACDRBG_CONTEXT &context, Mac<Word> &mac, std::span<const Input> provided) noexcept {
  Wiped<std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN + 1>> head;
  const bool given = std::any_of(provided.begin(), provided.end(),
                                 [](const Input &input) { return !input.empty(); });
  for (std::uint8_t step = 0; step < (given ? 2 : 1); ++step) {
    std::copy_n(context.V, mac.len(), head->data());
    (*head)[mac.len()] = step;
    mac.sign(context.Key, head->data(), mac.len() + 1, provided);
    mac.set_key(context.Key);
    mac.sign(context.V, context.V, mac.len());
  }
}

void update(HMACDRBG_CONTEXT &context, const Variant &variant,
            std::span<const Input> provided) noexcept {
  drbg::by_word(variant, [&]<class Word>(Word) {
    Mac<Word> mac(variant, context.Key);
    update(context, mac, provided);
  });
}

/// V = HMAC(K, V) block by block. A block that is not needed whole gives whole bytes, and what is
/// left of the last byte comes from one more block.
// Deliberate: the standard would take the leftmost bits of the last block. Existing users of the
// library depend on the output.
template <class Word>
void fill(HMACDRBG_CONTEXT &context, Mac<Word> &mac, std::uint8_t *out,
          std::uint32_t bits) noexcept {
  for (std::size_t whole = drbg::whole_bytes(bits); whole != 0;) {
    const std::size_t part = std::min(mac.len(), whole);
    mac.sign(context.V, context.V, mac.len());
    out = std::copy_n(context.V, part, out);
    whole -= part;
  }
  if (bits % 8 == 0) return;
  mac.sign(context.V, context.V, mac.len());
  *out = context.V[0];
  drbg::mask_last_byte(out, bits % 8);
}

struct HmacDrbg {
  using Context = HMACDRBG_CONTEXT;

  static void seed(Context &context, const Variant &variant,
                   std::span<const Input> material) noexcept {
    std::memset(context.V, 0x01, variant.digest_len());
    std::memset(context.Key, 0x00, variant.digest_len());
    update(context, variant, material);
    context.outlen = 8 * variant.digest_len();
  }

  static void reseed(Context &context, const Variant &variant,
                     std::span<const Input> material) noexcept {
    update(context, variant, material);
  }

  static void generate(Context &context, const Variant &variant, std::uint8_t *out,
                       std::uint32_t bits, const Input &additional) noexcept {
    const std::span<const Input> provided(&additional, 1);
    drbg::by_word(variant, [&]<class Word>(Word) {
      Mac<Word> mac(variant, context.Key);
      if (!additional.empty()) update(context, mac, provided);
      fill(context, mac, out, bits);
      update(context, mac, provided);
    });
  }

  /// Of SHA-224, the one hash of the one-call services.
  class Stream {
   public:
    Stream(const Context &context, const Variant &variant) noexcept
        : mac_(variant, context.Key), v_(context.V) {}
    void next(std::uint8_t *digest) noexcept {
      mac_.sign(digest, v_, mac_.len());
      v_ = digest;
    }

   private:
    Mac<std::uint32_t> mac_;
    const std::uint8_t *v_;  ///< the last digest, which the caller keeps
  };

  static std::int32_t differs(const std::uint8_t *previous, const std::uint8_t *next,
                              std::int32_t len) noexcept {
    return CONDITIONAL_SELFTEST_HMACDRBG(previous, next, len);
  }

  static std::uint32_t cleared_bytes(std::uint32_t bits) noexcept {
    return drbg::begun_bytes(bits);
  }
};

}  // namespace
}  // namespace zel

using namespace zel;

int32_t HMACDRBG_Update(HMACDRBG_CONTEXT *context, const uint8_t *provided, int32_t len) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (context == nullptr || len < 0 || (provided == nullptr && len != 0)) {
    return ZEL_ERR_DRBG_ARGUMENT;
  }
  const Variant *const variant = drbg::variant_of(context->hash);
  if (variant == nullptr) return ZEL_ERR_DRBG_HASH;
  const Input inputs[] = {{provided, static_cast<uint32_t>(len)}};
  update(*context, *variant, inputs);
  return ZEL_OK;
}

int32_t HMACDRBG_InstantiateEntIn(HMACDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                                  uint32_t prediction_resistance, const uint8_t *entropy,
                                  uint32_t entropy_len, const uint8_t *nonce, uint32_t nonce_len,
                                  const uint8_t *personalization, uint32_t personalization_len) {
  return drbg::instantiate<HmacDrbg>(context,
                                     {hash_id,
                                      strength,
                                      prediction_resistance,
                                      {nonce, nonce_len},
                                      {personalization, personalization_len}},
                                     {entropy, entropy_len});
}

int32_t HMACDRBG_Instantiate(HMACDRBG_CONTEXT *context, uint32_t hash_id, uint32_t strength,
                             uint32_t prediction_resistance, const uint8_t *nonce,
                             uint32_t nonce_len, const uint8_t *personalization,
                             uint32_t personalization_len) {
  return drbg::instantiate<HmacDrbg>(context, {hash_id,
                                               strength,
                                               prediction_resistance,
                                               {nonce, nonce_len},
                                               {personalization, personalization_len}});
}

int32_t HMACDRBG_ReseedEntIn(HMACDRBG_CONTEXT *context, const uint8_t *entropy,
                             uint32_t entropy_len, const uint8_t *additional,
                             uint32_t additional_len) {
  return drbg::reseed<HmacDrbg>(context, {entropy, entropy_len}, {additional, additional_len});
}

int32_t HMACDRBG_Reseed(HMACDRBG_CONTEXT *context, const uint8_t *additional,
                        uint32_t additional_len) {
  return drbg::reseed<HmacDrbg>(context, {additional, additional_len});
}

int32_t HMACDRBG_GenerateRandEntIn(uint8_t *out, HMACDRBG_CONTEXT *context, uint32_t bits,
                                   uint32_t strength, const uint8_t *entropy, uint32_t entropy_len,
                                   const uint8_t *additional, uint32_t additional_len,
                                   uint32_t prediction_resistance) {
  return drbg::generate<HmacDrbg>(context, {out,
                                            bits,
                                            strength,
                                            entropy,
                                            entropy_len,
                                            {additional, additional_len},
                                            prediction_resistance != 0});
}

int32_t HMACDRBG_GenerateRand(uint8_t *out, HMACDRBG_CONTEXT *context, uint32_t bits,
                              uint32_t strength, const uint8_t *additional, uint32_t additional_len,
                              uint32_t prediction_resistance) {
  return drbg::generate<HmacDrbg>(
      context,
      {out, bits, strength, nullptr, 0, {additional, additional_len}, prediction_resistance != 0});
}

int32_t HMACDRBG_RNG(uint8_t *out, uint32_t bits, const uint8_t *entropy, uint32_t entropy_len) {
  return drbg::one_call<HmacDrbg>(out, bits, Input(entropy, entropy_len));
}

int32_t HMACDRBG_GetRandNum(uint8_t *out, uint32_t bits) {
  return drbg::one_call<HmacDrbg>(out, bits);
}
