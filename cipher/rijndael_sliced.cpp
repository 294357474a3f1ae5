// AES in bit slices: four blocks in eight 64-bit words, logic alone, so that the time depends on
// nothing secret. For processors without AES instructions. FIPS 197.
//
// Word j holds bit j of every byte; the byte at row r and column c of block b is bit 16r + 4c + b.
// A shift of row r is thus a rotation inside 16 bits, and a step from row to row a rotation by 16.
#include <array>
#include <bit>

#include "cipher/algorithms.hpp"
#include "cipher/gf256.hpp"
#include "cipher/interleave.hpp"
#include "cipher/rijndael.hpp"

namespace zel::aes {
namespace {

// Out of line, or in loops that are not written out, slices would live in memory: half the speed.
#define ZEL_UNROLLED inline __attribute__((always_inline))

constexpr std::size_t kLanes = 4;
using Word = std::uint64_t;
using Slices = std::array<Word, 8>;
using gf256::Columns;

// The S-box by way of GF(16): a byte is p*y + q with p and q in GF(16) = GF(2)[z] / (z^4 + z + 1).

/// The smallest byte that `test` accepts.
template <class Test>
consteval unsigned find(Test test) {
  unsigned x = 0;
  while (!test(x))
    ++x;
  return x;
}

/// z as a byte: a root of z^4 + z + 1.
constexpr unsigned kZ =
    find([](unsigned x) consteval { return x > 1 && (gf256::power(x, 4) ^ x ^ 1U) == 0; });
/// y as a byte: a root of y^2 + y + z^3, which has none in GF(16).
constexpr unsigned kY =
    find([](unsigned x) consteval { return (gf256::power(x, 2) ^ x ^ gf256::power(kZ, 3)) == 0; });

/// Bits 0 to 3 stand for 1, z, z^2, z^3, bits 4 to 7 for y times those.
consteval Columns tower_to_byte() {
  Columns map{};
  for (unsigned i = 0; i < 4; ++i) {
    map[i] = gf256::power(kZ, i);
    map[i + 4] = gf256::multiply(kY, map[i]);
  }
  return map;
}

consteval Columns compose(const Columns &outer, const Columns &inner) {
  Columns map{};
  for (std::size_t i = 0; i < 8; ++i)
    map[i] = gf256::apply(outer, inner[i]);
  return map;
}

consteval Columns invert(const Columns &map) {
  Columns inverse{};
  for (unsigned x = 0; x < 256; ++x) {
    const unsigned image = gf256::apply(map, x);
    if (std::has_single_bit(image))
      inverse[static_cast<std::size_t>(std::countr_zero(image))] = static_cast<std::uint8_t>(x);
  }
  return inverse;
}

/// The affine map of section 5.1.1 is this and then the constant.
constexpr Columns kAffine = {0x1f, 0x3e, 0x7c, 0xf8, 0xf1, 0xe3, 0xc7, 0x8f};
constexpr unsigned kConstant = 0x63;

/// A linear map and a constant, over slices.
template <const Columns &kMap, unsigned kAdd>
ZEL_UNROLLED Slices affine(const Slices &x) noexcept {
  Slices result{};
  bulk::each<8>([&](auto to) {
    Word sum = (kAdd >> to & 1) != 0 ? ~Word{0} : Word{0};
    bulk::each<8>([&](auto from) {
      if constexpr ((kMap[from] >> to & 1) != 0) sum ^= x[from];
    });
    result[to] = sum;
  });
  return result;
}

constexpr Columns kIntoTower = invert(tower_to_byte());
constexpr Columns kOutOfTower = compose(kAffine, tower_to_byte());
constexpr Columns kInverseIntoTower = compose(kIntoTower, invert(kAffine));
constexpr Columns kInverseOutOfTower = tower_to_byte();
constexpr unsigned kInverseConstant = gf256::apply(kInverseIntoTower, kConstant);

/// Four slices: elements of GF(16).
using Nibble = std::array<Word, 4>;

ZEL_UNROLLED Nibble add(const Nibble &a, const Nibble &b) noexcept {
  return {a[0] ^ b[0], a[1] ^ b[1], a[2] ^ b[2], a[3] ^ b[3]};
}

/// Product modulo z^4 + z + 1.
ZEL_UNROLLED Nibble multiply(const Nibble &a, const Nibble &b) noexcept {
  const Word z4 = (a[1] & b[3]) ^ (a[2] & b[2]) ^ (a[3] & b[1]);
  const Word z5 = (a[2] & b[3]) ^ (a[3] & b[2]);
  const Word z6 = a[3] & b[3];
  return {(a[0] & b[0]) ^ z4, (a[0] & b[1]) ^ (a[1] & b[0]) ^ z4 ^ z5,
          (a[0] & b[2]) ^ (a[1] & b[1]) ^ (a[2] & b[0]) ^ z5 ^ z6,
          (a[0] & b[3]) ^ (a[1] & b[2]) ^ (a[2] & b[1]) ^ (a[3] & b[0]) ^ z6};
}

ZEL_UNROLLED Nibble square(const Nibble &a) noexcept {
  return {a[0] ^ a[2], a[2], a[1] ^ a[3], a[3]};
}

/// z^3 times the square.
ZEL_UNROLLED Nibble square_times_z3(const Nibble &a) noexcept {
  return {a[2], a[1] ^ a[2] ^ a[3], a[1], a[0] ^ a[2] ^ a[3]};
}

/// a^14, as a^2 times a^4 times a^8.
ZEL_UNROLLED Nibble invert(const Nibble &a) noexcept {
  const Nibble second = square(a);
  const Nibble fourth = square(second);
  return multiply(multiply(second, fourth), square(fourth));
}

/// Inversion of p*y + q: the norm is p^2 z^3 + p q + q^2.
ZEL_UNROLLED Slices invert_in_tower(const Slices &x) noexcept {
  const Nibble q{x[0], x[1], x[2], x[3]};
  const Nibble p{x[4], x[5], x[6], x[7]};
  const Nibble norm = add(add(square_times_z3(p), square(q)), multiply(p, q));
  const Nibble over = invert(norm);
  const Nibble low = multiply(add(p, q), over);
  const Nibble high = multiply(p, over);
  return {low[0], low[1], low[2], low[3], high[0], high[1], high[2], high[3]};
}

ZEL_UNROLLED Slices sub_bytes(const Slices &x) noexcept {
  return affine<kOutOfTower, kConstant>(invert_in_tower(affine<kIntoTower, 0>(x)));
}

ZEL_UNROLLED Slices invert_sub_bytes(const Slices &x) noexcept {
  return affine<kInverseOutOfTower, 0>(
      invert_in_tower(affine<kInverseIntoTower, kInverseConstant>(x)));
}

/// Moves each row r down by 4r bits of its 16, or up for the inverse.
ZEL_UNROLLED Slices shift_rows(const Slices &x) noexcept {
  Slices result;
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j) {
    const Word s = x[j];
    result[j] = (s & 0xffff) | (s >> 4 & 0x0fff0000) | (s << 12 & 0xf0000000) |
                (s >> 8 & 0x00ff00000000) | (s << 8 & 0xff0000000000) |
                (s >> 12 & 0x000f000000000000) | (s << 4 & 0xfff0000000000000);
  }
  return result;
}

ZEL_UNROLLED Slices invert_shift_rows(const Slices &x) noexcept {
  Slices result;
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j) {
    const Word s = x[j];
    result[j] = (s & 0xffff) | (s << 4 & 0xfff00000) | (s >> 12 & 0x000f0000) |
                (s >> 8 & 0x00ff00000000) | (s << 8 & 0xff0000000000) |
                (s << 12 & 0xf000000000000000) | (s >> 4 & 0x0fff000000000000);
  }
  return result;
}

