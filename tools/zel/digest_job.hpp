// What `zel hash` and `zel mac` share: a digest a file, and the check of lists of digests.
#pragma once

#include <string>
#include <vector>

#include "tools/zel/command.hpp"
#include "tools/zel/digest_list.hpp"
#include "tools/zel/schemes.hpp"

namespace zel::tool {

struct DigestOptions {
  std::optional<std::string> algorithm;
  ListForm form;
  std::vector<std::string> lists;
  bool ignore_missing = false;
  bool lenient = false;
  std::vector<std::string> files;
};

/// Gives a command the options and arguments that both have.
void add_digest_options(Command &command, DigestOptions &options);

/// The algorithm that -a names, or the default.
const Scheme &chosen_scheme(const DigestOptions &options, const std::vector<Scheme> &schemes);

/// A line for each file, or the check of the lists.
void run_digest_job(Session &session, const DigestOptions &options,
                    const std::vector<Scheme> &schemes);

/// The digest of one input.
struct FileDigest {
  Bytes digest;
  std::uint64_t len;
};
FileDigest digest_of(const std::string &file, const Scheme &scheme, Progress &progress);

/// The sizes of all files together; nothing when one of them is a stream.
std::optional<std::uint64_t> total_size(const std::vector<std::string> &files);

}  // namespace zel::tool
