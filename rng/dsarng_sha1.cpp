// Private values from SHA-1. FIPS 186-2, appendix 3.1 and 3.3, with change notice 1; two departures
// are marked.
#include "hash/direct.hpp"
#include "rng/private_value.hpp"
#include "zel_cc/prime.h"
#include "zel_cc/rng.h"
#include "zel_cc/selftest.h"

namespace zel {
namespace {

using private_value::Value;

constexpr std::size_t kBlockLen = 64;
constexpr std::uint32_t kDigestLen = 20;
constexpr std::uint32_t kPrimeBits = 160;
static_assert(kDigestLen == private_value::kStride);

/// The constant t: the initial chaining value of SHA-1.
constexpr Value kInitial = {0x67, 0x45, 0x23, 0x01, 0xef, 0xcd, 0xab, 0x89, 0x98, 0xba,
                            0xdc, 0xfe, 0x10, 0x32, 0x54, 0x76, 0xc3, 0xd2, 0xe1, 0xf0};

/// out = the chaining value after one block of c[len], zero-padded, from t.
void compress(std::uint8_t *out, const std::uint8_t *t, const std::uint8_t *c,
              std::size_t len) noexcept {
  Wiped<std::array<std::uint8_t, kBlockLen>> block;
  Wiped<std::array<std::uint32_t, 16>> state;
  block->fill(0);
  std::memcpy(block->data(), c, std::min(len, kBlockLen));
  for (std::size_t i = 0; i < kDigestLen / 4; ++i)
    (*state)[i] = load_be32(t + 4 * i);
  zel_own_popsha1.CompressBlock(state->data(), block->data());
  zel_own_popsha1.DumpDigest(out, state->data());
}

/// The values one by one. The parts must be set first.
struct Generator {
  MINT xseed, xkey, q;
  const std::uint8_t *t;
  std::uint32_t len;  ///< bytes of XKEY's modulus
  Value first, previous;
  bool started;

  /// Writes the next value; false when it repeats the one before.
  bool next(Value &value) noexcept {
    Wiped<MINT> sum;
    Wiped<std::array<std::uint8_t, ZEL_MINT_BYTES>> bytes;
    Wiped<std::array<std::uint8_t, kBlockLen>> padded;
    std::uint32_t sum_len = 0;
    private_value::add_low_bytes(*sum, xkey, xseed, len);
    MINT_WriteInByteArray(bytes->data(), &sum_len, &*sum);
    padded->fill(0);
    sum_len = std::min(sum_len, len);
    std::memcpy(padded->data() + len - sum_len, bytes->data(), sum_len);
    compress(value.data(), t, padded->data(), len);
    if (!private_value::may_follow(previous, value, CONDITIONAL_SELFTEST_DSA_RNG_SHA1))
      return false;
    if (!started) first = value;
    started = true;

    // Deliberate: the standard moves XKEY on by the value just made; this is the first one in every
    // round, and as many of its bytes as the sum had. Existing values depend on it.
    private_value::set_bytes(*sum, first.data(), std::min(sum_len, kDigestLen));
    MINT_ModClassic(&*sum, &q);
    MINT_AddInteger(&*sum, &*sum, 1);
    private_value::add_low_bytes(xkey, xkey, *sum, len);
    return true;
  }
};

}  // namespace
}  // namespace zel

using namespace zel;

int32_t DSARNGSHA1_G(uint8_t *out20, const uint8_t *t, const uint8_t *c, uint32_t cBits) {
  if (any_null<const void *>(out20, t, c)) return ZEL_ERR_GENERIC;
  compress(out20, t, c, cBits / 8 + (cBits % 8 != 0 ? 1 : 0));
  return ZEL_OK;
}

int32_t DSARNGSHA1_GenerateX(uint8_t *out, uint32_t *outLens, const uint8_t *xseed, uint32_t b,
                             const uint8_t *xkey, uint32_t xkeyLen, const uint8_t *t,
                             const uint8_t *q, uint32_t qLen, uint32_t m) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (any_null<const void *>(out, outLens, xseed, xkey, t, q)) return ZEL_ERR_GENERIC;
  if (private_value::are_same(xseed, b, xkey, xkeyLen))
    return private_value::fail(ZEL_ERR_DSA_RNG_REPEAT);
  if (b > kBlockLen || xkeyLen > private_value::kMaxBytes || qLen > ZEL_MINT_BYTES ||
      private_value::is_zero(q, qLen)) {
    return ZEL_ERR_GENERIC;
  }
  Wiped<Generator> generator(Generator{});
  private_value::set_bytes(generator->xseed, xseed, b);
  private_value::set_bytes(generator->xkey, xkey, xkeyLen);
  private_value::set_bytes(generator->q, q, qLen);
  generator->t = t;
  generator->len = b;
  for (std::uint32_t j = 0; j < m; ++j) {
    Wiped<Value> value;
    const bool done = generator->next(*value);
    std::memcpy(out + std::size_t{kDigestLen} * j, value->data(), kDigestLen);
    if (!done) return private_value::fail(ZEL_ERR_GENERIC);
    // Deliberate: the length of XKEY, whatever the value has.
    outLens[j] = b;
  }
  return ZEL_OK;
}

int32_t DSARNGSHA1_GetRandomNum(uint8_t *out, uint32_t len) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (out == nullptr) return ZEL_ERR_GENERIC;
  Wiped<Generator> generator(Generator{});
  Wiped<Value> xseed;
  Wiped<Value> xkey;
  std::uint32_t seed_len = 0;
  PRIME_GeneratePrime(&generator->q, kPrimeBits, kPrimeBits, nullptr);
  if (generator->q.length == 0) return ZEL_ERR_GENERIC;
  RNGSEED_GetSeed(xseed->data(), &seed_len, 8 * kDigestLen);
  RNGSEED_GetSeedKey(xkey->data(), &seed_len, 8 * kDigestLen);
  if (private_value::are_same(xseed->data(), kDigestLen, xkey->data(), kDigestLen))
    return private_value::fail(ZEL_ERR_GENERIC);
  private_value::set_bytes(generator->xseed, xseed->data(), kDigestLen);
  private_value::set_bytes(generator->xkey, xkey->data(), kDigestLen);
  generator->t = kInitial.data();
  generator->len = kDigestLen;
  std::uint8_t *to = out;
  for (std::uint32_t left = len; left != 0;) {
    Wiped<Value> value;
    if (!generator->next(*value)) {
      wipe(out, len);
      return private_value::fail(ZEL_ERR_GENERIC);
    }
    const std::uint32_t part = std::min(left, kDigestLen);
    std::memcpy(to, value->data(), part);
    to += part;
    left -= part;
  }
  return ZEL_OK;
}
