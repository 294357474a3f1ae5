// Secrets into shares and back: the library's scheme over an encoding that gives back exactly the
// bytes that were shared, and tells when it cannot.
#pragma once

#include <vector>

#include "tools/zel/secret.hpp"
#include "tools/zel/share_file.hpp"

namespace zel::tool {

/// A `Failure` where the module does not serve key sharing, before anything is read.
void require_key_sharing();

/// Shares 1 to `count`, from which the secret was recovered again for a trial.
std::vector<Share> split_secret(std::span<const std::uint8_t> secret, std::uint32_t threshold,
                                std::uint32_t count);

/// The secret. All shares must belong together and agree, also those beyond the threshold.
Secret combine_shares(const std::vector<Share> &shares);

/// One more share for threshold two.
Share reissue_share(const std::vector<Share> &shares, std::uint32_t index);

}  // namespace zel::tool
