#include "tools/zel/sharing.hpp"

#include <algorithm>

#include "base/ct.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/generator.hpp"
#include "tools/zel/schemes.hpp"
#include "zel_cc/errors.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

constexpr std::uint8_t kLead = 1;  // the integer has all bytes of the encoding
constexpr std::string_view kTagDomain = "zel-share 1";
constexpr std::size_t kMostShares = 32;

using Chosen = std::vector<const Share *>;

/// Ties a secret and its salt to what the share files say about them.
std::array<std::uint8_t, kTagLen> tag_of(const ShareHeader &header,
                                         std::span<const std::uint8_t> salt,
                                         std::span<const std::uint8_t> secret) {
  const auto stream = find_scheme(hash_schemes(), "sha256").start();
  const auto threshold = static_cast<std::uint8_t>(header.threshold);
  stream->add({reinterpret_cast<const std::uint8_t *>(kTagDomain.data()), kTagDomain.size()});
  stream->add(header.set);
  stream->add({&threshold, 1});
  stream->add(salt);
  stream->add(secret);
  const Bytes digest = stream->finish();
  std::array<std::uint8_t, kTagLen> tag{};
  std::copy_n(digest.begin(), tag.size(), tag.begin());
  return tag;
}

/// 01, salt, tag, secret.
Secret encode(const ShareHeader &header, std::span<const std::uint8_t> salt,
              std::span<const std::uint8_t> secret) {
  Secret encoded(kOverhead + secret.size());
  const auto append = [&encoded](std::span<const std::uint8_t> bytes) {
    std::copy(bytes.begin(), bytes.end(), encoded.room().begin());
    encoded.grow(bytes.size());
  };
  append({&kLead, 1});
  append(salt);
  append(tag_of(header, salt, secret));
  append(secret);
  return encoded;
}

/// The secret in an encoding; nothing when it is none.
std::optional<Secret> decode(const ShareHeader &header, std::span<const std::uint8_t> encoded) {
  if (encoded.size() != kOverhead + header.secret_len || encoded[0] != kLead) return std::nullopt;
  const auto salt = encoded.subspan(1, kSaltLen);
  const auto secret = encoded.subspan(kOverhead);
  const auto tag = tag_of(header, salt, secret);
  if (!ct::equal(tag.data(), encoded.data() + 1 + kSaltLen, tag.size())) return std::nullopt;
  Secret decoded(secret.size());
  std::copy(secret.begin(), secret.end(), decoded.room().begin());
  decoded.grow(secret.size());
  return decoded;
}

void fill(KEYSHAREFS_SHARE_SET &set, const Chosen &shares) {
  set.prime = shares.front()->header.prime;
  for (const Share *share : shares)
    set.shares[set.count++] = share->point;
}

/// What as many shares as the threshold has give; nothing when they do not fit together.
std::optional<Secret> recover(const Chosen &shares) {
  const ShareHeader &header = shares.front()->header;
  Wiped<KEYSHAREFS_SHARE_SET> set(KEYSHAREFS_SHARE_SET{});
  fill(*set, shares);
  struct Buffer {
    std::uint8_t bytes[ZEL_MINT_BYTES];
  };
  Wiped<Buffer> encoded;
  std::uint32_t len = 0;
  const auto service =
      header.threshold == 2 ? KEYSHAREFS_Recover2SharedInfo : KEYSHAREFS_Recover3SharedInfo;
  const std::int32_t status = service(encoded->bytes, &len, &*set);
  if (status == ZEL_ERR_STATE || status == ZEL_ERR_APPROVED) {
    throw library_failure("key sharing", status);
  }
  if (status != ZEL_OK) return std::nullopt;
  return decode(header, {encoded->bytes, len});
}

[[noreturn]] void refuse_mixture(const Share &share, const Share &other) {
  throw Failure(Exit::kMalformed, share.source,
                "of another set than " + shown(other.source) + ": they share different secrets",
                "combine shares with the same line 'set: ...'");
}

/// The shares without repetitions, when all are of one set and there are enough of them.
Chosen checked(const std::vector<Share> &shares) {
  Chosen chosen;
  for (const Share &share : shares) {
    const Share &first = shares.front();
    if (share.header.set != first.header.set || share.header.threshold != first.header.threshold ||
        share.header.secret_len != first.header.secret_len ||
        MINT_Compare(&share.header.prime, &first.header.prime) != 0) {
      refuse_mixture(share, first);
    }
    const auto twin = std::find_if(chosen.begin(), chosen.end(), [&share](const Share *other) {
      return MINT_Compare(&share.point.x, &other->point.x) == 0;
    });
    if (twin == chosen.end()) {
      chosen.push_back(&share);
    } else if (MINT_Compare(&share.point.y, &(*twin)->point.y) != 0) {
      throw Failure(Exit::kVerification, share.source,
                    "contradicts " + shown((*twin)->source) + ": one of them was altered",
                    "leave one of them out");
    }
  }
  const std::size_t threshold = shares.front().header.threshold;
  if (chosen.size() < threshold) {
    throw Failure(Exit::kUsage, shares.front().source,
                  std::to_string(threshold) + " different shares of its set are needed, and " +
                      std::to_string(chosen.size()) + (chosen.size() == 1 ? " is" : " are") +
                      " given",
                  "name the others too");
  }
  if (chosen.size() > kMostShares) {
    throw Failure(Exit::kUsage, chosen.back()->source, "more shares than anyone needs",
                  "name at most " + std::to_string(kMostShares));
  }
  return chosen;
}

