#include "../support/Test.h"
#include "MemoryReader.h"

#include <libStencilor/Value.h>
#include <libStencilorAnalysis/check/TextCheck.h>
#include <libStencilorAnalysis/check/UnusedNames.h>
#include <libStencilorAnalysis/finding/FindingFormat.h>

namespace kel::Stencilor::Analysis {
namespace {

TEST(TextCheck, WarnsAboutDamagedBytes) {
    const struct {
        const char* name;
        std::string text;
        std::vector<std::string> starts; ///< of the warnings
    } cases[] = {
        {"nothing", "a\u00E9\uFFFD\n", {}},
        {"an empty file", "", {}},
        {"a NUL byte", std::string("a\nb\0c\0", 6), {"page:2:2: warning: a NUL byte"}},
        {"a byte-order mark",
         "\xEF\xBB\xBF"
         "a",
         {"page:1:1: warning: the file begins with a byte"}},
        {"malformed UTF-8, once", "ab\xFF\xFF", {"page:1:3: warning: malformed UTF-8"}},
        {"malformed UTF-8 after the end",
         std::string("abcd\0\xFF", 6),
         {"page:1:5: warning: a NUL"}},
        {"UTF-16 with a mark",
         std::string("\xFF\xFE"
                     "a\0b\0",
                     6),
         {"page:1:1: warning: the file looks like UTF-16"}},
        {"UTF-16 without a mark",
         std::string("\0a\0b\0\n", 6),
         {"page:1:1: warning: the file looks like UTF-16"}},
    };
    for (const auto& [name, text, starts] : cases) {
        SCOPED_TRACE(name);
        const TemplateFile file("page", text);
        std::vector<Finding> found;
        checkText(file, found);
        EXPECT_EQ(isDamaged(text), !starts.empty());
        ASSERT_EQ(found.size(), starts.size());
        for (std::size_t i = 0; i < starts.size(); ++i) {
            EXPECT_TRUE(formatText({found[i]}).starts_with(starts[i])) << formatText(found);
        }
    }
}

TEST(UnusedNames, AreFoundInTheContext) {
    const Context context(Value{{"title", "x"},
                                {"old", "x"},
                                {"user", Value{{"name", "x"}, {"mail", "x"}}},
                                {"notice", Value{{"$boolean", true}, {"text", "x"}, {"by", "x"}}},
                                {"gone", Value{{"a", "x"}, {"b", "x"}}},
                                {"items", Value::list({Value{{"title", "x"}, {"price", "x"}},
                                                       Value{{"title", "x"}, {"size", "x"}}})},
                                {"unusedItems", Value::list({Value{{"title", "x"}}})}});
    const std::map<std::string, std::string> texts = {{"part", "{{ title }}"}};
    MemoryReader reader(texts);
    TemplateFiles files(reader);
    UnusedNames names;
    survey(files,
           files.add({"page", "page",
                      R"({{ user.name }}{% for i in items %}{{ i.price }}{% include "part" %})"
                      "{% endfor %}{% if notice %}{{ text }}{% endif %}"}),
           names);
    EXPECT_EQ(names.find(context), (std::vector<std::string>{"gone", "items.size", "notice.by",
                                                             "old", "unusedItems", "user.mail"}));
}

} // namespace
} // namespace kel::Stencilor::Analysis
