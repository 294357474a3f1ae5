// The ten modes against a model that knows nothing but the public block function, for every cipher,
// with every processor feature masked.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"

namespace zel::test {
namespace {

/// The modes once more, as slowly and as literally as possible. NIST SP 800-38A.
class Model {
 public:
  Model(const BCIPHER_ALGORITHM &descriptor, const void *round_keys, const Bytes &iv)
      : chain(iv), descriptor_(descriptor), keys_(round_keys), len_(descriptor.block_len) {}

  Bytes chain;
  std::size_t used = 0;  ///< streaming CFB

  Bytes encipher(Bytes block) const {
    descriptor_.EncryptBlock(block.data(), keys_);
    return block;
  }
  Bytes decipher(Bytes block) const {
    descriptor_.DecryptBlock(block.data(), keys_);
    return block;
  }

  Bytes run(int mode, bool decrypt, const Bytes &in) {
    switch (mode) {
      case ZEL_MODE_ECB:
      case ZEL_MODE_CBC:
        return blocks(mode == ZEL_MODE_CBC, decrypt, in);
      case ZEL_MODE_CFB:
        return cfb(decrypt, in);
      case ZEL_MODE_CFB8:
        return segments(8, decrypt, in);
      case ZEL_MODE_CFB1:
        return segments(1, decrypt, in);
      case ZEL_MODE_OFB:
      case ZEL_MODE_CTR:
        return key_stream(mode == ZEL_MODE_CTR, in);
      case ZEL_MODE_OFB_BYTE:
        return ofb_byte(in);
      case ZEL_MODE_CBC_CTS:
        return decrypt ? unsteal(in) : steal(in);
      default:
        return cfb_stream(decrypt, in);
    }
  }

 private:
  static Bytes sum(Bytes a, const Bytes &b) {
    for (std::size_t i = 0; i < a.size(); ++i)
      a[i] ^= b[i];
    return a;
  }
  static Bytes part(const Bytes &data, std::size_t at, std::size_t len) {
    const auto from = data.begin() + static_cast<std::ptrdiff_t>(at);
    return {from, from + static_cast<std::ptrdiff_t>(std::min(len, data.size() - at))};
  }
  static void append(Bytes &to, const Bytes &more) {
    to.insert(to.end(), more.begin(), more.end());
  }

  /// The register loses its first bytes and takes in `more`.
  void shift_in(const Bytes &more) {
    append(chain, more);
    chain = part(chain, more.size(), len_);
  }

  Bytes blocks(bool chained, bool decrypt, const Bytes &in) {
    Bytes out;
    for (std::size_t at = 0; at + len_ <= in.size(); at += len_) {
      const Bytes block = part(in, at, len_);
      Bytes result = block;
      if (chained && !decrypt) result = sum(result, chain);
      result = decrypt ? decipher(result) : encipher(result);
      if (chained && decrypt) result = sum(result, chain);
      if (chained) chain = decrypt ? block : result;
      append(out, result);
    }
    append(out, part(in, out.size(), len_));
    return out;
  }

  Bytes cfb(bool decrypt, const Bytes &in) {
    const Bytes iv = chain;
    Bytes out;
    for (std::size_t at = 0; at < in.size(); at += len_) {
      const Bytes block = part(in, at, len_);
      const Bytes stream = part(encipher(chain), 0, block.size());
      const Bytes result = sum(block, stream);
      append(out, result);
      if (block.size() == len_) {
        chain = decrypt ? block : result;
      } else {
        shift_in(stream);
      }
    }
    if (decrypt) chain = iv;
    return out;
  }

  Bytes segments(unsigned bits, bool decrypt, const Bytes &in) {
    Bytes out(in.size());
    for (std::size_t bit = 0; bit < 8 * in.size(); bit += bits) {
      const unsigned shift = 8 - bits - static_cast<unsigned>(bit % 8);
      const unsigned mask = (1U << bits) - 1;
      const unsigned given = in[bit / 8] >> shift & mask;
      const unsigned result = given ^ encipher(chain)[0] >> (8 - bits);
      out[bit / 8] |= static_cast<std::uint8_t>(result << shift);
      unsigned low = decrypt ? given : result;
      for (std::size_t i = len_; i-- > 0;) {
        const unsigned wide = unsigned{chain[i]} << bits | low;
        low = unsigned{chain[i]} >> (8 - bits);
        chain[i] = static_cast<std::uint8_t>(wide);
      }
    }
    return out;
  }

  Bytes key_stream(bool counter, const Bytes &in) {
    Bytes out;
    do {
      const Bytes stream = encipher(chain);
      append(out, sum(part(in, out.size(), len_), stream));
      if (!counter) {
        chain = stream;
        continue;
      }
      for (std::size_t i = len_; i-- > 0 && ++chain[i] == 0;) {
      }
    } while (out.size() < in.size());
    return out;
  }

