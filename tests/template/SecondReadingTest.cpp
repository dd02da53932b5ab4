#include "../support/SecondReading.h"

#include "../support/Build.h"
#include "../support/SyntaxTree.h"

#include <libStencilor/template/parse_template.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace kel::Stencilor::internal {
namespace {

void expectTheSameReading(const std::string& input) {
    syntax_tree parsed;
    syntax_tree read;
    const String text(input.data(), static_cast<unsigned int>(input.size()));
    const bool accepted = parseTemplate(text, parsed.nodes);
    ASSERT_EQ(accepted, support::readOnceMore(input.c_str(), read.nodes)) << input;
    ASSERT_EQ(support::describe(parsed.nodes), support::describe(read.nodes)) << input;
}

constexpr std::array pieces = {"{%",      "%}",    "{{",  "}}", "{", "if",
                               "else",    "endif", "for", "in", "x", "endfor",
                               "include", "\"",    " ",   "\n", "1", "\xFF"};

/// Every sequence of `count` pieces behind `begin`.
void tryAllSequences(const std::string& begin, int count) {
    expectTheSameReading(begin);
    if (count > 0 && !testing::Test::HasFatalFailure()) {
        for (const char* const piece : pieces) {
            tryAllSequences(begin + piece, count - 1);
        }
    }
}

TEST(SecondReading, AgreesOnAllShortSequences) {
    tryAllSequences("", support::slow ? 3 : 4);
}

TEST(SecondReading, AgreesOnAllEndsOfStatementsThatBeganWell) {
    const int count = support::slow ? 2 : 3;
    for (const char* const begin :
         {"{%if x", "{% if x %}", "{% if x %}{% else", "{% if x %}a{% else %}",
          "{% if x %}{% endif", "{% for x", "{% for x in", "{% for x in y %}",
          "{% for x in y %}{% endfor", "{{x", "{{ x }", "{% include", "{% include \"x",
          "{% include \"x\"", "{% if x %}{% for y in z %}",
          "{% for x in y %}{% if z %}{% else %}"}) {
        tryAllSequences(begin, count);
    }
}

TEST(SecondReading, AgreesOnRandomSequencesOfStatements) {
    constexpr std::array statements = {"{% if a %}",
                                       "{% else %}",
                                       "{% endif %}",
                                       "{% for a in b %}",
                                       "{% endfor %}",
                                       "{{ a }}",
                                       "{% include \"a\" %}",
                                       "text",
                                       " ",
                                       "\n",
                                       "{%ifx%}",
                                       "{%\tendif%}",
                                       "{%for x iny%}",
                                       "{",
                                       "}}"};
    std::mt19937 random(5);
    for (int turn = 0; turn < (support::slow ? 20000 : 200000); ++turn) {
        std::string input;
        int open = 0;
        for (std::size_t left = random() % 16; left > 0; --left) {
            const std::string statement = statements[random() % statements.size()];
            open += statement == "{% if a %}" ? 1 : 0;
            input += statement;
        }
        // Half of them are given their closers, so that many are accepted.
        for (; random() % 2 == 0 && open > 0; --open) {
            input += "{% endif %}";
        }
        ASSERT_NO_FATAL_FAILURE(expectTheSameReading(input));
    }
}

/// All bytes; in a slow build those that mean something, and some others.
std::string bytesToTry() {
    std::string bytes = "{}% \t\r\n\"azAZ_09./\x01\x7F\x80\xFF";
    if (!support::slow) {
        bytes.clear();
        for (int byte = 1; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

// A template that is well formed, with one byte of it changed, left out or put in.
TEST(SecondReading, AgreesOnWellFormedTemplatesWithOneFault) {
    const std::string whole =
        "a {{ b.c }}\n{% if d %}e{% else %}{% for f in g/h %} {{f}} {% endfor "
        "%}{%endif%}{% include \" i.j \" %}{% for k in l %}{%ifm%}{% endif %}{"
        "{%endfor%}";
    ASSERT_NO_FATAL_FAILURE(expectTheSameReading(whole));
    for (std::size_t at = 0; at < whole.size(); ++at) {
        ASSERT_NO_FATAL_FAILURE(expectTheSameReading(whole.substr(0, at)));
        ASSERT_NO_FATAL_FAILURE(expectTheSameReading(whole.substr(at)));
        ASSERT_NO_FATAL_FAILURE(expectTheSameReading(std::string(whole).erase(at, 1)));
        for (const char byte : bytesToTry()) {
            std::string changed = whole;
            changed[at] = byte;
            ASSERT_NO_FATAL_FAILURE(expectTheSameReading(changed));
            ASSERT_NO_FATAL_FAILURE(expectTheSameReading(std::string(whole).insert(at, 1, byte)));
        }
    }
}

} // namespace
} // namespace kel::Stencilor::internal
