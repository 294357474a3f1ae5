// Calls every exported function in every module state, from the table in tests/gates/.
#include <gtest/gtest.h>

#include "tests/gates/gates.hpp"

namespace zel::test {
namespace {

TEST(Gates, EveryExportedFunctionHasARow) {
  std::set<std::string> rows;
  for (const Gate &gate : all_gates())
    rows.insert(gate.name);
  const std::set<std::string> functions = exported_functions();
  EXPECT_GE(functions.size(), 9U) << "could not read cmake/exports.map";
  for (const std::string &name : functions)
    EXPECT_TRUE(rows.contains(name)) << name << " has no row in tests/gates/";
  for (const std::string &name : rows)
    EXPECT_TRUE(functions.contains(name)) << name << " has a row but is not exported";
}

/// One test a function, with all of its rows.
class FunctionGates : public testing::TestWithParam<std::string> {};

TEST_P(FunctionGates, HoldInEveryState) {
  for (const Gate &gate : all_gates()) {
    if (gate.name != GetParam()) continue;
    for (std::size_t i = 0; i < kStates.size(); ++i) {
      const auto in_state = [&] {
        const auto call = gate.prepare();
        KZEL_CC_SetState(kStates[i]);
        return complaint(gate.answers[i], call());
      };
      EXPECT_EQ(in_own_process(in_state), "") << gate.name << " in state " << kStates[i];
    }
  }
}

std::vector<std::string> names() {
  std::set<std::string> sorted;
  for (const Gate &gate : all_gates())
    sorted.insert(gate.name);
  return {sorted.begin(), sorted.end()};
}

INSTANTIATE_TEST_SUITE_P(Table, FunctionGates, testing::ValuesIn(names()),
                         [](const auto &one) { return one.param; });

}  // namespace
}  // namespace zel::test
