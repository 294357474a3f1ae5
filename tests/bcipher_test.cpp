// Key objects, contexts, padding, and the order of the checks in the calls that drive the modes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/support/ciphers.hpp"
#include "tests/support/features.hpp"
#include "tests/support/own_stack.hpp"
#include "tests/support/short_memory.hpp"

namespace zel::test {
namespace {

TEST(Padding, CountsAndClamps) {
  const Bytes data = from_hex("a1a2a3");
  Bytes out(40, 0xcc);
  EXPECT_EQ(AddPadding(out.data(), data.data(), 3, 8), 8U);
  EXPECT_EQ(to_hex({out.begin(), out.begin() + 9}), "a1a2a30505050505cc");
  EXPECT_EQ(AddPadding(out.data(), out.data(), 0, 16), 16U);
  EXPECT_EQ(Bytes(out.begin(), out.begin() + 16), Bytes(16, 16));
  for (const std::uint32_t bad : {0U, 256U, 0xffffffffU})
    EXPECT_EQ(AddPadding(out.data(), data.data(), 3, bad), 3U) << bad;

  out = from_hex("a1a2a3a4a5a60902");
  Bytes copied(8);
  EXPECT_EQ(RemovePadding(copied.data(), out.data(), 8), 6U);
  EXPECT_EQ(copied, out);
  EXPECT_EQ(RemovePadding(out.data(), out.data(), 7), 0U) << "nine of seven bytes";
  EXPECT_EQ(RemovePadding(out.data(), out.data(), 0), 0U);
}

// The verdict over the padding of a final decryption, in its order.
TEST(Padding, LastByteAloneDecides) {
  const Key key = load_key(des, from_hex("0123456789abcdef"));
  const auto verdict = [&key](const std::string &plain_hex) {
    BCIPHER_CONTEXT context = start(ZEL_MODE_ECB, des, {});
    const Bytes cipher = operate(false, context, key.get(), from_hex(plain_hex)).data;
    return operate(true, context, key.get(), cipher, true);
  };
  EXPECT_EQ(verdict("1122334455667705").code, ZEL_OK);
  EXPECT_EQ(to_hex(verdict("1122334455667705").data), "112233");
  EXPECT_EQ(to_hex(verdict("1122334455667708").data), "");
  for (const char *bad : {"1122334455667700", "1122334455667709", "11223344556677ff"}) {
    EXPECT_EQ(verdict(bad).code, ZEL_ERR_PADDING);
    EXPECT_EQ(to_hex(verdict(bad).data), bad) << "left deciphered, in full length";
  }
  EXPECT_EQ(verdict("").code, ZEL_ERR_PADDING);
  EXPECT_EQ(verdict("112233445566770811").code, ZEL_ERR_GENERIC) << "a trailing byte comes first";
  EXPECT_EQ(verdict("112233445566770811").data.size(), 9U);
}

// tavoold's own rule says how many bytes of the last block are message, up to all sixteen.
TEST(Padding, OfTavooldMayLeaveAFullBlock) {
  const Key key = load_key(tavoold, Bytes(16, 3));
  Bytes plain(32, 0x55);
  plain.back() = 16;
  BCIPHER_CONTEXT context = start(ZEL_MODE_ECB, tavoold, {});
  const Bytes cipher = operate(false, context, key.get(), plain).data;
  const Result back = operate(true, context, key.get(), cipher, true);
  EXPECT_EQ(back.code, ZEL_OK);
  EXPECT_EQ(back.data, plain);
}

// The order of the checks, each call breaking one rule more than the next, and what stays as it
// was.
TEST(Operation, ChecksInTheirOrder) {
  const Key key = load_key(rijndael, Bytes(16, 1));
  BCIPHER_CONTEXT aes = start(ZEL_MODE_GCM, rijndael, {});
  BCIPHER_CONTEXT other = start(ZEL_MODE_CBC, rijndael256, {});
  const Bytes in(16, 0x77);
  Bytes out(32, 0xcc);
  std::uint32_t len = 99;
  for (const auto call : {BCIPHER_Encrypt, BCIPHER_Decrypt}) {
    const auto code = [&](BCIPHER_CONTEXT *context, const BCIPHER_KEY *with) {
      return call(out.data(), &len, in.data(), 16, context, with, 1);
    };
    EXPECT_EQ(code(&aes, nullptr), ZEL_ERR_GENERIC);
    EXPECT_EQ(code(nullptr, key.get()), ZEL_ERR_GENERIC);
    EXPECT_EQ(code(&other, key.get()), ZEL_ERR_GENERIC);
    KZEL_CC_SetState(ZEL_STATE_VERIFIED);
    EXPECT_EQ(code(&other, key.get()), ZEL_ERR_GENERIC) << "the descriptors come first";
    EXPECT_EQ(code(&aes, key.get()), ZEL_ERR_APPROVED) << "the mode comes last";
    KZEL_CC_SetState(0);
    EXPECT_EQ(code(nullptr, nullptr), ZEL_ERR_STATE) << "the state comes first";
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
    EXPECT_EQ(call(out.data(), nullptr, in.data(), 16, &aes, key.get(), 1), ZEL_ERR_GENERIC);
    EXPECT_EQ(call(nullptr, &len, in.data(), 16, &aes, key.get(), 1), ZEL_ERR_GENERIC);
    EXPECT_EQ(call(out.data(), &len, nullptr, 16, &aes, key.get(), 1), ZEL_ERR_GENERIC);
    EXPECT_EQ(out, Bytes(32, 0xcc));
    for (const std::uint8_t mode : {11, 12, 13, 255, 0}) {
      aes.mode = mode;
      EXPECT_EQ(code(&aes, key.get()), ZEL_ERR_MODE);
    }
    EXPECT_EQ(len, 99U);
    EXPECT_TRUE(std::equal(in.begin(), in.end(), out.begin())) << "the copy comes before the mode";
    aes.mode = ZEL_MODE_GCM;
    out.assign(32, 0xcc);
  }
}

// A padded length that does not fit in 32 bits must not write a single byte.
TEST(Operation, PaddedLengthBeyond32BitsIsRefused) {
  const Key key = load_key(des, Bytes(8, 1));
  Bytes bytes(16, 0xcc);
  std::uint32_t len = 99;
  for (const std::uint8_t mode : {ZEL_MODE_ECB, ZEL_MODE_CBC}) {
    BCIPHER_CONTEXT context = start(mode, des, {});
    EXPECT_EQ(BCIPHER_Encrypt(bytes.data(), &len, bytes.data(), 0xfffffff8, &context, key.get(), 1),
              ZEL_ERR_GENERIC);
  }
  EXPECT_EQ(len, 99U);
  EXPECT_EQ(bytes, Bytes(16, 0xcc));
}

// `final` is 1 and nothing else.
TEST(Operation, OnlyOneIsFinal) {
  const Key key = load_key(des, Bytes(8, 1));
  BCIPHER_CONTEXT context = start(ZEL_MODE_ECB, des, {});
  Bytes bytes(16);
  std::uint32_t len = 0;
  BCIPHER_Encrypt(bytes.data(), &len, bytes.data(), 8, &context, key.get(), 2);
  EXPECT_EQ(len, 8U);
  BCIPHER_Encrypt(bytes.data(), &len, bytes.data(), 8, &context, key.get(), 1);
  EXPECT_EQ(len, 16U);
}

// In the verified service the block functions of the other ciphers do nothing, and then nothing
// behind them may either: the key stream of counter mode is the counters themselves.
TEST(Operation, FastPathsSleepWithTheirBlockFunctions) {
  for (const CipherRow &row : kCiphers) {
    SCOPED_TRACE(row.name);
    const std::uint32_t len = row.block_len;
    const Key key = load_key(*row.descriptor, Bytes(row.key_len, 7));
    Bytes data(40 * len);
    Bytes counter(len);
    Bytes block(len, 0x3c);
    KZEL_CC_SetState(ZEL_STATE_VERIFIED);
    row.descriptor->EncryptBlock(block.data(), key->round_keys);
    BCIPHER_EncryptCTR(data.data(), 40 * len, key->round_keys, counter.data(), len,
                       row.descriptor->EncryptBlock);
    KZEL_CC_SetState(ZEL_STATE_NOT_VERIFIED);
    const bool asleep = block == Bytes(len, 0x3c);
    EXPECT_EQ(asleep, !row.approved);
    for (std::size_t i = 0; i < 40 && asleep; ++i)
      ASSERT_EQ(data[i * len + len - 1], i);
    EXPECT_EQ(counter.back(), 40);
  }
}

int g_own_calls = 0;
void own_decrypt(void *block, const void *round_keys) {
  ++g_own_calls;
  RIJNDAEL_DecryptBlock(block, round_keys);
}

// A caller's own cipher may borrow one block function from the library. The fast paths of that one
// are not those of the other.
TEST(Operation, CallersOwnDecryptBlockIsTheOneThatDeciphers) {
  BCIPHER_ALGORITHM mixed = rijndael;
  mixed.DecryptBlock = own_decrypt;
  const Key key = load_key(mixed, Bytes(16, 1));
  for (const std::uint8_t mode : {ZEL_MODE_ECB, ZEL_MODE_CBC}) {
    BCIPHER_CONTEXT context = start(mode, mixed, {});
    g_own_calls = 0;
    EXPECT_EQ(operate(true, context, key.get(), Bytes(64, 2)).code, ZEL_OK);
    EXPECT_EQ(g_own_calls, 4);
  }
}

// What a caller fills by hand may hold anything: nothing is divided by, read or called that is not
// there, and a block function of the library gets blocks of its own length.
TEST(Operation, UnsoundRecordsAreRefused) {
  const Bytes before(64, 0x77);
  const auto refused = [&before](const BCIPHER_ALGORITHM *descriptor, void *round_keys) {
    BCIPHER_KEY key{descriptor, {}, 0, round_keys};
    for (std::uint8_t mode = ZEL_MODE_ECB; mode <= ZEL_MODE_CFB_STREAM; ++mode)
      for (const auto call : {BCIPHER_Encrypt, BCIPHER_Decrypt}) {
        BCIPHER_CONTEXT context{mode, {}, descriptor, 0};
        Bytes data = before;
        std::uint32_t len = 99;
        EXPECT_EQ(call(data.data(), &len, data.data(), 48, &context, &key, 0), ZEL_ERR_GENERIC);
        EXPECT_EQ(data, before);
        EXPECT_EQ(len, 99U);
      }
  };
  Bytes keys(384);
  std::vector<BCIPHER_ALGORITHM> strange(7, des);
  strange[0].block_len = 0;
  strange[1].block_len = 17;
  strange[2].block_len = 16;
  strange[3].DecryptBlock = RIJNDAEL_DecryptBlock;
  strange[4].EncryptBlock = ARIA_DecryptBlock;
  strange[5].EncryptBlock = nullptr;
  strange[6].DecryptBlock = nullptr;
  for (const BCIPHER_ALGORITHM &descriptor : strange) {
    SCOPED_TRACE(&descriptor - strange.data());
    refused(&descriptor, keys.data());
    BCIPHER_CONTEXT context;
    std::memset(&context, 0x5a, sizeof context);
    const BCIPHER_CONTEXT untouched = context;
    EXPECT_EQ(BCIPHER_Initialize(&context, 1, nullptr, &descriptor), ZEL_ERR_GENERIC);
    EXPECT_EQ(std::memcmp(&context, &untouched, sizeof context), 0);
  }
  refused(nullptr, keys.data());
  refused(&des, nullptr);

  BCIPHER_KEY key{&des, {}, 8, nullptr};
  EXPECT_EQ(BCIPHER_DupKey(&key), nullptr);
  EXPECT_EQ(BCIPHER_MakeKey(&key, keys.data(), 8, &des), ZEL_ERR_GENERIC);
  key = {nullptr, {1}, 1, keys.data()};
  EXPECT_EQ(BCIPHER_DupKey(&key), nullptr);
  BCIPHER_WipeKey(&key);
  EXPECT_EQ(key.key_bytes[0], 1);
}

TEST(KeyObject, LivesThroughLoadingCopyingAndWiping) {
  EXPECT_EQ(BCIPHER_NewKey(nullptr), nullptr);
  EXPECT_EQ(BCIPHER_DupKey(nullptr), nullptr);
  BCIPHER_DelKey(nullptr);
  BCIPHER_WipeKey(nullptr);

  const Bytes bytes = from_hex("0123456789abcdef23456789abcdef01456789abcdef0123");
  const Key key = load_key(tdes, bytes);
  EXPECT_EQ(key->descriptor, &tdes);
  EXPECT_EQ(key->key_len, 24U);
  EXPECT_EQ(Bytes(key->key_bytes, key->key_bytes + 24), bytes);
  const Key copy(BCIPHER_DupKey(key.get()), &BCIPHER_DelKey);
  EXPECT_NE(copy->round_keys, key->round_keys);
  EXPECT_EQ(std::memcmp(copy->round_keys, key->round_keys, 384), 0);

  BCIPHER_WipeKey(key.get());
  const Key blank(BCIPHER_DupKey(key.get()), &BCIPHER_DelKey);
  EXPECT_EQ(blank->key_len, 24U) << "the length stays";
  EXPECT_EQ(Bytes(blank->key_bytes, blank->key_bytes + 24), Bytes(24));
  const auto *const schedule = static_cast<const std::uint8_t *>(blank->round_keys);
  EXPECT_EQ(Bytes(schedule, schedule + 384), Bytes(384));
  EXPECT_EQ(Bytes(copy->key_bytes, copy->key_bytes + 24), bytes) << "the copy is its own";
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), 24, &tdes), ZEL_OK) << "and reloads";
  EXPECT_EQ(std::memcmp(copy->round_keys, key->round_keys, 384), 0);
}

