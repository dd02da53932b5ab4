#include <nlohmann/json.hpp>
#include <tools/stencilor/json_output.h>

namespace stencilor {

using Json = nlohmann::ordered_json;

std::string printJson(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string printJsonString(std::string_view text) {
    return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace stencilor
