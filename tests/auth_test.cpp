// GCM and CCM: published vectors, other people's answers at every length, the building blocks, and
// what a refused or failed call leaves behind. With every processor feature masked.
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"
#include "tests/support/hashes.hpp"

namespace {
std::atomic<bool> g_memory_is_short{false};
}
extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size) {
  return g_memory_is_short ? nullptr : __real_calloc(count, size);
}
}

namespace zel::test {
namespace {

/// Everything about one message but its bytes.
struct Setting {
  const BCIPHER_ALGORITHM *descriptor;
  int mode;
  Bytes key, nonce, aad;
  std::uint32_t tag_len;
};

std::uint32_t size(const Bytes &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

/// One call; `out` shows all of the buffer, which has room for a tag and a fence behind the result.
struct Outcome {
  std::int32_t code;
  std::uint32_t len;
  Bytes out;
  Bytes result() const {
    return {out.begin(), out.begin() + static_cast<std::ptrdiff_t>(len <= out.size() ? len : 0)};
  }
};
constexpr std::uint32_t kUnset = 0xabcdef01;
constexpr std::size_t kFence = 16;

Outcome call(bool decrypt, const Setting &s, const Bytes &in, bool in_place = false) {
  const Key key = load_key(*s.descriptor, s.key);
  const BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(s.mode), *s.descriptor, {});
  Bytes out(in.size() + (decrypt ? 0 : s.tag_len) + kFence, 0xcc);
  if (in_place) std::copy(in.begin(), in.end(), out.begin());
  Outcome outcome{0, kUnset, {}};
  const auto function = decrypt ? BCIPHER_DecryptAuth : BCIPHER_EncryptAuth;
  outcome.code =
      function(out.data(), &outcome.len, in_place ? out.data() : in.data(), size(in), s.aad.data(),
               size(s.aad), s.nonce.data(), size(s.nonce), &context, key.get(), s.tag_len);
  EXPECT_EQ(Bytes(out.end() - kFence, out.end()), Bytes(kFence, 0xcc)) << "written beyond the end";
  out.erase(out.end() - kFence, out.end());
  outcome.out = out;
  return outcome;
}

const BCIPHER_ALGORITHM *descriptor_of(const std::string &name, std::size_t key_len) {
  if (name == "aria") return key_len == 16 ? &aria : key_len == 24 ? &aria192 : &aria256;
  if (name == "aes") return key_len == 16 ? &rijndael : &rijndael256;
  return &seed;
}

Setting setting_of(const Vector &vector) {
  const Bytes key = vector.bytes("key");
  const Bytes part = vector.bytes("aad");
  Bytes aad;
  for (long i = vector.number_or("repeat", 1); i > 0; --i)
    aad.insert(aad.end(), part.begin(), part.end());
  return {descriptor_of(vector.word("alg"), key.size()),
          vector.word("mode") == "gcm" ? ZEL_MODE_GCM : ZEL_MODE_CCM,
          key,
          vector.bytes("nonce"),
          aad,
          size(vector.bytes("tag"))};
}

class Published : public ::testing::TestWithParam<const char *> {};

/// CCM without payload, which this library makes and never takes.
bool is_never_taken(const std::string &place) {
  constexpr const char *kPlaces[] = {"aes_ccm.txt:64",  "aes_ccm.txt:144",  "aes_ccm.txt:364",
                                     "aes_ccm.txt:714", "aes_ccm.txt:774",  "aes_ccm.txt:1014",
                                     "aes_ccm.txt:1074"};
  return std::ranges::any_of(kPlaces, [&](const char *known) { return place.ends_with(known); });
}

// Where this library answers otherwise than the standard: the seven cases above; the cases of the files *_standard say by themselves that a length is refused, or that GCM
// takes an empty nonce.
TEST_P(Published, BothWays) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const Vector &vector : read_vectors(GetParam())) {
      SCOPED_TRACE(vector.place + " on " + set.name);
      const Setting s = setting_of(vector);
      const Bytes sealed = joined(vector.bytes("ct"), vector.bytes("tag"));
      const bool valid = vector.word("result") == "valid";
      const long code =
          vector.number_or("product_rc", valid && !is_never_taken(vector.place) ? ZEL_OK : ZEL_ERR_TAG);
      for (const bool in_place : {false, true}) {
        const Outcome back = call(true, s, sealed, in_place);
        if (code == ZEL_ERR_CCM_TAG_LEN || code == ZEL_ERR_CCM_NONCE_LEN) {
          EXPECT_EQ(back.code, ZEL_ERR_TAG);
          EXPECT_EQ(call(false, s, vector.bytes("pt"), in_place).code, ZEL_ERR_GENERIC);
          continue;
        }
        EXPECT_EQ(back.code, code);
        if (code == ZEL_OK) {
          EXPECT_EQ(to_hex(back.result()), vector.word("pt"));
        }
        if (code == ZEL_OK || valid) {
          const Outcome there = call(false, s, vector.bytes("pt"), in_place);
          EXPECT_EQ(there.code, ZEL_OK);
          EXPECT_EQ(to_hex(there.result()), to_hex(sealed));
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Published,
                         ::testing::Values("aes_gcm", "aes_gcm_standard", "aria_gcm",
                                           "aria_gcm_standard", "seed_gcm", "seed_gcm_standard",
                                           "aes_ccm", "aes_ccm_standard", "aria_ccm",
                                           "aria_ccm_standard", "seed_ccm", "seed_ccm_standard"),
                         [](const auto &row) { return std::string(row.param); });

/// OpenSSL's ciphertext and tag.
Bytes peer(const char *name, const Setting &s, const Bytes &in) {
  const bool ccm = s.mode == ZEL_MODE_CCM;
  EVP_CIPHER *const cipher = EVP_CIPHER_fetch(nullptr, name, nullptr);
  EVP_CIPHER_CTX *const context = EVP_CIPHER_CTX_new();
  Bytes out(in.size() + s.tag_len);
  std::uint8_t none = 0;
  int len = 0;
  bool ok = EVP_EncryptInit_ex2(context, cipher, nullptr, nullptr, nullptr) == 1;
  ok &= EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_IVLEN, int(s.nonce.size()), nullptr) == 1;
  if (ccm) ok &= EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_SET_TAG, int(s.tag_len), nullptr) == 1;
  ok &= EVP_EncryptInit_ex2(context, nullptr, s.key.data(), s.nonce.data(), nullptr) == 1;
  if (ccm) ok &= EVP_EncryptUpdate(context, nullptr, &len, nullptr, int(in.size())) == 1;
  if (!s.aad.empty())
    ok &= EVP_EncryptUpdate(context, nullptr, &len, s.aad.data(), int(s.aad.size())) == 1;
  ok &= EVP_EncryptUpdate(context, out.data(), &len, in.empty() ? &none : in.data(),
                          int(in.size())) == 1;
  ok &= EVP_EncryptFinal_ex(context, &none, &len) == 1;
  ok &= EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, int(s.tag_len),
                            out.data() + in.size()) == 1;
  EVP_CIPHER_CTX_free(context);
  EVP_CIPHER_free(cipher);
  EXPECT_TRUE(ok) << name;
  return out;
}

