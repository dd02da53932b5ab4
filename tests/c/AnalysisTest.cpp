#include "../support/Test.h"
#include "Handles.h"

namespace support {
namespace {

const std::string page = "{{ title }}{% for i in items %}{% include \"row\" %}{% endfor %}"
                         "{% include \"gone\" %}";
const std::string row = "{{ i.name }}{{ titel }}";
const char* const json = R"({"title": "T", "items": [{"name": "n"}]})";

std::string check(const std::string& text, stencilor_source* source,
                  const stencilor_context* context) {
    TextHandle found;
    EXPECT_EQ(stencilor_check(parse(text).get(), source, context, out(found)), STENCILOR_OK);
    return textOf(found);
}

TEST(CAnalysis, FindsWhatIsWrong) {
    const SourceHandle source = makeMemory();
    add(source, "row", row);
    const std::string found = check(page, source.get(), contextOf(json).get());
    EXPECT_NE(found.find("missing-include"), std::string::npos) << found;
    EXPECT_NE(found.find("did you mean \\\"title\\\"?"), std::string::npos) << found;
    EXPECT_EQ(check(page, source.get(), nullptr).find("titel"), std::string::npos)
        << "without a context, names are not looked up";
    EXPECT_NE(check(page, nullptr, nullptr).find("\\\"row\\\""), std::string::npos)
        << "without a source, each include is missing";
    EXPECT_NE(check("{{", nullptr, nullptr).find("\"rule\": \"syntax\""), std::string::npos);
}

TEST(CAnalysis, ListsNames) {
    const SourceHandle source = makeMemory();
    add(source, "row", row);
    TextHandle found;
    EXPECT_EQ(stencilor_names(parse(page).get(), source.get(), out(found)), STENCILOR_OK);
    EXPECT_NE(textOf(found).find("\"i.name\""), std::string::npos);
    EXPECT_EQ(stencilor_names(parse("{{").get(), source.get(), out(found)), STENCILOR_REJECTED);
    EXPECT_EQ(found, nullptr);
}

TEST(CAnalysis, ListsNodes) {
    TextHandle found;
    EXPECT_EQ(stencilor_tree(parse("{% if a %}x{% endif %}").get(), out(found)), STENCILOR_OK);
    EXPECT_NE(textOf(found).find("\"text\": \"x\""), std::string::npos) << textOf(found);
    EXPECT_EQ(stencilor_tree(parse("{{").get(), out(found)), STENCILOR_REJECTED);
    EXPECT_EQ(found, nullptr);
}

TEST(CAnalysis, HasOneTemplatePerName) {
    const SourceHandle source = makeMemory();
    add(source, "page", "{{");
    EXPECT_EQ(
        check("{% if a %}{% include \"page\" %}{% endif %}", source.get(), nullptr).find("syntax"),
        std::string::npos);
}

int stop(void*, const char*, std::size_t, stencilor_request*) {
    return 1;
}

TEST(CAnalysis, CanBeEndedByItsSource) {
    SourceHandle source;
    EXPECT_EQ(stencilor_source_callback(stop, nullptr, out(source)), STENCILOR_OK);
    TextHandle found;
    EXPECT_EQ(stencilor_check(parse(page).get(), source.get(), nullptr, out(found)),
              STENCILOR_STOPPED);
    EXPECT_EQ(stencilor_names(parse(page).get(), source.get(), out(found)), STENCILOR_STOPPED);
    EXPECT_EQ(found, nullptr);
}

} // namespace
} // namespace support
