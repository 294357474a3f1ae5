// Collects the best figure of every measurement and sets ours against the best peer.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace zel::bench {

/// The two best figures of one implementation, in units a second.
struct Best {
  double first = 0;
  double second = 0;
  void offer(double figure);
  /// Whether the best figure was not nearly reached a second time.
  bool lonely() const { return second < 0.95 * first; }
};

/// One row: a group, an operation and a size, with the figure of every implementation.
struct Row {
  std::string group, operation, size;
  bool bytes = false;  ///< bytes a second rather than operations a second
  std::map<std::string, Best> figures;

  /// The best of ours, and the best peer; null where there is none.
  const Best *ours() const { return best(true); }
  const Best *peer() const { return best(false); }
  bool comparable() const { return ours() != nullptr && peer() != nullptr; }
  double ratio() const { return ours()->first / peer()->first; }
  bool noisy() const { return ours()->lonely() || peer()->lonely(); }

 private:
  const Best *best(bool of_ours) const;
};

/// A reporter that shows progress on standard error and keeps the figures.
class Table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context &context) override;
  void ReportRuns(const std::vector<Run> &runs) override;

  bool failed() const { return failed_; }
  void print(std::ostream &to) const;
  void write_json(std::ostream &to) const;

 private:
  Row &row(const std::string &name, std::string &implementation);
  void show_progress(const std::string &name);
  std::vector<Row> by_group() const;

  std::vector<Row> rows_;
  bool failed_ = false;
  std::size_t done_ = 0;
  std::chrono::steady_clock::time_point shown_{};
};

}  // namespace zel::bench