TEST(KeyObject, NothingIsHeldWhereMemoryIsShort) {
  const Key key = load_key(des, Bytes(8, 1));
  for (const int left : {0, 1}) {
    const int before = g_held;
    g_allocations_left = left;
    const BCIPHER_KEY *const made = BCIPHER_NewKey(&des);
    g_allocations_left = left;
    const BCIPHER_KEY *const copied = BCIPHER_DupKey(key.get());
    g_allocations_left = -1;
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(copied, nullptr);
    EXPECT_EQ(g_held, before);
  }
}

// Eight draws leave a byte zero in all of them once in 2^64.
TEST(KeyObject, GeneratedKeysFillTheirLength) {
  for (const std::uint32_t len : {1U, 16U, 33U}) {
    Bytes seen(len), last;
    for (int draw = 0; draw < 8; ++draw) {
      Bytes out(len + 8, 0);
      EXPECT_EQ(BCIPHER_GenKey(out.data(), len), ZEL_OK);
      EXPECT_EQ(Bytes(out.begin() + len, out.end()), Bytes(8)) << "behind the key";
      for (std::size_t i = 0; i < len; ++i)
        seen[i] |= out[i];
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), 0), 0);
  }
  // As many bits as 32 bits count and one byte more: nothing may be drawn for a wrapped count.
  Bytes out(8, 0xcc);
  EXPECT_EQ(BCIPHER_GenKey(out.data(), 1U << 29), ZEL_ERR_GENERIC);
  EXPECT_EQ(out, Bytes(8, 0xcc));
  EXPECT_NE(KZEL_CC_GetState(), ZEL_STATE_ERROR);
}

