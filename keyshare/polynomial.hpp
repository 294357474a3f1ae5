// Polynomials over a field: their values, from coefficients or from points.
#pragma once

#include <cstddef>

#include "keyshare/field.hpp"
#include "zel_cc/keyshare.h"

namespace zel::keyshare {

/// The value at x by Horner's rule, from the constant coefficient up. x may be any number that
/// fits.
inline void evaluate(MINT &y, const MINT *coefficients, std::size_t count, const MINT &x,
                     const Field &field) noexcept {
  Wiped<MINT> value(coefficients[count - 1]);
  for (std::size_t i = count - 1; i-- > 0;) {
    field.mul(*value, *value, x);
    field.add(*value, *value, coefficients[i]);
  }
  y = *value;
}

/// What became of an interpolation, without a branch; the value means something where there is an
/// inverse.
struct Interpolated {
  Mask equal_x;
  Mask has_inverse;
  Mask is_zero;
};

/// The value at `at` of the polynomial of degree below `count` through so many points. Lagrange's
/// formula over one denominator: the product of all differences of the x.
inline Interpolated interpolate(MINT &value, const KEYSHAREFS_SHARE *points, std::size_t count,
                                const MINT &at, const Field &field) noexcept {
  Wiped<MINT> sum(MINT{});
  Wiped<MINT> denominator;
  Wiped<MINT> term;
  Wiped<MINT> factor;
  const auto multiply = [&](MINT &product, const MINT &a, const MINT &b) {
    field.sub(*factor, a, b);
    field.mul(product, product, *factor);
    return field.is_zero(*factor);
  };
  Mask equal_x = 0;
  field.load(*denominator, MINT{1, {1}});
  field.load(*sum, *sum);
  for (std::size_t i = 0; i < count; ++i) {
    *term = points[i].y;
    for (std::size_t j = 0; j < count; ++j) {
      if (j == i) continue;
      multiply(*term, points[j].x, at);
      for (std::size_t k = j + 1; k < count; ++k) {
        if (k != i) multiply(*term, points[j].x, points[k].x);
      }
    }
    // The denominator has the differences of x[i] with the sign of its place.
    (count - i) % 2 != 0 ? field.add(*sum, *sum, *term) : field.sub(*sum, *sum, *term);
    for (std::size_t k = i + 1; k < count; ++k)
      equal_x |= multiply(*denominator, points[i].x, points[k].x);
  }
  const Mask has_inverse = field.invert(*denominator, *denominator);
  field.mul(value, *sum, *denominator);
  return {equal_x, has_inverse, field.is_zero(*sum)};
}

}  // namespace zel::keyshare
