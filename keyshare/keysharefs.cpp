// Shamir's threshold scheme with a line or a parabola. A. Shamir, "How to share a secret",
// Communications of the ACM 22 (1979).
#include <algorithm>

#include "base/bytes.hpp"
#include "core/gate.hpp"
#include "keyshare/polynomial.hpp"
#include "zel_cc/mint_rand.h"
#include "zel_cc/prime.h"

namespace zel::keyshare {
namespace {

constexpr std::uint32_t kMaxShares = ZEL_KEYSHARE_MAX_SHARES;
constexpr std::uint32_t kMaxThreshold = 3;
/// Draws before a generator counts as broken. Five x of 16 bits clash once in 6,500 times.
constexpr int kTries = 1000;

struct Scheme {
  std::uint32_t threshold;
  std::int32_t bad_count;
  std::int32_t too_few;
  std::int32_t equal_x;
  std::int32_t no_inverse;
};
constexpr Scheme kLine{2, ZEL_ERR_SHARE2_COUNT, ZEL_ERR_SHARE2_TOO_FEW, ZEL_ERR_SHARE2_SUBTRACT,
                       ZEL_ERR_SHARE2_INVERSE};
constexpr Scheme kParabola{3, ZEL_ERR_SHARE3_COUNT, ZEL_ERR_SHARE3_TOO_FEW, ZEL_ERR_SHARE3_SUBTRACT,
                           ZEL_ERR_SHARE3_INVERSE};

struct Coefficients {
  MINT at[kMaxThreshold];
};
struct Arguments {
  MINT x[kMaxShares];
};
struct Points {
  KEYSHAREFS_SHARE at[kMaxThreshold];
};

/// Values, whatever the lengths; words above them are zero in both.
bool same(const MINT &a, const MINT &b) noexcept {
  return ct::equal(reinterpret_cast<const std::uint8_t *>(a.words),
                   reinterpret_cast<const std::uint8_t *>(b.words), sizeof a.words);
}

/// Whether no x is that of an earlier one.
bool all_different(const Arguments &arguments, std::uint64_t n) noexcept {
  bool different = true;
  for (std::uint64_t i = 1; i < n; ++i) {
    for (std::uint64_t j = 0; j < i; ++j)
      different &= !same(arguments.x[i], arguments.x[j]);
  }
  return different;
}

// Deliberate: coefficients and x have a bit less than the prime, and zero is not excluded. So one
// share says up to a bit about the secret, and one with x = 0 is the secret. Programs that seed
// rand() rely on the sequence.
bool draw_arguments(Arguments &arguments, std::uint64_t n, std::uint32_t bits) noexcept {
  for (int tries = 0; tries < kTries; ++tries) {
    for (std::uint64_t i = 0; i < n; ++i)
      MINT_Rand(&arguments.x[i], bits);
    if (all_different(arguments, n)) return true;
  }
  return false;
}

std::int32_t split(KEYSHAREFS_SHARE_SET *out, const std::uint8_t *secret, std::uint32_t secret_len,
                   std::uint64_t n, const Scheme &scheme) noexcept {
  if (n < scheme.threshold || n > kMaxShares) return scheme.bad_count;
  if (any_null<const void *>(out, secret)) return ZEL_ERR_GENERIC;
  if (secret_len < ZEL_KEYSHARE_MIN_SECRET_LEN || secret_len > ZEL_KEYSHARE_MAX_SECRET_LEN) {
    return ZEL_ERR_GENERIC;
  }
  const std::uint32_t bits = 8 * secret_len;
  MINT_RandInit();
  // With its top bit set it is above every secret.
  MINT prime{};
  PRIME_GeneratePrime(&prime, bits + 1, bits + 1, nullptr);
  if (prime.length == 0) return ZEL_ERR_GENERIC;
  const Field field(prime);

  Wiped<Coefficients> coefficients(Coefficients{});
  for (std::uint32_t i = scheme.threshold; i-- > 1;) {
    MINT_Rand(&coefficients->at[i], bits);
    field.load(coefficients->at[i], coefficients->at[i]);
  }
  MINT_SetByByteArray(&coefficients->at[0], secret, static_cast<std::int32_t>(secret_len));
  field.load(coefficients->at[0], coefficients->at[0]);
  Wiped<Arguments> arguments(Arguments{});
  if (!draw_arguments(*arguments, n, bits)) return ZEL_ERR_GENERIC;

  for (std::uint64_t i = 0; i < n; ++i) {
    KEYSHAREFS_SHARE &share = out->shares[i];
    share.x = arguments->x[i];
    evaluate(share.y, coefficients->at, scheme.threshold, share.x, field);
    field.store(share.y, share.y);
  }
  out->prime = prime;
  out->count = n;
  return ZEL_OK;
}

/// A set as far as it can be checked without a field.
std::int32_t check_form(const KEYSHAREFS_SHARE_SET &set, const Scheme &scheme) noexcept {
  if (set.count < scheme.threshold) return scheme.too_few;
  if (set.prime.length == 0 || set.prime.words[0] % 2 == 0) return scheme.no_inverse;
  if (set.count > kMaxShares || set.prime.length > ZEL_MINT_WORDS) return ZEL_ERR_GENERIC;
  const auto too_long = [](const KEYSHAREFS_SHARE &share) {
    return share.x.length > ZEL_MINT_WORDS || share.y.length > ZEL_MINT_WORDS;
  };
  const bool bad = std::any_of(set.shares, set.shares + set.count, too_long);
  return bad ? ZEL_ERR_GENERIC : ZEL_OK;
}

/// The shares that interpolation needs, as elements of the field.
bool load_points(Points &points, const KEYSHAREFS_SHARE_SET &set, std::uint32_t count,
                 const Field &field) noexcept {
  Mask good = ~Mask{0};
  for (std::uint32_t i = 0; i < count; ++i) {
    const KEYSHAREFS_SHARE &share = set.shares[i];
    good &= field.fits(share.x) & field.contains(share.y);
    field.load(points.at[i].y, share.y);
    field.load(points.at[i].x, share.x);
    field.reduce(points.at[i].x, points.at[i].x);
  }
  return good != 0;
}

/// Deliberate: a line through zero is refused, though its value at zero is as good as any other.
std::int32_t status_of(const Interpolated &outcome, const Scheme &scheme) noexcept {
  if (outcome.equal_x != 0) return scheme.equal_x;
  if (outcome.has_inverse == 0) return scheme.no_inverse;
  if (scheme.threshold == kLine.threshold && outcome.is_zero != 0) return scheme.equal_x;
  return ZEL_OK;
}

std::int32_t recover(std::uint8_t *secret, std::uint32_t *secret_len,
                     const KEYSHAREFS_SHARE_SET *in, const Scheme &scheme) noexcept {
  if (any_null<const void *>(secret, secret_len, in)) return ZEL_ERR_GENERIC;
  const std::int32_t form = check_form(*in, scheme);
  if (form != ZEL_OK) return form;
  const Field field(in->prime);
  Wiped<Points> points;
  if (!load_points(*points, *in, scheme.threshold, field)) return ZEL_ERR_GENERIC;
  Wiped<MINT> value;
  const std::int32_t status =
      status_of(interpolate(*value, points->at, scheme.threshold, MINT{}, field), scheme);
  if (status != ZEL_OK) return status;
  field.store(*value, *value);
  // Deliberate: leading zero bytes are not part of the integer.
  MINT_WriteInByteArray(secret, secret_len, &*value);
  return ZEL_OK;
}

/// An x that the set does not have. Deliberate: it may be above the prime, as x has whole words.
bool draw_new(MINT &x, const KEYSHAREFS_SHARE_SET &set, std::uint32_t words) noexcept {
  Wiped<Arguments> arguments(Arguments{});
  for (std::uint64_t i = 0; i < set.count; ++i)
    std::copy_n(set.shares[i].x.words, set.shares[i].x.length, arguments->x[i].words);
  for (int tries = 0; tries < kTries; ++tries) {
    MINT_Rand(&x, 32 * words);
    bool is_new = true;
    for (std::uint64_t i = 0; i < set.count; ++i)
      is_new &= !same(x, arguments->x[i]);
    if (is_new) return true;
  }
  return false;
}

std::int32_t reissue(KEYSHAREFS_SHARE *out, const KEYSHAREFS_SHARE_SET *in) noexcept {
  if (any_null<const void *>(out, in)) return ZEL_ERR_GENERIC;
  const std::int32_t form = check_form(*in, kLine);
  if (form != ZEL_OK) return form;
  const Field field(in->prime);
  Wiped<Points> points;
  if (!load_points(*points, *in, kLine.threshold, field)) return ZEL_ERR_GENERIC;
  MINT_RandInit();
  Wiped<MINT> value;
  std::int32_t status =
      status_of(interpolate(*value, points->at, kLine.threshold, MINT{}, field), kLine);
  if (status == ZEL_OK && same(points->at[0].y, points->at[1].y)) status = kLine.equal_x;
  if (status != ZEL_OK) return status;

  Wiped<KEYSHAREFS_SHARE> share(KEYSHAREFS_SHARE{});
  const std::uint32_t words = std::min(in->shares[0].x.length, field.words());
  if (!draw_new(share->x, *in, words)) return ZEL_ERR_GENERIC;
  Wiped<MINT> at;
  field.load(*at, share->x);
  field.reduce(*at, *at);
  interpolate(*value, points->at, kLine.threshold, *at, field);
  field.store(share->y, *value);
  *out = *share;
  return ZEL_OK;
}

}  // namespace
}  // namespace zel::keyshare

