// Block ciphers and modes against OpenSSL (legacy provider) and Botan: random messages that this
// library is given in pieces of random size and the others whole.
#include <botan/block_cipher.h>
#include <botan/cipher_mode.h>
#include <botan/stream_cipher.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <optional>
#include <random>

#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"

namespace zel::test {
namespace {

struct Row {
  const char *name;
  const BCIPHER_ALGORITHM *descriptor;
  std::uint32_t key_len;
  const char *openssl;  ///< empty where it has none
  const char *botan;

  /// Whether one of the peers has the mode, so that a test without comparison is a failure.
  bool must_compare(int mode) const {
    const bool in_openssl = std::string(openssl).starts_with("A") || descriptor == &des;
    if (mode == ZEL_MODE_CFB1) return in_openssl;
    if (mode == ZEL_MODE_CFB8 || mode == ZEL_MODE_CTR || mode == ZEL_MODE_CBC_CTS)
      return *botan != 0;
    return true;
  }
};

const Row kRows[] = {
    {"aria", &aria, 16, "ARIA-128", "ARIA-128"},
    {"aria192", &aria192, 24, "ARIA-192", "ARIA-192"},
    {"aria256", &aria256, 32, "ARIA-256", "ARIA-256"},
    {"seed", &seed, 16, "SEED", "SEED"},
    {"rijndael", &rijndael, 16, "AES-128", "AES-128"},
    {"rijndael256", &rijndael256, 32, "AES-256", "AES-256"},
    {"des", &des, 8, "DES", "DES"},
    {"tdes", &tdes, 24, "DES-EDE3", "TripleDES"},
    {"blowfish", &blowfish, 16, "BF", "Blowfish"},
    {"cast128", &cast128, 16, "CAST5", "CAST-128"},
    {"idea", &idea, 16, "", "IDEA"},
    {"rc2", &rc2, 16, "RC2", ""},
};

/// How a message may be cut for this library.
enum class Cut { kAnywhere, kBlocks, kNowhere };

struct Mode {
  std::uint8_t mode;
  const char *openssl;
  const char *botan;
  Cut encrypt, decrypt;
  bool whole_blocks;  ///< the message itself
};

const Mode kModes[] = {
    {ZEL_MODE_ECB, "-ECB", "ECB", Cut::kBlocks, Cut::kBlocks, true},
    {ZEL_MODE_CBC, "-CBC", "/CBC/NoPadding", Cut::kBlocks, Cut::kBlocks, true},
    {ZEL_MODE_CBC_CTS, "", "/CBC/CTS", Cut::kNowhere, Cut::kNowhere, false},
    {ZEL_MODE_CFB, "-CFB", "/CFB", Cut::kBlocks, Cut::kNowhere, false},
    {ZEL_MODE_CFB_STREAM, "-CFB", "/CFB", Cut::kAnywhere, Cut::kAnywhere, false},
    {ZEL_MODE_CFB8, "-CFB8", "/CFB(8)", Cut::kAnywhere, Cut::kAnywhere, false},
    {ZEL_MODE_CFB1, "-CFB1", "", Cut::kAnywhere, Cut::kAnywhere, false},
    {ZEL_MODE_OFB, "-OFB", "OFB", Cut::kBlocks, Cut::kBlocks, false},
    {ZEL_MODE_CTR, "-CTR", "CTR-BE", Cut::kBlocks, Cut::kBlocks, false},
};

/// What a peer is given.
struct Task {
  bool decrypt;
  Bytes key, iv, in;
};
using Answer = std::optional<Bytes>;  ///< nothing where the peer does not have the mode

Answer openssl(const std::string &name, const Task &task) {
  EVP_CIPHER *const cipher = EVP_CIPHER_fetch(nullptr, name.c_str(), nullptr);
  if (cipher == nullptr) return {};
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  Bytes out(task.in.size() + 32);
  int len = 0, rest = 0;
  EXPECT_EQ(EVP_CipherInit_ex2(context, cipher, task.key.data(), task.iv.data(),
                               task.decrypt ? 0 : 1, nullptr),
            1);
  EVP_CIPHER_CTX_set_padding(context, 0);
  EXPECT_EQ(
      EVP_CipherUpdate(context, out.data(), &len, task.in.data(), static_cast<int>(task.in.size())),
      1);
  EXPECT_EQ(EVP_CipherFinal_ex(context, out.data() + len, &rest), 1);
  EVP_CIPHER_CTX_free(context);
  EVP_CIPHER_free(cipher);
  out.resize(static_cast<std::size_t>(len + rest));
  return out;
}

Answer botan_blocks(const std::string &cipher, const Task &task) {
  const auto peer = Botan::BlockCipher::create_or_throw(cipher);
  peer->set_key(task.key);
  Bytes out(task.in.size());
  const std::size_t count = out.size() / peer->block_size();
  if (task.decrypt)
    peer->decrypt_n(task.in.data(), out.data(), count);
  else
    peer->encrypt_n(task.in.data(), out.data(), count);
  return out;
}

Answer botan(const std::string &cipher, const std::string &mode, const Task &task) {
  if (mode == "ECB") return botan_blocks(cipher, task);
  if (mode[0] != '/') {
    const auto peer = Botan::StreamCipher::create_or_throw(mode + '(' + cipher + ')');
    peer->set_key(task.key);
    peer->set_iv(task.iv.data(), task.iv.size());
    Bytes out(task.in.size());
    peer->cipher(task.in.data(), out.data(), out.size());
    return out;
  }
  const auto way = task.decrypt ? Botan::DECRYPTION : Botan::ENCRYPTION;
  const auto peer = Botan::Cipher_Mode::create_or_throw(cipher + mode, way);
  peer->set_key(task.key);
  peer->start(task.iv.data(), task.iv.size());
  Botan::secure_vector<std::uint8_t> data(task.in.begin(), task.in.end());
  peer->finish(data);
  return Bytes(data.begin(), data.end());
}

class Numbers {
 public:
  explicit Numbers(unsigned start) : source_(start) {}
  std::size_t below(std::size_t limit) { return source_() % limit; }
  Bytes bytes(std::size_t len) {
    Bytes bytes(len);
    for (std::uint8_t &byte : bytes)
      byte = static_cast<std::uint8_t>(source_());
    return bytes;
  }

