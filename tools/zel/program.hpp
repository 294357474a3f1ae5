// The command line, and the way from a run to an exit code.
#pragma once

#include "tools/zel/command.hpp"

namespace zel::tool {

/// Runs the command that the arguments name and gives the exit code.
int run_program(const Commands &commands, int argc, char **argv);

}  // namespace zel::tool
