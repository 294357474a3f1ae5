// JSON as the program writes it: keys in the order in which they were set.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace zel::tool {

using Json = nlohmann::ordered_json;

/// One line. Bytes that are not UTF-8 become U+FFFD.
std::string to_text(const Json &json);

/// Sets `file`, and `file_hex` as well when the name is not UTF-8 and `file` could not say it.
void set_file_name(Json &object, std::string_view name);

}  // namespace zel::tool
