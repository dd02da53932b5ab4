#include "../support/Test.h"

#include <tools/stencilor/lsp/Documents.h>
#include <tools/stencilor/lsp/ResponseError.h>

namespace stencilor::lsp {
namespace {

Json position(int line, int character) {
    return {{"line", line}, {"character", character}};
}

Json edit(const Json& start, const Json& end, const std::string& text) {
    return {{"range", {{"start", start}, {"end", end}}}, {"text", text}};
}

class DocumentsTest : public ::testing::Test {
  protected:
    Documents documents;

    void open(const std::string& text) {
        documents.open(
            {{"uri", "untitled:a"}, {"languageId", "stencilor"}, {"version", 1}, {"text", text}});
    }

    std::string change(const Json& changes) {
        return documents
            .change({{"textDocument", {{"uri", "untitled:a"}, {"version", 2}}},
                     {"contentChanges", changes}})
            .text.text();
    }
};

struct Case {
    std::string name;
    std::string before;
    Json changes;
    std::string after;
};

TEST_F(DocumentsTest, AreChangedStepByStep) {
    for (const Case& each : std::vector<Case>{
             {"nothing", "ab", Json::array(), "ab"},
             {"the whole text", "ab", Json::array({{{"text", "new"}}}), "new"},
             {"one letter", "ab", Json::array({edit(position(0, 1), position(0, 1), "X")}), "aXb"},
             {"across lines", "ab\ncd", Json::array({edit(position(0, 1), position(1, 1), "")}),
              "ad"},
             {"each change after the previous one",
              "ab",
              {edit(position(0, 0), position(0, 0), "1\n"),
               edit(position(1, 0), position(1, 1), "2")},
              "1\n2b"},
             {"the end before the start", "abcd",
              Json::array({edit(position(0, 3), position(0, 1), "-")}), "a-d"},
             {"after the end", "ab", Json::array({edit(position(7, 7), position(9, 9), "c")}),
              "abc"},
             {"negative numbers", "ab", Json::array({edit(position(-1, -7), position(0, 1), "c")}),
              "cb"},
             {"UTF-16 units", "\xF0\x9F\x8D\xB5x",
              Json::array({edit(position(0, 2), position(0, 3), "y")}), "\xF0\x9F\x8D\xB5y"},
         }) {
        SCOPED_TRACE(each.name);
        open(each.before);
        EXPECT_EQ(change(each.changes), each.after);
    }
}

TEST_F(DocumentsTest, RejectInvalidChanges) {
    open("ab");
    for (const Json& changes : std::vector<Json>{
             Json::array({7}),
             Json::array({Json::object()}),
             Json::array({Json{{"text", 7}}}),
             Json::array({edit(position(0, 0), Json::object(), "")}),
             Json::array({edit(position(0, 0), Json{{"line", 1.5}, {"character", "x"}}, "")}),
         }) {
        EXPECT_ANY_THROW(change(changes)) << changes.dump();
    }
    EXPECT_THROW(documents.of({{"textDocument", {{"uri", "untitled:b"}}}}), ResponseError);
}

TEST_F(DocumentsTest, AreOpenOncePerName) {
    open("one");
    open("two");
    EXPECT_EQ(documents.all().size(), 1u);
    EXPECT_EQ(documents.find("untitled:a")->text.text(), "two");
    documents.close({{"textDocument", {{"uri", "untitled:a"}}}});
    EXPECT_EQ(documents.find("untitled:a"), nullptr);
}

} // namespace
} // namespace stencilor::lsp
