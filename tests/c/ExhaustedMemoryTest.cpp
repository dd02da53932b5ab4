#include "../support/ExhaustedMemory.h"

#include "../support/TemporaryFolder.h"
#include "Handles.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

// Calls every function that allocates, with each of its allocations failing in turn.

namespace support {
namespace {

constexpr std::size_t whole = STENCILOR_NUL_TERMINATED;
const std::string longText(100, 'x');

/// Calls `run`, which returns the status of one call, with each allocation failing. It must report
/// that memory is exhausted, or do without the memory, and then succeed.
void failEachAllocationOf(const char* name, const std::function<int()>& run,
                          int expected = STENCILOR_OK) {
    SCOPED_TRACE(name);
    bool failed = true;
    for (int count = 0; failed; ++count) {
        int status = -1;
        {
            const FailingAllocation failure(count);
            status = run();
            failed = failure.happened();
        }
        EXPECT_TRUE(status == expected || (failed && status == STENCILOR_OUT_OF_MEMORY))
            << "status " << status << " after " << count << " allocations";
        EXPECT_TRUE(failed || count > 0) << "nothing was allocated at all";
    }
    EXPECT_EQ(run(), expected);
}

/// The same for a function that stores a handle, which must be null if it fails.
template <typename Handle>
void failEachAllocationOf(const char* name,
                          const std::function<int(typename Handle::element_type**)>& make,
                          int expected = STENCILOR_OK) {
    failEachAllocationOf(
        name,
        [&make] {
            typename Handle::element_type* made = nullptr;
            const int status = make(&made);
            const Handle owned(made);
            EXPECT_FALSE(status == STENCILOR_OUT_OF_MEMORY && made != nullptr);
            return status;
        },
        expected);
}

class CExhaustedMemory : public ExhaustedMemory {};

TEST_F(CExhaustedMemory, IsAStatusOfValues) {
    using Made = stencilor_value**;
    const auto sweep = failEachAllocationOf<ValueHandle>;
    sweep(
        "null", [](Made made) { return stencilor_value_null(made); }, STENCILOR_OK);
    sweep(
        "boolean", [](Made made) { return stencilor_value_boolean(1, made); }, STENCILOR_OK);
    sweep(
        "text", [](Made made) { return stencilor_value_text(longText.data(), 100, made); },
        STENCILOR_OK);
    sweep(
        "raw", [](Made made) { return stencilor_value_raw_text(longText.data(), 100, made); },
        STENCILOR_OK);
    sweep(
        "integer", [](Made made) { return stencilor_value_integer(INT64_MIN, made); },
        STENCILOR_OK);
    sweep(
        "double", [](Made made) { return stencilor_value_double(1e-300, made); }, STENCILOR_OK);
    sweep(
        "list", [](Made made) { return stencilor_value_list(made); }, STENCILOR_OK);
    sweep(
        "dictionary", [](Made made) { return stencilor_value_dictionary(made); }, STENCILOR_OK);
    const std::string json = R"({"a": [1, "b", {"c": null}], ")" + longText + "\": true}";
    sweep(
        "JSON",
        [&](Made made) {
            return stencilor_value_parse_json(json.data(), json.size(), made, nullptr);
        },
        STENCILOR_OK);
    const ValueHandle original = valueOf(json);
    sweep(
        "copy", [&](Made made) { return stencilor_value_copy(original.get(), made); },
        STENCILOR_OK);
}

TEST_F(CExhaustedMemory, IsAStatusOfErrors) {
    const std::string json = "[" + longText;
    failEachAllocationOf(
        "JSON that is wrong",
        [&] {
            ValueHandle made;
            ErrorHandle error;
            const int status =
                stencilor_value_parse_json(json.data(), json.size(), out(made), out(error));
            EXPECT_TRUE(error != nullptr || status == STENCILOR_OUT_OF_MEMORY ||
                        status == STENCILOR_BAD_JSON);
            return status;
        },
        STENCILOR_BAD_JSON);
}

/// What templates find in a list, or in the member `longText` of a dictionary.
std::string contentOf(const stencilor_value* value) {
    ValueHandle copy;
    EXPECT_EQ(stencilor_value_copy(value, out(copy)), STENCILOR_OK);
    const ValueHandle root = valueOf("{}");
    EXPECT_EQ(stencilor_value_set(root.get(), "v", 1, copy.get()), STENCILOR_OK);
    const std::string page = "{% for i in v %}{{ i.value }},{% endfor %}{{ v." + longText + " }}";
    const ResultHandle result = render(parse(page), contextOf(root.get()));
    return textOf(result) + std::to_string(stencilor_result_message_count(result.get()));
}

/// Adds to a list, or sets a member of a dictionary.
TEST_F(CExhaustedMemory, ChangesNoValue) {
    const auto sweep = [](const char* name, const std::string& json,
                          const std::function<int(stencilor_value*)>& change) {
        const std::string before = contentOf(valueOf(json).get());
        failEachAllocationOf(name, [&] {
            ValueHandle changed;
            if (stencilor_value_parse_json(json.data(), json.size(), out(changed), nullptr) !=
                STENCILOR_OK) {
                return int(STENCILOR_OUT_OF_MEMORY);
            }
            const int status = change(changed.get());
            EXPECT_TRUE(status == STENCILOR_OK || contentOf(changed.get()) == before);
            return status;
        });
    };
    const char* const key = longText.c_str();
    using Value = stencilor_value*;
    sweep("add", "[1]", [](Value list) { return stencilor_value_add_text(list, "a", 1); });
    sweep("add null", "[1]", [](Value list) { return stencilor_value_add_null(list); });
    sweep("add true", "[1]", [](Value list) { return stencilor_value_add_boolean(list, 1); });
    sweep("add raw", "[1]",
          [&](Value list) { return stencilor_value_add_raw_text(list, key, whole); });
    sweep("add integer", "[1]",
          [](Value list) { return stencilor_value_add_integer(list, INT64_MIN); });
    sweep("add double", "[1]", [](Value list) { return stencilor_value_add_double(list, 1e-300); });
    sweep("set null", "{}", [&](Value d) { return stencilor_value_set_null(d, key, whole); });
    sweep("set true", "{}", [&](Value d) { return stencilor_value_set_boolean(d, key, whole, 1); });
    sweep("set text", "{}",
          [&](Value d) { return stencilor_value_set_text(d, key, whole, key, whole); });
    sweep("set text in place of another", "{\"" + longText + "\": \"old\"}",
          [&](Value d) { return stencilor_value_set_text(d, key, whole, key, whole); });
    sweep("set raw", "{}",
          [&](Value d) { return stencilor_value_set_raw_text(d, key, whole, key, whole); });
    sweep("set integer", "{}",
          [&](Value d) { return stencilor_value_set_integer(d, key, whole, INT64_MIN); });
    sweep("set double", "{}",
          [&](Value d) { return stencilor_value_set_double(d, key, whole, 1e-300); });
    sweep("set list", "{}", [&](Value d) {
        ValueHandle list;
        const int status = stencilor_value_list(out(list));
        return status != STENCILOR_OK ? status : stencilor_value_set(d, key, whole, list.get());
    });
    sweep("add dictionary", "[]", [&](Value list) {
        ValueHandle item;
        const int status = stencilor_value_dictionary(out(item));
        return status != STENCILOR_OK ? status : stencilor_value_add(list, item.get());
    });
}

TEST_F(CExhaustedMemory, IsAStatusOfContextsAndTemplates) {
    const ValueHandle value = valueOf(R"({"a": {"b": ["c"]}})");
    failEachAllocationOf<ContextHandle>(
        "context",
        [&](stencilor_context** made) {
            return stencilor_context_create(value.get(), STENCILOR_CONTEXT_POSITIONS, made,
                                            nullptr);
        },
        STENCILOR_OK);
    const std::string json = R"({"a": {"b": [1.5, "!raw"]}})";
    failEachAllocationOf<ContextHandle>(
        "JSON context",
        [&](stencilor_context** made) {
            return stencilor_context_parse_json(
                json.data(), json.size(), STENCILOR_CONTEXT_SHORT_NUMBERS, "!", 1, made, nullptr);
        },
        STENCILOR_OK);
    failEachAllocationOf<TemplateHandle>(
        "template",
        [](stencilor_template** made) {
            return stencilor_template_parse("{{ a }}{% if b %}{% endif %}", whole, longText.data(),
                                            100, made);
        },
        STENCILOR_OK);
    failEachAllocationOf<TemplateHandle>(
        "rejected template",
        [](stencilor_template** made) {
            return stencilor_template_parse("{{ a", whole, longText.data(), 100, made);
        },
        STENCILOR_REJECTED);
}

/// Calls `read`, which returns the text of a new message, with each allocation failing. The text
/// may be empty then, and must be there when it is read again.
void failEachAllocationOfText(const std::function<const stencilor_message*()>& read) {
    bool failed = true;
    for (int count = 0; failed; ++count) {
        const stencilor_message* const message = read();
        std::size_t size = SIZE_MAX;
        {
            const FailingAllocation failure(count);
            const char* const text = stencilor_message_text(message, &size);
            failed = failure.happened();
            EXPECT_EQ(text[size], '\0');
        }
        const std::string text = textOf(message);
        EXPECT_NE(text.find(longText), std::string::npos);
        EXPECT_EQ(size, failed ? 0 : text.size());
        EXPECT_TRUE(failed || count > 0) << "nothing was allocated at all";
    }
}

TEST_F(CExhaustedMemory, LeavesTheTextOfAMessageForLater) {
    const TemplateHandle page = parse("{{ " + longText + " }}");
    const ContextHandle context = contextOf("{}");
    ResultHandle result;
    failEachAllocationOfText([&] {
        result = render(page, context);
        return stencilor_result_message(result.get(), 0);
    });
}

int answerWithText(void*, const char*, std::size_t, stencilor_request* request) {
    stencilor_request_set_text(request, "{{ gone }}{{ a }}", whole);
    return 0; // a failure is remembered
}

int escapeTwice(void*, const char* text, std::size_t size, stencilor_output* output) {
    stencilor_output_append(output, text, size);
    stencilor_output_append(output, text, size);
    return 0;
}

int goOn(void*) {
    return 0;
}

/// Options that use every setting.
OptionsHandle everyOption(const SourceHandle& source) {
    OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    stencilor_options_set_escape_function(options.get(), escapeTwice, nullptr);
    stencilor_options_set_poll(options.get(), goOn, nullptr);
    return options;
}

int append(void* payload, const char* text, std::size_t size) {
    static_cast<std::string*>(payload)->append(text, size);
    return 0;
}

TEST_F(CExhaustedMemory, IsAStatusOfRenders) {
    const TemplateHandle page = parse("{{ a }}{{ gone }}{% include \"p\" %}" + longText);
    const ContextHandle context = contextOf(R"({"a": ")" + longText + "\"}");
    SourceHandle source;
    EXPECT_EQ(stencilor_source_callback(answerWithText, nullptr, out(source)), STENCILOR_OK);
    const OptionsHandle options = everyOption(source);
    const std::string expected = textOf(render(page, context, options.get()));
    failEachAllocationOf<ResultHandle>(
        "render",
        [&](stencilor_result** made) {
            const int status =
                stencilor_template_render(page.get(), context.get(), options.get(), made);
            EXPECT_TRUE(*made == nullptr || stencilor_result_text(*made, nullptr) == expected);
            return status;
        },
        STENCILOR_OK);
    failEachAllocationOf<ResultHandle>(
        "render with default options",
        [&](stencilor_result** made) {
            return stencilor_template_render(page.get(), context.get(), nullptr, made);
        },
        STENCILOR_OK);
    std::string text;
    text.reserve(1 << 20);
    failEachAllocationOf<ResultHandle>(
        "render to",
        [&](stencilor_result** made) {
            text.clear();
            return stencilor_template_render_to(page.get(), context.get(), append, &text,
                                                options.get(), made);
        },
        STENCILOR_OK);
    failEachAllocationOf<ResultHandle>(
        "render path",
        [&](stencilor_result** made) {
            return stencilor_render_path("p", 1, context.get(), options.get(), made);
        },
        STENCILOR_OK);
}

