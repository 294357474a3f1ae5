// Which many-block routine stands behind a block slot.
#include "hash/blocks.hpp"

#include "hash/algorithms.hpp"
#include "hash/slots.hpp"

namespace zel {
namespace {

struct Row {
  void (*compress_block)(void *, const std::uint8_t *);
  hash::BlocksFn blocks;
  std::size_t block_len;
};

// The approved algorithms are asked for most.
constinit const Row kRows[] = {
    {SHA256_CompressBlock, hash::sha256_blocks, 64},
    {SHA512_CompressBlock, hash::sha512_blocks, 128},
    {SHA384_CompressBlock, hash::sha512_blocks, 128},
    {SHA224_CompressBlock, hash::sha256_blocks, 64},
    {SHA1_CompressBlock, hash::sha1_blocks, 64},
    {HAS160_CompressBlock, hash::has160_blocks, 64},
    {MD5_CompressBlock, hash::md5_blocks, 64},
    {RIPEMD160_CompressBlock, hash::ripemd160_blocks, 64},
};

}  // namespace

hash::BlocksFn hash::blocks_for(void (*compress_block)(void *, const std::uint8_t *),
                                std::size_t block_len) noexcept {
  for (const Row &row : kRows) {
    if (row.compress_block == compress_block) {
      return row.block_len == block_len ? row.blocks : nullptr;
    }
  }
  return nullptr;
}

}  // namespace zel
