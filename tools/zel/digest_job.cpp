#include "tools/zel/digest_job.hpp"

#include <unistd.h>

#include "tools/zel/digest_check.hpp"
#include "tools/zel/json.hpp"

namespace zel::tool {
namespace {

void add_result(Session &session, const std::string &file, const FileDigest &digest) {
  Json entry = Json::object();
  set_file_name(entry, file);
  entry["digest"] = to_hex(digest.digest);
  entry["bytes"] = digest.len;
  session.result()["files"].push_back(std::move(entry));
}

void add_failure(Session &session, const std::string &file, const Failure &failure) {
  Json entry = Json::object();
  set_file_name(entry, file);
  entry["error"] = failure.line();
  session.result()["files"].push_back(std::move(entry));
}

void digest_files(Session &session, const DigestOptions &options, const Scheme &scheme,
                  const std::vector<std::string> &files) {
  session.result()["algorithm"] = scheme.name;
  session.result()["files"] = Json::array();
  if (session.output() != "-") session.open_output();
  scheme.start();  // a refusal is one error, not one for each file
  if (files.front() == "-" && ::isatty(STDIN_FILENO) == 1) {
    session.note("reading from the terminal; Ctrl-D ends it");
  }
  const auto progress = session.progress(session.command(), total_size(files));
  for (const std::string &file : files) {
    try {
      const FileDigest digest = digest_of(file, scheme, *progress);
      session.print(list_line(options.form, scheme.tag, to_hex(digest.digest), file));
      add_result(session, file, digest);
    } catch (const Failure &failure) {
      if (failure.exit() != Exit::kFile) throw;
      session.complain(failure);
      add_failure(session, file, failure);
    }
  }
  session.note(progress->summary());
  if (session.exit() == Exit::kDone) progress->finish();
}

}  // namespace

void add_digest_options(Command &command, DigestOptions &options) {
  std::vector<std::string> names;
  for (const Scheme &scheme : hash_schemes())
    names.push_back(scheme.name);
  command.positionals = {{"", "", "FILE", "Files; - or none is standard input", &options.files}};
  command.options.insert(
      command.options.end(),
      {{"a", "algorithm", "NAME", "Algorithm; sha256 when not given", &options.algorithm, names},
       {"c", "check", "LIST", "Check the files that LIST names; may be repeated", &options.lists},
       {"", "tag", "", "Write lines in BSD form: SHA256 (file) = digest", &options.form.tagged},
       {"z", "zero", "", "End lines with NUL and do not escape file names", &options.form.zero},
       {"", "ignore-missing", "", "With -c: pass over files that do not exist",
        &options.ignore_missing},
       {"", "lenient", "", "With -c: malformed lines are no failure", &options.lenient}});
}

const Scheme &chosen_scheme(const DigestOptions &options, const std::vector<Scheme> &schemes) {
  return find_scheme(schemes, options.algorithm.value_or("sha256"));
}

FileDigest digest_of(const std::string &file, const Scheme &scheme, Progress &progress) {
  alignas(64) static std::uint8_t buffer[kChunk];
  Input input(file);
  const auto stream = scheme.start();
  std::uint64_t len = 0;
  while (const std::size_t got = input.read(buffer)) {
    stream->add({buffer, got});
    progress.add(got);
    len += got;
  }
  return {stream->finish(), len};
}

std::optional<std::uint64_t> total_size(const std::vector<std::string> &files) {
  std::uint64_t total = 0;
  for (const std::string &file : files) {
    const auto size = size_of(file);
    if (!size && exists(file)) return std::nullopt;
    total += size.value_or(0);
  }
  return total;
}

void run_digest_job(Session &session, const DigestOptions &options,
                    const std::vector<Scheme> &schemes) {
  if (options.lists.empty()) {
    if (options.ignore_missing || options.lenient) {
      throw Failure(Exit::kUsage, options.lenient ? "--lenient" : "--ignore-missing",
                    "has no meaning without -c", "name a LIST with -c");
    }
    const std::vector<std::string> standard_input{"-"};
    digest_files(session, options, chosen_scheme(options, schemes),
                 options.files.empty() ? standard_input : options.files);
    return;
  }
  if (!options.files.empty()) {
    throw Failure(Exit::kUsage, options.files.front(), "a FILE beside -c LIST",
                  "the list names the files");
  }
  check_lists(session, options, schemes);
}

}  // namespace zel::tool
