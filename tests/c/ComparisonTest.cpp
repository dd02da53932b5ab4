#include "../support/Build.h"
#include "../support/Environment.h"
#include "../support/TemporaryFolder.h"
#include "../support/oracles/RandomValue.h"
#include "Handles.h"

#include <libStencilor/Template.h>
#include <libStencilorJson/JsonText.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

// A render through C equals one through C++ in text, pieces, messages, status and usage.

namespace support {
namespace {

using kel::Stencilor::Context;
using kel::Stencilor::Escape;
using kel::Stencilor::FileTemplates;
using kel::Stencilor::MemoryTemplates;
using kel::Stencilor::RenderMessage;
using kel::Stencilor::RenderOptions;
using kel::Stencilor::RenderResult;
using kel::Stencilor::RenderStatus;
using kel::Stencilor::Template;
using kel::Stencilor::Value;

/// The same value for both interfaces.
struct Twin {
    Value value;
    ValueHandle handle;
};

struct TwinMaker {
    using Made = Twin;

    static Twin dictionary() {
        Twin made{Value(), {}};
        stencilor_value_dictionary(out(made.handle));
        return made;
    }

    static Twin list() {
        Twin made{Value::list(), {}};
        stencilor_value_list(out(made.handle));
        return made;
    }

    static Twin boolean(bool isTrue) {
        Twin made{isTrue, {}};
        stencilor_value_boolean(isTrue ? 1 : 0, out(made.handle));
        return made;
    }

    static Twin scalar(Random& random, const std::string& text) {
        Twin made{nullptr, {}};
        const auto integer = static_cast<std::int64_t>(random.below(SIZE_MAX));
        switch (random.below(6)) {
        case 0:
            stencilor_value_null(out(made.handle));
            return made;
        case 1:
            made.value = integer;
            stencilor_value_integer(integer, out(made.handle));
            return made;
        case 2:
            made.value = static_cast<double>(integer) / 1e9;
            stencilor_value_double(static_cast<double>(integer) / 1e9, out(made.handle));
            return made;
        case 3:
            made.value = Value::raw(text);
            stencilor_value_raw_text(text.data(), text.size(), out(made.handle));
            return made;
        default:
            made.value = text;
            stencilor_value_text(text.data(), text.size(), out(made.handle));
            return made;
        }
    }

    static void set(Twin& dictionary, const std::string& key, Twin member) {
        dictionary.value.set(key, std::move(member.value));
        EXPECT_EQ(stencilor_value_set(dictionary.handle.get(), key.data(), key.size(),
                                      member.handle.get()),
                  STENCILOR_OK);
    }

    static void add(Twin& list, Twin item) {
        list.value.add(std::move(item.value));
        EXPECT_EQ(stencilor_value_add(list.handle.get(), item.handle.get()), STENCILOR_OK);
    }
};

/// Everything about a render except its text.
std::string describe(const RenderResult& result) {
    std::ostringstream lines;
    const bool stopped = result.status == RenderStatus::Stopped;
    const bool complete = result.status == RenderStatus::Complete;
    lines << (complete  ? 0
              : stopped ? 1
                        : static_cast<int>(result.status) + 1)
          << ' ' << result.usage.steps << ' ' << result.usage.outputBytes << ' '
          << result.usage.templateBytes << ' ' << result.usage.includeDepth << ' '
          << result.usage.messages << '\n';
    for (const RenderMessage& message : result.messages) {
        lines << static_cast<int>(message.kind) + 1 << ' ' << message.name << ' '
              << message.templateName << ' ' << message.line << ' ' << message.column << ' '
              << message.range.begin << ' ' << message.range.end << ' ' << message.text() << '\n';
        for (const auto& site : message.includedFrom) {
            lines << "  " << site.templateName << ' ' << site.line << ' ' << site.column << ' '
                  << site.range.begin << ' ' << site.range.end << '\n';
        }
    }
    return lines.str();
}

std::string describe(const ResultHandle& result) {
    std::ostringstream lines;
    lines << stencilor_result_status(result.get());
    for (const int limit :
         {STENCILOR_LIMIT_STEPS, STENCILOR_LIMIT_OUTPUT_BYTES, STENCILOR_LIMIT_TEMPLATE_BYTES,
          STENCILOR_LIMIT_INCLUDE_DEPTH, STENCILOR_LIMIT_MESSAGES}) {
        lines << ' ' << stencilor_result_usage(result.get(), limit);
    }
    lines << '\n';
    for (std::size_t i = 0; i < stencilor_result_message_count(result.get()); ++i) {
        const stencilor_message* const message = stencilor_result_message(result.get(), i);
        lines << stencilor_message_kind(message) << ' ' << textOf(stencilor_message_name, message)
              << ' ' << textOf(stencilor_message_template_name, message) << ' '
              << stencilor_message_line(message) << ' ' << stencilor_message_column(message) << ' '
              << stencilor_message_begin(message) << ' ' << stencilor_message_end(message) << ' '
              << textOf(message) << '\n';
        for (std::size_t site = 0; site < stencilor_message_include_count(message); ++site) {
            lines << "  " << textOf(stencilor_message_include_template_name, message, site) << ' '
                  << stencilor_message_include_line(message, site) << ' '
                  << stencilor_message_include_column(message, site) << ' '
                  << stencilor_message_include_begin(message, site) << ' '
                  << stencilor_message_include_end(message, site) << '\n';
        }
    }
    return lines.str();
}

int append(void* payload, const char* text, std::size_t size) {
    static_cast<std::string*>(payload)->append(text, size);
    return 0;
}

/// Renders through both interfaces, whole and in pieces.
void compare(const std::string& text, const Context& context, const ContextHandle& contextHandle,
             const RenderOptions& options, const OptionsHandle& optionsHandle) {
    const Template page(text, "page");
    const TemplateHandle handle = parse(text);
    EXPECT_EQ(page.isWellFormed(), stencilor_template_fault(handle.get()) == nullptr) << text;
    const RenderResult expected = page.render(context, options);
    const ResultHandle result = render(handle, contextHandle, optionsHandle.get());
    EXPECT_EQ(textOf(result), expected.text.str()) << text;
    EXPECT_EQ(describe(result), describe(expected)) << text;

    std::string expectedPieces;
    const RenderResult expectedRest = page.renderTo(
        context, [&](std::string_view piece) { expectedPieces += piece; }, options);
    std::string pieces;
    ResultHandle rest;
    stencilor_template_render_to(handle.get(), contextHandle.get(), append, &pieces,
                                 optionsHandle.get(), out(rest));
    EXPECT_EQ(pieces, expectedPieces) << text;
    EXPECT_EQ(describe(rest), describe(expectedRest)) << text;
}

/// The same options for both interfaces, and the same templates to include.
class TwinOptions {
  public:
    TwinOptions() {
        options.source = &templates;
        stencilor_options_set_source(handle.get(), source.get());
    }

