#include "Rendering.h"

namespace support {
namespace {

using Kind = RenderMessage::Kind;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const Value& values() {
    static const Value instance{{"t", "x"},
                                {"yes", true},
                                {"two", Value::list({{{"t", "1"}}, {{"t", "2"}}})},
                                {"nulls", listOfNulls(32)},
                                {"none", Value::list({})}};
    return instance;
}

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

/// Two loops around a name with three keys, of which one is stored: the other two are built in each
/// scope.
std::string longName() {
    const std::string name = "a.a." + std::string(10'000, 'b');
    return "{% for a in one %}{% for a.a in one %}{{ " + name + " }}{% endfor %}{% endfor %}";
}

class Limits : public testing::Test {
  protected:
    Limits() {
        source_.add("part", "ab{{ t }}");
        source_.add("outer", "{% include \"part\" %}{% include \"part\" %}");
        source_.add("empty", "");
        source_.add("rejected", "{{");
    }

    RenderResult render(const std::string& text, const RenderLimits& limits = {}) {
        return Template(text, "page").render(context_, {.source = &source_, .limits = limits});
    }

    MemoryTemplates source_;
    const Context context_{values()};
};

// What is remembered between iterations must not depend on the address of a template.
TEST_F(Limits, CountTheSameStepsForEachCopyOfATemplate) {
    std::string tags;
    for (int name = 0; name < 40; ++name) {
        tags += "{{ n" + std::to_string(name) + " }}";
    }
    const std::string text = "{% for x in nulls %}" + tags + "{% endfor %}";
    const std::uint64_t expected = render(text).usage.steps;
    std::vector<Template> others;
    for (int copy = 1; copy < 40; ++copy) {
        others.emplace_back(kel::String(std::string(static_cast<std::size_t>(copy) * 40, 'x')));
        EXPECT_EQ(render(text).usage.steps, expected);
    }
}

TEST_F(Limits, CountEachNodeIterationAndSixtyFourKeysAsSteps) {
    const struct {
        const char* name;
        std::string input;
        std::uint64_t steps;
    } cases[] = {
        {"nothing", "", 0},
        {"a text", "abc", 1},
        {"a value", "{{ t }}", 1},
        {"a missing value", "{{ gone }}", 1},
        {"nodes side by side", "a{{ t }}b", 3},
        {"a condition and what is rendered", "{% if yes %}a{% else %}b{{ t }}{% endif %}", 2},
        {"a missing condition", "{% if gone %}a{% endif %}", 1},
        {"a loop over nothing", "{% for x in none %}a{% endfor %}", 1},
        {"a missing list", "{% for x in gone %}a{% endfor %}", 1},
        {"iterations without nodes", "{% for x in two %}{% endfor %}", 3},
        {"iterations with nodes", "{% for x in two %}a{{ x.t }}{% endfor %}", 7},
        {"an include and its nodes", "{% include \"part\" %}", 3},
        {"an include of nothing", "{% include \"empty\" %}", 1},
        {"a rejected include", "{% include \"rejected\" %}", 1},
        {"a missing include", "{% include \"gone\" %}", 1},
        {"nested includes", "{% include \"outer\" %}", 7},
        {"63 keys", repeated("{{ t }}", 63), 63},
        {"64 keys", repeated("{{ t }}", 64), 65},
        {"127 keys", repeated("{{ t }}", 127), 128},
        {"128 keys", repeated("{{ t }}", 128), 130},
        {"two keys of each of 32 names and one of the list",
         "{% for x in nulls %}{{ x.gone }}{% endfor %}", 66},
        {"keys in the scopes of an element and of the root",
         repeated("{% for x in two %}{{ gone }}{% endfor %}", 22), 22 * 5 + 1},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(render(row.input).usage.steps, row.steps);
    }
}

TEST_F(Limits, CountEveryFourKibibytesOfBuiltKeysAsAStep) {
    const std::string input = longName();
    const RenderResult result = Template(input).render({{"one", listOfNulls(1)}});
    EXPECT_EQ(result.usage.messages, 1u);
    // Two loops with an iteration each, the name, and 10,002 and 10,004 bytes.
    EXPECT_EQ(result.usage.steps, 5u + 20'006 / 4096);
}

TEST_F(Limits, OfStepsHoldAtEveryNumber) {
    const std::string inputs[] = {
        "a{{ t }}b",
        "{% for x in two %}a{{ x.t }}{% endfor %}",
        "{% include \"outer\" %}{% if yes %}{% include \"part\" %}{% endif %}{{ gone }}",
        repeated("{{ t }}", 64) + "a",
        longName(),
    };
    for (const std::string& input : inputs) {
        const Template made(input);
        const Context context(values());
        const RenderResult whole = made.render(context, {.source = &source_});
        const std::uint64_t steps = whole.usage.steps;
        EXPECT_EQ(render(input, {.steps = 0}).status, RenderStatus::Complete);
        for (std::uint64_t limit = 1; limit <= steps + 1; ++limit) {
            SCOPED_TRACE(limit);
            const RenderOptions options{.source = &source_, .limits = {.steps = limit}};
            const RenderResult result = made.render(context, options);
            const Pieces written = renderPieces(made, context, options);
            EXPECT_EQ(written.result.status, result.status);
            EXPECT_TRUE(whole.text.str().starts_with(written.joined()));
            if (limit >= steps) {
                EXPECT_EQ(result.status, RenderStatus::Complete);
                EXPECT_EQ(result.text, whole.text);
                EXPECT_EQ(result.usage.steps, steps);
            } else {
                EXPECT_EQ(result.status, RenderStatus::StepLimit);
                EXPECT_TRUE(result.text.empty());
                EXPECT_EQ(result.usage.steps, limit);
                ASSERT_FALSE(result.messages.empty());
                EXPECT_EQ(result.messages.back().kind, Kind::StepLimit);
                EXPECT_EQ(result.messages.back().name, "");
            }
        }
    }
}

TEST_F(Limits, OfBytesHoldAtEveryNumber) {
    const std::string input = "abc{{ t }}{% for x in two %}{{ x.t }}-{% endfor %}{% include "
                              "\"part\" %}{{ long }}{{ malformed }}";
    const Template made(input);
    const Context context({{"t", "x"},
                           {"two", Value::list({{{"t", "1"}}, {{"t", "\u20AC"}}})},
                           {"long", std::string(20, 'l') + std::string("\0no", 3)},
                           {"malformed", "\xFF\xFF"}});
    const RenderResult whole = made.render(context, {.source = &source_});
    constexpr std::uint64_t bytes = 3 + 1 + 2 + 4 + 3 + 20 + 2;
    EXPECT_EQ(whole.usage.outputBytes, bytes);
    EXPECT_EQ(whole.text.size(), bytes + 4); // U+FFFD has three
    EXPECT_EQ(made.render(context, {.source = &source_, .limits = {.outputBytes = 0}}).status,
              RenderStatus::Complete);
    for (std::uint64_t limit = 1; limit <= bytes + 1; ++limit) {
        SCOPED_TRACE(limit);
        const RenderOptions options{.source = &source_, .limits = {.outputBytes = limit}};
        const RenderResult result = made.render(context, options);
        EXPECT_LE(result.usage.outputBytes, limit);
        if (limit >= bytes) {
            EXPECT_EQ(result.status, RenderStatus::Complete);
            EXPECT_EQ(result.text, whole.text);
        } else {
            EXPECT_EQ(result.status, RenderStatus::OutputLimit);
            EXPECT_TRUE(result.text.empty());
            ASSERT_THAT(result.messages, SizeIs(1));
            EXPECT_EQ(result.messages[0].kind, Kind::OutputLimit);
        }
        EXPECT_TRUE(whole.text.str().starts_with(renderPieces(made, context, options).joined()));
    }
}

TEST_F(Limits, OfBytesCountEscapedValues) {
    const Template made("{{ t }}");
    const Context context({{"t", "<>"}});
    RenderOptions options{.escape = Escape::html(), .limits = {.outputBytes = 8}};
    EXPECT_EQ(made.render(context, options).status, RenderStatus::Complete);
    EXPECT_EQ(made.render(context, options).usage.outputBytes, 8u);
    options.limits.outputBytes = 7;
    EXPECT_EQ(made.render(context, options).status, RenderStatus::OutputLimit);
}

TEST_F(Limits, OfTemplateBytesCountEachPathOnce) {
    // "part" has 9 bytes and "outer" 38.
    const std::string input = "{% include \"part\" %}{% include \"part\" %}{% include \"outer\" %}"
                              "{% include \"empty\" %}{% include \"gone\" %}";
    constexpr std::uint64_t bytes = 9 + 40;
    EXPECT_EQ(render(input).usage.templateBytes, bytes);
    for (std::uint64_t limit = 0; limit <= bytes + 1; ++limit) {
        SCOPED_TRACE(limit);
        const RenderResult result = render(input, {.templateBytes = limit});
        if (limit == 0 || limit >= bytes) {
            EXPECT_EQ(result.status, RenderStatus::Complete);
            EXPECT_EQ(result.usage.templateBytes, bytes);
            continue;
        }
        EXPECT_EQ(result.status, RenderStatus::TemplateLimit);
        EXPECT_TRUE(result.text.empty());
        EXPECT_EQ(result.usage.templateBytes, limit < 9 ? 0u : 9u);
        ASSERT_THAT(result.messages, SizeIs(1));
        EXPECT_EQ(result.messages[0].kind, Kind::TemplateLimit);
        EXPECT_EQ(textIn(input, result.messages[0].range), limit < 9 ? "part" : "outer");
    }
}

TEST_F(Limits, OfTemplateBytesCountTheFileThatIsRendered) {
    for (std::uint64_t limit = 1; limit <= 9; ++limit) {
        const RenderResult result = kel::Stencilor::renderFile(
            "part", values(), {.source = &source_, .limits = {.templateBytes = limit}});
        EXPECT_EQ(result.status, limit < 9 ? RenderStatus::TemplateLimit : RenderStatus::Complete);
        EXPECT_EQ(result.usage.templateBytes, limit < 9 ? 0u : 9u);
        EXPECT_EQ(result.text, limit < 9 ? "" : "abx");
        EXPECT_THAT(result.messages, SizeIs(limit < 9 ? 1 : 0));
    }
}

TEST_F(Limits, OfDepthHoldAtEveryNumber) {
    for (int level = 0; level < 120; ++level) {
        source_.add("d" + std::to_string(level), std::to_string(level % 10) + "{% include \"d" +
                                                     std::to_string(level + 1) + "\" %}");
    }
    const auto depthOf = [](unsigned int limit) { return limit == 0 || limit > 100 ? 100 : limit; };
    for (const unsigned int limit : {0u, 1u, 2u, 3u, 99u, 100u, 101u, 102u, 4294967295u}) {
        SCOPED_TRACE(limit);
        const unsigned int depth = depthOf(limit);
        const std::string exact = "{% include \"d" + std::to_string(120 - depth) + "\" %}";
        const RenderResult reached = render(exact, {.includeDepth = limit});
        EXPECT_EQ(reached.status, RenderStatus::Complete);
        EXPECT_EQ(reached.usage.includeDepth, depth);
        ASSERT_THAT(reached.messages, SizeIs(1));
        EXPECT_EQ(reached.messages[0].kind, Kind::FileNotFound);

        const std::string over = "{% include \"d" + std::to_string(119 - depth) + "\" %}";
        const RenderResult exceeded = render(over, {.includeDepth = limit});
        EXPECT_EQ(exceeded.status, RenderStatus::DepthLimit);
        EXPECT_TRUE(exceeded.text.empty());
        EXPECT_EQ(exceeded.usage.includeDepth, depth);
        ASSERT_THAT(exceeded.messages, SizeIs(1));
        EXPECT_EQ(exceeded.messages[0].kind, Kind::DepthLimit);
        EXPECT_EQ(exceeded.messages[0].templateName, "d118");
        EXPECT_THAT(exceeded.messages[0].includedFrom, SizeIs(depth));
    }
}

struct Place {
    std::string templateName;
    std::string text;
    unsigned int line;
    unsigned int column;
    std::size_t includes;

    bool operator==(const Place&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const Place& place) {
        return stream << place.templateName << ':' << place.line << ':' << place.column << " ["
                      << place.text << "] in " << place.includes;
    }
};

Place placeOf(const RenderMessage& message, const std::string& source) {
    return {message.templateName.str(), textIn(source, message.range), message.line, message.column,
            message.includedFrom.size()};
}

TEST_F(Limits, NameTheLocationOfEachStep) {
    const std::string part = "\u00E9\n{{ t }}";
    source_.add("p", part);
    const std::string page = "ab\nc{{ t }}\n"
                             "{% for x in two %}\u20AC{% if yes %}{{ x.t }}{% else %}never"
                             "{% endif %}{% include \"p\" %}{% endfor %}!";
    const std::vector<Place> turn = {
        {"page", "two", 3, 13, 0}, {"page", "\u20AC", 3, 19, 0}, {"page", "yes", 3, 26, 0},
        {"page", "x.t", 3, 35, 0}, {"page", "p", 3, 79, 0},      {"p", "\u00E9\n", 1, 1, 1},
        {"p", "t", 2, 4, 1},
    };
    std::vector<Place> expected = {
        {"page", "ab\nc", 1, 1, 0}, {"page", "t", 2, 5, 0}, {"page", "\n", 2, 9, 0}, turn[0]};
    expected.insert(expected.end(), turn.begin(), turn.end());
    expected.insert(expected.end(), turn.begin(), turn.end());
    expected.push_back({"page", "!", 3, 96, 0});
    ASSERT_EQ(render(page).usage.steps, expected.size());
    for (std::uint64_t limit = 1; limit < expected.size(); ++limit) {
        SCOPED_TRACE(limit);
        const RenderResult result = render(page, {.steps = limit});
        ASSERT_THAT(result.messages, SizeIs(1));
        const RenderMessage& message = result.messages[0];
        const std::string& source = message.templateName == "p" ? part : page;
        EXPECT_EQ(placeOf(message, source), expected[limit]);
    }
}

TEST_F(Limits, NameTheLocationOfTheTextOrValueThatIsTooLong) {
    const struct {
        const char* name;
        std::string input;
        std::uint64_t limit;
        Place place;
    } cases[] = {
        {"the first text", "abc{{ t }}", 1, {"page", "abc", 1, 1, 0}},
        {"a value", "abc{{ t }}", 3, {"page", "t", 1, 7, 0}},
        {"a text after blocks",
         "{% if yes %}a{% else %}b{% endif %}\n{% for x in two %}{% endfor %}cde",
         4,
         {"page", "cde", 2, 31, 0}},
        {"a text in an else", "{% if no %}a{% else %}bc{% endif %}", 1, {"page", "bc", 1, 23, 0}},
        {"a text in nested blocks",
         "{% if yes %}{% for x in two %}{% if yes %}ab{% endif %}{% endfor %}{% endif %}",
         3,
         {"page", "ab", 1, 43, 0}},
        {"a text of an included template", "{% include \"outer\" %}", 4, {"part", "ab", 1, 1, 2}},
        {"a value of an included template", "{% include \"part\" %}", 2, {"part", "t", 1, 6, 1}},
    };
    const Value context{{"t", "x"},
                        {"yes", true},
                        {"no", false},
                        {"two", Value::list({{{"t", "1"}}, {{"t", "2"}}})}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const RenderResult result =
            Template(row.input, "page")
                .render(context, {.source = &source_, .limits = {.outputBytes = row.limit}});
        EXPECT_EQ(result.status, RenderStatus::OutputLimit);
        ASSERT_THAT(result.messages, SizeIs(1));
        const RenderMessage& message = result.messages[0];
        const std::string source = message.templateName == "part" ? "ab{{ t }}" : row.input;
        EXPECT_EQ(placeOf(message, source), row.place);
    }
}

TEST_F(Limits, AreMessagesThatAreAlwaysKept) {
    const std::string input = "{{ gone }}{{ gone }}";
    const RenderResult all = render(input, {.steps = 1});
    EXPECT_THAT(all.messages, SizeIs(2));
    EXPECT_EQ(all.usage.messages, 2u);
    const RenderResult one = render(input, {.steps = 1, .messages = 1});
    EXPECT_EQ(one.status, RenderStatus::StepLimit);
    ASSERT_THAT(one.messages, SizeIs(2));
    EXPECT_EQ(one.messages[1].kind, Kind::StepLimit);
    EXPECT_EQ(one.usage.messages, 2u);
}

/// Counts its calls, and stops a render at one of them.
struct Question {
    RenderOptions options() {
        return {.keepGoing = [this] { return ++asked != stopAt; }};
    }

    int asked = 0;
    int stopAt = 0;
};

TEST_F(Limits, CallTheHostEvery1024Steps) {
    const struct {
        int nodes;
        int asked;
    } cases[] = {{0, 0}, {1, 0}, {1023, 0}, {1024, 0}, {1025, 1}, {2048, 1}, {2049, 2}, {5000, 4}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.nodes);
        Question question;
        const Template made(repeated("{% if yes %}{% endif %}", row.nodes));
        // A key for each node would be steps, too.
        const std::string noKeys = repeated("a{% include \"gone\" %}", row.nodes / 2) +
                                   std::string(static_cast<std::size_t>(row.nodes % 2), 'a');
        RenderOptions options = question.options();
        options.source = &source_;
        const RenderResult result = Template(noKeys).render({}, options);
        EXPECT_EQ(result.usage.steps, static_cast<std::uint64_t>(row.nodes));
        EXPECT_EQ(question.asked, row.asked);
        EXPECT_EQ(result.status, RenderStatus::Complete);
    }
}

TEST_F(Limits, LeaveAStopToTheHost) {
    const Template made(repeated("a\n{% include \"gone\" %}", 2000));
    for (const int stopAt : {1, 2, 3}) {
        Question question{.stopAt = stopAt};
        RenderOptions options = question.options();
        options.source = &source_;
        options.limits.messages = 0;
        const RenderResult result = made.render({}, options);
        EXPECT_EQ(result.status, RenderStatus::Stopped);
        EXPECT_TRUE(result.text.empty());
        EXPECT_EQ(question.asked, stopAt);
        EXPECT_EQ(result.usage.steps, static_cast<std::uint64_t>(stopAt) * 1024);
        EXPECT_EQ(result.messages.back().kind, Kind::Stopped);
        EXPECT_EQ(result.messages.back().line, static_cast<unsigned int>(stopAt) * 512 + 1);
        question.asked = 0;
        const Pieces written = renderPieces(made, Context({}), options);
        EXPECT_EQ(written.result.status, RenderStatus::Stopped);
        EXPECT_TRUE(made.render({}).text.str().starts_with(written.joined()));
    }
}

TEST_F(Limits, ComeBeforeTheQuestion) {
    Question question{.stopAt = 1};
    RenderOptions options = question.options();
    options.limits.steps = 1024;
    const std::string input = repeated("a{{ t }}", 2000);
    EXPECT_EQ(Template(input).render(context_, options).status, RenderStatus::StepLimit);
    EXPECT_EQ(question.asked, 0);
}

TEST_F(Limits, LetTheQuestionThrowAndRender) {
    const Template made("{% for x in l %}a{% endfor %}");
    const Context context({{"l", listOfNulls(2000)}});
    EXPECT_THROW(made.render(context, {.keepGoing = []() -> bool { throw 42; }}), int);
    int depth = 0;
    RenderOptions options;
    options.keepGoing = [&] {
        if (++depth < 5) {
            EXPECT_EQ(made.render(context, options).text.size(), 2000u);
        }
        return true;
    };
    EXPECT_EQ(made.render(context, options).text.size(), 2000u);
    EXPECT_GT(depth, 5);
}

TEST_F(Limits, WithoutALimitAreReached) {
    constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
    const RenderResult result =
        render("{% include \"outer\" %}{{ t }}",
               {.steps = all, .outputBytes = all, .templateBytes = all, .messages = 4294967295u});
    EXPECT_EQ(result.status, RenderStatus::Complete);
    EXPECT_EQ(result.text, "abxabxx");
    EXPECT_EQ(result.usage.outputBytes, 7u);
    EXPECT_EQ(result.usage.templateBytes, 49u);
    EXPECT_EQ(result.usage.messages, 0u);
}

} // namespace
} // namespace support
