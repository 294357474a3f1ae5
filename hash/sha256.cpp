// SHA-256 and SHA-224: blocks of 64 bytes, eight words of 32 bits. FIPS 180-4, sections 6.2, 6.3.
#include "base/cpu.hpp"
#include "hash/algorithms.hpp"
#include "hash/blocks.hpp"
#include "hash/isa_blocks.hpp"
#include "hash/sha2.hpp"
#include "hash/slots.hpp"

namespace zel {

void hash::sha256_blocks(void *state, const std::uint8_t *data, std::size_t count) noexcept {
  if (cpu::has(cpu::Feature::kSha)) return sha256_blocks_shani(state, data, count);
  sha2_blocks<std::uint32_t>(state, data, count);
}

}  // namespace zel

using namespace zel;

void SHA256_Initialize(void *state) { hash::store_state(state, hash::kSha256Initial); }

void SHA256_CompressBlock(void *state, const std::uint8_t *block) {
  hash::sha256_blocks(state, block, 1);
}

void SHA256_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_be<std::uint32_t>(block, bit_count);
}

void SHA256_DumpDigest(std::uint8_t *out, const void *state) {
  hash::dump_be<std::uint32_t, 8>(out, state);
}

void SHA224_Initialize(void *state) { hash::store_state(state, hash::kSha224Initial); }

void SHA224_CompressBlock(void *state, const std::uint8_t *block) {
  hash::sha256_blocks(state, block, 1);
}

void SHA224_PadLength(std::uint8_t *block, const void *bit_count) {
  hash::pad_length_be<std::uint32_t>(block, bit_count);
}

void SHA224_DumpDigest(std::uint8_t *out, const void *state) {
  hash::dump_be<std::uint32_t, 7>(out, state);
}

constinit const HASH_ALGORITHM sha256 = {
    .digest_len = 32,
    .Initialize = SHA256_Initialize,
    .CompressBlock = SHA256_CompressBlock,
    .PadLength = SHA256_PadLength,
    .DumpDigest = SHA256_DumpDigest,
};
constinit const HASH_ALGORITHM sha224 = {
    .digest_len = 28,
    .Initialize = SHA224_Initialize,
    .CompressBlock = SHA224_CompressBlock,
    .PadLength = SHA224_PadLength,
    .DumpDigest = SHA224_DumpDigest,
};
extern "C" const HASH_ALGORITHM zel_own_sha256 ZEL_HIDDEN_ALIAS("sha256");
extern "C" const HASH_ALGORITHM zel_own_sha224 ZEL_HIDDEN_ALIAS("sha224");
