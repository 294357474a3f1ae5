// What the files bench_*.cpp share: how a measurement is named and registered.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zel::bench {

/// Runs a function while the program starts: each file registers its measurements this way.
struct Registration {
  explicit Registration(void (*add)()) { add(); }
};

/// One row of the table and one implementation of it. Implementations whose name begins with "zel"
/// are ours, every other one is a peer.
struct Name {
  std::string group, operation, size, implementation;
  std::string joined() const { return group + '/' + operation + '/' + size + '/' + implementation; }
};

/// Registers a measurement in bytes a second: each call of `body` processes `bytes` bytes.
template <class Body>
void throughput(const Name &name, std::size_t bytes, Body body) {
  benchmark::RegisterBenchmark(
      name.joined().c_str(), [body = std::move(body), bytes](benchmark::State &state) mutable {
        for ([[maybe_unused]] auto step : state) {
          body();
          benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
      });
}

/// Registers a measurement in operations a second: each call of `body` is one.
template <class Body>
void operations(const Name &name, Body body) {
  benchmark::RegisterBenchmark(name.joined().c_str(),
                               [body = std::move(body)](benchmark::State &state) mutable {
                                 for ([[maybe_unused]] auto step : state) {
                                   body();
                                   benchmark::ClobberMemory();
                                 }
                                 state.SetItemsProcessed(state.iterations());
                               });
}

/// Registers the mean over `count` calls, for what takes a time that is chance.
template <class Body>
void mean(const Name &name, std::int64_t count, Body body) {
  benchmark::RegisterBenchmark(name.joined().c_str(),
                               [body = std::move(body)](benchmark::State &state) mutable {
                                 for ([[maybe_unused]] auto step : state)
                                   body();
                                 state.SetItemsProcessed(state.iterations());
                               })
      ->Repetitions(1)
      ->Iterations(count);
}

/// Bytes to work on: the same for every implementation, neither zero nor random.
inline std::vector<std::uint8_t> message(std::size_t len) {
  std::vector<std::uint8_t> bytes(len);
  std::uint32_t word = 0x12345678;
  for (std::uint8_t &byte : bytes) {
    word = word * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(word >> 24);
  }
  return bytes;
}

}  // namespace zel::bench