/// The first choice of shares that gives a secret, and the secret.
std::optional<Secret> find_secret(const Chosen &shares, Chosen &good) {
  std::vector<bool> taken(shares.size());
  std::fill_n(taken.begin(), shares.front()->header.threshold, true);
  do {
    good.clear();
    for (std::size_t i = 0; i < shares.size(); ++i) {
      if (taken[i]) good.push_back(shares[i]);
    }
    if (auto secret = recover(good)) return secret;
  } while (std::prev_permutation(taken.begin(), taken.end()));
  return std::nullopt;
}

/// Every other share must do in place of one of the good ones.
void check_others(const Chosen &shares, const Chosen &good) {
  for (const Share *share : shares) {
    if (std::find(good.begin(), good.end(), share) != good.end()) continue;
    Chosen trial = good;
    trial.front() = share;
    if (recover(trial)) continue;
    throw Failure(Exit::kVerification, share->source,
                  "does not fit the other shares, though its checksum is right: it was altered",
                  "leave it out");
  }
}

}  // namespace

void require_key_sharing() {
  if (KZEL_CC_GetState() != ZEL_STATE_VERIFIED) return;
  throw library_failure("key sharing", ZEL_ERR_APPROVED);
}

std::vector<Share> split_secret(std::span<const std::uint8_t> secret, std::uint32_t threshold,
                                std::uint32_t count) {
  require_strong_rand();
  ShareHeader header{};
  header.threshold = threshold;
  header.secret_len = static_cast<std::uint32_t>(secret.size());
  Generator generator;
  generator.fill(header.set);
  // Without the salt a share would say a little about a secret of which one can guess the most.
  std::array<std::uint8_t, kSaltLen> salt{};
  generator.fill(salt);
  const Secret encoded = encode(header, salt, secret);
  wipe(salt.data(), salt.size());

  Wiped<KEYSHAREFS_SHARE_SET> set(KEYSHAREFS_SHARE_SET{});
  const auto service = threshold == 2 ? KEYSHAREFS_Gen2SharedInfo : KEYSHAREFS_Gen3SharedInfo;
  const std::int32_t status = service(&*set, encoded.bytes().data(),
                                      static_cast<std::uint32_t>(encoded.bytes().size()), count);
  if (status != ZEL_OK) throw library_failure("key sharing", status);
  header.prime = set->prime;
  std::vector<Share> shares;
  for (std::uint32_t i = 0; i < count; ++i) {
    shares.emplace_back("share " + std::to_string(i + 1), header, i + 1);
    shares.back().point = set->shares[i];
  }
  // Before anybody relies on them.
  const Secret again = combine_shares(shares);
  if (!std::ranges::equal(again.bytes(), secret)) {
    throw Failure(Exit::kInternal, "key sharing", "the shares do not give the secret back",
                  "report this");
  }
  return shares;
}

Secret combine_shares(const std::vector<Share> &shares) {
  const Chosen all = checked(shares);
  Chosen good;
  auto secret = find_secret(all, good);
  if (!secret) {
    throw Failure(Exit::kVerification, "shares",
                  "do not make up a secret, though their checksums are right: altered",
                  "try others of the set");
  }
  check_others(all, good);
  return *std::move(secret);
}

Share reissue_share(const std::vector<Share> &shares, std::uint32_t index) {
  const ShareHeader &header = shares.front().header;
  if (header.threshold != 2) {
    throw Failure(Exit::kUsage, shares.front().source,
                  "its set has threshold 3, and new shares there are only with 2",
                  "combine the shares and split the secret again");
  }
  require_strong_rand();
  const Secret secret = combine_shares(shares);
  Chosen known = checked(shares);
  known.resize(std::min<std::size_t>(known.size(), ZEL_KEYSHARE_MAX_SHARES));
  Wiped<KEYSHAREFS_SHARE_SET> set(KEYSHAREFS_SHARE_SET{});
  fill(*set, known);
  Share share("the new share", header, index);
  const std::int32_t status = KEYSHAREFS_Repro2SharedInfo(&share.point, &*set);
  if (status != ZEL_OK) throw library_failure("key sharing", status);
  const auto again = recover({&share, known.front()});
  if (!again || !std::ranges::equal(again->bytes(), secret.bytes())) {
    throw Failure(Exit::kInternal, "key sharing", "the new share does not work", "report this");
  }
  return share;
}

}  // namespace zel::tool
