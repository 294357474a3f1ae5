// The hash-counter generator of KCDSA and its private values. TTAK.KO-12.0001; a departure is
// marked.
#include "hash/direct.hpp"
#include "rng/private_value.hpp"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

using private_value::Value;

/// Longest XKEY: the sums stay within a MINT for any number of values.
constexpr std::uint32_t kMaxKeyBytes = 512;

constexpr std::uint32_t bytes_of(std::uint32_t bits) noexcept {
  return bits / 8 + (bits % 8 != 0 ? 1 : 0);
}

/// Hash(seed || counter), of which the last `len` bytes go to `out`.
void digest_end(std::uint8_t *out, std::uint32_t len, const HASH_CONTEXT &seeded,
                std::uint8_t counter) noexcept {
  Wiped<std::array<std::uint8_t, ZEL_MAX_DIGEST_LEN>> digest;
  const std::uint32_t digest_len = hash::finish_with(digest->data(), seeded, &counter, 1);
  std::memcpy(out, digest->data() + digest_len - len, len);
}

std::int32_t generate(std::uint8_t *out, std::uint32_t out_bits, const std::uint8_t *seed_bytes,
                      std::uint32_t seed_bits, const HASH_ALGORITHM &algorithm) noexcept {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (out == nullptr || (seed_bytes == nullptr && seed_bits != 0)) return ZEL_ERR_GENERIC;
  if (out_bits == 0) return ZEL_OK;
  const std::uint32_t digest_bits = 8 * algorithm.digest_len;
  Wiped<HASH_CONTEXT> seeded;
  hash::start(*seeded, algorithm);
  hash::absorb(*seeded, seed_bytes, bytes_of(seed_bits));
  std::uint32_t counter = (out_bits - 1) / digest_bits;
  const std::uint32_t rest = out_bits % digest_bits;
  const std::uint32_t head = rest == 0 ? algorithm.digest_len : bytes_of(rest);
  digest_end(out, head, *seeded, static_cast<std::uint8_t>(counter));
  // Deliberate: clears the top outBits mod 8 bits, where the standard keeps so many. All sizes in
  // use end with a byte or half of one, where both agree.
  out[0] &= static_cast<std::uint8_t>(0xff >> (out_bits % 8));
  for (out += head; counter-- != 0; out += algorithm.digest_len)
    digest_end(out, algorithm.digest_len, *seeded, static_cast<std::uint8_t>(counter));
  return ZEL_OK;
}

/// The values one by one. The parts must be set first.
struct Generator {
  MINT a, b, q;
  std::uint32_t len;  ///< bytes of XKEY
  Value previous;

  /// r = the output for `from` without leading zero bytes.
  bool derive(MINT &r, const MINT &from) const noexcept {
    Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> bytes;
    Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> derived;
    std::uint32_t from_len = 0;
    MINT_WriteInByteArray(bytes->data(), &from_len, &from);
    if (KCDSARNGHAS160_PRNG(derived->data(), 8 * len, bytes->data(), 8 * from_len) != ZEL_OK)
      return false;
    private_value::set_bytes(r, derived->data(), len);
    return true;
  }

  /// Writes the next value to `out`; false when it repeats the one before.
  bool next(std::uint8_t *out, std::uint32_t &out_len) noexcept {
    Wiped<MINT> sum;
    Wiped<MINT> x;
    Wiped<Value> value(Value{});
    private_value::add_low_bytes(*sum, a, b, len);
    if (!derive(*x, *sum)) return false;
    MINT_ModClassic(&*x, &q);
    MINT_WriteInByteArray(out, &out_len, &*x);
    std::memcpy(value->data(), out, std::min(out_len, private_value::kStride));
    if (!private_value::may_follow(previous, *value, CONDITIONAL_SELFTEST_KCDSA_RNG_HAS160))
      return false;
    MINT_Add(&*sum, &*x, &a);
    if (!derive(*sum, *sum)) return false;
    MINT_Add(&b, &b, &*sum);
    return true;
  }
};

}  // namespace
}  // namespace zel

using namespace zel;

int32_t KCDSARNGHAS160_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                            uint32_t seedBits) {
  return generate(out, outBits, seed, seedBits, zel_own_pophas160);
}

int32_t KCDSARNGSHA224_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                            uint32_t seedBits) {
  return generate(out, outBits, seed, seedBits, zel_own_sha224);
}

int32_t KCDSARNGSHA256_PRNG(uint8_t *out, uint32_t outBits, const uint8_t *seed,
                            uint32_t seedBits) {
  return generate(out, outBits, seed, seedBits, zel_own_sha256);
}

int32_t KCDSARNGHAS160_GenerateX(uint8_t *out, uint32_t *outLens, const uint8_t *seed,
                                 uint32_t seedLen, const uint8_t *xkey, uint32_t xkeyLen,
                                 const uint8_t *q, uint32_t qLen, uint32_t m) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null<const void *>(out, outLens, seed, xkey, q)) return ZEL_ERR_GENERIC;
  if (private_value::are_same(seed, seedLen, xkey, xkeyLen))
    return private_value::fail(ZEL_ERR_KCDSA_RNG_REPEAT);
  if (seedLen > UINT32_MAX / 8 || xkeyLen > kMaxKeyBytes || qLen > ZEL_MINT_BYTES ||
      private_value::is_zero(q, qLen)) {
    return ZEL_ERR_GENERIC;
  }
  Wiped<Generator> generator(Generator{});
  Wiped<std::array<std::uint8_t, kMaxKeyBytes>> first;
  generator->len = xkeyLen;
  if (KCDSARNGHAS160_PRNG(first->data(), 8 * xkeyLen, seed, 8 * seedLen) != ZEL_OK)
    return private_value::fail(ZEL_ERR_GENERIC);
  private_value::set_bytes(generator->a, first->data(), xkeyLen);
  private_value::set_bytes(generator->b, xkey, xkeyLen);
  private_value::set_bytes(generator->q, q, qLen);
  for (std::uint32_t j = 0; j < m; ++j) {
    if (!generator->next(out + std::size_t{private_value::kStride} * j, outLens[j]))
      return private_value::fail(ZEL_ERR_GENERIC);
  }
  return ZEL_OK;
}
