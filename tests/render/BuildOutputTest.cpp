#include "../support/Test.h"
#include "Cases.h"

namespace support {
namespace {

using kel::String;
using kel::Stencilor::buildOutput;

constexpr const char* notParsed =
    "Could not build formatted output: Failed to parse input correctly.";

TEST(BuildOutput, OfAnEmptyTemplateIsEmpty) {
    const Root root;
    String errors("untouched");
    EXPECT_EQ(buildOutput("", root, errors), "");
    EXPECT_EQ(errors, "untouched");
    EXPECT_EQ(buildOutput("", root).size(), 0u);
}

TEST(BuildOutput, OfARejectedTemplateIsEmptyWithOneMessage) {
    const Root root({{"x", text("value")}});
    for (const char* const input : {"{{", "text {{ x }} {{ missing }} {% if", "{% endif %}"}) {
        EXPECT_EQ(render(input, root), (Rendered{"", notParsed})) << input;
        EXPECT_EQ(buildOutput(input, root).size(), 0u) << input;
    }
}

TEST(BuildOutput, AppendsItsMessages) {
    const Root root;
    String errors("before|");
    buildOutput("{{ a }}", root, errors);
    buildOutput("{{ b }}", root, errors);
    buildOutput("{{", root, errors);
    buildOutput("{{", root, errors);
    EXPECT_EQ(errors.str(), std::string("before|"
                                        "Could not find expected replacement named \"a\"\n"
                                        "Could not find expected replacement named \"b\"\n") +
                                notParsed + notParsed);
}

TEST(BuildOutput, ReturnsTheSameTextWithoutErrorArgument) {
    const Root root({{"x", text("value")}});
    for (const char* const input : {"a{{ x }}b{{ missing }}c", "plain", "{{"}) {
        String errors;
        EXPECT_EQ(buildOutput(input, root), buildOutput(input, root, errors)) << input;
    }
}

TEST(BuildOutput, ReturnsValidUtf8ForAnyTemplate) {
    const Root root({{"x", text("\xE2\x82")}});
    const Case cases[] = {
        {"text of every language", "\u00E4 \u65E5\u672C \U0001F600",
         "\u00E4 \u65E5\u672C \U0001F600"},
        {"a byte order mark, kept", "\xEF\xBB\xBFx", "\xEF\xBB\xBFx"},
        {"line endings of all kinds, kept", "a\r\nb\rc\n\n", "a\r\nb\rc\n\n"},
        {"a stray byte", "a\xFFz", "a\uFFFDz"},
        {"a character cut off by the end", "a\xE2\x82", "a\uFFFD"},
        {"a character cut off by a substitution", "\xE2\x82{{ x }}\xAC", "\uFFFD\uFFFD\uFFFD"},
        {"a surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
    };
    expectRendered(root, cases);
}

TEST(BuildOutput, RendersLongTextsNextToShortOnes) {
    const Root root({{"short", text("s")}, {"long", text(std::string(100000, 'l'))}});
    for (const std::size_t length : {300u, 65535u, 65536u, 65537u, 100000u}) {
        SCOPED_TRACE(length);
        const std::string plain(length, 'p');
        const std::string value(100000, 'l');
        EXPECT_TRUE(render("{{ short }}" + plain + "{{ short }}{{ long }}" + plain + "{{ short }}",
                           root) == (Rendered{"s" + plain + "s" + value + plain + "s", ""}));
        EXPECT_TRUE(render("{{ long }}{{ short }}{{ long }}" + plain, root) ==
                    (Rendered{value + "s" + value + plain, ""}));
    }
}

TEST(BuildOutput, AcceptsAnyValueAsItsRoot) {
    ContextString string("its own text is no name");
    string.insert("x", text("child of a string"));
    ContextBoolean boolean(true);
    boolean.insert("x", text("child of a boolean"));
    ContextIterable iterable;
    iterable.insert("x", text("child of a list"));
    iterable.add(dictionary({{"x", text("element")}}));
    ContextBase node;
    node.insert("x", text("child of a node"));
    EXPECT_EQ(render("{{ x }}", string).output, "child of a string");
    EXPECT_EQ(render("{{ x }}", boolean).output, "child of a boolean");
    EXPECT_EQ(render("{{ x }}", iterable).output, "child of a list");
    EXPECT_EQ(render("{{ x }}", node).output, "child of a node");
}

TEST(BuildOutput, DoesNotChangeTheContext) {
    ContextDictionary root;
    ContextBase* const list_ = root.insert("list", list({dictionary(), nullptr}));
    render("{{ missing }}{% for x in list %}{{ x.missing }}{% if y %}{% endif %}{% endfor %}",
           root);
    EXPECT_EQ(root.size(), 1u);
    EXPECT_EQ(root.find("list"), list_);
    auto& elements = dynamic_cast<ContextIterable&>(*list_);
    EXPECT_EQ(elements.size(), 2u);
    EXPECT_EQ(dynamic_cast<ContextDictionary&>(*elements[0]).size(), 0u);
}

} // namespace
} // namespace support
