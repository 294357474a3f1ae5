// Runs a test on a processor that pretends to have less than this one has.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::test {

/// While it lives, the library sees only the features in `mask` (bits of cpu::Feature).
class FeatureMask {
 public:
  explicit FeatureMask(std::uint32_t mask);
  ~FeatureMask();
  FeatureMask(const FeatureMask &) = delete;
  FeatureMask &operator=(const FeatureMask &) = delete;
};

struct FeatureSet {
  std::string name;
  std::uint32_t mask;
};

/// Every reduced processor worth a run here: everything, each single feature taken away, nothing.
std::vector<FeatureSet> feature_sets();

}  // namespace zel::test