/// Compares both ways with OpenSSL.
void compare(const char *name, const Setting &s, const Bytes &in) {
  const Bytes want = peer(name, s, in);
  const bool in_place = in.size() % 2 == 1;
  EXPECT_EQ(call(false, s, in, in_place).result(), want) << in.size() << '+' << s.aad.size();
  if (s.mode == ZEL_MODE_CCM && in.empty()) return;
  const Outcome back = call(true, s, want, in_place);
  EXPECT_EQ(back.code, ZEL_OK);
  EXPECT_EQ(back.result(), in);
}

// A fault at a seam between pieces, runs of powers or partial blocks shows at some length.
TEST(Lengths, MessagesAndAssociatedData) {
  struct {
    const char *name;
    const BCIPHER_ALGORITHM *descriptor;
    std::size_t key_len;
  } const kRows[] = {
      {"AES-128", &rijndael, 16}, {"AES-256", &rijndael256, 32}, {"ARIA-192", &aria192, 24}};
  std::vector<std::size_t> lengths{4095, 4096, 4097, 8191, 8209, 12345};
  for (std::size_t i = 0; i < 530; i += i < 130 ? 1 : 13)
    lengths.push_back(i);
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const auto &row : kRows) {
      SCOPED_TRACE(set.name + ' ' + row.name);
      for (const int mode : {ZEL_MODE_GCM, ZEL_MODE_CCM}) {
        const std::string name = std::string(row.name) + (mode == ZEL_MODE_GCM ? "-GCM" : "-CCM");
        Setting s{row.descriptor, mode, noise(row.key_len), noise(12), noise(20), 16};
        for (const std::size_t len : lengths)
          compare(name.c_str(), s, noise(len));
        for (const std::size_t len : lengths) {
          s.aad = noise(len);
          compare(name.c_str(), s, noise(33));
        }
      }
    }
  }
}

