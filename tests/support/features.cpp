#include "tests/support/features.hpp"

#include "base/cpu.hpp"

namespace zel::test {

FeatureMask::FeatureMask(std::uint32_t mask) {
  const std::uint32_t real = cpu::ask();
  cpu::g_features.store(real & (mask | cpu::kAsked));
}

FeatureMask::~FeatureMask() { cpu::ask(); }

std::vector<FeatureSet> feature_sets() {
  using cpu::Feature;
  const std::uint32_t real = cpu::ask() & ~cpu::kAsked;
  std::vector<FeatureSet> sets{{"everything", real}};
  const std::pair<const char *, Feature> named[] = {
      {"without_aesni", Feature::kAesni}, {"without_avx2", Feature::kAvx2},
      {"without_bmi2", Feature::kBmi2},   {"without_adx", Feature::kAdx},
      {"without_sha", Feature::kSha},     {"without_vaes", Feature::kVaes}};
  for (const auto &[name, feature] : named) {
    const auto bit = static_cast<std::uint32_t>(feature);
    if ((real & bit) != 0) sets.push_back({name, real & ~bit});
  }
  sets.push_back({"nothing", 0});
  return sets;
}

}  // namespace zel::test
