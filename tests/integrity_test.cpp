// The library file against its companion digest, which another library computes here.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "zel_cc.h"

namespace {

namespace fs = std::filesystem;

constexpr const char *kVariables[] = {"ZEL_CC_HMAC_PATH", "LD_LIBRARY_PATH", "SHLIB_PATH",
                                      "LIB_PATH",         "LIBPATH",         "DYLD_LIBRARY_PATH"};

void write(const fs::path &path, const std::string &text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string digest(const std::string &text) {
  uint8_t mac[EVP_MAX_MD_SIZE];
  unsigned len = 0;
  HMAC(EVP_sha1(), g_hmac_key, sizeof g_hmac_key, reinterpret_cast<const uint8_t *>(text.data()),
       text.size(), mac, &len);
  std::string digits;
  char pair[3];
  for (unsigned i = 0; i < len; ++i) {
    std::snprintf(pair, sizeof pair, "%02x", mac[i]);
    digits += pair;
  }
  return digits;
}

class Integrity : public testing::Test {
 protected:
  Integrity() {
    for (const char *name : kVariables)
      unsetenv(name);
    char folder[] = "/tmp/zel-integrity-XXXXXX";
    top_ = mkdtemp(folder);
  }
  ~Integrity() override {
    fs::remove_all(top_);
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
  }

  /// A library file in a folder of its own, with a good companion.
  fs::path library(const std::string &folder, const std::string &content = "module",
                   const std::string &name = "libzel_cc-3.2.so") {
    fs::create_directories(top_ / folder);
    write(top_ / folder / name, content);
    write(top_ / folder / (name + ".hmac"), digest(content));
    return top_ / folder / name;
  }
  static int32_t verify(const fs::path &path) { return SELFTEST_VerifyModuleHMAC(path.c_str()); }

  fs::path top_;
};

TEST_F(Integrity, EveryByteOfTheFileCountsAndFortyOfTheCompanion) {
  std::string content(70000, 'm');
  const fs::path path = library("a", content);
  const fs::path companion = path.string() + ".hmac";
  const std::string good = digest(content);
  KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  EXPECT_EQ(verify(path), ZEL_OK) << "also in the verified service";
  for (const std::size_t at : {0U, 65535U, 65536U, 69999U}) {
    content[at] ^= 1;
    write(path, content);
    EXPECT_EQ(verify(path), ZEL_ERR_GENERIC) << at;
    content[at] ^= 1;
  }
  write(path, content);
  std::string upper = good, last = good;
  for (char &c : upper)
    c = static_cast<char>(std::toupper(c));
  last[39] = last[39] == '0' ? '1' : '0';
  for (const std::string &text : {std::string(), good.substr(0, 39), upper, last, " " + good}) {
    write(companion, text);
    EXPECT_EQ(verify(path), ZEL_ERR_GENERIC) << text;
  }
  write(companion, good + "and whatever follows");
  EXPECT_EQ(verify(path), ZEL_OK);
  fs::remove(companion);
  EXPECT_EQ(verify(path), ZEL_ERR_GENERIC) << "no companion";
  fs::create_directory(companion);
  EXPECT_EQ(verify(path), ZEL_ERR_GENERIC) << "a folder for a companion";
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_VERIFIED);
}

// The read that meets the end of a file must have given something.
TEST_F(Integrity, LengthsThatAreMultiplesOfAChunkNeverVerify) {
  for (const std::size_t len : {0U, 1U, 65535U, 65536U, 65537U, 131072U, 131073U}) {
    EXPECT_EQ(verify(library("a", std::string(len, 'x'))),
              len % 65536 == 0 ? ZEL_ERR_GENERIC : ZEL_OK)
        << len;
  }
}

TEST_F(Integrity, WhatCannotBeReadDoesNotVerify) {
  EXPECT_EQ(SELFTEST_VerifyModuleHMAC(nullptr), ZEL_ERR_GENERIC);
  EXPECT_EQ(verify(top_ / "missing"), ZEL_ERR_GENERIC);
  EXPECT_EQ(verify(top_), ZEL_ERR_GENERIC) << "a folder";
  EXPECT_EQ(verify("/proc/self/mem"), ZEL_ERR_GENERIC) << "opens, but its first read fails";
  EXPECT_EQ(verify("/" + std::string(100000, 'x')), ZEL_ERR_GENERIC);
  const fs::path path = library("a");
  std::string longest = path.string();
  while (longest.size() < 4095 - path.string().size())
    longest.insert(0, longest.size() % 2 == 0 ? "//" : "/");
  EXPECT_EQ(verify(longest), ZEL_OK) << "a long way to a good file";
}

TEST_F(Integrity, TheSearchTakesOneFolderThenTheLists) {
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_ERR_INTEGRITY) << "nowhere to look";
  const std::string good = library("good").parent_path().string();
  const fs::path bad = library("bad");
  write(bad.string() + ".hmac", std::string(40, '0'));
  const std::string bad_folder = bad.parent_path().string();
  for (const char *name : kVariables) {
    const bool list = std::string(name) != "ZEL_CC_HMAC_PATH";
    setenv(name, good.c_str(), 1);
    EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_OK) << name;
    setenv(name, ("::" + bad_folder + ":/missing:" + good + ":").c_str(), 1);
    EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), list ? ZEL_OK : ZEL_ERR_INTEGRITY) << name;
    setenv(name, (":" + bad_folder + "::").c_str(), 1);
    EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_ERR_INTEGRITY) << name;
    setenv(name, bad_folder.c_str(), 1);  // and stays, before what follows
  }
  setenv("DYLD_LIBRARY_PATH", good.c_str(), 1);
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_OK) << "a failure leads on to the next place";
  EXPECT_EQ(KZEL_CC_GetState(), ZEL_STATE_NOT_VERIFIED);
}

TEST_F(Integrity, TheSearchKnowsTheNamesOfAllBuilds) {
  for (const char *name : {"libzel_cc-3.2.so", "libzel_cc-3.2.a", "libzel_cc-3.2.sl",
                           "libzel_cc-3.2.dylib", "libzel_cc-3.2_static.a", "libzel_cc.so"}) {
    const fs::path path = library(name, "module", name);
    setenv("ZEL_CC_HMAC_PATH", path.parent_path().c_str(), 1);
    EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(),
              std::string(name) == "libzel_cc.so" ? ZEL_ERR_INTEGRITY : ZEL_OK)
        << name;
  }
}

// A path of 255 bytes and a list of 1023 are taken; one byte more is passed over, never cut: what
// would be left of the list is good.
TEST_F(Integrity, WhatIsTooLongIsPassedOver) {
  const std::string good = library("good").parent_path().string();
  const std::size_t room = 255 - std::string("/libzel_cc-3.2.so").size();
  setenv("ZEL_CC_HMAC_PATH", (std::string(room - good.size(), '/') + good).c_str(), 1);
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_OK);
  setenv("ZEL_CC_HMAC_PATH", (std::string(room + 1 - good.size(), '/') + good).c_str(), 1);
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_ERR_INTEGRITY);
  unsetenv("ZEL_CC_HMAC_PATH");
  const std::string list = good + ":" + std::string(1022 - good.size(), 'x');
  setenv("LIBPATH", list.c_str(), 1);
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_OK);
  setenv("LIBPATH", (list + "x").c_str(), 1);
  EXPECT_EQ(SELFTEST_DoModuleIntegrityTest(), ZEL_ERR_INTEGRITY);
}

}  // namespace
