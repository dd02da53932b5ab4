#include "ProgramTest.h"

#include <nlohmann/json.hpp>

namespace program {
namespace {

using Json = nlohmann::json;

class CheckFormatTest : public ProgramTest {
  protected:
    CheckFormatTest() {
        folder.makeFolder("pages \u00E9");
        folder.writeFile("pages \u00E9/page.txt",
                         "\u00E9{% if a %}\n{% include \"none.txt\" %}{{ }\n{% endif %}");
    }

    Json check(const std::string& format) {
        const Outcome outcome = runStencilor("check 'pages \u00E9/page.txt' --format " + format);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "");
        return Json::parse(outcome.output);
    }
};

TEST_F(CheckFormatTest, IsJson) {
    const Json expected = Json::parse(R"({"findings": [
        {"rule": "missing-include", "severity": "error",
         "message": "included file \"none.txt\" does not exist",
         "file": "pages é/page.txt", "line": 2, "column": 13, "endLine": 2, "endColumn": 21,
         "notes": []},
        {"rule": "syntax", "severity": "error", "message": "expected a name after \"{{\"",
         "file": "pages é/page.txt", "line": 2, "column": 28, "endLine": 2, "endColumn": 28,
         "notes": [{"message": "opened here", "file": "pages é/page.txt",
                    "line": 1, "column": 2, "endLine": 1, "endColumn": 12}]}]})");
    EXPECT_EQ(check("json"), expected);
}

TEST_F(CheckFormatTest, IsSarif) {
    const Json log = check("sarif");
    EXPECT_EQ(log["version"], "2.1.0");
    EXPECT_EQ(log["$schema"], "https://json.schemastore.org/sarif-2.1.0.json");
    ASSERT_EQ(log["runs"].size(), 1u);
    const Json& run = log["runs"][0];
    EXPECT_EQ(run["columnKind"], "unicodeCodePoints");
    EXPECT_EQ(run["tool"]["driver"]["name"], "stencilor");
    EXPECT_EQ(run["tool"]["driver"]["semanticVersion"], STENCILOR_VERSION);

    ASSERT_EQ(run["results"].size(), 2u);
    const Json expected = Json::parse(R"({"ruleId": "syntax", "ruleIndex": 0, "level": "error",
        "message": {"text": "expected a name after \"{{\""},
        "locations": [{"physicalLocation": {
            "artifactLocation": {"uri": "pages%20%C3%A9/page.txt"},
            "region": {"startLine": 2, "startColumn": 28, "endLine": 2, "endColumn": 28}}}],
        "relatedLocations": [{"id": 0, "message": {"text": "opened here"}, "physicalLocation": {
            "artifactLocation": {"uri": "pages%20%C3%A9/page.txt"},
            "region": {"startLine": 1, "startColumn": 2, "endLine": 1, "endColumn": 12}}}]})");
    EXPECT_EQ(run["results"][1], expected);

    // The rules of all results exist.
    const Json& rules = run["tool"]["driver"]["rules"];
    for (const Json& result : run["results"]) {
        EXPECT_EQ(rules.at(result["ruleIndex"].get<std::size_t>())["id"], result["ruleId"]);
    }
    for (const Json& rule : rules) {
        EXPECT_FALSE(rule["shortDescription"]["text"].get<std::string>().empty());
        const std::string level = rule["defaultConfiguration"]["level"];
        EXPECT_TRUE(level == "error" || level == "warning" || level == "note") << level;
    }
}

TEST_F(CheckFormatTest, WritesAFullPathAsAUri) {
    const std::string path = folder.path("bad.txt");
    folder.writeFile("bad.txt", "{{");
    const Outcome outcome = runStencilor({"check", path, "--format", "sarif"});
    const Json log = Json::parse(outcome.output);
    const std::string uri =
        log["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"];
    EXPECT_TRUE(uri.starts_with("file:///")) << uri;
    EXPECT_TRUE(uri.ends_with("/bad.txt")) << uri;
    EXPECT_EQ(uri.find('\\'), std::string::npos) << uri;
}

TEST_F(CheckFormatTest, IsCompleteIfNothingIsFound) {
    folder.writeFile("good.txt", "text");
    EXPECT_EQ(Json::parse(runStencilor("check good.txt --format json").output),
              Json::parse(R"({"findings": []})"));
    const Json log = Json::parse(runStencilor("check good.txt --format sarif").output);
    EXPECT_EQ(log["runs"][0]["results"], Json::array());
}

} // namespace
} // namespace program