 private:
  std::mt19937 source_;
};

/// The message through this library, cut as the mode allows.
Bytes own(const BCIPHER_ALGORITHM &cipher, const Mode &mode, const Task &task, Numbers &numbers) {
  const Key key = load_key(cipher, task.key);
  BCIPHER_CONTEXT context = start(mode.mode, cipher, task.iv);
  const Cut cut = task.decrypt ? mode.decrypt : mode.encrypt;
  const std::size_t unit = cut == Cut::kAnywhere ? 1 : cipher.block_len;
  Bytes out;
  for (std::size_t at = 0; at < task.in.size();) {
    const std::size_t rest = task.in.size() - at;
    std::size_t len = rest;
    if (cut != Cut::kNowhere) len = std::min(rest, unit * (1 + numbers.below(400 / unit)));
    const auto from = task.in.begin() + static_cast<std::ptrdiff_t>(at);
    const Result piece =
        operate(task.decrypt, context, key.get(), {from, from + static_cast<std::ptrdiff_t>(len)},
                false, at % 2 == 0);
    EXPECT_EQ(piece.code, ZEL_OK);
    out.insert(out.end(), piece.data.begin(), piece.data.end());
    at += len;
  }
  return out;
}

/// OpenSSL with its legacy ciphers.
class Providers {
 public:
  ~Providers() {
    OSSL_PROVIDER_unload(legacy_);
    OSSL_PROVIDER_unload(base_);
  }