/// x times the polynomial x: section 4.2.1.
ZEL_UNROLLED Slices times_two(const Slices &x) noexcept {
  return {x[7], x[0] ^ x[7], x[1], x[2] ^ x[7], x[3] ^ x[7], x[4], x[5], x[6]};
}

/// x ^ the rows `rows` further down.
ZEL_UNROLLED Slices add_rows(const Slices &x, int rows) noexcept {
  Slices result;
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j)
    result[j] = x[j] ^ std::rotr(x[j], 16 * rows);
  return result;
}

ZEL_UNROLLED Slices mix_columns(const Slices &x) noexcept {
  const Slices pairs = add_rows(x, 1);
  const Slices doubled = times_two(pairs);
  Slices result;
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j)
    result[j] = doubled[j] ^ std::rotr(x[j], 16) ^ std::rotr(pairs[j], 32);
  return result;
}

/// The inverse matrix is the matrix itself times 5, 0, 4, 0.
ZEL_UNROLLED Slices invert_mix_columns(const Slices &x) noexcept {
  const Slices fourfold = times_two(times_two(add_rows(x, 2)));
  Slices sum;
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j)
    sum[j] = x[j] ^ fourfold[j];
  return mix_columns(sum);
}

ZEL_UNROLLED void add_key(Slices &x, const Slices &key) noexcept {
#pragma GCC unroll 8
  for (std::size_t j = 0; j < 8; ++j)
    x[j] ^= key[j];
}

