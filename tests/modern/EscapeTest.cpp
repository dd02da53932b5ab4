#include "../support/Environment.h"
#include "Rendering.h"

namespace support {
namespace {

using kel::Stencilor::ContextRawString;
using kel::Stencilor::escapeHtml;
using kel::Stencilor::escapeJson;

std::string obviousHtml(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        escaped += byte == '&'    ? "&amp;"
                   : byte == '<'  ? "&lt;"
                   : byte == '>'  ? "&gt;"
                   : byte == '"'  ? "&quot;"
                   : byte == '\'' ? "&#39;"
                                  : std::string(1, byte);
    }
    return escaped;
}

std::string obviousJsonOf(unsigned char byte) {
    static const std::string control[] = {
        "\\u0000", "\\u0001", "\\u0002", "\\u0003", "\\u0004", "\\u0005", "\\u0006", "\\u0007",
        "\\b",     "\\t",     "\\n",     "\\u000b", "\\f",     "\\r",     "\\u000e", "\\u000f",
        "\\u0010", "\\u0011", "\\u0012", "\\u0013", "\\u0014", "\\u0015", "\\u0016", "\\u0017",
        "\\u0018", "\\u0019", "\\u001a", "\\u001b", "\\u001c", "\\u001d", "\\u001e", "\\u001f",
    };
    switch (byte) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '<':
        return "\\u003c";
    case '>':
        return "\\u003e";
    case '&':
        return "\\u0026";
    default:
        return byte < 0x20 ? control[byte] : std::string(1, static_cast<char>(byte));
    }
}

std::string obviousJson(std::string_view text) {
    std::string escaped;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view three = text.substr(at, 3);
        if (three == "\u2028" || three == "\u2029") {
            escaped += three == "\u2028" ? "\\u2028" : "\\u2029";
            at += 2;
        } else {
            escaped += obviousJsonOf(static_cast<unsigned char>(text[at]));
        }
    }
    return escaped;
}

TEST(Escaping, TreatsEachByteAtEachPositionLikeTheObviousImplementation) {
    const std::string_view neighbours = thorough() ? "a<\x7F\xC3%" : "a<";
    for (int byte = 0; byte < 256; ++byte) {
        for (std::size_t before = 0; before < 18; ++before) {
            for (const std::size_t after : {0u, 1u, 7u, 8u, 9u}) {
                for (const char around : neighbours) {
                    const std::string text = std::string(before, around) + static_cast<char>(byte) +
                                             std::string(after, around);
                    ASSERT_EQ(escapeHtml(text).str(), obviousHtml(text)) << byte;
                    ASSERT_EQ(escapeJson(text).str(), obviousJson(text)) << byte;
                }
            }
        }
    }
}

TEST(Escaping, TreatsEachPairOfBytesLikeTheObviousImplementation) {
    for (int first = 0; first < 256; ++first) {
        std::string text;
        for (int second = 0; second < 256; ++second) {
            text += {static_cast<char>(first), static_cast<char>(second)};
        }
        ASSERT_EQ(escapeHtml(text).str(), obviousHtml(text)) << first;
        ASSERT_EQ(escapeJson(text).str(), obviousJson(text)) << first;
    }
}

