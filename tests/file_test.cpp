// Enciphering files: chunks against one whole call, ranges, and every way in which files fail.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/ciphers.hpp"
#include "tests/support/hashes.hpp"

namespace {
std::size_t g_memory_most = SIZE_MAX;  // that one call gets
}
extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size) {
  return count * size > g_memory_most ? nullptr : __real_calloc(count, size);
}
}

namespace zel::test {
namespace {

constexpr std::uint32_t kWhole = 0xffffffff, kUnset = 0xabcdef01;

class Files : public ::testing::Test {
 protected:
  Files() {
    std::string name = ::testing::TempDir() + "zel_files_XXXXXX";
    folder = mkdtemp(name.data());
    in = folder + "/in";
    out = folder + "/out";
  }
  ~Files() override { std::filesystem::remove_all(folder); }

  static void write(const std::string &path, const Bytes &bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
  }
  static Bytes read(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  BCIPHER_CONTEXT context(std::uint8_t mode) const { return start(mode, aria, noise(16)); }
  /// What one call over all of it gives.
  Bytes whole(bool decrypt, std::uint8_t mode, const Bytes &bytes, bool last) const {
    BCIPHER_CONTEXT c = context(mode);
    return operate(decrypt, c, key.get(), bytes, last).data;
  }
  std::int32_t paths(bool decrypt, std::uint8_t mode, const std::string &to,
                     const std::string &from, std::int64_t offset, std::uint32_t len,
                     std::uint8_t last) {
    BCIPHER_CONTEXT c = context(mode);
    total = kUnset;
    const auto call = decrypt ? BCIPHER_DecryptFilePath_Offset : BCIPHER_EncryptFilePath_Offset;
    return call(to.c_str(), &total, from.c_str(), offset, len, &c, key.get(), last);
  }

  std::string folder, in, out;
  Key key = load_key(aria, noise(16));
  std::uint32_t total = kUnset;
};

// Pieces chain: where a chunk ends cannot matter, nor which function cuts them.
TEST_F(Files, ChunksAreOneMessage) {
  for (const std::size_t len : {0U, 1U, 16U, 49152U, 65535U, 65536U, 65537U, 131072U, 200000U}) {
    const Bytes text = noise(len);
    write(in, text);
    for (const std::uint8_t mode :
         {ZEL_MODE_CBC, ZEL_MODE_ECB, ZEL_MODE_CTR, ZEL_MODE_CFB_STREAM}) {
      if (mode == ZEL_MODE_CTR && len == 0) continue;
      SCOPED_TRACE(std::to_string(len) + " bytes, mode " + std::to_string(mode));
      const Bytes sealed = whole(false, mode, text, true);
      EXPECT_EQ(paths(false, mode, out, in, 0, kWhole, 1), ZEL_OK);
      EXPECT_EQ(total, sealed.size());
      EXPECT_EQ(read(out), sealed);
      EXPECT_EQ(paths(true, mode, folder + "/back", out, 0, kWhole, 1), ZEL_OK);
      EXPECT_EQ(read(folder + "/back"), text);
      // From the middle of the input stream: the whole file is the whole file.
      const auto streams = [&](const std::string &to, const std::string &from, auto call) {
        std::FILE *const source = std::fopen(from.c_str(), "rb"), *const sink =
                                                                      std::fopen(to.c_str(), "wb");
        std::fseek(source, 7, SEEK_SET);
        BCIPHER_CONTEXT c = context(mode);
        EXPECT_EQ(call(sink, source, &c), ZEL_OK);
        std::fclose(source);
        std::fclose(sink);
        return read(to);
      };
      const Bytes small = streams(folder + "/small", in, [&](auto *sink, auto *source, auto *c) {
        return BCIPHER_EncryptFile_BSize(sink, &total, source, -1, c, key.get(), 1, 48);
      });
      EXPECT_EQ(small, sealed);
      const Bytes again = streams(folder + "/back", out, [&](auto *sink, auto *source, auto *c) {
        return BCIPHER_DecryptFile_S(sink, &total, source, -1, c, key.get(), 1);
      });
      EXPECT_EQ(again, text);
    }
  }
}

TEST_F(Files, RangesAndEarlyEnds) {
  const Bytes text = noise(150000);
  write(in, text);
  const auto part = [&](std::size_t from, std::size_t to) {
    return Bytes(text.begin() + std::ptrdiff_t(from), text.begin() + std::ptrdiff_t(to));
  };
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 1000, 70000, 1), ZEL_OK);
  EXPECT_EQ(read(out), whole(false, ZEL_MODE_CBC, part(1000, 71000), true));
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 80000, 0xfffffff0, 1), ZEL_OK) << "less is there";
  EXPECT_EQ(read(out), whole(false, ZEL_MODE_CBC, part(80000, 150000), true));
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 150001, 5, 1), ZEL_OK) << "behind the end";
  EXPECT_EQ(read(out).size(), 16U);
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 0, 0, 1), ZEL_OK);
  EXPECT_EQ(read(out).size(), 16U) << "a block of padding";
  EXPECT_EQ(paths(false, ZEL_MODE_CTR, out, in, 0, 0, 1), ZEL_OK);
  EXPECT_EQ(total, 0U);
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 0, 65537, 0), ZEL_ERR_GENERIC) << "a partial block";
  EXPECT_EQ(total, 65536U);
  EXPECT_EQ(paths(true, ZEL_MODE_CBC, folder + "/back", out, 0, kWhole, 1), ZEL_ERR_PADDING);
  EXPECT_EQ(total, 0U) << "the last chunk was the only one";
}

