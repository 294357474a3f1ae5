// Runs every probe under valgrind, with the processor's features and without, and compares what
// memcheck reports with what it is to report.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "base/cpu.hpp"
#include "tests/ct/probe.hpp"

namespace zel::test {

void require(bool condition, const char *what) {
  if (condition) return;
  std::printf("wrong result: %s\n", what);
  std::exit(1);
}

namespace {

volatile int g_table[256];
int g_value = 5;
volatile int g_sink = 0;

// Known bad: valgrind has to see these two, or it sees nothing.
void branch_on_a_secret() {
  secret(g_value);
  if (g_value > 3) g_sink = 1;
  open(g_value);
}
void index_by_a_secret() {
  secret(g_value);
  g_sink = g_table[g_value & 255];
  open(g_value);
}
const Probe kBranch{"a branch on a secret", branch_on_a_secret, true};
const Probe kIndex{"an index by a secret", index_by_a_secret, true};

/// Valgrind's own processor has no ADX, yet it can run those instructions.
std::uint32_t features_to_force() {
  using cpu::Feature;
  const std::uint32_t seen = cpu::ask();
  if (!cpu::has(Feature::kAvx2, Feature::kBmi2)) return seen;
  return seen | static_cast<std::uint32_t>(Feature::kAdx);
}

int run_all(const char *processor) {
  int failures = 0;
  for (const Probe &probe : Probe::all()) {
    const auto before = VALGRIND_COUNT_ERRORS;
    if (probe.leaks) VALGRIND_PRINTF("%s: reports follow, as they have to\n", probe.name);
    probe.run();
    const bool leaked = VALGRIND_COUNT_ERRORS != before;
    if (leaked == probe.leaks) continue;
    ++failures;
    std::printf("%s, %s: %s\n", probe.name, processor,
                leaked ? "depends on a secret, see above" : "known to leak, and not seen");
  }
  return failures;
}

}  // namespace
}  // namespace zel::test

int main() {
  using namespace zel;
  if (RUNNING_ON_VALGRIND == 0) {
    std::puts("to be run by valgrind");
    return 1;
  }
  cpu::g_features.store(test::features_to_force());
  std::printf("features %08x\n", cpu::g_features.load());
  int failures = test::run_all("with the processor's features");
  cpu::g_features.store(cpu::kAsked);
  failures += test::run_all("portable code");
  std::printf("%zu probes, %d failures\n", test::Probe::all().size(), failures);
  return failures == 0 ? 0 : 1;
}
