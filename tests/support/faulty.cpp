// The hook of the library whose self-tests can be made to fail.
#include "core/known_answer.hpp"

const char *zel_faulty_self_test = nullptr;
