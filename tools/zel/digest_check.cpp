#include "tools/zel/digest_check.hpp"
#include "tools/zel/json.hpp"

#include <algorithm>

#include "base/ct.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kListLimit = std::size_t{1} << 30;

/// One line of a list, understood.
struct Item {
  std::string file;
  Bytes digest;
  const Scheme *scheme;
};

struct Counts {
  std::size_t matched = 0;
  std::size_t mismatched = 0;
  std::size_t unreadable = 0;
  std::size_t missing = 0;
  std::size_t malformed = 0;
};

std::string plural(std::size_t count, const std::string &noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// What a line without a tag means: the algorithm given, or else the one whose digests alone are
/// that long.
const Scheme *scheme_for_untagged(const std::vector<Scheme> &schemes, const DigestOptions &options,
                                  std::size_t digest_len) {
  if (options.algorithm) return &find_scheme(schemes, *options.algorithm);
  const Scheme *found = nullptr;
  for (const Scheme &scheme : schemes) {
    if (scheme.digest_len != digest_len) continue;
    if (found != nullptr) return nullptr;
    found = &scheme;
  }
  return found;
}

class Check {
 public:
  Check(Session &session, const DigestOptions &options, const std::vector<Scheme> &schemes)
      : session_(session), options_(options), schemes_(schemes) {}

  void read(const std::string &list);
  void run();
  void report();

 private:
  const Scheme *scheme_of(const ListEntry &entry) const;
  void malformed(const std::string &list, std::size_t line, const std::string &problem,
                 const std::string &advice);
  void check(const Item &item, Progress &progress);
  void verdict(const Item &item, const char *word, const char *key);

  Session &session_;
  const DigestOptions &options_;
  const std::vector<Scheme> &schemes_;
  std::vector<Item> items_;
  Counts counts_;
};

const Scheme *Check::scheme_of(const ListEntry &entry) const {
  if (entry.tag.empty()) {
    return scheme_for_untagged(schemes_, options_, entry.digest.size() / 2);
  }
  const auto found = std::find_if(schemes_.begin(), schemes_.end(), [&entry](const Scheme &scheme) {
    return scheme.answers_to(entry.tag);
  });
  return found == schemes_.end() ? nullptr : &*found;
}

void Check::malformed(const std::string &list, std::size_t line, const std::string &problem,
                      const std::string &advice) {
  ++counts_.malformed;
  const Failure failure(Exit::kMalformed, shown(list) + ", line " + std::to_string(line), problem,
                        advice);
  if (options_.lenient) {
    session_.warn(failure.line());
  } else {
    session_.complain(failure);
  }
}

void Check::read(const std::string &list) {
  Input input(list);
  const List content = parse_list(read_whole(input, list, kListLimit), options_.form.zero);
  for (const std::size_t line : content.malformed)
    malformed(list, line, "not a line of digest and file name",
              "compare it with the original list");
  for (const ListEntry &entry : content.entries) {
    const Scheme *scheme = scheme_of(entry);
    if (scheme == nullptr && entry.tag.empty()) {
      malformed(list, entry.line,
                "no telling which algorithm made these " + plural(entry.digest.size(), "digit"),
                "name it with -a");
    } else if (scheme == nullptr) {
      malformed(list, entry.line, "no algorithm is called " + shown(entry.tag), "see 'zel info'");
    } else if (entry.digest.size() != 2 * scheme->digest_len) {
      malformed(list, entry.line,
                plural(entry.digest.size(), "digit") + " where " + scheme->name + " has " +
                    std::to_string(2 * scheme->digest_len),
                "compare it with the original list");
    } else {
      items_.push_back({entry.file, *from_hex(entry.digest), scheme});
    }
  }
  if (content.entries.empty()) {
    throw Failure(Exit::kMalformed, list, "no line of digest and file name in it",
                  "give the list that 'zel " + session_.command() + "' or sha256sum wrote");
  }
}

void Check::verdict(const Item &item, const char *word, const char *key) {
  const EscapedName name = escape_name(item.file);
  const bool good = std::string_view(key) == "match";
  if (!good || !session_.flags().quiet) {
    session_.print((name.escaped ? "\\" : "") + name.text + ": " + word + "\n");
  }
  Json entry = Json::object();
  set_file_name(entry, item.file);
  entry["algorithm"] = item.scheme->name;
  entry["result"] = key;
  session_.result()["files"].push_back(std::move(entry));
}

void Check::check(const Item &item, Progress &progress) {
  if (options_.ignore_missing && item.file != "-" && !exists(item.file)) {
    ++counts_.missing;
    return;
  }
  try {
    const Bytes digest = digest_of(item.file, *item.scheme, progress).digest;
    if (ct::equal(digest.data(), item.digest.data(), digest.size())) {
      ++counts_.matched;
      verdict(item, "OK", "match");
    } else {
      ++counts_.mismatched;
      session_.ends(Exit::kVerification);
      verdict(item, "FAILED", "mismatch");
    }
  } catch (const Failure &failure) {
    if (failure.exit() != Exit::kFile) throw;
    ++counts_.unreadable;
    session_.complain(failure);
    verdict(item, "FAILED open or read", "unreadable");
  }
}

void Check::run() {
  std::vector<std::string> files;
  for (const Item &item : items_) {
    item.scheme->start();  // a refusal comes before any file is read
    files.push_back(item.file);
  }
  session_.result()["files"] = Json::array();
  if (session_.output() != "-") session_.open_output();
  const auto progress = session_.progress("check", total_size(files));
  for (const Item &item : items_)
    check(item, *progress);
  session_.note(progress->summary());
  if (session_.exit() == Exit::kDone) progress->finish();
}

void Check::report() {
  session_.result()["matched"] = counts_.matched;
  session_.result()["mismatched"] = counts_.mismatched;
  session_.result()["unreadable"] = counts_.unreadable;
  session_.result()["missing"] = counts_.missing;
  session_.result()["malformed"] = counts_.malformed;
  if (counts_.mismatched != 0) {
    session_.warn(plural(counts_.mismatched, "file") + " of " + std::to_string(items_.size()) +
                  " did NOT match");
  }
  const bool none = counts_.matched + counts_.mismatched + counts_.unreadable == 0;
  if (none && session_.exit() == Exit::kDone) {
    throw Failure(Exit::kFile, "-c", "no file was checked",
                  "run it in the folder that the list was made in");
  }
}

}  // namespace

void check_lists(Session &session, const DigestOptions &options,
                 const std::vector<Scheme> &schemes) {
  Check check(session, options, schemes);
  for (const std::string &list : options.lists)
    check.read(list);
  check.run();
  check.report();
}

}  // namespace zel::tool
