// Standard error: lines of text, and below them at most one status line that they push away.
#pragma once

#include <string_view>

namespace zel::tool::console {

/// One line of text.
void line(std::string_view text);

/// Replaces the status line; empty takes it away.
void status(std::string_view text);

/// Takes the status line away while something is written to the same terminal elsewhere.
void make_room();

bool is_terminal();
/// Columns of the terminal; 80 when it does not say.
unsigned columns();

}  // namespace zel::tool::console
