// The slot functions of the nine descriptors. They have C names for the sake of debuggers and
// profilers and are not exported: callers reach them through the descriptors.
#pragma once

#include <cstdint>

#pragma GCC visibility push(hidden)
extern "C" {

void SHA1_Initialize(void *state);
void SHA1_CompressBlock(void *state, const std::uint8_t *block);
void SHA1_PadLength(std::uint8_t *block, const void *bit_count);
void SHA1_DumpDigest(std::uint8_t *out, const void *state);

void SHA224_Initialize(void *state);
void SHA224_CompressBlock(void *state, const std::uint8_t *block);
void SHA224_PadLength(std::uint8_t *block, const void *bit_count);
void SHA224_DumpDigest(std::uint8_t *out, const void *state);

void SHA256_Initialize(void *state);
void SHA256_CompressBlock(void *state, const std::uint8_t *block);
void SHA256_PadLength(std::uint8_t *block, const void *bit_count);
void SHA256_DumpDigest(std::uint8_t *out, const void *state);

void SHA384_Initialize(void *state);
void SHA384_CompressBlock(void *state, const std::uint8_t *block);
void SHA384_PadLength(std::uint8_t *block, const void *bit_count);
void SHA384_DumpDigest(std::uint8_t *out, const void *state);

void SHA512_Initialize(void *state);
void SHA512_CompressBlock(void *state, const std::uint8_t *block);
void SHA512_PadLength(std::uint8_t *block, const void *bit_count);
void SHA512_DumpDigest(std::uint8_t *out, const void *state);

void HAS160_Initialize(void *state);
void HAS160_CompressBlock(void *state, const std::uint8_t *block);
void HAS160_PadLength(std::uint8_t *block, const void *bit_count);
void HAS160_DumpDigest(std::uint8_t *out, const void *state);

void MD5_Initialize(void *state);
void MD5_CompressBlock(void *state, const std::uint8_t *block);
void MD5_PadLength(std::uint8_t *block, const void *bit_count);
void MD5_DumpDigest(std::uint8_t *out, const void *state);

void RIPEMD160_Initialize(void *state);
void RIPEMD160_CompressBlock(void *state, const std::uint8_t *block);
void RIPEMD160_PadLength(std::uint8_t *block, const void *bit_count);
void RIPEMD160_DumpDigest(std::uint8_t *out, const void *state);

void MD2_Initialize(void *context);
void MD2_Update(void *context, const std::uint8_t *data, std::uint32_t len);
void MD2_Finalize(std::uint8_t *out, const void *context);

}  // extern "C"
#pragma GCC visibility pop
