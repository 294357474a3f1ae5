// The kinds of gate, and what tests of gates share.
#include "tests/gates/gates.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>

namespace zel::test {

std::vector<Gate> &all_gates() {
  static std::vector<Gate> gates;
  return gates;
}

namespace {

template <class ValueIn>
Answers answers(ValueIn value_in) {
  Answers all;
  for (std::size_t i = 0; i < kStates.size(); ++i)
    all[i] = value_in(kStates[i]);
  return all;
}

bool serving(std::int32_t state) { return state >= 1 && state <= 4; }

}  // namespace

Answers refusing(std::int64_t value) {
  return answers([value](std::int32_t state) {
    return serving(state) ? Expected{} : Expected{Expected::Kind::kRefuses, value};
  });
}

Answers code() {
  return answers([](std::int32_t state) {
    return serving(state) ? Expected{Expected::Kind::kGives, ZEL_OK}
                          : Expected{Expected::Kind::kRefuses, ZEL_ERR_STATE};
  });
}

Answers null_object() {
  return answers([](std::int32_t state) {
    return serving(state) ? Expected{Expected::Kind::kGives, 1}
                          : Expected{Expected::Kind::kRefuses, 0};
  });
}

Answers state_value() {
  return answers([](std::int32_t state) {
    return serving(state) ? Expected{Expected::Kind::kGives, ZEL_OK}
                          : Expected{Expected::Kind::kRefuses, state};
  });
}

Answers not_approved(Answers answers, std::int64_t value) {
  for (std::size_t i = 0; i < kStates.size(); ++i) {
    if (kStates[i] == ZEL_STATE_VERIFIED) answers[i] = {Expected::Kind::kRefuses, value};
  }
  return answers;
}

Answers ungated() {
  return answers([](std::int32_t) { return Expected{}; });
}

Answers works() {
  return answers([](std::int32_t) { return Expected{Expected::Kind::kChanges, 0}; });
}

Answers gives(const std::array<std::int64_t, kStates.size()> &values) {
  Answers all;
  for (std::size_t i = 0; i < kStates.size(); ++i)
    all[i] = {Expected::Kind::kGives, values[i]};
  return all;
}

std::string complaint(const Expected &expected, const Outcome &outcome) {
  const std::string got = outcome.is_void ? "" : "gave " + std::to_string(outcome.result);
  const std::string wanted = std::to_string(expected.value);
  switch (expected.kind) {
    case Expected::Kind::kRefuses:
      if (outcome.result != expected.value) return got + ", to be refused by " + wanted;
      return outcome.touched ? "refused, but touched its arguments" : "";
    case Expected::Kind::kGives:
      return outcome.result == expected.value ? "" : got + ", expected " + wanted;
    case Expected::Kind::kChanges:
      if (!outcome.touched) return "changed nothing";
      [[fallthrough]];
    case Expected::Kind::kServes:
      if (outcome.is_void) return outcome.touched ? "" : "did nothing";
      return outcome.result == ZEL_ERR_STATE || outcome.result == ZEL_ERR_APPROVED ? got : "";
  }
  return "unknown expectation";
}

std::string in_own_process(const std::function<std::string()> &body) {
  int pipe_ends[2];
  if (pipe(pipe_ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child < 0) return "no process";
  if (child == 0) {
    const std::string text = body();
    const bool told =
        write(pipe_ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
    _exit(told ? 0 : 1);
  }
  close(pipe_ends[1]);
  std::string text;
  char piece[256];
  for (ssize_t n; (n = read(pipe_ends[0], piece, sizeof piece)) > 0;)
    text.append(piece, static_cast<std::size_t>(n));
  close(pipe_ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) text += " (the process ended with status " + std::to_string(status) + ")";
  return text;
}

std::set<std::string> exported_functions() {
  std::ifstream file(ZEL_EXPORTS_MAP);
  std::set<std::string> names;
  for (std::string word; file >> word;) {
    const bool function =
        word.starts_with("p_m") ||
        std::any_of(word.begin(), word.end(), [](unsigned char c) { return std::isupper(c) != 0; });
    if (function && word.ends_with(';')) names.insert(word.substr(0, word.size() - 1));
  }
  return names;
}

}  // namespace zel::test