    void fillSource(Random& random) {
        for (std::size_t file = 0; file < std::size(paths); ++file) {
            const std::vector<std::string> behind(std::begin(paths) + file + 1, std::end(paths));
            const std::string text = randomTemplate(random, 8, behind);
            templates.add(paths[file], text);
            support::add(source, paths[file], text);
        }
    }

    void choose(Random& random) {
        const std::function<Escape()> escapes[] = {Escape::none, Escape::html, Escape::json};
        const std::size_t kind = random.below(3);
        options.escape = escapes[kind]();
        stencilor_options_set_escape(handle.get(), static_cast<int>(kind));
        const auto limit = [&random](std::size_t below) {
            return random.oneIn(8) ? random.below(below) : 0;
        };
        options.limits = {.steps = limit(200),
                          .outputBytes = limit(200),
                          .templateBytes = limit(400),
                          .includeDepth = static_cast<unsigned int>(limit(4)),
                          .messages = static_cast<unsigned int>(limit(4))};
        const std::uint64_t values[] = {options.limits.steps, options.limits.outputBytes,
                                        options.limits.templateBytes, options.limits.includeDepth,
                                        options.limits.messages};
        for (int number = 0; number < 5; ++number) {
            stencilor_options_set_limit(handle.get(), number, values[number]);
        }
    }

    static constexpr const char* paths[] = {"f0", "f1", "parts/f2", "f3"};
    MemoryTemplates templates;
    RenderOptions options;
    SourceHandle source = makeMemory();
    OptionsHandle handle = makeOptions();
};

TEST(CComparison, AgreesOnRandomTemplatesAndValues) {
    const std::uint64_t first = numberFromEnvironment("STENCILOR_SEED", 0);
    const std::uint64_t last = first + numberFromEnvironment("STENCILOR_CASES", slow ? 500 : 2000);
    for (std::uint64_t seed = first; seed < last && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("STENCILOR_SEED=" + std::to_string(seed) + " STENCILOR_CASES=1");
        Random random(seed);
        const Twin root = RandomValue<TwinMaker>(random).dictionary(3);
        const bool positions = random.oneIn(2);
        const Context context(root.value, {.positions = positions});
        const ContextHandle handle =
            contextOf(root.handle.get(), positions ? STENCILOR_CONTEXT_POSITIONS : 0);
        TwinOptions options;
        options.fillSource(random);
        options.choose(random);
        const std::string text = randomTemplate(random, 24, {"f0", "parts/f2", "missing", "f3"});
        compare(text, context, handle, options.options, options.handle);
    }
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST(CComparison, AgreesOnAWholePageFromFiles) {
    const std::string folder = STENCILOR_EXAMPLES "/report";
    const std::string json = contentOf(folder + "/context.json");
    FileTemplates templates(folder);
    SourceHandle source;
    ASSERT_EQ(stencilor_source_folder(folder.data(), folder.size(), out(source)), STENCILOR_OK);
    RenderOptions options{.source = &templates};
    const OptionsHandle handle = makeOptions();
    stencilor_options_set_source(handle.get(), source.get());
    const std::string text = contentOf(folder + "/report.html");
    const Context context(kel::Stencilor::valueFromJsonText(json));
    compare(text, context, contextOf(json), options, handle);
    EXPECT_EQ(textOf(render(parse(text), contextOf(json), handle.get())),
              contentOf(folder + "/expected.html"));
}

} // namespace
} // namespace support
