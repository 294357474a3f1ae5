// The check of files against lists of digests.
#pragma once

#include "tools/zel/digest_job.hpp"

namespace zel::tool {

/// Checks every file that the lists name. The session ends as verification failure when a digest
/// does not match, as file error when a file cannot be read, as malformed when a line is not
/// understood.
void check_lists(Session &session, const DigestOptions &options,
                 const std::vector<Scheme> &schemes);

}  // namespace zel::tool
