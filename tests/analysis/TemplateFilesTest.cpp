#include "../support/Test.h"
#include "MemoryReader.h"

#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>
#include <libStencilorAnalysis/names/Dependencies.h>

namespace kel::Stencilor::Analysis {
namespace {

const char* const page = R"({% include "a" %}{% include "a" %}{% include "b" %}{% include "none" %}
{% include "none" %}{% include "closed" %})";

TEST(TemplateFiles, AreRequestedOnceEach) {
    MemoryReader reader({{"a", R"(x{% include "b" %})"}, {"b", "{{"}, {"closed", "?"}});
    TemplateFiles files(reader);
    const TemplateFile& file = files.add({"page", "page", page});
    CheckReport report;
    checkSyntax(files, file, report);
    const std::vector<Finding> findings = sortFindings(report);
    EXPECT_EQ(formatText(findings),
              "page:1:64: error: included file \"none\" does not exist\n"
              "{% include \"a\" %}{% include \"a\" %}{% include \"b\" %}{% include \"none\" %}\n"
              "                                                               ^~~~\n"
              "page:2:13: error: included file \"none\" does not exist\n"
              "{% include \"none\" %}{% include \"closed\" %}\n            ^~~~\n"
              "page:2:33: error: included file \"closed\" cannot be read\n"
              "{% include \"none\" %}{% include \"closed\" %}\n"
              "                                ^~~~~~\n"
              "memory:b:1:3: error: expected a name after \"{{\"\n{{\n  ^\n");
    Dependencies dependencies(file);
    survey(files, file, dependencies);
    EXPECT_EQ(dependencies.names(),
              (std::vector<std::string>{"memory:a", "memory:b", "memory:none", "memory:closed"}));
    EXPECT_EQ(reader.asked(),
              (std::map<std::string, int>{{"a", 1}, {"b", 1}, {"closed", 1}, {"none", 1}}));
}

} // namespace
} // namespace kel::Stencilor::Analysis
