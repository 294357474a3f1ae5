// Which exported object a caller means.
//
// A program may own the address of an exported object: a program linked at a fixed address holds
// the copy that everybody uses, and a program with a global of the same name (`seed`, `des`) takes
// the name away altogether. So inside the library every descriptor has a hidden alias that always
// names the library's own object, and callers may mean that object or whatever the exported name
// now names.
#pragma once

#include <cstring>

namespace zel {

template <class Object>
inline bool is_same(const Object *given, const Object &own, const Object &exported) noexcept {
  return given == &own || given == &exported;
}

/// The same where a mistake would open a gate: what the exported name now names counts only while
/// it holds what the own object holds, as the copy of a program does and a global of its own does
/// not.
template <class Object>
inline bool is_genuine(const Object *given, const Object &own, const Object &exported) noexcept {
  if (given == &own) return true;
  return given == &exported && std::memcmp(given, &own, sizeof own) == 0;
}

}  // namespace zel

/// Declares, next to the definition of an exported object, its hidden alias `zel_own_<name>`.
#define ZEL_HIDDEN_ALIAS(name) __attribute__((alias(name), visibility("hidden")))
