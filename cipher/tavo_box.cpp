// The table sBox of tavo and tavoold: inversion in GF(2^16), then an affine map. docs/tavo.md.
#include "cipher/tavo_tables.hpp"

namespace zel::tavo_tables {
namespace {

constexpr std::uint32_t kPolynomial = 0x1100b;

/// x -> the sum of x turned left by each i that is a bit of the first constant, in two steps.
struct Linear {
  std::uint16_t low[256];
  std::uint16_t high[256];
};

consteval Linear make_linear() {
  const std::uint32_t row = roots<kBoxConstants>(0)[0] >> 16;
  Linear map{};
  for (unsigned bit = 0; bit < 8; ++bit)
    for (unsigned x = 0; x < 256; ++x) {
      if ((x >> bit & 1) == 0) continue;
      map.low[x] ^= std::rotl(static_cast<std::uint16_t>(row), static_cast<int>(bit));
      map.high[x] ^= std::rotl(static_cast<std::uint16_t>(row), static_cast<int>(bit + 8));
    }
  return map;
}

/// The powers of the generator x: the inverse of power i is power 65535 - i.
struct Powers {
  std::uint16_t of[65536];
};

consteval Powers make_powers() {
  Powers powers{};
  std::uint32_t power = 1;
  for (std::uint32_t i = 0; i < 65536; ++i) {
    powers.of[i] = static_cast<std::uint16_t>(power);
    power = power << 1 ^ (power >> 15) * kPolynomial;
  }
  return powers;
}
constexpr Powers kPowers = make_powers();
static_assert(kPowers.of[65535] == 1 && kPowers.of[65535 / 3] != 1 && kPowers.of[65535 / 5] != 1 &&
              kPowers.of[65535 / 17] != 1 && kPowers.of[65535 / 257] != 1);

consteval Box make_box() {
  const Linear map = make_linear();
  const std::uint32_t constant = roots<kBoxConstants>(0)[1] >> 16;
  Box box{};
  std::uint16_t *const image = box.data();
  image[0] = static_cast<std::uint16_t>(constant);
  for (std::uint32_t i = 0; i < 65535; ++i) {
    const std::uint32_t inverse = kPowers.of[65535 - i];
    image[kPowers.of[i]] =
        static_cast<std::uint16_t>(map.low[inverse & 255] ^ map.high[inverse >> 8] ^ constant);
  }
  return box;
}

}  // namespace

constinit const Box kBox = make_box();

}  // namespace zel::tavo_tables
