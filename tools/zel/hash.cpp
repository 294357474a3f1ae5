// zel hash: digests of files and streams.
#include "tools/zel/digest_job.hpp"

namespace zel::tool {

Command hash_command() {
  const auto options = std::make_shared<DigestOptions>();
  Command command{
      "hash",
      "Digests of files and streams, and checks of digest lists",
      "Prints a line for each FILE: its digest and its name, in the form that sha256sum reads and "
      "writes. With -c it reads such lists, and those in BSD form, and tells for each file whether "
      "it still has its digest; the algorithm comes from the line or from the length of the "
      "digest, "
      "unless -a names it.\n"
      "Algorithms: sha224, sha256, sha384 and sha512 are approved; sha1, has160, ripemd160, md5 "
      "and "
      "md2 want --legacy.",
      {{"the digest of a program", "zel hash /bin/sh"},
       {"a list of all headers, checked by someone else's program",
        "zel hash /usr/include/*.h | sha256sum -c --quiet"},
       {"write a list, then check it",
        "zel hash -a sha512 -o list.txt -f /etc/passwd && zel hash -c list.txt"},
       {"a stream, in BSD form", "printf abc | zel hash --tag"}}};
  add_digest_options(command, *options);
  command.run = [options](Session &session) { run_digest_job(session, *options, hash_schemes()); };
  return command;
}

}  // namespace zel::tool
