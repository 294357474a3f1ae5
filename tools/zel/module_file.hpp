// The library that is in use: its file, what the companion file says of that, and its state.
#pragma once

#include <string>

#include "tools/zel/command.hpp"

namespace zel::tool {

/// The file that the library was loaded from; empty when the system does not say.
std::string library_path();

/// A state of the module in words.
const char *state_name(int state);

std::string companion_of(const std::string &library);

/// The digest that the companion of a library file should have, as hexadecimal digits.
std::string module_digest(const std::string &library);

/// A library file beside its companion.
struct Integrity {
  std::string library;
  std::string digest;    ///< of the library file
  std::string recorded;  ///< what the companion has; empty when there is none
  std::string problem;   ///< why the library's own check fails; empty when it passes
  std::string advice;

  bool good() const noexcept { return problem.empty(); }
};

/// Runs the library's check on a file and finds out why it fails. A file that cannot be read is a
/// `Failure`.
Integrity examine(const std::string &library);

/// As --json prints it.
void fill(Json &object, const Integrity &found);

}  // namespace zel::tool
