// Which many-block routine stands behind a block function, and what the modes do without one.
#include "cipher/bulk.hpp"

#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "base/cpu.hpp"
#include "base/wipe.hpp"
#include "cipher/algorithms.hpp"
#include "core/gate.hpp"

namespace zel::bulk {
namespace {

constexpr std::uint32_t needs(auto... features) noexcept {
  return (0U | ... | static_cast<std::uint32_t>(features));
}
using enum cpu::Feature;

struct Row {
  BCIPHER_BLOCK_FN encrypt_block;
  std::uint32_t features;  ///< bits of cpu::Feature that it takes
  bool approved;           ///< whether the cipher runs in the verified service
  const Ops *ops;
};

/// The best comes first among the rows of one cipher.
constinit const Row kRows[] = {
    {RIJNDAEL_EncryptBlock, needs(kAesni, kVaes), false, &rijndael128_vaes},
    {RIJNDAEL_EncryptBlock, needs(kAesni), false, &rijndael128_aesni},
    {RIJNDAEL_EncryptBlock, needs(), false, &rijndael128_sliced},
    {RIJNDAEL256_EncryptBlock, needs(kAesni, kVaes), false, &rijndael256_vaes},
    {RIJNDAEL256_EncryptBlock, needs(kAesni), false, &rijndael256_aesni},
    {RIJNDAEL256_EncryptBlock, needs(), false, &rijndael256_sliced},
#ifdef ZEL_CC_AESNI
    {RIJNDAEL_EncryptBlock_AESNI, needs(kAesni, kVaes), false, &rijndael128_vaes},
    {RIJNDAEL_EncryptBlock_AESNI, needs(kAesni), false, &rijndael128_aesni},
    {RIJNDAEL256_EncryptBlock_AESNI, needs(kAesni, kVaes), false, &rijndael256_vaes},
    {RIJNDAEL256_EncryptBlock_AESNI, needs(kAesni), false, &rijndael256_aesni},
#endif
    {DES_EncryptBlock, needs(kAvx2), false, &des_avx2},
    {DES_EncryptBlock, needs(), false, &des_interleaved},
    {TDES_EncryptBlock, needs(kAvx2), false, &tdes_avx2},
    {TDES_EncryptBlock, needs(), false, &tdes_interleaved},
    {BLOWFISH_EncryptBlock, needs(), false, &blowfish_interleaved},
    {CAST128_EncryptBlock, needs(), false, &cast128_interleaved},
    {IDEA_EncryptBlock, needs(kAvx2), false, &idea_avx2},
    {IDEA_EncryptBlock, needs(), false, &idea_interleaved},
    {RC2_EncryptBlock, needs(), false, &rc2_interleaved},
    {RC5_EncryptBlock, needs(kAvx2), false, &rc5_avx2},
    {RC5_EncryptBlock, needs(), false, &rc5_interleaved},
    {TAVO_EncryptBlock, needs(), false, &tavo_interleaved},
    {TAVOOLD_EncryptBlock, needs(), false, &tavoold_interleaved},
};

/// Key stream and saved ciphertext of the fallbacks: a whole number of work units of every routine.
constexpr std::size_t kBatchLen = 2048;

/// Room for key stream; wipes as much of it as a message of `len` bytes can have used.
class Batch {
 public:
  explicit Batch(std::size_t len) noexcept : used_(std::min(len, kBatchLen)) {}
  Batch(const Batch &) = delete;
  Batch &operator=(const Batch &) = delete;
  ~Batch() { wipe(bytes_, used_); }
  std::uint8_t *data() noexcept { return bytes_; }

