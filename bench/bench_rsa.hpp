// What the files bench_rsa*.cpp share. Keys are made when a measurement first runs, and never
// freed: measurements live as long as the program.
#pragma once

#include <cstdint>
#include <string>

#include "bench/bench.hpp"

namespace zel::bench {

inline constexpr char kRsaGroup[] = "rsa";
inline constexpr std::uint32_t kRsaBits[] = {2048, 3072, 4096};
/// Key pairs in one mean: how long one takes is chance.
inline constexpr std::int64_t kRsaKeys = 20;

inline Name rsa_name(const char *operation, std::uint32_t bits, const char *implementation) {
  return {kRsaGroup, operation, std::to_string(bits), implementation};
}

}  // namespace zel::bench