TEST_F(CExhaustedMemory, IsAStatusOfOptionsAndSources) {
    failEachAllocationOf<OptionsHandle>(
        "options", [](stencilor_options** made) { return stencilor_options_create(made); },
        STENCILOR_OK);
    const OptionsHandle options = makeOptions();
    failEachAllocationOf("escape function", [&] {
        return stencilor_options_set_escape_function(options.get(), escapeTwice, nullptr);
    });
    failEachAllocationOf<SourceHandle>(
        "memory", [](stencilor_source** made) { return stencilor_source_memory(made); },
        STENCILOR_OK);
    failEachAllocationOf<SourceHandle>(
        "callback",
        [](stencilor_source** made) {
            return stencilor_source_callback(answerWithText, nullptr, made);
        },
        STENCILOR_OK);
    SourceHandle callback;
    EXPECT_EQ(stencilor_source_callback(answerWithText, nullptr, out(callback)), STENCILOR_OK);
    failEachAllocationOf<TemplateHandle>(
        "find",
        [&](stencilor_template** made) {
            return stencilor_source_find(callback.get(), "p", 1, made);
        },
        STENCILOR_OK);
    const SourceHandle memory = makeMemory();
    failEachAllocationOf("add", [&] {
        return stencilor_source_add(memory.get(), longText.data(), 100, "{{ a }}", whole);
    });
}

