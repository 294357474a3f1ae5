#include "bench/table.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <set>
#include <sstream>

namespace zel::bench {
namespace {

bool is_ours(const std::string &implementation) { return implementation.rfind("zel", 0) == 0; }

std::vector<std::string> split(const std::string &text, char at) {
  std::vector<std::string> pieces;
  std::istringstream stream(text);
  for (std::string piece; std::getline(stream, piece, at);)
    pieces.push_back(piece);
  return pieces;
}

double figure_of(const benchmark::BenchmarkReporter::Run &run, bool &bytes) {
  const auto in_bytes = run.counters.find("bytes_per_second");
  bytes = in_bytes != run.counters.end();
  if (bytes) return in_bytes->second.value;
  const auto in_items = run.counters.find("items_per_second");
  if (in_items != run.counters.end()) return in_items->second.value;
  return run.cpu_accumulated_time > 0
             ? static_cast<double>(run.iterations) / run.cpu_accumulated_time
             : 0;
}

std::string shown(double figure, bool bytes) {
  std::ostringstream text;
  text << std::fixed;
  if (bytes) {
    text << std::setprecision(figure < 100e6 ? 1 : 0) << figure / 1e6 << " MB/s";
  } else if (figure >= 1e6) {
    text << std::setprecision(2) << figure / 1e6 << " Mop/s";
  } else {
    text << std::setprecision(figure < 100 ? 2 : 0) << figure << " op/s";
  }
  return text.str();
}

std::string shown_ratio(double ratio) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << ratio;
  return text.str();
}

/// One group's lines, padded to columns.
void print_aligned(std::ostream &to, const std::vector<std::vector<std::string>> &lines) {
  std::vector<std::size_t> widths;
  for (const auto &line : lines) {
    widths.resize(std::max(widths.size(), line.size()));
    for (std::size_t i = 0; i < line.size(); ++i)
      widths[i] = std::max(widths[i], line[i].size());
  }
  for (const auto &line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      to << "  " << (i == 0 ? std::left : std::right) << std::setw(static_cast<int>(widths[i]))
         << line[i];
    }
    to << '\n';
  }
}

/// Geometric mean of the ratios, and how many of them are 1 or more.
void print_summary(std::ostream &to, const std::string &what, const std::vector<Row> &rows) {
  double logarithms = 0;
  std::size_t compared = 0;
  std::size_t ahead = 0;
  std::size_t noisy = 0;
  for (const Row &row : rows) {
    if (!row.comparable()) continue;
    ++compared;
    logarithms += std::log(row.ratio());
    if (row.ratio() >= 1) ++ahead;
    if (row.noisy()) ++noisy;
  }
  to << what << ": " << rows.size() << " rows, " << compared << " with a peer";
  if (compared != 0) {
    to << ", " << ahead << " at or above the best peer, geometric mean "
       << shown_ratio(std::exp(logarithms / static_cast<double>(compared)));
  }
  if (noisy != 0) to << ", " << noisy << " noisy (~)";
  to << '\n';
}

std::set<std::string> implementations(const std::vector<Row> &rows) {
  std::set<std::string> names;
  for (const Row &row : rows) {
    for (const auto &[name, best] : row.figures)
      names.insert(name);
  }
  return names;
}

void print_group(std::ostream &to, const std::vector<Row> &rows) {
  const std::set<std::string> names = implementations(rows);
  std::vector<std::string> columns;  // ours first
  std::copy_if(names.begin(), names.end(), std::back_inserter(columns), is_ours);
  std::copy_if(names.begin(), names.end(), std::back_inserter(columns),
               [](const std::string &name) { return !is_ours(name); });

  std::vector<std::vector<std::string>> lines{{"operation", "size"}};
  lines[0].insert(lines[0].end(), columns.begin(), columns.end());
  lines[0].emplace_back("ours/best peer");
  for (const Row &row : rows) {
    std::vector<std::string> line{row.operation, row.size};
    for (const std::string &column : columns) {
      const auto found = row.figures.find(column);
      line.push_back(found == row.figures.end() ? "-" : shown(found->second.first, row.bytes));
    }
    line.push_back(row.comparable() ? shown_ratio(row.ratio()) + (row.noisy() ? " ~" : "  ")
                                    : "-  ");
    lines.push_back(std::move(line));
  }
  print_aligned(to, lines);
}

}  // namespace

