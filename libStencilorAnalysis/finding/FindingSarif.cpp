#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/text/JsonText.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Json = nlohmann::ordered_json;

using UriOf = std::function<std::string(const std::string&)>;

Json describeRules() {
    Json list = Json::array();
    for (const RuleInfo& rule : rules) {
        list.push_back({{"id", rule.id},
                        {"shortDescription", {{"text", rule.description}}},
                        {"defaultConfiguration", {{"level", severityName(rule.severity)}}}});
    }
    return list;
}

Json describeLocation(const Place& place, const UriOf& uriOf) {
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

Json describeResult(const Finding& finding, const UriOf& uriOf) {
    Json result = {{"ruleId", infoOf(finding.rule).id},
                   {"ruleIndex", static_cast<std::size_t>(finding.rule)},
                   {"level", severityName(finding.severity())},
                   {"message", {{"text", finding.message}}},
                   {"locations", Json::array({describeLocation(finding.place, uriOf)})}};
    for (const Note& note : finding.notes) {
        Json related = describeLocation(note.place, uriOf);
        related["id"] = result.value("relatedLocations", Json::array()).size();
        related["message"] = {{"text", note.message}};
        result["relatedLocations"].push_back(std::move(related));
    }
    return result;
}

} // namespace

std::string formatSarif(const std::vector<Finding>& findings, const UriOf& uriOf) {
    const Json driver = {
        {"name", "stencilor"}, {"semanticVersion", STENCILOR_VERSION}, {"rules", describeRules()}};
    const Json run = {{"tool", {{"driver", driver}}},
                      {"columnKind", "unicodeCodePoints"},
                      {"results", Json::array()}};
    return jsonDocument({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                         {"version", "2.1.0"},
                         {"runs", Json::array({run})}},
                        "results", findings.size(),
                        [&](std::size_t i) { return describeResult(findings[i], uriOf); });
}

} // namespace kel::Stencilor::Analysis
