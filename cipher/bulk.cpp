// Which many-block routine stands behind a block function, and what the modes do without one.
#include "cipher/bulk.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>

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

/// One way of doing many blocks.
struct Path {
  std::uint32_t features;  ///< bits of cpu::Feature that it takes
  const Ops *ops;
};

/// A cipher of this library; the best of its paths comes first.
struct Row {
  BCIPHER_BLOCK_FN encrypt_block, decrypt_block;
  std::size_t block_len;
  bool approved;  ///< whether it runs in the verified service
  Path paths[3];
};

constexpr bool kApproved = true;
constexpr bool kOther = false;

constinit const Row kRows[] = {
    {ARIA_EncryptBlock,
     ARIA_DecryptBlock,
     16,
     kApproved,
     {{needs(kAesni, kVaes), &aria128_vaes}, {needs(kAesni), &aria128_aesni}}},
    {ARIA192_EncryptBlock,
     ARIA192_DecryptBlock,
     16,
     kApproved,
     {{needs(kAesni, kVaes), &aria192_vaes}, {needs(kAesni), &aria192_aesni}}},
    {ARIA256_EncryptBlock,
     ARIA256_DecryptBlock,
     16,
     kApproved,
     {{needs(kAesni, kVaes), &aria256_vaes}, {needs(kAesni), &aria256_aesni}}},
    {SEED_EncryptBlock,
     SEED_DecryptBlock,
     16,
     kApproved,
     {{needs(kAesni, kVaes), &seed_vaes}, {needs(kAesni), &seed_aesni}}},
    {RIJNDAEL_EncryptBlock,
     RIJNDAEL_DecryptBlock,
     16,
     kOther,
     {{needs(kAesni, kVaes), &rijndael128_vaes},
      {needs(kAesni), &rijndael128_aesni},
      {needs(), &rijndael128_sliced}}},
    {RIJNDAEL256_EncryptBlock,
     RIJNDAEL256_DecryptBlock,
     16,
     kOther,
     {{needs(kAesni, kVaes), &rijndael256_vaes},
      {needs(kAesni), &rijndael256_aesni},
      {needs(), &rijndael256_sliced}}},
#ifdef ZEL_CC_AESNI
    {RIJNDAEL_EncryptBlock_AESNI,
     RIJNDAEL_DecryptBlock_AESNI,
     16,
     kOther,
     {{needs(kAesni, kVaes), &rijndael128_vaes}, {needs(kAesni), &rijndael128_aesni}}},
    {RIJNDAEL256_EncryptBlock_AESNI,
     RIJNDAEL256_DecryptBlock_AESNI,
     16,
     kOther,
     {{needs(kAesni, kVaes), &rijndael256_vaes}, {needs(kAesni), &rijndael256_aesni}}},
#else
    {RIJNDAEL_EncryptBlock_AESNI, RIJNDAEL_DecryptBlock_AESNI, 16, kOther, {}},
    {RIJNDAEL256_EncryptBlock_AESNI, RIJNDAEL256_DecryptBlock_AESNI, 16, kOther, {}},
#endif
    {DES_EncryptBlock,
     DES_DecryptBlock,
     8,
     kOther,
     {{needs(kAvx2), &des_avx2}, {needs(), &des_interleaved}}},
    {TDES_EncryptBlock,
     TDES_DecryptBlock,
     8,
     kOther,
     {{needs(kAvx2), &tdes_avx2}, {needs(), &tdes_interleaved}}},
    {BLOWFISH_EncryptBlock, BLOWFISH_DecryptBlock, 8, kOther, {{needs(), &blowfish_interleaved}}},
    {CAST128_EncryptBlock, CAST128_DecryptBlock, 8, kOther, {{needs(), &cast128_interleaved}}},
    {IDEA_EncryptBlock,
     IDEA_DecryptBlock,
     8,
     kOther,
     {{needs(kAvx2), &idea_avx2}, {needs(), &idea_interleaved}}},
    {RC2_EncryptBlock, RC2_DecryptBlock, 8, kOther, {{needs(), &rc2_interleaved}}},
    {RC5_EncryptBlock,
     RC5_DecryptBlock,
     8,
     kOther,
     {{needs(kAvx2), &rc5_avx2}, {needs(), &rc5_interleaved}}},
    {TAVO_EncryptBlock, TAVO_DecryptBlock, 16, kOther, {{needs(), &tavo_interleaved}}},
    {TAVOOLD_EncryptBlock, TAVOOLD_DecryptBlock, 16, kOther, {{needs(), &tavoold_interleaved}}},
};

/// The row of a cipher; null for a caller's own.
const Row *row_of(BCIPHER_BLOCK_FN encrypt_block) noexcept {
  for (const Row &row : kRows)
    if (row.encrypt_block == encrypt_block) return &row;
  return nullptr;
}

