// The S-boxes of DES as circuits of two-input gates, for bit slices. Found by a randomised search
// over decompositions of the tables of FIPS 46-3; checked against those tables at compile time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "cipher/des_tables.hpp"

namespace zel::des_circuits {

enum Operation : std::uint8_t { kXor, kAnd, kOr, kAndNot, kNot };

/// Operands below 6 are the input bits, the first bit of the standard first; 6 is the first gate.
struct Gate {
  Operation operation;
  std::uint8_t a, b;
};

template <std::size_t kGates>
struct Circuit {
  static constexpr std::size_t kSize = kGates;
  std::array<Gate, kGates> gates;
  std::array<std::uint8_t, 4> outputs;  ///< the first bit of the standard first
};

inline constexpr Circuit<66> kS1 = {
    {{{kNot, 0, 0},      {kOr, 6, 2},       {kXor, 7, 5},      {kAndNot, 2, 0},   {kOr, 9, 1},
      {kXor, 10, 8},     {kAndNot, 6, 2},   {kOr, 12, 5},      {kAndNot, 0, 8},   {kOr, 14, 2},
      {kAnd, 1, 15},     {kXor, 13, 16},    {kAndNot, 3, 17},  {kXor, 11, 18},    {kAnd, 5, 1},
      {kOr, 20, 7},      {kAndNot, 10, 12}, {kXor, 22, 5},     {kAnd, 3, 23},     {kXor, 21, 24},
      {kAnd, 4, 25},     {kXor, 19, 26},    {kOr, 27, 0},      {kXor, 13, 8},     {kAnd, 1, 29},
      {kXor, 28, 30},    {kAndNot, 19, 23}, {kAndNot, 3, 32},  {kXor, 31, 33},    {kNot, 14, 0},
      {kAnd, 1, 21},     {kXor, 35, 36},    {kAndNot, 10, 8},  {kXor, 38, 31},    {kOr, 39, 3},
      {kXor, 40, 37},    {kAnd, 4, 41},     {kXor, 34, 42},    {kAndNot, 17, 37}, {kXor, 44, 0},
      {kAndNot, 45, 11}, {kXor, 46, 1},     {kOr, 47, 3},      {kXor, 48, 45},    {kOr, 34, 27},
      {kXor, 50, 46},    {kXor, 17, 15},    {kAndNot, 52, 37}, {kAndNot, 53, 3},  {kXor, 54, 51},
      {kAnd, 4, 55},     {kXor, 49, 56},    {kXor, 37, 30},    {kXor, 58, 49},    {kXor, 32, 16},
      {kAndNot, 60, 9},  {kAndNot, 61, 3},  {kXor, 59, 62},    {kOr, 22, 20},     {kXor, 64, 58},
      {kXor, 60, 10},    {kAndNot, 50, 66}, {kAndNot, 3, 67},  {kXor, 65, 68},    {kAndNot, 69, 4},
      {kXor, 70, 63}}},
    {27, 43, 71, 57}};
inline constexpr Circuit<61> kS2 = {
    {{{kAndNot, 1, 2}, {kXor, 6, 0},      {kNot, 1, 0},     {kAndNot, 8, 3},  {kXor, 7, 9},
      {kXor, 2, 1},    {kAndNot, 11, 7},  {kAnd, 3, 1},     {kXor, 12, 13},   {kAndNot, 14, 4},
      {kXor, 10, 15},  {kOr, 9, 7},       {kXor, 17, 11},   {kOr, 16, 2},     {kXor, 19, 8},
      {kXor, 18, 6},   {kAndNot, 21, 3},  {kXor, 22, 20},   {kXor, 23, 18},   {kAnd, 24, 4},
      {kXor, 23, 25},  {kAndNot, 5, 26},  {kXor, 16, 27},   {kOr, 11, 3},     {kXor, 29, 10},
      {kAndNot, 3, 2}, {kXor, 31, 5},     {kAndNot, 32, 4}, {kXor, 30, 33},   {kXor, 13, 2},
      {kOr, 12, 2},    {kXor, 36, 22},    {kAnd, 4, 37},    {kXor, 35, 38},   {kAndNot, 39, 5},
      {kXor, 34, 40},  {kAndNot, 7, 36},  {kXor, 42, 14},   {kXor, 10, 2},    {kXor, 44, 12},
      {kAnd, 4, 45},   {kXor, 43, 46},    {kOr, 36, 8},     {kAndNot, 7, 44}, {kAnd, 4, 49},
      {kXor, 48, 50},  {kAndNot, 51, 5},  {kXor, 52, 47},   {kOr, 22, 20},    {kXor, 54, 31},
      {kXor, 43, 34},  {kAndNot, 27, 56}, {kOr, 57, 4},     {kXor, 58, 55},   {kAndNot, 7, 34},
      {kXor, 60, 36},  {kAndNot, 2, 30},  {kAnd, 4, 62},    {kXor, 61, 63},   {kAndNot, 64, 5},
      {kXor, 65, 59}}},
    {53, 41, 66, 28}};
inline constexpr Circuit<61> kS3 = {
    {{{kXor, 5, 1},      {kXor, 6, 4},     {kAnd, 6, 4},      {kAndNot, 1, 8},   {kXor, 7, 9},
      {kOr, 10, 3},      {kXor, 11, 7},    {kXor, 4, 3},      {kAndNot, 10, 13}, {kAndNot, 0, 14},
      {kXor, 12, 15},    {kXor, 13, 5},    {kNot, 14, 0},     {kXor, 14, 6},     {kOr, 19, 3},
      {kXor, 20, 18},    {kOr, 21, 0},     {kXor, 22, 17},    {kXor, 23, 16},    {kAnd, 24, 2},
      {kXor, 23, 25},    {kOr, 4, 3},      {kXor, 27, 7},     {kAndNot, 16, 5},  {kXor, 29, 27},
      {kAnd, 0, 30},     {kXor, 28, 31},   {kAndNot, 5, 13},  {kAndNot, 9, 33},  {kXor, 34, 2},
      {kXor, 35, 4},     {kAndNot, 36, 0}, {kXor, 34, 37},    {kAndNot, 2, 38},  {kXor, 32, 39},
      {kAndNot, 19, 9},  {kAnd, 3, 41},    {kXor, 7, 42},     {kAndNot, 2, 0},   {kXor, 44, 43},
      {kAndNot, 4, 33},  {kXor, 46, 0},    {kAnd, 36, 12},    {kAndNot, 48, 0},  {kXor, 47, 49},
      {kAndNot, 50, 2},  {kXor, 51, 45},   {kAndNot, 12, 21}, {kXor, 53, 30},    {kAnd, 13, 7},
      {kOr, 55, 48},     {kAndNot, 56, 0}, {kXor, 57, 54},    {kAnd, 23, 11},    {kXor, 59, 24},
      {kAndNot, 10, 46}, {kXor, 61, 32},   {kAnd, 0, 62},     {kXor, 60, 63},    {kOr, 64, 2},
      {kXor, 65, 58}}},
    {26, 52, 66, 40}};
inline constexpr Circuit<44> kS4 = {
    {{{kNot, 2, 0},      {kAndNot, 3, 4},  {kXor, 6, 7},     {kOr, 3, 2},      {kAndNot, 4, 9},
      {kAndNot, 0, 10},  {kXor, 8, 11},    {kAndNot, 2, 4},  {kAndNot, 3, 13}, {kXor, 10, 14},
      {kAndNot, 15, 0},  {kXor, 9, 16},    {kAndNot, 17, 1}, {kXor, 18, 12},   {kAnd, 3, 2},
      {kOr, 20, 13},     {kAndNot, 14, 0}, {kXor, 22, 21},   {kAnd, 17, 8},    {kOr, 24, 1},
      {kXor, 25, 23},    {kAndNot, 26, 5}, {kXor, 27, 19},   {kOr, 24, 11},    {kXor, 29, 21},
      {kXor, 24, 7},     {kOr, 31, 19},    {kAndNot, 32, 1}, {kXor, 33, 30},   {kOr, 20, 7},
      {kAndNot, 32, 35}, {kXor, 35, 12},   {kAndNot, 34, 0}, {kXor, 38, 37},   {kOr, 39, 1},
      {kXor, 40, 36},    {kAnd, 5, 41},    {kXor, 34, 42},   {kNot, 41, 0},    {kAndNot, 44, 5},
      {kXor, 45, 34},    {kNot, 19, 0},    {kAndNot, 5, 26}, {kXor, 47, 48}}},
    {49, 28, 43, 46}};
inline constexpr Circuit<67> kS5 = {
    {{{kAnd, 5, 2},     {kOr, 6, 0},      {kXor, 5, 2},      {kAndNot, 7, 8},  {kAnd, 4, 9},
      {kXor, 7, 10},    {kXor, 9, 2},     {kAnd, 4, 12},     {kXor, 3, 13},    {kAnd, 3, 14},
      {kXor, 11, 15},   {kNot, 9, 0},     {kAndNot, 8, 0},   {kAndNot, 4, 18}, {kXor, 17, 19},
      {kNot, 5, 0},     {kOr, 12, 0},     {kOr, 22, 4},      {kXor, 23, 21},   {kAnd, 3, 24},
      {kXor, 20, 25},   {kXor, 26, 16},   {kAnd, 27, 1},     {kXor, 26, 28},   {kXor, 22, 6},
      {kOr, 26, 18},    {kAnd, 4, 31},    {kXor, 30, 32},    {kAndNot, 21, 0}, {kXor, 34, 20},
      {kOr, 35, 3},     {kXor, 36, 33},   {kAndNot, 24, 37}, {kXor, 38, 19},   {kXor, 30, 17},
      {kXor, 19, 5},    {kAnd, 4, 41},    {kXor, 40, 42},    {kOr, 43, 3},     {kXor, 44, 39},
      {kAndNot, 45, 1}, {kXor, 46, 37},   {kAnd, 30, 4},     {kXor, 48, 35},   {kAndNot, 5, 48},
      {kXor, 50, 43},   {kAndNot, 3, 51}, {kXor, 49, 52},    {kXor, 31, 23},   {kXor, 54, 48},
      {kAndNot, 5, 31}, {kOr, 56, 55},    {kOr, 57, 3},      {kXor, 58, 55},   {kAndNot, 1, 59},
      {kXor, 53, 60},   {kXor, 47, 6},    {kXor, 62, 35},    {kAnd, 43, 39},   {kXor, 64, 30},
      {kAndNot, 65, 3}, {kXor, 63, 66},   {kXor, 17, 0},     {kAndNot, 68, 3}, {kXor, 46, 69},
      {kOr, 70, 1},     {kXor, 71, 67}}},
    {61, 72, 29, 47}};
inline constexpr Circuit<61> kS6 = {
    {{{kXor, 3, 0},     {kAndNot, 2, 6},   {kNot, 2, 0},      {kAndNot, 8, 1},  {kXor, 9, 7},
      {kAndNot, 6, 2},  {kAndNot, 4, 11},  {kXor, 10, 12},    {kAndNot, 10, 0}, {kXor, 14, 11},
      {kAndNot, 6, 14}, {kXor, 16, 8},     {kAndNot, 17, 1},  {kXor, 18, 15},   {kAndNot, 3, 0},
      {kOr, 20, 19},    {kAndNot, 4, 21},  {kXor, 19, 22},    {kAnd, 5, 23},    {kXor, 13, 24},
      {kAndNot, 14, 2}, {kXor, 26, 3},     {kAndNot, 1, 17},  {kXor, 27, 28},   {kXor, 19, 12},
      {kOr, 30, 20},    {kAnd, 4, 31},     {kXor, 29, 32},    {kAndNot, 0, 11}, {kAnd, 34, 25},
      {kAnd, 20, 1},    {kAnd, 4, 36},     {kXor, 35, 37},    {kAndNot, 5, 38}, {kXor, 33, 39},
      {kAnd, 21, 18},   {kXor, 41, 28},    {kAndNot, 33, 20}, {kXor, 43, 9},    {kAndNot, 4, 44},
      {kXor, 42, 45},   {kAndNot, 0, 2},   {kXor, 30, 17},    {kXor, 48, 33},   {kAnd, 4, 49},
      {kXor, 47, 50},   {kAndNot, 5, 51},  {kXor, 46, 52},    {kOr, 44, 6},     {kXor, 54, 48},
      {kXor, 29, 1},    {kOr, 56, 6},      {kAndNot, 57, 4},  {kXor, 58, 55},   {kAndNot, 16, 1},
      {kOr, 60, 34},    {kAndNot, 20, 40}, {kAnd, 4, 62},     {kXor, 61, 63},   {kAnd, 5, 64},
      {kXor, 59, 65}}},
    {25, 40, 53, 66}};
inline constexpr Circuit<64> kS7 = {
    {{{kXor, 4, 0},      {kAndNot, 5, 2},  {kXor, 7, 6},      {kOr, 4, 0},      {kAndNot, 7, 9},
      {kAndNot, 3, 10},  {kXor, 8, 11},    {kAndNot, 8, 0},   {kOr, 6, 3},      {kXor, 14, 13},
      {kAnd, 1, 15},     {kXor, 12, 16},   {kAndNot, 3, 4},   {kOr, 18, 2},     {kXor, 15, 2},
      {kAndNot, 1, 20},  {kXor, 19, 21},   {kAndNot, 22, 5},  {kXor, 23, 17},   {kAnd, 19, 0},
      {kXor, 25, 21},    {kOr, 9, 3},      {kXor, 27, 26},    {kOr, 2, 0},      {kXor, 29, 20},
      {kNot, 26, 0},     {kAndNot, 31, 3}, {kXor, 32, 30},    {kOr, 33, 1},     {kXor, 34, 28},
      {kAndNot, 19, 17}, {kAndNot, 3, 36}, {kXor, 19, 37},    {kAndNot, 18, 2}, {kXor, 39, 32},
      {kAndNot, 40, 1},  {kXor, 38, 41},   {kAnd, 5, 42},     {kXor, 35, 43},   {kAndNot, 17, 39},
      {kXor, 45, 30},    {kAndNot, 2, 11}, {kOr, 47, 33},     {kOr, 48, 1},     {kXor, 49, 46},
      {kNot, 23, 0},     {kXor, 20, 9},    {kAndNot, 24, 52}, {kOr, 53, 1},     {kXor, 54, 51},
      {kOr, 55, 5},      {kXor, 56, 50},   {kAndNot, 4, 17},  {kXor, 58, 52},   {kAndNot, 6, 46},
      {kOr, 60, 1},      {kXor, 61, 59},   {kAndNot, 4, 36},  {kXor, 48, 4},    {kAnd, 64, 15},
      {kAndNot, 65, 1},  {kXor, 63, 66},   {kAndNot, 5, 67},  {kXor, 62, 68}}},
    {57, 44, 69, 24}};
inline constexpr Circuit<61> kS8 = {
    {{{kXor, 2, 0},     {kAndNot, 1, 3},   {kXor, 6, 7},     {kAnd, 7, 0},      {kNot, 3, 0},
      {kAndNot, 0, 2},  {kXor, 10, 11},    {kOr, 12, 1},     {kXor, 13, 9},     {kAndNot, 14, 4},
      {kXor, 15, 8},    {kOr, 12, 3},      {kXor, 17, 2},    {kAndNot, 18, 1},  {kXor, 19, 3},
      {kOr, 8, 3},      {kXor, 21, 13},    {kAndNot, 22, 4}, {kXor, 20, 23},    {kAnd, 5, 24},
      {kXor, 16, 25},   {kNot, 16, 0},     {kXor, 12, 9},    {kOr, 10, 2},      {kAndNot, 29, 0},
      {kOr, 30, 1},     {kXor, 31, 28},    {kAnd, 31, 12},   {kXor, 33, 1},     {kOr, 34, 4},
      {kXor, 35, 32},   {kAndNot, 36, 5},  {kXor, 37, 27},   {kAndNot, 35, 24}, {kXor, 39, 5},
      {kOr, 4, 2},      {kAnd, 1, 41},     {kXor, 40, 42},   {kXor, 41, 8},     {kAndNot, 44, 5},
      {kXor, 15, 45},   {kAndNot, 5, 18},  {kXor, 47, 23},   {kOr, 48, 1},      {kXor, 49, 46},
      {kAndNot, 0, 50}, {kXor, 43, 51},    {kAndNot, 4, 12}, {kXor, 53, 41},    {kOr, 45, 3},
      {kOr, 55, 16},    {kAnd, 1, 56},     {kXor, 54, 57},   {kOr, 26, 4},      {kXor, 59, 5},
      {kXor, 37, 4},    {kAndNot, 59, 61}, {kAnd, 1, 62},    {kXor, 60, 63},    {kAnd, 0, 64},
      {kXor, 58, 65}}},
    {38, 52, 66, 26}};

/// Whether a circuit gives what a table says.
template <std::size_t kGates>
consteval bool agrees(const Circuit<kGates> &circuit, const std::uint8_t (&table)[64]) {
  for (unsigned in = 0; in < 64; ++in) {
    std::array<bool, 6 + kGates> wires{};
    for (unsigned i = 0; i < 6; ++i)
      wires[i] = (in >> (5 - i) & 1) != 0;
    for (std::size_t i = 0; i < kGates; ++i) {
      const Gate gate = circuit.gates[i];
      const bool a = wires[gate.a];
      const bool b = wires[gate.b];
      const bool values[] = {a != b, a && b, a || b, a && !b, !a};
      wires[6 + i] = values[gate.operation];
    }
    unsigned out = 0;
    for (const std::uint8_t wire : circuit.outputs)
      out = out << 1 | (wires[wire] ? 1U : 0U);
    if (out != table[16 * ((in >> 5) * 2 + (in & 1)) + (in >> 1 & 15)]) return false;
  }
  return true;
}
static_assert(agrees(kS1, des_tables::kS[0]));
static_assert(agrees(kS2, des_tables::kS[1]));
static_assert(agrees(kS3, des_tables::kS[2]));
static_assert(agrees(kS4, des_tables::kS[3]));
static_assert(agrees(kS5, des_tables::kS[4]));
static_assert(agrees(kS6, des_tables::kS[5]));
static_assert(agrees(kS7, des_tables::kS[6]));
static_assert(agrees(kS8, des_tables::kS[7]));

}  // namespace zel::des_circuits