 private:
  OSSL_PROVIDER *const legacy_ = OSSL_PROVIDER_load(nullptr, "legacy");
  OSSL_PROVIDER *const base_ = OSSL_PROVIDER_load(nullptr, "default");
};

class Peers : public ::testing::TestWithParam<Row> {
  Providers providers_;
};

TEST_P(Peers, EveryModeBothWaysInRandomPieces) {
  const Row &row = GetParam();
  const BCIPHER_ALGORITHM &cipher = *row.descriptor;
  const std::vector<FeatureSet> sets = feature_sets();
  Numbers numbers(row.key_len);
  for (const Mode &mode : kModes) {
    int compared = 0;
    for (int repeat = 0; repeat < 12; ++repeat) {
      const FeatureMask mask(sets[static_cast<std::size_t>(repeat) % sets.size()].mask);
      std::size_t len = cipher.block_len + 1 + numbers.below(repeat % 2 == 0 ? 60 : 5000);
      if (mode.whole_blocks) len -= len % cipher.block_len;
      Task task{repeat % 4 >= 2, numbers.bytes(row.key_len), numbers.bytes(cipher.block_len),
                numbers.bytes(len)};
      if (repeat % 3 == 0) std::fill(task.iv.begin() + 2, task.iv.end(), 0xff);  // counters wrap
      Answer answers[2];
      if (*row.openssl != 0 && *mode.openssl != 0)
        answers[0] = openssl(std::string(row.openssl) + mode.openssl, task);
      if (*row.botan != 0 && *mode.botan != 0) answers[1] = botan(row.botan, mode.botan, task);
      const Bytes result = own(cipher, mode, task, numbers);
      for (const Answer &answer : answers) {
        if (!answer) continue;
        ++compared;
        ASSERT_EQ(result, *answer) << "mode " << int{mode.mode} << ", " << len << " bytes";
      }
    }
    EXPECT_GE(compared, row.must_compare(mode.mode) ? 12 : 0) << "mode " << int{mode.mode};
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Peers, ::testing::ValuesIn(kRows),
                         [](const auto &row) { return std::string(row.param.name); });

/// Key lengths that published vectors do not have.
void compare_keys(const BCIPHER_ALGORITHM &cipher, const char *name, std::size_t len, int bits) {
  SCOPED_TRACE(std::string(name) + ' ' + std::to_string(len) + ' ' + std::to_string(bits));
  Numbers numbers(static_cast<unsigned>(len) << 11 | static_cast<unsigned>(bits));
  const Bytes key = numbers.bytes(len);
  Bytes block = numbers.bytes(8), expected = block, round_keys(cipher.round_keys_len);
  const auto packed = static_cast<std::uint32_t>(len) | static_cast<std::uint32_t>(bits) << 16;
  cipher.MakeRoundKey(round_keys.data(), key.data(), packed);
  cipher.EncryptBlock(block.data(), round_keys.data());

  EVP_CIPHER *const peer = EVP_CIPHER_fetch(nullptr, name, nullptr);
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  int done = 0;
  EVP_EncryptInit_ex2(context, peer, nullptr, nullptr, nullptr);
  EVP_CIPHER_CTX_set_key_length(context, static_cast<int>(len));
  if (bits != 0) EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_SET_RC2_KEY_BITS, bits, nullptr);
  EVP_EncryptInit_ex2(context, nullptr, key.data(), nullptr, nullptr);
  EVP_CIPHER_CTX_set_padding(context, 0);
  EXPECT_EQ(EVP_EncryptUpdate(context, expected.data(), &done, expected.data(), 8), 1);
  EXPECT_EQ(done, 8);
  EVP_CIPHER_CTX_free(context);
  EVP_CIPHER_free(peer);
  EXPECT_EQ(to_hex(block), to_hex(expected));
}

class KeyLengths : public ::testing::Test {
  Providers providers_;
};

TEST_F(KeyLengths, OfBlowfishAndRc2) {
  for (std::size_t len = 4; len <= 72; len += 4)
    compare_keys(blowfish, "BF-ECB", len, 0);
  for (std::size_t len = 1; len <= 128; len += 3)
    for (const int bits : {1, 7, 8, 40, 63, 129, 1000, 1024})
      compare_keys(rc2, "RC2-ECB", len, bits);
}

}  // namespace
}  // namespace zel::test
