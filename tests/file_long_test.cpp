// A file of more than 4 GiB, whose length and position do not fit 32 bits. It is sparse.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/support/ciphers.hpp"
#include "tests/support/hashes.hpp"

namespace zel::test {
namespace {

/// Keeps the end of what is written to it.
struct Tail {
  std::uint64_t len = 0;
  Bytes bytes;
  static ssize_t write(void *self, const char *from, std::size_t len) {
    auto *const tail = static_cast<Tail *>(self);
    const std::size_t keep = std::min<std::size_t>(len, 100);
    tail->bytes.insert(tail->bytes.end(), from + len - keep, from + len);
    if (tail->bytes.size() > 100) tail->bytes.erase(tail->bytes.begin(), tail->bytes.end() - 100);
    tail->len += len;
    return static_cast<ssize_t>(len);
  }
};

TEST(LargeFile, IsEncipheredToItsEnd) {
  constexpr std::uint64_t kLen = (std::uint64_t{1} << 32) + 37;
  std::string name = ::testing::TempDir() + "zel_large_XXXXXX";
  std::FILE *const in = fdopen(mkstemp(name.data()), "r+b");
  unlink(name.c_str());
  ASSERT_EQ(ftruncate(fileno(in), static_cast<off_t>(kLen)), 0);
  Tail tail;
  std::FILE *const out = fopencookie(&tail, "wb", {nullptr, Tail::write, nullptr, nullptr});

  const Key key = load_key(rijndael, noise(16));
  BCIPHER_CONTEXT context = start(ZEL_MODE_CTR, rijndael, noise(16));
  std::uint32_t total = 0;
  EXPECT_EQ(BCIPHER_EncryptFile(out, &total, in, -1, &context, key.get(), 1), ZEL_OK);
  std::fclose(in);
  std::fclose(out);
  EXPECT_EQ(tail.len, kLen);
  EXPECT_EQ(total, 37U) << "the low 32 bits";

  // The last three blocks: the counter is 2^28 further on.
  Bytes counter = noise(16), want(48);
  counter[12] = static_cast<std::uint8_t>(counter[12] + 0x10);
  ASSERT_GE(counter[12], 0x10) << "or a carry is missing here";
  BCIPHER_CONTEXT at_end = start(ZEL_MODE_CTR, rijndael, counter);
  want = operate(false, at_end, key.get(), Bytes(37)).data;
  EXPECT_EQ(Bytes(tail.bytes.end() - 37, tail.bytes.end()), want);
}

}  // namespace
}  // namespace zel::test