TEST(Lengths, EveryNonceAndTag) {
  const Bytes text = noise(100);
  for (std::size_t nonce = 1; nonce <= 80; ++nonce)
    compare("AES-128-GCM", {&rijndael, ZEL_MODE_GCM, noise(16), noise(nonce), noise(7), 16}, text);
  for (std::uint32_t tag = 0; tag <= 33; ++tag) {
    const bool gcm_has = tag == 4 || tag == 8 || (tag >= 12 && tag <= 16);
    const Setting gcm{&aria, ZEL_MODE_GCM, noise(16), noise(12), noise(7), tag};
    if (gcm_has) {
      compare("ARIA-128-GCM", gcm, text);
    } else {
      const Outcome refused = call(false, gcm, text);
      EXPECT_EQ(refused.code, ZEL_ERR_GENERIC) << tag;
      EXPECT_EQ(refused.len, kUnset);
      EXPECT_EQ(call(true, gcm, text).code, ZEL_ERR_GENERIC) << tag;
    }
    for (std::uint32_t nonce = 0; nonce <= 20; ++nonce) {
      const Setting ccm{&aria, ZEL_MODE_CCM, noise(16), noise(nonce), noise(7), tag};
      const bool has_tag = tag % 2 == 0 && tag >= 4 && tag <= 16;
      if (has_tag && nonce >= 7 && nonce <= 13) {
        compare("ARIA-128-CCM", ccm, text);
        continue;
      }
      const Outcome refused = call(false, ccm, text);
      EXPECT_EQ(refused.code, ZEL_ERR_GENERIC);
      EXPECT_EQ(refused.len, 100 + tag) << "set all the same";
      EXPECT_EQ(call(true, ccm, text).code, ZEL_ERR_TAG);
      const Key key = load_key(aria, ccm.key);
      Bytes data = joined(text, Bytes(64));
      EXPECT_EQ(BCIPHER_EncryptCCM(data.data(), 100, tag, ccm.nonce.data(), nonce, nullptr, 0,
                                   key->round_keys, 16, ARIA_EncryptBlock),
                has_tag ? ZEL_ERR_CCM_NONCE_LEN : ZEL_ERR_CCM_TAG_LEN);
      EXPECT_EQ(data, joined(text, Bytes(64)));
    }
  }
  for (const std::size_t aad :
       {0U, 1U, 13U, 14U, 15U, 0xfefeU, 0xfeffU, 0xff00U, 0xff01U, 0x10005U})
    compare("AES-256-CCM", {&rijndael256, ZEL_MODE_CCM, noise(32), noise(13), noise(aad), 8}, text);
}

