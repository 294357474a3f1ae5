// Key sharing: values of secret polynomials, and secrets from shares.
#include "keyshare/polynomial.hpp"
#include "tests/ct/numbers.hpp"
#include "tests/ct/probe.hpp"

namespace zel::test {
namespace {

/// Splits and recovers with a threshold, modulo a Mersenne prime.
void share(std::size_t threshold, std::uint32_t bits) {
  MINT prime;
  p_max(&prime, bits);
  const keyshare::Field field(prime);
  const std::uint32_t words = field.words();
  MINT coefficients[3];
  KEYSHAREFS_SHARE points[3];
  for (std::uint32_t i = 0; i < 3; ++i) {
    field.load(coefficients[i], number(words, 4 + i));
    field.load(points[i].x, number(words, 20 + i));
    secret(coefficients[i]);
    secret(points[i].x);
    open(coefficients[i].length);
    open(points[i].x.length);
    field.reduce(points[i].x, points[i].x);
    field.reduce(coefficients[i], coefficients[i]);
  }
  for (KEYSHAREFS_SHARE &point : points) {
    MINT y, stored;
    keyshare::evaluate(y, coefficients, threshold, point.x, field);
    field.store(stored, y);
    open(stored.length);
    const keyshare::Mask good = field.contains(stored) & field.fits(stored);
    open(good);
    require(good != 0, "contains");
    field.load(point.y, stored);
    // A stored length shows, and only that.
    secret(point.y.words, 4 * words);
  }
  MINT value;
  const keyshare::Interpolated outcome =
      keyshare::interpolate(value, points, threshold, MINT{}, field);
  open(outcome);
  open(value);
  open(coefficients[0]);
  require(outcome.equal_x == 0 && outcome.has_inverse != 0 && outcome.is_zero == 0, "outcome");
  require(MINT_Compare(&value, &coefficients[0]) == 0, "secret");
}

const Probe kSharing{"shares and their interpolation", [] {
                       for (const std::uint32_t bits : {31U, 61U, 127U, 521U, 2203U}) {
                         share(2, bits);
                         share(3, bits);
                       }
                     }};

}  // namespace
}  // namespace zel::test