using namespace zel;

int32_t KEYSHAREFS_Gen2SharedInfo(KEYSHAREFS_SHARE_SET *out, const uint8_t *secret,
                                  uint32_t secretLen, uint64_t n) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return keyshare::split(out, secret, secretLen, n, keyshare::kLine);
}

int32_t KEYSHAREFS_Recover2SharedInfo(uint8_t *secretOut, uint32_t *secretLen,
                                      const KEYSHAREFS_SHARE_SET *in) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return keyshare::recover(secretOut, secretLen, in, keyshare::kLine);
}

int32_t KEYSHAREFS_Repro2SharedInfo(KEYSHAREFS_SHARE *out, const KEYSHAREFS_SHARE_SET *in) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return keyshare::reissue(out, in);
}

int32_t KEYSHAREFS_Gen3SharedInfo(KEYSHAREFS_SHARE_SET *out, const uint8_t *secret,
                                  uint32_t secretLen, uint64_t n) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return keyshare::split(out, secret, secretLen, n, keyshare::kParabola);
}

int32_t KEYSHAREFS_Recover3SharedInfo(uint8_t *secretOut, uint32_t *secretLen,
                                      const KEYSHAREFS_SHARE_SET *in) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only()) return ZEL_ERR_APPROVED;
  return keyshare::recover(secretOut, secretLen, in, keyshare::kParabola);
}
