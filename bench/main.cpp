// zel_bench: this library and its peers side by side. See bench/README.md.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/table.hpp"

namespace {

constexpr char kUsage[] =
    "usage: zel_bench [FILTER] [--json FILE] [--thorough] [--benchmark_...]\n"
    "\n"
    "  FILTER        a regular expression on names group/operation/size/implementation\n"
    "  --json FILE   also write the table of ratios as JSON\n"
    "  --thorough    three times the repetitions\n"
    "\n"
    "Every flag of Google Benchmark works too, among them --benchmark_list_tests and\n"
    "--benchmark_out=FILE --benchmark_out_format=json for each single repetition.\n";

struct Options {
  std::string json;
  std::string filter;
  bool help = false;
  bool thorough = false;
  std::vector<std::string> others;
};

/// Returns false, with a line on standard error, when the arguments make no sense.
bool parse(int argc, char **argv, Options &options) {
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--json") {
      if (i + 1 == argc) {
        std::cerr << "zel_bench: --json wants a file name\n";
        return false;
      }
      options.json = argv[++i];
    } else if (argument == "--help" || argument == "-h") {
      options.help = true;
    } else if (argument == "--thorough") {
      options.thorough = true;
    } else if (argument[0] == '-') {
      options.others.push_back(argument);
    } else {
      options.filter = argument;
    }
  }
  return true;
}

/// Short repetitions in random order, so that a disturbance hits every implementation alike and
/// the best of many is what each can do. Flags that the user gives come later and win.
std::vector<std::string> flags_for(const Options &options) {
  std::vector<std::string> flags{"zel_bench", "--benchmark_enable_random_interleaving=true",
                                 "--benchmark_min_time=0.01"};
  flags.push_back(std::string("--benchmark_repetitions=") + (options.thorough ? "45" : "15"));
  if (!options.filter.empty()) flags.push_back("--benchmark_filter=" + options.filter);
  flags.insert(flags.end(), options.others.begin(), options.others.end());
  return flags;
}

}  // namespace

int main(int argc, char **argv) {
  Options options;
  if (!parse(argc, argv, options)) return 2;
  if (options.help) {
    std::cout << kUsage;
    return 0;
  }
  std::ofstream json;
  if (!options.json.empty()) {
    json.open(options.json);
    if (!json) {
      std::cerr << "zel_bench: cannot write " << options.json << '\n';
      return 3;
    }
  }

  std::vector<std::string> flags = flags_for(options);
  std::vector<char *> pointers;
  pointers.reserve(flags.size());
  for (std::string &flag : flags)
    pointers.push_back(flag.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;

  zel::bench::Table table;
  if (benchmark::RunSpecifiedBenchmarks(&table) == 0) return 2;
  table.print(std::cout);
  std::cout.flush();
  if (json.is_open()) {
    table.write_json(json);
    if (!json.flush()) {
      std::cerr << "zel_bench: cannot write " << options.json << '\n';
      return 3;
    }
  }
  // Without the destructors: objects of the peers that measurements hold may outlive the libraries
  // that they belong to.
  std::_Exit(table.failed() ? 1 : 0);
}
