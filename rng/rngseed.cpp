// The entropy collector, and the seeds condensed from it.
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/bytes.hpp"
#include "base/wipe.hpp"
#include "hash/direct.hpp"
#include "zel_cc/rng.h"

namespace zel {
namespace {

constexpr char kDevice[] = "/dev/urandom";
constexpr std::size_t kDeviceLen = 256;
/// Reads that may fail to bring a byte before the device counts as unavailable.
constexpr int kIdleReads = 16;
constexpr std::size_t kHostNameLen = 32;

static_assert(sizeof(struct stat) == 144 && sizeof(struct utsname) == 390);
constexpr std::size_t kFieldsLen =
    2 * 8 + 4 + 4 * 8 + sizeof(struct stat) + kHostNameLen + sizeof(struct utsname);
static_assert(kFieldsLen == ZEL_ENTROPY_LEN_WITHOUT_DEVICE);
static_assert(kDeviceLen + kFieldsLen == ZEL_ENTROPY_LEN);

/// Fills `out` through interruptions and short reads. `read_some` returns the bytes that it
/// brought; 0 is the end, or an error in errno.
template <class ReadSome>
bool read_all(std::uint8_t *out, ReadSome read_some) noexcept {
  std::size_t have = 0;
  for (int idle = 0; have < kDeviceLen && idle < kIdleReads;) {
    errno = 0;
    const std::size_t got = read_some(out + have, kDeviceLen - have);
    have += got;
    if (got != 0) continue;
    if (errno != EINTR) return false;
    ++idle;
  }
  return have == kDeviceLen;
}

/// The stream has no buffer of its own, in which bytes could stay behind.
bool read_stream(std::uint8_t *out, FILE *stream) noexcept {
  setvbuf(stream, nullptr, _IONBF, 0);
  const bool complete = read_all(out, [stream](std::uint8_t *to, std::size_t len) {
    clearerr(stream);
    return fread(to, 1, len, stream);
  });
  fclose(stream);
  return complete;
}

/// For want of memory there may be no stream, but there is a device still.
bool read_without_stream(std::uint8_t *out) noexcept {
  const int file = open(kDevice, O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  const bool complete = read_all(out, [file](std::uint8_t *to, std::size_t len) {
    const ssize_t got = read(file, to, len);
    return got < 0 ? 0 : static_cast<std::size_t>(got);
  });
  close(file);
  return complete;
}

/// Short reads must not pass for device bytes: either all of them are there, or none stays.
bool read_device(std::uint8_t *out) noexcept {
  errno = 0;
  FILE *const stream = fopen(kDevice, "r");
  if (stream == nullptr && errno != ENOMEM) return false;
  const bool complete = stream != nullptr ? read_stream(out, stream) : read_without_stream(out);
  if (!complete) wipe(out, kDeviceLen);
  return complete;
}

/// Appends fields in host byte order.
class Fields {
 public:
  explicit Fields(std::uint8_t *at) noexcept : at_(at) {}

  void word32(std::uint32_t value) noexcept {
    store_le32(at_, value);
    at_ += sizeof value;
  }
  void word64(std::int64_t value) noexcept {
    store_le64(at_, static_cast<std::uint64_t>(value));
    at_ += sizeof value;
  }
  template <class Record>
  void record(const Record &record) noexcept {
    std::memcpy(at_, &record, sizeof record);
    at_ += sizeof record;
  }

 private:
  std::uint8_t *at_;
};

/// The address that the heap gives to a block which is freed at once.
std::uintptr_t heap_address(std::size_t len) noexcept {
  void *const block = std::malloc(len);
  std::uintptr_t address = reinterpret_cast<std::uintptr_t>(block);
  __asm__ volatile("" : "+r"(address) : : "memory");  // keeps the allocation
  std::free(block);
  return address;
}

/// Everything but the device, in its order. `start` is the first byte of the whole buffer.
void write_fields(std::uint8_t *at, const std::uint8_t *start, pid_t process) noexcept {
  std::memset(at, 0, kFieldsLen);
  Fields fields(at);
  fields.word64(time(nullptr));
  fields.word64(process);
  const std::uint32_t high = RNGSEED_GetRandomMemoryAddr(start[0]) << 16;
  fields.word32(high ^ RNGSEED_GetRandomMemoryAddr(start[1]));
  fields.word64(getuid());
  fields.word64(getgid());
  fields.word64(getsid(0));
  struct timeval now = {};
  gettimeofday(&now, nullptr);
  fields.word64(now.tv_usec);
  struct stat root = {};
  stat("/", &root);
  fields.record(root);
  std::array<char, kHostNameLen> host_name{};
  gethostname(host_name.data(), host_name.size());
  fields.record(host_name);
  struct utsname system = {};
  uname(&system);
  fields.record(system);
}

/// XORs into each of the first 80 bytes a later one, which above the middle has been changed
/// already.
void stir(std::uint8_t *buffer) noexcept {
  constexpr std::size_t kStirred = 80;
  for (std::size_t i = 0; i < kStirred; ++i)
    buffer[i] ^= buffer[kStirred - i];
}

/// Digests of the entropy, stirred between them, until there are enough bytes.
void condense(std::uint8_t *out, std::size_t len, const HASH_ALGORITHM &algorithm,
              std::uint8_t *entropy, std::uint32_t entropy_len) noexcept {
  struct Digest {
    std::uint8_t bytes[ZEL_MAX_DIGEST_LEN];
  };
  Wiped<Digest> digest;
  Wiped<HASH_CONTEXT> context;
  for (std::size_t done = 0; done < len;) {
    if (done != 0) stir(entropy);
    hash::start(*context, algorithm);
    hash::absorb(*context, entropy, entropy_len);
    hash::finish(digest->bytes, *context);
    const std::size_t part = std::min<std::size_t>(algorithm.digest_len, len - done);
    std::memcpy(out + done, digest->bytes, part);
    done += part;
  }
}

std::int32_t seed_from(std::uint8_t *out, std::uint32_t *out_len, std::uint32_t bits,
                       const HASH_ALGORITHM &algorithm) noexcept {
  if (any_null(out, out_len)) return ZEL_ERR_GENERIC;
  struct Entropy {
    std::uint8_t bytes[ZEL_ENTROPY_LEN];
  };
  Wiped<Entropy> entropy(Entropy{});
  std::uint32_t entropy_len = 0;
  std::int32_t count = 0;
  RNGSEED_GetEntropyData(entropy->bytes, &entropy_len, &count);
  const std::uint32_t len = bits / 8 + (bits % 8 != 0 ? 1 : 0);
  condense(out, len, algorithm, entropy->bytes, entropy_len);
  *out_len = len;
  return ZEL_OK;
}

constinit std::atomic<std::uint32_t> g_counter{0};

}  // namespace
}  // namespace zel

using namespace zel;

uint32_t RNGSEED_GetRandomMemoryAddr(int32_t b) {
  constexpr std::uint32_t kCounterMax = 0x3ffffffe;
  std::uint32_t counter = g_counter.load(std::memory_order_relaxed);
  if (counter > kCounterMax) counter = 0;
  counter += static_cast<std::uint32_t>(b);
  g_counter.store(counter, std::memory_order_relaxed);
  const std::uint32_t offset = (counter * 4) & 0xff;
  return static_cast<std::uint32_t>(heap_address(offset) + offset);
}

int32_t RNGSEED_GetEntropyData(uint8_t *buf, uint32_t *len, int32_t *entropy) {
  if (any_null(buf, len, entropy)) return ZEL_ERR_GENERIC;
  const pid_t process = getpid();
  const bool device = read_device(buf);
  write_fields(device ? buf + kDeviceLen : buf, buf, process);
  *len = device ? ZEL_ENTROPY_LEN : ZEL_ENTROPY_LEN_WITHOUT_DEVICE;
  *entropy = device ? ZEL_ENTROPY_COUNT : ZEL_ENTROPY_COUNT_WITHOUT_DEVICE;
  return ZEL_OK;
}

int32_t RNGSEED_GetSeed(uint8_t *out, uint32_t *out_len, uint32_t bits) {
  return seed_from(out, out_len, bits, zel_own_sha224);
}

int32_t RNGSEED_GetSeedKey(uint8_t *out, uint32_t *out_len, uint32_t bits) {
  return seed_from(out, out_len, bits, zel_own_pophas160);
}
