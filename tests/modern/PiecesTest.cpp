#include "../support/Environment.h"
#include "Rendering.h"

namespace support {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Text is held back, sliced and passed on at multiples of this size.
constexpr std::size_t slice = 16384;

const std::size_t longSize = thorough() ? 200'000 : 70'000;
const std::size_t mostBefore = thorough() ? 5 : 3;
const std::size_t lastEnd = thorough() ? 4 * slice : 2 * slice;

constexpr std::string_view malformed[] = {
    "\xC3",         "\xE2\x82",         "\xF0\x9F\x93", "\x80",     "\x80\x80\x80\x80",
    "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8\x80",     "\xFF",     "\xC0\x80",
    "\xE2\x28",     "\xE2\x82\xE2\x82", "\xF0\x9F\xC3", "\xF0\x41",
};

constexpr std::string_view characters[] = {"a", "\u00E9", "\u20AC", "\U0001F4DA"};

std::string repeat(std::string_view text, std::size_t bytes) {
    std::string repeated;
    while (repeated.size() < bytes) {
        repeated += text;
    }
    return repeated;
}

TEST(Pieces, OfAShortTextAreOnePiece) {
    const Pieces written = renderPieces(Template("a{{ b }}c"), Context({{"b", "B"}}));
    EXPECT_THAT(written.pieces, ElementsAre("aBc"));
}

TEST(Pieces, OfAnEmptyTextDoNotExist) {
    EXPECT_THAT(renderPieces(Template(""), Context({})).pieces, IsEmpty());
    EXPECT_THAT(renderPieces(Template("{{ b }}"), Context({{"b", ""}})).pieces, IsEmpty());
    const Pieces rejected = renderPieces(Template("a{{"), Context({}));
    EXPECT_EQ(rejected.result.status, RenderStatus::Rejected);
    EXPECT_THAT(rejected.pieces, IsEmpty());
}

TEST(Pieces, HaveTheMessagesAndTheUsageOfTheWholeText) {
    const Template made("a{{ b }}{{ c }}");
    const Context context({{"c", "C"}});
    const RenderResult whole = made.render(context);
    const Pieces written = renderPieces(made, context);
    ASSERT_THAT(written.result.messages, SizeIs(1));
    EXPECT_EQ(written.result.messages[0].name, "b");
    EXPECT_EQ(written.result.usage.steps, whole.usage.steps);
    EXPECT_EQ(written.result.usage.outputBytes, 2u);
}

TEST(Pieces, NeverSplitACharacterOfALongTemplateOrValue) {
    for (const std::string_view character : characters) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            SCOPED_TRACE(std::string(character) + " after " + std::to_string(shift));
            const std::string text = std::string(shift, 'x') + repeat(character, longSize);
            const Context context({{"v", text}, {"l", listOfNulls(2)}});
            expectSamePieces(Template(text), context);
            expectSamePieces(Template("{% for i in l %}" + text + "{% endfor %}"), context);
            expectSamePieces(Template("{{ v }}"), context);
            expectSamePieces(Template("a{{ v }}{{ v }}"), context, {.escape = Escape::html()});
        }
    }
}

TEST(Pieces, SplitAMegabyte) {
    const std::string text = repeat("a\u00E9\u20AC\U0001F4DA", 1 << 20);
    expectSamePieces(Template(text + "{{ v }}"), Context({{"v", text + '\xF0'}}));
}

// The pieces must agree with the whole text on every byte, so the same bytes are malformed in both.
TEST(Pieces, RepairMalformedBytesWhereverThePieceEnds) {
    const Template alone("{{ v }}b");
    const Template inBlock("{% for i in l %}{{ v }}{{ w }}{% endfor %}b");
    for (const std::string_view bytes : malformed) {
        for (std::size_t end = lastEnd / 2; end <= lastEnd; end += slice) {
            for (std::size_t before = 0; before <= mostBefore; ++before) {
                SCOPED_TRACE(testing::PrintToString(bytes) + " at " + std::to_string(end - before));
                const std::string start(end - before, 'x');
                const Context context(
                    {{"v", start + std::string(bytes)}, {"w", "\x82\xAC"}, {"l", listOfNulls(2)}});
                expectSamePieces(alone, context);
                expectSamePieces(inBlock, context);
            }
        }
    }
}