/// Bit i of byte j to bit j of byte i.
ZEL_UNROLLED Word transpose(Word x) noexcept {
  const auto swap = [&x](int shift, Word mask) {
    const Word difference = (x ^ x >> shift) & mask;
    x ^= difference ^ difference << shift;
  };
  swap(7, 0x00aa00aa00aa00aa);
  swap(14, 0x0000cccc0000cccc);
  swap(28, 0x00000000f0f0f0f0);
  return x;
}

/// Where the byte behind bit 8g + k of the slices stands in four consecutive blocks.
constexpr std::size_t place(std::size_t group, std::size_t k) noexcept {
  const std::size_t row = group / 2;
  const std::size_t column = group % 2 * 2 + k / 4;
  return kBlockLen * (k % 4) + 4 * column + row;
}

ZEL_UNROLLED Slices slice(const std::uint8_t *blocks) noexcept {
  Slices x{};
#pragma GCC unroll 8
  for (std::size_t group = 0; group < 8; ++group) {
    Word bytes = 0;
#pragma GCC unroll 8
    for (std::size_t k = 0; k < 8; ++k)
      bytes |= Word{blocks[place(group, k)]} << (8 * k);
    bytes = transpose(bytes);
#pragma GCC unroll 8
    for (std::size_t j = 0; j < 8; ++j)
      x[j] |= (bytes >> (8 * j) & 0xff) << (8 * group);
  }
  return x;
}

ZEL_UNROLLED void unslice(std::uint8_t *blocks, const Slices &x) noexcept {
#pragma GCC unroll 8
  for (std::size_t group = 0; group < 8; ++group) {
    Word bytes = 0;
#pragma GCC unroll 8
    for (std::size_t j = 0; j < 8; ++j)
      bytes |= (x[j] >> (8 * group) & 0xff) << (8 * j);
    bytes = transpose(bytes);
#pragma GCC unroll 8
    for (std::size_t k = 0; k < 8; ++k)
      blocks[place(group, k)] = static_cast<std::uint8_t>(bytes >> (8 * k));
  }
}

/// One half of a schedule in slices, the same round key in all four lanes.
template <class Size>
struct Keys {
  explicit Keys(const std::uint8_t *half) noexcept {
    std::uint8_t four[kLanes * kBlockLen];
    for (std::size_t r = 0; r <= Size::kRounds; ++r) {
      for (std::size_t lane = 0; lane < kLanes; ++lane)
        std::memcpy(four + kBlockLen * lane, half + kBlockLen * r, kBlockLen);
      round[r] = slice(four);
    }
    wipe(four, sizeof four);
  }
  Keys(const Keys &) = delete;
  Keys &operator=(const Keys &) = delete;
  ~Keys() { wipe(this, sizeof *this); }

  Slices round[Size::kRounds + 1];
};

template <class Size>
void encipher(std::uint8_t *out, const std::uint8_t *in, const Keys<Size> &keys) noexcept {
  Slices x = slice(in);
  add_key(x, keys.round[0]);
  for (std::size_t r = 1; r < Size::kRounds; ++r) {
    x = mix_columns(shift_rows(sub_bytes(x)));
    add_key(x, keys.round[r]);
  }
  x = shift_rows(sub_bytes(x));
  add_key(x, keys.round[Size::kRounds]);
  unslice(out, x);
}

