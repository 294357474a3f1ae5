#include "tools/zel/schemes.hpp"

#include <algorithm>
#include <array>
#include <cctype>

#include "base/bytes.hpp"
#include "tools/zel/failure.hpp"
#include "zel_cc/hmac.h"

namespace zel::tool {
namespace {

struct Hash {
  const char *name;
  const char *tag;
  std::vector<std::string> aliases;
  const HASH_ALGORITHM *descriptor;
  bool approved;
};

const std::vector<Hash> &hashes() {
  static const std::vector<Hash> all{
      {"sha256", "SHA256", {"sha2-256"}, &sha256, true},
      {"sha224", "SHA224", {"sha2-224"}, &sha224, true},
      {"sha384", "SHA384", {"sha2-384"}, &sha384, true},
      {"sha512", "SHA512", {"sha2-512"}, &sha512, true},
      {"sha1", "SHA1", {}, &popsha1, false},
      {"has160", "HAS160", {}, &pophas160, false},
      {"ripemd160", "RIPEMD160", {"rmd160"}, &ripemd160, false},
      {"md5", "MD5", {}, &popmd5, false},
      {"md2", "MD2", {}, &md2, false},
  };
  return all;
}

bool has_wide_counter(const HASH_ALGORITHM *descriptor) {
  return descriptor == &sha384 || descriptor == &sha512;
}

/// The digest that FIPS 180-4 defines, at any length.
///
/// From 512 MiB on the library's own SHA-384 and SHA-512 are not the standard's (see
/// docs/departures.md), and a file's digest is worth nothing when no other program agrees. There
/// the padding of section 5.1.2 is given as if it were message, and the state is the digest.
Bytes standard_digest(const HASH_CONTEXT &given) {
  constexpr std::uint64_t kDeparture = std::uint64_t{1} << 29;
  const HASH_ALGORITHM &algorithm = *given.descriptor;
  Bytes digest(algorithm.digest_len);
  const std::uint64_t len = given.area64.count_low;
  if (!has_wide_counter(&algorithm) || len < kDeparture) {
    std::uint32_t digest_len = 0;
    HASH_Finalize(digest.data(), &digest_len, &given);
    if (digest_len != digest.size()) throw library_failure("digest", ZEL_ERR_STATE);
    return digest;
  }
  constexpr std::size_t kBlock = 128;
  constexpr std::size_t kLengthField = 16;
  std::array<std::uint8_t, 2 * kBlock> padding{0x80};
  const std::size_t used = len % kBlock;
  const std::size_t padding_len = (used + 1 + kLengthField <= kBlock ? 1 : 2) * kBlock - used;
  store_be64(&padding[padding_len - 16], len >> 61);
  store_be64(&padding[padding_len - 8], len << 3);
  Wiped<HASH_CONTEXT> context(given);
  HASH_Update(&*context, padding.data(), static_cast<std::uint32_t>(padding_len));
  algorithm.DumpDigest(digest.data(), context->area64.state);
  return digest;
}

class HashStream : public Stream {
 public:
  explicit HashStream(const Hash &hash) {
    const int status = HASH_InitializeEx(&context_, hash.descriptor);
    if (status != ZEL_OK) throw library_failure(hash.name, status);
  }
  void add(std::span<const std::uint8_t> bytes) override {
    in_pieces(bytes, [this](const auto *data, auto len) { HASH_Update(&context_, data, len); });
  }
  Bytes finish() override { return standard_digest(context_); }

 private:
  HASH_CONTEXT context_;
};

class HmacStream : public Stream {
 public:
  HmacStream(const Hash &hash, std::span<const std::uint8_t> key) {
    const int status = HMAC_InitializeEx(&*context_, key.data(),
                                         static_cast<std::uint32_t>(key.size()), hash.descriptor);
    if (status != ZEL_OK) throw library_failure(std::string("hmac-") + hash.name, status);
  }
  void add(std::span<const std::uint8_t> bytes) override {
    in_pieces(bytes, [this](const auto *data, auto len) { __HMAC_Update(&*context_, data, len); });
  }
  Bytes finish() override {
    const Bytes inner = standard_digest(context_->inner);
    Wiped<HASH_CONTEXT> outer(context_->outer);
    HASH_Update(&*outer, inner.data(), static_cast<std::uint32_t>(inner.size()));
    return standard_digest(*outer);
  }

 private:
  Wiped<HMAC_CONTEXT> context_;
};

std::string plain(std::string_view name) {
  std::string result;
  for (const char c : name) {
    if (c != '-' && c != '_')
      result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return result;
}

}  // namespace

bool Scheme::answers_to(std::string_view given) const {
  const std::string wanted = plain(given);
  const auto same = [&wanted](const std::string &known) { return plain(known) == wanted; };
  return same(name) || same(tag) || std::any_of(aliases.begin(), aliases.end(), same);
}

std::vector<Scheme> hash_schemes() {
  std::vector<Scheme> schemes;
  for (const Hash &hash : hashes()) {
    schemes.push_back({hash.name, hash.tag, hash.aliases, hash.descriptor->digest_len,
                       hash.approved, hash.descriptor,
                       [&hash] { return std::make_unique<HashStream>(hash); }});
  }
  return schemes;
}

std::vector<Scheme> hmac_schemes(std::span<const std::uint8_t> key) {
  std::vector<Scheme> schemes;
  for (const Hash &hash : hashes()) {
    std::vector<std::string> aliases{hash.name};
    for (const std::string &alias : hash.aliases) {
      aliases.push_back(alias);
      aliases.push_back("hmac-" + alias);
    }
    schemes.push_back({std::string("hmac-") + hash.name, std::string("HMAC-") + hash.tag, aliases,
                       hash.descriptor->digest_len, hash.approved, hash.descriptor,
                       [&hash, key] { return std::make_unique<HmacStream>(hash, key); }});
  }
  return schemes;
}

const Scheme &find_scheme(const std::vector<Scheme> &schemes, std::string_view name) {
  std::string known;
  for (const Scheme &scheme : schemes) {
    if (scheme.answers_to(name)) return scheme;
    known += (known.empty() ? "" : ", ") + scheme.name;
  }
  throw Failure(Exit::kUsage, std::string(name), "no such algorithm", "choose one of " + known);
}

}  // namespace zel::tool