TEST(Pieces, RepairMalformedTemplatesWhereverThePieceEnds) {
    for (const std::string_view bytes : malformed) {
        for (std::size_t before = 0; before <= mostBefore; ++before) {
            SCOPED_TRACE(testing::PrintToString(bytes) + " " + std::to_string(before));
            const std::string text = std::string(2 * slice - before, 'x') + std::string(bytes);
            expectSamePieces(Template(text + "{{ v }}" + text), Context({{"v", "\x82"}}));
            MemoryTemplates source;
            source.add("part", text);
            source.add("good", repeat("\u20AC", 3 * slice + before));
            expectSamePieces(
                Template("{% if y %}{% include \"part\" %}{{ v }}{% include \"good\" %}"
                         "{% include \"part\" %}{% endif %}b"),
                Context({{"y", true}, {"v", "\x82\xAC"}}), {.source = &source});
        }
    }
}

// Values combine to characters inside one node of the template, but not across nodes.
TEST(Pieces, JoinCharactersOnlyWithinANode) {
    for (std::size_t size = 2 * slice - 4; size <= 2 * slice + 4; ++size) {
        SCOPED_TRACE(size);
        const Context context(
            {{"x", std::string(size, 'x')}, {"a", "\xE2\x82"}, {"b", "\xAC"}, {"y", true}});
        const Template within("{% if y %}{{ x }}{{ a }}{{ b }}{% endif %}");
        expectSamePieces(within, context);
        EXPECT_TRUE(renderPieces(within, context).joined().ends_with("x\u20AC"));
        const Template between("{{ x }}{{ a }}{{ b }}");
        expectSamePieces(between, context);
        EXPECT_TRUE(renderPieces(between, context).joined().ends_with("x\uFFFD\uFFFD"));
    }
}

TEST(Pieces, EndAtTheNulOfALongValue) {
    const std::string text(100'000, 'x');
    const Context context({{"v", text + std::string("\0y", 2)}});
    const Pieces written = renderPieces(Template("{{ v }}z"), context);
    EXPECT_TRUE(written.joined() == text + 'z');
    EXPECT_EQ(written.result.usage.outputBytes, 100'001u);
}

TEST(Pieces, AreWrittenWhileTheRenderGoesOn) {
    std::size_t written = 0;
    bool asked = false;
    const RenderOptions options = {.keepGoing = [&] {
        asked = true;
        EXPECT_GT(written, 0u);
        return true;
    }};
    Template("{% for i in l %}{{ v }}{% endfor %}")
        .renderTo(
            {{"l", listOfNulls(600)}, {"v", std::string(1000, 'v')}},
            [&](std::string_view piece) { written += piece.size(); }, options);
    EXPECT_TRUE(asked);
    EXPECT_EQ(written, 600'000u);
}

TEST(Pieces, AreTheBeginningOfTheTextIfALimitEndsIt) {
    const Template made("{% for i in l %}{{ v }}\u20AC{% endfor %}");
    const Context context({{"l", listOfNulls(300)}, {"v", std::string(997, 'v') + '\xE2'}});
    const std::string whole = made.render(context).text.str();
    for (std::uint64_t limit = 1; limit < 300'000; limit += 9'973) {
        SCOPED_TRACE(limit);
        const Pieces written = renderPieces(made, context, {.limits = {.outputBytes = limit}});
        EXPECT_EQ(written.result.status, RenderStatus::OutputLimit);
        EXPECT_TRUE(whole.starts_with(written.joined()));
    }
}

TEST(Pieces, ThatCannotBeWrittenEndTheRenderWithTheException) {
    const Template made("{% for i in l %}{{ v }}{% endfor %}");
    const Context context({{"l", listOfNulls(200)}, {"v", std::string(1000, 'v')}});
    for (int good = 0; good < 5; ++good) {
        int left = good;
        try {
            made.renderTo(context, [&left](std::string_view) {
                if (left-- == 0) {
                    throw std::runtime_error("the disk is full");
                }
            });
            FAIL() << "nothing was thrown after " << good << " pieces";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "the disk is full");
        }
        expectSamePieces(made, context);
    }
    const auto throwNumber = [](std::string_view) { throw 42; };
    EXPECT_THROW(made.renderTo(context, throwNumber), int);
}

TEST(Pieces, MayBeWrittenByAFunctionThatRenders) {
    const Template made("{% for i in l %}{{ v }}{% endfor %}");
    const Context context({{"l", listOfNulls(100)}, {"v", std::string(1000, 'v')}});
    std::string joined;
    made.renderTo(context, [&](std::string_view piece) {
        expectSamePieces(made, context);
        joined += piece;
    });
    EXPECT_TRUE(joined == std::string(100'000, 'v'));
}

} // namespace
} // namespace support
