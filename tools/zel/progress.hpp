// How far a long task is: a bar for people, events for programs.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace zel::tool {

/// Meaning of --progress.
enum class ProgressMode {
  kAuto,    ///< a bar, on a terminal and for tasks of more than half a second
  kAlways,  ///< a bar from the start, wherever standard error goes
  kNever,
  kJson,  ///< one event a line
};

/// What is counted.
enum class Unit { kBytes, kPrimes, kKeys };

/// One moment of a task.
struct Moment {
  std::string task;
  Unit unit = Unit::kBytes;
  std::uint64_t done = 0;
  std::optional<std::uint64_t> total;
  double seconds = 0;
  double rate = 0;  ///< per second, over the last moments; 0 when unknown
};

/// "hash  62% [######----] 1.2/1.9 GiB  410 MiB/s  ETA 2 s", cut to `columns`.
std::string bar_line(const Moment &moment, unsigned columns);

/// Shows itself from a thread of its own while it lives; counting costs one addition.
class Progress {
 public:
  Progress(ProgressMode mode, std::string task, std::optional<std::uint64_t> total,
           Unit unit = Unit::kBytes);
  /// Ends as a failure unless `finish` was called.
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void add(std::uint64_t amount) noexcept { done_.fetch_add(amount, std::memory_order_relaxed); }
  /// What was done until now: "1.2 GiB in 0.8 s, 1.5 GiB/s".
  std::string summary() const;
  /// Ends as a success.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;

  void run();
  void show(const char *event);
  Moment now();
  void end(bool success);

  const ProgressMode mode_;
  const std::string task_;
  const std::optional<std::uint64_t> total_;
  const Unit unit_;
  const Clock::time_point start_ = Clock::now();
  std::atomic<std::uint64_t> done_{0};

  Clock::time_point rate_time_ = start_;
  std::uint64_t rate_done_ = 0;
  double rate_ = 0;

  std::mutex mutex_;
  std::condition_variable wake_;
  bool ending_ = false;
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace zel::tool
