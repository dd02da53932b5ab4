#include "../support/Build.h"
#include "../support/Test.h"
#include "Handles.h"

#include <algorithm>
#include <array>
#include <functional>
#include <random>

namespace support {
namespace {

const std::string longText(5000, 'x'); // which copies share

/// A handle of each kind, made from the others.
struct AllHandles {
    AllHandles() {
        add(source, "part", "{{ gone }}");
        EXPECT_EQ(stencilor_options_set_source(options.get(), source.get()), STENCILOR_OK);
        result = render(page, context, options.get());
        EXPECT_EQ(stencilor_check(page.get(), source.get(), context.get(), out(text)),
                  STENCILOR_OK);
        ValueHandle none;
        EXPECT_EQ(stencilor_value_parse_json("[", 1, out(none), out(error)), STENCILOR_BAD_JSON);
    }

    /// Reads and uses those that are left.
    void use() const {
        if (page && context && options) {
            expectPage(render(page, context, options.get()));
        }
        if (result) {
            expectPage(result);
        }
        if (value) {
            EXPECT_EQ(stencilor_value_kind(value.get()), STENCILOR_KIND_DICTIONARY);
            EXPECT_NE(contextOf(value.get()), nullptr);
        }
        if (source) {
            TemplateHandle found;
            EXPECT_EQ(stencilor_source_find(source.get(), "part", 4, out(found)), STENCILOR_OK);
            EXPECT_EQ(textOf(stencilor_template_text, found.get()), "{{ gone }}");
        }
        EXPECT_EQ(textOf(text).empty(), text == nullptr);
        EXPECT_EQ(textOf(stencilor_error_text, error.get()).empty(), error == nullptr);
    }

    static void expectPage(const ResultHandle& rendered) {
        EXPECT_EQ(textOf(rendered), longText);
        const stencilor_message* const message = stencilor_result_message(rendered.get(), 0);
        EXPECT_EQ(textOf(message), "there is no value named \"gone\"");
        EXPECT_EQ(textOf(stencilor_message_template_name, message), "part");
        EXPECT_EQ(textOf(stencilor_message_include_template_name, message, 0u), longText);
    }

    ValueHandle value = valueOf("{\"a\": \"" + longText + "\"}");
    ContextHandle context = contextOf(value.get());
    TemplateHandle page = parse("{{ a }}{% include \"part\" %}", longText);
    SourceHandle source = makeMemory();
    OptionsHandle options = makeOptions();
    ResultHandle result;
    TextHandle text;
    ErrorHandle error;
};

TEST(CLifetime, OfHandlesEndsInAnyOrder) {
    std::minstd_rand random;
    for (int turn = 0; turn < (slow ? 100 : 2000) && !HasFailure(); ++turn) {
        AllHandles all;
        std::array<std::function<void()>, 8> frees{
            [&] { all.value.reset(); },  [&] { all.context.reset(); }, [&] { all.page.reset(); },
            [&] { all.source.reset(); }, [&] { all.options.reset(); }, [&] { all.result.reset(); },
            [&] { all.text.reset(); },   [&] { all.error.reset(); },
        };
        std::shuffle(frees.begin(), frees.end(), random);
        for (const auto& free : frees) {
            free();
            all.use();
        }
    }
}

} // namespace
} // namespace support
