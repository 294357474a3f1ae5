// Messages and counters so long that both length words matter.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <gtest/gtest.h>
#include <openssl/sha.h>

#include <cstring>

#include "tests/support/hashes.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

// OpenSSL's old calls keep the length in bits in two words of a public record. With those words
// replaced by what this library's shift of 29 gives, they say what its digest must be.
Bytes with_length_words(SHA512_CTX context, std::size_t digest_len, uint64_t bytes) {
  context.Nh = bytes >> 29;
  context.Nl = bytes << 3;
  Bytes out(digest_len);
  SHA512_Final(out.data(), &context);
  return out;
}

void absorb(HASH_CONTEXT &ours, SHA512_CTX &theirs, uint64_t len) {
  const Bytes chunk = noise(1 << 20);
  while (len != 0) {
    const auto now = static_cast<uint32_t>(std::min<uint64_t>(len, chunk.size()));
    HASH_Update(&ours, chunk.data(), now);
    SHA512_Update(&theirs, chunk.data(), now);
    len -= now;
  }
}

// Up to 2^29 - 1 bytes SHA-512 is the standard's; from 2^29 on its length has another high word.
TEST(LongMessages, Sha512KeepsItsOwnLengthFrom512MebibytesOn) {
  HASH_CONTEXT ours;
  SHA512_CTX theirs;
  HASH_Initialize(&ours, &sha512);
  SHA512_Init(&theirs);
  absorb(ours, theirs, (1U << 29) - 1);
  Bytes standard(64);
  SHA512_CTX copy = theirs;
  SHA512_Final(standard.data(), &copy);
  EXPECT_EQ(to_hex(digest_of(ours)), to_hex(standard));

  uint64_t len = (1U << 29) - 1;
  for (const uint64_t more : {1U, 111U, 1U, 70000U}) {
    absorb(ours, theirs, more);
    len += more;
    EXPECT_EQ(to_hex(digest_of(ours)), to_hex(with_length_words(theirs, 64, len))) << len;
    copy = theirs;
    SHA512_Final(standard.data(), &copy);
    EXPECT_NE(to_hex(digest_of(ours)), to_hex(standard)) << len;
  }
}

// The same words and the carry between the counters without the message: the records are public,
// so a count can be set. SHA-384 is given no long message of its own.
TEST(LongMessages, CountersCarryIntoTheHighWord) {
  const Bytes data = noise(200);
  for (const uint64_t start : {uint64_t{1} << 29, uint64_t{1} << 40, (uint64_t{1} << 61) + 128}) {
    HASH_CONTEXT ours;
    SHA512_CTX theirs;
    HASH_Initialize(&ours, &sha384);
    SHA384_Init(&theirs);
    ours.area64.count_low = start;
    HASH_Update(&ours, data.data(), 200);
    SHA384_Update(&theirs, data.data(), 200);
    EXPECT_EQ(to_hex(digest_of(ours)), to_hex(with_length_words(theirs, 48, start + 200)));
  }

  HASH_CONTEXT wide;
  HASH_Initialize(&wide, &sha512);
  wide.area64.count_low = 0 - uint64_t{128};
  HASH_Update(&wide, data.data(), 200);
  EXPECT_EQ(wide.area64.count_low, 72U);
  EXPECT_EQ(wide.area64.count_high, 1U);

  // 4 GiB less one block, then 200 bytes: 2^32 + 136 bytes in all, in the standard's own words.
  HASH_CONTEXT ours;
  SHA256_CTX theirs;
  HASH_Initialize(&ours, &sha256);
  SHA256_Init(&theirs);
  ours.area32.count_low = 0 - 64U;
  theirs.Nl = 0 - 512U;
  theirs.Nh = 7;
  HASH_Update(&ours, data.data(), 200);
  SHA256_Update(&theirs, data.data(), 200);
  EXPECT_EQ(ours.area32.count_high, 1U);
  Bytes expected(32);
  SHA256_Final(expected.data(), &theirs);
  EXPECT_EQ(to_hex(digest_of(ours)), to_hex(expected));
}

}  // namespace