TEST(Escaping, ProducesTheseResults) {
    const struct {
        const char* name;
        std::string text;
        std::string html;
        std::string json;
    } cases[] = {
        {"nothing", "", "", ""},
        {"plain text", "plain text, longer", "plain text, longer", "plain text, longer"},
        {"quotation marks", "\"'", "&quot;&#39;", "\\\"'"},
        {"tags", "<a&b>", "&lt;a&amp;b&gt;", "\\u003ca\\u0026b\\u003e"},
        {"text that is already escaped", "&amp;\\n", "&amp;amp;\\n", "\\u0026amp;\\\\n"},
        {"control characters", "\b\f\n\r\t\x1F\x7F", "\b\f\n\r\t\x1F\x7F",
         "\\b\\f\\n\\r\\t\\u001f\x7F"},
        {"a NUL", std::string("a\0b", 3), std::string("a\0b", 3), "a\\u0000b"},
        {"a slash", "</script>", "&lt;/script&gt;", "\\u003c/script\\u003e"},
        {"the line separators", "\u2028\u2029\u2027\u202A", "\u2028\u2029\u2027\u202A",
         "\\u2028\\u2029\u2027\u202A"},
        {"a part of a separator", "\xE2\x80", "\xE2\x80", "\xE2\x80"},
        {"a malformed start of a separator", "\xE2\u2028", "\xE2\u2028", "\xE2\\u2028"},
        {"malformed bytes", "\xFF\x80<\xC3", "\xFF\x80&lt;\xC3", "\xFF\x80\\u003c\xC3"},
        {"other characters", "\u00E9\u20AC\U0001F4DA", "\u00E9\u20AC\U0001F4DA",
         "\u00E9\u20AC\U0001F4DA"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(escapeHtml(row.text).str(), row.html);
        EXPECT_EQ(escapeJson(row.text).str(), row.json);
    }
}

TEST(Escaping, OfARenderIsThatOfTheFunctions) {
    const Template made("<&{{ v }}\"'");
    std::string all;
    for (int byte = 1; byte < 256; ++byte) { // what follows a NUL is not part of a value
        all += static_cast<char>(byte);
    }
    all += "\u2028";
    const Value values{{"v", all}};
    const std::string around[] = {"<&", "\"'"};
    const auto expected = [&](const std::string& escaped) {
        return around[0] + obviouslyRepairedUtf8(escaped) + around[1];
    };
    EXPECT_EQ(made.render(values).text.str(), expected(all));
    EXPECT_EQ(made.render(values, {.escape = Escape::none()}).text.str(), expected(all));
    EXPECT_EQ(made.render(values, {.escape = Escape::html()}).text.str(),
              expected(obviousHtml(all)));
    EXPECT_EQ(made.render(values, {.escape = Escape::json()}).text.str(),
              expected(obviousJson(all)));
}

TEST(Escaping, OfARenderTreatsEachByteAtEachPositionLikeTheObviousImplementation) {
    const Template made("{{ v }}");
    for (int byte = 1; byte < 256; ++byte) {
        for (std::size_t before = 0; before < 18; ++before) {
            const std::string text = std::string(before, 'a') + static_cast<char>(byte) + "b<c";
            const std::string expected = obviouslyRepairedUtf8(obviousHtml(text));
            ASSERT_EQ(made.render({{"v", text}}, {.escape = Escape::html()}).text.str(), expected);
        }
    }
}

TEST(Escaping, CountsAddedBytesTowardTheLimit) {
    const Template made("{{ v }}");
    for (const std::string& text : {std::string("<"), std::string("plain"), std::string(9, '"')}) {
        const std::string escaped = obviousHtml(text);
        RenderOptions options{.escape = Escape::html(), .limits = {.outputBytes = escaped.size()}};
        EXPECT_EQ(made.render({{"v", text}}, options).text.str(), escaped);
        --options.limits.outputBytes;
        EXPECT_EQ(made.render({{"v", text}}, options).status, RenderStatus::OutputLimit);
    }
}

TEST(Escaping, EndsAValueAtItsFirstNul) {
    const Value values{{"v", kel::String("<\0>", 3)}};
    for (const Escape& escape : {Escape::none(), Escape::html(), Escape::json(),
                                 Escape([](std::string_view value, std::string&out) {
                                     EXPECT_EQ(value, "<");
                                     out = "<";
                                 })}) {
        const std::string text = Template("{{ v }}|").render(values, {.escape = escape}).text.str();
        EXPECT_TRUE(text == "<|" || text == "&lt;|" || text == "\\u003c|") << text;
    }
}

TEST(Escaping, LeavesTemplatesAndRawTextsAlone) {
    MemoryTemplates source;
    source.add("part", "<{{ v }}{{ r }}>");
    const Template made("'{{ v }}{% include \"part\" %}{% for x in l %}{{ x.value }}{% endfor %}");
    const Value values{
        {"v", "&"}, {"r", Value::raw("<b>")}, {"l", Value::list({Value::raw("&"), "&"})}};
    EXPECT_EQ(made.render(values, {.escape = Escape::html(), .source = &source}).text,
              "'&amp;<&amp;<b>>&&amp;");
    const auto mark = [](std::string_view value, std::string& out) {
        (out += '[').append(value) += ']';
    };
    EXPECT_EQ(made.render(values, {.escape = Escape(mark), .source = &source}).text,
              "'[&]<[&]<b>>&[&]");
}

/// A host's own kind of raw text.
class OwnRaw : public ContextRawString {
  public:
    using ContextRawString::ContextRawString;
};

TEST(Escaping, LeavesRawTextsOfHostsAlone) {
    kel::Stencilor::ContextDictionary root;
    root.insert("raw", new ContextRawString("<"));
    root.insert("own", new OwnRaw("<"));
    root.insert("text", kel::Stencilor::ContextFactory::buildString("<"));
    EXPECT_EQ(
        Template("{{ raw }}{{ own }}{{ text }}").render(root, {.escape = Escape::html()}).text,
        "<<&lt;");
}

TEST(Escaping, ByAFunctionOfTheHostGetsAnEmptyTextEachTime) {
    int calls = 0;
    const Escape escape([&calls](std::string_view value, std::string& out) {
        EXPECT_TRUE(out.empty());
        out = std::string(value) + std::to_string(++calls);
    });
    const Value values{{"a", "A"}, {"b", ""}};
    EXPECT_EQ(Template("{{ a }}{{ b }}{{ a }}").render(values, {.escape = escape}).text, "A12A3");
}

TEST(Escaping, ByAFunctionOfTheHostMayReturnAnyBytes) {
    const struct {
        const char* name;
        std::string given;
        std::string rendered;
    } cases[] = {
        {"nothing", "", ""},
        {"a NUL", std::string("a\0b", 3), "a"},
        {"only a NUL", std::string("\0", 1), ""},
        {"malformed bytes", "\xFF\xE2\x82", "\uFFFD\uFFFD"},
        {"a long text", std::string(200'000, 'x'), std::string(200'000, 'x')},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Escape escape([&row](std::string_view, std::string& out) { out = row.given; });
        const Context context({{"a", "A"}});
        const Template made("{{ a }}|");
        const RenderResult result = made.render(context, {.escape = escape});
        EXPECT_TRUE(result.text == kel::String(row.rendered + "|"));
        EXPECT_EQ(result.usage.outputBytes, row.given.substr(0, row.given.find('\0')).size() + 1);
        expectSamePieces(made, context, {.escape = escape});
    }
}

TEST(Escaping, ByAFunctionOfTheHostMayThrowAndRender) {
    const Template made("{{ a }}");
    const Value values{{"a", "<"}};
    const Escape throwing(
        [](std::string_view, std::string&) { throw std::runtime_error("not escaped"); });
    EXPECT_THROW(made.render(values, {.escape = throwing}), std::runtime_error);
    int depth = 0;
    RenderOptions options;
    options.escape = Escape([&](std::string_view value, std::string& out) {
        out = ++depth < 5 ? made.render(values, options).text.str() : escapeHtml(value).str();
        out += '.';
    });
    EXPECT_EQ(made.render(values, options).text, "&lt;.....");
    EXPECT_ANY_THROW(made.render(values, {.escape = Escape(nullptr)}));
}

TEST(Escaping, IsCopiedAndMoved) {
    Escape escape = Escape::html();
    const Escape copy = escape;
    escape = Escape([](std::string_view, std::string& out) { out = "f"; });
    const Escape shared = escape;
    Escape moved = std::move(escape);
    Escape assigned = Escape::none();
    assigned = std::move(moved);
    const Template made("{{ a }}");
    const Value values{{"a", "<"}};
    EXPECT_EQ(made.render(values, {.escape = copy}).text, "&lt;");
    EXPECT_EQ(made.render(values, {.escape = shared}).text, "f");
    EXPECT_EQ(made.render(values, {.escape = assigned}).text, "f");
    EXPECT_EQ(made.render(values, {.escape = moved}).text, "f") << "moving copies";
    EXPECT_EQ(made.render(values, {.escape = escape}).text, "f") << "moving copies";
}

} // namespace
} // namespace support
