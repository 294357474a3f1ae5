// Calls with null pointers.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace zel::test {

/// What a function gives with each of its pointers null in turn; 0 where it gives nothing.
template <class Result, class... Types, class... Given>
std::vector<std::int32_t> with_each_null(Result (*function)(Types...), Given... given) {
  std::vector<std::int32_t> results;
  const auto call = [&]<std::size_t at>(std::integral_constant<std::size_t, at>) {
    std::tuple<Types...> arguments(static_cast<Types>(given)...);
    if constexpr (std::is_pointer_v<std::tuple_element_t<at, std::tuple<Types...>>>) {
      std::get<at>(arguments) = nullptr;
      if constexpr (std::is_void_v<Result>) {
        std::apply(function, arguments);
        results.push_back(0);
      } else {
        results.push_back(std::apply(function, arguments));
      }
    }
  };
  [&]<std::size_t... all>(std::index_sequence<all...>) {
    (call(std::integral_constant<std::size_t, all>{}), ...);
  }
  (std::index_sequence_for<Types...>{});
  return results;
}

/// What a function gives with every pointer null and every number zero.
template <class... Types>
std::int32_t with_nothing(std::int32_t (*function)(Types...)) {
  return function(Types{}...);
}

}  // namespace zel::test
