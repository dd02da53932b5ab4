#include "../support/Environment.h"
#include "../support/Test.h"
#include "../support/oracles/RandomTemplate.h"
#include "../support/oracles/ReadingComparison.h"

namespace support {
namespace {

/// Tests every sequence of `count` tokens after `begin`. The reports to hosts take longer to
/// compare, so they are only compared for the first few tokens.
void tryAllSequences(const std::string& begin, int count, int reported) {
    if (reported >= 0 || !readsTheSame(begin)) {
        expectTheSameReading(begin);
    }
    if (count > 0 && !testing::Test::HasFailure()) {
        for (const std::string_view token : tokens) {
            tryAllSequences(std::string(begin).append(token), count - 1, reported - 1);
        }
    }
}

// Each additional token takes 22 times as long. Blocks have seven tokens, which takes a quarter of
// an hour.
TEST(EverySequence, OfAFewTokensIsReadTheSame) {
    const std::uint64_t count = numberFromEnvironment("STENCILOR_TOKENS", 4);
    tryAllSequences("", static_cast<int>(count), thorough() ? 4 : 3);
}

TEST(SecondReading, AgreesOnAllEndsOfTagsWithAValidBeginning) {
    const int count = thorough() ? 3 : 2;
    for (const char* const begin :
         {"{%if x", "{% if x %}", "{% if x %}{% else", "{% if x %}a{% else %}",
          "{% if x %}{% endif", "{% for x", "{% for x in", "{% for x in y %}",
          "{% for x in y %}{% endfor", "{{x", "{{ x }", "{% include", "{% include \"x",
          "{% include \"x\"", "{% if x %}{% for y in z %}",
          "{% for x in y %}{% if z %}{% else %}"}) {
        tryAllSequences(begin, count, count);
    }
}

TEST(SecondReading, AgreesOnRandomSequencesOfStatements) {
    constexpr std::array statements = {
        "{%if a%}",   "{%else%}", "{%endif%}",       "{%for a in b%}", "{%endfor%}",
        "{{ a }}",    "text\t {", "{%\tifx%}",       "{% else %}",     "{%for a inb%}",
        "{%endif %}", "}} \n\t",  "{%include\"a\"%}"};
    const int count = thorough() ? 200000 : 20000;
    std::mt19937 random(5);
    for (int turn = 0; turn < count && !testing::Test::HasFailure(); ++turn) {
        std::string input;
        int open = 0;
        for (std::size_t left = random() % 16; left > 0; --left) {
            const std::string statement = statements[random() % statements.size()];
            open += statement == "{%if a%}" ? 1 : 0;
            input += statement;
        }
        // Half of them get closing tags, so that many are accepted.
        for (; random() % 2 == 0 && open > 0; --open) {
            input += "{% endif %}";
        }
        expectTheSameReading(input);
    }
}

// The environment selects the cases, as for renderings.
TEST(SecondReading, AgreesOnRandomTemplates) {
    const std::uint64_t first = numberFromEnvironment("STENCILOR_SEED", 0);
    const std::uint64_t last = first + numberFromEnvironment("STENCILOR_CASES", 5000);
    for (std::uint64_t seed = first; seed < last && !testing::Test::HasFailure(); ++seed) {
        Random random(seed);
        expectTheSameReading(randomTemplate(random, 24, {"a", "b/c.txt"}));
    }
}

/// The significant bytes and some others; all of them in exhaustive tests.
std::string bytesToTry() {
    std::string bytes("{}% \t\r\n\"azAZ_09./\x01\x7F\x80\xFF\0", 22);
    if (thorough()) {
        bytes.clear();
        for (int byte = 0; byte < 256; ++byte) {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

// A well-formed template with one byte changed, removed or inserted.
TEST(SecondReading, AgreesOnWellFormedTemplatesWithOneFault) {
    const std::string whole =
        "a {{ b.c }}\n{% if d %}e{% else %}{% for f in g/h %} {{f}} {% endfor "
        "%}{%endif%}{% include \" i.j \" %}{% for k in l %}{%ifm%}{% endif %}{"
        "{%endfor%}";
    expectTheSameReading(whole);
    for (std::size_t at = 0; at < whole.size() && !testing::Test::HasFailure(); ++at) {
        expectTheSameReading(whole.substr(0, at));
        expectTheSameReading(whole.substr(at));
        expectTheSameReading(std::string(whole).erase(at, 1));
        for (const char byte : bytesToTry()) {
            std::string changed = whole;
            changed[at] = byte;
            expectTheSameReading(changed);
            expectTheSameReading(std::string(whole).insert(at, 1, byte));
        }
    }
}

} // namespace
} // namespace support
