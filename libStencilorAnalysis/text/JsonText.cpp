#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <nlohmann/json.hpp>

namespace kel::Stencilor::Analysis {

using Json = nlohmann::ordered_json;

std::string jsonDocument(const Json& document) {
    return showJson(document.dump(2, ' ', false, Json::error_handler_t::replace)) + "\n";
}

std::string jsonString(std::string_view text) {
    return showJson(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace kel::Stencilor::Analysis
