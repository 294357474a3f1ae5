// Which exported object a caller means.
//
// A program may own the address of an exported object: a program linked at a fixed address holds
// the copy that everybody uses, and a program with a global of the same name (`seed`, `des`) takes
// the name away altogether. So inside the library every descriptor has a hidden alias that always
// names the library's own object, and callers may mean that object or whatever the exported name
// now names.
#pragma once

namespace zel {

template <class Object>
inline bool is_same(const Object *given, const Object &own, const Object &exported) noexcept {
  return given == &own || given == &exported;
}

}  // namespace zel

/// Declares, next to the definition of an exported object, its hidden alias `zel_own_<name>`.
#define ZEL_HIDDEN_ALIAS(name) __attribute__((alias(name), visibility("hidden")))
