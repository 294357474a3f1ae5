/**
 * @file
 * Enciphering what files hold. The output is what `BCIPHER_Encrypt` makes of the input and nothing
 * else: no header, no IV, no length. A range of a file is one message, whatever its length.
 *
 * Modes that do not chain over calls (full-block CFB when deciphering, byte-OFB, ciphertext
 * stealing) start anew with every chunk.
 */
#ifndef ZEL_CC_BCIPHER_FILE_H
#define ZEL_CC_BCIPHER_FILE_H

#include <stdio.h>

#include "zel_cc/base.h"
#include "zel_cc/bcipher.h"
#include "zel_cc/errors.h"

ZEL_BEGIN_DECLS

/**
 * Enciphers a range of a stream in chunks of a given length.
 *
 * Every chunk but the last is a piece that is not final, so in ECB and CBC the chunk length must be
 * a multiple of the block length. An input that ends before `len` bytes ends the message. The
 * output stream is flushed.
 *
 * @param[in]     out        open for writing
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in         open for reading
 * @param[in]     len        bytes, or -1 for the whole file of any size, from its beginning
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @param[in]     chunk_len  bytes, not 0; as much memory is taken
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, bad length, no memory, or a stream that cannot be read,
 *                          written or (for -1) sought in; or as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Encrypt`
 */
ZEL_API int32_t BCIPHER_EncryptFile_BSize(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                          BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                          uint8_t final, uint32_t chunk_len);

/**
 * Deciphers a range of a stream in chunks of a given length.
 *
 * Otherwise as `BCIPHER_EncryptFile_BSize`.
 *
 * @param[in]     out        open for writing
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in         open for reading
 * @param[in]     len        bytes, or -1 for the whole file of any size, from its beginning
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @param[in]     chunk_len  bytes, not 0; as much memory is taken
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, bad length, no memory, or a stream that cannot be read,
 *                          written or (for -1) sought in; or as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_PADDING  as for `BCIPHER_Decrypt`; the last chunk is not written
 */
ZEL_API int32_t BCIPHER_DecryptFile_BSize(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                          BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                          uint8_t final, uint32_t chunk_len);

/**
 * Enciphers a range of a stream in chunks of 65,536 bytes.
 *
 * Otherwise as `BCIPHER_EncryptFile_BSize`.
 *
 * @param[in]     out        open for writing
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in         open for reading
 * @param[in]     len        bytes, or -1 for the whole file of any size, from its beginning
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, bad length, no memory, or a stream that cannot be read,
 *                          written or (for -1) sought in; or as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Encrypt`
 */
ZEL_API int32_t BCIPHER_EncryptFile(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                    BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                    uint8_t final);

/**
 * Deciphers a range of a stream in chunks of 65,536 bytes.
 *
 * Otherwise as `BCIPHER_EncryptFile_BSize`.
 *
 * @param[in]     out        open for writing
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in         open for reading
 * @param[in]     len        bytes, or -1 for the whole file of any size, from its beginning
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, bad length, no memory, or a stream that cannot be read,
 *                          written or (for -1) sought in; or as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_PADDING  as for `BCIPHER_Decrypt`; the last chunk is not written
 */
ZEL_API int32_t BCIPHER_DecryptFile(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                    BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                    uint8_t final);

/**
 * Deciphers a range of a stream in chunks of 49,152 bytes.
 *
 * Otherwise as `BCIPHER_EncryptFile_BSize`.
 *
 * @param[in]     out        open for writing
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in         open for reading
 * @param[in]     len        bytes, or -1 for the whole file of any size, from its beginning
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK           done
 * @retval ZEL_ERR_STATE    module not serving; nothing touched
 * @retval ZEL_ERR_GENERIC  null argument, bad length, no memory, or a stream that cannot be read,
 *                          written or (for -1) sought in; or as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_APPROVED as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_MODE     as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_PADDING  as for `BCIPHER_Decrypt`; the last chunk is not written
 */
ZEL_API int32_t BCIPHER_DecryptFile_S(FILE *out, uint32_t *out_total, FILE *in, int32_t len,
                                      BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                      uint8_t final);

