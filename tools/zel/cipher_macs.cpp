// Authentication codes over block ciphers as schemes: CMAC (SP 800-38B), GMAC (SP 800-38D).
#include <algorithm>
#include <array>
#include <cctype>

#include "base/bytes.hpp"
#include "tools/zel/ciphers.hpp"
#include "tools/zel/failure.hpp"
#include "tools/zel/schemes.hpp"
#include "zel_cc/bcipher_auth.h"
#include "zel_cc/mac.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

constexpr std::size_t kBlock = 16;
using Block = std::array<std::uint8_t, kBlock>;

std::uint32_t checked_len(const std::string &name, const Cipher &cipher,
                          std::span<const std::uint8_t> key) {
  // The functions below have no gate for it: what is not approved would compute nothing.
  if (!cipher.approved && KZEL_CC_GetState() == ZEL_STATE_VERIFIED) {
    throw library_failure(name, ZEL_ERR_APPROVED);
  }
  check_key_len(cipher, key.size());
  return static_cast<std::uint32_t>(key.size());
}

class CmacStream : public Stream {
 public:
  CmacStream(const std::string &name, const Cipher &cipher, std::span<const std::uint8_t> key)
      : block_len_(cipher.descriptor->block_len) {
    const std::uint32_t len = checked_len(name, cipher, key);
    const int status = CMAC_Initialize(&*context_, key.data(), len, cipher.descriptor);
    if (status != ZEL_OK) throw library_failure(name, status);
  }
  ~CmacStream() override {
    if (!done_) finish();
  }
  CmacStream(const CmacStream &) = delete;
  CmacStream &operator=(const CmacStream &) = delete;

  void add(std::span<const std::uint8_t> bytes) override {
    in_pieces(bytes, [this](const auto *data, auto len) { CMAC_Update(&*context_, data, len); });
  }
  Bytes finish() override {
    Bytes code(block_len_);
    CMAC_Finalize(code.data(), block_len_, &*context_);
    done_ = true;
    return code;
  }

 private:
  Wiped<CMAC_CONTEXT> context_;
  std::uint32_t block_len_;
  bool done_ = false;
};

/// The library's own GMAC takes a message in memory; this is the same from its building blocks.
class GmacStream : public Stream {
 public:
  GmacStream(const std::string &name, const Cipher &cipher, std::span<const std::uint8_t> key,
             std::span<const std::uint8_t> nonce)
      : key_(load_key(cipher, key, checked_len(name, cipher, key))) {
    cipher.descriptor->EncryptBlock(hash_key_->data(), key_->round_keys);
    std::copy(nonce.begin(), nonce.end(), counter_.begin());
    counter_.back() = 1;
  }

  void add(std::span<const std::uint8_t> bytes) override {
    len_ += bytes.size();
    while (!bytes.empty()) {
      const std::size_t taken = std::min(bytes.size(), pending_.size() - filled_);
      std::copy_n(bytes.begin(), taken, pending_.begin() + static_cast<std::ptrdiff_t>(filled_));
      filled_ += taken;
      bytes = bytes.subspan(taken);
      if (filled_ == pending_.size()) absorb();
    }
  }
  Bytes finish() override {
    std::fill(pending_.begin() + static_cast<std::ptrdiff_t>(filled_), pending_.end(),
              std::uint8_t{0});
    filled_ = (filled_ + kBlock - 1) / kBlock * kBlock;
    absorb();
    store_be64(pending_.data(), 8 * len_);
    filled_ = kBlock;
    absorb();
    Bytes code(kBlock);
    GMAC_GCTR(code.data(), counter_.data(), hash_->data(), kBlock, kBlock, key_->round_keys,
              key_->descriptor->EncryptBlock);
    return code;
  }

 private:
  /// The library's GHASH starts from zero: what came before is added to the first block.
  void absorb() {
    if (filled_ == 0) return;
    for (std::size_t i = 0; i < kBlock; ++i)
      pending_[i] = static_cast<std::uint8_t>(pending_[i] ^ (*hash_)[i]);
    GMAC_GHash(hash_->data(), pending_.data(), static_cast<std::uint32_t>(filled_),
               hash_key_->data(), kBlock);
    pending_.fill(0);
    filled_ = 0;
  }

  CipherKey key_;
  Wiped<Block> hash_key_{Block{}};
  Block counter_{};
  Wiped<Block> hash_{Block{}};
  std::array<std::uint8_t, std::size_t{64} << 10> pending_{};
  std::size_t filled_ = 0;
  std::uint64_t len_ = 0;
};

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

/// A scheme for each cipher that is wanted.
template <class Wanted, class Start>
std::vector<Scheme> over_ciphers(const std::string &prefix, Wanted wanted, Start start) {
  std::vector<Scheme> schemes;
  for (const Cipher &cipher : all_ciphers()) {
    if (!cipher.descriptor || !wanted(cipher)) continue;
    const std::string name = prefix + std::string(cipher.name);
    schemes.push_back({.name = name,
                       .tag = upper(name),
                       .aliases = {},
                       .digest_len = cipher.descriptor->block_len,
                       .approved = cipher.approved,
                       .hash = nullptr,
                       .start = [start, name, &cipher] { return start(name, cipher); }});
  }
  return schemes;
}

}  // namespace

std::vector<Scheme> cmac_schemes(std::span<const std::uint8_t> key) {
  return over_ciphers(
      "cmac-",
      [](const Cipher &cipher) {
        return cipher.descriptor != &aesni && cipher.descriptor != &aesni256;
      },
      [key](const std::string &name, const Cipher &cipher) {
        return std::make_unique<CmacStream>(name, cipher, key);
      });
}

std::vector<Scheme> gmac_schemes(std::span<const std::uint8_t> key,
                                 std::span<const std::uint8_t> nonce) {
  return over_ciphers(
      "gmac-",
      [](const Cipher &cipher) {
        return cipher.descriptor->block_len == kBlock && cipher.descriptor != &aesni &&
               cipher.descriptor != &aesni256;
      },
      [key, nonce](const std::string &name, const Cipher &cipher) {
        return std::make_unique<GmacStream>(name, cipher, key, nonce);
      });
}

}  // namespace zel::tool