struct {
  const CipherRow *row;
  BCIPHER_KEY *key;
  std::uint8_t bytes[32];
} g_load;

// What stays of the key or the schedule on the stack would outlive the key object.
TEST(KeyObject, LoadingLeavesNothingOnTheStack) {
  if (!OnOwnStack::kCounts) GTEST_SKIP() << "true of GCC's release";
  for (std::size_t i = 0; i < sizeof g_load.bytes; ++i)
    g_load.bytes[i] = static_cast<std::uint8_t>(0x91 * i * i + 0x37 * i + 11);
  for (const FeatureSet &set : feature_sets()) {
    const FeatureMask mask(set.mask);
    for (const CipherRow &row : kCiphers) {
      if (!row.computes()) continue;
      SCOPED_TRACE(set.name + ' ' + row.name);
      const Key key = new_key(*row.descriptor);
      g_load.row = &row;
      g_load.key = key.get();
      std::vector<OnOwnStack> stacks;
      stacks.emplace_back([] {
        const BCIPHER_ALGORITHM *const cipher = g_load.row->descriptor;
        BCIPHER_MakeKey(g_load.key, g_load.bytes, g_load.row->key_len, cipher);
      });
      // The schedules of the approved ciphers are called without a key object too.
      if (row.approved)
        stacks.emplace_back(
            [] { g_load.row->descriptor->MakeRoundKey(g_load.key->round_keys, g_load.bytes, 0); });
      const auto *const keys = static_cast<const std::uint8_t *>(key->round_keys);
      for (const OnOwnStack &stack : stacks) {
        EXPECT_FALSE(stack.holds({g_load.bytes, g_load.bytes + row.key_len}));
        EXPECT_FALSE(stack.holds({keys, keys + 64}));
      }
    }
  }
}

