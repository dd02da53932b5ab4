#include "../support/Context.h"
#include "../support/LogRecorder.h"
#include "../support/TemporaryFolder.h"
#include "../support/Test.h"

namespace support {
namespace {

using namespace kel::LoggerPriority;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

/// The scopes of a rendering, with nested ones in brackets. Each must be left as it was entered,
/// and recorded with its depth.
std::string tracesOf(const std::string& input, const ContextBase& root) {
    LogRecorder recorder(PRIORITY_TRACE);
    kel::Stencilor::buildOutput(input, root);
    std::string traces;
    std::vector<std::string> open;
    for (const std::string& line : recorder.lines()) {
        const std::string name = line.substr(line.find_first_not_of(" <>"));
        if (line == std::string(open.size() * 2, ' ') + "> " + name) {
            open.push_back(name);
            traces += (traces.empty() || traces.back() == '[' ? "" : " ") + name + "[";
        } else if (!open.empty() &&
                   line == std::string(open.size() * 2 - 2, ' ') + "< " + open.back()) {
            open.pop_back();
            if (traces.back() == '[') {
                traces.pop_back();
            } else {
                traces += ']';
            }
        } else if (!name.starts_with("2 ")) { // the messages
            ADD_FAILURE() << line;
        }
    }
    EXPECT_THAT(open, IsEmpty());
    return traces;
}

TEST(Traces, NameEachScopeWithItsLineAndDepth) {
    const TemporaryFolder folder;
    const WorkingFolder working(folder.path());
    folder.writeFile("good.txt", "a");
    folder.writeFile("rejected.txt", "a{{");
    folder.writeSparseFile("large", 4ull << 30);
    const Root root({
        {"x", text("value")},
        {"yes", truth(true)},
        {"two", listOf(2)},
        {"none", list()},
    });
    const struct {
        const char* name;
        const char* input;
        std::string inside; // of the scope of the entry point
    } cases[] = {
        {"a rejected template, without its nodes", "text{{", ""},
        {"text", "text", "content_visit::string:120"},
        {"a substitution", "{{ x }}", "content_visit::replace_expr:184"},
        {"a substitution that fails", "{{ missing }}", "content_visit::replace_expr:184"},
        {"nodes side by side", "a{{ x }}",
         "content_visit::string:120 content_visit::replace_expr:184"},
        {"a conditional", "{% if yes %}a{% endif %}",
         "content_visit::if_expr:126[applyVisitor:230[content_visit::string:120]]"},
        {"a conditional without nodes", "{% if yes %}{% endif %}",
         "content_visit::if_expr:126[applyVisitor:230]"},
        {"a conditional that fails", "{% if missing %}a{% endif %}", "content_visit::if_expr:126"},
        {"a loop, once for each iteration", "{% for i in two %}a{% endfor %}",
         "content_visit::for_expr:151[applyVisitor:230[content_visit::string:120] "
         "applyVisitor:230[content_visit::string:120]]"},
        {"a loop without elements", "{% for i in none %}a{% endfor %}",
         "content_visit::for_expr:151"},
        {"a loop that fails", "{% for i in missing %}a{% endfor %}", "content_visit::for_expr:151"},
        {"a block in a block, and text after it", "{% if yes %}{% if yes %}{% endif %}a{% endif %}",
         "content_visit::if_expr:126[applyVisitor:230[content_visit::if_expr:126[applyVisitor:230] "
         "content_visit::string:120]]"},
        {"an include", "{% include \"good.txt\" %}",
         "content_visit::include_expr:205[buildOutput:251[applyVisitor:230["
         "content_visit::string:120]]]"},
        {"an include of a rejected file", "{% include \"rejected.txt\" %}",
         "content_visit::include_expr:205[buildOutput:251]"},
        {"an include of a missing file", "{% include \"missing\" %}",
         "content_visit::include_expr:205"},
        {"an include of a file that cannot be loaded", "{% include \"large\" %}",
         "content_visit::include_expr:205"},
    };
    EXPECT_EQ(tracesOf("", root), "buildOutput:408");
    for (const auto& [name, input, inside] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(tracesOf(input, root),
                  "buildOutput:408" + (inside.empty() ? "" : "[" + inside + "]"));
    }
}

TEST(Traces, AllNameTheFileOfTheRenderer) {
    LogRecorder recorder(PRIORITY_TRACE);
    render("text", Root());
    EXPECT_THAT(recorder.lastFile(), EndsWith("render/content_visit.cpp"));
}

TEST(Traces, AreWrittenAtPriorityOneAndBelow) {
    kel::Logger& logger = loggerOf("libStencilor");
    for (int threshold = -1; threshold <= 4; ++threshold) {
        for (int global = -1; global <= 4; ++global) {
            SCOPED_TRACE(std::to_string(threshold) + " and " + std::to_string(global));
            const Threshold own(logger, threshold);
            LogRecorder recorder(static_cast<LOGGER_PRIORITY>(global));
            render("", Root());
            if (threshold <= 1 && global <= 1) {
                EXPECT_THAT(recorder.lines(),
                            ElementsAre("> buildOutput:408", "< buildOutput:408"));
            } else {
                EXPECT_THAT(recorder.lines(), IsEmpty());
            }
        }
    }
}

TEST(Traces, DoNotAffectTheOutput) {
    const Root root({{"x", text("value")}, {"yes", truth(true)}, {"two", listOf(2)}});
    const std::string input = "{% for i in two %}{% if yes %}{{ x }}{{ y }}{% endif %}{% endfor %}";
    const Rendered untraced = render(input, root);
    const LogRecorder recorder(PRIORITY_TRACE);
    EXPECT_EQ(render(input, root), untraced);
}

TEST(Traces, MayCauseAHostToExtendTheRenderedList) {
    ContextIterable* const elements = list({dictionary(), dictionary()});
    const Root root({{"xs", elements}});
    const LogRecorder recorder(PRIORITY_TRACE); // restores the settings at its end
    bool added = false;
    kel::LogFactory::setSink([&](const kel::LogRecord& record) {
        if (!added && record.text == "content_visit::string") {
            added = true;
            elements->add(dictionary());
        }
    });
    EXPECT_EQ(render("{% for x in xs %}.{% endfor %}", root), (Rendered{"...", ""}));
}

} // namespace
} // namespace support
