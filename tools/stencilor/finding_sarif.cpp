#include <nlohmann/json.hpp>
#include <tools/stencilor/finding_format.h>
#include <tools/stencilor/json_output.h>

#include <utility>

namespace stencilor {

namespace {

using Json = nlohmann::ordered_json;

Json describeRules() {
    Json rules = Json::array();
    for (const RuleText& rule : ruleTexts) {
        rules.push_back({{"id", rule.id},
                         {"shortDescription", {{"text", rule.description}}},
                         {"defaultConfiguration", {{"level", textOf(rule.severity)}}}});
    }
    return rules;
}

Json describeLocation(const Place& place) {
    const Position begin = place.file->positionOf(place.range.begin);
    const Position end = place.file->positionOf(place.range.end);
    return {{"physicalLocation",
             {{"artifactLocation", {{"uri", uriOf(place.file->name())}}},
              {"region",
               {{"startLine", begin.line},
                {"startColumn", begin.column},
                {"endLine", end.line},
                {"endColumn", end.column}}}}}};
}

Json describeResult(const Finding& finding) {
    Json result = {{"ruleId", textOf(finding.rule).id},
                   {"ruleIndex", static_cast<std::size_t>(finding.rule)},
                   {"level", textOf(finding.severity())},
                   {"message", {{"text", finding.message}}},
                   {"locations", Json::array({describeLocation(finding.place)})}};
    for (const Note& note : finding.notes) {
        Json related = describeLocation(note.place);
        related["id"] = result.value("relatedLocations", Json::array()).size();
        related["message"] = {{"text", note.message}};
        result["relatedLocations"].push_back(std::move(related));
    }
    return result;
}

} // namespace

std::string formatSarif(const std::vector<Finding>& findings) {
    Json results = Json::array();
    for (const Finding& finding : findings) {
        results.push_back(describeResult(finding));
    }
    const Json driver = {
        {"name", "stencilor"}, {"semanticVersion", STENCILOR_VERSION}, {"rules", describeRules()}};
    const Json run = {{"tool", {{"driver", driver}}},
                      {"columnKind", "unicodeCodePoints"},
                      {"results", std::move(results)}};
    return printJson({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                      {"version", "2.1.0"},
                      {"runs", Json::array({run})}});
}

std::string uriOf(std::string_view path) {
    static constexpr std::string_view unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string uri;
#ifdef _WIN32
    const bool hasDrive = path.size() > 1 && path[1] == ':';
    if (hasDrive) {
        uri = "file:///" + std::string(path.substr(0, 2));
        path.remove_prefix(2);
    }
#else
    if (path.starts_with('/')) {
        uri = "file://";
    }
#endif
    for (const char byte : path) {
#ifdef _WIN32
        if (byte == '\\') {
            uri += '/';
            continue;
        }
#endif
        if (unreserved.find(byte) != unreserved.npos) {
            uri += byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            uri += {'%', digits[value >> 4], digits[value & 15]};
        }
    }
    return uri;
}

} // namespace stencilor