/**
 * Enciphers a range of one file into another, in chunks of 65,536 bytes.
 *
 * The output is created, or emptied first; it may not be the file of the input. What was written
 * before a failure stays.
 *
 * @param[in]     out_path   the file to write
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in_path    the file to read
 * @param[in]     offset     where the range begins, in bytes
 * @param[in]     len        bytes, or 0xffffffff for the whole file, with offset 0 alone
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_STATE       module not serving; nothing touched
 * @retval ZEL_ERR_FILE_OFFSET negative offset; nothing touched
 * @retval ZEL_ERR_FILE_OPEN   a file cannot be opened, or both are the same one
 * @retval ZEL_ERR_GENERIC     null argument, a file that cannot be read or written, no memory, the
 *                             whole file from an offset (the output is empty then), or as
 *                             for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_APPROVED    as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_MODE        as for `BCIPHER_Encrypt`
 */
ZEL_API int32_t BCIPHER_EncryptFilePath_Offset(const char *out_path, uint32_t *out_total,
                                               const char *in_path, int64_t offset, uint32_t len,
                                               BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                               uint8_t final);

/**
 * Deciphers a range of one file into another, in chunks of 65,536 bytes.
 *
 * Otherwise as `BCIPHER_EncryptFilePath_Offset`.
 *
 * @param[in]     out_path   the file to write
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in_path    the file to read
 * @param[in]     offset     where the range begins, in bytes
 * @param[in]     len        bytes, or 0xffffffff for the whole file, with offset 0 alone
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_STATE       module not serving; nothing touched
 * @retval ZEL_ERR_FILE_OFFSET negative offset; nothing touched
 * @retval ZEL_ERR_FILE_OPEN   a file cannot be opened, or both are the same one
 * @retval ZEL_ERR_GENERIC     null argument, a file that cannot be read or written, no memory, the
 *                             whole file from an offset (the output is empty then), or as
 *                             for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_APPROVED    as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_MODE        as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_PADDING     as for `BCIPHER_Decrypt`; the last chunk is not written
 */
ZEL_API int32_t BCIPHER_DecryptFilePath_Offset(const char *out_path, uint32_t *out_total,
                                               const char *in_path, int64_t offset, uint32_t len,
                                               BCIPHER_CONTEXT *context, const BCIPHER_KEY *key,
                                               uint8_t final);

/**
 * Enciphers the beginning of one file, or all of it, into another.
 *
 * Otherwise as `BCIPHER_EncryptFilePath_Offset`.
 *
 * @param[in]     out_path   the file to write
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in_path    the file to read
 * @param[in]     len        bytes, or 0xffffffff for the whole file
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_STATE       module not serving; nothing touched
 * @retval ZEL_ERR_FILE_OPEN   a file cannot be opened, or both are the same one
 * @retval ZEL_ERR_GENERIC     null argument, a file that cannot be read or written, no memory, or
 *                             as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_APPROVED    as for `BCIPHER_Encrypt`
 * @retval ZEL_ERR_MODE        as for `BCIPHER_Encrypt`
 */
ZEL_API int32_t BCIPHER_EncryptFilePath(const char *out_path, uint32_t *out_total,
                                        const char *in_path, uint32_t len, BCIPHER_CONTEXT *context,
                                        const BCIPHER_KEY *key, uint8_t final);

/**
 * Deciphers the beginning of one file, or all of it, into another.
 *
 * Otherwise as `BCIPHER_EncryptFilePath_Offset`.
 *
 * @param[in]     out_path   the file to write
 * @param[out]    out_total  bytes written, also before a failure; their low 32 bits
 * @param[in]     in_path    the file to read
 * @param[in]     len        bytes, or 0xffffffff for the whole file
 * @param[in,out] context    from `BCIPHER_Initialize`
 * @param[in]     key        loaded by `BCIPHER_MakeKey`
 * @param[in]     final      1 when the range ends a message
 * @retval ZEL_OK              done
 * @retval ZEL_ERR_STATE       module not serving; nothing touched
 * @retval ZEL_ERR_FILE_OPEN   a file cannot be opened, or both are the same one
 * @retval ZEL_ERR_GENERIC     null argument, a file that cannot be read or written, no memory, or
 *                             as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_APPROVED    as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_MODE        as for `BCIPHER_Decrypt`
 * @retval ZEL_ERR_PADDING     as for `BCIPHER_Decrypt`; the last chunk is not written
 */
ZEL_API int32_t BCIPHER_DecryptFilePath(const char *out_path, uint32_t *out_total,
                                        const char *in_path, uint32_t len, BCIPHER_CONTEXT *context,
                                        const BCIPHER_KEY *key, uint8_t final);

ZEL_END_DECLS

#endif