// A nonce of 13 bytes leaves two bytes for the length and the counter: both wrap.
TEST(Lengths, CcmFieldsThatAreTooShort) {
  const Bytes text = noise((1 << 20) + 40);
  const Key key = load_key(rijndael, noise(16));
  const Setting s{&rijndael, ZEL_MODE_CCM, noise(16), noise(13), {}, 16};
  const Bytes sealed = call(false, s, text).result();
  EXPECT_EQ(call(true, s, sealed).result(), text);
  std::uint32_t len = 0;
  Bytes blocks(text.size() + 40), counters(16 * 3), chain(16);
  CCM_FormatNAP(blocks.data(), &len, s.nonce.data(), 13, nullptr, 0, text.data(), size(text), 16);
  EXPECT_EQ(to_hex({blocks.begin() + 14, blocks.begin() + 16}), "0028");
  for (std::uint32_t at = 0; at < len; at += 16) {
    for (std::uint32_t i = 0; i < 16; ++i)
      chain[i] ^= blocks[at + i];
    RIJNDAEL_EncryptBlock(chain.data(), key->round_keys);
  }
  CCM_FormatCNT(counters.data(), 48, s.nonce.data(), 13, 16, 2);
  for (std::size_t i = 0; i < 48; i += 16)
    RIJNDAEL_EncryptBlock(counters.data() + i, key->round_keys);
  for (std::size_t i = 0; i < 16; ++i) {
    chain[i] ^= counters[i];
    counters[16 + i] ^= text[(1 << 20) + i];  // block 65537 has the counter of block 1
  }
  EXPECT_EQ(Bytes(sealed.end() - 16, sealed.end()), chain);
  const auto second_pass = sealed.begin() + (1 << 20);
  EXPECT_EQ(Bytes(second_pass, second_pass + 16),
            Bytes(counters.begin() + 16, counters.begin() + 32));
}

TEST(Failure, GcmLeavesTheMessageAndCcmTheCiphertext) {
  const Bytes text = noise(5000);
  for (const int mode : {ZEL_MODE_GCM, ZEL_MODE_CCM}) {
    const Setting s{&seed, mode, noise(16), noise(12), noise(40), 12};
    const Bytes sealed = call(false, s, text).result();
    for (const std::size_t at : {std::size_t{0}, text.size() - 1, text.size(), sealed.size() - 1}) {
      for (const bool in_place : {false, true}) {
        Bytes wrong = sealed;
        wrong[at] ^= 0x80;
        const Outcome back = call(true, s, wrong, in_place);
        EXPECT_EQ(back.code, ZEL_ERR_TAG);
        EXPECT_EQ(back.len, kUnset);
        Bytes want = wrong;
        if (mode == ZEL_MODE_GCM) {
          std::copy(text.begin(), text.end(), want.begin());
          if (at < text.size()) want[at] ^= 0x80;
        }
        EXPECT_EQ(back.out, want) << "byte " << at;
      }
    }
    Setting other = s;
    other.aad[39] ^= 1;
    EXPECT_EQ(call(true, other, sealed).code, ZEL_ERR_TAG);
    for (const std::size_t len : {std::size_t{0}, std::size_t{11}, std::size_t{12}}) {
      const Outcome back = call(true, s, noise(len));
      EXPECT_EQ(back.code, ZEL_ERR_TAG) << "no longer than the tag";
      EXPECT_EQ(back.len, kUnset);
      EXPECT_EQ(back.out, noise(len)) << "the copy comes first";
    }
  }
}

