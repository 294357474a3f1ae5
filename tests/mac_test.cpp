// CMAC and DAC: published vectors, where a caller cuts the message, the fields of the records, and
// contexts that were never started or are spent. With every processor feature masked.
#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"
#include "tests/support/hashes.hpp"
#include "tests/support/short_memory.hpp"

namespace zel::test {
namespace {

std::uint32_t size(const Bytes &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

/// Both codes under one interface.
struct Cmac {
  CMAC_CONTEXT context{};
  std::int32_t begin(const BCIPHER_ALGORITHM *descriptor, const Bytes &key) {
    return CMAC_Initialize(&context, key.data(), size(key), descriptor);
  }
  void add(const Bytes &more) { EXPECT_EQ(CMAC_Update(&context, more.data(), size(more)), ZEL_OK); }
  Bytes end(std::uint32_t len) {
    Bytes mac(len, 0xcc);
    EXPECT_EQ(CMAC_Finalize(mac.data(), len, &context), ZEL_OK);
    return mac;
  }
};
struct Dac {
  DAC_CONTEXT context{};
  std::int32_t begin(const BCIPHER_ALGORITHM *descriptor, const Bytes &key) {
    return DAC_Initialize(&context, key.data(), size(key), descriptor);
  }
  void add(const Bytes &more) { DAC_Update(&context, more.data(), size(more)); }
  Bytes end(std::uint32_t len) {
    Bytes mac(len, 0xcc);
    DAC_Finalize(mac.data(), len, &context);
    return mac;
  }
};

template <class Code>
Bytes code_of(const BCIPHER_ALGORITHM *descriptor, const Bytes &key, const Bytes &message,
              std::uint32_t len, std::size_t step = SIZE_MAX) {
  Code code;
  EXPECT_EQ(code.begin(descriptor, key), ZEL_OK);
  for (std::size_t at = 0; at < message.size(); at += step) {
    const std::size_t now = std::min(step, message.size() - at);
    const auto from = message.begin() + static_cast<std::ptrdiff_t>(at);
    code.add({from, from + static_cast<std::ptrdiff_t>(now)});
    if (now == message.size()) break;
  }
  return code.end(len);
}

const BCIPHER_ALGORITHM *descriptor_of(const Vector &vector) {
  const std::size_t len = vector.bytes("key").size();
  const std::string &name = vector.word("cipher");
  if (name == "aria") return len == 16 ? &aria : len == 24 ? &aria192 : &aria256;
  if (name == "aes") return len == 16 ? &rijndael : &rijndael256;
  for (const CipherRow &row : kCiphers) {
    if (row.name == name) return row.descriptor;
  }
  throw std::runtime_error(vector.place);
}

class Published : public ::testing::TestWithParam<const char *> {};

TEST_P(Published, AreTheCodes) {
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const Vector &vector : read_vectors(GetParam())) {
      SCOPED_TRACE(vector.place + " on " + set.name);
      const bool own = vector.has("product_mac");
      const Bytes want = vector.bytes(own ? "product_mac" : "mac");
      const auto code = vector.word("alg") == "dac" ? code_of<Dac> : code_of<Cmac>;
      for (const std::size_t step : {SIZE_MAX, std::size_t{1}, std::size_t{5}, std::size_t{40}}) {
        const Bytes mac =
            code(descriptor_of(vector), vector.bytes("key"), vector.bytes("msg"), size(want), step);
        const bool valid = vector.has("result") ? vector.word("result") == "valid" : true;
        EXPECT_EQ(mac == want, valid) << to_hex(mac);
        if (own) {
          EXPECT_NE(mac, vector.bytes("mac"));
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Published,
                         ::testing::Values("cmac_aes", "cmac_aria", "cmac_seed", "cmac_tdes",
                                           "cmac_tdes_standard", "dac"),
                         [](const auto &row) { return std::string(row.param); });

/// The two codes as their definitions have them, over whole messages; the records too.
struct Model {
  const BCIPHER_ALGORITHM &cipher;
  Key key;
  std::size_t len = cipher.block_len;
  Bytes state = Bytes(len), buffer = Bytes(16);

  Bytes encipher(Bytes block) const {
    cipher.EncryptBlock(block.data(), key->round_keys);
    return block;
  }
  Bytes twice(const Bytes &from) const {
    Bytes to(len);
    for (std::size_t i = 0; i < len; ++i)
      to[i] = static_cast<std::uint8_t>(from[i] << 1 | (i + 1 < len ? from[i + 1] >> 7 : 0));
    if (from[0] >= 0x80) to[len - 1] ^= len == 16 ? 0x87 : 0x1c;
    return to;
  }
  void link(const Bytes &block, bool cmac) {
    Bytes sum = state;
    for (std::size_t i = 0; i < len; ++i)
      sum[i] ^= block[i];
    // CMAC adds in the buffer, DAC in the register of the mode.
    std::copy_n((cmac ? sum : block).begin(), len, buffer.begin());
    state = encipher(sum);
  }
};

// The buffer keeps what the last block left in it, behind the bytes that wait; programs that save a
// context compare such records.
TEST(Records, HoldWhatTheDefinitionsLeave) {
  for (const CipherRow &row : kCiphers) {
    if (!row.computes()) continue;
    SCOPED_TRACE(row.name);
    const Bytes key = noise(row.key_len);
    for (std::size_t total = 0; total <= 150; total += total < 40 ? 1 : 11) {
      const Bytes message = noise(total);
      for (const bool is_cmac : {true, false}) {
        Model model{*row.descriptor, load_key(*row.descriptor, key)};
        Cmac cmac;
        Dac dac;
        EXPECT_EQ(cmac.begin(row.descriptor, key), ZEL_OK);
        EXPECT_EQ(dac.begin(row.descriptor, key), ZEL_OK);
        const Bytes l = model.encipher(Bytes(model.len));
        EXPECT_EQ(Bytes(cmac.context.k1, cmac.context.k1 + model.len), model.twice(l));
        EXPECT_EQ(Bytes(cmac.context.k2, cmac.context.k2 + model.len), model.twice(model.twice(l)));
        std::size_t at = 0;
        for (; total - at >= model.len + (is_cmac ? 1 : 0); at += model.len)
          model.link({message.begin() + static_cast<std::ptrdiff_t>(at), message.end()}, is_cmac);
        std::copy(message.begin() + static_cast<std::ptrdiff_t>(at), message.end(),
                  model.buffer.begin());
        cmac.add(message);
        dac.add(message);
        const auto check = [&](const auto &context) {
          EXPECT_EQ(context.count, total - at);
          EXPECT_EQ(Bytes(context.buffer, context.buffer + 16), model.buffer) << total;
          EXPECT_EQ(Bytes(context.state, context.state + model.len), model.state);
          EXPECT_EQ(Bytes(context.cipher.chain, context.cipher.chain + model.len), model.state);
        };
        if (is_cmac) {
          check(cmac.context);
        } else {
          check(dac.context);
        }
        cmac.end(16);
        dac.end(16);
        EXPECT_EQ(cmac.context.key, nullptr);
        EXPECT_EQ(dac.context.key, nullptr);
      }
    }
  }
}

TEST(Records, SpentOrNeverStartedDoNoHarm) {
  const auto use = [](auto &code) {
    code.add(noise(100));
    code.end(16);
    code.end(40);
  };
  Cmac cmac, cmac_never;
  Dac dac, dac_never;
  EXPECT_EQ(cmac.begin(&aria, noise(16)), ZEL_OK);
  EXPECT_EQ(dac.begin(&des, noise(8)), ZEL_OK);
  EXPECT_EQ(to_hex(dac.end(12)), "0000000000000000cccccccc")
      << "empty message; no more than a block";
  cmac.end(16);
  use(cmac);
  use(dac);
  use(cmac_never);
  use(dac_never);
  EXPECT_EQ(CMAC_Update(&cmac.context, nullptr, 1), ZEL_ERR_GENERIC);
  EXPECT_EQ(CMAC_Finalize(nullptr, 1, &cmac.context), ZEL_ERR_GENERIC);
  EXPECT_EQ(CMAC_Initialize(&cmac.context, noise(33).data(), 33, &blowfish), ZEL_ERR_GENERIC);
}

// A context comes from outside: a descriptor that is not what it was started with must not take the
// records beyond their ends, nor the key object with it.
TEST(Records, WithOtherDescriptorsStayInTheirBounds) {
  BCIPHER_ALGORITHM without_schedule = aria, wide = aria, none = aria;
  without_schedule.MakeRoundKey = nullptr;
  wide.block_len = 64;
  none.block_len = 0;
  const Bytes key = noise(16), message = noise(200);
  const int held = g_held;
  for (const BCIPHER_ALGORITHM *bad : {&without_schedule, &wide, &none}) {
    Cmac cmac;
    Dac dac;
    EXPECT_EQ(cmac.begin(bad, key), ZEL_ERR_GENERIC);
    EXPECT_EQ(dac.begin(bad, key), ZEL_ERR_GENERIC);
    EXPECT_EQ(cmac.begin(&aria, key), ZEL_OK);
    EXPECT_EQ(dac.begin(&aria, key), ZEL_OK);
    cmac.context.cipher.descriptor = dac.context.cipher.descriptor = bad;
    EXPECT_EQ(CMAC_Update(&cmac.context, message.data(), 200), ZEL_ERR_GENERIC);
    EXPECT_EQ(cmac.context.count, 0U);
    dac.add(message);
    EXPECT_EQ(dac.context.count, 0U);
    dac.context.count = 70;
    Bytes mac(64, 0xcc);
    EXPECT_EQ(CMAC_Finalize(mac.data(), 64, &cmac.context), ZEL_ERR_GENERIC);
    EXPECT_EQ(dac.end(64), joined(Bytes(16), Bytes(48, 0xcc)));
    EXPECT_EQ(mac, joined(Bytes(16), Bytes(48, 0xcc)));
  }
  EXPECT_EQ(g_held, held);
  BCIPHER_KEY *const object = BCIPHER_NewKey(&without_schedule);
  EXPECT_EQ(BCIPHER_MakeKey(object, key.data(), 16, &without_schedule), ZEL_ERR_GENERIC);
  EXPECT_EQ(object->key_len, 0U) << "nothing touched";
  BCIPHER_DelKey(object);
}

TEST(Memory, NothingIsLostWhereItIsShort) {
  const Bytes key = noise(16);
  const int held = g_held;
  for (int left = 0; left <= 3; ++left) {
    Cmac cmac;
    Dac dac;
    Bytes fresh(sizeof cmac.context);  // with the bytes between its fields
    std::memcpy(fresh.data(), &cmac.context, fresh.size());
    g_allocations_left = left;
    const std::int32_t cmac_code = CMAC_Initialize(&cmac.context, key.data(), 16, &aria);
    g_allocations_left = left;
    const std::int32_t dac_code = DAC_Initialize(&dac.context, key.data(), 16, &aria);
    g_allocations_left = -1;
    EXPECT_EQ(cmac_code, left < 2 ? ZEL_ERR_GENERIC : ZEL_OK);
    EXPECT_EQ(dac_code, left < 2 ? ZEL_ERR_GENERIC : ZEL_OK);
    if (left < 2) {
      EXPECT_EQ(std::memcmp(&cmac.context, fresh.data(), fresh.size()), 0);
    }
    std::uint8_t mac[16];
    CMAC_Finalize(mac, 16, &cmac.context);
    DAC_Finalize(mac, 16, &dac.context);
    EXPECT_EQ(g_held, held);
  }
}

// In the verified service CMAC over other ciphers goes through its motions, DAC does nothing; and
// what was started before is released even in the error state.
TEST(States, ServeOrNot) {
  const Bytes message = noise(100), key = noise(16);
  const Bytes right = code_of<Cmac>(&aria, key, message, 16);
  Cmac aes, other;
  Dac dac;
  const int held = g_held;
  EXPECT_EQ(other.begin(&aria, key), ZEL_OK);
  EXPECT_EQ(dac.begin(&aria, key), ZEL_OK);
  KZEL_CC_SetState(ZEL_STATE_VERIFIED);
  EXPECT_EQ(code_of<Cmac>(&aria, key, message, 16), right);
  EXPECT_EQ(aes.begin(&rijndael, key), ZEL_OK);
  aes.add(message);
  EXPECT_EQ(aes.end(16), Bytes(16)) << "refused block by block";
  const DAC_CONTEXT before = dac.context;
  dac.add(message);
  EXPECT_EQ(dac.end(16), Bytes(16, 0xcc));
  EXPECT_EQ(Dac{}.begin(&aria, key), ZEL_STATE_VERIFIED);
  EXPECT_EQ(std::memcmp(&before, &dac.context, sizeof before), 0);
  KZEL_CC_SetState(ZEL_STATE_ERROR);
  Cmac late;
  EXPECT_EQ(late.begin(&aria, key), ZEL_OK);
  late.add(message);
  EXPECT_EQ(late.end(16), Bytes(16));
  other.end(16);
  dac.end(16);
  EXPECT_EQ(g_held, held);
}

}  // namespace
}  // namespace zel::test
