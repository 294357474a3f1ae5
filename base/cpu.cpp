// CPUID and XGETBV. Intel 64 and IA-32 Architectures Software Developer's Manual, volume 2A, CPUID.
#include "base/cpu.hpp"

#include <cpuid.h>

namespace zel::cpu {

constinit std::atomic<std::uint32_t> g_features{0};

namespace {

struct Leaf {
  std::uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Leaf leaf(std::uint32_t number) noexcept {
  Leaf result;
  if (__get_cpuid_count(number, 0, &result.eax, &result.ebx, &result.ecx, &result.edx) == 0)
    return {};
  return result;
}

/// Whether the operating system saves the 256-bit registers.
bool system_saves_ymm(const Leaf &basic) noexcept {
  constexpr std::uint32_t kOsxsave = 1U << 27;
  constexpr std::uint32_t kXmmAndYmm = 6;
  if ((basic.ecx & kOsxsave) == 0) return false;
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (low & kXmmAndYmm) == kXmmAndYmm;
}

constexpr bool all(std::uint32_t word, std::uint32_t bits) noexcept {
  return (word & bits) == bits;
}

}  // namespace

std::uint32_t ask() noexcept {
  const Leaf basic = leaf(1);
  const Leaf extended = leaf(7);
  constexpr std::uint32_t kSsse3Sse41 = (1U << 9) | (1U << 19);
  constexpr std::uint32_t kPclmulAes = (1U << 1) | (1U << 25);
  constexpr std::uint32_t kAvx = 1U << 28;
  constexpr std::uint32_t kBmi1Bmi2 = (1U << 3) | (1U << 8);
  constexpr std::uint32_t kVaesVpclmul = (1U << 9) | (1U << 10);
  const bool sse = all(basic.ecx, kSsse3Sse41);
  const bool aesni = sse && all(basic.ecx, kPclmulAes);
  const bool avx2 =
      sse && all(basic.ecx, kAvx) && all(extended.ebx, 1U << 5) && system_saves_ymm(basic);

  std::uint32_t found = kAsked;
  const auto add = [&found](bool present, Feature feature) {
    if (present) found |= static_cast<std::uint32_t>(feature);
  };
  add(aesni, Feature::kAesni);
  add(avx2, Feature::kAvx2);
  add(all(extended.ebx, kBmi1Bmi2), Feature::kBmi2);
  add(all(extended.ebx, 1U << 19), Feature::kAdx);
  add(sse && all(extended.ebx, 1U << 29), Feature::kSha);
  add(aesni && avx2 && all(extended.ecx, kVaesVpclmul), Feature::kVaes);
  g_features.store(found, std::memory_order_relaxed);
  return found;
}

}  // namespace zel::cpu