 private:
  std::size_t used_;
  std::uint8_t bytes_[kBatchLen];
};

/// Calls work(out, in, count) for one batch after the other.
template <class Work>
void in_batches(std::uint8_t *out, const std::uint8_t *in, std::size_t count, std::size_t block_len,
                Work work) noexcept {
  const std::size_t most = kBatchLen / block_len;
  while (count > 0) {
    const std::size_t now = std::min(count, most);
    work(out, in, now);
    out += now * block_len;
    in += now * block_len;
    count -= now;
  }
}

void copy(std::uint8_t *out, const std::uint8_t *in, std::size_t len) noexcept {
  if (out != in && len != 0) std::memmove(out, in, len);
}

/// Writes `count` successive counters and advances the counter behind them.
void count_up(std::uint8_t *to, std::size_t count, std::uint8_t *counter,
              std::size_t block_len) noexcept {
  if (block_len == 8 || block_len == 16) {
    const std::size_t high_len = block_len - 8;
    std::uint64_t low = load_be64(counter + high_len);
    for (; count > 0; --count, to += block_len) {
      if (high_len != 0) store_le64(to, load_le64(counter));
      store_be64(to + high_len, low);
      if (++low == 0) increment(counter, high_len);
    }
    store_be64(counter + high_len, low);
    return;
  }
  for (; count > 0; --count, to += block_len) {
    std::memcpy(to, counter, block_len);
    increment(counter, block_len);
  }
}

}  // namespace

const Ops *ops_for(BCIPHER_BLOCK_FN encrypt_block) noexcept {
  for (const Row &row : kRows) {
    if (row.encrypt_block != encrypt_block || !cpu::has_all(row.features)) continue;
    return row.approved || !gate::approved_only() ? row.ops : nullptr;
  }
  return nullptr;
}

void Cipher::encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept {
  if (ops_ != nullptr && ops_->encrypt != nullptr)
    return ops_->encrypt(out, in, count, round_keys_);
  copy(out, in, count * block_len_);
  for (; count > 0; --count, out += block_len_)
    encrypt_block(out);
}

void Cipher::decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept {
  if (ops_ != nullptr && ops_->decrypt != nullptr)
    return ops_->decrypt(out, in, count, round_keys_);
  copy(out, in, count * block_len_);
  for (; count > 0; --count, out += block_len_)
    decrypt_block(out);
}

void Cipher::ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                 std::uint8_t *counter) const noexcept {
  if (ops_ != nullptr && ops_->ctr != nullptr)
    return ops_->ctr(out, in, count, round_keys_, counter);
  Batch stream(count * block_len_);
  in_batches(out, in, count, block_len_, [&](auto *to, const auto *from, std::size_t now) {
    count_up(stream.data(), now, counter, block_len_);
    encrypt(stream.data(), stream.data(), now);
    xor_bytes(to, from, stream.data(), now * block_len_);
  });
}

void Cipher::cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                         std::uint8_t *chain) const noexcept {
  if (ops_ != nullptr && ops_->cbc_decrypt != nullptr)
    return ops_->cbc_decrypt(out, in, count, round_keys_, chain);
  std::uint8_t before[kBatchLen + ZEL_MAX_BLOCK_LEN];  // ciphertext, which is no secret
  in_batches(out, in, count, block_len_, [&](auto *to, const auto *from, std::size_t now) {
    std::memcpy(before, chain, block_len_);
    std::memcpy(before + block_len_, from, now * block_len_);
    decrypt(to, from, now);
    xor_bytes(to, to, before, now * block_len_);
    std::memcpy(chain, before + now * block_len_, block_len_);
  });
}

void Cipher::cfb_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                         std::uint8_t *chain) const noexcept {
  Batch stream(count * block_len_);
  in_batches(out, in, count, block_len_, [&](auto *to, const auto *from, std::size_t now) {
    std::memcpy(stream.data(), chain, block_len_);
    std::memcpy(stream.data() + block_len_, from, (now - 1) * block_len_);
    std::memcpy(chain, from + (now - 1) * block_len_, block_len_);
    encrypt(stream.data(), stream.data(), now);
    xor_bytes(to, from, stream.data(), now * block_len_);
  });
}

void Cipher::serial(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                    std::uint8_t *chain) const noexcept {
  if (ops_ != nullptr && ops_->serial != nullptr)
    return ops_->serial(kind, out, in, count, round_keys_, chain);
  const auto encipher = [this](std::uint8_t *block) { encrypt_block(block); };
  serial_blocks(kind, out, in, count, chain, block_len_, encipher);
}

}  // namespace zel::bulk
