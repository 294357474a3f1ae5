// The entropy collector on a system that the test makes up: the linker sends every system call of
// the library here (--wrap). CTest runs each test in a process of its own.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>

#include "tests/support/own_stack.hpp"
#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace {

using namespace zel::test;

/// What one call of fread does: bytes that it brings, or an error.
struct Read {
  std::size_t bytes;
  int error = 0;
};

/// The made-up system. The device gives 37, 74, 111, ...
struct System {
  bool device = true;
  std::deque<Read> reads;
  bool for_ever = false;  ///< repeats the last read
  int reads_made = 0, opened = 0, closed = 0;
  bool no_memory = false;
  std::vector<std::size_t> allocated;
  std::uint8_t next = 0;
} g_system;
constexpr std::uint8_t kStep = 37;
alignas(16) char g_heap[256];
bool g_made_up = false;  ///< off while the test framework itself works

constexpr int kFile = 4711;
FILE *stream() {
  static char token;
  return reinterpret_cast<FILE *>(&token);
}

}  // namespace

// NOLINTBEGIN: names and types are the linker's and libc's
extern "C" {
void *__real_malloc(size_t len);
void __real_free(void *block);
FILE *__real_fopen(const char *path, const char *mode);
size_t __real_fread(void *to, size_t size, size_t count, FILE *from);
int __real_fclose(FILE *from);
int __real_setvbuf(FILE *of, char *buffer, int mode, size_t size);
void __real_clearerr(FILE *of);
int __real_open(const char *path, int flags, ...);
ssize_t __real_read(int file, void *to, size_t len);
int __real_close(int file);

void *__wrap_malloc(size_t len) {
  if (!g_made_up) return __real_malloc(len);
  g_system.allocated.push_back(len);
  return g_system.no_memory ? nullptr : g_heap;
}
void __wrap_free(void *block) {
  if (block != g_heap) __real_free(block);
}
FILE *__wrap_fopen(const char *path, const char *mode) {
  if (!g_made_up) return __real_fopen(path, mode);
  EXPECT_STREQ(path, "/dev/urandom");
  EXPECT_STREQ(mode, "r");
  errno = g_system.no_memory ? ENOMEM : ENOENT;
  if (!g_system.device || g_system.no_memory) return nullptr;
  ++g_system.opened;
  return stream();
}
size_t made_up_read(void *to, size_t len) {
  if (++g_system.reads_made > 10000) {
    ADD_FAILURE() << "reads for ever";
    abort();
  }
  Read read{len};
  if (!g_system.reads.empty()) {
    read = g_system.reads.front();
    if (!g_system.for_ever) g_system.reads.pop_front();
  }
  EXPECT_LE(read.bytes, len);
  auto *bytes = static_cast<std::uint8_t *>(to);
  for (std::size_t i = 0; i < read.bytes; ++i)
    bytes[i] = g_system.next += kStep;
  if (read.error != 0) errno = read.error;
  return read.bytes;
}
size_t __wrap_fread(void *to, size_t size, size_t count, FILE *from) {
  return from == stream() ? made_up_read(to, size * count) : __real_fread(to, size, count, from);
}
int __wrap_open(const char *path, int flags, int mode) {
  if (!g_made_up) return __real_open(path, flags, mode);
  EXPECT_STREQ(path, "/dev/urandom");
  EXPECT_EQ(flags, O_RDONLY | O_CLOEXEC);
  if (g_system.device) ++g_system.opened;
  return g_system.device ? kFile : -1;
}
ssize_t __wrap_read(int file, void *to, size_t len) {
  if (file != kFile) return __real_read(file, to, len);
  const size_t got = made_up_read(to, len);
  return got == 0 && errno != 0 ? -1 : static_cast<ssize_t>(got);
}
int __wrap_close(int file) {
  if (file != kFile) return __real_close(file);
  ++g_system.closed;
  return 0;
}
int __wrap_fclose(FILE *from) {
  if (from != stream()) return __real_fclose(from);
  ++g_system.closed;
  return 0;
}
int __wrap_setvbuf(FILE *of, char *buffer, int mode, size_t size) {
  if (of != stream()) return __real_setvbuf(of, buffer, mode, size);
  EXPECT_EQ(mode, _IONBF) << "device bytes would stay behind in a buffer of libc";
  return 0;
}
void __wrap_clearerr(FILE *of) {
  if (of != stream()) __real_clearerr(of);
}
time_t __wrap_time(time_t *) { return 0x1122334455667788; }
pid_t __wrap_getpid() { return 0x01020304; }
uid_t __wrap_getuid() { return 0xf1f2f3f4; }
gid_t __wrap_getgid() { return 0x0a0b0c0d; }
pid_t __wrap_getsid(pid_t of) {
  EXPECT_EQ(of, 0);
  return -1;
}
int __wrap_gettimeofday(struct timeval *now, void *) {
  now->tv_sec = -1;
  now->tv_usec = 0x000fedcb;
  return 0;
}
int __wrap_stat(const char *path, struct stat *record) {
  EXPECT_STREQ(path, "/");
  std::memset(record, 0xa5, sizeof *record);
  return 0;
}
int __wrap_gethostname(char *name, size_t len) {
  EXPECT_EQ(len, 32U);
  std::strncpy(name, "host.example", len);
  return 0;
}
int __wrap_uname(struct utsname *record) {
  std::memset(record, 0x5a, sizeof *record);
  return 0;
}
}
// NOLINTEND