TEST(KeyObject, RefusalsTouchNothing) {
  const Key key = load_key(rijndael, Bytes(16, 9));
  const BCIPHER_KEY before = *key;
  const Bytes bytes(200, 3);
  EXPECT_EQ(BCIPHER_MakeKey(nullptr, bytes.data(), 16, &rijndael), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), nullptr, 16, &rijndael), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), 16, nullptr), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), 16, &aesni), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), 33, &rijndael), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(key.get(), bytes.data(), 0x00400008, &rijndael), ZEL_ERR_GENERIC);
  EXPECT_EQ(std::memcmp(key.get(), &before, sizeof before), 0);

  // RC2 packs the effective bits into the upper half; 0 in the lower half means 128 bytes.
  const Key packed = new_key(rc2);
  EXPECT_EQ(BCIPHER_MakeKey(packed.get(), bytes.data(), 0x00400008, &rc2), ZEL_OK);
  EXPECT_EQ(packed->key_len, 0x00400008U) << "as given, so that a reload is the same key";
  EXPECT_EQ(BCIPHER_MakeKey(packed.get(), bytes.data(), 0x00400000, &rc2), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_MakeKey(packed.get(), bytes.data(), 0x00400021, &rc2), ZEL_ERR_GENERIC);
}

TEST(Context, InitialisationChecksInTheirOrder) {
  BCIPHER_CONTEXT context;
  std::memset(&context, 0x5a, sizeof context);
  const BCIPHER_CONTEXT before = context;
  for (const std::uint8_t mode : {0, 13, 255})
    EXPECT_EQ(BCIPHER_Initialize(nullptr, mode, nullptr, nullptr), ZEL_ERR_MODE);
  EXPECT_EQ(BCIPHER_Initialize(nullptr, 1, nullptr, &des), ZEL_ERR_GENERIC);
  EXPECT_EQ(BCIPHER_Initialize(&context, 1, nullptr, nullptr), ZEL_ERR_GENERIC);
  EXPECT_EQ(std::memcmp(&context, &before, sizeof context), 0);

  for (std::uint8_t mode = 1; mode <= 12; ++mode)
    EXPECT_EQ(BCIPHER_Initialize(&context, mode, nullptr, &des), ZEL_OK);
  EXPECT_EQ(Bytes(context.chain, context.chain + 8), Bytes(8));
  EXPECT_EQ(context.chain[8], 0x5a) << "only a block of the register is set";
  EXPECT_EQ(context.stream_pos, 0);
}

}  // namespace
}  // namespace zel::test