/// The equivalent inverse cipher, section 5.3.5.
template <class Size>
void decipher(std::uint8_t *out, const std::uint8_t *in, const Keys<Size> &keys) noexcept {
  Slices x = slice(in);
  add_key(x, keys.round[Size::kRounds]);
  for (std::size_t r = Size::kRounds - 1; r > 0; --r) {
    x = invert_mix_columns(invert_shift_rows(invert_sub_bytes(x)));
    add_key(x, keys.round[r]);
  }
  x = invert_shift_rows(invert_sub_bytes(x));
  add_key(x, keys.round[0]);
  unslice(out, x);
}

/// Four blocks at a time; the lanes that a rest leaves empty hold zero bytes.
template <class Size, void (*kWay)(std::uint8_t *, const std::uint8_t *, const Keys<Size> &)>
void blocks(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
            const Keys<Size> &keys) noexcept {
  constexpr std::size_t kStep = kLanes * kBlockLen;
  for (; count >= kLanes; count -= kLanes, in += kStep, out += kStep)
    kWay(out, in, keys);
  if (count == 0) return;
  Wiped<std::uint8_t[kStep]> rest;
  std::memset(*rest, 0, kStep);
  std::memcpy(*rest, in, count * kBlockLen);
  kWay(*rest, *rest, keys);
  std::memcpy(out, *rest, count * kBlockLen);
}

template <class Size>
void encrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
             const void *schedule) noexcept {
  const Keys<Size> keys(static_cast<const std::uint8_t *>(schedule));
  blocks<Size, encipher<Size>>(out, in, count, keys);
}

template <class Size>
void decrypt(std::uint8_t *out, const std::uint8_t *in, std::size_t count,
             const void *schedule) noexcept {
  const Keys<Size> keys(static_cast<const std::uint8_t *>(schedule) + Size::kHalf);
  blocks<Size, decipher<Size>>(out, in, count, keys);
}

template <class Size>
void encrypt_block(std::uint8_t *block, const void *schedule) noexcept {
  encrypt<Size>(block, block, 1, schedule);
}

template <class Size>
void decrypt_block(std::uint8_t *block, const void *schedule) noexcept {
  decrypt<Size>(block, block, 1, schedule);
}

template <class Size>
void serial(bulk::Chain kind, std::uint8_t *out, const std::uint8_t *in, std::size_t count,
            const void *schedule, std::uint8_t *chain) noexcept {
  const Keys<Size> keys(static_cast<const std::uint8_t *>(schedule));
  bulk::serial_blocks(kind, out, in, count, chain, kBlockLen, [&keys](std::uint8_t *block) {
    blocks<Size, encipher<Size>>(block, block, 1, keys);
  });
}

struct Unit {
  using Blank = std::array<std::uint8_t, kLanes * kBlockLen>;
  using Blocks = Wiped<Blank>;

  static std::uint32_t sub_word(std::uint32_t word) noexcept {
    Blocks bytes(Blank{});
    store_le32(bytes->data(), word);
    unslice(bytes->data(), sub_bytes(slice(bytes->data())));
    return load_le32(bytes->data());
  }

  static void invert_mix_columns(std::uint8_t *to, const std::uint8_t *from) noexcept {
    Blocks bytes(Blank{});
    std::memcpy(bytes->data(), from, kBlockLen);
    unslice(bytes->data(), aes::invert_mix_columns(slice(bytes->data())));
    std::memcpy(to, bytes->data(), kBlockLen);
  }
};

template <class Size>
constexpr bulk::Ops ops() noexcept {
  bulk::Ops result;
  result.encrypt = encrypt<Size>;
  result.decrypt = decrypt<Size>;
  result.serial = serial<Size>;
  return result;
}

#undef ZEL_UNROLLED

}  // namespace

constinit const Engine sliced128{expand<Aes128, Unit>, encrypt_block<Aes128>,
                                 decrypt_block<Aes128>};
constinit const Engine sliced256{expand<Aes256, Unit>, encrypt_block<Aes256>,
                                 decrypt_block<Aes256>};

}  // namespace zel::aes

namespace zel::bulk {

constinit const Ops rijndael128_sliced = aes::ops<aes::Aes128>();
constinit const Ops rijndael256_sliced = aes::ops<aes::Aes256>();

}  // namespace zel::bulk