TEST(Failure, RefusalsInTheirOrder) {
  const Key key = load_key(rijndael, noise(16)), other = load_key(rijndael256, noise(32));
  const Key small = load_key(des, noise(8));
  BCIPHER_CONTEXT gcm = start(ZEL_MODE_GCM, rijndael, {}), ctr = start(ZEL_MODE_CTR, rijndael, {});
  const BCIPHER_CONTEXT of_des = start(ZEL_MODE_GCM, des, {}),
                        ccm_des = start(ZEL_MODE_CCM, des, {});
  const Bytes in = noise(32);
  for (const auto function : {BCIPHER_EncryptAuth, BCIPHER_DecryptAuth}) {
    Bytes out(64);
    std::uint32_t len = kUnset;
    const auto run = [&](const BCIPHER_CONTEXT *context, const BCIPHER_KEY *with,
                         const std::uint8_t *from, std::uint32_t in_len, std::uint32_t tag_len) {
      return function(out.data(), &len, from, in_len, nullptr, 0, in.data(), 12, context, with,
                      tag_len);
    };
    EXPECT_EQ(run(nullptr, key.get(), in.data(), 32, 16), ZEL_ERR_GENERIC);
    EXPECT_EQ(run(&gcm, nullptr, in.data(), 32, 16), ZEL_ERR_GENERIC);
    EXPECT_EQ(run(&ctr, other.get(), in.data(), 32, 16), ZEL_ERR_GENERIC) << "before the mode";
    EXPECT_EQ(run(&gcm, key.get(), nullptr, 32, 16), ZEL_ERR_GENERIC);
    EXPECT_EQ(run(&of_des, small.get(), in.data(), 32, 8), ZEL_ERR_GENERIC) << "8-byte blocks";
    EXPECT_EQ(run(&ccm_des, small.get(), in.data(), 32, 8), ZEL_ERR_GENERIC) << "8-byte blocks";
    EXPECT_EQ(out, Bytes(64));
    EXPECT_EQ(run(&ctr, key.get(), in.data(), 32, 16), ZEL_ERR_MODE);
    EXPECT_EQ(out, joined(in, Bytes(32))) << "the copy comes first";
    EXPECT_EQ(len, kUnset);
  }
  // The sums would wrap; nothing may be read or written.
  std::uint8_t byte = 0;
  std::uint32_t len = kUnset;
  EXPECT_EQ(BCIPHER_EncryptAuth(&byte, &len, &byte, 0xfffffff8, nullptr, 0, in.data(), 12, &gcm,
                                key.get(), 16),
            ZEL_ERR_GENERIC);
  EXPECT_EQ(CCM_FormatNAP(&byte, &len, in.data(), 12, &byte, 0x80000000, &byte, 0x80000000, 16),
            ZEL_ERR_GENERIC);
  EXPECT_EQ(byte, 0);
  EXPECT_EQ(len, kUnset);
}

// Where input and output overlap without being the same, the input is copied first.
TEST(Overlap, MovesTheMessageFirst) {
  const Bytes text = noise(300);
  for (const int mode : {ZEL_MODE_GCM, ZEL_MODE_CCM}) {
    const Setting s{&aria, mode, noise(16), noise(12), noise(20), 16};
    const Bytes sealed = call(false, s, text).result();
    const Key key = load_key(aria, s.key);
    const BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(mode), aria, {});
    for (const std::ptrdiff_t shift : {-299, -20, -1, 1, 16, 299}) {
      for (const bool decrypt : {false, true}) {
        Bytes room(1100);
        const auto in = room.begin() + 400;
        std::uint32_t len = 0;
        std::copy(decrypt ? sealed.begin() : text.begin(), decrypt ? sealed.end() : text.end(), in);
        const auto function = decrypt ? BCIPHER_DecryptAuth : BCIPHER_EncryptAuth;
        EXPECT_EQ(function(&*in + shift, &len, &*in, decrypt ? 316 : 300, s.aad.data(), 20,
                           s.nonce.data(), 12, &context, key.get(), 16),
                  ZEL_OK);
        EXPECT_EQ(Bytes(in + shift, in + shift + len), decrypt ? text : sealed) << shift;
      }
    }
  }
}

// A block function of the library takes its own block length alone; a stranger's that has longer
// blocks than its caller says leaves what stands behind the message as it was.
TEST(Failure, BlockLengthsAreThoseOfTheBlockFunctions) {
  const Key small = load_key(des, noise(8)), key = load_key(rijndael, noise(16));
  const Bytes before = noise(96);
  Bytes data = before;
  std::uint8_t counter[16] = {1}, tag[16] = {2};
  const auto sixteen = [](void *block, const void *) {
    std::fill_n(static_cast<char *>(block), 16, 7);
  };
  const void *const keys = small->round_keys;
  EXPECT_EQ(GMAC_Encrypt(data.data(), 64, tag, nullptr, 0, keys, counter, 12, 16, DES_EncryptBlock),
            ZEL_ERR_GENERIC);
  EXPECT_EQ(GMAC_Decrypt(data.data(), 64, tag, nullptr, 0, keys, counter, 12, 16, DES_DecryptBlock),
            ZEL_ERR_GENERIC);
  for (const auto function : {BCIPHER_EncryptCCM, BCIPHER_DecryptCCM})
    EXPECT_EQ(function(data.data(), 64, 16, counter, 12, nullptr, 0, keys, 16, DES_EncryptBlock),
              ZEL_ERR_GENERIC);
  EXPECT_EQ(
      GMAC_GCTR(data.data(), counter, data.data(), 64, 8, key->round_keys, RIJNDAEL_EncryptBlock),
      ZEL_ERR_GENERIC);
  EXPECT_EQ(data, before);
  EXPECT_EQ(counter[0], 1);
  EXPECT_EQ(GMAC_GCTR(data.data(), counter, data.data(), 64, 5, keys, sixteen), ZEL_OK);
  EXPECT_EQ(Bytes(data.begin() + 64, data.end()), Bytes(before.begin() + 64, before.end()));
}