  Bytes ofb_byte(const Bytes &in) const {
    Bytes out;
    Bytes reg = chain;
    for (const std::uint8_t byte : in) {
      reg = encipher(reg);
      out.push_back(byte ^ reg[0]);
    }
    return out;
  }

  /// Pads with zero bytes, runs CBC, swaps the last two blocks and cuts the padding off.
  Bytes steal(const Bytes &in) {
    const Bytes iv = chain;
    Bytes padded = in;
    padded.resize((in.size() + len_ - 1) / len_ * len_);
    Bytes out = blocks(true, false, padded);
    std::swap_ranges(out.end() - static_cast<std::ptrdiff_t>(2 * len_),
                     out.end() - static_cast<std::ptrdiff_t>(len_),
                     out.end() - static_cast<std::ptrdiff_t>(len_));
    out.resize(in.size());
    chain = iv;
    return out;
  }

  /// Completes the short block with what the other one deciphers to, swaps back and runs CBC.
  Bytes unsteal(const Bytes &in) {
    const Bytes iv = chain;
    const std::size_t whole = (in.size() - 1) / len_ * len_;
    const Bytes last = part(in, whole - len_, len_);
    Bytes short_one = part(in, whole, len_);
    append(short_one, part(decipher(last), short_one.size(), len_));
    Bytes ordered = part(in, 0, whole - len_);
    append(ordered, short_one);
    append(ordered, last);
    Bytes out = blocks(true, true, ordered);
    out.resize(in.size());
    chain = iv;
    return out;
  }

  Bytes cfb_stream(bool decrypt, const Bytes &in) {
    Bytes out;
    for (const std::uint8_t byte : in) {
      if (used == 0) chain = encipher(chain);
      out.push_back(byte ^ chain[used]);
      chain[used] = decrypt ? byte : out.back();
      used = (used + 1) % len_;
    }
    return out;
  }

  const BCIPHER_ALGORITHM &descriptor_;
  const void *keys_;
  std::size_t len_;
};

constexpr int kModes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

class Random {
 public:
  Bytes bytes(std::size_t len) {
    Bytes result(len);
    for (std::uint8_t &byte : result)
      byte = static_cast<std::uint8_t>(generator_());
    return result;
  }
  std::size_t below(std::size_t end) { return generator_() % end; }

 private:
  std::mt19937 generator_{20261121};
};

class EveryCipher : public ::testing::TestWithParam<CipherRow> {
 protected:
  const CipherRow &row = GetParam();
  const BCIPHER_ALGORITHM &descriptor = *GetParam().descriptor;
  Random random;
  Key key = load_key(descriptor, random.bytes(row.key_len));

  /// Compares one call with the model's, and the registers afterwards.
  void compare(int mode, bool decrypt, const Bytes &in, BCIPHER_CONTEXT &context, Model &model) {
    const std::size_t len = descriptor.block_len;
    const bool whole = (mode > ZEL_MODE_CBC && mode != ZEL_MODE_CBC_CTS) ||
                       (mode <= ZEL_MODE_CBC && in.size() % len == 0) ||
                       (mode == ZEL_MODE_CBC_CTS && in.size() > len);
    const Bytes expected = mode == ZEL_MODE_CBC_CTS && !whole ? in : model.run(mode, decrypt, in);
    const Result got = operate(decrypt, context, key.get(), in, false, random.below(2) == 0);
    ASSERT_EQ(got.code, whole ? ZEL_OK : ZEL_ERR_GENERIC);
    ASSERT_EQ(to_hex(got.data), to_hex(expected));
    ASSERT_EQ(to_hex({context.chain, context.chain + len}), to_hex(model.chain));
    ASSERT_EQ(context.stream_pos, model.used);
  }
};

// Every length up to five blocks, and some that fill the work units of the many-block routines.
TEST_P(EveryCipher, EveryModeAndLengthAsInTheModel) {
  std::vector<std::size_t> lengths;
  for (std::size_t len = 0; len <= 5 * descriptor.block_len + 1; ++len)
    lengths.push_back(len);
  for (const std::size_t len : {127, 128, 255, 256, 272, 511, 1024, 1300, 2048, 3000, 4128})
    lengths.push_back(len);
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const int mode : kModes) {
      for (const std::size_t len : lengths) {
        if (len > 300 && (mode == ZEL_MODE_CFB1 || set.mask == 0)) continue;  // slow in the model
        if (set.name != "everything" && len % 5 != 0) continue;  // a sample without the features
        SCOPED_TRACE(std::to_string(len) + " bytes in mode " + std::to_string(mode) + " on " +
                     set.name);
        const Bytes iv = random.bytes(descriptor.block_len);
        const Bytes in = random.bytes(len);
        for (const bool decrypt : {false, true}) {
          BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(mode), descriptor, iv);
          Model model(descriptor, key->round_keys, iv);
          ASSERT_NO_FATAL_FAILURE(compare(mode, decrypt, in, context, model));
        }
      }
    }
  }
}

