// What the processor can do, asked on first use and remembered.
#pragma once

#include <atomic>
#include <cstdint>

namespace zel::cpu {

/// Groups of instructions as the fast paths need them; each stands for a ZEL_ISA_ attribute.
enum class Feature : std::uint32_t {
  kAesni = 1U << 0,  ///< AES, PCLMULQDQ, SSSE3, SSE4.1
  kAvx2 = 1U << 1,   ///< AVX2, and the system saves its registers
  kBmi2 = 1U << 2,   ///< BMI1 and BMI2 (RORX, MULX)
  kAdx = 1U << 3,    ///< ADCX and ADOX
  kSha = 1U << 4,    ///< SHA-1 and SHA-256 instructions, SSSE3, SSE4.1
  kVaes = 1U << 5,   ///< VAES and VPCLMULQDQ on 256-bit registers
};

/// The remembered answer; 0 until the first question. Tests store a reduced set here.
extern std::atomic<std::uint32_t> g_features;

/// Marks the remembered word as an answer.
inline constexpr std::uint32_t kAsked = 1U << 31;

/// Asks the processor and remembers. Threads that race here store the same word.
std::uint32_t ask() noexcept;

/// Whether all features of a set of bits are there.
inline bool has_all(std::uint32_t mask) noexcept {
  std::uint32_t known = g_features.load(std::memory_order_relaxed);
  if ((known & kAsked) == 0) known = ask();
  return (known & mask) == mask;
}

template <class... Features>
inline bool has(Features... wanted) noexcept {
  return has_all((... | static_cast<std::uint32_t>(wanted)));
}

}  // namespace zel::cpu