TEST_F(CExhaustedMemory, IsAStatusOfTheAnalysis) {
    const SourceHandle source = makeMemory();
    add(source, "p", "{{ titel }}{{");
    const TemplateHandle page = parse("{{ titel }}{% include \"p\" %}{% include \"gone\" %}");
    const ContextHandle context = contextOf(R"({"title": ""})");
    failEachAllocationOf<TextHandle>(
        "check",
        [&](stencilor_text** made) {
            return stencilor_check(page.get(), source.get(), context.get(), made);
        },
        STENCILOR_OK);
    const OptionsHandle options = makeOptions();
    stencilor_options_set_source(options.get(), source.get());
    stencilor_options_set_poll(options.get(), goOn, nullptr);
    failEachAllocationOf<TextHandle>(
        "check within limits",
        [&](stencilor_text** made) {
            return stencilor_check_limited(page.get(), context.get(), options.get(), made);
        },
        STENCILOR_OK);
    failEachAllocationOf<TextHandle>(
        "tree", [&](stencilor_text** made) { return stencilor_tree(page.get(), made); },
        STENCILOR_OK);
    failEachAllocationOf<TextHandle>(
        "names",
        [&](stencilor_text** made) { return stencilor_names(page.get(), source.get(), made); },
        STENCILOR_OK);
    failEachAllocationOf<TextHandle>(
        "escape",
        [](stencilor_text** made) {
            return stencilor_escape(STENCILOR_ESCAPE_HTML, longText.data(), 100, made);
        },
        STENCILOR_OK);
}

// On Windows, the paths of the test allocate memory, too.
#ifndef _WIN32

TEST_F(CExhaustedMemory, IsAStatusOfFolders) {
    const TemporaryFolder folder;
    folder.writeFile("p", longText);
    const std::string path = folder.path();
    failEachAllocationOf<SourceHandle>(
        "folder",
        [&](stencilor_source** made) {
            return stencilor_source_folder(path.data(), path.size(), made);
        },
        STENCILOR_OK);
}

#endif

} // namespace
} // namespace support