TEST(Failure, MemoryIsShort) {
  const Setting s{&aria, ZEL_MODE_CCM, noise(16), noise(12), {}, 16};
  const Bytes sealed = call(false, s, noise(1000)).result();
  const Key key = load_key(aria, s.key);
  Bytes data = sealed;
  const auto decrypt = [&] {
    return BCIPHER_DecryptCCM(data.data(), size(data), 16, s.nonce.data(), 12, nullptr, 0,
                              key->round_keys, 16, ARIA_EncryptBlock);
  };
  g_memory_is_short = true;
  const std::int32_t code = decrypt();
  g_memory_is_short = false;
  EXPECT_EQ(code, ZEL_ERR_GENERIC);
  EXPECT_EQ(data, sealed);
  EXPECT_EQ(decrypt(), ZEL_OK);
  EXPECT_EQ(Bytes(data.begin(), data.begin() + 1000), noise(1000));
}

TEST(Threads, ShareAKey) {
  const Key key = load_key(rijndael, noise(16));
  const Setting s{&rijndael, ZEL_MODE_GCM, noise(16), noise(12), noise(9), 16};
  const Bytes text = noise(20000), want = call(false, s, text).result();
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      const BCIPHER_CONTEXT context = start(ZEL_MODE_GCM, rijndael, {});
      Bytes out(want.size());
      std::uint32_t len = 0;
      for (int i = 0; i < 50; ++i) {
        BCIPHER_EncryptAuth(out.data(), &len, text.data(), size(text), s.aad.data(), 9,
                            s.nonce.data(), 12, &context, key.get(), 16);
        if (out != want) ++wrong;
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(wrong, 0);
}

/// SP 800-38D, algorithm 1, on polynomials whose coefficients stand in an array.
Bytes multiply(const Bytes &x, const Bytes &y) {
  const std::size_t bits = 8 * x.size();
  const auto bit = [](const Bytes &b, std::size_t i) { return (b[i / 8] >> (7 - i % 8)) & 1; };
  std::vector<int> sum(2 * bits);
  for (std::size_t i = 0; i < bits; ++i)
    for (std::size_t j = 0; j < bits; ++j)
      sum[i + j] ^= bit(x, i) & bit(y, j);
  for (std::size_t i = 2 * bits; i-- > bits;)
    for (const std::size_t term : {0U, 1U, 2U, 7U})
      sum[i - bits + term] ^= sum[i];
  Bytes z(x.size());
  for (std::size_t i = 0; i < bits; ++i)
    z[i / 8] = static_cast<std::uint8_t>(z[i / 8] | sum[i] << (7 - i % 8));
  return z;
}

TEST(BuildingBlocks, MultiplyAndHash) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const std::uint32_t len : {8U, 16U}) {
      SCOPED_TRACE(set.name + ' ' + std::to_string(len));
      for (const Bytes &h : {noise(len), Bytes(len, 0xff), Bytes(len), joined(Bytes(len - 1), {1}),
                             joined({0x80}, Bytes(len - 1))}) {
        Bytes sum(len), y(len, 0xee);
        const Bytes x = noise(41 * len);
        for (std::uint32_t n = 0; n <= 40; ++n) {
          EXPECT_EQ(GMAC_GHash(y.data(), x.data(), n * len + 5, h.data(), len), ZEL_OK);
          EXPECT_EQ(to_hex(y), to_hex(sum)) << n << " blocks; the rest is ignored";
          for (std::uint32_t i = 0; i < len; ++i)
            sum[i] ^= x[n * len + i];
          const Bytes want = multiply(sum, h);
          EXPECT_EQ(GMAC_Mult(sum.data(), sum.data(), h.data(), len), ZEL_OK);
          EXPECT_EQ(to_hex(sum), to_hex(want));
        }
      }
    }
  }
}

