#include "tools/zel/json.hpp"

#include "tools/zel/hex.hpp"

namespace zel::tool {

std::string to_text(const Json &json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void set_file_name(Json &object, std::string_view name) {
  object["file"] = name;
  try {
    static_cast<void>(Json(name).dump());
  } catch (const Json::type_error &) {
    object["file_hex"] = to_hex({reinterpret_cast<const std::uint8_t *>(name.data()), name.size()});
  }
}

}  // namespace zel::tool
