#include "tools/zel/generator.hpp"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "tools/zel/failure.hpp"
#include "tools/zel/strong_rand.h"
#include "zel_cc/selftest.h"

namespace zel::tool {
namespace {

constexpr std::uint32_t kStrength = 256;
constexpr char kPersonalization[] = "zel command";

struct Entropy {
  std::uint8_t bytes[ZEL_ENTROPY_LEN];
};

void check(int status, const char *what) {
  if (status == ZEL_OK) return;
  throw Failure(Exit::kEntropy, what,
                std::string(zel_error_text(status)) + " (" + std::to_string(status) + ")",
                "use nothing that came out of this run");
}

/// The collector's entropy, which must be the full one.
void collect(Entropy &entropy) {
  std::uint32_t len = 0;
  std::int32_t count = 0;
  check(RNGSEED_GetEntropyData(entropy.bytes, &len, &count), "entropy");
  if (count == ZEL_ENTROPY_COUNT && len == sizeof entropy.bytes) return;
  throw Failure(Exit::kEntropy, "entropy",
                "the count is " + std::to_string(count) + " where " +
                    std::to_string(ZEL_ENTROPY_COUNT) + " is the full one",
                "make /dev/urandom readable");
}

std::array<std::uint8_t, 16> fresh_nonce() {
  std::array<std::uint8_t, 16> nonce{};
  if (::getrandom(nonce.data(), nonce.size(), 0) != static_cast<ssize_t>(nonce.size())) {
    throw Failure(Exit::kEntropy, "getrandom", "the kernel gives no random bytes",
                  "try again when the system has started");
  }
  return nonce;
}

}  // namespace

void require_strong_rand() {
  if (zel_strong_rand_in_force() != 0) return;
  throw Failure(Exit::kEntropy, "rand", "not the kernel's generator in this process",
                "unset LD_PRELOAD");
}

void require_entropy() {
  Wiped<Entropy> entropy;
  collect(*entropy);
  require_strong_rand();
}

Generator::Generator() {
  Wiped<Entropy> entropy;
  collect(*entropy);
  const auto nonce = fresh_nonce();
  check(HASHDRBG_InstantiateEntIn(&*context_, ZEL_DRBG_SHA256, kStrength, 0, entropy->bytes,
                                  sizeof entropy->bytes, nonce.data(), nonce.size(),
                                  reinterpret_cast<const std::uint8_t *>(kPersonalization),
                                  sizeof kPersonalization - 1),
        "Hash_DRBG");
  // The first block only serves to be compared with.
  std::memset(previous_->bytes, 0, kRequest);
  request();
}

void Generator::reseed() {
  Wiped<Entropy> entropy;
  collect(*entropy);
  check(HASHDRBG_ReseedEntIn(&*context_, entropy->bytes, sizeof entropy->bytes, nullptr, 0),
        "Hash_DRBG, reseeding");
  requests_ = 0;
}

/// Moves a tested new block to `previous_`.
void Generator::request() {
  if (requests_++ == kReseedAfter) reseed();
  check(HASHDRBG_GenerateRand(next_->bytes, &*context_, 8 * kRequest, kStrength, nullptr, 0, 0),
        "Hash_DRBG");
  if (CONDITIONAL_SELFTEST_HASHDRBG(previous_->bytes, next_->bytes, kRequest) != ZEL_OK) {
    check(ZEL_ERR_DRBG_TEST, "Hash_DRBG");
  }
  std::memcpy(previous_->bytes, next_->bytes, kRequest);
}

void Generator::fill(std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    request();
    const std::size_t len = std::min(bytes.size(), kRequest);
    std::memcpy(bytes.data(), previous_->bytes, len);
    bytes = bytes.subspan(len);
  }
}

}  // namespace zel::tool