TEST(BuildingBlocks, CountersWrapInsideTheirField) {
  Bytes block = from_hex("00112233445566778899aabbffffffff");
  EXPECT_EQ(GMAC_Inc(block.data(), 16, 4), ZEL_OK);
  EXPECT_EQ(to_hex(block), "00112233445566778899aabb00000000");
  EXPECT_EQ(GMAC_Inc(block.data(), 16, 0), ZEL_OK);
  EXPECT_EQ(GMAC_Inc(block.data(), 16, 17), ZEL_ERR_GENERIC);
  EXPECT_EQ(GMAC_Inc(block.data(), 11, 2), ZEL_OK);
  EXPECT_EQ(to_hex(block), "00112233445566778899abbb00000000");
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    const Key key = load_key(rijndael, noise(16));
    for (const std::uint32_t len : {0U, 1U, 16U, 17U, 48U, 1000U}) {
      Bytes counter = from_hex("00112233445566778899aabbfffffffe"), want = noise(len), out = want;
      Bytes expected_counter = counter;
      for (std::uint32_t at = 0; at < len; at += 16) {
        if (at > 0) GMAC_Inc(expected_counter.data(), 16, 4);
        Bytes stream = expected_counter;
        RIJNDAEL_EncryptBlock(stream.data(), key->round_keys);
        for (std::uint32_t i = at; i < std::min(at + 16, len); ++i)
          want[i] ^= stream[i - at];
      }
      EXPECT_EQ(GMAC_GCTR(out.data(), counter.data(), out.data(), len, 16, key->round_keys,
                          RIJNDAEL_EncryptBlock),
                ZEL_OK);
      EXPECT_EQ(out, want) << set.name << len;
      EXPECT_EQ(counter, expected_counter) << "left at the last block";
    }
  }
}

// SP 800-38C, example 1: the formatted blocks are printed there.
TEST(BuildingBlocks, FormattedBlocks) {
  const Bytes nonce = from_hex("10111213141516"), aad = from_hex("0001020304050607");
  const Bytes payload = from_hex("20212223");
  Bytes out(64, 0xcc);
  std::uint32_t len = 0;
  EXPECT_EQ(CCM_FormatNAP(out.data(), &len, nonce.data(), 7, aad.data(), 8, payload.data(), 4, 4),
            ZEL_OK);
  ASSERT_EQ(len, 48U);
  EXPECT_EQ(to_hex({out.begin(), out.begin() + 49}),
            "4f101112131415160000000000000004"
            "00080001020304050607000000000000"
            "20212223000000000000000000000000cc");
  EXPECT_EQ(CCM_FormatNAP(out.data(), &len, nonce.data(), 7, nullptr, 0, nullptr, 0, 16), ZEL_OK);
  EXPECT_EQ(len, 16U);
  EXPECT_EQ(to_hex({out.begin(), out.begin() + 16}), "3f101112131415160000000000000000");
  for (const std::uint32_t aad_len : {0xfeffU, 0xff00U}) {
    Bytes large(0x10030);
    EXPECT_EQ(CCM_FormatNAP(large.data(), &len, nonce.data(), 7, noise(aad_len).data(), aad_len,
                            nullptr, 0, 16),
              ZEL_OK);
    EXPECT_EQ(len, aad_len == 0xfeff ? 0xff20U : 0xff20U);
    EXPECT_EQ(to_hex({large.begin() + 16, large.begin() + 22}),
              aad_len == 0xfeff ? "feff" + to_hex(noise(4)) : "fffe0000ff00");
  }
  Bytes counters(40, 0xcc);
  EXPECT_EQ(CCM_FormatCNT(counters.data(), 36, nonce.data(), 7, 16, 8), ZEL_OK);
  EXPECT_EQ(to_hex(counters),
            "07101112131415160000000000000000"
            "07101112131415160000000000000001"
            "07101112cccccccc");
  EXPECT_EQ(CCM_FormatCNT(counters.data(), 36, nonce.data(), 7, 16, 9), ZEL_ERR_GENERIC);
}

}  // namespace
}  // namespace zel::test
