// Watches which kinds of instructions this program executes, one step at a time.
#pragma once

#include <cstdint>

namespace zel::test {

/// Kinds of instructions, as bits of cpu::Feature; only code of the program itself is looked at,
/// since libc chooses its own paths.
class InstructionWatch {
 public:
  InstructionWatch();   ///< steps from here
  ~InstructionWatch();  ///< to here
  InstructionWatch(const InstructionWatch &) = delete;
  InstructionWatch &operator=(const InstructionWatch &) = delete;
  /// Features whose instructions were executed.
  std::uint32_t seen() const;
};

}  // namespace zel::test
