// Whether a key is what it should be, before anything is done with it.
#pragma once

#include "tools/zel/key_record.hpp"

namespace zel::tool {

/// Checks ranges, then what the library checks (primes, orders, the relations of the numbers), then
/// that a signature of a private key verifies. Completes a private DSA or KCDSA key by its public
/// number. `Malformed` when the key is not good; a `Failure` when the module refuses the scheme.
void check_key(Key &key);

}  // namespace zel::tool
