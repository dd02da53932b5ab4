#include <nlohmann/json.hpp>
#include <tools/stencilor/finding_format.h>
#include <tools/stencilor/json_output.h>

namespace stencilor {

namespace {

using Json = nlohmann::ordered_json;

Json describePlace(const Place& place) {
    const Position begin = place.file->positionOf(place.range.begin);
    const Position end = place.file->positionOf(place.range.end);
    return {{"file", place.file->name()},
            {"line", begin.line},
            {"column", begin.column},
            {"endLine", end.line},
            {"endColumn", end.column}};
}

Json describeFinding(const Finding& finding) {
    Json result = {{"rule", textOf(finding.rule).id},
                   {"severity", textOf(finding.severity())},
                   {"message", finding.message}};
    result.update(describePlace(finding.place));
    result["notes"] = Json::array();
    for (const Note& note : finding.notes) {
        Json told = {{"message", note.message}};
        told.update(describePlace(note.place));
        result["notes"].push_back(std::move(told));
    }
    return result;
}

} // namespace

std::string formatJson(const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back(describeFinding(finding));
    }
    return printJson({{"findings", std::move(list)}});
}

} // namespace stencilor
