#include <nlohmann/json.hpp>
#include <tools/stencilor/json_output.h>
#include <tools/stencilor/shown_text.h>

namespace stencilor {

using Json = nlohmann::ordered_json;

std::string printJson(const Json& document) {
    return showJson(document.dump(2, ' ', false, Json::error_handler_t::replace)) + "\n";
}

std::string printJsonString(std::string_view text) {
    return showJson(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace stencilor
