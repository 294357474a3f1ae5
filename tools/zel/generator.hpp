// Random bytes from the approved generator, with its tests in force.
#pragma once

#include <cstdint>
#include <span>

#include "base/wipe.hpp"
#include "zel_cc/rng.h"

namespace zel::tool {

/// A `Failure` unless `rand` is the kernel's generator in this process.
void require_strong_rand();

/// Makes sure that what is about to be generated cannot be guessed: the collector reports its full
/// entropy count, and `rand` is the kernel's generator. Otherwise a `Failure`.
void require_entropy();

/// One Hash_DRBG with SHA-256 at strength 256. It is seeded from the whole entropy of the
/// collector, again every 64 MiB, and only when the collector reports its full entropy count.
/// Whatever is wrong ends as a `Failure` with the exit code for entropy, before a byte of that
/// request is handed out.
class Generator {
 public:
  Generator();
  Generator(const Generator &) = delete;
  Generator &operator=(const Generator &) = delete;

  void fill(std::span<std::uint8_t> bytes);

 private:
  /// The most that one request gives: NIST SP 800-90A allows 2^19 bits.
  static constexpr std::size_t kRequest = std::size_t{1} << 16;
  static constexpr std::uint32_t kReseedAfter = 1024;

  struct Block {
    std::uint8_t bytes[kRequest];
  };

  void reseed();
  void request();

  Wiped<HASHDRBG_CONTEXT> context_;
  Wiped<Block> previous_;
  Wiped<Block> next_;
  std::uint32_t requests_ = 0;
};

}  // namespace zel::tool
