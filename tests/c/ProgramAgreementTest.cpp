#include "../program/ProgramTest.h"
#include "Handles.h"

#include <gtest/gtest.h>

#include <string>

// The library produces the same output as the program.

namespace support {
namespace {

class CProgramAgreement : public program::ProgramTest {
  protected:
    CProgramAgreement() {
        folder.writeFile("page.txt", page);
        folder.writeFile("bad.txt", "{{ a }}\n{{ b }\n{% if %}");
        folder.writeFile("row.txt", "{{ name }}{{ titel }}{% include \"page.txt\" %}\xFF");
        folder.writeFile("values.json", json);
        EXPECT_EQ(stencilor_source_folder(".", 1, out(source)), STENCILOR_OK);
    }

    static std::string printed(const std::string& arguments) {
        return program::runStencilor(arguments).output;
    }

    std::string check(const std::string& text, const std::string& name,
                      const stencilor_context* context) const {
        TextHandle found;
        EXPECT_EQ(stencilor_check(parse(text, name).get(), source.get(), context, out(found)),
                  STENCILOR_OK);
        return textOf(found);
    }

    const std::string page = "{{ title }}\n{% for item in items %}{% include \"row.txt\" %}"
                             "{{ item.nam }}{% endfor %}{% include \"gone\" %}";
    const std::string json = R"({"title": "T", "items": [{"name": "n"}]})";
    SourceHandle source;
};

TEST_F(CProgramAgreement, OnFindings) {
    EXPECT_EQ(check(page, "page.txt", nullptr), printed("check page.txt --format json"));
    EXPECT_EQ(check("{{ a }}\n{{ b }\n{% if %}", "bad.txt", nullptr),
              printed("check bad.txt --format json"));
}

TEST_F(CProgramAgreement, OnFindingsWithAContext) {
    const std::string expected = printed("check page.txt --context values.json --format json");
    EXPECT_NE(expected.find("missing-name"), std::string::npos) << expected;
    EXPECT_EQ(check(page, "page.txt", contextOf(json).get()), expected);
}

TEST_F(CProgramAgreement, OnNames) {
    TextHandle found;
    EXPECT_EQ(stencilor_names(parse(page, "page.txt").get(), source.get(), out(found)),
              STENCILOR_OK);
    EXPECT_EQ(textOf(found), printed("names page.txt --format json"));
}

} // namespace
} // namespace support
