#include "tests/support/instructions.hpp"

#include <signal.h>
#include <ucontext.h>

#include "base/cpu.hpp"

extern "C" const std::uint8_t __executable_start, etext;  // of the linker

namespace zel::test {
namespace {

constexpr std::uint32_t bit(cpu::Feature feature) { return static_cast<std::uint32_t>(feature); }

volatile std::uint32_t g_seen;

/// The feature that an encoding needs, from its prefixes, map and opcode; 0 for everything else.
/// Intel 64 and IA-32 Architectures Software Developer's Manual, volume 2A, chapter 2.
std::uint32_t feature_of(const std::uint8_t *code) {
  bool wide = false;
  bool vex = false;
  unsigned map = 0;
  unsigned prefix = 0;
  while (*code == 0x66 || *code == 0xf2 || *code == 0xf3)
    prefix = *code++;
  if (*code == 0xc5) {
    vex = true;
    wide = (code[1] & 4) != 0;
    map = 1;
    code += 2;
  } else if (*code == 0xc4) {
    vex = true;
    wide = (code[2] & 4) != 0;
    map = code[1] & 31;
    constexpr unsigned kPrefixes[] = {0, 0x66, 0xf3, 0xf2};
    prefix = kPrefixes[code[2] & 3];
    code += 3;
  } else {
    if ((*code & 0xf0) == 0x40) ++code;  // REX
    if (*code++ != 0x0f) return 0;
    map = 1;
    if (*code == 0x38) map = 2;
    if (*code == 0x3a) map = 3;
    if (map != 1) ++code;
  }
  const unsigned opcode = *code;
  const bool aes = (map == 2 && opcode >= 0xdb && opcode <= 0xdf && prefix == 0x66) ||
                   (map == 3 && (opcode == 0x44 || opcode == 0xdf));
  if (aes) return vex && wide ? bit(cpu::Feature::kVaes) : bit(cpu::Feature::kAesni);
  if (!vex && map == 2 && opcode >= 0xc8 && opcode <= 0xcd) return bit(cpu::Feature::kSha);
  if (!vex && map == 3 && opcode == 0xcc) return bit(cpu::Feature::kSha);
  if (!vex && map == 2 && opcode == 0xf6 && prefix != 0xf2) return bit(cpu::Feature::kAdx);
  const bool general = (map == 2 && (opcode == 0xf2 || opcode == 0xf3 || opcode == 0xf5 ||
                                     opcode == 0xf6 || opcode == 0xf7)) ||
                       (map == 3 && opcode == 0xf0);
  if (vex && general) return bit(cpu::Feature::kBmi2);
  return vex && wide ? bit(cpu::Feature::kAvx2) : 0;
}

void on_step(int /*signal*/, siginfo_t * /*info*/, void *context) {
  const auto rip = static_cast<std::uintptr_t>(
      static_cast<const ucontext_t *>(context)->uc_mcontext.gregs[REG_RIP]);
  const auto *code = reinterpret_cast<const std::uint8_t *>(rip);
  if (code >= &__executable_start && code < &etext) g_seen = g_seen | feature_of(code);
}

/// Sets or clears the trap flag, below the red zone.
void step(bool on) {
  constexpr std::uint64_t kTrapFlag = 0x100;
  const std::uint64_t keep = ~kTrapFlag;
  const std::uint64_t set = on ? kTrapFlag : 0;
  __asm__ volatile(
      "lea -128(%%rsp), %%rsp\n\t"
      "pushfq\n\t"
      "andq %0, (%%rsp)\n\t"
      "orq %1, (%%rsp)\n\t"
      "popfq\n\t"
      "lea 128(%%rsp), %%rsp"
      :
      : "r"(keep), "r"(set)
      : "memory", "cc");
}

struct sigaction g_before;

}  // namespace

InstructionWatch::InstructionWatch() {
  struct sigaction action {};
  action.sa_sigaction = on_step;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGTRAP, &action, &g_before);
  g_seen = 0;
  step(true);
}

InstructionWatch::~InstructionWatch() {
  step(false);
  sigaction(SIGTRAP, &g_before, nullptr);
}

std::uint32_t InstructionWatch::seen() const { return g_seen; }

}  // namespace zel::test
