// Constant time, shown by valgrind: memory that holds a secret is marked as undefined, and memcheck
// then reports every branch and every address that depends on it.
//
// Each room has a file here that registers its probes:
//
//   const Probe kInverse{"inverse_secret", [] {
//     MINT a = ..., r;
//     secret(a.words, sizeof a.words);
//     ... inverse_secret(r, a, n);
//   }};
//
// A probe opens what it compares, prints or returns by a branch of its own.
#pragma once

#include <valgrind/memcheck.h>

#include <cstddef>
#include <vector>

namespace zel::test {

/// From here on the bytes are secret.
inline void secret(const void *from, std::size_t len) { VALGRIND_MAKE_MEM_UNDEFINED(from, len); }
/// From here on they are public again.
inline void open(const void *from, std::size_t len) { VALGRIND_MAKE_MEM_DEFINED(from, len); }
template <class T>
void secret(const T &object) {
  secret(&object, sizeof object);
}
template <class T>
void open(const T &object) {
  open(&object, sizeof object);
}

/// Something to watch. One that leaks is there to show that valgrind would see it.
struct Probe {
  Probe(const char *probe_name, void (*probe)(), bool does_leak = false)
      : name(probe_name), run(probe), leaks(does_leak) {
    all().push_back(*this);
  }
  const char *name;
  void (*run)();
  bool leaks;

  static std::vector<Probe> &all() {
    static std::vector<Probe> probes;
    return probes;
  }
};

/// Stops the run: what a probe computed is wrong, so its constant time proves nothing.
void require(bool condition, const char *what);

}  // namespace zel::test
