#include "../support/SmallStackThread.h"
#include "../support/Test.h"
#include "../support/oracles/ObviousUtf8.h"

#include <libStencilorJson/JsonText.h>
#include <libStencilorJson/json_grammar.h>
#include <libStencilorJson/json_text.h>

#include <cmath>

namespace kel::Stencilor::internal {
namespace {

/// Records each value and name with its range, as `KIND BEGIN-END`.
class Recorder : public JsonReceiver {
  public:
    void null(JsonRange range) override { note("null", range); }
    void boolean(bool value, JsonRange range) override { note(value ? "true" : "false", range); }
    void number(std::string_view written, JsonRange range) override { note(written, range); }
    void string(std::string_view text, JsonRange range) override { note(text, range); }
    void beginArray(std::size_t offset) override { events += "[ " + std::to_string(offset) + "; "; }
    void endArray(JsonRange range) override { note("]", range); }
    void beginObject(std::size_t offset) override {
        events += "{ " + std::to_string(offset) + "; ";
    }
    void name(std::string_view name, JsonRange range) override {
        note(std::string(name) + ":", range);
    }
    void endObject(JsonRange range) override { note("}", range); }

    std::string events;

  private:
    void note(std::string_view what, JsonRange range) {
        events.append(what).append(" ").append(std::to_string(range.begin));
        events.append("-").append(std::to_string(range.end)).append("; ");
    }
};

void read(std::string_view text, JsonReceiver& receiver) {
    JsonGrammar(text, receiver).read();
}

TEST(JsonReceiver, ReceivesEachValueAndNameWithItsRange) {
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"a literal", "true", "true 0-4; "},
        {"whitespace around a value", " \n null\t", "null 3-7; "},
        {"a byte-order mark", "\xEF\xBB\xBF 1", "1 4-5; "},
        {"a number to its last digit", "[-1.50e+07]", "[ 0; -1.50e+07 1-10; ] 0-11; "},
        {"a string with its quotation marks", R"("ab")", "ab 0-4; "},
        {"a string with escapes", R"("\u0041\n")", "A\n 0-10; "},
        {"multi-byte characters", "[\"\u20AC\",1]", "[ 0; \u20AC 1-6; 1 7-8; ] 0-9; "},
        {"an empty array", "[ ]", "[ 0; ] 0-3; "},
        {"names before their values", R"({"a" : false, "b":[]})",
         "{ 0; a: 1-4; false 7-12; b: 14-17; [ 18; ] 18-20; } 0-21; "},
        {"a name with escapes", R"({"\t":1})", "{ 0; \t: 1-5; 1 6-7; } 0-8; "},
        {"nested arrays and objects", R"([{"a":[]}])",
         "[ 0; { 1; a: 2-5; [ 6; ] 6-8; } 1-9; ] 0-10; "},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        Recorder recorder;
        read(text, recorder);
        EXPECT_EQ(recorder.events, expected);
    }
}

TEST(JsonReceiver, ReceivesWhatIsBeforeAFault) {
    Recorder recorder;
    EXPECT_THROW(read(R"({"a":[1,x]})", recorder), JsonError);
    EXPECT_EQ(recorder.events, "{ 0; a: 1-4; [ 5; 1 6-7; ");
}

TEST(JsonReceiver, MayEndTheReading) {
    class Stopper final : public Recorder {
        void null(JsonRange) override { throw std::domain_error("no null"); }
    } stopper;
    EXPECT_THROW(read("[1,null,2", stopper), std::domain_error);
    EXPECT_EQ(stopper.events, "[ 0; 1 1-2; ");
}

TEST(JsonPositions, CountLinesAndCodePoints) {
    const std::string text = "\xEF\xBB\xBF[\n \"\u20AC\U0001F600\", 1]";
    const struct {
        const char* name;
        std::size_t offset;
        std::size_t line;
        std::size_t column;
    } cases[] = {
        {"the start", 0, 1, 1},
        {"after the byte-order mark", 3, 1, 1},
        {"the end of a line", 4, 1, 2},
        {"the start of a line", 5, 2, 1},
        {"after multi-byte characters", 14, 2, 5},
        {"the end of the text", text.size(), 2, 10},
    };
    for (const auto& [name, offset, line, column] : cases) {
        SCOPED_TRACE(name);
        const JsonPosition position = positionAt(text, offset);
        EXPECT_EQ(position.line, line);
        EXPECT_EQ(position.column, column);
    }
}

TEST(JsonCharacters, AreWellFormedUtf8) {
    for (unsigned int bytes = 0; bytes < 0x10000; ++bytes) {
        std::string text{static_cast<char>(bytes >> 8), static_cast<char>(bytes)};
        for (const char* const more : {"\x80", "\xBF", ""}) {
            const bool expected = support::obviouslyRepairedUtf8(text) == text;
            ASSERT_EQ(isValidUtf8(text), expected) << bytes << ", " << text.size() << " bytes";
            text += more;
        }
    }
}

/// Runs the reader with less stack than a thread has on any system.
bool readsOnASmallStack(const std::string& text) {
    bool accepted = true;
    support::runWithStack(256u * 1024, [&] {
        Recorder recorder;
        try {
            read(text, recorder);
        } catch (const JsonError&) {
            accepted = false;
        }
    });
    return accepted;
}

TEST(JsonNesting, UsesNoStack) {
    std::string objects = "1";
    for (std::size_t i = 0; i < Value::deepest; ++i) {
        objects = "{\"a\":" + objects + "}";
    }
    const std::string open(10'000'000, '[');
    EXPECT_TRUE(
        readsOnASmallStack(std::string(Value::deepest, '[') + std::string(Value::deepest, ']')));
    EXPECT_TRUE(readsOnASmallStack(objects));
    EXPECT_FALSE(readsOnASmallStack(open));
    EXPECT_FALSE(readsOnASmallStack(open + std::string(open.size(), ']')));
}

std::size_t comparisons = 0;

struct CountingLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
        ++comparisons;
        return a < b;
    }
};

std::vector<std::string> manyNames(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.push_back("name " + std::to_string(count + i)); // all of the same length
    }
    return names;
}

TEST(NamesOfAnObject, TakeFewComparisonsInAnyOrder) {
    constexpr std::size_t count = 50'000;
    const double most = 3.0 * count * std::log2(count);
    std::vector<std::string> names = manyNames(count);
    for (const char* const order : {"rising", "falling"}) {
        SCOPED_TRACE(order);
        comparisons = 0;
        NameSet<CountingLess> set;
        for (const std::string& name : names) {
            EXPECT_TRUE(set.insert(name));
        }
        EXPECT_FALSE(set.insert(names.front()));
        EXPECT_FALSE(set.insert(names.back()));
        EXPECT_LT(static_cast<double>(comparisons), most);
        std::reverse(names.begin(), names.end());
    }
}

} // namespace
} // namespace kel::Stencilor::internal