/// The best path that this processor, and the verified service, can go; null for none.
const Ops *best_path(const Row &row) noexcept {
  if (!row.approved && gate::approved_only()) return nullptr;
  for (const Path &path : row.paths)
    if (path.ops != nullptr && cpu::has_all(path.features)) return path.ops;
  return nullptr;
}

/// Key stream and saved ciphertext of the fallbacks: a whole number of work units of every routine.
constexpr std::size_t kBatchLen = 2048;

/// Room for key stream, and for the rest of a whole block behind it: a stranger's block function
/// may have longer blocks than its caller says. Wipes as much as a message of `len` bytes can have
/// used.
class Batch {
 public:
  explicit Batch(std::size_t len) noexcept : used_(std::min(len, kBatchLen) + ZEL_MAX_BLOCK_LEN) {}
  Batch(const Batch &) = delete;
  Batch &operator=(const Batch &) = delete;
  ~Batch() { wipe(bytes_, used_); }
  std::uint8_t *data() noexcept { return bytes_; }

 private:
  std::size_t used_;
  std::uint8_t bytes_[kBatchLen + ZEL_MAX_BLOCK_LEN];
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

bool fits(std::size_t block_len, BCIPHER_BLOCK_FN encryption,
          BCIPHER_BLOCK_FN decryption) noexcept {
  if (!is_block_len(block_len) || encryption == nullptr) return false;
  const Row *const own = row_of(encryption);
  if (own != nullptr && own->block_len != block_len) return false;
  if (own != nullptr && (decryption == nullptr || decryption == own->decrypt_block)) return true;
  const auto is_other_len = [&](const Row &row) {
    return row.block_len != block_len &&
           (row.decrypt_block == encryption || row.encrypt_block == decryption ||
            row.decrypt_block == decryption);
  };
  return std::none_of(std::begin(kRows), std::end(kRows), is_other_len);
}

Cipher::Cipher(std::size_t len, BCIPHER_BLOCK_FN encryption, BCIPHER_BLOCK_FN decryption,
               const void *keys) noexcept
    : block_len_(len),
      encrypt_block_(encryption),
      decrypt_block_(decryption),
      round_keys_(keys),
      forth_(nullptr),
      back_(nullptr) {
  const Row *const row = row_of(encryption);
  if (row == nullptr || row->block_len != len) return;
  forth_ = best_path(*row);
  if (row->decrypt_block == decryption) back_ = forth_;
}

void Cipher::encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept {
  if (forth_ != nullptr && forth_->encrypt != nullptr)
    return forth_->encrypt(out, in, count, round_keys_);
  copy(out, in, count * block_len_);
  for (; count > 0; --count, out += block_len_)
    encrypt_block(out);
}

void Cipher::decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count) const noexcept {
  if (back_ != nullptr && back_->decrypt != nullptr)
    return back_->decrypt(out, in, count, round_keys_);
  copy(out, in, count * block_len_);
  for (; count > 0; --count, out += block_len_)
    decrypt_block(out);
}

void Cipher::ctr(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                 std::uint8_t *counter) const noexcept {
  if (forth_ != nullptr && forth_->ctr != nullptr)
    return forth_->ctr(out, in, count, round_keys_, counter);
  Batch stream(count * block_len_);
  in_batches(out, in, count, block_len_, [&](auto *to, const auto *from, std::size_t now) {
    count_up(stream.data(), now, counter, block_len_);
    encrypt(stream.data(), stream.data(), now);
    xor_bytes(to, from, stream.data(), now * block_len_);
  });
}

void Cipher::cbc_decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                         std::uint8_t *chain) const noexcept {
  if (back_ != nullptr && back_->cbc_decrypt != nullptr)
    return back_->cbc_decrypt(out, in, count, round_keys_, chain);
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

void Cipher::counter_mac(MacOf what, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                         std::uint8_t *counter, std::uint8_t *mac) const noexcept {
  if (forth_ != nullptr && forth_->counter_mac != nullptr)
    return forth_->counter_mac(what, out, in, count, round_keys_, counter, mac);
  in_batches(out, in, count, block_len_, [&](auto *to, const auto *from, std::size_t now) {
    if (what == MacOf::kInput) serial(Chain::kCbcMac, nullptr, from, now, mac);
    ctr(to, from, now, counter);
    if (what == MacOf::kOutput) serial(Chain::kCbcMac, nullptr, to, now, mac);
  });
}

void Cipher::serial(Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
                    std::uint8_t *chain) const noexcept {
  if (forth_ != nullptr && forth_->serial != nullptr)
    return forth_->serial(kind, out, in, count, round_keys_, chain);
  const auto encipher = [this](std::uint8_t *block) { encrypt_block(block); };
  serial_blocks(kind, out, in, count, chain, block_len_, encipher);
}

}  // namespace zel::bulk
