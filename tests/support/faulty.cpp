// The hook of the library whose self-tests can be made to fail, by a program or from outside.
#include <cstdlib>

#include "core/known_answer.hpp"

const char *zel_faulty_self_test = nullptr;

namespace {
[[gnu::constructor]] void ask_the_environment() {
  zel_faulty_self_test = std::getenv("ZEL_FAULTY_SELF_TEST");
}
}  // namespace
