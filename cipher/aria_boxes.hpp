// What the AES instructions need to know of ARIA: its S-boxes as maps around the one of AES, and
// where the instructions leave the bytes. RFC 5794, section 2.4.
#pragma once

#include "cipher/aria.hpp"
#include "cipher/aria_tables.hpp"
#include "cipher/nibble_map.hpp"

namespace zel::aria_boxes {

/// S2(x) = after(S1(x)) and X2(x) = X1(before(x)).
inline constexpr NibbleMap kAfter = nibble_map(composed(kAriaS2, kAriaX1));
inline constexpr NibbleMap kBefore = nibble_map(composed(kAriaS1, kAriaX2));
static_assert(is_map(kAfter, composed(kAriaS2, kAriaX1)) &&
              is_map(kBefore, composed(kAriaS1, kAriaX2)));

/// The register after each box, in the order of the boxes of an odd round's word.
enum Box : std::size_t { kBoxS1, kBoxS2, kBoxX1, kBoxX2, kBoxes };

/// The box that byte `position` meets.
consteval std::size_t box_of(std::size_t position, AriaRound kind) {
  return (position + (kind == AriaRound::kOdd ? 0 : 2)) % 4;
}

/// Where a box leaves the byte: AESENCLAST rotates row r of the 4 x 4 square by r to the left,
/// AESDECLAST to the right.
consteval std::uint8_t place_of(std::size_t position, std::size_t box) {
  const std::size_t row = position % 4;
  const std::size_t column = position / 4;
  const bool forward = box == kBoxS1 || box == kBoxS2;
  return static_cast<std::uint8_t>(4 * ((forward ? column - row : column + row) % 4) + row);
}

using Shuffle = std::array<std::uint8_t, 16>;
inline constexpr std::uint8_t kNothing = 0x80;

/// Shuffles that gather, from each box, the bytes that the diffusion layer adds: every sum has two
/// bytes of each box at most, so two shuffles a box do.
struct Gather {
  alignas(16) std::array<std::array<Shuffle, 2>, kBoxes> shuffles;
};

consteval Gather gather(AriaRound kind) {
  Gather result{};
  for (std::size_t to = 0; to < 16; ++to) {
    std::array<std::size_t, kBoxes> used{};
    for (const std::size_t from : kAriaDiffusion[to]) {
      const std::size_t box = box_of(from, kind);
      result.shuffles[box][used[box]++][to] = place_of(from, box);
    }
    for (std::size_t box = 0; box < kBoxes; ++box)
      for (std::size_t rest = used[box]; rest < 2; ++rest)
        result.shuffles[box][rest][to] = kNothing;
  }
  return result;
}

/// The same without diffusion: the last round.
consteval std::array<Shuffle, kBoxes> gather_last() {
  std::array<Shuffle, kBoxes> result{};
  for (std::size_t to = 0; to < 16; ++to)
    for (std::size_t box = 0; box < kBoxes; ++box)
      result[box][to] = box == box_of(to, AriaRound::kEven) ? place_of(to, box) : kNothing;
  return result;
}

inline constexpr Gather kOddGather = gather(AriaRound::kOdd);
inline constexpr Gather kEvenGather = gather(AriaRound::kEven);
alignas(16) inline constexpr std::array<Shuffle, kBoxes> kLastGather = gather_last();

/// Both rotations undone with what the other one does: after AESDECLAST, this shuffle leaves the
/// bytes as AESENCLAST would, and the other way round.
consteval Shuffle realignment() {
  Shuffle result{};
  for (std::size_t i = 0; i < 16; ++i)
    result[place_of(i, kBoxS1)] = place_of(i, kBoxX1);
  return result;
}
alignas(16) inline constexpr Shuffle kRealign = realignment();

/// The linear part of `before`, which takes a key from behind `after` to its front.
consteval gf256::Box linear_before() {
  gf256::Box box{};
  for (unsigned x = 0; x < 256; ++x)
    box[x] = static_cast<std::uint8_t>(kBefore(x) ^ kBefore(0));
  return box;
}
inline constexpr NibbleMap kKeyBefore = nibble_map(linear_before());
static_assert(is_map(kKeyBefore, linear_before()));

}  // namespace zel::aria_boxes
