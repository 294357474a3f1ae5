// What the question costs that every service asks first.
#include "bench/bench.hpp"
#include "zel_cc.h"

namespace zel::bench {
namespace {

const Registration kState([] {
  operations({"state", "GetState", "-", "zel"},
             [] { benchmark::DoNotOptimize(KZEL_CC_GetState()); });
});

}  // namespace
}  // namespace zel::bench
