// The hash framework: buffering, byte counters, padding and gates, once for both word sizes.
// FIPS 180-4, sections 5.1 and 5.2; RFC 1321, section 3.
#include <cstring>

#include "base/ct.hpp"
#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/blocks.hpp"
#include "hash/direct.hpp"
#include "hash/padding.hpp"

namespace zel {
namespace {

using hash::End;
using hash::Engine;

bool buffers_itself(const HASH_ALGORITHM &algorithm) noexcept {
  return algorithm.PadLength == nullptr;
}

template <class Area>
void initialize(Area &area, const HASH_ALGORITHM &algorithm) noexcept {
  algorithm.Initialize(area.state);
  zero<128>(area.buffer);
  area.count_low = 0;
  area.count_high = 0;
}

/// Absorbs the whole blocks of [data, data + len) and returns where the rest begins. Afterwards the
/// buffer holds the last of them: every byte that leaves by way of the buffer would have been
/// there.
template <class Area>
const std::uint8_t *absorb_blocks(Area &area, const HASH_ALGORITHM &algorithm,
                                  const std::uint8_t *data, std::size_t len) noexcept {
  constexpr std::size_t kBlock = hash::kBlockLen<Area>;
  const std::size_t count = len / kBlock;
  if (count == 0) return data;
  const std::uint8_t *const last = data + (count - 1) * kBlock;
  if (const Engine *const engine = hash::engine_for(algorithm, kBlock); engine != nullptr) {
    engine->blocks(area.state, data, count);
    std::memcpy(area.buffer, last, kBlock);
    return last + kBlock;
  }
  for (; data <= last; data += kBlock) {
    std::memcpy(area.buffer, data, kBlock);
    algorithm.CompressBlock(area.state, area.buffer);
  }
  return data;
}

template <class Area>
void update(Area &area, const HASH_ALGORITHM &algorithm, const std::uint8_t *data,
            std::uint32_t len) noexcept {
  constexpr std::size_t kBlock = hash::kBlockLen<Area>;
  const std::size_t pos = area.count_low % kBlock;
  area.count_low += len;
  if (area.count_low < len) ++area.count_high;

  const std::uint8_t *const end = data + len;
  if (pos + len < kBlock) {
    std::memcpy(area.buffer + pos, data, len);
    return;
  }
  if (pos != 0) {
    std::memcpy(area.buffer + pos, data, kBlock - pos);
    algorithm.CompressBlock(area.state, area.buffer);
    data += kBlock - pos;
  }
  data = absorb_blocks(area, algorithm, data, static_cast<std::size_t>(end - data));
  if (data != end) std::memcpy(area.buffer, data, static_cast<std::size_t>(end - data));
}

/// A copy of the words that an algorithm uses, in pieces no larger than those it stores them in: a
/// load that spans several recent stores waits until they have reached the cache.
void copy_state(std::uint32_t *to, const std::uint32_t *from, std::size_t words) noexcept {
  store_bytes16(to, load_bytes16(from));
  if (words == 8) {
    store_bytes16(to + 4, load_bytes16(from + 4));
  } else {
    to[4] = from[4];
  }
}
void copy_state(std::uint64_t *to, const std::uint64_t *from, std::size_t words) noexcept {
#pragma GCC unroll 8
  for (std::size_t i = 0; i < words; ++i)
    to[i] = ct::opaque(from[i]);
}

/// The last blocks of one of our own algorithms, in one piece.
template <class Area>
void finalize(std::uint8_t *out, const HASH_ALGORITHM &algorithm, const Engine &engine,
              const End<Area> &end) noexcept {
  struct Last {
    hash::WordOf<Area> state[8];
    std::uint8_t blocks[2 * hash::kBlockLen<Area>];
  };
  Wiped<Last> last;
  copy_state(last->state, end.state, engine.state_words);
  const std::size_t count = hash::pad(last->blocks, end, engine.length_order);
  engine.blocks(last->state, last->blocks, count);
  algorithm.DumpDigest(out, last->state);
}

/// The same by way of the slots of any algorithm. The length field keeps what the buffer held until
/// PadLength fills it.
template <class Area>
void finalize_by_slots(std::uint8_t *out, const HASH_ALGORITHM &algorithm,
                       const Area &area) noexcept {
  constexpr std::size_t kBlock = hash::kBlockLen<Area>;
  constexpr std::size_t kPaddedTo = hash::kPaddedTo<Area>;
  struct Last {
    hash::WordOf<Area> state[16];
    std::uint8_t buffer[128];
  };
  Wiped<Last> last;
  std::memcpy(last->state, area.state, sizeof last->state);
  std::memcpy(last->buffer, area.buffer, sizeof last->buffer);

  std::size_t pos = area.count_low % kBlock;
  last->buffer[pos++] = 0x80;
  if (pos > kPaddedTo) {
    std::memset(last->buffer + pos, 0, kBlock - pos);
    algorithm.CompressBlock(last->state, last->buffer);
    pos = 0;
  }
  std::memset(last->buffer + pos, 0, kPaddedTo - pos);

  // Two words of zero follow, for a caller's copy of sha384 or sha512: it is driven with blocks of
  // 64 bytes like every other algorithm that is not ours, and its PadLength reads wider words.
  const auto bits = hash::bit_count<Area>(area.count_low, area.count_high);
  const hash::WordOf<Area> bit_count[4] = {bits.low, bits.high, 0, 0};
  algorithm.PadLength(last->buffer, bit_count);
  algorithm.CompressBlock(last->state, last->buffer);
  algorithm.DumpDigest(out, last->state);
}

template <class Area>
std::uint32_t finish_area(std::uint8_t *out, const HASH_ALGORITHM &algorithm,
                          const Area &area) noexcept {
  constexpr std::size_t kBlock = hash::kBlockLen<Area>;
  if (const Engine *const engine = hash::engine_for(algorithm, kBlock); engine != nullptr) {
    finalize<Area>(
        out, algorithm, *engine,
        {area.state, area.buffer, area.count_low % kBlock, area.count_low, area.count_high});
  } else {
    finalize_by_slots(out, algorithm, area);
  }
  return algorithm.digest_len;
}

/// A digest of `area` and `len` more bytes, when these fit the block that begins: true if done.
template <class Area>
bool finish_area_with(std::uint8_t *out, const HASH_ALGORITHM &algorithm, const Area &area,
                      const std::uint8_t *data, std::uint32_t len) noexcept {
  constexpr std::size_t kBlock = hash::kBlockLen<Area>;
  const Engine *const engine = hash::engine_for(algorithm, kBlock);
  const auto count_low = static_cast<hash::WordOf<Area>>(area.count_low + len);
  if (engine == nullptr || area.count_low % kBlock != 0 || len >= kBlock || count_low < len) {
    return false;
  }
  struct Rest {
    std::uint8_t bytes[kBlock];
  };
  Wiped<Rest> rest;
  std::memcpy(rest->bytes, data, len);
  finalize<Area>(out, algorithm, *engine,
                 {area.state, rest->bytes, len, count_low, area.count_high});
  return true;
}

}  // namespace

void hash::start(HASH_CONTEXT &context, const HASH_ALGORITHM &algorithm) noexcept {
  context.descriptor = &algorithm;
  if (buffers_itself(algorithm)) return algorithm.Initialize(&context);
  if (is_sha384_or_sha512(&algorithm)) return initialize(context.area64, algorithm);
  initialize(context.area32, algorithm);
}

void hash::absorb(HASH_CONTEXT &context, const std::uint8_t *data, std::uint32_t len) noexcept {
  if (len == 0) return;
  const HASH_ALGORITHM &algorithm = *context.descriptor;
  if (buffers_itself(algorithm)) return algorithm.Update(&context, data, len);
  if (is_sha384_or_sha512(&algorithm)) return update(context.area64, algorithm, data, len);
  update(context.area32, algorithm, data, len);
}

std::uint32_t hash::finish(std::uint8_t *out, const HASH_CONTEXT &context) noexcept {
  const HASH_ALGORITHM &algorithm = *context.descriptor;
  if (buffers_itself(algorithm)) {
    constexpr std::uint32_t kMd2DigestLen = 16;
    algorithm.DumpDigest(out, &context);
    return kMd2DigestLen;
  }
  if (is_sha384_or_sha512(&algorithm)) return finish_area(out, algorithm, context.area64);
  return finish_area(out, algorithm, context.area32);
}

std::uint32_t hash::finish_with(std::uint8_t *out, const HASH_CONTEXT &context,
                                const std::uint8_t *data, std::uint32_t len) noexcept {
  const HASH_ALGORITHM &algorithm = *context.descriptor;
  const bool done = is_sha384_or_sha512(&algorithm)
                        ? finish_area_with(out, algorithm, context.area64, data, len)
                        : finish_area_with(out, algorithm, context.area32, data, len);
  if (done) return algorithm.digest_len;
  Wiped<HASH_CONTEXT> copy(context);
  absorb(*copy, data, len);
  return finish(out, *copy);
}

}  // namespace zel

