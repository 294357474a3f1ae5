// The padding of a PSS signature. PKCS #1 (RFC 8017), section 9.1.2.
#pragma once

#include "tools/zel/key_record.hpp"
#include "zel_cc/hash.h"

namespace zel::tool {

/// Whether the public exponent is at least 65537. With a small one the bytes of the padding that
/// the library does not look at can be bent until a forgery fits.
bool has_pss_exponent(const Key &key);

/// Whether a signature that the library found good is one by the standard as well: the library
/// looks at salt and hash alone, this at the zero bytes and the separator before them, and the
/// exponent.
bool is_well_formed_pss(const Key &key, const HASH_ALGORITHM &hash, const MINT &signature);

}  // namespace zel::tool