TEST_F(Files, RefusalsInTheirOrder) {
  write(in, noise(100));
  const std::string none = folder + "/none/file";
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, none, none, -1, kWhole, 1), ZEL_ERR_FILE_OFFSET);
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, none, 0, kWhole, 1), ZEL_ERR_FILE_OPEN);
  EXPECT_FALSE(std::filesystem::exists(out));
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, none, in, 0, kWhole, 1), ZEL_ERR_FILE_OPEN);
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, folder, 0, kWhole, 1), ZEL_ERR_GENERIC)
      << "a directory";
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 1, kWhole, 1), ZEL_ERR_GENERIC);
  EXPECT_EQ(read(out), Bytes{}) << "created all the same";
  EXPECT_EQ(total, kUnset);
  EXPECT_EQ(paths(false, ZEL_MODE_GCM, out, in, 0, kWhole, 1), ZEL_ERR_MODE);
  EXPECT_EQ(total, 0U);
  // Opening the output would empty the input, under whatever name.
  std::filesystem::create_hard_link(in, folder + "/link");
  std::filesystem::create_symlink(in, folder + "/symlink");
  for (const std::string &same : {in, folder + "/link", folder + "/symlink"})
    EXPECT_EQ(paths(false, ZEL_MODE_CBC, same, in, 0, kWhole, 1), ZEL_ERR_FILE_OPEN);
  EXPECT_EQ(read(in), noise(100));
  g_memory_most = 115;
  const std::int32_t code = paths(false, ZEL_MODE_CBC, out, in, 0, kWhole, 1);
  g_memory_most = 116;
  EXPECT_EQ(code, ZEL_ERR_GENERIC);
  EXPECT_EQ(total, kUnset);
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, out, in, 0, kWhole, 1), ZEL_OK) << "the file and a block";
  g_memory_most = SIZE_MAX;

  std::FILE *const source = std::fopen(in.c_str(), "rb"), *const sink =
                                                              std::fopen(out.c_str(), "wb");
  BCIPHER_CONTEXT c = context(ZEL_MODE_CBC);
  const auto run = [&](std::FILE *to, std::FILE *from, std::int32_t len, std::uint32_t chunk) {
    return BCIPHER_EncryptFile_BSize(to, &total, from, len, &c, key.get(), 1, chunk);
  };
  EXPECT_EQ(run(nullptr, source, -1, 16), ZEL_ERR_GENERIC);
  EXPECT_EQ(run(sink, source, -2, 16), ZEL_ERR_GENERIC);
  EXPECT_EQ(run(sink, source, -1, 0), ZEL_ERR_GENERIC) << "would never end";
  EXPECT_EQ(run(sink, source, -1, 20), ZEL_ERR_GENERIC) << "not whole blocks";
  EXPECT_EQ(run(sink, sink, 10, 16), ZEL_ERR_GENERIC) << "not open for reading";
  EXPECT_EQ(run(source, source, -1, 16), ZEL_ERR_GENERIC) << "not open for writing";
  EXPECT_NE(std::ferror(source), 0);
  EXPECT_EQ(run(sink, source, -1, 64), ZEL_OK) << "the flag is from the call before";
  EXPECT_EQ(total, 112U);
  EXPECT_EQ(BCIPHER_EncryptFile(sink, &total, source, -1, &c, nullptr, 1), ZEL_ERR_GENERIC);
  EXPECT_EQ(total, 0U) << "it is the cipher layer that refuses";
  std::fclose(source);
  std::fclose(sink);
}

// The file size limit is a disk that fills up in the middle; /dev/full one that is full.
TEST_F(Files, FullDisks) {
  write(in, noise(300000));
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, "/dev/full", in, 0, 100, 1), ZEL_ERR_GENERIC)
      << "small enough to wait in the stream's buffer";
  EXPECT_EQ(paths(false, ZEL_MODE_CBC, "/dev/full", in, 0, kWhole, 1), ZEL_ERR_GENERIC);
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit limit{100000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limit);
  const std::int32_t code = paths(false, ZEL_MODE_CBC, out, in, 0, kWhole, 1);
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(code, ZEL_ERR_GENERIC);
  const Bytes got = read(out), want = whole(false, ZEL_MODE_CBC, noise(300000), true);
  EXPECT_EQ(got, Bytes(want.begin(), want.begin() + 100000));
  EXPECT_GE(total, 65536U);
  EXPECT_LE(total, 131072U) << "no more chunks after the one that failed";
}

}  // namespace
}  // namespace zel::test
