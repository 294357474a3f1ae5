// RC4 against RFC 6229, in pieces, and at the edges of its arguments.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/vectors.hpp"
#include "zel_cc.h"

namespace zel::test {
namespace {

RC4_STATE started(const Bytes &key) {
  RC4_STATE state{};
  RC4_init(&state, key.data(), static_cast<std::int32_t>(8 * key.size()));
  return state;
}

TEST(Rc4, PublishedKeyStreams) {
  for (const Vector &vector : read_vectors("rc4")) {
    SCOPED_TRACE(vector.place);
    RC4_STATE state = started(vector.bytes("key"));
    const Bytes expected = vector.bytes("keystream");
    Bytes stream(static_cast<std::size_t>(vector.number("offset")) + expected.size());
    RC4_crypt_core(stream.data(), static_cast<std::int32_t>(stream.size()), &state);
    EXPECT_EQ(to_hex({stream.end() - static_cast<std::ptrdiff_t>(expected.size()), stream.end()}),
              to_hex(expected));
  }
}

// Pieces of every length up to 40, then long ones: the state must hold everything between calls,
// and XOR, in place or from one buffer to another, must use the same stream.
TEST(Rc4, PiecesMakeOneStream) {
  const Bytes key = from_hex("0102030405");
  Bytes whole(6000);
  RC4_STATE one = started(key);
  RC4_crypt_core(whole.data(), 6000, &one);

  RC4_STATE pieces = started(key);
  const Bytes plain(6000, 0x33);
  Bytes data = plain;
  std::size_t at = 0;
  for (std::size_t len = 0; at < data.size(); len = len < 40 ? len + 1 : 1000) {
    const std::size_t now = std::min(len, data.size() - at);
    if (len % 2 == 0) std::fill_n(&data[at], now, 0xee);
    const std::uint8_t *const in = (len % 2 == 0 ? plain : data).data() + at;
    RC4_crypt(data.data() + at, in, static_cast<std::int32_t>(now), &pieces);
    at += now;
  }
  for (std::size_t i = 0; i < data.size(); ++i)
    ASSERT_EQ(data[i], whole[i] ^ 0x33) << i;
  EXPECT_EQ(plain, Bytes(6000, 0x33));
  EXPECT_EQ(std::memcmp(&one, &pieces, sizeof one), 0);
  EXPECT_EQ(one.i, 6000 % 256);
}

TEST(Rc4, ShortKeysAndCountsAreRefused) {
  RC4_STATE state;
  std::memset(&state, 0x5a, sizeof state);
  const RC4_STATE untouched = state;
  const Bytes key(1, 0xff);
  for (const std::int32_t bits : {7, 0, -1, INT32_MIN})
    RC4_init(&state, key.data(), bits);
  EXPECT_EQ(std::memcmp(&state, &untouched, sizeof state), 0);

  state = started(key);
  const RC4_STATE fresh = state;
  Bytes out(4, 0x77);
  for (const std::int32_t len : {0, -1, INT32_MIN}) {
    RC4_crypt(out.data(), key.data(), len, &state);
    RC4_crypt_core(out.data(), len, &state);
  }
  EXPECT_EQ(std::memcmp(&state, &fresh, sizeof state), 0);
  EXPECT_EQ(out, Bytes(4, 0x77));

  const Bytes longer = from_hex("ff81");  // 12 bits: one whole byte
  RC4_init(&state, longer.data(), 12);
  EXPECT_EQ(std::memcmp(&state, &fresh, sizeof state), 0);
}

}  // namespace
}  // namespace zel::test