namespace {

template <class Call>
auto on_made_up_system(Call call) {
  g_made_up = true;
  const auto result = call();
  g_made_up = false;
  return result;
}

struct Collected {
  Bytes bytes;
  uint32_t len;
  int32_t entropy;
};

Collected collect() {
  Collected all{Bytes(ZEL_ENTROPY_LEN + 1, 0xcc), 0, 0};
  EXPECT_EQ(on_made_up_system(
                [&] { return RNGSEED_GetEntropyData(all.bytes.data(), &all.len, &all.entropy); }),
            ZEL_OK);
  return all;
}

std::string repeated(const std::string &hex, std::size_t count) {
  std::string all;
  while (count-- != 0)
    all += hex;
  return all;
}

/// The fields behind the device bytes, with the given word of the heap.
std::string fields(const std::string &heap_word) {
  return "8877665544332211"
         "0403020100000000" +
         heap_word +
         "f4f3f2f100000000"
         "0d0c0b0a00000000"
         "ffffffffffffffff"
         "cbed0f0000000000" +
         repeated("a5", 144) + to_hex(from_text("host.example")) + repeated("00", 20) +
         repeated("5a", 390);
}

Bytes device_bytes() {
  Bytes bytes;
  for (int i = 1; i <= 256; ++i)
    bytes.push_back(static_cast<std::uint8_t>(i * kStep));
  return bytes;
}

/// The word of the heap for the first two bytes of the buffer, after `counter` steps.
std::string heap_word(uint32_t counter, std::uint8_t first, std::uint8_t second) {
  const auto base = static_cast<uint32_t>(reinterpret_cast<std::uintptr_t>(g_heap));
  const uint32_t one = base + 4 * (counter + first) % 256;
  const uint32_t two = base + 4 * (counter + first + second) % 256;
  const uint32_t word = (one << 16) ^ two;
  Bytes bytes(4);
  std::memcpy(bytes.data(), &word, 4);
  return to_hex(bytes);
}

TEST(RngSeed, LaysOutEverySourceByteForByte) {
  const Collected with = collect();
  EXPECT_EQ(with.len, 874U);
  EXPECT_EQ(with.entropy, 269);
  EXPECT_EQ(to_hex(with.bytes),
            to_hex(device_bytes()) + fields(heap_word(0, kStep, 2 * kStep)) + "cc");
  EXPECT_EQ(g_system.closed, 1);
  EXPECT_EQ(g_system.allocated, (std::vector<std::size_t>{4 * 37, 4 * 111 - 256}));

  g_system.device = false;
  const Collected without = collect();
  EXPECT_EQ(without.len, 618U);
  EXPECT_EQ(without.entropy, 13);
  EXPECT_EQ(to_hex(without.bytes), fields(heap_word(3 * kStep, 0x88, 0x77)) + repeated("cc", 257));
}

TEST(RngSeed, GathersTheDeviceFromShortAndInterruptedReads) {
  g_system.reads = {{100}, {0, EINTR}, {1}, {0, EINTR}, {0, EINTR}, {155}};
  const Collected all = collect();
  EXPECT_EQ(all.len, 874U);
  EXPECT_EQ(to_hex(Bytes(all.bytes.begin(), all.bytes.begin() + 256)), to_hex(device_bytes()));
  EXPECT_EQ(g_system.closed, 1);
}

// Where there is no memory for a stream, a seed from the weak sources alone would pass for a good
// one.
TEST(RngSeed, GathersTheDeviceWithoutMemoryToo) {
  g_system.no_memory = true;
  g_system.reads = {{0, EINTR}, {200}, {56}};
  const Collected all = collect();
  EXPECT_EQ(all.len, 874U);
  EXPECT_EQ(to_hex(Bytes(all.bytes.begin(), all.bytes.begin() + 256)), to_hex(device_bytes()));
  g_system.reads = {{255}, {0}};
  EXPECT_EQ(collect().len, 618U);
  EXPECT_EQ(g_system.closed, 2);
  g_system.device = false;
  EXPECT_EQ(collect().len, 618U);
}

// Anything short of 256 bytes must not pass for the device.
TEST(RngSeed, CountsAFailingDeviceAsUnavailable) {
  for (const Read &last : {Read{0, 0}, Read{0, EIO}, Read{0, EINTR}}) {
    g_system.reads = {{255}, last};
    if (last.error == EINTR) {
      g_system.reads = {last};
      g_system.for_ever = true;
    }
    const Collected all = collect();
    EXPECT_EQ(all.len, 618U);
    EXPECT_EQ(all.entropy, 13);
    EXPECT_EQ(to_hex(all.bytes).substr(0, 32), fields("").substr(0, 32));
    EXPECT_EQ(to_hex(all.bytes).substr(40, 2 * 578), fields("").substr(32, 2 * 578));
  }
  EXPECT_EQ(g_system.opened, g_system.closed);
}

TEST(RngSeed, HeapAddressFollowsItsCounter) {
  const auto base = static_cast<uint32_t>(reinterpret_cast<std::uintptr_t>(g_heap));
  const auto ask = [](int32_t b) {
    return on_made_up_system([b] { return RNGSEED_GetRandomMemoryAddr(b); });
  };
  EXPECT_EQ(ask(0), base);
  EXPECT_EQ(ask(63), base + 252);
  EXPECT_EQ(ask(1), base) << "four times 64 is 0 of a byte";
  EXPECT_EQ(ask(255), base + 252) << "kept between calls";
  EXPECT_EQ(ask(0x3ffffffe - 319), base + 248);
  EXPECT_EQ(ask(0), base + 248) << "3ffffffe is not too much";
  EXPECT_EQ(ask(1), base + 252);
  EXPECT_EQ(ask(2), base + 8) << "3fffffff is, and the counter starts again";
  EXPECT_EQ(g_system.allocated, (std::vector<std::size_t>{0, 252, 0, 252, 248, 248, 252, 8}));
  g_system.no_memory = true;
  EXPECT_EQ(ask(1), 12U) << "a number, never a pointer that is used";
}

/// The seed, by its definition, from what the collector gives.
Bytes condensed(const HASH_ALGORITHM *hash, Bytes entropy, std::size_t len) {
  Bytes out;
  while (out.size() < len) {
    if (!out.empty()) {
      for (std::size_t i = 0; i < 80; ++i)
        entropy[i] ^= entropy[80 - i];
    }
    HASH_CONTEXT context;
    Bytes digest(ZEL_MAX_DIGEST_LEN);
    uint32_t digest_len = 0;
    HASH_Initialize(&context, hash);
    HASH_Update(&context, entropy.data(), static_cast<uint32_t>(entropy.size()));
    HASH_Finalize(digest.data(), &digest_len, &context);
    out.insert(out.end(), digest.begin(), digest.begin() + digest_len);
  }
  out.resize(len);
  return out;
}

TEST(RngSeed, CondensesTheEntropyToSeeds) {
  uint32_t counter = 0;
  for (const uint32_t bits : {0U, 1U, 8U, 223U, 224U, 440U, 512U, 1024U}) {
    for (const HASH_ALGORITHM *hash : {&sha224, &pophas160}) {
      const auto collected = hash == &sha224 ? RNGSEED_GetSeed : RNGSEED_GetSeedKey;
      g_system.next = 0;
      const Bytes entropy =
          from_hex(to_hex(device_bytes()) + fields(heap_word(counter, kStep, 2 * kStep)));
      counter += 3 * kStep;
      const std::size_t len = (bits + 7) / 8;
      Bytes out(len + 1, 0xcc);
      uint32_t out_len = 99;
      EXPECT_EQ(on_made_up_system([&] { return collected(out.data(), &out_len, bits); }), ZEL_OK);
      EXPECT_EQ(out_len, len);
      EXPECT_EQ(to_hex(out), to_hex(condensed(hash, entropy, len)) + "cc") << bits;
    }
  }
}

// No service needs memory, so none can fail half way for want of it.
TEST(RngSeed, GeneratorsWorkWithoutMemory) {
  g_system.no_memory = true;
  Bytes one(1000), two(1000);
  const auto fill = [](Bytes &out, int32_t (*service)(uint8_t *, uint32_t)) {
    return on_made_up_system([&] { return service(out.data(), 8000); });
  };
  EXPECT_EQ(fill(one, HASHDRBG_GetRandNum), ZEL_OK);
  EXPECT_EQ(fill(two, HMACDRBG_GetRandNum), ZEL_OK);
  EXPECT_EQ(g_system.allocated.size(), 4U) << "the heap addresses, which may be null";
}

TEST(RngSeed, RefusesNullArguments) {
  uint8_t bytes[ZEL_ENTROPY_LEN];
  uint32_t len = 7;
  int32_t entropy = 7;
  EXPECT_EQ(RNGSEED_GetEntropyData(nullptr, &len, &entropy), ZEL_ERR_GENERIC);
  EXPECT_EQ(RNGSEED_GetEntropyData(bytes, nullptr, &entropy), ZEL_ERR_GENERIC);
  EXPECT_EQ(RNGSEED_GetEntropyData(bytes, &len, nullptr), ZEL_ERR_GENERIC);
  EXPECT_EQ(RNGSEED_GetSeed(nullptr, &len, 8), ZEL_ERR_GENERIC);
  EXPECT_EQ(RNGSEED_GetSeed(bytes, nullptr, 8), ZEL_ERR_GENERIC);
  EXPECT_EQ(RNGSEED_GetSeedKey(nullptr, &len, 8), ZEL_ERR_GENERIC);
  EXPECT_EQ(len, 7U);
}

struct Contexts {
  HASHDRBG_CONTEXT hash;
  HMACDRBG_CONTEXT hmac;
} g_contexts;

// What stays of device bytes, V, C and K on the stack would outlive the call that used them.
TEST(RngSeed, NothingSecretStaysOnTheStack) {
  if (!OnOwnStack::kCounts) GTEST_SKIP() << "true of GCC's release";
  static const auto no_data = nullptr;
  static uint8_t out[3000];
  static uint32_t len;
  static int32_t count;
  const auto secrets = [] {
    return std::vector<Bytes>{Bytes(g_contexts.hash.V, g_contexts.hash.V + 111),
                              Bytes(g_contexts.hash.C, g_contexts.hash.C + 111),
                              Bytes(g_contexts.hmac.V, g_contexts.hmac.V + 64),
                              Bytes(g_contexts.hmac.Key, g_contexts.hmac.Key + 64)};
  };
  const std::pair<const char *, void (*)()> calls[] = {
      {"collect", [] { RNGSEED_GetEntropyData(out, &len, &count); }},
      {"seed", [] { RNGSEED_GetSeed(out, &len, 8000); }},
      {"instantiate",
       [] { HASHDRBG_Instantiate(&g_contexts.hash, 3, 256, 0, no_data, 0, no_data, 0); }},
      {"reseed", [] { HASHDRBG_Reseed(&g_contexts.hash, no_data, 0); }},
      {"generate", [] { HASHDRBG_GenerateRand(out, &g_contexts.hash, 8000, 256, out, 9, 0); }},
      {"HMAC instantiate",
       [] { HMACDRBG_Instantiate(&g_contexts.hmac, 3, 256, 0, no_data, 0, no_data, 0); }},
      {"HMAC reseed", [] { HMACDRBG_Reseed(&g_contexts.hmac, no_data, 0); }},
      {"HMAC generate", [] { HMACDRBG_GenerateRand(out, &g_contexts.hmac, 8000, 256, out, 9, 0); }},
  };
  std::vector<Bytes> known;
  for (const auto &[name, call] : calls) {
    g_made_up = true;
    const OnOwnStack own(call);
    g_made_up = false;
    known.push_back(device_bytes());
    for (Bytes &secret : secrets()) {
      if (std::count(secret.begin(), secret.end(), 0) < 8) known.push_back(std::move(secret));
    }
    for (const Bytes &secret : known)
      EXPECT_FALSE(own.holds(secret)) << name << ": " << to_hex(secret);
  }
  EXPECT_TRUE(OnOwnStack([] {
                std::uint8_t copy[32];
                std::copy_n(g_contexts.hash.V, 32, copy);
                __asm__ volatile("" : : "r"(copy) : "memory");
              }).holds(secrets()[0]))
      << "the search does not work";
}

}  // namespace
