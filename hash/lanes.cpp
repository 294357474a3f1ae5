// Picks the lanes for this processor.
#include "hash/lanes.hpp"

#include "base/cpu.hpp"
#include "base/wipe.hpp"
#include "hash/blocks.hpp"
#include "hash/lanes_isa.hpp"
#include "hash/words.hpp"

namespace zel::hash {
namespace {

template <class Word, class Blocks>
void one_by_one(std::uint8_t *digests, const std::array<Word, 8> &initial,
                const std::uint8_t *blocks, std::size_t count, Blocks absorb) noexcept {
  Wiped<std::array<Word, 8>> state;
  for (; count != 0; --count, digests += sizeof *state, blocks += 16 * sizeof(Word)) {
    *state = initial;
    absorb(&*state, blocks, 1);
    dump_be<Word, 8>(digests, &*state);
  }
}

}  // namespace

void sha256_lanes(std::uint8_t *digests, const std::array<std::uint32_t, 8> &initial,
                  const std::uint8_t *blocks, std::size_t count) noexcept {
  if (cpu::has(cpu::Feature::kSha)) return sha256_lanes_shani(digests, initial, blocks, count);
  one_by_one(digests, initial, blocks, count, sha256_blocks);
}

void sha512_lanes(std::uint8_t *digests, const std::array<std::uint64_t, 8> &initial,
                  const std::uint8_t *blocks, std::size_t count) noexcept {
  // Four lanes cost as much as two blocks and a half one after the other.
  constexpr std::size_t kLanes = 4, kBlock = 128, kDigest = 64, kWorthLanes = 3;
  if (count >= kWorthLanes && cpu::has(cpu::Feature::kAvx2)) {
    while (count >= kWorthLanes) {
      const std::size_t done = count < kLanes ? count : kLanes;
      sha512_lanes_avx2(digests, initial, blocks, done);
      digests += done * kDigest;
      blocks += done * kBlock;
      count -= done;
    }
  }
  one_by_one(digests, initial, blocks, count, sha512_blocks);
}

}  // namespace zel::hash
