// A big integer for GMP.
#pragma once

#include <gmp.h>

#include "zel_cc.h"

namespace zel::bench {

/// The value of a record; measurements share it by std::shared_ptr.
struct GmpNumber {
  mpz_t z;
  explicit GmpNumber(const MINT &a) {
    mpz_init(z);
    mpz_import(z, a.length, -1, sizeof a.words[0], 0, 0, a.words);
  }
  GmpNumber(const GmpNumber &) = delete;
  GmpNumber &operator=(const GmpNumber &) = delete;
  ~GmpNumber() { mpz_clear(z); }
  const mp_limb_t *limbs() const { return mpz_limbs_read(z); }
  mp_size_t size() const { return static_cast<mp_size_t>(mpz_size(z)); }
};

}  // namespace zel::bench
