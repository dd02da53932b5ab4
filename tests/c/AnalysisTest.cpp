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

/// The status and the findings of a check within the limits of options.
std::pair<int, std::string> checkWithin(const std::string& text, const stencilor_options* options) {
    TextHandle found;
    const int status =
        stencilor_check_limited(parse(text).get(), contextOf(json).get(), options, out(found));
    EXPECT_EQ(found != nullptr, status == STENCILOR_OK);
    return {status, textOf(found)};
}

std::size_t countFindings(const std::string& found) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = found.find("\"rule\"", at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

TEST(CAnalysis, IsTheSameWithinLimits) {
    const SourceHandle source = makeMemory();
    add(source, "row", row);
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    EXPECT_EQ(checkWithin(page, options.get()),
              std::pair(int(STENCILOR_OK), check(page, source.get(), contextOf(json).get())));
    EXPECT_EQ(checkWithin(page, nullptr),
              std::pair(int(STENCILOR_OK), check(page, nullptr, contextOf(json).get())));
}

TEST(CAnalysis, EndsAtItsLimits) {
    const SourceHandle source = makeMemory();
    add(source, "row", row);
    const std::string limited = "\"rule\": \"limit\"";
    const struct {
        const char* name;
        int limit;
        std::uint64_t value;
        int status;
        bool isLimited;
        std::size_t findings;
    } cases[] = {
        {"no limit", STENCILOR_LIMIT_MESSAGES, 0, STENCILOR_OK, false, 3},
        {"too few steps", STENCILOR_LIMIT_STEPS, 4, STENCILOR_OK, true, 2},
        {"enough steps", STENCILOR_LIMIT_STEPS, 100, STENCILOR_OK, false, 3},
        {"one finding", STENCILOR_LIMIT_MESSAGES, 1, STENCILOR_OK, false, 1},
        {"one byte too many", STENCILOR_LIMIT_TEMPLATE_BYTES, row.size() - 1,
         STENCILOR_TEMPLATE_LIMIT, false, 0},
        {"enough bytes", STENCILOR_LIMIT_TEMPLATE_BYTES, row.size(), STENCILOR_OK, false, 3},
    };
    for (const auto& [name, limit, value, status, isLimited, findings] : cases) {
        SCOPED_TRACE(name);
        const OptionsHandle options = makeOptions();
        stencilor_options_set_source(options.get(), source.get());
        stencilor_options_set_limit(options.get(), limit, value);
        const auto [ended, found] = checkWithin(page, options.get());
        EXPECT_EQ(ended, status);
        EXPECT_EQ(found.find(limited) != std::string::npos, isLimited) << found;
        EXPECT_EQ(countFindings(found), findings) << found;
    }
}

TEST(CAnalysis, IsEndedByItsPollFunction) {
    const OptionsHandle options = makeOptions();
    int asked = 0;
    const auto poll = [](void* payload) { return ++*static_cast<int*>(payload) == 2 ? 1 : 0; };
    stencilor_options_set_poll(options.get(), poll, &asked);
    std::string text;
    for (int tag = 0; tag < 10'000; ++tag) {
        text += "{{ title }}";
    }
    EXPECT_EQ(checkWithin(text, options.get()).first, STENCILOR_STOPPED);
    EXPECT_EQ(asked, 2);
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
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    EXPECT_EQ(checkWithin(page, options.get()).first, STENCILOR_STOPPED);
    EXPECT_EQ(found, nullptr);
}

} // namespace
} // namespace support