// Modes that chain must not see where whole blocks are cut, and the others must restart or discard
// exactly as they say; the model is given the same cuts, of random size and sometimes empty.
TEST_P(EveryCipher, PiecesOfRandomSizeAsInTheModel) {
  for (const int mode : kModes) {
    for (const bool decrypt : {false, true}) {
      SCOPED_TRACE("mode " + std::to_string(mode) + (decrypt ? " decryption" : " encryption"));
      const Bytes iv = random.bytes(descriptor.block_len);
      BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(mode), descriptor, iv);
      Model model(descriptor, key->round_keys, iv);
      for (int piece = 0; piece < 12; ++piece) {
        const Bytes in = random.bytes(random.below(4) == 0 ? 0 : random.below(400));
        ASSERT_NO_FATAL_FAILURE(compare(mode, decrypt, in, context, model));
      }
    }
  }
}

// A counter that wraps in the low half, in the whole block, and inside one work unit.
TEST_P(EveryCipher, CountersWrapToZero) {
  const std::size_t len = descriptor.block_len;
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const std::size_t ones : {std::size_t{2}, len / 2, len}) {
      for (const std::uint8_t last : {0xff, 0xf9, 0xe7, 0x00}) {
        Bytes iv(len, 0x11);
        std::fill(iv.end() - static_cast<std::ptrdiff_t>(ones), iv.end(), 0xff);
        iv.back() = last;
        BCIPHER_CONTEXT context = start(ZEL_MODE_CTR, descriptor, iv);
        Model model(descriptor, key->round_keys, iv);
        ASSERT_NO_FATAL_FAILURE(
            compare(ZEL_MODE_CTR, false, random.bytes(70 * len), context, model));
      }
    }
  }
}

// Decryption of encryption, with padding where there is some, for lengths of 0 to 5 blocks.
TEST_P(EveryCipher, RoundTripsInEveryMode) {
  const std::size_t block = descriptor.block_len;
  for (const int mode : kModes) {
    for (std::size_t len = 0; len <= 5 * block + 3; ++len) {
      SCOPED_TRACE(std::to_string(len) + " bytes in mode " + std::to_string(mode));
      if (mode == ZEL_MODE_CBC_CTS && len <= block) continue;
      const bool padded = mode <= ZEL_MODE_CBC;
      const Bytes iv = random.bytes(block);
      const Bytes in = random.bytes(len);
      BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(mode), descriptor, iv);
      const Result there = operate(false, context, key.get(), in, true);
      EXPECT_EQ(there.code, ZEL_OK);
      EXPECT_EQ(there.data.size(), padded ? (len / block + 1) * block : len);
      context = start(static_cast<std::uint8_t>(mode), descriptor, iv);
      const Result back = operate(true, context, key.get(), there.data, true);
      if (padded && &descriptor == &tavoold && len % block == 0) {
        EXPECT_EQ(back.code, ZEL_ERR_PADDING) << "its padding of a full block is zero bytes";
        EXPECT_EQ(back.data.size(), there.data.size());
      } else {
        EXPECT_EQ(back.code, ZEL_OK);
        EXPECT_EQ(back.data, in);
      }
    }
  }
}

// Where input and output overlap without being the same, the input is copied first.
TEST_P(EveryCipher, OverlappingBuffersAreCopiedFirst) {
  const std::size_t len = 9 * descriptor.block_len;
  const Bytes in = random.bytes(len);
  for (const int mode : kModes) {
    for (const bool decrypt : {false, true}) {
      for (const int shift : {-40, -1, 1, 8, static_cast<int>(len) - 1}) {
        Bytes room(3 * len);
        std::uint8_t *const from = room.data() + len;
        std::copy(in.begin(), in.end(), from);
        BCIPHER_CONTEXT context = start(static_cast<std::uint8_t>(mode), descriptor, {});
        Model model(descriptor, key->round_keys, Bytes(descriptor.block_len));
        std::uint32_t done = static_cast<std::uint32_t>(len);
        (decrypt ? BCIPHER_Decrypt : BCIPHER_Encrypt)(from + shift, &done, from, done, &context,
                                                      key.get(), 0);
        ASSERT_EQ(to_hex({from + shift, from + shift + len}), to_hex(model.run(mode, decrypt, in)))
            << "mode " << mode << (decrypt ? " decryption" : "") << ", shifted by " << shift;
      }
    }
  }
}

