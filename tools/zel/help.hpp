// The text that --help prints.
#pragma once

#include <string>

#include "tools/zel/command.hpp"

namespace zel::tool {

std::string command_help(const Command &command);
std::string program_help(const Commands &commands);

/// The positional arguments as a usage line shows them, with a space before each.
std::string usage_arguments(const Command &command);

}  // namespace zel::tool