using namespace zel;

int32_t HASH_InitializeEx(HASH_CONTEXT *context, const HASH_ALGORITHM *descriptor) {
  if (!gate::serving()) return ZEL_ERR_STATE;
  if (gate::approved_only() && !hash::is_approved(descriptor)) return ZEL_ERR_APPROVED;
  hash::start(*context, *descriptor);
  return ZEL_OK;
}

int32_t HASH_Initialize(HASH_CONTEXT *context, const HASH_ALGORITHM *descriptor) {
  if (const int32_t now = gate::state(); !gate::serves(now)) return now;
  hash::start(*context, *descriptor);
  return ZEL_OK;
}

void HASH_Update_KZEL(HASH_CONTEXT *context, const uint8_t *data, uint32_t len) {
  if (gate::serving()) hash::absorb(*context, data, len);
}

void HASH_Update(HASH_CONTEXT *context, const uint8_t *data, uint32_t len) {
  HASH_Update_KZEL(context, data, len);
}

void HASH_Update_clone(HASH_CONTEXT *context, const uint8_t *data, uint32_t len) {
  HASH_Update_KZEL(context, data, len);
}

void HASH_Finalize(uint8_t *out, uint32_t *out_len, const HASH_CONTEXT *context) {
  *out_len = 0;
  if (!gate::serving()) return;
  *out_len = hash::finish(out, *context);
}