constexpr std::pair<int, decltype(&BCIPHER_EncryptCTR)> kModeFunctions[] = {
    {ZEL_MODE_CTR, BCIPHER_EncryptCTR},
    {ZEL_MODE_OFB, BCIPHER_EncryptOFB},
    {ZEL_MODE_OFB_BYTE, [](std::uint8_t *data, std::uint32_t len, const void *keys,
                           std::uint8_t *chain, std::uint32_t block_len, BCIPHER_BLOCK_FN encrypt) {
       return BCIPHER_EncryptOFB_BYTE(data, len, keys, chain, block_len, encrypt);
     }}};

// The exported mode functions take any block function: the library's own, which may have a fast
// path and goes with its own block length alone, and a stranger's.
TEST_P(EveryCipher, ModeFunctionsOverABlockFunction) {
  const std::uint32_t len = descriptor.block_len;
  const bool own = std::any_of(std::begin(kCiphers), std::end(kCiphers),
                               [this](const auto &each) { return each.descriptor == &descriptor; });
  const Bytes data = random.bytes(1000);
  const Bytes iv = random.bytes(len);
  for (const auto &[mode, function] : kModeFunctions) {
    Bytes out = data;
    Bytes reg = iv;
    Model model(descriptor, key->round_keys, iv);
    EXPECT_EQ(function(out.data(), 1000, key->round_keys, reg.data(), len, descriptor.EncryptBlock),
              0U);
    EXPECT_EQ(out, model.run(mode, false, data));
    EXPECT_EQ(reg, model.chain);
    for (const std::uint32_t bad : {0U, 17U, 0x10000010U, 1U, 4U, 8U, 15U, 16U}) {
      if (bad == len || (!own && bad >= 1 && bad <= 16)) continue;
      out = data;
      for (const BCIPHER_BLOCK_FN block : {descriptor.EncryptBlock, descriptor.DecryptBlock})
        EXPECT_EQ(function(out.data(), 500, key->round_keys, reg.data(), bad, block), 500U) << bad;
      EXPECT_EQ(out, data);
      EXPECT_EQ(reg, model.chain);
    }
    EXPECT_EQ(function(out.data(), 500, key->round_keys, reg.data(), len, nullptr), 500U);
  }
}

// A stranger's function may have longer blocks than its caller says: nothing is written behind the
// message or the register.
TEST(ModeFunctions, StayInsideTheMessageOfAWrongBlockLength) {
  const auto sixteen = [](void *block, const void *) { std::memset(block, 0x99, 16); };
  for (const auto &[mode, function] : kModeFunctions)
    for (std::uint32_t len = 1; len < 16; ++len)
      for (const std::uint32_t message : {0U, 5U, 64U, 4096U}) {
        Bytes data(message + 16, 0x11), reg(32, 0x22);
        EXPECT_EQ(function(data.data(), message, reg.data(), reg.data(), len, sixteen), 0U);
        EXPECT_EQ(Bytes(data.begin() + message, data.end()), Bytes(16, 0x11)) << mode;
        EXPECT_EQ(Bytes(reg.begin() + len, reg.end()), Bytes(32 - len, 0x22)) << mode;
      }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EveryCipher, ::testing::ValuesIn(kCiphers),
                         [](const auto &one) { return std::string(one.param.name); });

// A caller's own cipher, with a block length that none of ours has.
constexpr std::uint32_t kOddBlock = 12;
int32_t odd_schedule(void *round_keys, const uint8_t *key, uint32_t len) {
  std::memcpy(round_keys, key, len);
  return 0;
}
void odd_encrypt(void *block, const void *round_keys) {
  auto *const bytes = static_cast<std::uint8_t *>(block);
  for (std::size_t i = 0; i < kOddBlock; ++i)
    bytes[i] =
        static_cast<std::uint8_t>(5 * bytes[i] + static_cast<const std::uint8_t *>(round_keys)[i]);
  std::rotate(bytes, bytes + 5, bytes + kOddBlock);
}
void odd_decrypt(void *block, const void *round_keys) {
  auto *const bytes = static_cast<std::uint8_t *>(block);
  std::rotate(bytes, bytes + 7, bytes + kOddBlock);
  for (std::size_t i = 0; i < kOddBlock; ++i)
    bytes[i] = static_cast<std::uint8_t>(
        205 * (bytes[i] - static_cast<const std::uint8_t *>(round_keys)[i]));
}
const BCIPHER_ALGORITHM kOdd = {kOddBlock,   16,      odd_schedule, odd_encrypt,
                                odd_decrypt, nullptr, nullptr};

INSTANTIATE_TEST_SUITE_P(Callers, EveryCipher,
                         ::testing::Values(CipherRow{"odd", &kOdd, 16, kOddBlock, 16, false}),
                         [](const auto &one) { return std::string(one.param.name); });

}  // namespace
}  // namespace zel::test
