// SHA-512 and SHA-384: blocks of 128 bytes, eight words of 64 bits. FIPS 180-4, sections 6.4, 6.5.
#include "base/cpu.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/isa_blocks.hpp"
#include "hash/sha2.hpp"
#include "hash/slots.hpp"

namespace zel {

void hash::sha512_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  if (cpu::has(cpu::Feature::kAvx2, cpu::Feature::kBmi2)) {
    return zel_sha512_blocks_avx2(state, data, count, kSha2Rounds<std::uint64_t>.data());
  }
  sha2_blocks<std::uint64_t>(state, data, count);
}

}  // namespace zel

using namespace zel;

void SHA512_Initialize(void *state) { hash::store_state(state, hash::kSha512Initial); }

void SHA512_CompressBlock(void *state, const std::uint8_t *block) {
  hash::sha512_blocks(state, block, 1);
}

void SHA512_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_be<std::uint64_t>(block, bit_count);
}

void SHA512_DumpDigest(std::uint8_t *out, const void *state) {
  hash::dump_be<std::uint64_t, 8>(out, state);
}

void SHA384_Initialize(void *state) { hash::store_state(state, hash::kSha384Initial); }

void SHA384_CompressBlock(void *state, const std::uint8_t *block) {
  hash::sha512_blocks(state, block, 1);
}

void SHA384_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_be<std::uint64_t>(block, bit_count);
}

void SHA384_DumpDigest(std::uint8_t *out, const void *state) {
  hash::dump_be<std::uint64_t, 6>(out, state);
}

constinit const HASH_ALGORITHM sha512 = {
    .digest_len = 64,
    .Initialize = SHA512_Initialize,
    .CompressBlock = SHA512_CompressBlock,
    .PadLength = SHA512_PadLength,
    .DumpDigest = SHA512_DumpDigest,
};
constinit const HASH_ALGORITHM sha384 = {
    .digest_len = 48,
    .Initialize = SHA384_Initialize,
    .CompressBlock = SHA384_CompressBlock,
    .PadLength = SHA384_PadLength,
    .DumpDigest = SHA384_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_sha512 ZEL_HIDDEN_ALIAS("sha512");
extern "C" const HASH_ALGORITHM zel_own_sha384 ZEL_HIDDEN_ALIAS("sha384");
