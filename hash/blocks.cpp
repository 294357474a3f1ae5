// Which of our algorithms stands behind the slots of a descriptor.
#include "hash/blocks.hpp"

#include "hash/slots.hpp"

namespace zel {
namespace {

struct Row {
  void (*compress_block)(void *, const std::uint8_t *);
  void (*pad_length)(std::uint8_t *, const void *);
  hash::Engine engine;
};

// The approved algorithms are asked for most.
constinit const Row kRows[] = {
    {SHA256_CompressBlock, SHA256_PadLength, {hash::sha256_blocks, 64, 8, hash::ByteOrder::kBig}},
    {SHA512_CompressBlock, SHA512_PadLength, {hash::sha512_blocks, 128, 8, hash::ByteOrder::kBig}},
    {SHA384_CompressBlock, SHA384_PadLength, {hash::sha512_blocks, 128, 8, hash::ByteOrder::kBig}},
    {SHA224_CompressBlock, SHA224_PadLength, {hash::sha256_blocks, 64, 8, hash::ByteOrder::kBig}},
    {SHA1_CompressBlock, SHA1_PadLength, {hash::sha1_blocks, 64, 5, hash::ByteOrder::kBig}},
    {HAS160_CompressBlock,
     HAS160_PadLength,
     {hash::has160_blocks, 64, 5, hash::ByteOrder::kLittle}},
    {MD5_CompressBlock, MD5_PadLength, {hash::md5_blocks, 64, 4, hash::ByteOrder::kLittle}},
    {RIPEMD160_CompressBlock,
     RIPEMD160_PadLength,
     {hash::ripemd160_blocks, 64, 5, hash::ByteOrder::kLittle}},
};

}  // namespace

const hash::Engine *hash::engine_for(const HASH_ALGORITHM &algorithm,
                                     std::size_t block_len) noexcept {
  for (const Row &row : kRows) {
    if (row.compress_block != algorithm.CompressBlock) continue;
    const bool whole = row.pad_length == algorithm.PadLength && row.engine.block_len == block_len;
    return whole ? &row.engine : nullptr;
  }
  return nullptr;
}

}  // namespace zel
