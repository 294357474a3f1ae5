// The table of gates: what every exported function does in every module state.
//
// Each room has a file here with one line a function:
//
//   const Rows<Arena> kRows{
//       {"HASH_InitializeEx", code(), [](Arena &a) { return HASH_InitializeEx(&a.hash, &sha256);
//       }},
//
// `Arena` is a plain record of everything that the calls touch, set up by its constructor while the
// module serves. A refused call must leave every byte of it as it was. Objects elsewhere (a key on
// the heap) are watched too when the arena has `Bytes watched() const`.
#pragma once

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "zel_cc.h"

namespace zel::test {

using Bytes = std::vector<std::uint8_t>;

/// The module states of the table.
inline constexpr std::array<std::int32_t, 8> kStates{-98, -1, 0, 1, 2, 3, 4, 5};

/// What a call is to do in one state.
struct Expected {
  enum class Kind {
    kServes,   ///< anything but a refusal; a function without a result changes something
    kChanges,  ///< the same, and it changes something whatever it gives
    kRefuses,  ///< gives `value` (null and void count as 0) and touches nothing
    kGives,    ///< gives `value`, whatever it touches
  };
  Kind kind = Kind::kServes;
  std::int64_t value = 0;
};
using Answers = std::array<Expected, kStates.size()>;

// The kinds of gate, each for all states.

/// Refused where the module does not serve by a value, by nullptr or by doing nothing (0).
Answers refusing(std::int64_t value);
/// Gives #ZEL_OK where the module serves: the call reached its work.
Answers code();
inline Answers inert() { return refusing(0); }
Answers null_object();
/// Refused by the module state itself.
Answers state_value();
/// The same in state 4, with the refusal of a non-approved algorithm there.
Answers not_approved(Answers answers, std::int64_t value = ZEL_ERR_APPROVED);
/// Runs in every state.
Answers ungated();
/// Runs in every state and changes what it is given.
Answers works();
/// One result a state, in the order of kStates.
Answers gives(const std::array<std::int64_t, kStates.size()> &values);

/// A call on fresh data: its result, whether it has one, and whether it touched anything.
struct Outcome {
  std::int64_t result = 0;
  bool is_void = false;
  bool touched = false;
};

struct Gate {
  std::string name;
  Answers answers;
  /// Sets the data up; the result calls the function on them, once.
  std::function<std::function<Outcome()>()> prepare;
};

/// Every row of every room.
std::vector<Gate> &all_gates();

/// What is wrong with an outcome; empty when it is as expected.
std::string complaint(const Expected &expected, const Outcome &outcome);

/// Runs `body` in a process of its own and returns its text, which is empty when all is well:
/// nothing leads out of the error state, and nothing that a body does can disturb another.
std::string in_own_process(const std::function<std::string()> &body);

/// The functions of the version script: the exported names with a capital letter, p_min and p_max.
std::set<std::string> exported_functions();

template <class Arena>
Bytes bytes_of(const Arena &arena) {
  Bytes bytes(sizeof(Arena));
  std::memcpy(bytes.data(), &arena, sizeof(Arena));
  if constexpr (requires { arena.watched(); }) {
    const Bytes elsewhere = arena.watched();
    bytes.insert(bytes.end(), elsewhere.begin(), elsewhere.end());
  }
  return bytes;
}

/// Whether a function gave a record back: the next one of its size is the same again, once the
/// allocator has nothing else of that size at hand.
template <class Object>
bool is_given_back(Object *object, void (*release)(Object *)) {
  const auto record = reinterpret_cast<std::uintptr_t>(object);
#ifdef __SANITIZE_ADDRESS__
  release(object);
  return __asan_address_is_poisoned(reinterpret_cast<const void *>(record)) != 0;
#else
  void *volatile taken = nullptr;
  for (int i = 0; i < 1000; ++i)
    taken = std::malloc(sizeof(Object));
  release(object);
  taken = std::malloc(sizeof(Object));
  return reinterpret_cast<std::uintptr_t>(taken) == record;
#endif
}

template <class Arena>
struct Row {
  template <class Call>
  Row(const char *name, const Answers &answers, Call call)
      : gate{name, answers, [call] {
               const auto arena = std::make_shared<Arena>();
               return [call, arena, before = bytes_of(*arena)] {
                 Outcome outcome;
                 using Result = decltype(call(*arena));
                 if constexpr (std::is_void_v<Result>) {
                   call(*arena);
                   outcome.is_void = true;
                 } else if constexpr (std::is_pointer_v<Result>) {
                   outcome.result = call(*arena) != nullptr;
                 } else {
                   outcome.result = static_cast<std::int64_t>(call(*arena));
                 }
                 outcome.touched = bytes_of(*arena) != before;
                 return outcome;
               };
             }} {
    static_assert(std::is_trivially_copyable_v<Arena>);
  }
  Gate gate;
};

/// Adds the rows of one room to the table.
template <class Arena>
struct Rows {
  Rows(std::initializer_list<Row<Arena>> rows) {
    for (const Row<Arena> &row : rows)
      all_gates().push_back(row.gate);
  }
};

}  // namespace zel::test
