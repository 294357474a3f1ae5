// The hash framework: buffering, byte counters, padding and gates, once for both word sizes.
// FIPS 180-4, sections 5.1 and 5.2; RFC 1321, section 3.
#include <algorithm>
#include <cstring>

#include "base/wipe.hpp"
#include "core/gate.hpp"
#include "hash/direct.hpp"

namespace zel {
namespace {

/// What follows from the word size of an algorithm: block, length field, shape of the area.
template <class Area>
struct Shape {
  using Word = decltype(Area::count_low);
  static constexpr std::size_t kBlock = 16 * sizeof(Word);
  static constexpr std::size_t kLengthField = 2 * sizeof(Word);
  static constexpr std::size_t kPaddedTo = kBlock - kLengthField;

  /// What a finalisation works on, in place of the caller's context.
  struct Last {
    Word state[16];
    std::uint8_t buffer[128];
  };
};

bool buffers_itself(const HASH_ALGORITHM &algorithm) noexcept {
  return algorithm.PadLength == nullptr;
}

template <class Area>
void initialize(Area &area, const HASH_ALGORITHM &algorithm) noexcept {
  algorithm.Initialize(area.state);
  std::memset(area.buffer, 0, 128);
  area.count_low = 0;
  area.count_high = 0;
}

/// Absorbs the whole blocks of [data, data + len) and returns where the rest begins. Afterwards the
/// buffer holds the last of them: every byte that leaves by way of the buffer would have been
/// there.
template <class Area>
const std::uint8_t *absorb_blocks(Area &area, const HASH_ALGORITHM &algorithm,
                                  const std::uint8_t *data, std::size_t len) noexcept {
  constexpr std::size_t kBlock = Shape<Area>::kBlock;
  const std::size_t count = len / kBlock;
  if (count == 0) return data;
  const std::uint8_t *const last = data + (count - 1) * kBlock;
  if (const auto blocks = hash::blocks_for(algorithm.CompressBlock, kBlock); blocks != nullptr) {
    blocks(area.state, data, count);
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
  constexpr std::size_t kBlock = Shape<Area>::kBlock;
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
  std::memcpy(area.buffer, data, static_cast<std::size_t>(end - data));
}

template <class Area>
void finalize(std::uint8_t *out, const HASH_ALGORITHM &algorithm, const Area &given) noexcept {
  using Word = typename Shape<Area>::Word;
  constexpr std::size_t kBlock = Shape<Area>::kBlock;
  constexpr std::size_t kPaddedTo = Shape<Area>::kPaddedTo;
  Wiped<typename Shape<Area>::Last> last;
  std::memcpy(last->state, given.state, sizeof last->state);
  std::memcpy(last->buffer, given.buffer, sizeof last->buffer);

  std::size_t pos = given.count_low % kBlock;
  last->buffer[pos++] = 0x80;
  if (pos > kPaddedTo) {
    std::memset(last->buffer + pos, 0, kBlock - pos);
    algorithm.CompressBlock(last->state, last->buffer);
    pos = 0;
  }
  std::memset(last->buffer + pos, 0, kPaddedTo - pos);

  // Deliberate: 29 is the shift for 32-bit counters and is used for 64-bit ones too, where 61 would
  // be the standard's. SHA-384 and SHA-512 of 512 MiB and more so have digests of their own, which
  // existing users of the library depend on.
  constexpr int kCarryShift = 29;
  // Two words of zero follow, for a caller's copy of sha384 or sha512: it is driven with blocks of
  // 64 bytes like every other algorithm that is not ours, and its PadLength reads wider words.
  const Word bit_count[4] = {
      static_cast<Word>(given.count_low << 3),
      static_cast<Word>((given.count_high << 3) | (given.count_low >> kCarryShift))};
  algorithm.PadLength(last->buffer, bit_count);
  algorithm.CompressBlock(last->state, last->buffer);
  algorithm.DumpDigest(out, last->state);
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
  if (is_sha384_or_sha512(&algorithm)) {
    finalize(out, algorithm, context.area64);
  } else {
    finalize(out, algorithm, context.area32);
  }
  return algorithm.digest_len;
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
  if (!gate::serving()) return gate::state();
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