void Best::offer(double figure) {
  second = std::max(second, std::min(first, figure));
  first = std::max(first, figure);
}

const Best *Row::best(bool of_ours) const {
  const Best *found = nullptr;
  for (const auto &[name, figure] : figures) {
    if (is_ours(name) != of_ours || figure.first <= 0) continue;
    if (found == nullptr || figure.first > found->first) found = &figure;
  }
  return found;
}

bool Table::ReportContext(const Context & /*context*/) { return true; }

Row &Table::row(const std::string &name, std::string &implementation) {
  std::vector<std::string> pieces = split(name, '/');
  pieces.resize(std::max<std::size_t>(pieces.size(), 4), "-");
  implementation = pieces[3];
  for (Row &row : rows_) {
    if (row.group == pieces[0] && row.operation == pieces[1] && row.size == pieces[2]) return row;
  }
  Row fresh;
  fresh.group = pieces[0];
  fresh.operation = pieces[1];
  fresh.size = pieces[2];
  rows_.push_back(fresh);
  return rows_.back();
}

void Table::show_progress(const std::string &name) {
  const auto now = std::chrono::steady_clock::now();
  ++done_;
  if (now - shown_ < std::chrono::milliseconds(isatty(STDERR_FILENO) != 0 ? 200 : 10000)) return;
  shown_ = now;
  const bool terminal = isatty(STDERR_FILENO) != 0;
  std::cerr << (terminal ? "\r\033[K" : "") << "measured " << done_ << ", last " << name
            << (terminal ? "" : "\n") << std::flush;
}

void Table::ReportRuns(const std::vector<Run> &runs) {
  for (const Run &run : runs) {
    if (run.error_occurred) {
      failed_ = true;
      std::cerr << run.benchmark_name() << ": " << run.error_message << '\n';
      continue;
    }
    if (run.run_type != Run::RT_Iteration) continue;
    std::string implementation;
    const std::string name = run.run_name.function_name;
    Row &into = row(name, implementation);
    into.figures[implementation].offer(figure_of(run, into.bytes));
    show_progress(name);
  }
}

std::vector<Row> Table::by_group() const {
  // The order in which groups, operations and sizes were registered is lost to the interleaving.
  const auto size_of = [](const Row &row) { return std::strtoull(row.size.c_str(), nullptr, 10); };
  std::vector<Row> sorted = rows_;
  std::sort(sorted.begin(), sorted.end(), [&](const Row &a, const Row &b) {
    return std::tuple(a.group, a.operation, size_of(a), a.size) <
           std::tuple(b.group, b.operation, size_of(b), b.size);
  });
  return sorted;
}

void Table::print(std::ostream &to) const {
  if (isatty(STDERR_FILENO) != 0) std::cerr << "\r\033[K" << std::flush;
  const std::vector<Row> rows = by_group();
  for (auto first = rows.begin(); first != rows.end();) {
    const auto last = std::find_if(first, rows.end(),
                                   [first](const Row &row) { return row.group != first->group; });
    const std::vector<Row> group(first, last);
    to << '\n' << first->group << '\n';
    print_group(to, group);
    print_summary(to, "  " + first->group, group);
    first = last;
  }
  to << '\n';
  print_summary(to, "all", rows);
}

void Table::write_json(std::ostream &to) const {
  to << std::setprecision(10) << "[\n";
  const char *separator = "";
  for (const Row &row : by_group()) {
    to << separator << R"(  {"group": ")" << row.group << R"(", "operation": ")" << row.operation
       << R"(", "size": ")" << row.size << R"(", "unit": ")" << (row.bytes ? "B/s" : "op/s")
       << R"(", "figures": {)";
    const char *comma = "";
    for (const auto &[name, best] : row.figures) {
      to << comma << '"' << name << R"(": )" << best.first;
      comma = ", ";
    }
    to << '}';
    if (row.comparable()) {
      to << R"(, "ratio": )" << row.ratio() << R"(, "noisy": )" << (row.noisy() ? "true" : "false");
    }
    to << '}';
    separator = ",\n";
  }
  to << "\n]\n";
}

}  // namespace zel::bench
